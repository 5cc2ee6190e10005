/// Who waits for whom while a block is on its way: nobody but the stream, and the stop of the graph.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

#include "host/FilterHost.h"
#include "platform/graph/MemAllocator.h"

namespace marnoth::test::stream_lock_test {
namespace {

using namespace std::chrono_literals;

/// Longer than anything here takes, unless it waits for what doesn't come.
constexpr auto kPatience = 20s;
/// How long something is watched that must not end yet.
constexpr auto kMoment = 50ms;

/// Something that is waited for once.
class Gate {
public:
    void open() {
        const std::lock_guard hold(mutex_);
        open_ = true;
        opened_.notify_all();
    }
    bool await() {
        std::unique_lock hold(mutex_);
        return opened_.wait_for(hold, kPatience, [this] { return open_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable opened_;
    bool open_ = false;
};

template <class Operation>
auto elsewhere(Operation operation) {
    return std::async(std::launch::async, std::move(operation));
}

template <class Result>
bool ends(std::future<Result>& future) {
    return future.wait_for(kPatience) == std::future_status::ready;
}

template <class Result>
bool goesOn(std::future<Result>& future) {
    return future.wait_for(kMoment) == std::future_status::timeout;
}

/// Connects the mix with `sink` and the other outputs with the host's own, for blocks of up to 512 frames,
/// and pauses. A sink of a test's own is declared before the host, which lets go of it at its end.
void startWith(FilterHost& host, SinkPin& sink, std::initializer_list<int> others = {}) {
    host.inputAllocator.properties.cbBuffer = 512 * 8;
    EXPECT_EQ(host.connectInput(), S_OK);
    const CMediaType type = audioType(44100, 2);
    EXPECT_EQ(host.output(0).Connect(&sink, type.Get()), S_OK);
    for (const int index : others) EXPECT_EQ(host.connectOutput(index), S_OK);
    EXPECT_EQ(host.filter->Pause(), S_OK);
}

/// A renderer of a paused graph: keeps the first block until it is flushed or let go.
class KeepingSink : public SinkPin {
public:
    Gate inside, letGo;

    HRESULT Receive(IMediaSample* sample) override {
        inside.open();
        EXPECT_TRUE(letGo.await());
        return SinkPin::Receive(sample);
    }
    HRESULT BeginFlush() override {
        letGo.open();
        return SinkPin::BeginFlush();
    }
};

/// The instrument, with a block that is kept by the renderer of the mix.
class KeptBlock {
public:
    KeptBlock() {
        startWith(host, sink);
        block = elsewhere([this] { return host.send(100, 0.5f); });
        EXPECT_TRUE(sink.inside.await());
    }
    ~KeptBlock() { sink.letGo.open(); }

    KeepingSink sink;
    FilterHost host;
    std::future<HRESULT> block;
};

TEST(Looking, DoesNotWaitForTheInstrument) {
    Apartment apartment;
    FilterHost host;
    host.start({0});
    RefPtr<IMediaSeeking> seeking;
    ASSERT_EQ(host.output(0).QueryInterface(IID_IMediaSeeking, seeking.putVoid()), S_OK);
    const CAutoLock busy(host.filter->pzi());
    auto looks = elsewhere([&] {
        FILTER_STATE state = State_Stopped;
        EXPECT_EQ(host.filter->GetState(0, &state), S_OK);
        EXPECT_EQ(state, State_Paused);
        RefPtr<IEnumPins> pins, more;
        EXPECT_EQ(host.filter->EnumPins(pins.put()), S_OK);
        RefPtr<IPin> pin;
        EXPECT_EQ(pins->Next(1, pin.put(), nullptr), S_OK);
        EXPECT_EQ(pin.get(), &host.input());
        EXPECT_EQ(pins->Skip(1), S_OK);
        EXPECT_EQ(pins->Clone(more.put()), S_OK);
        EXPECT_EQ(pins->Reset(), S_OK);
        EXPECT_EQ(host.filter->FindPin(L"Chan 16", pin.put()), S_OK);
        EXPECT_EQ(pin.get(), &host.output(16));
        FILTER_INFO info{};
        EXPECT_EQ(host.filter->QueryFilterInfo(&info), S_OK);
        RefPtr<IReferenceClock> clock;
        EXPECT_EQ(host.filter->GetSyncSource(clock.put()), S_OK);
        EXPECT_EQ(host.output(0).ConnectedTo(pin.put()), S_OK);
        EXPECT_EQ(pin.get(), &host.sink(0));
        AM_MEDIA_TYPE type{};
        EXPECT_EQ(host.input().ConnectionMediaType(&type), S_OK);
        FreeMediaType(type);
        LONGLONG stop = 0;
        EXPECT_EQ(seeking->GetStopPosition(&stop), E_NOTIMPL);
        EXPECT_EQ(host.output(0).QueryInterface(IID_IMediaPosition, pin.putVoid()), S_OK);
    });
    EXPECT_TRUE(ends(looks));
}

TEST(KeptDownstream, ABlockKeepsNoCallOfThePageWaiting) {
    KeptBlock it;
    auto calls = elsewhere([&] {
        std::int32_t files = -1;
        EXPECT_EQ(it.host.filter->GetBinFileCount(&files), S_OK);
        EXPECT_EQ(it.host.filter->StopPad(0), S_OK);
    });
    EXPECT_TRUE(ends(calls));
    EXPECT_TRUE(goesOn(it.block));
    it.sink.letGo.open();
    ASSERT_TRUE(ends(it.block));
    EXPECT_EQ(it.block.get(), S_OK);
    EXPECT_EQ(it.sink.deliveries.size(), 1u);
}

TEST(KeptDownstream, AFlushGetsThroughToTheRenderer) {
    KeptBlock it;
    auto flush = elsewhere([&] { return it.host.input().BeginFlush(); });
    ASSERT_TRUE(ends(flush));
    EXPECT_EQ(flush.get(), S_OK);
    ASSERT_TRUE(ends(it.block));
    EXPECT_EQ(it.sink.beginFlushes, 1);
    EXPECT_EQ(it.host.input().EndFlush(), S_OK);
    EXPECT_EQ(it.sink.endFlushes, 1);
}

TEST(KeptDownstream, AStopTakesTheStateAtOnceAndReturnsWhenTheBlockHasGone) {
    KeptBlock it;
    auto stop = elsewhere([&] { return it.host.filter->Stop(); });
    EXPECT_TRUE(goesOn(stop));
    auto page = elsewhere([&] {
        std::uint32_t request = 0;
        return it.host.filter->GetRefreshRequest(&request);
    });
    EXPECT_TRUE(ends(page));
    FILTER_STATE state = State_Running;
    EXPECT_EQ(it.host.filter->GetState(0, &state), S_OK);
    EXPECT_EQ(state, State_Stopped);
    it.sink.letGo.open();
    ASSERT_TRUE(ends(stop));
    EXPECT_EQ(stop.get(), S_OK);
    EXPECT_TRUE(it.block.wait_for(0s) == std::future_status::ready || ends(it.block));
    EXPECT_EQ(it.host.filter->releases, 1);
}

/// A receiver whose one buffer the test holds.
class StingySink : public SinkPin {
public:
    RefPtr<IMemAllocator> one = RefPtr<IMemAllocator>::adopt(new CMemAllocator);

    HRESULT GetAllocator(IMemAllocator** out) override {
        *out = RefPtr<IMemAllocator>(one).detach();
        return S_OK;
    }
};

TEST(KeptDownstream, AWaitForABufferKeepsNobodyWaitingAndEndsWithTheStop) {
    StingySink sink;
    FilterHost host;
    host.inputAllocator.properties = {1, 0, 1, 0};
    startWith(host, sink);
    RefPtr<IMediaSample> taken;
    ASSERT_EQ(sink.one->GetBuffer(taken.put(), nullptr, nullptr, 0), S_OK);

    auto block = elsewhere([&] { return host.send(100); });
    EXPECT_TRUE(goesOn(block));
    auto page = elsewhere([&] { return host.filter->StopPad(0); });
    EXPECT_TRUE(ends(page));
    auto stop = elsewhere([&] { return host.filter->Stop(); });
    ASSERT_TRUE(ends(stop));
    ASSERT_TRUE(ends(block));
    EXPECT_EQ(block.get(), VFW_E_NOT_COMMITTED);
    EXPECT_EQ(host.filter->position(), 0);
    taken.reset();
}

/// A receiver that does something of its own with each sample.
class AskingSink : public SinkPin {
public:
    std::function<void()> onReceive;

    HRESULT Receive(IMediaSample* sample) override {
        onReceive();
        return SinkPin::Receive(sample);
    }
};

TEST(HandingOut, ASinkThatAsksBackFindsThePositionBehindTheBlock) {
    AskingSink sink;
    FilterHost host;
    startWith(host, sink);
    std::vector<std::int64_t> seen;
    sink.onReceive = [&] { seen.push_back(host.filter->position()); };
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(host.send(50), S_OK);
    EXPECT_EQ(seen, (std::vector<std::int64_t>{100, 150}));
}

TEST(HandingOut, GoesOnWhileTheGraphIsTakenApartFromWithin) {
    AskingSink first;
    FilterHost host;
    startWith(host, first, {5});
    first.onReceive = [&] {
        EXPECT_EQ(host.filter->Stop(), S_OK);
        for (int index : {0, 5}) EXPECT_EQ(host.output(index).Disconnect(), S_OK);
    };
    EXPECT_EQ(host.send(100, 0.5f), S_OK);
    EXPECT_EQ(first.deliveries.size(), 1u);
    EXPECT_EQ(host.last(5).audio, std::vector<float>(200, 0.5f));
    EXPECT_EQ(host.sink(5).allocator.samplesOut(), 0u);
}

TEST(HandingOut, WhatCanNotBeMarkedAsSilentIsSilentAsAWhole) {
    FilterHost host;
    host.start({0, 2});
    ASSERT_FALSE(host.sink(2).allocator.samplesOfferSilence);
    FakeSample in(100 * 8, true);
    in.silent = 1;
    EXPECT_EQ(host.input().Receive(&in), S_OK);
    EXPECT_EQ(host.last(2).audio, std::vector<float>(200, 0.0f));
    EXPECT_EQ(host.last(0).audio, std::vector<float>(200, 0.0f));
}

}  // namespace
}  // namespace marnoth::test::stream_lock_test
