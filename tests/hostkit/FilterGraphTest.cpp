/// The instrument between the host's source and sinks, in the graph of the system instead of our own.

#include <gtest/gtest.h>

#include <thread>

#include "host/CreateInstance.h"
#include "hostkit/FloatFormat.h"
#include "hostkit/MakeObject.h"
#include "hostkit/StreamSink.h"
#include "hostkit/StreamSource.h"
#include "platform/graph/MediaType.h"

namespace marnoth::test::filter_graph_test {
namespace {

constexpr DWORD kRate = 44100;
constexpr std::int32_t kBlock = 512;
constexpr long kEventTimeout = 5000;  // ms

/// How many references there are besides the one that is asked through.
ULONG otherReferences(IUnknown& object) {
    object.AddRef();
    return object.Release() - 1;
}

RefPtr<IPin> pinOf(IBaseFilter& filter, const wchar_t* name) {
    RefPtr<IPin> pin;
    EXPECT_EQ(filter.FindPin(name, pin.put()), S_OK) << name;
    return pin;
}

template <class Interface>
RefPtr<Interface> query(IUnknown& object, REFIID iid) {
    RefPtr<Interface> found;
    EXPECT_EQ(object.QueryInterface(iid, found.putVoid()), S_OK);
    return found;
}

/// The system's graph with the instrument, a source, and sinks that keep what the mix and channel 3 send.
struct SystemGraph {
    SystemGraph() {
        EXPECT_EQ(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_IGraphBuilder,
                                   graph.putVoid()),
                  S_OK);
        EXPECT_EQ(createInstrument(nullptr, IID_IBaseFilter, instrument.putVoid()), S_OK);
        EXPECT_EQ(graph->AddFilter(source.get(), L"Source"), S_OK);
        EXPECT_EQ(graph->AddFilter(instrument.get(), L"Instrument"), S_OK);
        EXPECT_EQ(graph->AddFilter(mix.get(), L"Mix"), S_OK);
        EXPECT_EQ(graph->AddFilter(channel.get(), L"Channel"), S_OK);
        source->pin().setFormat(floatFormat(kRate, 2));
        keep(*mix, mixed);
        keep(*channel, channelled);
    }

    static void keep(StreamSink& sink, std::vector<float>& audio) {
        sink.pin().setTaker([&audio](std::span<const float> samples, bool) {
            audio.insert(audio.end(), samples.begin(), samples.end());
        });
    }

    /// The outputs leave the choice of the type to the pins.
    void connect() {
        CMediaType type;
        type.SetWaveFormat(floatFormat(kRate, 2));
        EXPECT_EQ(graph->ConnectDirect(&source->pin(), pinOf(*instrument, L"Input").get(), type.Get()), S_OK);
        EXPECT_EQ(graph->ConnectDirect(pinOf(*instrument, L"Mix Output").get(), &mix->pin(), nullptr), S_OK);
        EXPECT_EQ(graph->ConnectDirect(pinOf(*instrument, L"Chan 3").get(), &channel->pin(), type.Get()),
                  S_OK);
    }

    /// Sends `blocks` blocks of rising numbers, and gives them.
    std::vector<float> send(int blocks) {
        std::vector<float> all;
        for (int block = 0; block < blocks; ++block) {
            std::vector<float> samples(kBlock * 2);
            for (float& sample : samples)
                sample = static_cast<float>(all.size() + (&sample - samples.data())) / 65536;
            EXPECT_EQ(source->pin().send({.frames = kBlock, .samples = samples}), S_OK);
            all.insert(all.end(), samples.begin(), samples.end());
        }
        return all;
    }

    std::vector<float> mixed, channelled;
    RefPtr<StreamSource> source = makeObject<StreamSource>();
    RefPtr<StreamSink> mix = makeObject<StreamSink>();
    RefPtr<StreamSink> channel = makeObject<StreamSink>();
    RefPtr<IBaseFilter> instrument;
    RefPtr<IGraphBuilder> graph;  ///< goes first, and takes the filters apart
};

void waitForState(IMediaControl& control, OAFilterState wanted) {
    OAFilterState state = -1;
    EXPECT_EQ(control.GetState(kEventTimeout, &state), S_OK);
    EXPECT_EQ(state, wanted);
}

void playThrough() {
    SystemGraph it;
    it.connect();
    auto control = query<IMediaControl>(*it.graph, IID_IMediaControl);
    ASSERT_GE(control->Run(), S_OK);
    waitForState(*control, State_Running);
    const std::vector<float> sent = it.send(20);
    EXPECT_EQ(it.channelled, sent);
    EXPECT_EQ(it.mixed, sent);

    // What the sinks report of their ends, the graph reports as one.
    EXPECT_EQ(it.source->pin().DeliverEndOfStream(), S_OK);
    auto events = query<IMediaEvent>(*it.graph, IID_IMediaEvent);
    long code = 0;
    EXPECT_EQ(events->WaitForCompletion(kEventTimeout, &code), S_OK);
    EXPECT_EQ(code, EC_COMPLETE);
    EXPECT_EQ(control->Stop(), S_OK);
    waitForState(*control, State_Stopped);
}

void takeApart() {
    SystemGraph it;
    it.connect();
    auto control = query<IMediaControl>(*it.graph, IID_IMediaControl);
    ASSERT_GE(control->Run(), S_OK);
    it.send(1);
    ASSERT_EQ(control->Stop(), S_OK);
    control.reset();
    EXPECT_EQ(it.graph.detach()->Release(), 0u);
    for (IUnknown* filter : {static_cast<IUnknown*>(it.instrument.get()), it.source->Owner(), it.mix->Owner(),
                             it.channel->Owner()})
        EXPECT_EQ(otherReferences(*filter), 0u);
}

void removeWhileConnected() {
    SystemGraph it;
    it.connect();
    EXPECT_EQ(it.graph->RemoveFilter(it.instrument.get()), S_OK);
    EXPECT_EQ(otherReferences(*it.instrument), 0u);
    IPin* peer = nullptr;
    EXPECT_EQ(it.mix->pin().ConnectedTo(&peer), VFW_E_NOT_CONNECTED);
}

/// Runs `body` on a thread of its own that has joined an apartment of the kind.
void inApartment(DWORD kind, void (*body)()) {
    std::thread([=] {
        ASSERT_EQ(CoInitializeEx(nullptr, kind), S_OK);
        body();
        CoUninitialize();
    }).join();
}

class SystemGraphIn : public testing::TestWithParam<DWORD> {};
INSTANTIATE_TEST_SUITE_P(Apartments, SystemGraphIn,
                         testing::Values(COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED));

TEST_P(SystemGraphIn, CarriesEveryBlockBitForBitAndTheEndOfTheStream) {
    inApartment(GetParam(), playThrough);
}

TEST_P(SystemGraphIn, LeavesNoReferencesBehind) {
    inApartment(GetParam(), takeApart);
}

TEST_P(SystemGraphIn, TakesTheInstrumentOutWithItsConnections) {
    inApartment(GetParam(), removeWhileConnected);
}

}  // namespace
}  // namespace marnoth::test::filter_graph_test
