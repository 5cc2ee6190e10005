#pragma once

#include "platform/com/Unknown.h"
#include "platform/graph/BasePin.h"

namespace marnoth {

/// An input pin that takes media samples.
///
/// Samples come on the streaming thread, everything else on the application's. The flag that a flush is under
/// way is only changed and read under the lock.
class CBaseInputPin : public Implements<CBasePin, IMemInputPin> {
public:
    CBaseInputPin(CBaseFilter& filter, CCritSec& lock, std::wstring_view name)
        : Implements(filter, lock, PINDIR_INPUT, name) {}

    /// May a sample be taken now? `VFW_E_NOT_CONNECTED`, `VFW_E_WRONG_STATE` while stopped, `S_FALSE` during
    /// a flush, else `S_OK`.
    virtual HRESULT CheckStreaming();

    // IMemInputPin

    /// Gives the connection's allocator; when none is agreed yet, a standard one that the pin makes and
    /// keeps.
    HRESULT GetAllocator(IMemAllocator** out) override;
    HRESULT NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) override;
    /// None: `E_NOTIMPL`.
    HRESULT GetAllocatorRequirements(ALLOCATOR_PROPERTIES* out) override;
    /// Tests whether `sample` may be taken and leaves it alone. `VFW_E_INVALIDMEDIATYPE` when it brings a new
    /// type that the pin refuses.
    HRESULT Receive(IMediaSample* sample) override;
    /// `Receive` for one after the other, until one doesn't give `S_OK`.
    HRESULT ReceiveMultiple(IMediaSample** samples, LONG count, LONG* processed) override;
    /// `S_OK` if `Receive` may wait: when the filter has no output pin, or a pin downstream of it may. Else
    /// `S_FALSE`.
    HRESULT ReceiveCanBlock() override;

    // IPin

    HRESULT EndOfStream() override;
    HRESULT BeginFlush() override;
    HRESULT EndFlush() override;

    HRESULT BreakConnect() override;
    /// Takes the allocator out of use, so that whoever waits for a buffer upstream is freed, and ends a
    /// flush.
    HRESULT Inactive() override;

    bool IsFlushing() const { return flushing_; }
    bool IsReadOnly() const { return readOnly_; }
    /// The agreed allocator, without a reference; null when there is none.
    IMemAllocator* Allocator() const { return allocator_.get(); }

protected:
    IUnknown* FindInterface(REFIID iid) override;

private:
    RefPtr<IMemAllocator> allocator_;
    bool readOnly_ = false;
    bool flushing_ = false;
};

}  // namespace marnoth
