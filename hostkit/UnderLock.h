#pragma once

#include <utility>

#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// Does something while the instrument holds its one lock: for what the host's services are asked for under
/// that lock on any thread, and what the thread that renders changes. An empty list of events, which the
/// instrument counts under its lock. Allocates nothing; one thread at a time.
class UnderLock : public Implements<CUnknown, IKvxRawEventList> {
public:
    UnderLock() : Implements(nullptr) {}

    /// Calls `work`, which must not throw, once and within this call.
    template <class Work>
    void run(IKvxSoftSynth2& synth, Work work) {
        work_ = &work;
        call_ = [](void* it) { (*static_cast<Work*>(it))(); };
        synth.QueueRawInput(0, this);
        // An instrument that doesn't count has no host whose services it could ask for.
        callOnce();
    }

    HRESULT reserved3() override { return E_NOTIMPL; }
    HRESULT GetCount(std::int32_t* count) override {
        if (!count) return E_POINTER;
        callOnce();
        *count = 0;
        return S_OK;
    }
    HRESULT GetAt(std::int32_t, RawMidiEvent*) override { return E_INVALIDARG; }

private:
    IUnknown* FindInterface(REFIID) override { return nullptr; }
    void callOnce() {
        if (void* const work = std::exchange(work_, nullptr)) call_(work);
    }

    void* work_ = nullptr;
    void (*call_)(void*) = nullptr;
};

}  // namespace marnoth
