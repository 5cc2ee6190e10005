#include "host/FilterHost.h"
#include "support/WaveFile.h"

namespace marnoth::test::filter_state_test {
namespace {

using Block = FilterUnderTest::Block;

TEST(Pause, WithTheInputUnconnectedEndsEveryStreamAtOnce) {
    FilterHost host;
    host.connectInput();
    for (int i : {0, 9}) ASSERT_EQ(host.connectOutput(i), S_OK);
    host.input().Disconnect();
    EXPECT_EQ(host.filter->Pause(), S_OK);
    EXPECT_EQ(host.sink(0).endsOfStream, 2);
    EXPECT_EQ(host.sink(9).endsOfStream, 2);
    EXPECT_EQ(host.filter->Run(0), S_OK);
    EXPECT_EQ(host.sink(0).endsOfStream, 4);
}

TEST(Pause, PutsTheStreamPositionBackAndTheTimelineGoesOn) {
    FilterHost host;
    host.start({});
    host.send(100);
    host.filter->Run(0);
    std::vector<Block> blocks;
    host.filter->onProcess = [&](const Block& block) { return blocks.push_back(block), S_OK; };
    host.send(100);
    EXPECT_EQ(blocks[0].position, 100);
    host.filter->Pause();
    host.send(100);
    EXPECT_EQ(blocks[1].position, 0);
    EXPECT_EQ(blocks[1].reserved, 200);
    // Paused already: nothing happens.
    host.filter->Pause();
    host.send(100);
    EXPECT_EQ(blocks[2].position, 100);
}

TEST(FilterState, IsToldToThePage) {
    FilterHost host;
    std::uint32_t request = 0;
    host.filter->GetRefreshRequest(&request);
    EXPECT_EQ(host.filter->Stop(), S_OK);
    host.filter->GetRefreshRequest(&request);
    EXPECT_EQ(request, 0u);  // stopped already: nothing happened

    EXPECT_EQ(host.filter->Run(0), S_OK);
    EXPECT_EQ(host.filter->State(), State_Running);
    host.filter->GetRefreshRequest(&request);
    EXPECT_EQ(request, 2u);
    EXPECT_EQ(host.filter->Stop(), S_OK);
    EXPECT_EQ(host.filter->State(), State_Stopped);
    host.filter->GetRefreshRequest(&request);
    EXPECT_EQ(request, 2u);
}

TEST(FilterState, TakesResourcesFromStoppedAndFreesThemAtTheStop) {
    FilterHost host;
    host.start({});
    EXPECT_EQ(host.filter->preparations, 1);
    host.filter->Run(0);
    host.filter->Pause();
    EXPECT_EQ(host.filter->preparations, 1);
    EXPECT_EQ(host.filter->releases, 0);
    host.filter->Stop();
    host.filter->Stop();
    EXPECT_EQ(host.filter->releases, 1);
}

/// A beat of a ramp at 120 beats per minute: its values say where they stand.
float rampAt(int frame) {
    return static_cast<float>(frame) / 22050;
}

TEST(FilterState, AStopGivesSyncedPadsTheirZeroBack) {
    const TempPath path = WaveFile()
                              .floats()
                              .channels(2)
                              .frames(22050, [](std::int64_t i, int) { return rampAt(static_cast<int>(i)); })
                              .acid({.beats = 1})
                              .writeTemp();
    FilterHost host;
    host.start({1, 2});
    IGrooveSampler& sampler = *host.filter;
    std::int32_t file = 0;
    std::uint32_t status = 0;
    for (int pad : {0, 1}) {
        ASSERT_EQ(sampler.LoadFileToPad(pad, "Ramp", path.c_str(), &file, &status), S_OK);
        sampler.SetPadOutput(pad, pad + 1);
    }
    host.send(400);
    sampler.AuditionPad(0, -1);
    host.send(400);
    // The first pad sounds from its own beginning, 400 frames into the stream.
    EXPECT_NEAR(host.last(1).audio[2 * 300], rampAt(300), 1e-3);
    host.filter->Stop();
    host.filter->Pause();
    sampler.AuditionPad(1, -1);
    host.send(400);
    EXPECT_NEAR(host.last(2).audio[2 * 300], rampAt(300), 1e-3);
}

}  // namespace
}  // namespace marnoth::test::filter_state_test
