#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "platform/TestFilter.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/MemAllocator.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::mem_allocator_test {
namespace {

using Sample = RefPtr<IMediaSample>;

RefPtr<CMemAllocator> makeAllocator(LONG buffers, LONG bytes, LONG align = 1, LONG prefix = 0) {
    auto allocator = RefPtr<CMemAllocator>::adopt(new CMemAllocator);
    ALLOCATOR_PROPERTIES properties{buffers, bytes, align, prefix};
    ALLOCATOR_PROPERTIES actual{};
    EXPECT_EQ(allocator->SetProperties(&properties, &actual), S_OK);
    return allocator;
}

HRESULT take(const RefPtr<CMemAllocator>& allocator, Sample& sample) {
    return allocator->GetBuffer(sample.put(), nullptr, nullptr, AM_GBF_NOWAIT);
}

BYTE* pointerOf(const Sample& sample) {
    BYTE* pointer = nullptr;
    EXPECT_EQ(sample->GetPointer(&pointer), S_OK);
    return pointer;
}

TEST(MemAllocator, GivesNothingBeforeCommitAndAfterDecommit) {
    auto allocator = makeAllocator(1, 16);
    Sample sample;
    EXPECT_EQ(take(allocator, sample), VFW_E_NOT_COMMITTED);
    ASSERT_EQ(allocator->Commit(), S_OK);
    EXPECT_EQ(take(allocator, sample), S_OK);
    sample.reset();
    ASSERT_EQ(allocator->Decommit(), S_OK);
    EXPECT_EQ(take(allocator, sample), VFW_E_NOT_COMMITTED);
    EXPECT_FALSE(sample);
}

TEST(MemAllocator, CommitNeedsACountAndASize) {
    auto allocator = RefPtr<CMemAllocator>::adopt(new CMemAllocator);
    EXPECT_EQ(allocator->Commit(), VFW_E_SIZENOTSET);
    EXPECT_EQ(makeAllocator(0, 16)->Commit(), VFW_E_SIZENOTSET);
    EXPECT_EQ(makeAllocator(1, 0)->Commit(), VFW_E_SIZENOTSET);
}

TEST(MemAllocator, GivesExactlyTheProperties) {
    auto allocator = makeAllocator(3, 100, 8, 4);
    ALLOCATOR_PROPERTIES properties{};
    ASSERT_EQ(allocator->GetProperties(&properties), S_OK);
    EXPECT_EQ(properties.cBuffers, 3);
    EXPECT_EQ(properties.cbBuffer, 100);
    EXPECT_EQ(properties.cbAlign, 8);
    EXPECT_EQ(properties.cbPrefix, 4);
}

TEST(MemAllocator, BadPropertiesAreRefusedAndTheFormerStay) {
    auto allocator = makeAllocator(2, 16);
    ALLOCATOR_PROPERTIES actual{};
    const auto set = [&](ALLOCATOR_PROPERTIES wanted) { return allocator->SetProperties(&wanted, &actual); };
    EXPECT_EQ(set({2, 16, 0, 0}), VFW_E_BADALIGN);
    EXPECT_EQ(set({2, 16, 3, 0}), VFW_E_BADALIGN);
    EXPECT_EQ(set({2, 16, -8, 0}), VFW_E_BADALIGN);
    EXPECT_EQ(set({-1, 16, 1, 0}), E_INVALIDARG);
    EXPECT_EQ(set({2, -16, 1, 0}), E_INVALIDARG);
    EXPECT_EQ(set({2, 16, 1, -1}), E_INVALIDARG);
    EXPECT_EQ(allocator->SetProperties(nullptr, &actual), E_POINTER);
    ASSERT_EQ(allocator->GetProperties(&actual), S_OK);
    EXPECT_EQ(actual.cBuffers, 2);
    EXPECT_EQ(actual.cbBuffer, 16);
}

TEST(MemAllocator, PropertiesCantChangeWhileCommittedOrInUse) {
    auto allocator = makeAllocator(1, 16);
    ALLOCATOR_PROPERTIES properties{2, 32, 1, 0};
    allocator->Commit();
    EXPECT_EQ(allocator->SetProperties(&properties, &properties), VFW_E_ALREADY_COMMITTED);
    Sample sample;
    ASSERT_EQ(take(allocator, sample), S_OK);
    allocator->Decommit();
    EXPECT_EQ(allocator->SetProperties(&properties, &properties), VFW_E_BUFFERS_OUTSTANDING);
    sample.reset();
    EXPECT_EQ(allocator->SetProperties(&properties, &properties), S_OK);
}

TEST(MemAllocator, BuffersAreAlignedApartAndHaveTheirPrefix) {
    auto allocator = makeAllocator(3, 100, 64, 20);
    ASSERT_EQ(allocator->Commit(), S_OK);
    Sample samples[3];
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(take(allocator, samples[i]), S_OK);
        EXPECT_EQ(samples[i]->GetSize(), 100);
        BYTE* buffer = pointerOf(samples[i]);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer) % 64, 0u);
        std::memset(buffer - 20, i + 1, 120);
    }
    for (int i = 0; i < 3; ++i) {
        const BYTE* buffer = pointerOf(samples[i]);
        for (int k = -20; k < 100; ++k) ASSERT_EQ(buffer[k], i + 1) << "buffers overlap at byte " << k;
    }
}

