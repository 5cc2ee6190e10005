#pragma once

#include <map>
#include <vector>

#include "hostkit/AudioGraph.h"
#include "platform/com/RefPtr.h"
#include "platform/com/Unknown.h"
#include "platform/graph/Graph.h"
#include "platform/system/CritSec.h"

namespace marnoth {

/// A small audio graph: holds filters, connects their pins, takes them from state to state, and hears their
/// events. It has no clock, finds no filters of its own to put between two pins, and answers `E_NOTIMPL` to
/// what would need either.
///
/// One thread at a time, except for `Notify`. Filters keep no reference to their graph; it takes everything
/// apart when it goes.
class HostGraph : public Implements<CUnknown, IFilterGraph2, IMediaEventSink, AudioGraph> {
public:
    HostGraph() : Implements(nullptr) {}
    ~HostGraph() override;

    // AudioGraph. Filters change their state behind those that they send to, so that nobody sends to one who
    // isn't ready.
    HRESULT add(IBaseFilter& filter, LPCWSTR name) override;
    HRESULT connect(IPin& output, IPin& input, const AM_MEDIA_TYPE& type) override;
    HRESULT disconnectAll() override;
    HRESULT pause() override;
    HRESULT run() override;
    HRESULT stop() override;
    FILTER_STATE state() override { return state_; }

    /// How often filters have told the graph this event.
    int eventCount(LONG code);

    // IFilterGraph
    HRESULT AddFilter(IBaseFilter* filter, LPCWSTR name) override;
    /// Takes its connections apart first. `VFW_E_NOT_IN_GRAPH` for a filter that isn't here.
    HRESULT RemoveFilter(IBaseFilter* filter) override;
    HRESULT EnumFilters(IEnumFilters**) override { return E_NOTIMPL; }
    HRESULT FindFilterByName(LPCWSTR name, IBaseFilter** out) override;
    /// A null type leaves the choice to the pins.
    HRESULT ConnectDirect(IPin* output, IPin* input, const AM_MEDIA_TYPE* type) override;
    HRESULT Reconnect(IPin* pin) override;
    /// This end alone.
    HRESULT Disconnect(IPin* pin) override;
    HRESULT SetDefaultSyncSource() override { return E_NOTIMPL; }

    // IGraphBuilder
    HRESULT Connect(IPin* output, IPin* input) override;
    HRESULT Render(IPin*) override { return E_NOTIMPL; }
    HRESULT RenderFile(LPCWSTR, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT AddSourceFilter(LPCWSTR, LPCWSTR, IBaseFilter**) override { return E_NOTIMPL; }
    HRESULT SetLogFile(DWORD_PTR) override { return E_NOTIMPL; }
    HRESULT Abort() override { return E_NOTIMPL; }
    HRESULT ShouldOperationContinue() override { return S_OK; }

    // IFilterGraph2
    HRESULT AddSourceFilterForMoniker(IMoniker*, IBindCtx*, LPCWSTR, IBaseFilter**) override {
        return E_NOTIMPL;
    }
    /// Takes the pin's connection apart and makes it anew at once. `VFW_E_NOT_CONNECTED` without one.
    HRESULT ReconnectEx(IPin* pin, const AM_MEDIA_TYPE* type) override;
    HRESULT RenderEx(IPin*, DWORD, DWORD*) override { return E_NOTIMPL; }

    // IMediaEventSink, on any thread.
    HRESULT Notify(LONG code, LONG_PTR first, LONG_PTR second) override;

protected:
    IUnknown* FindInterface(REFIID iid) override;

private:
    /// A filter with a walk over its pins, kept so that taking everything apart needs no memory.
    struct Member {
        RefPtr<IBaseFilter> filter;
        RefPtr<IEnumPins> pins;
        bool visited = false;  ///< while an order is being made
    };

    HRESULT join(IBaseFilter& filter, LPCWSTR name);
    Member* memberOf(const IBaseFilter* filter);
    const std::vector<IBaseFilter*>& downstreamFirst();
    void appendBehindReceivers(Member& member);

    std::vector<Member> members_;
    std::vector<IBaseFilter*> order_;  ///< with room for all members
    FILTER_STATE state_ = State_Stopped;
    CCritSec eventLock_;
    std::map<LONG, int> events_;
};

/// The pins of a filter, in its order. `std::bad_alloc` without memory.
std::vector<RefPtr<IPin>> pinsOf(IBaseFilter& filter);

}  // namespace marnoth
