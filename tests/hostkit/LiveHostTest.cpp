#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>

#include "hostkit/InstrumentOptions.h"
#include "hostkit/LiveRig.h"
#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "hostkit/PlayingRig.h"
#include "hostkit/ToldSynth.h"
#include "platform/graph/Graph.h"

namespace marnoth::test::live_host_test {
namespace {

struct Played {
    std::int64_t frame;
    std::uint8_t status;
    std::uint8_t key;
};

/// Notes at random, of which none ends on the frame of its start and no two of a key end on the same one.
std::vector<Played> someNotes(std::int64_t frames, unsigned seed) {
    std::mt19937 random(seed);
    const auto any = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    std::vector<Played> notes;
    for (std::int64_t frame = 0; frame < frames; frame += any(700)) {
        const auto key = static_cast<std::uint8_t>(48 + any(16));
        notes.push_back({frame, 0x90, key});
        notes.push_back({frame + 1 + any(3000), 0x80, key});
    }
    const auto isEarlier = [](const Played& a, const Played& b) { return a.frame < b.frame; };
    std::stable_sort(notes.begin(), notes.end(), isEarlier);
    return notes;
}

/// Keeps only notes for which the instrument's own pairing gives what a player means: one note of a key at a
/// time, its note-off behind it.
std::vector<Played> oneNoteOfAKeyAtATime(const std::vector<Played>& notes) {
    std::vector<Played> kept;
    std::set<int> held;
    for (const Played& note : notes) {
        const bool isOn = note.status == 0x90;
        if (isOn ? !held.insert(note.key).second : held.erase(note.key) == 0) continue;
        kept.push_back(note);
    }
    return kept;
}

/// A rig that renders offline in the steady mode, cut at the edges of blocks and at every note.
struct CutRig {
    explicit CutRig(double tempo = 120.0) : it(everyOutput()) {
        it.rig.detach();
        EXPECT_EQ(it.rig.attach({.tempo = tempo, .key = {}}), S_OK);
        EXPECT_EQ(setSteady(it.rig.sampler(), true), S_OK);
    }
    /// Changes the tempo when that frame, which is an edge of blocks, is next.
    void changeTempoAt(std::int64_t frame, std::int32_t tick, double tempo) {
        change = [=, this](std::int64_t now) {
            if (now == frame) it.rig.addTempo(tick, tempo);
        };
    }
    void play(const std::vector<Played>& notes, std::int64_t frames, std::int64_t block) {
        std::int64_t frame = 0;
        auto next = notes.begin();
        while (frame < frames) {
            change(frame);
            std::vector<RawMidiEvent> due;
            for (; next != notes.end() && next->frame == frame; ++next)
                due.push_back({0, next->status, next->key, 100, 0});
            EXPECT_EQ(it.rig.queueRawInput(0, due), S_OK);
            std::int64_t end = std::min(frames, (frame / block + 1) * block);
            if (next != notes.end()) end = std::min(end, next->frame);
            it.render(end - frame);
            frame = end;
        }
    }
    PlayingRig it;
    std::function<void(std::int64_t)> change = [](std::int64_t) {};
};

void playLive(LiveRig& live, const std::vector<Played>& notes, std::int64_t frames, std::int32_t block) {
    auto next = notes.begin();
    for (std::int64_t frame = 0; frame < frames; frame += block) {
        const auto length = static_cast<std::int32_t>(std::min<std::int64_t>(block, frames - frame));
        for (; next != notes.end() && next->frame < frame + length; ++next)
            live.message(static_cast<std::int32_t>(next->frame - frame), next->status, next->key, 100);
        live.block(length);
    }
}

void expectSameAudio(const LiveRig& live, const CutRig& cut) {
    for (int output = 0; output < kOutputPins; ++output) {
        for (std::size_t channel = 0; channel < 2; ++channel) {
            const std::vector<float>& played = live.audio[2 * static_cast<std::size_t>(output) + channel];
            const std::vector<float> expected = cut.it.channelOf(output, channel);
            ASSERT_EQ(played.size(), expected.size());
            const auto first = std::mismatch(played.begin(), played.end(), expected.begin()).first;
            ASSERT_EQ(first, played.end()) << "output " << output << " frame " << first - played.begin();
        }
    }
}

constexpr std::int64_t kFrames = 3 * 44100;

class InBlocksOf : public testing::TestWithParam<int> {};

TEST_P(InBlocksOf, StandingItSoundsAsARigThatIsCutAtTheSameFrames) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    const std::vector<Played> notes = oneNoteOfAKeyAtATime(someNotes(kFrames - 4000, 1));
    LiveRig live;
    layPads(live.host.sampler(), files);
    playLive(live, notes, kFrames, GetParam());
    CutRig cut;
    layPads(cut.it.rig.sampler(), files);
    cut.play(notes, kFrames, GetParam());
    EXPECT_GT(live.peakFrom(0), 0.3f);
    expectSameAudio(live, cut);
}

TEST_P(InBlocksOf, PlayingItSoundsAsARigThatIsCutAtTheSameFrames) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    const std::vector<Played> notes = oneNoteOfAKeyAtATime(someNotes(kFrames - 4000, 2));
    LiveRig live;
    layPads(live.host.sampler(), files);
    live.host.setTempo(100.0);
    live.host.locate(960.0);
    live.host.play();
    playLive(live, notes, kFrames, GetParam());
    CutRig cut(100.0);
    layPads(cut.it.rig.sampler(), files);
    cut.it.start(960);
    cut.it.rig.setDiscontinuity(0.6);
    cut.play(notes, kFrames, GetParam());
    EXPECT_GT(live.peakFrom(0), 0.3f);
    expectSameAudio(live, cut);
}