TEST(MemAllocator, AnExhaustedAllocatorTimesOutWithoutWaiting) {
    auto allocator = makeAllocator(2, 16);
    allocator->Commit();
    Sample a, b, c;
    ASSERT_EQ(take(allocator, a), S_OK);
    ASSERT_EQ(take(allocator, b), S_OK);
    EXPECT_EQ(take(allocator, c), VFW_E_TIMEOUT);
    a.reset();
    EXPECT_EQ(take(allocator, c), S_OK);
}

TEST(MemAllocator, WhoeverWaitsGetsTheSampleThatComesBack) {
    auto allocator = makeAllocator(1, 16);
    allocator->Commit();
    Sample held;
    ASSERT_EQ(take(allocator, held), S_OK);
    IMediaSample* const only = held.get();
    Sample got;
    HRESULT hr = E_FAIL;
    std::thread waiter([&] { hr = allocator->GetBuffer(got.put(), nullptr, nullptr, 0); });
    held.reset();
    waiter.join();
    EXPECT_EQ(hr, S_OK);
    EXPECT_EQ(got.get(), only);
}

TEST(MemAllocator, DecommitFreesWhoeverWaits) {
    auto allocator = makeAllocator(1, 16);
    allocator->Commit();
    Sample held;
    ASSERT_EQ(take(allocator, held), S_OK);
    Sample got;
    HRESULT hr = S_OK;
    std::thread waiter([&] { hr = allocator->GetBuffer(got.put(), nullptr, nullptr, 0); });
    allocator->Decommit();
    waiter.join();
    EXPECT_EQ(hr, VFW_E_NOT_COMMITTED);
    EXPECT_FALSE(got);
}

TEST(MemAllocator, DecommitWaitsForSamplesThatAreOut) {
    auto allocator = makeAllocator(2, 16);
    allocator->Commit();
    Sample sample;
    ASSERT_EQ(take(allocator, sample), S_OK);
    ASSERT_EQ(allocator->Decommit(), S_OK);
    std::memset(pointerOf(sample), 1, 16);
    EXPECT_EQ(pointerOf(sample)[15], 1);
}

TEST(MemAllocator, CommittedAgainItUsesTheSamplesThatWereOut) {
    auto allocator = makeAllocator(1, 16);
    allocator->Commit();
    Sample sample;
    ASSERT_EQ(take(allocator, sample), S_OK);
    BYTE* const memory = pointerOf(sample);
    allocator->Decommit();
    ASSERT_EQ(allocator->Commit(), S_OK);
    Sample other;
    EXPECT_EQ(take(allocator, other), VFW_E_TIMEOUT);
    sample.reset();
    ASSERT_EQ(take(allocator, other), S_OK);
    EXPECT_EQ(pointerOf(other), memory);
}

TEST(MemAllocator, ASampleOutlivesEveryOtherReferenceToItsAllocator) {
    auto allocator = makeAllocator(2, 16);
    allocator->Commit();
    Sample a, b;
    ASSERT_EQ(take(allocator, a), S_OK);
    ASSERT_EQ(take(allocator, b), S_OK);
    allocator->Decommit();
    allocator.reset();
    b.reset();
    std::memset(pointerOf(a), 7, 16);
    EXPECT_EQ(pointerOf(a)[15], 7);
    a.reset();
}

