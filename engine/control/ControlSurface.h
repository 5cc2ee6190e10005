#pragma once

#include <functional>

#include "engine/GrooveSampler.h"

/// How the operations of `IGrooveSampler` reach one field of a pad or grain; internal to their sources.
/// A null out-pointer is refused before an index is looked at.
namespace marnoth {

template <class T, class Field>
HRESULT CGrooveSampler::getFromPad(std::int32_t pad, T* out, Field field, HRESULT refusal) {
    if (!out) return E_POINTER;
    CAutoLock lock(*this);
    CGrooveTrack* const track = padAt(pad);
    if (!track) return refusal;
    *out = std::invoke(field, *track);
    return S_OK;
}

template <class Write>
HRESULT CGrooveSampler::changePad(std::int32_t pad, Write write, HRESULT refusal) {
    CAutoLock lock(*this);
    CGrooveTrack* const track = padAt(pad);
    if (!track) return refusal;
    write(*track);
    return S_OK;
}

template <class T, class Read>
HRESULT CGrooveSampler::getFromGrain(std::int32_t pad, std::int32_t grain, T* out, Read read) {
    return getFromPad(pad, out, [&](const CGrooveTrack& track) { return read(track.GetAt(grain)); });
}

template <class Write>
HRESULT CGrooveSampler::changeGrain(std::int32_t pad, std::int32_t grain, Write write) {
    return changePad(pad, [&](CGrooveTrack& track) { write(track.GetAt(grain)); });
}

}  // namespace marnoth
