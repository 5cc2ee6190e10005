#include "hostkit/HostGraph.h"

#include <algorithm>
#include <string_view>

namespace marnoth {

namespace {

PIN_DIRECTION directionOf(IPin& pin) {
    PIN_DIRECTION direction = PINDIR_INPUT;
    pin.QueryDirection(&direction);
    return direction;
}

RefPtr<IPin> peerOf(IPin& pin) {
    RefPtr<IPin> peer;
    if (FAILED(pin.ConnectedTo(peer.put()))) return {};
    return peer;
}

RefPtr<IBaseFilter> filterOf(IPin& pin) {
    PIN_INFO info{};
    if (FAILED(pin.QueryPinInfo(&info))) return {};
    return RefPtr<IBaseFilter>::adopt(info.pFilter);
}

bool holds(const std::vector<IBaseFilter*>& filters, const IBaseFilter* filter) {
    return std::find(filters.begin(), filters.end(), filter) != filters.end();
}

/// Appends `filter` to `order`, behind everything that it sends to. A loop of filters ends where it began.
void appendBehindReceivers(IBaseFilter* filter, std::vector<IBaseFilter*>& visited,
                           std::vector<IBaseFilter*>& order) {
    if (holds(visited, filter)) return;
    visited.push_back(filter);
    for (const RefPtr<IPin>& pin : pinsOf(*filter)) {
        const RefPtr<IPin> peer = directionOf(*pin) == PINDIR_OUTPUT ? peerOf(*pin) : RefPtr<IPin>();
        const RefPtr<IBaseFilter> receiver = peer ? filterOf(*peer) : RefPtr<IBaseFilter>();
        if (receiver) appendBehindReceivers(receiver.get(), visited, order);
    }
    order.push_back(filter);
}

HRESULT disconnectBoth(IPin& pin, IPin& peer) {
    const HRESULT here = pin.Disconnect();
    const HRESULT there = peer.Disconnect();
    return FAILED(here) ? here : there;
}

HRESULT disconnectPins(IBaseFilter& filter) {
    HRESULT result = S_OK;
    for (const RefPtr<IPin>& pin : pinsOf(filter)) {
        const RefPtr<IPin> peer = peerOf(*pin);
        const HRESULT hr = peer ? disconnectBoth(*pin, *peer) : S_OK;
        if (SUCCEEDED(result)) result = hr;
    }
    return result;
}

}  // namespace

std::vector<RefPtr<IPin>> pinsOf(IBaseFilter& filter) {
    std::vector<RefPtr<IPin>> pins;
    RefPtr<IEnumPins> all;
    if (FAILED(filter.EnumPins(all.put()))) return pins;
    IPin* pin = nullptr;
    ULONG fetched = 0;
    while (all->Next(1, &pin, &fetched) == S_OK) pins.push_back(RefPtr<IPin>::adopt(pin));
    return pins;
}

HostGraph::~HostGraph() {
    stop();
    disconnectAll();
    for (const RefPtr<IBaseFilter>& filter : filters_) filter->JoinFilterGraph(nullptr, nullptr);
}

HRESULT HostGraph::pause() {
    for (IBaseFilter* filter : downstreamFirst()) {
        const HRESULT hr = filter->Pause();
        if (FAILED(hr)) {
            if (state_ == State_Stopped) stop();
            return hr;
        }
    }
    state_ = State_Paused;
    return S_OK;
}

HRESULT HostGraph::run() {
    if (state_ == State_Stopped) {
        const HRESULT hr = pause();
        if (FAILED(hr)) return hr;
    }
    for (IBaseFilter* filter : downstreamFirst()) {
        const HRESULT hr = filter->Run(0);
        if (FAILED(hr)) return hr;
    }
    state_ = State_Running;
    return S_OK;
}

HRESULT HostGraph::stop() {
    HRESULT result = S_OK;
    for (IBaseFilter* filter : downstreamFirst()) {
        const HRESULT hr = filter->Stop();
        if (SUCCEEDED(result) && FAILED(hr)) result = hr;
    }
    state_ = State_Stopped;
    return result;
}

HRESULT HostGraph::disconnectAll() {
    HRESULT result = S_OK;
    for (const RefPtr<IBaseFilter>& filter : filters_) {
        const HRESULT hr = disconnectPins(*filter);
        if (SUCCEEDED(result)) result = hr;
    }
    return result;
}

int HostGraph::eventCount(LONG code) {
    CAutoLock lock(eventLock_);
    return events_[code];
}

HRESULT HostGraph::AddFilter(IBaseFilter* filter, LPCWSTR name) {
    if (!filter) return E_POINTER;
    const HRESULT hr = filter->JoinFilterGraph(this, name);
    if (SUCCEEDED(hr)) filters_.emplace_back(filter);
    return hr;
}

HRESULT HostGraph::RemoveFilter(IBaseFilter* filter) {
    const auto found = std::find(filters_.begin(), filters_.end(), filter);
    if (found == filters_.end()) return VFW_E_NOT_IN_GRAPH;
    const HRESULT hr = disconnectPins(*filter);
    if (FAILED(hr)) return hr;
    filter->JoinFilterGraph(nullptr, nullptr);
    filters_.erase(found);
    return S_OK;
}

HRESULT HostGraph::FindFilterByName(LPCWSTR name, IBaseFilter** out) {
    if (!name || !out) return E_POINTER;
    *out = nullptr;
    for (const RefPtr<IBaseFilter>& filter : filters_) {
        FILTER_INFO info{};
        if (FAILED(filter->QueryFilterInfo(&info))) continue;
        RefPtr<IFilterGraph>::adopt(info.pGraph);
        if (std::wstring_view(info.achName) != name) continue;
        *out = RefPtr<IBaseFilter>(filter).detach();
        return S_OK;
    }
    return VFW_E_NOT_FOUND;
}

HRESULT HostGraph::ConnectDirect(IPin* output, IPin* input, const AM_MEDIA_TYPE* type) {
    if (!output || !input) return E_POINTER;
    return output->Connect(input, type);
}

HRESULT HostGraph::Reconnect(IPin* pin) {
    return ReconnectEx(pin, nullptr);
}

HRESULT HostGraph::Disconnect(IPin* pin) {
    return pin ? pin->Disconnect() : E_POINTER;
}

HRESULT HostGraph::Connect(IPin* output, IPin* input) {
    return ConnectDirect(output, input, nullptr);
}

HRESULT HostGraph::ReconnectEx(IPin* pin, const AM_MEDIA_TYPE* type) {
    if (!pin) return E_POINTER;
    const RefPtr<IPin> peer = peerOf(*pin);
    if (!peer) return VFW_E_NOT_CONNECTED;
    const HRESULT hr = disconnectBoth(*pin, *peer);
    if (FAILED(hr)) return hr;
    const bool isOutput = directionOf(*pin) == PINDIR_OUTPUT;
    return ConnectDirect(isOutput ? pin : peer.get(), isOutput ? peer.get() : pin, type);
}

HRESULT HostGraph::Notify(LONG code, LONG_PTR, LONG_PTR) {
    CAutoLock lock(eventLock_);
    ++events_[code];
    return S_OK;
}

IUnknown* HostGraph::FindInterface(REFIID iid) {
    if (iid == IID_IFilterGraph || iid == IID_IGraphBuilder || iid == IID_IFilterGraph2) {
        return static_cast<IFilterGraph2*>(this);
    }
    if (iid == IID_IMediaEventSink) return static_cast<IMediaEventSink*>(this);
    return nullptr;
}

std::vector<IBaseFilter*> HostGraph::downstreamFirst() const {
    std::vector<IBaseFilter*> visited;
    std::vector<IBaseFilter*> order;
    for (const RefPtr<IBaseFilter>& filter : filters_) appendBehindReceivers(filter.get(), visited, order);
    return order;
}

}  // namespace marnoth
