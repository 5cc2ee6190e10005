#pragma once

#include <string>
#include <string_view>

#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"
#include "platform/graph/MediaType.h"
#include "platform/system/CritSec.h"

namespace marnoth {

class CBaseFilter;

/// A pin of a `CBaseFilter`: negotiates connections and keeps what was agreed.
///
/// Belongs to its filter and shares its reference count; a class with a count of its own overrides `AddRef`
/// and `Release`. Graph operations come on any thread and take the lock that the pin was given; `ConnectedTo`
/// and `ConnectionMediaType`, which only look, take the filter's `LookLock()`.
///
/// A connection is tried on the output pin by `Connect`, in these steps, of which the first failure ends the
/// attempt and is followed by `BreakConnect`: `CheckConnect`, `CheckMediaType`, the receiver's
/// `ReceiveConnection` (there `CheckConnect`, `CheckMediaType`, `SetMediaType`, `CompleteConnect`),
/// `SetMediaType`, `CompleteConnect`. So `SetMediaType` only hears of types that both ends have accepted.
class CBasePin : public IPin {
public:
    /// The filter and the lock live longer than the pin. `name` is also the pin's id within the filter.
    CBasePin(CBaseFilter& filter, CCritSec& lock, PIN_DIRECTION direction, std::wstring_view name);
    CBasePin(const CBasePin&) = delete;
    CBasePin& operator=(const CBasePin&) = delete;
    virtual ~CBasePin() = default;

    HRESULT QueryInterface(REFIID iid, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // What a pin decides; all are called under the lock.

    /// `S_OK` for a type that the pin can take; everything else refuses.
    virtual HRESULT CheckMediaType(const AM_MEDIA_TYPE* type) = 0;
    /// The pin's own proposals, the best first, from position 0. `VFW_S_NO_MORE_ITEMS` behind the last,
    /// `E_INVALIDARG` below 0. This one proposes nothing.
    virtual HRESULT GetMediaType(int position, CMediaType* type);
    /// The type is agreed. This one stores it, so whoever overrides it calls it too.
    virtual HRESULT SetMediaType(const AM_MEDIA_TYPE* type);
    /// May this pin be connected with `peer`? This one compares the directions: `VFW_E_INVALID_DIRECTION`.
    virtual HRESULT CheckConnect(IPin* peer);
    /// The type is agreed and set; the last chance to refuse.
    virtual HRESULT CompleteConnect(IPin* peer);
    /// Lets go of everything that belongs to a connection, also one that was merely tried.
    virtual HRESULT BreakConnect();

    // The filter's changes of state, told to connected pins only, under the lock.

    virtual HRESULT Active();                   ///< stopped to paused
    virtual HRESULT Inactive();                 ///< to stopped
    virtual HRESULT Run(REFERENCE_TIME start);  ///< to running

    // IPin

    HRESULT Connect(IPin* receiver, const AM_MEDIA_TYPE* type) override;
    HRESULT ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) override;
    HRESULT Disconnect() override;
    HRESULT ConnectedTo(IPin** out) override;
    HRESULT ConnectionMediaType(AM_MEDIA_TYPE* out) override;
    HRESULT QueryPinInfo(PIN_INFO* out) override;
    HRESULT QueryDirection(PIN_DIRECTION* out) override;
    HRESULT QueryId(LPWSTR* out) override;
    HRESULT QueryAccept(const AM_MEDIA_TYPE* type) override;
    HRESULT EnumMediaTypes(IEnumMediaTypes** out) override;
    HRESULT QueryInternalConnections(IPin** pins, ULONG* count) override;
    /// Keeps the values; a pin that hands segments on does so besides.
    HRESULT NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) override;

    bool IsConnected() const { return static_cast<bool>(connected_); }
    /// The other end, without a reference; null when not connected.
    IPin* GetConnected() const { return connected_.get(); }
    /// The agreed type; an empty type when not connected.
    const CMediaType& CurrentMediaType() const { return type_; }
    const std::wstring& Name() const { return name_; }
    PIN_DIRECTION Direction() const { return direction_; }
    CBaseFilter& Filter() const { return filter_; }

    /// Grows whenever the proposals change, which makes enumerators of them out of date.
    int MediaTypeVersion() const { return mediaTypeVersion_; }
    void IncrementMediaTypeVersion() { ++mediaTypeVersion_; }

    REFERENCE_TIME SegmentStart() const { return segmentStart_; }
    REFERENCE_TIME SegmentStop() const { return segmentStop_; }
    double SegmentRate() const { return segmentRate_; }

protected:
    /// As in `CUnknown`.
    virtual IUnknown* FindInterface(REFIID iid);

    CCritSec& Lock() const { return lock_; }
    CCritSec& LookLock() const;
    bool IsStopped() const;

private:
    void SetConnected(RefPtr<IPin> peer);
    HRESULT KeepType(const AM_MEDIA_TYPE& type);
    HRESULT CheckMayConnect() const;
    HRESULT AgreeMediaType(IPin* receiver, const AM_MEDIA_TYPE* wanted);
    HRESULT TryTypes(IEnumMediaTypes* types, IPin* receiver, const AM_MEDIA_TYPE* wanted, HRESULT* failure);
    HRESULT TryConnection(IPin* receiver, const AM_MEDIA_TYPE& type);
    HRESULT Establish(IPin* receiver, const AM_MEDIA_TYPE& type);
    HRESULT Accept(IPin* connector, const AM_MEDIA_TYPE* type);
    /// Ends a connection or an attempt at one.
    HRESULT LetGo();

    CBaseFilter& filter_;
    CCritSec& lock_;
    const PIN_DIRECTION direction_;
    const std::wstring name_;
    RefPtr<IPin> connected_;
    CMediaType type_;
    int mediaTypeVersion_ = 0;
    REFERENCE_TIME segmentStart_ = 0;
    REFERENCE_TIME segmentStop_;
    double segmentRate_ = 1.0;
};

}  // namespace marnoth
