#include <gtest/gtest.h>

#include <functional>

#include "engine/VoiceRig.h"

namespace marnoth::test::block_size_test {
namespace {

constexpr std::int64_t kFrames = 3 * 4096 + 700;

std::vector<float> wobble(std::int64_t frames) {
    std::vector<float> sound;
    for (std::int64_t i = 0; i < frames; ++i) {
        sound.push_back(static_cast<float>(0.5 * std::sin(i * 0.031) + 0.3 * std::sin(i * 0.37)));
    }
    return sound;
}

/// A held voice sounds the same whatever the blocks.
void expectSameInAllBlocks(const std::function<void(VoiceRig&)>& setUp, double tolerance) {
    std::vector<float> first;
    for (const std::int32_t frames : {1, 7, 64, 441, 512, 4096}) {
        SCOPED_TRACE("blocks of " + std::to_string(frames));
        VoiceRig rig(48000);
        setUp(rig);
        const auto audio = rig.play(kFrames, frames);
        if (first.empty()) {
            first = audio;
            ASSERT_GT(peak(first), 0.1f);
        }
        expectFrames(
            audio, 0, kFrames, [&](std::int64_t i) { return first[static_cast<std::size_t>(i)]; }, tolerance);
    }
}

TEST(BlockSize, UnsyncedLoopIsTheSame) {
    expectSameInAllBlocks(
        [](VoiceRig& rig) {
            rig.laySound(0, wobble(5000));
            rig.engine.SetPadLooping(0, 1);
            rig.noteOn(60);
        },
        1e-6);
}

TEST(BlockSize, SyncedLoopAtItsOwnTempoIsTheSame) {
    expectSameInAllBlocks(
        [](VoiceRig& rig) {
            rig.layLoop(0, wobble(24000), 1);
            rig.context.running = 1;
            rig.noteOn(60);
        },
        1e-6);
}

TEST(BlockSize, StretchedLoopIsTheSameUpToTheRoundingOfItsCrossfades) {
    for (const double tempo : {96.0, 150.0}) {
        expectSameInAllBlocks(
            [tempo](VoiceRig& rig) {
                rig.layLoop(0, wobble(24000), 1);
                rig.context.tempo = tempo;
                rig.context.running = 1;
                rig.noteOn(60);
            },
            2e-5);
    }
}

TEST(BlockSize, TransposedLoopIsTheSame) {
    expectSameInAllBlocks(
        [](VoiceRig& rig) {
            rig.layLoop(0, wobble(24000), 1);
            const KeyMapRecord wide{0, 0, 127, 60, 0, 127};
            rig.engine.SetKeyMapEntry(&wide);
            rig.context.tempo = 96;
            rig.context.running = 1;
            rig.noteOn(63);
        },
        1e-6);
}

TEST(BlockSize, PressedPadAndAuditionAreTheSame) {
    expectSameInAllBlocks(
        [](VoiceRig& rig) {
            const std::int32_t bin = rig.laySound(0, wobble(5000));
            rig.engine.SetPadLooping(0, 1);
            rig.engine.AuditionPad(0, -1);
            rig.engine.AuditionBinFile(bin, -1);
        },
        2e-6);
}

}  // namespace
}  // namespace marnoth::test::block_size_test