TEST(MemAllocator, TakesBackOnlyItsOwnSamplesThatNobodyHolds) {
    auto allocator = makeAllocator(1, 16);
    auto other = makeAllocator(1, 16);
    allocator->Commit();
    other->Commit();
    Sample own, foreign;
    ASSERT_EQ(take(allocator, own), S_OK);
    ASSERT_EQ(take(other, foreign), S_OK);
    EXPECT_EQ(allocator->ReleaseBuffer(nullptr), E_POINTER);
    EXPECT_EQ(allocator->ReleaseBuffer(foreign.get()), E_INVALIDARG);
    EXPECT_EQ(allocator->ReleaseBuffer(own.get()), E_UNEXPECTED);
    IMediaSample* const back = own.get();
    own.reset();
    EXPECT_EQ(allocator->ReleaseBuffer(back), E_UNEXPECTED);
    EXPECT_EQ(take(allocator, own), S_OK);
}

TEST(MemAllocator, ASampleIsAsNewWhenItIsGivenOutAgain) {
    auto allocator = makeAllocator(1, 16);
    allocator->Commit();
    Sample sample;
    ASSERT_EQ(take(allocator, sample), S_OK);
    REFERENCE_TIME start = 10;
    LONGLONG media = 5;
    CMediaType type = test::floatType();
    sample->SetTime(&start, nullptr);
    sample->SetMediaTime(&media, &media);
    sample->SetSyncPoint(TRUE);
    sample->SetPreroll(TRUE);
    sample->SetDiscontinuity(TRUE);
    sample->SetActualDataLength(3);
    sample->SetMediaType(type.Get());
    sample.reset();
    ASSERT_EQ(take(allocator, sample), S_OK);
    EXPECT_EQ(sample->GetTime(&start, &start), VFW_E_SAMPLE_TIME_NOT_SET);
    EXPECT_EQ(sample->GetMediaTime(&media, &media), VFW_E_MEDIA_TIME_NOT_SET);
    EXPECT_EQ(sample->IsSyncPoint(), S_FALSE);
    EXPECT_EQ(sample->IsPreroll(), S_FALSE);
    EXPECT_EQ(sample->IsDiscontinuity(), S_FALSE);
    EXPECT_EQ(sample->GetActualDataLength(), 16);
    AM_MEDIA_TYPE* none = nullptr;
    EXPECT_EQ(sample->GetMediaType(&none), S_FALSE);
    EXPECT_EQ(none, nullptr);
}

TEST(MemAllocator, GettingAndReturningSamplesAllocatesNothing) {
    auto allocator = makeAllocator(2, 16);
    {
        const test::AllocationMeter meter;
        allocator->Commit();
        EXPECT_GT(meter.peakBytes(), 0u) << "the meter doesn't see the allocator's memory";
    }
    const test::AllocationMeter meter;
    for (int i = 0; i < 100; ++i) {
        Sample a, b, c;
        EXPECT_EQ(take(allocator, a), S_OK);
        EXPECT_EQ(take(allocator, b), S_OK);
        EXPECT_EQ(take(allocator, c), VFW_E_TIMEOUT);
    }
    EXPECT_EQ(meter.peakBytes(), 0u);
}

TEST(MemAllocator, MoreMemoryThanThereIsGivesOutOfMemory) {
#ifdef MARNOTH_SANITIZED
    GTEST_SKIP() << "the sanitizer ends the program when memory is out";
#endif
    // 2^31 - 1 buffers of 2^31 - 1 bytes: 4 exabytes.
    EXPECT_EQ(makeAllocator(0x7FFFFFFF, 0x7FFFFFFF)->Commit(), E_OUTOFMEMORY);
}

constexpr IID kIdMark{0x5E7A0C11, 0x9D02, 0x4F3B, {0xB6, 0x18, 0x01, 0xC4, 0x7E, 0x92, 0xA5, 0x30}};

struct IMark : IUnknown {
    virtual void SetMark(bool marked) = 0;
    virtual bool Mark() = 0;
};

/// A sample with an interface more; asking for its memory clears the memory, if it is marked.
class MarkedSample : public Implements<CMediaSample, IMark> {
public:
    using Implements::Implements;

