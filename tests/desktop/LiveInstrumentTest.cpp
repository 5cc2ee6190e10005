#include <gtest/gtest.h>

#include <cmath>

#include "cli/CliRun.h"
#include "shellkit/MidiBytes.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/media/WaveFrames.h"
#include "shells/desktop/playing/LiveInstrument.h"

namespace marnoth::test::live_instrument_test {
namespace {

constexpr std::uint32_t kRate = 44100;

/// Two loops and a song over them: pads that are switched on and off, and a change of tempo in its third bar.
class Groove {
public:
    Groove() {
        for (const int loop : {0, 1})
            WaveFile()
                .floats()
                .channels(2)
                .rate(kRate)
                .frames(kRate, [=](auto i, int c) { return 0.3 * std::sin(0.01 * (loop + 1) * i + c); })
                .acid({.beats = 2})
                .write(folder_ / names_[static_cast<std::size_t>(loop)]);
        // 100, from beat 8 on 150; the first pad from beat 0 on, the second from beat 2 to beat 6.
        WaveFile::writeBytes(
            folder_ / "a.mid",
            midi(24, {0,    0xFF, 0x51, 3,  9,    0x27, 0xC0, 0,  0x90, 60,   90,   12,   0x80, 60,
                      0,    36,   0x90, 62, 90,   12,   0x80, 62, 0,    84,   0x90, 62,   90,   12,
                      0x80, 62,   0,    36, 0xFF, 0x51, 3,    6,  0x1A, 0x80, 96,   0x90, 60,   90,
                      12,   0x80, 60,   0,  72,   0x90, 60,   1,  12,   0x80, 60,   0}));
    }

    std::string song() const { return folder_.name("a.mid"); }
    std::string loop(std::size_t at) const { return folder_.name(names_[at]); }

    std::vector<float> rendered() const {
        const CliRun run =
            marnoth({"render", "--pad", "1=" + loop(0), "--pad", "2=" + loop(1), "--midi", song(), "--rate",
                     std::to_string(kRate), "--out", folder_.name("out.wav")});
        EXPECT_EQ(run.status, 0) << run.err;
        return readWaveFrames(folder_ / "out.wav").samples;
    }

private:
    TempFolder folder_;
    std::array<std::string, 2> names_{"a.wav", "b.wav"};
};

/// A program without an audio system, whose mix is kept.
class Player {
public:
    explicit Player(const Groove& groove, std::int32_t frames = 256) : frames_(frames) {
        EXPECT_TRUE(live.prepare(kRate, frames));
        loadLoopFile(live.sampler(), 0, groove.loop(0));
        loadLoopFile(live.sampler(), 1, groove.loop(1));
        live.setSong(std::make_unique<const Song>(readSong(groove.song())));
    }

    void render(std::int32_t frames) {
        for (; frames > 0; frames -= frames_) block(std::min(frames, frames_));
    }
    double level(std::size_t from, std::size_t to) const {
        double most = 0;
        for (std::size_t i = 2 * from; i < 2 * to; ++i) most = std::max<double>(most, std::abs(mix[i]));
        return most;
    }

    LiveInstrument live;
    std::vector<float> mix;  ///< interleaved

private:
    void block(std::int32_t frames) {
        const auto count = static_cast<std::size_t>(frames);
        std::vector<float> left(count);
        std::vector<float> right(count);
        const std::array<float*, 2> outputs{left.data(), right.data()};
        live.render(frames, outputs);
        for (std::size_t frame = 0; frame < count; ++frame)
            mix.insert(mix.end(), {left[frame], right[frame]});
    }