INSTANTIATE_TEST_SUITE_P(LiveHost, InBlocksOf, testing::Values(64, 147, 512));

TEST(LiveHost, FollowsTheTempoOfItsCallerAsARigFollowsItsMap) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    constexpr std::int32_t kBlock = 441;  // 19.2 ticks at 120
    const std::vector<Played> notes = oneNoteOfAKeyAtATime(someNotes(kFrames - 4000, 3));
    LiveRig live;
    layPads(live.host.sampler(), files);
    auto next = notes.begin();
    for (std::int64_t frame = 0; frame < kFrames; frame += kBlock) {
        for (; next != notes.end() && next->frame < frame + kBlock; ++next)
            live.message(static_cast<std::int32_t>(next->frame - frame), next->status, next->key, 100);
        // 1920 ticks in the first second, then 1600 a second.
        const double tick = frame < 44100 ? frame / 44100.0 * 1920 : 1920 + (frame - 44100) / 44100.0 * 1600;
        live.block(kBlock, {true, frame, tick, frame < 44100 ? 120.0 : 100.0});
    }
    CutRig cut;
    layPads(cut.it.rig.sampler(), files);
    cut.changeTempoAt(44100, 1920, 100.0);  // a clock doesn't know what will come
    cut.it.start(0);
    cut.play(notes, kFrames, kBlock);
    expectSameAudio(live, cut);
}

/// A mix of one pad that plays a ramp of 8 s: frame n of it has the value n / 2^20.
struct RampRig : LiveRig {
    explicit RampRig(bool oneShot = true) : LiveRig({0}) {
        std::int32_t bin = -1;
        std::uint32_t status = 99;
        EXPECT_EQ(host.sampler().LoadFileToPad(0, "ramp", file.c_str(), &bin, &status), S_OK);
        host.sampler().SetPadOneShot(0, oneShot);
        const KeyMapRecord key{0, 60, 60, 60, 0, 127};
        host.sampler().SetKeyMapEntry(&key);
    }
    /// The frame of the pad that is heard at a frame of the mix.
    std::int64_t heardAt(std::size_t frame) const {
        return static_cast<std::int64_t>(std::round(audio[0][frame] * (1 << 20)));
    }
    const TempPath file =
        WaveFile()
            .channels(2)
            .floats()
            .frames(8 * 44100, [](std::int64_t i, int) { return static_cast<double>(i) / (1 << 20); })
            .writeTemp();
};

