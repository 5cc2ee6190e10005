#include <gtest/gtest.h>

#include "platform/ConnectedFilters.h"

namespace marnoth::test::filter_test {
namespace {

using test::floatType;
using test::kTestFilterId;
using test::Log;
using test::TestFilter;
using test::TwoFilters;

FILTER_STATE stateOf(TestFilter& filter) {
    FILTER_STATE state = State_Running;
    EXPECT_EQ(filter.GetState(0, &state), S_OK);
    return state;
}

/// A graph that notes what filters ask of it.
class TestGraph : public Implements<CUnknown, IFilterGraph, IMediaEventSink> {
public:
    explicit TestGraph(bool takesEvents = true) : Implements(nullptr), takesEvents_(takesEvents) {}

    HRESULT AddFilter(IBaseFilter*, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT RemoveFilter(IBaseFilter*) override { return E_NOTIMPL; }
    HRESULT EnumFilters(IEnumFilters**) override { return E_NOTIMPL; }
    HRESULT FindFilterByName(LPCWSTR, IBaseFilter**) override { return E_NOTIMPL; }
    HRESULT ConnectDirect(IPin*, IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT Reconnect(IPin* pin) override {
        reconnected = pin;
        return S_OK;
    }
    HRESULT Disconnect(IPin*) override { return E_NOTIMPL; }
    HRESULT SetDefaultSyncSource() override { return E_NOTIMPL; }
    HRESULT Notify(LONG code, LONG_PTR, LONG_PTR) override {
        event = code;
        return S_OK;
    }

    IPin* reconnected = nullptr;
    LONG event = 0;

protected:
    IUnknown* FindInterface(REFIID iid) override {
        if (iid == IID_IFilterGraph) return static_cast<IFilterGraph*>(this);
        return takesEvents_ && iid == IID_IMediaEventSink ? static_cast<IMediaEventSink*>(this) : nullptr;
    }

private:
    const bool takesEvents_;
};

TEST(Filter, AnswersToItsInterfacesWithOneIdentity) {
    TestFilter filter;
    for (const IID& iid : {IID_IUnknown, IID_IPersist, IID_IMediaFilter, IID_IBaseFilter, IID_IAMovieSetup}) {
        RefPtr<IUnknown> answer;
        ASSERT_EQ(filter.QueryInterface(iid, answer.putVoid()), S_OK);
        RefPtr<IUnknown> identity;
        answer->QueryInterface(IID_IUnknown, identity.putVoid());
        EXPECT_EQ(identity, filter.Inner());
    }
    RefPtr<IUnknown> none;
    EXPECT_EQ(filter.QueryInterface(IID_IDispatch, none.putVoid()), E_NOINTERFACE);
    EXPECT_EQ(filter.references(), 1u);
}

TEST(Filter, AsAPartOfAnotherObjectItCountsThere) {
    TestFilter outer;
    TestFilter part(outer.Owner());
    EXPECT_EQ(part.input.AddRef(), 2u);
    EXPECT_EQ(outer.references(), 2u);
    EXPECT_EQ(part.input.Release(), 1u);
}

TEST(Filter, TellsItsClassId) {
    TestFilter filter;
    CLSID id{};
    EXPECT_EQ(filter.GetClassID(&id), S_OK);
    EXPECT_TRUE(id == kTestFilterId);
    EXPECT_EQ(filter.GetClassID(nullptr), E_POINTER);
}

TEST(Filter, GoesFromStoppedOverPausedToRunningAndBack) {
    TestFilter filter;
    EXPECT_EQ(stateOf(filter), State_Stopped);
    EXPECT_EQ(filter.Pause(), S_OK);
    EXPECT_EQ(stateOf(filter), State_Paused);
    EXPECT_EQ(filter.Run(0), S_OK);
    EXPECT_EQ(stateOf(filter), State_Running);
    EXPECT_EQ(filter.Pause(), S_OK);
    EXPECT_EQ(stateOf(filter), State_Paused);
    EXPECT_EQ(filter.Stop(), S_OK);
    EXPECT_EQ(stateOf(filter), State_Stopped);
}

TEST(Filter, TellsOnlyItsConnectedPins) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    two.log.clear();
    two.source.Pause();
    two.source.Pause();
    two.source.Run(77);
    two.source.Pause();
    two.source.Stop();
    two.source.Stop();
    EXPECT_EQ(two.log, (Log{"out active", "out run 77", "out inactive"}));
}

TEST(Filter, RunFromStoppedPausesFirst) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    two.log.clear();
    EXPECT_EQ(two.source.Run(5), S_OK);
    EXPECT_EQ(two.log, (Log{"out active", "out run 5"}));
}

TEST(Filter, APinThatCantBecomeActiveLeavesTheFilterStopped) {
    TwoFilters chain;
    TestFilter last;
    chain.sink.output.behaviour.proposedChannels = {2};
    ASSERT_EQ(chain.connect(), S_OK);
    ASSERT_EQ(chain.sink.output.Connect(&last.input, nullptr), S_OK);
    chain.sink.output.behaviour.activeResult = E_OUTOFMEMORY;
    chain.log.clear();
    EXPECT_EQ(chain.sink.Pause(), E_OUTOFMEMORY);
    EXPECT_EQ(stateOf(chain.sink), State_Stopped);
    EXPECT_EQ(chain.log, (Log{"in active", "out active", "in inactive"}));
    chain.log.clear();
    EXPECT_EQ(chain.sink.Run(0), E_OUTOFMEMORY);
    EXPECT_EQ(stateOf(chain.sink), State_Stopped);
    chain.sink.output.Disconnect();
    last.input.Disconnect();
}

TEST(Filter, FindsAPinByItsName) {
    TestFilter filter;
    RefPtr<IPin> pin;
    EXPECT_EQ(filter.FindPin(L"Mix Output", pin.put()), S_OK);
    EXPECT_EQ(pin.get(), &filter.output);
    EXPECT_EQ(filter.FindPin(L"Chan 1", pin.put()), VFW_E_NOT_FOUND);
    EXPECT_FALSE(pin);
}

TEST(Filter, KnowsItsGraphWithoutHoldingIt) {
    auto graph = RefPtr<TestGraph>::adopt(new TestGraph);
    TestFilter filter;
    EXPECT_EQ(filter.JoinFilterGraph(graph.get(), L"Marnoth 1"), S_OK);
    EXPECT_EQ(graph->AddRef(), 2u);
    graph->Release();
    FILTER_INFO info;
    ASSERT_EQ(filter.QueryFilterInfo(&info), S_OK);
    EXPECT_EQ(info.pGraph, graph.get());
    EXPECT_EQ(std::wstring(info.achName), L"Marnoth 1");
    info.pGraph->Release();
    EXPECT_EQ(filter.JoinFilterGraph(nullptr, nullptr), S_OK);
    ASSERT_EQ(filter.QueryFilterInfo(&info), S_OK);
    EXPECT_EQ(info.pGraph, nullptr);
    EXPECT_EQ(info.achName[0], L'\0');
}

TEST(Filter, SendsEventsAndReconnectionsToItsGraph) {
    TestFilter filter;
    EXPECT_EQ(filter.NotifyEvent(EC_GRAPH_CHANGED, 0, 0), VFW_E_NOT_IN_GRAPH);
    EXPECT_EQ(filter.ReconnectPin(&filter.output, nullptr), VFW_E_NOT_IN_GRAPH);
    auto graph = RefPtr<TestGraph>::adopt(new TestGraph);
    filter.JoinFilterGraph(graph.get(), L"f");
    EXPECT_EQ(filter.NotifyEvent(EC_GRAPH_CHANGED, 0, 0), S_OK);
    EXPECT_EQ(graph->event, 0x50);
    EXPECT_EQ(filter.ReconnectPin(&filter.output, nullptr), S_OK);
    EXPECT_EQ(graph->reconnected, &filter.output);
}

TEST(Filter, AGraphWithoutAnEventSinkGetsNoEvents) {
    TestFilter filter;
    auto graph = RefPtr<TestGraph>::adopt(new TestGraph(false));
    filter.JoinFilterGraph(graph.get(), L"f");
    EXPECT_EQ(filter.NotifyEvent(EC_GRAPH_CHANGED, 0, 0), E_NOTIMPL);
}

TEST(Filter, StubsAnswerWithoutDoingAnything) {
    TestFilter filter;
    LPWSTR vendor = nullptr;
    EXPECT_EQ(filter.QueryVendorInfo(&vendor), E_NOTIMPL);
    EXPECT_EQ(filter.Register(), S_FALSE);
    EXPECT_EQ(filter.Unregister(), S_FALSE);
    IReferenceClock* clock = nullptr;
    EXPECT_EQ(filter.GetSyncSource(&clock), S_OK);
    EXPECT_EQ(clock, nullptr);
}

TEST(Delivery, ASampleGoesFromTheAllocatorToTheReceiver) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    RefPtr<IMediaSample> sample;
    EXPECT_EQ(two.source.output.GetDeliveryBuffer(sample.put(), nullptr, nullptr, 0), VFW_E_NOT_COMMITTED);
    two.pause();
    ASSERT_EQ(two.source.output.GetDeliveryBuffer(sample.put(), nullptr, nullptr, 0), S_OK);
    EXPECT_EQ(two.source.output.Deliver(sample.get()), S_OK);
    EXPECT_EQ(two.sink.input.received, 1);
    sample.reset();
    two.source.Stop();
    EXPECT_EQ(two.source.output.GetDeliveryBuffer(sample.put(), nullptr, nullptr, 0), VFW_E_NOT_COMMITTED);
}

TEST(Delivery, IsRefusedWhileStoppedFlushingOrUnconnected) {
    TwoFilters two;
    auto allocator = RefPtr<CMemAllocator>::adopt(new CMemAllocator);
    ALLOCATOR_PROPERTIES properties{1, 16, 1, 0};
    allocator->SetProperties(&properties, &properties);
    allocator->Commit();
    RefPtr<IMediaSample> sample;
    ASSERT_EQ(allocator->GetBuffer(sample.put(), nullptr, nullptr, 0), S_OK);
    EXPECT_EQ(two.sink.input.Receive(sample.get()), VFW_E_NOT_CONNECTED);
    ASSERT_EQ(two.connect(), S_OK);
    EXPECT_EQ(two.sink.input.Receive(sample.get()), VFW_E_WRONG_STATE);
    two.pause();
    EXPECT_EQ(two.sink.input.Receive(nullptr), E_POINTER);
    EXPECT_EQ(two.source.output.DeliverBeginFlush(), S_OK);
    EXPECT_EQ(two.sink.input.Receive(sample.get()), S_FALSE);
    EXPECT_EQ(two.source.output.DeliverEndFlush(), S_OK);
    EXPECT_EQ(two.sink.input.Receive(sample.get()), S_OK);
}

TEST(Delivery, ASampleWithATypeThatThePinRefusesIsRefused) {
    TwoFilters two;
    two.sink.input.behaviour.accepts = [](int channels) { return channels == 2; };
    ASSERT_EQ(two.connect(), S_OK);
    two.pause();
    RefPtr<IMediaSample> sample;
    ASSERT_EQ(two.source.output.GetDeliveryBuffer(sample.put(), nullptr, nullptr, 0), S_OK);
    CMediaType mono = floatType(1);
    sample->SetMediaType(mono.Get());
    EXPECT_EQ(two.source.output.Deliver(sample.get()), VFW_E_INVALIDMEDIATYPE);
    CMediaType stereo = floatType(2);
    sample->SetMediaType(stereo.Get());
    EXPECT_EQ(two.source.output.Deliver(sample.get()), S_OK);
}

TEST(Delivery, SeveralSamplesStopAtTheFirstThatIsntTaken) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    two.pause();
    RefPtr<IMediaSample> sample;
    ASSERT_EQ(two.source.output.GetDeliveryBuffer(sample.put(), nullptr, nullptr, 0), S_OK);
    IMediaSample* samples[] = {sample.get(), sample.get(), nullptr, sample.get()};
    LONG processed = -1;
    EXPECT_EQ(two.sink.input.ReceiveMultiple(samples, 4, &processed), E_POINTER);
    EXPECT_EQ(processed, 2);
    EXPECT_EQ(two.sink.input.received, 2);
}

