#pragma once

#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"

namespace marnoth {

/// What an output pin sends to, with references of its own: shared by the pin and whoever is about to
/// deliver, from whom a connection that ends meanwhile so takes nothing. While the connection is being made
/// some are null; what needs them gives `VFW_E_NOT_CONNECTED`.
struct Downstream {
    RefPtr<IPin> pin;
    RefPtr<IMemInputPin> receiver;
    RefPtr<IMemAllocator> allocator;

    /// `VFW_E_NO_ALLOCATOR` without an allocator; else what that says.
    HRESULT getBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end, DWORD flags) const;
    HRESULT deliver(IMediaSample* sample) const;
    HRESULT endOfStream() const;
    HRESULT beginFlush() const;
    HRESULT endFlush() const;
    HRESULT newSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) const;
};

}  // namespace marnoth
