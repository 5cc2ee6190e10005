#include "hostkit/MediaSample.h"

#include <cstring>

namespace marnoth {

HRESULT MediaSample::GetPointer(BYTE** out) {
    if (silent_ && out) clearMemory();
    return Implements::GetPointer(out);
}

IUnknown* MediaSample::FindInterface(REFIID iid) {
    if (iid == IID_IKvxSampleSilence) {
        return silenceOffered_ ? static_cast<IKvxSampleSilence*>(this) : nullptr;
    }
    return Implements::FindInterface(iid);
}

void MediaSample::Recycle() {
    Implements::Recycle();
    silent_ = 0;
}

void MediaSample::prepare() {
    if (!silenceOffered_) clearMemory();
}

void MediaSample::clearMemory() {
    silent_ = 0;
    BYTE* memory = nullptr;
    if (SUCCEEDED(Implements::GetPointer(&memory)))
        std::memset(memory, 0, static_cast<std::size_t>(GetSize()));
}

}  // namespace marnoth