    std::int32_t frames_;
};

TEST(LiveInstrument, PlaysASongAsItIsRenderedOfflineInBlocksOfAnyLength) {
    const Groove groove;
    const std::vector<float> expected = groove.rendered();
    ASSERT_GT(expected.size(), 2u * kRate);
    for (const std::int32_t frames : {64, 441, 1024}) {
        Player player(groove, frames);
        player.live.play();
        player.render(static_cast<std::int32_t>(expected.size() / 2));
        // The file ends in a fade that the player doesn't know of.
        const std::size_t compared = expected.size() - 2 * 2000;
        double most = 0;
        for (std::size_t i = 0; i < compared; ++i)
            most = std::max<double>(most, std::abs(player.mix[i] - expected[i]));
        EXPECT_LE(most, 1e-6) << frames;
        EXPECT_GT(player.level(0, compared / 2), 0.2) << "something plays";
    }
}

TEST(LiveInstrument, StandsUntilItIsPlayedAndStopsWithAFade) {
    const Groove groove;
    Player player(groove);
    player.render(4096);
    EXPECT_EQ(player.level(0, 4096), 0.0);
    EXPECT_FALSE(player.live.isPlaying());
    player.live.play();
    player.render(4096);
    EXPECT_TRUE(player.live.isPlaying());
    player.live.stop();
    player.render(4096);
    EXPECT_GT(player.level(8192, 8192 + 100), 0.01) << "it fades over 20 ms";
    EXPECT_EQ(player.level(8192 + 883, 8192 + 4096), 0.0);
}

TEST(LiveInstrument, TicksGoByTheTempo) {
    const Groove groove;
    Player player(groove);
    player.live.play();
    player.render(kRate);
    // A second at 100 beats per minute.
    EXPECT_NEAR(player.live.tick(), 960 * 100 / 60.0, 1e-6);
    EXPECT_EQ(player.live.tempo(), 100.0) << "the song's";
    player.live.setTempo(60);
    player.render(kRate);
    EXPECT_NEAR(player.live.tick(), 960 * 160 / 60.0, 1e-6) << "the user's holds";
}

TEST(LiveInstrument, TheSongsNextChangeOfTempoTakesOver) {
    const Groove groove;
    Player player(groove);
    player.live.play();
    player.live.setTempo(200);
    player.render(256);
    player.live.locate(960 * 7.5);
    player.render(kRate);
    EXPECT_EQ(player.live.tempo(), 150.0);
    // Half a beat at the song's tempo before the change, the rest of the second at the one behind.
    EXPECT_NEAR(player.live.tick(), 960 * (8 + (1 - 0.5 * 60 / 100) * 150 / 60), 0.05);
}

TEST(LiveInstrument, WithoutItsTempoASongGoesByTheUsers) {
    const Groove groove;
    Player player(groove);
    player.live.followSongTempo(false);
    player.live.setTempo(200);
    player.live.play();
    player.render(6 * kRate);
    EXPECT_EQ(player.live.tempo(), 200.0);
    EXPECT_NEAR(player.live.tick(), 960 * 20, 1e-3);
}

TEST(LiveInstrument, ALoopGoesBackToTheStartOnItsFrame) {
    const Groove groove;
    Player player(groove, 1000);
    player.live.followSongTempo(false);
    player.live.setTempo(120);
    player.live.setLoop(1);
    player.live.play();
    player.render(2 * kRate + 500);
    EXPECT_NEAR(player.live.tick(), 500 * 960 * 2.0 / kRate, 1e-6);
    player.live.setLoop(0);
    player.render(2 * kRate);
    EXPECT_NEAR(player.live.tick(), (500 + 2 * kRate) * 960 * 2.0 / kRate, 1e-6);
}

TEST(LiveInstrument, ALoopPlaysItsSongAgain) {
    const Groove groove;
    Player player(groove);
    player.live.followSongTempo(false);
    player.live.setTempo(120);
    player.live.setLoop(1);
    player.live.play();
    player.render(4 * kRate);
    // Behind the jump's fade the second turn is the first.
    for (std::size_t i = 2 * 2000; i < 2 * 20000; ++i)
        ASSERT_NEAR(player.mix[i], player.mix[i + 4 * kRate], 1e-6) << i;
}

TEST(LiveInstrument, AnotherSongEndsTheNotesOfTheOneBefore) {
    const Groove groove;
    Player player(groove);
    player.live.play();
    player.render(8192);
    player.live.setSong(nullptr);
    player.render(8192);
    EXPECT_EQ(player.level(8192 + 1000, 16384), 0.0);
    EXPECT_TRUE(player.live.isPlaying());
}

TEST(LiveInstrument, SongsMayFollowEachOtherFasterThanBlocks) {
    const Groove groove;
    Player player(groove);
    for (int round = 0; round < 5; ++round) {
        for (int song = 0; song < 3; ++song)
            player.live.setSong(std::make_unique<const Song>(readSong(groove.song())));
        player.render(512);
    }
    player.live.locate(0);
    player.live.play();
    player.render(8192);
    EXPECT_GT(player.level(5 * 512, 5 * 512 + 8192), 0.1) << "the last one plays";
}

TEST(LiveInstrument, AnotherRateKeepsTheProject) {
    const Groove groove;
    Player player(groove);
    player.live.sampler().SetPadVolume(1, 0.25f);
    ASSERT_TRUE(player.live.prepare(48000, 512));
    EXPECT_EQ(player.live.rate(), 48000u);
    std::int32_t files = 0;
    player.live.sampler().GetBinFileCount(&files);
    EXPECT_EQ(files, 2);
    std::int32_t grains = 0;
    player.live.sampler().GetGrainCount(kPadLoop, 0, &grains);
    EXPECT_EQ(grains, 8) << "two beats of four";
    float volume = 0;
    player.live.sampler().GetPadVolume(1, &volume);
    EXPECT_EQ(volume, 0.25f);
}

TEST(LiveInstrument, KeysAndMessagesPlayPadsWhileTheTransportStands) {
    const Groove groove;
    Player player(groove);
    player.live.note(60, true);
    player.render(4096);
    EXPECT_GT(player.level(1000, 4096), 0.1);
    player.live.panic();
    player.render(4096);
    EXPECT_EQ(player.level(4096 + 1000, 8192), 0.0);
    player.live.midi(100, 0x90, 62, 90);
    player.render(4096);
    EXPECT_EQ(player.level(8192, 8192 + 100), 0.0) << "on its frame";
    EXPECT_GT(player.level(8192 + 100, 8192 + 4096), 0.1);
    EXPECT_EQ(player.live.messages(), 1u);
}

TEST(LiveInstrument, TheMetronomeIsHeardButNotRecorded) {
    const Groove groove;
    const TempFolder folder;
    Player player(groove);
    player.live.setSong(nullptr);
    player.live.setMetronome(true);
    player.live.recorder().start(folder.name("take.wav"), kRate);
    player.live.play();
    player.render(kRate);
    EXPECT_GT(player.level(0, kRate), 0.15);
    EXPECT_EQ(player.live.recorder().stop(), "");
    const WaveFrames take = readWaveFrames(folder / "take.wav");
    EXPECT_EQ(take.samples.size(), 2u * kRate);
    for (const float sample : take.samples) ASSERT_EQ(sample, 0.0f);
}

TEST(LiveInstrument, OfABlockThatFreewheelsATakeGetsAllAndNobodyTakesTheTime) {
    constexpr std::int32_t kLong = 400'000;
    const Groove groove;
    const TempFolder folder;
    Player player(groove, kLong);
    player.live.recorder().start(folder.name("take.wav"), kRate);
    player.live.freewheel();
    player.render(kLong);
    EXPECT_EQ(player.live.recorder().stop(), "");
    EXPECT_EQ(readWaveFrames(folder / "take.wav").samples.size(), 2u * kLong);
    EXPECT_EQ(player.live.blockTimes().blocks(), 0u);
    player.render(1);
    EXPECT_EQ(player.live.blockTimes().blocks(), 1u);
}

/// Blocks of 441 frames along with a clock that another program moves.
class Follower {
public:
    explicit Follower(const Groove& groove) : player(groove, kBlock) {}
    void block(LiveTransport told) {
        player.live.follow(told);
        player.render(kBlock);
    }
    void roll(std::int64_t from, int blocks) {
        for (int i = 0; i < blocks; ++i)
            block({.playing = true, .frame = from + i * kBlock, .tick = {}, .tempo = {}});
    }
    double tick() const { return player.live.tick(); }