    void SetMark(bool marked) override { marked_ = marked; }
    bool Mark() override { return marked_; }
    HRESULT GetPointer(BYTE** out) override {
        const HRESULT hr = CMediaSample::GetPointer(out);
        if (marked_) std::memset(*out, 0, static_cast<std::size_t>(GetSize()));
        marked_ = false;
        return hr;
    }

protected:
    IUnknown* FindInterface(REFIID iid) override {
        return iid == kIdMark ? static_cast<IMark*>(this) : CMediaSample::FindInterface(iid);
    }
    void Recycle() override {
        CMediaSample::Recycle();
        marked_ = false;
    }

private:
    bool marked_ = false;
};

class MarkedAllocator : public CMemAllocator {
protected:
    std::unique_ptr<CMediaSample> MakeSample(BYTE* memory, LONG bytes) override {
        return std::make_unique<MarkedSample>(*this, memory, bytes);
    }
};

TEST(MemAllocator, ADerivedOneMakesSamplesWithFurtherInterfaces) {
    RefPtr<CMemAllocator> allocator = RefPtr<CMemAllocator>::adopt(new MarkedAllocator);
    ALLOCATOR_PROPERTIES properties{1, 16, 1, 0};
    allocator->SetProperties(&properties, &properties);
    ASSERT_EQ(allocator->Commit(), S_OK);
    Sample sample;
    ASSERT_EQ(take(allocator, sample), S_OK);
    std::memset(pointerOf(sample), 9, 16);
    RefPtr<IMark> mark;
    ASSERT_EQ(sample->QueryInterface(kIdMark, mark.putVoid()), S_OK);
    mark->SetMark(true);
    EXPECT_EQ(pointerOf(sample)[0], 0);
    EXPECT_FALSE(mark->Mark());
    mark->SetMark(true);
    sample.reset();
    EXPECT_EQ(take(allocator, sample), VFW_E_TIMEOUT) << "any of its interfaces holds the sample";
    mark.reset();
    ASSERT_EQ(take(allocator, sample), S_OK);
    ASSERT_EQ(sample->QueryInterface(kIdMark, mark.putVoid()), S_OK);
    EXPECT_FALSE(mark->Mark());
}

/// An allocator whose n-th sample can't be made.
class FailingAllocator : public CMemAllocator {
public:
    int left = 1;

protected:
    std::unique_ptr<CMediaSample> MakeSample(BYTE* memory, LONG bytes) override {
        return left-- > 0 ? CMemAllocator::MakeSample(memory, bytes) : nullptr;
    }
};

TEST(MemAllocator, ASampleThatCantBeMadeLeavesItUncommitted) {
    auto allocator = RefPtr<FailingAllocator>::adopt(new FailingAllocator);
    ALLOCATOR_PROPERTIES properties{2, 16, 1, 0};
    allocator->SetProperties(&properties, &properties);
    EXPECT_EQ(allocator->Commit(), E_OUTOFMEMORY);
    Sample sample;
    EXPECT_EQ(allocator->GetBuffer(sample.put(), nullptr, nullptr, 0), VFW_E_NOT_COMMITTED);
    allocator->left = 2;
    EXPECT_EQ(allocator->Commit(), S_OK);
}

TEST(MemAllocator, ManyThreadsNeverShareASample) {
    constexpr LONG kBuffers = 3;
    auto allocator = makeAllocator(kBuffers, 16);
    allocator->Commit();
    std::atomic<int> clashes{0};
    const auto work = [&](BYTE mark) {
        for (int i = 0; i < 2000; ++i) {
            Sample sample;
            if (allocator->GetBuffer(sample.put(), nullptr, nullptr, 0) != S_OK) ++clashes;
            BYTE* const buffer = pointerOf(sample);
            std::memset(buffer, mark, 16);
            for (int k = 0; k < 16; ++k) clashes += buffer[k] != mark;
        }
    };
    std::vector<std::thread> threads;
    for (BYTE mark = 1; mark <= 4; ++mark) threads.emplace_back(work, mark);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(clashes, 0);
}

class MediaSample : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(allocator->Commit(), S_OK);
        ASSERT_EQ(take(allocator, sample), S_OK);
    }
    RefPtr<CMemAllocator> allocator = makeAllocator(1, 16);
    Sample sample;
};

