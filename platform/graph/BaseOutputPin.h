#pragma once

#include <memory>

#include "platform/graph/BasePin.h"
#include "platform/graph/Downstream.h"

namespace marnoth {

/// An output pin that delivers media samples: agrees on an allocator with the pin downstream, fills in for
/// nothing else. Allocator and downstream pin belong to the connection.
class CBaseOutputPin : public CBasePin {
public:
    CBaseOutputPin(CBaseFilter& filter, CCritSec& lock, std::wstring_view name)
        : CBasePin(filter, lock, PINDIR_OUTPUT, name) {}

    // What an output pin decides.

    /// Sets the allocator's properties for the agreed type. `properties` comes with what the downstream pin
    /// asks for, or zeros, with an alignment of at least 1.
    virtual HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* properties) = 0;
    /// Makes the pin's own allocator; this one makes a `CMemAllocator`.
    virtual HRESULT InitAllocator(IMemAllocator** out);
    /// Agrees on an allocator: the downstream pin's, or else one from `InitAllocator`.
    virtual HRESULT DecideAllocator(IMemInputPin* receiver, RefPtr<IMemAllocator>* out);

    // Streaming. Whoever calls knows that the pin is connected; all give `VFW_E_NOT_CONNECTED` otherwise.

    /// An empty sample from the connection's allocator. Waits for one unless `flags` has `AM_GBF_NOWAIT`;
    /// times may be null. `VFW_E_NO_ALLOCATOR` without an allocator, `VFW_E_NOT_COMMITTED` while it isn't in
    /// use.
    virtual HRESULT GetDeliveryBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end,
                                      DWORD flags);
    virtual HRESULT Deliver(IMediaSample* sample);
    virtual HRESULT DeliverEndOfStream();
    virtual HRESULT DeliverBeginFlush();
    virtual HRESULT DeliverEndFlush();
    virtual HRESULT DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate);

    HRESULT CheckConnect(IPin* peer) override;
    HRESULT CompleteConnect(IPin* peer) override;
    HRESULT BreakConnect() override;
    /// Puts the allocator to use.
    HRESULT Active() override;
    /// Takes the allocator out of use.
    HRESULT Inactive() override;

    // These come from upstream, so an output pin gives `E_UNEXPECTED`.

    HRESULT EndOfStream() override;
    HRESULT BeginFlush() override;
    HRESULT EndFlush() override;

    /// Under the lock; null when not connected. What it points to doesn't change.
    std::shared_ptr<const Downstream> GetDownstream() const { return IsConnected() ? downstream_ : nullptr; }

    /// Both without a reference; null when not connected.
    IMemAllocator* Allocator() const { return downstream_ ? downstream_->allocator.get() : nullptr; }
    IMemInputPin* Receiver() const { return downstream_ ? downstream_->receiver.get() : nullptr; }

private:
    HRESULT OfferAllocator(IMemInputPin* receiver, IMemAllocator* allocator, ALLOCATOR_PROPERTIES request);

    /// From the test of the peer on; whole when the connection is.
    std::shared_ptr<Downstream> downstream_;
};

}  // namespace marnoth
