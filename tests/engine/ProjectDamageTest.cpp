#include <stdexcept>

#include "engine/ProjectRig.h"
#include "support/Sparingly.h"

namespace marnoth::test::project_damage_test {
namespace {

/// Reads every byte that a list of grains promises.
float sumOfPlots(const std::vector<GrainListEntry>& grains) {
    float sum = 0;
    for (const GrainListEntry& grain : grains) {
        const std::int64_t values = std::int64_t{grain.plotLength} * grain.channels * 2;
        for (std::int64_t i = 0; i < values; ++i) sum += grain.plotData[i];
    }
    return sum;
}

/// Uses whatever a load has left in every way for a moment.
struct DamageRig : ProjectRig {
    explicit DamageRig(std::uint32_t rate) : ProjectRig(rate) {}

    /// `S_OK` or `E_FAIL`, anything else is a fault.
    bool loads(const Bytes& bytes) {
        HRESULT result = E_FAIL;
        try {
            result = loadStream(bytes);
        } catch (const std::invalid_argument&) {
        }
        EXPECT_TRUE(result == S_OK || result == E_FAIL) << result;
        return result == S_OK;
    }

    void use() {
        for (std::int32_t i = 0; i < kPads; ++i) EXPECT_TRUE(std::isfinite(sumOfPlots(padGrains(i))));
        for (std::int32_t i = 0; i < binFiles(); ++i) EXPECT_TRUE(std::isfinite(sumOfPlots(binGrains(i))));
        engine.SetAuditionEnabled(1);
        playPads();
        playNotes();
        edit();
        playPads();
        EXPECT_EQ(engine.ClearProject(), S_OK);
    }

    void expectUsable(const TempPath& nextFile) {
        ASSERT_EQ(binFiles(), 0);
        for (std::int32_t pad = 0; pad < kPads; ++pad) ASSERT_GE(keys(pad).lowKey, 60);
        ASSERT_EQ(lay(3, nextFile).result, S_OK);
        // A pad keeps the volume that a project gave it.
        ASSERT_EQ(engine.SetPadVolume(3, 1.0f), S_OK);
        ASSERT_GT(playPad(3, 64), 0.1f);
        ASSERT_EQ(engine.ClearProject(), S_OK);
    }

private:
    void playPads() {
        for (std::int32_t bin = 0; bin < binFiles(); ++bin) engine.AuditionBinFile(bin, -1);
        for (std::int32_t pad = 0; pad < kPads; ++pad) engine.AuditionPad(pad, -1);
        for (const std::int32_t frames : {1, 100, 64}) EXPECT_EQ(block(frames), S_OK);
        if (count(kPadLoop, 0) > 0) engine.AuditionPad(0, 0);
        EXPECT_EQ(block(64), S_OK);
    }
    void playNotes() {
        for (const std::uint8_t key : {0, 60, 62, 64, 69, 127}) {
            QueuedEvent note;
            note.event.note = key;
            note.event.velocity = 100;
            note.event.duration = kDurationOpen;
            EXPECT_EQ(engine.CreateVoice(&note), S_OK);
            notes.push_back(note);
        }
        for (const std::int32_t frames : {64, 100}) EXPECT_EQ(block(frames), S_OK);
        for (QueuedEvent& note : notes) EXPECT_EQ(engine.ReleaseVoice(&note, 1), S_OK);
        notes.clear();
    }
    void edit() {
        std::int32_t index;
        engine.PushUndoState();
        engine.LoadPadFromBin(8, 0);
        if (binFiles() > 0 && count(kBinLoop, 0) > 0) engine.AddGrain(0, 0, 9, kBeat);
        for (std::int32_t pad = 0; pad < kPads; ++pad) {
            engine.SetPadTail(pad, 1);
            if (count(kPadLoop, static_cast<std::uint32_t>(pad)) > 0) {
                engine.SetGrainTranspose(pad, 0, 3);
                engine.CopyGrain(pad, 0, 15, -1, &index);
                engine.MoveGrain(pad, 0, 14, kBeat / 2, &index, 0);
            }
        }
        engine.CommitGrainEdits();
        engine.RemoveBinFile(1);
        engine.Undo();
        engine.Redo();
        FaultyStream out;
        EXPECT_EQ(engine.SaveState(&out), S_OK);
        Project again;
        EXPECT_EQ(readBytes(out.bytes, again), S_OK) << "a save writes what a load takes";
    }
};

// At one rate the audio stays as it is, at the other it is converted.
class ProjectWithAByteOf : public testing::TestWithParam<std::uint8_t> {};

TEST_P(ProjectWithAByteOf, ItsValueAnywhereIsPlayedOrRefused) {
    const std::uint8_t value = GetParam();
    const TempPath next = loopFile(1, 11025).writeTemp();
    const ProjectBytes::Built sound = twoFilesFourPads().build();
    DamageRig rig(value & 1 ? 44100 : 48000);
    int played = 0;
    int refused = 0;
    for (std::size_t at = 0; at < sound.bytes.size(); at += kSparingly) {
        for (const auto& [first, end] : sound.audio) at = at >= first && at < end ? end : at;
        SCOPED_TRACE(testing::Message() << "byte " << at);
        Bytes damaged = sound.bytes;
        damaged.at(at) = value;
        if (rig.loads(damaged)) {
            ++played;
            // A byte that was like this already has been played.
            if (damaged != sound.bytes) rig.use();
        } else {
            ++refused;
            ASSERT_NO_FATAL_FAILURE(rig.expectUsable(next));
        }
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_GT(played, 250 / kSparingly);
    EXPECT_GT(refused, 250 / kSparingly);
}

INSTANTIATE_TEST_SUITE_P(Extremes, ProjectWithAByteOf, testing::Values(0x00, 0x7F, 0x80, 0xFF));

TEST(ProjectDamage, FileCutAnywhereIsRefusedAndLeavesAUsableInstrument) {
    constexpr std::size_t kCuts = 2000;
    const TempPath next = loopFile(1, 11025).writeTemp();
    const TempPath file(".mrn");
    const Bytes sound = twoFilesFourPads(1000).bytes();
    ASSERT_GT(sound.size(), kCuts);
    DamageRig rig(44100);
    for (std::size_t cut = 0; cut < kCuts; cut += kSparingly) {
        const std::size_t end = cut * sound.size() / kCuts;
        WaveFile::writeBytes(file.path(), Bytes(sound.begin(), sound.begin() + std::ptrdiff_t(end)));
        ASSERT_EQ(rig.engine.LoadProject(file.c_str()), E_FAIL) << end;
        ASSERT_NO_FATAL_FAILURE(rig.expectUsable(next));
    }
}

TEST(ProjectDamage, UndamagedProjectIsPlayed) {
    DamageRig rig(44100);
    ASSERT_TRUE(rig.loads(twoFilesFourPads().bytes()));
    rig.use();
}

}  // namespace
}  // namespace marnoth::test::project_damage_test