TEST_F(MediaSample, AStartAloneHasNoStopTime) {
    REFERENCE_TIME start = 10;
    REFERENCE_TIME end = 30;
    EXPECT_EQ(sample->GetTime(&start, &end), VFW_E_SAMPLE_TIME_NOT_SET);
    EXPECT_EQ(sample->SetTime(&start, nullptr), S_OK);
    REFERENCE_TIME gotStart = 0;
    REFERENCE_TIME gotEnd = 0;
    EXPECT_EQ(sample->GetTime(&gotStart, &gotEnd), VFW_S_NO_STOP_TIME);
    EXPECT_EQ(gotStart, 10);
    EXPECT_EQ(gotEnd, 11);
    EXPECT_EQ(sample->SetTime(&start, &end), S_OK);
    EXPECT_EQ(sample->GetTime(&gotStart, &gotEnd), S_OK);
    EXPECT_EQ(gotEnd, 30);
    EXPECT_EQ(sample->SetTime(nullptr, nullptr), S_OK);
    EXPECT_EQ(sample->GetTime(&gotStart, &gotEnd), VFW_E_SAMPLE_TIME_NOT_SET);
}

TEST_F(MediaSample, TimesThatRunBackwardsAreRefused) {
    LONGLONG early = 10;
    LONGLONG late = 30;
    EXPECT_EQ(sample->SetTime(&late, &early), VFW_E_START_TIME_AFTER_END);
    EXPECT_EQ(sample->SetTime(nullptr, &early), E_INVALIDARG);
    EXPECT_EQ(sample->SetMediaTime(&late, &early), VFW_E_START_TIME_AFTER_END);
    EXPECT_EQ(sample->SetMediaTime(&early, nullptr), E_INVALIDARG);
    EXPECT_EQ(sample->SetMediaTime(&early, &late), S_OK);
    LONGLONG start = 0;
    LONGLONG end = 0;
    EXPECT_EQ(sample->GetMediaTime(&start, &end), S_OK);
    EXPECT_EQ(start, 10);
    EXPECT_EQ(end, 30);
}

TEST_F(MediaSample, LengthStaysWithinItsSize) {
    EXPECT_EQ(sample->GetActualDataLength(), 16);
    EXPECT_EQ(sample->SetActualDataLength(0), S_OK);
    EXPECT_EQ(sample->SetActualDataLength(16), S_OK);
    EXPECT_EQ(sample->SetActualDataLength(17), VFW_E_BUFFER_OVERFLOW);
    EXPECT_EQ(sample->SetActualDataLength(-1), E_INVALIDARG);
    EXPECT_EQ(sample->GetActualDataLength(), 16);
}

TEST_F(MediaSample, FlagsAnswerYesOrNo) {
    EXPECT_EQ(sample->SetSyncPoint(TRUE), S_OK);
    EXPECT_EQ(sample->SetPreroll(2), S_OK);
    EXPECT_EQ(sample->SetDiscontinuity(TRUE), S_OK);
    EXPECT_EQ(sample->IsSyncPoint(), S_OK);
    EXPECT_EQ(sample->IsPreroll(), S_OK);
    EXPECT_EQ(sample->IsDiscontinuity(), S_OK);
    sample->SetDiscontinuity(FALSE);
    EXPECT_EQ(sample->IsDiscontinuity(), S_FALSE);
}

TEST_F(MediaSample, GivesOutACopyOfItsType) {
    CMediaType type = test::floatType(1);
    ASSERT_EQ(sample->SetMediaType(type.Get()), S_OK);
    AM_MEDIA_TYPE* got = nullptr;
    ASSERT_EQ(sample->GetMediaType(&got), S_OK);
    EXPECT_NE(got->pbFormat, type->pbFormat);
    EXPECT_EQ(WaveFormatOf(*got)->nChannels, 1);
    DeleteMediaType(got);
    EXPECT_EQ(sample->SetMediaType(nullptr), S_OK);
    EXPECT_EQ(sample->GetMediaType(&got), S_FALSE);
}

TEST_F(MediaSample, AnswersToItsInterface) {
    RefPtr<IUnknown> answer;
    EXPECT_EQ(sample->QueryInterface(IID_IMediaSample, answer.putVoid()), S_OK);
    EXPECT_EQ(sample->QueryInterface(IID_IPin, answer.putVoid()), E_NOINTERFACE);
    EXPECT_EQ(sample->GetPointer(nullptr), E_POINTER);
}

}  // namespace
}  // namespace marnoth::test::mem_allocator_test
