#pragma once

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "hostkit/EventList.h"
#include "hostkit/HostGraph.h"
#include "hostkit/InstrumentGraph.h"
#include "hostkit/MakeObject.h"
#include "hostkit/TempoMap.h"
#include "shellkit/component/RegisteredInstrument.h"
#include "shellkit/component/SystemGraph.h"
#include "windows/Apartment.h"

namespace marnoth::test {

inline constexpr CLSID kNullRenderer{
    0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};

inline constexpr std::int32_t kBlockFrames = 512;

template <class Interface>
RefPtr<Interface> queryFor(IUnknown& object, REFIID iid) {
    RefPtr<Interface> found;
    EXPECT_EQ(object.QueryInterface(iid, found.putVoid()), S_OK);
    return found;
}

/// The graph that a filter is in.
inline RefPtr<IGraphBuilder> graphOf(IBaseFilter& filter) {
    FILTER_INFO info{};
    EXPECT_EQ(filter.QueryFilterInfo(&info), S_OK);
    return queryFor<IGraphBuilder>(*RefPtr<IFilterGraph>::adopt(info.pGraph), IID_IGraphBuilder);
}

/// How many references there are besides the one that is asked through.
inline ULONG otherReferences(IUnknown& object) {
    object.AddRef();
    return object.Release() - 1;
}

/// A renderer of the system's; null where there is none of the class.
inline RefPtr<IBaseFilter> makeRenderer(REFCLSID id) {
    RefPtr<IBaseFilter> renderer;
    CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, renderer.putVoid());
    return renderer;
}

/// The one pin of a renderer.
inline RefPtr<IPin> pinOf(IBaseFilter& renderer) {
    RefPtr<IEnumPins> pins;
    EXPECT_EQ(renderer.EnumPins(pins.put()), S_OK);
    RefPtr<IPin> pin;
    EXPECT_EQ(pins->Next(1, pin.put(), nullptr), S_OK);
    return pin;
}

/// The registered instrument in the system's graph, behind a source, with room for the system's renderers.
struct SystemRig {
    SystemRig() {
        HostContext::Services services;
        services.tempoMap = RefPtr<TempoService>(makeObject<TempoMap>(120.0).get());
        services.pins = makeObject<PinService>();
        EXPECT_EQ(host.attach(services), S_OK);
        EXPECT_EQ(host.connect(44100, 2, {}), S_OK);
    }

    RefPtr<IPin> pin(const wchar_t* name) const {
        RefPtr<IPin> found;
        EXPECT_EQ(filter->FindPin(name, found.put()), S_OK) << name;
        return found;
    }

    /// Adds a renderer and connects it, with no more between the two than the graph finds needful.
    RefPtr<IBaseFilter> render(const wchar_t* output, REFCLSID id) {
        const RefPtr<IBaseFilter> renderer = makeRenderer(id);
        EXPECT_TRUE(renderer);
        EXPECT_GE(graph->AddFilter(renderer.get(), L"Renderer"), S_OK);
        EXPECT_EQ(graph->Connect(pin(output).get(), pinOf(*renderer).get()), S_OK);
        return renderer;
    }

    HRESULT send() { return host.send({.frames = kBlockFrames}); }

    /// Comes back when the graph is in the state: in a paused one every renderer has a block then.
    void waitFor(OAFilterState wanted) {
        constexpr LONG kPatience = 60000;  // ms
        OAFilterState state = -1;
        EXPECT_EQ(control->GetState(kPatience, &state), S_OK);
        EXPECT_EQ(state, wanted);
    }

    InstrumentGraph host{createRegistered, makeSystemGraph};
    RefPtr<IBaseFilter> filter = queryFor<IBaseFilter>(host.sampler(), IID_IBaseFilter);
    RefPtr<IGraphBuilder> graph = graphOf(*filter);
    RefPtr<IMediaControl> control = queryFor<IMediaControl>(*graph, IID_IMediaControl);
};

/// A block that is sent into a rig on a thread of its own.
class SentBlock {
public:
    explicit SentBlock(SystemRig& rig)
        : result_(std::async(std::launch::async, [&rig] { return rig.send(); })) {}

    bool isOnItsWay() const { return result_.wait_for(std::chrono::seconds(0)) != std::future_status::ready; }
    /// Waits for its end.
    HRESULT result() { return inTime(result_); }

private:
    std::shared_future<HRESULT> result_;
};

}  // namespace marnoth::test
