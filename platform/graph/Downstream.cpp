#include "platform/graph/Downstream.h"

namespace marnoth {

HRESULT Downstream::getBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end,
                              DWORD flags) const {
    if (!pin) return VFW_E_NOT_CONNECTED;
    return allocator ? allocator->GetBuffer(out, start, end, flags) : VFW_E_NO_ALLOCATOR;
}

HRESULT Downstream::deliver(IMediaSample* sample) const {
    return receiver ? receiver->Receive(sample) : VFW_E_NOT_CONNECTED;
}

HRESULT Downstream::endOfStream() const {
    return pin ? pin->EndOfStream() : VFW_E_NOT_CONNECTED;
}

HRESULT Downstream::beginFlush() const {
    return pin ? pin->BeginFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT Downstream::endFlush() const {
    return pin ? pin->EndFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT Downstream::newSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) const {
    return pin ? pin->NewSegment(start, stop, rate) : VFW_E_NOT_CONNECTED;
}

}  // namespace marnoth
