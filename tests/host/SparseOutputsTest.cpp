#include <gtest/gtest.h>

#include "host/FilterHost.h"
#include "seam/IMarnothOptions.h"
#include "support/AllocationMeter.h"
#include "support/EventLists.h"

namespace marnoth::test::sparse_outputs_test {
namespace {

/// Mix, channel 1 and channel 2, sparse. Audio at the input reaches every channel.
class SparseOutputs : public testing::Test {
protected:
    SparseOutputs() { EXPECT_EQ(host.filter->SetSparse(1), S_OK); }

    HRESULT sendSilence(std::int32_t frames) {
        FakeSample in(static_cast<std::size_t>(frames) * 8, true);
        in.silent = 1;
        return host.input().Receive(&in);
    }
    std::size_t delivered(int index) { return host.sink(index).deliveries.size(); }

    FilterHost host;
};

TEST_F(SparseOutputs, AreOffUntilTheyAreAskedFor) {
    FilterHost other;
    std::uint32_t on = 7;
    EXPECT_EQ(other.filter->GetSparse(&on), S_OK);
    EXPECT_EQ(on, 0u);
    EXPECT_EQ(other.filter->SetSparse(5), S_OK);
    EXPECT_EQ(other.filter->GetSparse(&on), S_OK);
    EXPECT_EQ(on, 1u);
    EXPECT_EQ(other.filter->SetSparse(0), S_OK);
    EXPECT_EQ(other.filter->GetSparse(&on), S_OK);
    EXPECT_EQ(on, 0u);
}

TEST_F(SparseOutputs, AChannelDeliversTheBlocksInWhichThereIsSomethingToHear) {
    host.start({0, 1, 2});
    EXPECT_EQ(sendSilence(100), S_OK);
    EXPECT_EQ(delivered(1) + delivered(2), 0u);
    EXPECT_EQ(host.send(100, 0.5f), S_OK);
    EXPECT_EQ(host.last(1).audio, std::vector<float>(200, 0.5f));
    EXPECT_EQ(host.last(2).audio, std::vector<float>(200, 0.5f));
    EXPECT_EQ(host.last(0).audio, std::vector<float>(200, 1.0f));
    EXPECT_EQ(sendSilence(100), S_OK);
    EXPECT_EQ(delivered(1) + delivered(2), 2u);
    EXPECT_EQ(host.filter->position(), 300);
    for (int i : {0, 1, 2}) EXPECT_EQ(host.sink(i).allocator.samplesOut(), 0u);
}

TEST_F(SparseOutputs, NobodyIsAskedForABufferThatStaysSilent) {
    host.start({0, 1});
    host.sink(1).allocator.getResult = E_ABORT;
    EXPECT_EQ(sendSilence(100), S_OK);
}

TEST_F(SparseOutputs, AFailureToGetABufferComesBackAndCostsThatOutputAlone) {
    host.start({0, 1, 2});
    host.sink(1).allocator.getResult = E_ABORT;
    EXPECT_EQ(host.send(100, 0.5f), E_ABORT);
    EXPECT_EQ(delivered(1), 0u);
    EXPECT_EQ(host.last(2).audio, std::vector<float>(200, 0.5f));
    EXPECT_EQ(host.last(0).audio, std::vector<float>(200, 0.5f));
    EXPECT_EQ(host.filter->position(), 100);
}

TEST_F(SparseOutputs, ABufferThatIsTooSmallIsntRenderedInto) {
    host.sink(1).allocator.grantedBytes = 99 * 8;
    host.start({0, 1});
    EXPECT_EQ(host.send(100, 0.5f), E_FAIL);
    EXPECT_EQ(delivered(1), 0u);
    EXPECT_EQ(host.sink(1).allocator.samplesOut(), 0u);
    EXPECT_EQ(host.send(99, 0.5f), S_OK);
    EXPECT_EQ(host.last(1).audio, std::vector<float>(198, 0.5f));
}

TEST_F(SparseOutputs, WhatTheyDeliverCarriesTheFlagsOfTheInput) {
    host.start({0, 1});
    FakeSample in(80);
    in.sync = in.preroll = in.discontinuity = in.hasStart = true;
    in.start = 10000000;
    EXPECT_EQ(host.input().Receive(&in), S_OK);
    const Delivery& out = host.last(1);
    EXPECT_TRUE(out.sync && out.preroll && out.discontinuity);
    EXPECT_EQ(out.start, 10000000);
    EXPECT_EQ(out.bytes, 80);
}

TEST_F(SparseOutputs, ARenderThatIsOverEndsTheStreamOfThoseWithoutABufferToo) {
    host.start({0, 1});
    host.filter->onProcess = [](const FilterUnderTest::Block&) { return S_FALSE; };
    EXPECT_EQ(sendSilence(100), S_OK);
    EXPECT_EQ(host.sink(0).endsOfStream, 1);
    EXPECT_EQ(host.sink(1).endsOfStream, 1);
}

TEST_F(SparseOutputs, InPiecesABufferIsClearedOnceAndKeepsWhatEarlierPiecesPutIn) {
    ASSERT_EQ(host.filter->SetSteady(1), S_OK);
    host.start({0, 1});
    host.attach();
    host.sink(1).allocator.samples[0]->fill(9.0f);
    RawEventList list{midi(50, 0x90, 60, 100)};
    ASSERT_EQ(host.filter->QueueRawInput(0, &list), S_OK);
    EXPECT_EQ(host.send(100, 0.25f), S_OK);
    EXPECT_EQ(host.last(1).audio, std::vector<float>(200, 0.25f));
}

TEST_F(SparseOutputs, TakeNothingFromTheFreeStore) {
    host.start({0, 1, 2});
    for (int i : {0, 1, 2}) host.sink(i).keepsAudio = false;
    FakeSample in(512 * 8);
    in.fill(0.25f);
    host.input().Receive(&in);
    AllocationMeter meter;
    for (int i = 0; i < 20; ++i) host.input().Receive(&in);
    EXPECT_EQ(meter.peakBytes(), 0u);
}

}  // namespace
}  // namespace marnoth::test::sparse_outputs_test
