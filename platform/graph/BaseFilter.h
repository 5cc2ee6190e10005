#pragma once

#include <string>

#include "platform/com/RefPtr.h"
#include "platform/com/Unknown.h"
#include "platform/graph/Graph.h"
#include "platform/system/CritSec.h"

namespace marnoth {

class CBasePin;

/// A filter of the audio graph: its state, its place in a graph and its clock. What pins it has, the class
/// that derives from it says.
///
/// Operations may come on any thread and run under the lock that the filter was given, which its pins share.
/// Who only looks, at the state, the clock, the pins and their peers and types, doesn't wait for it: graphs
/// look while a block is on its way. What can be seen changes under both locks, and is read under
/// `LookLock()` alone.
class CBaseFilter : public Implements<CUnknown, IBaseFilter, IAMovieSetup> {
public:
    /// `outer` is the object that this one becomes a part of, or null. `lock` lives longer than the filter.
    CBaseFilter(IUnknown* outer, CCritSec& lock, REFCLSID id);

    virtual int GetPinCount() = 0;
    /// The pin at `index`, without a reference; null out of range. Under either lock.
    virtual CBasePin* GetPin(int index) = 0;

    // IPersist
    HRESULT GetClassID(CLSID* out) override;

    // IMediaFilter

    /// Makes all connected pins inactive; the filter is stopped then whatever they say, and the first failure
    /// among them is the result.
    HRESULT Stop() override;
    /// From stopped: makes all connected pins active. If one fails, those before it become inactive again and
    /// the filter stays stopped.
    HRESULT Pause() override;
    /// From stopped the filter is paused first, by its (possibly overridden) `Pause`.
    HRESULT Run(REFERENCE_TIME start) override;
    HRESULT GetState(DWORD timeoutMilliseconds, FILTER_STATE* out) override;
    HRESULT SetSyncSource(IReferenceClock* clock) override;
    HRESULT GetSyncSource(IReferenceClock** out) override;

    // IBaseFilter

    HRESULT EnumPins(IEnumPins** out) override;
    /// Finds a pin by its name.
    HRESULT FindPin(LPCWSTR id, IPin** out) override;
    HRESULT QueryFilterInfo(FILTER_INFO* out) override;
    /// The graph holds its filters, so the filter takes no reference to it. Null takes the filter out of its
    /// graph.
    HRESULT JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) override;
    HRESULT QueryVendorInfo(LPWSTR* out) override;

    // IAMovieSetup: there is nothing to register here, `S_FALSE`.
    HRESULT Register() override;
    HRESULT Unregister() override;

    /// Under the lock.
    FILTER_STATE State() const { return state_; }
    /// The graph, without a reference; null outside a graph.
    IFilterGraph* Graph() const { return graph_; }
    /// Tells the graph of an event. `VFW_E_NOT_IN_GRAPH` outside a graph, `E_NOTIMPL` if the graph takes no
    /// events.
    HRESULT NotifyEvent(LONG code, LONG_PTR first, LONG_PTR second);
    /// Asks the graph to connect `pin` anew, with `type` or, for null, with whatever the pins agree on.
    HRESULT ReconnectPin(IPin* pin, const AM_MEDIA_TYPE* type);

    /// Grows whenever pins come or go, which makes enumerators of them out of date. Changes under both locks.
    int PinVersion() const { return pinVersion_; }
    void IncrementPinVersion() { ++pinVersion_; }

    CCritSec& Lock() const { return lock_; }
    /// For a few fields at a time, and taken last of all: under it nobody is called, except to count
    /// references.
    CCritSec& LookLock() const { return lookLock_; }

protected:
    /// When the filter began to run: the argument of `Run`.
    REFERENCE_TIME StartTime() const { return startTime_; }

    IUnknown* FindInterface(REFIID iid) override;

private:
    void SetState(FILTER_STATE state);
    HRESULT ActivatePins();
    HRESULT DeactivatePins(int count);

    CCritSec& lock_;
    mutable CCritSec lookLock_;
    const CLSID id_;
    FILTER_STATE state_ = State_Stopped;
    REFERENCE_TIME startTime_ = 0;
    IFilterGraph* graph_ = nullptr;
    std::wstring name_;
    RefPtr<IReferenceClock> clock_;
    int pinVersion_ = 0;
};

}  // namespace marnoth
