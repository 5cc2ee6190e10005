#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "hostkit/MakeObject.h"
#include "hostkit/OwnTransport.h"
#include "hostkit/StreamPosition.h"
#include "hostkit/TransportFollower.h"

namespace marnoth::test::transport_follower_test {
namespace {

using Change = TransportFollower::Change;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint32_t kRate = 48000;  // 25 frames a tick at 120 beats per minute

/// A follower of a clock that plays blocks of 500 frames, 20 ticks at 120.
struct Rig {
    Rig() { follower.restart(kRate); }

    Change play(std::int64_t frame, std::optional<double> tick = {}, std::optional<double> tempo = 120.0) {
        return block({true, frame, tick, tempo});
    }
    Change stand(std::optional<double> tempo = 120.0) { return block({false, 0, {}, tempo}); }
    Change block(const LiveTransport& told) {
        const Change change = follower.follow(told);
        tick = follower.tick();
        frame = follower.frame();
        follower.advance(500);
        return change;
    }

    RefPtr<LiveTempoMap> map = makeObject<LiveTempoMap>(120.0);
    TransportFollower follower{map};
    double tick = 0;
    std::int64_t frame = 0;
};

TEST(TransportFollower, StartsWhereTheClockSaysAndGoesOnFromThere) {
    Rig rig;
    EXPECT_EQ(rig.stand(), Change::none);
    EXPECT_EQ(rig.play(48000, 777.25), Change::started);
    EXPECT_EQ(rig.frame, 48000);
    EXPECT_DOUBLE_EQ(rig.tick, 777.25);
    EXPECT_EQ(rig.play(48500, 797.25), Change::none);
    EXPECT_DOUBLE_EQ(rig.tick, 797.25);
    EXPECT_EQ(rig.stand(), Change::stopped);
    EXPECT_FALSE(rig.follower.playing());
}

TEST(TransportFollower, WithoutATickCountsFromFrameZeroByTheTempo) {
    Rig rig;
    EXPECT_EQ(rig.play(24000), Change::started);
    EXPECT_DOUBLE_EQ(rig.tick, 960.0);
    EXPECT_EQ(rig.play(24500), Change::none);
    EXPECT_EQ(rig.play(-24000), Change::started) << "before the beginning";
    EXPECT_DOUBLE_EQ(rig.tick, -960.0);
}

TEST(TransportFollower, ANewFrameIsAJump) {
    Rig rig;
    rig.play(0);
    EXPECT_EQ(rig.play(502), Change::started);
    EXPECT_EQ(rig.frame, 502);
    EXPECT_EQ(rig.play(1000), Change::started) << "two frames back";
    EXPECT_EQ(rig.play(1000), Change::started) << "the same again";
}

TEST(TransportFollower, OneFrameOffIsARounding) {
    Rig rig;
    rig.play(0);
    EXPECT_EQ(rig.play(499), Change::none);
    EXPECT_EQ(rig.frame, 500);
    EXPECT_EQ(rig.play(1001), Change::none);
    EXPECT_EQ(rig.frame, 1000);
    EXPECT_EQ(rig.play(1499), Change::none);
    EXPECT_EQ(rig.play(1998), Change::started) << "a frame further off is a jump";
    EXPECT_EQ(rig.frame, 1998);
}

TEST(TransportFollower, ANewTickAtTheFrameThatWasDueIsAJump) {
    Rig rig;
    rig.play(0, 0.0);
    EXPECT_EQ(rig.play(500, 20.9), Change::none) << "clocks round their beats";
    EXPECT_DOUBLE_EQ(rig.tick, 20.0);
    EXPECT_EQ(rig.play(1000, 0.0), Change::started) << "a loop of the clock";
    EXPECT_EQ(rig.frame, 1000);
    EXPECT_DOUBLE_EQ(rig.tick, 0.0);
}

TEST(TransportFollower, AChangeOfTempoKeepsThePast) {
    Rig rig;
    rig.play(0);
    EXPECT_EQ(rig.play(500, {}, 60.0), Change::none);
    rig.play(1000, {}, 60.0);
    EXPECT_DOUBLE_EQ(rig.tick, 30.0);
    EXPECT_DOUBLE_EQ(rig.map->secondsAt(10.0) * kRate, 250.0);
    EXPECT_DOUBLE_EQ(rig.map->secondsAt(25.0) * kRate, 750.0);
}

TEST(TransportFollower, ATempoThatChangedWithinTheLastBlockIsNoJump) {
    Rig rig;
    rig.play(0, 0.0);
    // 20 ticks at 120 or 30 at 180: the change was in the middle.
    EXPECT_EQ(rig.play(500, 25.0, 180.0), Change::none);
    EXPECT_DOUBLE_EQ(rig.tick, 25.0);
    EXPECT_EQ(rig.play(1000, 55.0, 180.0), Change::none);
    EXPECT_EQ(rig.play(1500, 97.0, 120.0), Change::started) << "no tempo between them leads there";
}

TEST(TransportFollower, ARampIsFollowedWithoutDrift) {
    Rig rig;
    const auto tickAt = [](double seconds) { return 16.0 * (120.0 * seconds + seconds * seconds); };
    rig.play(0, 0.0);
    for (int i = 1; i < 1000; ++i) {
        const double seconds = i * 500.0 / kRate;
        ASSERT_EQ(rig.play(i * 500, tickAt(seconds), 120.0 + 2 * seconds), Change::none) << i;
        ASSERT_NEAR(rig.tick, tickAt(seconds), 1e-9);
    }
}

TEST(TransportFollower, AtATempoThatIsNoneTheLastOneHolds) {
    Rig rig;
    rig.play(0, {}, 60.0);
    for (double tempo : {0.0, -120.0, kNan, 1e9, 0.5, std::numeric_limits<double>::infinity()})
        EXPECT_EQ(rig.play(rig.frame + 500, {}, tempo), Change::none) << tempo;
    EXPECT_DOUBLE_EQ(rig.tick, 60.0);
}

TEST(TransportFollower, ATickThatIsNoneIsNotTold) {
    Rig rig;
    for (double tick : {kNan, std::numeric_limits<double>::infinity(), 1e18}) {
        EXPECT_EQ(rig.play(24000, tick), Change::started);
        EXPECT_DOUBLE_EQ(rig.tick, 960.0);
        EXPECT_EQ(rig.play(24500, tick), Change::none);
        rig.stand();
    }
}

TEST(TransportFollower, StandingGoesOnByItself) {
    Rig rig;
    rig.stand();
    EXPECT_EQ(rig.follower.follow({false, 12345, 99.0, 120.0}), Change::none);
    EXPECT_EQ(rig.follower.frame(), 500);
}

TEST(TransportFollower, StandingANewTempoMovesThePositionSoThatMusicalTimeGoesOn) {
    Rig rig;
    for (int i = 0; i < 96; ++i) rig.stand();  // 48000 frames, 1920 ticks at 120
    EXPECT_EQ(rig.stand(90.0), Change::moved);
    EXPECT_EQ(rig.frame, 64000);
    EXPECT_DOUBLE_EQ(rig.tick, 1920.0);
    EXPECT_EQ(rig.stand(90.0), Change::none);
}

TEST(TransportFollower, HasNoFartherFrameThanAStreamCanHave) {
    Rig rig;
    for (std::int64_t frame :
         {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(rig.play(frame), Change::started);
        EXPECT_EQ(std::abs(rig.frame), kFarthestStreamSecond * kRate);
        EXPECT_EQ(rig.frame < 0, streamTimeOf(rig.frame, kRate) < 0);
    }
}

TEST(StreamPosition, ComesBackToTheFrameAtEveryRate) {
    for (std::uint32_t rate :
         {1u, 8000u, 11025u, 22050u, 44100u, 48000u, 88200u, 96000u, 192000u, 9999991u, kHighestStreamRate}) {
        for (std::int64_t frame = -3000; frame < 100000; frame += 7) {
            // As the instrument counts: truncated toward zero.
            const __int128 product = static_cast<__int128>(streamTimeOf(frame, rate)) * rate;
            ASSERT_EQ(static_cast<std::int64_t>(product / kTimeUnitsPerSecond), frame) << rate;
        }
    }
    EXPECT_EQ(streamTimeOf(1, 44100), 227);  // 226.76 units
    EXPECT_EQ(streamTimeOf(-1, 44100), -227);
    EXPECT_EQ(streamTimeOf(44100LL * 3600, 44100), 3600LL * kTimeUnitsPerSecond);
}

TEST(OwnTransport, StandsAtTheStartUntilItPlays) {
    OwnTransport transport;
    EXPECT_FALSE(transport.next(kRate).playing);
    EXPECT_EQ(transport.next(kRate).tempo, 120.0);
    transport.play();
    const LiveTransport first = transport.next(kRate);
    EXPECT_TRUE(first.playing);
    EXPECT_EQ(first.frame, 0);
    EXPECT_EQ(first.tick, 0.0);
    transport.advance(500, 20.0);
    const LiveTransport second = transport.next(kRate);
    EXPECT_EQ(second.frame, 500);
    EXPECT_FALSE(second.tick) << "it goes on";
}

TEST(OwnTransport, GoesOnFromWhereItStopped) {
    OwnTransport transport;
    transport.locate(960.0);
    transport.play();
    EXPECT_EQ(transport.next(kRate).frame, 24000);
    transport.advance(500, 980.0);
    transport.stop();
    EXPECT_FALSE(transport.next(kRate).playing);
    transport.advance(500, 0.0);
    transport.play();
    EXPECT_EQ(transport.next(kRate).tick, 980.0);
    EXPECT_EQ(transport.next(kRate).frame, 24500);
}

TEST(OwnTransport, PlayWhilePlayingChangesNothing) {
    OwnTransport transport;
    transport.play();
    transport.next(kRate);
    transport.advance(500, 20.0);
    transport.play();
    EXPECT_FALSE(transport.next(kRate).tick);
}

TEST(OwnTransport, RefusesWhatIsNoTempoOrTick) {
    OwnTransport transport;
    for (double tempo : {0.0, -1.0, kNan, 1e6}) transport.setTempo(tempo);
    EXPECT_EQ(transport.tempo(), 120.0);
    for (double tick : {kNan, 1e10, -std::numeric_limits<double>::infinity()}) transport.locate(tick);
    EXPECT_EQ(transport.tick(), 0.0);
}

}  // namespace
}  // namespace marnoth::test::transport_follower_test
