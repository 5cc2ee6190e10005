#include "shellkit/component/SystemGraph.h"

#include <new>
#include <stdexcept>

#include "hostkit/HostGraph.h"
#include "platform/com/Guarded.h"
#include "platform/com/Unknown.h"

namespace marnoth {

namespace {

/// How long the filters may take to a state; ours are there at once.
constexpr LONG kPatienceMilliseconds = 10000;

void need(HRESULT result) {
    if (result == E_OUTOFMEMORY) throw std::bad_alloc();
    if (FAILED(result)) throw std::runtime_error("the system's filter graph can't be made");
}

/// What the manager notes besides a success is nobody's.
HRESULT plain(HRESULT result) {
    return FAILED(result) ? result : S_OK;
}

class SystemGraph : public Implements<CUnknown, AudioGraph> {
public:
    SystemGraph();

    HRESULT add(IBaseFilter& filter, LPCWSTR name) override {
        return plain(graph_->AddFilter(&filter, name));
    }
    HRESULT connect(IPin& output, IPin& input, const AM_MEDIA_TYPE& type) override {
        return plain(graph_->ConnectDirect(&output, &input, &type));
    }
    HRESULT disconnectAll() override;
    HRESULT pause() override;
    HRESULT run() override;
    HRESULT stop() override { return plain(control_->Stop()); }
    FILTER_STATE state() override;

private:
    IUnknown* FindInterface(REFIID) override { return nullptr; }
    template <class Work>
    HRESULT forEachFilter(Work work);
    HRESULT disconnectPinsOf(IBaseFilter& filter);
    HRESULT finish(HRESULT begun, FILTER_STATE former);
    void stopAgain();

    RefPtr<IGraphBuilder> graph_;
    RefPtr<IMediaControl> control_;
};

SystemGraph::SystemGraph() : Implements(nullptr) {
    need(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_IGraphBuilder,
                          graph_.putVoid()));
    need(graph_->QueryInterface(IID_IMediaControl, control_.putVoid()));
    RefPtr<IMediaFilter> timing;
    need(graph_->QueryInterface(IID_IMediaFilter, timing.putVoid()));
    need(timing->SetSyncSource(nullptr));
}

/// The first failure of `work`, which is done with all of them.
template <class Work>
HRESULT SystemGraph::forEachFilter(Work work) {
    RefPtr<IEnumFilters> filters;
    HRESULT result = graph_->EnumFilters(filters.put());
    if (FAILED(result)) return result;
    RefPtr<IBaseFilter> filter;
    while (filters->Next(1, filter.put(), nullptr) == S_OK) {
        const HRESULT hr = work(*filter);
        if (SUCCEEDED(result)) result = plain(hr);
    }
    return result;
}

HRESULT SystemGraph::disconnectAll() {
    return forEachFilter(
        [this](IBaseFilter& filter) { return guarded([&] { return disconnectPinsOf(filter); }); });
}

/// These ends alone: those at the other sides come with their own filters.
HRESULT SystemGraph::disconnectPinsOf(IBaseFilter& filter) {
    HRESULT result = S_OK;
    for (const RefPtr<IPin>& pin : pinsOf(filter)) {
        RefPtr<IPin> peer;
        if (FAILED(pin->ConnectedTo(peer.put()))) continue;
        const HRESULT hr = graph_->Disconnect(pin.get());
        if (SUCCEEDED(result)) result = plain(hr);
    }
    return result;
}

HRESULT SystemGraph::pause() {
    const FILTER_STATE former = state();
    return finish(control_->Pause(), former);
}

HRESULT SystemGraph::run() {
    const FILTER_STATE former = state();
    return finish(control_->Run(), former);
}

/// Waits for a change that has begun.
HRESULT SystemGraph::finish(HRESULT begun, FILTER_STATE former) {
    OAFilterState reached = State_Stopped;
    const HRESULT hr = FAILED(begun) ? begun : control_->GetState(kPatienceMilliseconds, &reached);
    const HRESULT result = hr == VFW_S_STATE_INTERMEDIATE ? VFW_E_TIMEOUT : hr;
    if (FAILED(result) && former == State_Stopped) stopAgain();
    return plain(result);
}

/// The manager takes a graph that couldn't start for a stopped one, and leaves the filters as they are.
void SystemGraph::stopAgain() {
    stop();
    forEachFilter([](IBaseFilter& filter) { return filter.Stop(); });
}

FILTER_STATE SystemGraph::state() {
    OAFilterState now = State_Stopped;
    control_->GetState(0, &now);
    return static_cast<FILTER_STATE>(now);
}

}  // namespace

RefPtr<AudioGraph> makeSystemGraph() {
    return RefPtr<AudioGraph>::adopt(new SystemGraph);
}

}  // namespace marnoth
