#include "hostkit/HostGraph.h"

#include <new>
#include <string_view>
#include <utility>

#include "platform/com/Guarded.h"

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

/// Calls `take` for each pin of the walk, in its order.
template <class Take>
void forEachPin(IEnumPins& pins, Take take) {
    pins.Reset();
    IPin* pin = nullptr;
    while (pins.Next(1, &pin, nullptr) == S_OK) take(RefPtr<IPin>::adopt(pin));
}

HRESULT disconnectBoth(IPin& pin, IPin& peer) {
    const HRESULT here = pin.Disconnect();
    const HRESULT there = peer.Disconnect();
    return FAILED(here) ? here : there;
}

HRESULT disconnectPins(IEnumPins& pins) {
    HRESULT result = S_OK;
    forEachPin(pins, [&](const RefPtr<IPin>& pin) {
        const RefPtr<IPin> peer = peerOf(*pin);
        const HRESULT hr = peer ? disconnectBoth(*pin, *peer) : S_OK;
        if (SUCCEEDED(result)) result = hr;
    });
    return result;
}

}  // namespace

std::vector<RefPtr<IPin>> pinsOf(IBaseFilter& filter) {
    std::vector<RefPtr<IPin>> pins;
    RefPtr<IEnumPins> all;
    const HRESULT hr = filter.EnumPins(all.put());
    if (hr == E_OUTOFMEMORY) throw std::bad_alloc();
    if (SUCCEEDED(hr)) forEachPin(*all, [&](RefPtr<IPin> pin) { pins.push_back(std::move(pin)); });
    return pins;
}

RefPtr<AudioGraph> makeHostGraph() {
    return RefPtr<AudioGraph>::adopt(new HostGraph);
}

HostGraph::~HostGraph() {
    stop();
    disconnectAll();
    for (const Member& member : members_) member.filter->JoinFilterGraph(nullptr, nullptr);
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
    for (const Member& member : members_) {
        const HRESULT hr = disconnectPins(*member.pins);
        if (SUCCEEDED(result)) result = hr;
    }
    return result;
}

int HostGraph::eventCount(LONG code) {
    CAutoLock lock(eventLock_);
    return events_[code];
}

HRESULT HostGraph::AddFilter(IBaseFilter* filter, LPCWSTR name) {
    return filter ? add(*filter, name) : E_POINTER;
}

HRESULT HostGraph::add(IBaseFilter& filter, LPCWSTR name) {
    return guarded([&] { return join(filter, name); });
}

HRESULT HostGraph::join(IBaseFilter& filter, LPCWSTR name) {
    Member member{RefPtr<IBaseFilter>(&filter), {}};
    HRESULT hr = filter.EnumPins(member.pins.put());
    if (FAILED(hr)) return hr;
    // Behind this nothing fails once the filter has its graph.
    members_.reserve(members_.size() + 1);
    order_.reserve(members_.size() + 1);
    hr = filter.JoinFilterGraph(this, name);
    if (SUCCEEDED(hr)) members_.push_back(std::move(member));
    return hr;
}

HostGraph::Member* HostGraph::memberOf(const IBaseFilter* filter) {
    for (Member& member : members_)
        if (member.filter.get() == filter) return &member;
    return nullptr;
}

HRESULT HostGraph::RemoveFilter(IBaseFilter* filter) {
    Member* const found = memberOf(filter);
    if (!found) return VFW_E_NOT_IN_GRAPH;
    const HRESULT hr = disconnectPins(*found->pins);
    if (FAILED(hr)) return hr;
    filter->JoinFilterGraph(nullptr, nullptr);
    members_.erase(members_.begin() + (found - members_.data()));
    return S_OK;
}

HRESULT HostGraph::FindFilterByName(LPCWSTR name, IBaseFilter** out) {
    if (!name || !out) return E_POINTER;
    *out = nullptr;
    for (const Member& member : members_) {
        FILTER_INFO info{};
        if (FAILED(member.filter->QueryFilterInfo(&info))) continue;
        RefPtr<IFilterGraph>::adopt(info.pGraph);
        if (std::wstring_view(info.achName) != name) continue;
        *out = RefPtr<IBaseFilter>(member.filter).detach();
        return S_OK;
    }
    return VFW_E_NOT_FOUND;
}

HRESULT HostGraph::connect(IPin& output, IPin& input, const AM_MEDIA_TYPE& type) {
    return ConnectDirect(&output, &input, &type);
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
    return guarded([&] {
        ++events_[code];
        return S_OK;
    });
}

IUnknown* HostGraph::FindInterface(REFIID iid) {
    if (iid == IID_IFilterGraph || iid == IID_IGraphBuilder || iid == IID_IFilterGraph2) {
        return static_cast<IFilterGraph2*>(this);
    }
    if (iid == IID_IMediaEventSink) return static_cast<IMediaEventSink*>(this);
    return nullptr;
}

const std::vector<IBaseFilter*>& HostGraph::downstreamFirst() {
    order_.clear();
    for (Member& member : members_) member.visited = false;
    for (Member& member : members_) appendBehindReceivers(member);
    return order_;
}

/// Appends a filter to the order, behind everything that it sends to. A loop of filters ends where it began.
void HostGraph::appendBehindReceivers(Member& member) {
    if (std::exchange(member.visited, true)) return;
    forEachPin(*member.pins, [this](const RefPtr<IPin>& pin) {
        const RefPtr<IPin> peer = directionOf(*pin) == PINDIR_OUTPUT ? peerOf(*pin) : RefPtr<IPin>();
        const RefPtr<IBaseFilter> receiver = peer ? filterOf(*peer) : RefPtr<IBaseFilter>();
        if (Member* const behind = memberOf(receiver.get())) appendBehindReceivers(*behind);
    });
    order_.push_back(member.filter.get());
}

}  // namespace marnoth