TEST(Delivery, EndOfStreamAndSegmentsReachTheReceiver) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    two.log.clear();
    EXPECT_EQ(two.source.output.DeliverEndOfStream(), S_OK);
    EXPECT_EQ(two.log, (Log{"in end of stream"}));
    EXPECT_EQ(two.source.output.DeliverNewSegment(1, 2, 3.0), S_OK);
    EXPECT_EQ(two.sink.input.SegmentRate(), 3.0);
}

TEST(Delivery, StoppingTheReceiverEndsAFlushAndTakesTheAllocatorOutOfUse) {
    TwoFilters two;
    ASSERT_EQ(two.connect(), S_OK);
    two.pause();
    two.sink.input.BeginFlush();
    two.sink.Stop();
    EXPECT_FALSE(two.sink.input.IsFlushing());
    RefPtr<IMediaSample> sample;
    EXPECT_EQ(two.source.output.GetDeliveryBuffer(sample.put(), nullptr, nullptr, 0), VFW_E_NOT_COMMITTED);
}

/// A filter with an input and no output, and one whose output leads nowhere.
class SinkFilter : public TestFilter {
public:
    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? &input : nullptr; }
};

TEST(Delivery, MayWaitOnlyIfSomethingDownstreamMay) {
    SinkFilter end;
    EXPECT_EQ(end.input.ReceiveCanBlock(), S_OK) << "nobody knows what a filter without outputs does";
    TestFilter open;
    EXPECT_EQ(open.input.ReceiveCanBlock(), S_FALSE) << "its output leads nowhere";
    open.output.behaviour.proposedChannels = {2};
    ASSERT_EQ(open.output.Connect(&end.input, nullptr), S_OK);
    EXPECT_EQ(open.input.ReceiveCanBlock(), S_OK);
    open.output.Disconnect();
    end.input.Disconnect();
}

}  // namespace
}  // namespace marnoth::test::filter_test