TEST(LiveHost, ANoteSoundsOnItsFrame) {
    for (std::int32_t frame : {0, 1, 17, 100, 511}) {
        RampRig rig;
        rig.on(frame, 60);
        rig.block(512);
        rig.block(512);
        for (int i = 0; i < frame; ++i) ASSERT_EQ(rig.audio[0][i], 0.0f) << frame;
        for (int i = 60; i < 300; ++i) ASSERT_EQ(rig.heardAt(frame + i), i) << frame;
    }
}

TEST(LiveHost, ATempoThatChangesMovesNoPadThatIsntSynced) {
    RampRig rig;
    rig.on(0, 60);
    std::int64_t frame = 1'000'000;
    for (int block = 0; block < 600; ++block, frame += 512)
        rig.block(512, {true, frame, {}, 120.0 - (block / 37) * 7.3 + block % 5});
    for (std::size_t i = 60; i < rig.audio[0].size(); ++i) ASSERT_NEAR(rig.heardAt(i), i, 1) << i;
}

TEST(LiveHost, StandingANewTempoTakesASyncedPadAlongFromWhereItIs) {
    // After ten seconds a hundredth of a beat per minute is 37 frames if it counts from the start, and two
    // frames half a second later if it counts from the change.
    const std::vector<TempPath> files = padFiles(44100);
    const auto play = [&](bool change) {
        LiveRig rig;
        layPads(rig.host.sampler(), files);
        rig.on(0, 48);
        for (int block = 0; block < 1050; ++block) {
            if (change && block == 1000) rig.host.setTempo(120.01);
            rig.block(441);
        }
        return rig.audio[0];
    };
    const std::vector<float> steady = play(false), changed = play(true);
    double apart = 0;
    const std::size_t begin = 1000 * 441;
    for (std::size_t i = begin; i < steady.size(); ++i) apart += std::abs(steady[i] - changed[i]);
    EXPECT_LT(apart / static_cast<double>(steady.size() - begin), 0.01) << "two frames of the wave";
}

/// The frame of the ramp at which a pad was, `frame` frames after it was cut there, under a fade of 20 ms.
double fading(double at, int frame) {
    return frame < 882 ? (at + frame) * (882 - frame) / 882 : 0;
}

TEST(LiveHost, StartsJumpsAndStopsEndTheSoundBeforeTheMessagesOfTheirFrame) {
    RampRig rig;
    rig.on(0, 60);
    rig.block(512);
    rig.on(0, 60);
    rig.block(512, {true, 88200, {}, {}});
    for (int i = 60; i < 512; ++i) ASSERT_NEAR(rig.heardAt(512 + i), i + fading(512, i), 1) << "start";
    rig.on(100, 60);
    rig.block(512, {true, 0, {}, {}});
    const auto former = [](int i) { return fading(512, i + 512) + fading(512, i); };
    for (int i = 0; i < 100; ++i) ASSERT_NEAR(rig.heardAt(1024 + i), former(i), 1) << "jump";
    for (int i = 160; i < 512; ++i) ASSERT_NEAR(rig.heardAt(1024 + i), i - 100 + former(i), 1);
    for (int block = 0; block < 3; ++block) rig.block(512, {false, 512, {}, {}});
    for (int i = 400; i < 882; ++i) ASSERT_NEAR(rig.heardAt(1536 + i), fading(412, i), 1) << "stop";
    EXPECT_EQ(rig.peakFrom(1536 + 882), 0.0f);
}

