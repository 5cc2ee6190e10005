#pragma once

#include "hostkit/StreamSink.h"

namespace marnoth::test {

/// A sink's pin that offers an allocator of the system's: nobody can mark its samples as silence.
class SystemSinkPin : public StreamSinkPin {
public:
    using StreamSinkPin::StreamSinkPin;

    HRESULT GetAllocator(IMemAllocator** out) override {
        return CoCreateInstance(CLSID_MemoryAllocator, nullptr, CLSCTX_INPROC_SERVER, IID_IMemAllocator,
                                reinterpret_cast<void**>(out));
    }
};

/// As `StreamSink`, with that pin.
class SystemSink : private FilterLock, public CBaseFilter {
public:
    SystemSink() : CBaseFilter(nullptr, ownLock, CLSID{}), pin_(*this, ownLock) {}

    SystemSinkPin& pin() { return pin_; }

    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? &pin_ : nullptr; }

private:
    SystemSinkPin pin_;
};

}  // namespace marnoth::test
