#include "hostkit/HostSample.h"

#include <cstring>

namespace marnoth {

HRESULT HostSample::GetPointer(BYTE** out) {
    if (silent_ && out) clearMemory();
    return Implements::GetPointer(out);
}

IUnknown* HostSample::FindInterface(REFIID iid) {
    if (iid == IID_IKvxSampleSilence) {
        return silenceOffered_ ? static_cast<IKvxSampleSilence*>(this) : nullptr;
    }
    return Implements::FindInterface(iid);
}

void HostSample::Recycle() {
    Implements::Recycle();
    silent_ = 0;
}

void HostSample::prepare() {
    if (!silenceOffered_) clearMemory();
}

void HostSample::clearMemory() {
    silent_ = 0;
    BYTE* memory = nullptr;
    if (SUCCEEDED(Implements::GetPointer(&memory)))
        std::memset(memory, 0, static_cast<std::size_t>(GetSize()));
}

}  // namespace marnoth
