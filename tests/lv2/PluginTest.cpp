#include <gtest/gtest.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>

#include <random>

#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "hostkit/InstrumentOptions.h"
#include "hostkit/LiveRig.h"
#include "lv2/PluginHost.h"
#include "shellkit/listening/FilePreview.h"
#include "shellkit/text/InstrumentText.h"
#include "support/RealTimeGuard.h"
#include "support/WaveFile.h"

namespace marnoth::test::plugin_test {
namespace {

constexpr auto kRate = static_cast<std::uint32_t>(PluginHost::kRate);
constexpr std::int32_t kFramesOfTick = 25;  // at 120 beats per minute
constexpr std::int32_t kFrames = 60000;

/// A part of notes that are held to the end and struck again. Those that end would fade before their end
/// where that is known, as it is offline.
std::vector<SynthEvent> part() {
    std::vector<SynthEvent> notes;
    for (int i = 0; i < 40; ++i) {
        SynthEvent note;
        note.time = 37 * i;
        note.note = static_cast<std::uint8_t>(48 + i * 7 % kPads);
        note.velocity = 100;
        note.duration = 0xFFFFFFFF;
        notes.push_back(note);
    }
    return notes;
}

/// The part as it is rendered offline, interleaved. Sums depend on which outputs there are.
std::vector<float> rendered(int output, const std::vector<TempPath>& files, const std::vector<int>& outputs) {
    HostRig rig(createInstrument);
    std::vector<float> audio;
    EXPECT_EQ(rig.connect(kRate, 2, outputs), S_OK);
    EXPECT_EQ(rig.attach({.tempo = 120, .key = {}, .converterRate = kRate}), S_OK);
    layPads(rig.sampler(), files);
    EXPECT_EQ(setSteady(rig.sampler(), true), S_OK);
    rig.setTaker(output, [&](std::span<const float> samples, bool) {
        audio.insert(audio.end(), samples.begin(), samples.end());
    });
    EXPECT_EQ(rig.synth().StartPlayback(0), S_OK);
    const auto notes = part();
    EXPECT_EQ(rig.queueEvents(0, notes), S_OK);
    EXPECT_EQ(rig.render(kFrames), S_OK);
    return audio;
}

/// Plays the part from the start of the timeline in blocks of any length, as hosts send it.
class Player {
public:
    explicit Player(PluginHost& host) : host_(host) {
        for (const SynthEvent& note : part()) notes_.push_back({note.time * kFramesOfTick, note.note});
    }