TEST(LiveHost, ASyncedPadFadesOutAtTheTempoAndThePlaceThatItHad) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    constexpr std::int32_t kBlock = 441;
    const auto play = [&](bool stops) {
        LiveRig rig({0});
        layPads(rig.host.sampler(), files);
        rig.on(0, 48);
        for (std::int64_t block = 0; block < 40; ++block) {
            const bool ends = stops && block >= 36;
            rig.block(kBlock, {!ends, 441'000 + block * kBlock, {}, ends ? 77.0 : 150.0});
        }
        return rig.audio[0];
    };
    const std::vector<float> on = play(false), stopped = play(true);
    for (std::size_t i = 0; i < 882; ++i) {
        const std::size_t frame = 36 * kBlock + i;
        ASSERT_NEAR(stopped[frame], on[frame] * (1 - static_cast<double>(i) / 882), 1e-6) << i;
    }
}

TEST(LiveHost, AClockThatIsOneFrameOffGoesOn) {
    RampRig rig;
    rig.on(0, 60);
    rig.block(512, {true, 0, {}, {}});
    rig.block(512, {true, 511, {}, {}});
    rig.block(512, {true, 1024, {}, {}});
    for (int i = 60; i < 1536; ++i) ASSERT_EQ(rig.heardAt(i), i);
}

TEST(LiveHost, AOneShotThatEndsOnTheFrameOfItsStartSounds) {
    RampRig rig;
    rig.on(100, 60);
    rig.off(100, 60);
    rig.block(512);
    for (int i = 60; i < 300; ++i) ASSERT_NEAR(rig.heardAt(100 + i), i, 1);
}

TEST(LiveHost, MessagesBehindABlockWaitForTheirFrame) {
    RampRig rig;
    rig.on(700, 60);
    rig.block(512);
    rig.block(0);
    rig.block(1);
    rig.block(511);
    EXPECT_EQ(rig.audio[0].size(), 1024u);
    for (int i = 0; i < 700; ++i) ASSERT_EQ(rig.audio[0][i], 0.0f);
    for (int i = 60; i < 324; ++i) ASSERT_EQ(rig.heardAt(700 + i), i);
}

TEST(LiveHost, ABlockLongerThanTheMostComesInPieces) {
    RampRig rig;
    rig.on(600, 60);
    rig.block(2000);
    for (int i = 60; i < 1400; ++i) ASSERT_EQ(rig.heardAt(600 + i), i);
}

TEST(LiveHost, ControllersAndThePanicEndWhatSounds) {
    for (const bool oneShot : {false, true}) {
        for (const int controller : {120, 121, 123}) {
            RampRig rig(oneShot);
            rig.on(0, 60);
            rig.block(512);
            rig.message(10, 0xB0, controller, 0);
            for (int block = 0; block < 4; ++block) rig.block(512);
            EXPECT_GT(rig.audio[0][511], 0.0f);
            // A one-shot plays on behind a note-off by its nature.
            const bool ends = !oneShot || controller == 120;
            EXPECT_EQ(rig.peakFrom(512 + 1024) == 0.0f, ends) << controller << oneShot;
        }
        RampRig rig(oneShot);
        rig.on(0, 60);
        rig.block(512);
        rig.host.panic();
        for (int block = 0; block < 4; ++block) rig.block(512);
        EXPECT_EQ(rig.peakFrom(512 + 1024), 0.0f);
        rig.on(0, 60);
        rig.block(512);
        EXPECT_GT(rig.audio[0].back(), 0.0f) << "and what comes behind it sounds";
    }
}

TEST(LiveHost, ThePanicEndsWhatThePagePlaysToo) {
    RampRig rig(true);
    rig.host.sampler().AuditionPad(0, -1);
    rig.block(512);
    EXPECT_GT(rig.audio[0].back(), 0.0f);
    rig.host.panic();
    for (int block = 0; block < 4; ++block) rig.block(512);
    EXPECT_EQ(rig.peakFrom(512 + 1024), 0.0f);
    rig.host.sampler().AuditionBinFile(0, -1);
    rig.block(512);
    EXPECT_GT(rig.audio[0].back(), 0.0f);
    rig.host.panic();
    rig.block(512);
    rig.block(512);
    EXPECT_EQ(rig.audio[0].back(), 0.0f);
}

TEST(LiveHost, CommandsOfOtherThreadsPlay) {
    RampRig rig(false);
    EXPECT_TRUE(rig.host.send(0x90, 60, 100));
    rig.block(512);
    EXPECT_EQ(rig.heardAt(300), 300);
    EXPECT_FALSE(rig.host.isPlaying());
    EXPECT_TRUE(rig.host.send(0x80, 60, 0));
    for (int block = 0; block < 4; ++block) rig.block(512);
    EXPECT_EQ(rig.peakFrom(1536), 0.0f);
    EXPECT_TRUE(rig.host.locate(960.0));
    EXPECT_TRUE(rig.host.setTempo(60.0));
    EXPECT_TRUE(rig.host.play());
    for (int block = 0; block < 100; ++block) rig.block(441);
    EXPECT_TRUE(rig.host.isPlaying());
    EXPECT_NEAR(rig.host.tick(), 1920.0, 1e-6);
    EXPECT_TRUE(rig.host.stop());
    rig.block(441);
    EXPECT_FALSE(rig.host.isPlaying());
    EXPECT_NEAR(rig.host.tick(), 1920.0, 1e-6);
}

TEST(LiveHost, TheKeyOfTheProjectMayChange) {
    const std::vector<TempPath> files = padFiles(44100);
    const auto play = [&](std::optional<std::uint32_t> key, std::uint32_t later) {
        LiveRig rig({0});
        layPads(rig.host.sampler(), files);
        rig.host.sampler().SetPadFollowKey(0, 1);
        // The roots of loops are three above a key that is counted from A.
        rig.host.sampler().SetPadRootNote(0, 6);
        EXPECT_TRUE(rig.host.setKey(key));
        rig.on(0, 48);
        for (int block = 0; block < 100; ++block) {
            if (block == 20) rig.host.setKey(later);
            rig.block(441);
        }
        return rig.audio[0];
    };
    const auto plain = play({}, 3), third = play(3, 3), fifth = play(7, 7), change = play(3, 7);
    EXPECT_EQ(plain, third) << "without a key it plays as in its own";
    EXPECT_NE(third, fifth);
    // The key is chosen at frame 8820. Grains are sixteenths, and each keeps the key that it began with.
    EXPECT_TRUE(std::equal(third.begin(), third.begin() + 11025, change.begin()));
    EXPECT_TRUE(std::equal(fifth.begin() + 11025, fifth.end(), change.begin() + 11025));
    LiveRig rig;
    EXPECT_FALSE(rig.host.setKey(12));
}

TEST(LiveHost, OutputsThatAreNullOrNotRenderedDisturbNothing) {
    const std::vector<TempPath> files = padFiles(44100);
    LiveRig rig({0, 2});
    layPads(rig.host.sampler(), files);
    rig.on(0, 49);
    rig.block(512);
    EXPECT_GT(*std::max_element(rig.audio[4].begin(), rig.audio[4].end()), 0.1f);
    for (float value : rig.audio[6]) ASSERT_EQ(value, 0.0f) << "channel 3 isn't rendered";
    std::vector<float> right(512, 9.0f);
    std::array<float*, 34> pointers{};
    pointers[5] = right.data();
    EXPECT_EQ(rig.host.process(512, pointers), S_OK);
    EXPECT_GT(*std::max_element(right.begin(), right.end()), 0.1f);
    EXPECT_LT(*std::max_element(right.begin(), right.end()), 9.0f);
    EXPECT_EQ(rig.host.process(512, OutputPointers{}), S_OK);
}

TEST(LiveHost, AStateSavedInMemorySoundsTheSameInAnotherHost) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    LiveRig first;
    layPads(first.host.sampler(), files);
    RefPtr<MemoryStream> state = makeObject<MemoryStream>();
    EXPECT_EQ(first.host.save(*state.get()), S_OK);
    RefPtr<MemoryStream> copy = makeObject<MemoryStream>(state->bytes());
    LiveRig second;
    EXPECT_EQ(second.host.load(*copy.get()), S_OK);
    for (LiveRig* rig : {&first, &second}) {
        for (int pad = 0; pad < kPads; ++pad) rig->on(pad * 20, 48 + pad);
        for (int block = 0; block < 20; ++block) rig->block(512);
    }
    EXPECT_GT(first.peakFrom(0), 0.3f);
    EXPECT_EQ(first.audio, second.audio);
}

