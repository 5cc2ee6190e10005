#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <random>

#include "hostkit/Busy.h"
#include "hostkit/LiveRig.h"
#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"

namespace marnoth::test::live_while_editing_test {
namespace {

constexpr std::chrono::seconds kDuration{2};
/// A machine with much else to do may take that long to let the players come to a note.
constexpr std::chrono::seconds kPatience{60};
constexpr float kAudible = 0.1f;

/// A hand on a keyboard of another thread, with a channel of its own, and on the transport.
std::function<void(int)> player(LiveHost& host, std::uint8_t channel) {
    return [&host, channel](int i) {
        const auto key = static_cast<std::uint8_t>(48 + i % 16);
        host.send(0x90 | channel, key, 100);
        host.send(0x80 | channel, key, 0);
        if (i % 7 == 0) host.setTempo(100 + i % 50);
        if (i % 11 == 0) i % 2 ? host.play() : host.stop();
        if (i % 13 == 0) host.locate(i % 1000);
        if (i % 17 == 0) host.setKey(static_cast<std::uint32_t>(i % 12));
        if (i % 97 == 0) host.panic();
        host.tick();
    };
}

std::function<void(int)> page(LiveHost& host) {
    return [&host](int i) {
        IGrooveSampler& sampler = host.sampler();
        const std::int32_t pad = i % kPads;
        sampler.SetPadVolume(pad, static_cast<float>(i % 20) / 10.0f);
        sampler.SetPadSynced(pad, i % 3 != 0);
        if (i % 5 == 0) sampler.AuditionPad(pad, -1);
        if (i % 5 == 1) sampler.PushUndoState();
        if (i % 5 == 2) sampler.Undo();
        if (i % 50 != 3) return;
        RefPtr<MemoryStream> state = makeObject<MemoryStream>();
        EXPECT_EQ(host.save(*state), S_OK);
        EXPECT_EQ(state->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
        EXPECT_EQ(host.load(*state), S_OK);
    };
}

TEST(EditWhilePlaying, PlayersAndAPageDisturbNoLiveBlock) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    LiveRig rig({0});
    layPads(rig.host.sampler(), files);
    Busy left(player(rig.host, 0)), right(player(rig.host, 1)), editor(page(rig.host));
    std::mt19937 random(3);
    const auto begin = std::chrono::steady_clock::now();
    const auto lasts = [begin](std::chrono::seconds time) {
        return std::chrono::steady_clock::now() - begin < time;
    };
    while (lasts(kDuration) || (rig.peakFrom(0) <= kAudible && lasts(kPatience)))
        rig.block(static_cast<std::int32_t>(random() % LiveRig::kMost));
    EXPECT_GT(left.finish(), 0);
    EXPECT_GT(right.finish(), 0);
    EXPECT_GT(editor.finish(), 0);

    EXPECT_GT(rig.peakFrom(0), kAudible);
    bool allFinite = true;
    for (float sample : rig.audio[0]) allFinite = allFinite && std::isfinite(sample);
    EXPECT_TRUE(allFinite);
    rig.host.panic();
    for (int block = 0; block < 10; ++block) rig.block(512);
    const std::size_t end = rig.audio[0].size();
    for (int block = 0; block < 10; ++block) rig.block(512);
    EXPECT_EQ(rig.peakFrom(end), 0.0f);
}

}  // namespace
}  // namespace marnoth::test::live_while_editing_test