    void block(std::int32_t frames) {
        host_.position(0, done_, 1, 120);
        for (; next_ < notes_.size() && notes_[next_].frame < done_ + frames; ++next_)
            host_.midi(notes_[next_].frame - done_, 0x90, notes_[next_].key, 100);
        host_.block(frames);
        done_ += frames;
    }
    template <class Next>
    void play(Next next) {
        while (done_ < kFrames) block(std::min(static_cast<std::int32_t>(next()), kFrames - done_));
    }

private:
    struct Note {
        std::int32_t frame;
        std::uint8_t key;
    };
    PluginHost& host_;
    std::vector<Note> notes_;
    std::size_t next_ = 0;
    std::int32_t done_ = 0;
};

void expectSame(const std::vector<float>& interleaved, const PluginHost& host, std::size_t output) {
    ASSERT_EQ(interleaved.size(), 2 * host.audio[2 * output].size());
    for (std::size_t i = 0; i < interleaved.size(); ++i)
        ASSERT_EQ(host.audio[2 * output + i % 2][i / 2], interleaved[i])
            << "output " << output << ", frame " << i / 2;
}

TEST(Plugin, PlaysWhatIsRenderedOfflineInBlocksOfAnyLength) {
    const auto files = padFiles(kRate);
    const std::vector<float> expected = rendered(0, files, {0});
    ASSERT_GT(*std::max_element(expected.begin(), expected.end()), 0.1f);
    std::mt19937 random(3);
    for (const int most : {64, 8192}) {
        PluginHost host;
        layPads(host.sampler(), files);
        Player(host).play([&] { return 1 + random() % static_cast<unsigned>(most); });
        expectSame(expected, host, 0);
    }
}

TEST(Plugin, WithAnOutputForEachPadItPlaysEachAsItIsRendered) {
    const auto files = padFiles(kRate);
    PluginHost host(1);
    layPads(host.sampler(), files);
    Player(host).play([] { return 777; });
    for (const int output : {0, 2, 3, 16})
        expectSame(rendered(output, files, everyOutput()), host, static_cast<std::size_t>(output));
}

TEST(Plugin, OutputsThatNobodyTakesChangeNothingForTheOthers) {
    const auto files = padFiles(kRate);
    PluginHost host(1);
    layPads(host.sampler(), files);
    for (std::size_t port = 0; port < 34; port += port % 5 == 0 ? 1 : 2) host.isConnected[port] = port == 4;
    Player(host).play([] { return 1001; });
    const std::vector<float> expected = rendered(2, files, everyOutput());
    for (std::size_t i = 0; i < expected.size(); i += 2) ASSERT_EQ(host.audio[4][i / 2], expected[i]) << i;
}

TEST(Plugin, AFileThatItsPageListensToIsHeardInTheMixAloneAndInNoState) {
    const TempPath file;
    WaveFile()
        .floats()
        .channels(2)
        .rate(kRate)
        .frames(300, [](auto, int side) { return 0.5 - side * 0.25; })
        .write(file.path());
    PluginHost host(1);
    host.block(64);
    FilePreview preview(host.plugin().listening());
    ASSERT_EQ(preview.play(utf8FromPath(file.path())), "");
    int offences = 0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(preview.isPlaying());
        host.prepare(100);
        RealTimeGuard guard;
        host.plugin().run(100);
        const RealTimeGuard::Offences made = guard.finish();
        offences += made.allocations + made.frees;
        host.clear();
    }
    EXPECT_EQ(offences, 0);
    EXPECT_FALSE(preview.isPlaying());
    for (std::size_t i = 64; i < 364; ++i) {
        ASSERT_EQ(host.audio[0][i], 0.5f) << i;
        ASSERT_EQ(host.audio[1][i], 0.25f) << i;
        ASSERT_EQ(host.audio[2][i], 0.0f) << i;
    }
    std::int32_t files = -1;
    EXPECT_EQ(host.sampler().GetBinFileCount(&files), S_OK);
    EXPECT_EQ(files, 0);
}

/// Rounds of a loop that are as long as the blocks but for some frames: the place is told behind the block in
/// which it changed.
class Rounds {
public:
    Rounds() {
        layPads(host.sampler(), files_);
        host.position(0, 960'000, 1, 120);
        host.block(256);
    }
    void jump() { host.position(0, 480'016, 1, 120); }
    /// What is heard from 20 ms behind the jump on, where the fades of before are over.
    std::vector<float> heard() {
        host.block(2000);
        return {host.audio[0].end() - 1000, host.audio[0].end()};
    }

    PluginHost host;

private:
    std::vector<TempPath> files_ = padFiles(kRate);
};

TEST(Plugin, ANoteThatBeganInTheBlockOfAJumpIsOneOfTheNewPlace) {
    Rounds late;
    late.host.midi(240, 0x90, 48, 100);
    late.host.block(256);
    late.jump();
    Rounds early;
    early.host.block(256);
    early.jump();
    early.host.midi(0, 0x90, 48, 100);
    const std::vector<float> heard = late.heard();
    EXPECT_EQ(heard, early.heard());
    EXPECT_GT(*std::max_element(heard.begin(), heard.end()), 0.05f);
    late.host.midi(0, 0x80, 48, 0);
    late.host.block(2000);
    EXPECT_EQ(late.host.audio[0].back(), 0.0f) << "its end ends it";
}

TEST(Plugin, NotesThatEndedOrBeganEarlierAreOverWithAJump) {
    Rounds ended;
    ended.host.midi(100, 0x90, 48, 100);
    ended.host.midi(240, 0x80, 48, 0);
    ended.host.block(256);
    ended.jump();
    Rounds old;
    old.host.midi(240, 0x90, 48, 100);
    old.host.block(256);
    old.host.block(256);
    old.jump();
    Rounds told;
    told.host.midi(240, 0x90, 48, 100);
    told.host.block(256);
    told.host.midi(0, 0x90, 48, 0);
    told.jump();
    Rounds silenced;
    silenced.host.midi(100, 0x90, 48, 100);
    silenced.host.midi(240, 0xB0, 123, 0);
    silenced.host.block(256);
    silenced.jump();
    for (Rounds* rounds : {&ended, &old, &told, &silenced})
        for (const float value : rounds->heard()) ASSERT_EQ(value, 0.0f);
}

TEST(Plugin, ANoteOnTheLastFrameOfABlockSoundsThere) {
    const auto files = padFiles(kRate);
    PluginHost early;
    PluginHost late;
    for (PluginHost* host : {&early, &late}) layPads(host->sampler(), files);
    early.midi(0, 0x90, 51, 100);
    early.block(500);
    late.midi(99, 0x90, 51, 100);
    late.block(100);
    late.block(500);
    for (std::size_t i = 0; i < 99; ++i) ASSERT_EQ(late.audio[1][i], 0.0f);
    for (std::size_t i = 0; i < 500; ++i) ASSERT_EQ(late.audio[1][99 + i], early.audio[1][i]);
    EXPECT_NE(early.audio[1][1], 0.0f);
}

TEST(Plugin, APositionInsideABlockHoldsFromItsFrame) {
    const auto files = padFiles(kRate);
    PluginHost whole;
    PluginHost cut;
    for (PluginHost* host : {&whole, &cut}) layPads(host->sampler(), files);
    whole.midi(0, 0x90, 48, 100);
    whole.position(300, 12000, 1, 100);
    whole.midi(301, 0x90, 49, 100);
    whole.block(1000);
    cut.midi(0, 0x90, 48, 100);
    cut.block(300);
    cut.position(0, 12000, 1, 100);
    cut.midi(1, 0x90, 49, 100);
    cut.block(700);
    EXPECT_EQ(whole.audio[0], cut.audio[0]);
    EXPECT_GT(*std::max_element(cut.audio[0].begin(), cut.audio[0].end()), 0.05f);
}

TEST(Plugin, ABlockOfNoFramesKeepsItsEvents) {
    const auto files = padFiles(kRate);
    PluginHost host;
    layPads(host.sampler(), files);
    host.midi(0, 0x90, 51, 100);
    host.block(0);
    host.block(100);
    EXPECT_NE(host.audio[1][50], 0.0f);
}

TEST(Plugin, ItSaysThatItHasNothingToSay) {
    PluginHost host;
    host.block(64);
    EXPECT_EQ(host.eventsOut().atom.type, host.world.urid(LV2_ATOM__Sequence));
    EXPECT_EQ(host.eventsOut().atom.size, sizeof(LV2_Atom_Sequence_Body));
}

TEST(Plugin, ActivatedAnewItIsSilentAndKeepsItsProject) {
    const auto files = padFiles(kRate);
    PluginHost host;
    layPads(host.sampler(), files);
    host.midi(0, 0x90, 51, 100);
    host.block(1000);
    host.activateAnew();
    host.block(1000);
    for (std::size_t i = 1000; i < 2000; ++i) ASSERT_EQ(host.audio[1][i], 0.0f);
    host.midi(0, 0x90, 51, 100);
    host.block(1000);
    EXPECT_NE(host.audio[1][2500], 0.0f);
}

TEST(Plugin, AtAnotherRateTheProjectSoundsAsLongAsBefore) {
    const auto files = padFiles(kRate);
    PluginHost host;
    layPads(host.sampler(), files);
    const float rate = 24000;
    const auto& options = host.extension<LV2_Options_Interface>(LV2_OPTIONS__interface);
    const std::array<LV2_Options_Option, 2> wish{
        {{LV2_OPTIONS_INSTANCE, 0, host.world.urid(LV2_PARAMETERS__sampleRate), sizeof rate,
          host.world.urid(LV2_ATOM__Float), &rate},
         {}}};
    EXPECT_EQ(options.set(host.instance(), wish.data()), LV2_OPTIONS_SUCCESS);
    host.activateAnew();
    host.midi(0, 0x90, 54, 100);
    host.block(30000);
    // A one-shot pad of a second.
    double late = 0;
    for (std::size_t i = 22000; i < 23000; ++i) late = std::max<double>(late, std::abs(host.audio[0][i]));
    EXPECT_GT(late, 0.1);
    for (std::size_t i = 25000; i < 30000; ++i) ASSERT_EQ(host.audio[0][i], 0.0f) << i;
}

TEST(Plugin, EventsThatArentWholeAreTakenAsFarAsTheyGo) {
    PluginHost host;
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        host.position(0, 100, 1, 120);
        host.midi(3, 0x90, 60, 100);
        host.position(5, 105, 1, 120);
        host.prepare(64);
        for (int i = 0; i < 3; ++i) host.eventBytes()[random() % 300] = static_cast<std::uint8_t>(random());
        auto& atom = *reinterpret_cast<LV2_Atom*>(host.eventBytes().data());
        atom.size = static_cast<std::uint32_t>(random() % 400);
        atom.type = host.world.urid(LV2_ATOM__Sequence);
        host.descriptor().run(host.instance(), 64);
        host.clear();
    }
    for (const float sample : host.audio[0]) ASSERT_EQ(sample, 0.0f) << "there is nothing to play";
}

TEST(Plugin, RunningTakesNoMemory) {
    const auto files = padFiles(kRate);
    PluginHost host(1);
    layPads(host.sampler(), files);
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i) {
        if (i % 7 == 0) host.position(0, 512 * i, i % 3 != 0, 100.0f + static_cast<float>(i % 50));
        for (int note = 0; note < 4; ++note)
            host.midi(note, note % 2 ? 0x80 : 0x90, static_cast<std::uint8_t>(48 + random() % 16), 100);
        host.prepare(512);
        RealTimeGuard guard;
        host.descriptor().run(host.instance(), 512);
        const auto offences = guard.finish();
        host.clear();
        ASSERT_EQ(offences.allocations, 0) << i;
        ASSERT_EQ(offences.frees, 0) << i;
    }
    EXPECT_GT(*std::max_element(host.audio[0].begin(), host.audio[0].end()), 0.1f);
}

}  // namespace
}  // namespace marnoth::test::plugin_test
