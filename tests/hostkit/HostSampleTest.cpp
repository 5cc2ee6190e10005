#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "hostkit/HostSample.h"
#include "hostkit/MakeObject.h"
#include "hostkit/SampleAllocator.h"

namespace marnoth::test::media_sample_test {
namespace {

constexpr LONG kBytes = 64;

RefPtr<SampleAllocator> committedAllocator(bool silenceOffered) {
    RefPtr<SampleAllocator> allocator = makeObject<SampleAllocator>(silenceOffered);
    ALLOCATOR_PROPERTIES request{1, kBytes, 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    EXPECT_EQ(allocator->SetProperties(&request, &actual), S_OK);
    EXPECT_EQ(allocator->Commit(), S_OK);
    return allocator;
}

RefPtr<IMediaSample> take(SampleAllocator& allocator) {
    RefPtr<IMediaSample> sample;
    EXPECT_EQ(allocator.GetBuffer(sample.put(), nullptr, nullptr, 0), S_OK);
    return sample;
}

RefPtr<IKvxSampleSilence> silenceOf(IMediaSample& sample) {
    RefPtr<IKvxSampleSilence> silence;
    sample.QueryInterface(IID_IKvxSampleSilence, silence.putVoid());
    return silence;
}

BYTE* memoryOf(IMediaSample& sample) {
    BYTE* memory = nullptr;
    EXPECT_EQ(sample.GetPointer(&memory), S_OK);
    return memory;
}

bool holdsAll(const BYTE* memory, BYTE value) {
    return std::all_of(memory, memory + kBytes, [&](BYTE byte) { return byte == value; });
}

TEST(HostSample, KeepsWhatIsWrittenWhileUnmarked) {
    RefPtr<SampleAllocator> allocator = committedAllocator(true);
    RefPtr<IMediaSample> sample = take(*allocator);
    std::memset(memoryOf(*sample), 0x55, kBytes);
    EXPECT_EQ(silenceOf(*sample)->GetSilent(), 0);
    EXPECT_TRUE(holdsAll(memoryOf(*sample), 0x55));
}

TEST(HostSample, AskingAMarkedSampleForItsMemoryClearsItAndTakesTheMarkAway) {
    RefPtr<SampleAllocator> allocator = committedAllocator(true);
    RefPtr<IMediaSample> sample = take(*allocator);
    std::memset(memoryOf(*sample), 0x55, kBytes);
    RefPtr<IKvxSampleSilence> silence = silenceOf(*sample);
    silence->SetSilent(1);
    EXPECT_EQ(silence->GetSilent(), 1);
    EXPECT_TRUE(holdsAll(memoryOf(*sample), 0));
    EXPECT_EQ(silence->GetSilent(), 0);
}

TEST(HostSample, TheMarkCanBeTakenBackWithTheMemoryAsItWas) {
    RefPtr<SampleAllocator> allocator = committedAllocator(true);
    RefPtr<IMediaSample> sample = take(*allocator);
    std::memset(memoryOf(*sample), 0x55, kBytes);
    silenceOf(*sample)->SetSilent(1);
    silenceOf(*sample)->SetSilent(0);
    EXPECT_TRUE(holdsAll(memoryOf(*sample), 0x55));
}

TEST(HostSample, IsUnmarkedWhenGivenOutAnew) {
    RefPtr<SampleAllocator> allocator = committedAllocator(true);
    RefPtr<IMediaSample> sample = take(*allocator);
    silenceOf(*sample)->SetSilent(1);
    sample.reset();
    sample = take(*allocator);
    EXPECT_EQ(silenceOf(*sample)->GetSilent(), 0);
}

TEST(HostSample, WithoutTheInterfaceItIsGivenOutCleared) {
    RefPtr<SampleAllocator> allocator = committedAllocator(false);
    RefPtr<IMediaSample> sample = take(*allocator);
    EXPECT_FALSE(silenceOf(*sample));
    EXPECT_TRUE(holdsAll(memoryOf(*sample), 0));
    std::memset(memoryOf(*sample), 0x55, kBytes);
    sample.reset();
    EXPECT_TRUE(holdsAll(memoryOf(*take(*allocator)), 0));
}

TEST(HostSample, TheOfferTakesEffectAtOnce) {
    RefPtr<SampleAllocator> allocator = committedAllocator(true);
    std::memset(memoryOf(*take(*allocator)), 0x55, kBytes);
    allocator->setSilenceOffered(false);
    RefPtr<IMediaSample> sample = take(*allocator);
    EXPECT_FALSE(silenceOf(*sample));
    EXPECT_TRUE(holdsAll(memoryOf(*sample), 0));
    sample.reset();
    allocator->setSilenceOffered(true);
    EXPECT_TRUE(silenceOf(*take(*allocator)));
}

TEST(SampleAllocator, NeverWaitsForASample) {
    RefPtr<SampleAllocator> allocator = committedAllocator(true);
    RefPtr<IMediaSample> only = take(*allocator);
    RefPtr<IMediaSample> second;
    EXPECT_EQ(allocator->GetBuffer(second.put(), nullptr, nullptr, 0), VFW_E_TIMEOUT);
}

TEST(SampleAllocator, GrowsItsBuffersWhileCommitted) {
    RefPtr<SampleAllocator> allocator = committedAllocator(true);
    EXPECT_EQ(allocator->growBuffers(1000), S_OK);
    EXPECT_EQ(take(*allocator)->GetSize(), 1000);
    EXPECT_EQ(allocator->growBuffers(10), S_OK);
    EXPECT_EQ(take(*allocator)->GetSize(), 1000) << "buffers don't shrink";
}

TEST(SampleAllocator, DoesNotGrowWithASampleOutAndStaysUsable) {
    RefPtr<SampleAllocator> allocator = committedAllocator(true);
    RefPtr<IMediaSample> out = take(*allocator);
    EXPECT_EQ(allocator->growBuffers(1000), VFW_E_BUFFERS_OUTSTANDING);
    out.reset();
    EXPECT_EQ(take(*allocator)->GetSize(), kBytes);
}

}  // namespace
}  // namespace marnoth::test::media_sample_test