using Told = std::vector<std::string>;

TEST(LiveHost, TellsTheInstrumentEachChangeOfTheTransportOnce) {
    LiveRig rig({0}, ToldSynth::make);
    Told& told = ToldSynth::last->told;
    told.clear();
    rig.block(441, {false, 0, {}, {}});
    rig.block(441, {true, 22050, 960.4, {}});
    rig.block(441, {true, 22491, {}, {}});
    rig.block(441, {true, 22932, {}, 90.0});
    rig.block(441, {true, 0, -3.0, {}});
    rig.block(441, {false, 0, {}, {}});
    rig.block(441, {false, 0, {}, {}});
    EXPECT_EQ(told, (Told{"stop", "start 960", "stop", "start -3", "stop"}));
}

TEST(LiveHost, BehindAFailureNothingSoundsAndPlayingStartsAnew) {
    const std::vector<TempPath> files = padFiles(LiveRig::kRate);
    LiveRig rig({0}, ToldSynth::make);
    layPads(rig.host.sampler(), files);
    rig.host.locate(960.0);
    rig.host.play();
    rig.on(0, 52);
    for (int block = 0; block < 10; ++block) rig.block(441);
    ASSERT_NE(rig.audio[0].back(), 0.0f);

    ToldSynth::last->told.clear();
    ToldSynth::last->messages = E_OUTOFMEMORY;
    rig.on(200, 53);
    std::vector<float> left(441, 9.0f);
    std::array<float*, 1> pointers{left.data()};
    EXPECT_EQ(rig.host.process(441, pointers), E_OUTOFMEMORY);
    EXPECT_NE(left[199], 0.0f);
    for (std::size_t i = 200; i < left.size(); ++i) ASSERT_EQ(left[i], 0.0f) << i;

    ToldSynth::last->messages = S_OK;
    const std::size_t begin = rig.audio[0].size();
    rig.off(100, 52);
    rig.block(441);
    EXPECT_EQ(rig.peakFrom(begin), 0.0f);
    // 960 ticks and 11 blocks of 19.2 each.
    EXPECT_EQ(ToldSynth::last->told, (Told{"messages 1", "stop", "stop", "start 1171"}));
    rig.on(0, 52);
    rig.block(441);
    EXPECT_GT(rig.peakFrom(begin), 0.0f);
}