    static constexpr std::int32_t kBlock = 441;  ///< a hundredth of a second
    Player player;
};

TEST(LiveInstrument, AnothersTransportStartsStopsAndMovesIt) {
    const Groove groove;
    Follower it(groove);
    it.player.live.followSongTempo(false);
    it.player.live.setTempo(120);
    it.block({.playing = false, .frame = kRate, .tick = {}, .tempo = {}});
    EXPECT_NEAR(it.tick(), 960 * 2, 1e-6) << "it stands where the other does: a second is two beats";
    EXPECT_FALSE(it.player.live.isPlaying());
    it.roll(kRate, 100);
    EXPECT_TRUE(it.player.live.isPlaying());
    EXPECT_NEAR(it.tick(), 960 * 4, 1e-6);
    it.roll(10 * kRate, 1);
    EXPECT_NEAR(it.tick(), 960 * 20.02, 1e-6);
    it.block({.playing = false, .frame = 10 * kRate + 441, .tick = {}, .tempo = {}});
    EXPECT_FALSE(it.player.live.isPlaying());
    EXPECT_NEAR(it.tick(), 960 * 20.02, 1e-6);
    it.player.live.play();
    it.player.render(441);
    EXPECT_TRUE(it.player.live.isPlaying()) << "nobody is followed any more";
}

TEST(LiveInstrument, WithAnothersTransportASongSoundsAsWithItsOwn) {
    const Groove groove;
    Follower it(groove);
    Player own(groove, Follower::kBlock);
    own.live.play();
    own.render(8 * kRate);
    it.roll(0, 800);
    for (std::size_t i = 0; i < own.mix.size(); ++i) ASSERT_NEAR(it.player.mix[i], own.mix[i], 1e-6) << i;
    // Beat 8 is at 4.8 s, the song's tempo is 150 from there on.
    it.roll(6 * kRate, 1);
    EXPECT_NEAR(it.tick(), 960 * (8 + 1.21 * 150 / 60), 1e-6);
}

TEST(LiveInstrument, ItsTempoIsAnothersWhileThatHasOne) {
    const Groove groove;
    Follower it(groove);
    it.block({.playing = true, .frame = 0, .tick = 0.0, .tempo = 90.0});
    EXPECT_EQ(it.player.live.tempo(), 90.0);
    EXPECT_NEAR(it.tick(), 90 * 16 * 0.01, 1e-6);
    // Faster from the middle of the last block on: what is told doesn't jump.
    it.block({.playing = true, .frame = 441, .tick = 90 * 16 * 0.005 + 180 * 16 * 0.005, .tempo = 180.0});
    EXPECT_NEAR(it.tick(), 90 * 16 * 0.005 + 180 * 16 * 0.015, 1e-6);
    it.block({.playing = true, .frame = 882, .tick = 960.0 * 5, .tempo = 180.0});
    EXPECT_NEAR(it.tick(), 960 * 5 + 180 * 16 * 0.01, 1e-6) << "and what jumps is followed";
}

TEST(LiveInstrument, ALoopGoesRoundInAnothersTransport) {
    const Groove groove;
    Follower it(groove);
    it.player.live.followSongTempo(false);
    it.player.live.setTempo(120);
    it.player.live.setLoop(1);
    it.roll(5 * kRate, 1);
    EXPECT_NEAR(it.tick(), 960 * 2.02, 1e-6) << "ten beats are two bars and two beats";
    it.roll(5 * kRate + 441, 100);
    EXPECT_NEAR(it.tick(), 960 * 0.02, 1e-6);
    EXPECT_NEAR(it.player.live.placeOf(5 * kRate + 101 * 441).tick, 960 * 0.02, 1e-6) << "where it is";
    EXPECT_NEAR(it.player.live.placeOf(kRate / 2).tick, 960, 1e-6) << "where it would be";
}

}  // namespace
}  // namespace marnoth::test::live_instrument_test