TEST(LiveHost, RefusesWhatCanNotBe) {
    LiveHost host(createInstrument);
    std::array<float, 64> left;
    left.fill(9.0f);
    std::array<float*, 1> pointers{left.data()};
    EXPECT_EQ(host.process(64, pointers), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(left[63], 0.0f);
    EXPECT_EQ(host.process(-1, pointers), E_INVALIDARG);
    const std::array<int, 1> none{17};
    EXPECT_EQ(host.connect({.rate = 0}), E_INVALIDARG);
    EXPECT_EQ(host.connect({.rate = 10'000'001}), E_INVALIDARG);
    EXPECT_EQ(host.connect({.mostFrames = 0}), E_INVALIDARG);
    EXPECT_EQ(host.connect({.outputs = none}), E_INVALIDARG);
    EXPECT_EQ(host.connect({}), S_OK) << "nothing is heard, but time goes on";
    EXPECT_EQ(host.process(64, pointers), S_OK);
}

TEST(LiveHost, ConnectsAnewAtAnotherRateAndGoesOnPlayingFromItsTick) {
    LiveRig rig;
    rig.host.play();
    for (int block = 0; block < 100; ++block) rig.block(441);
    EXPECT_NEAR(rig.host.tick(), 1920.0, 1e-6);
    rig.connect({0, 1}, 48000);
    for (int block = 0; block < 100; ++block) rig.block(480);
    EXPECT_TRUE(rig.host.isPlaying());
    EXPECT_NEAR(rig.host.tick(), 3840.0, 1e-6);
    const std::vector<TempPath> files = padFiles(48000);
    layPads(rig.host.sampler(), files);
    rig.on(100, 50);
    rig.block(512);
    const std::size_t begin = rig.audio[0].size() - 512;
    for (std::size_t i = 0; i < 100; ++i) ASSERT_EQ(rig.audio[0][begin + i], 0.0f);
    EXPECT_GT(rig.peakFrom(begin), 0.1f);
}

}  // namespace
}  // namespace marnoth::test::live_host_test
