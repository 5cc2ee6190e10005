#pragma once

#include <functional>
#include <mutex>
#include <new>
#include <optional>
#include <utility>

#include "engine/GrooveSampler.h"
#include "engine/model/PadMix.h"

/// How the operations of `IGrooveSampler` reach the model; internal to their sources. A null out-pointer is
/// refused before an index is looked at.
namespace marnoth {

inline bool isPad(std::int32_t pad) {
    return pad >= 0 && pad < kPads;
}

inline CGrooveTrack& padOf(Model& model, std::int32_t pad) {
    return model.pads[static_cast<std::size_t>(pad)];
}

inline const CGrooveTrack& padOf(const Model& model, std::int32_t pad) {
    return model.pads[static_cast<std::size_t>(pad)];
}

/// A writer's turn, for a scope. Whoever comes in under the engine's lock has none and waits for none: the
/// one who has it may be waiting for that lock.
class CGrooveSampler::WritersTurn {
public:
    explicit WritersTurn(CGrooveSampler& engine) : turn_(engine.writers_, std::defer_lock) {
        if (engine.isHeldHere()) return;
        turn_.lock();
        engine.dropLeftOver();
    }

private:
    std::unique_lock<std::recursive_mutex> turn_;
};

/// Reads something of a pad by `read`, a function or a member.
template <class T, class Read>
HRESULT CGrooveSampler::readPad(std::int32_t pad, T* out, Read read, HRESULT refusal) {
    if (!out) return E_POINTER;
    CAutoLock lock(*this);
    if (!isPad(pad)) return refusal;
    *out = std::invoke(read, padOf(bank_.present(), pad));
    return S_OK;
}

/// Writes what a mixer sets of a pad.
template <class Write>
HRESULT CGrooveSampler::changeMix(std::int32_t pad, Write write) {
    CAutoLock lock(*this);
    if (!isPad(pad)) return E_INVALIDARG;
    write(padOf(bank_.changeMix(), pad));
    return S_OK;
}

/// Writes another plain field of a pad.
template <class Write>
HRESULT CGrooveSampler::changePad(std::int32_t pad, Write write, HRESULT refusal) {
    CAutoLock lock(*this);
    if (!isPad(pad)) return refusal;
    write(padOf(bank_.change(), pad));
    return S_OK;
}

/// An edit: `take(const Model&)` copies under the lock what it needs of the present state, `build(draft)`
/// makes the next state of that with the lock free, and `put(Model&, draft)` puts it in place under the lock,
/// leaving what it replaced in the draft, which goes behind the lock. Built anew when the state has changed
/// meanwhile, but for the mixes, whose changes are carried over. A failure of `build`, what it throws, and
/// memory that ends leave everything as it was; the last is `E_OUTOFMEMORY`, anything else that is thrown
/// goes on to the caller. `change` is how the bank counts it.
template <class Take, class Build, class Put>
HRESULT CGrooveSampler::edit(Take take, Build build, Put put, Model& (PadBank::*change)()) try {
    // Others change plain fields all the time; after so many tries nobody does.
    constexpr int kMostTries = 16;
    const WritersTurn turn(*this);
    for (int tries = 1;; ++tries) {
        std::optional<CAutoLock> alone;
        if (tries > kMostTries) alone.emplace(*this);
        std::uint64_t version = 0;
        PadMixes before;
        auto draft = [&] {
            const CAutoLock lock(*this);
            version = bank_.version();
            before = mixesOf(bank_.present().pads);
            return take(bank_.present());
        }();
        if (const HRESULT result = build(draft); FAILED(result)) return result;
        const CAutoLock lock(*this);
        if (bank_.version() != version) continue;
        const PadMixes now = mixesOf(bank_.present().pads);
        Model& model = (bank_.*change)();
        put(model, draft);
        carryOver(before, now, model.pads);
        return S_OK;
    }
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

/// An edit of one pad: `build(CGrooveTrack& pad)` makes the next of the present one.
template <class Build>
HRESULT CGrooveSampler::editPad(std::int32_t pad, Build build) {
    if (!isPad(pad)) return E_INVALIDARG;
    return edit([pad](const Model& now) { return padOf(now, pad); }, build,
                [pad](Model& model, CGrooveTrack& next) { std::swap(padOf(model, pad), next); });
}

/// The same for one grain of a pad.
template <class Change>
HRESULT CGrooveSampler::editGrain(std::int32_t pad, std::int32_t grain, Change change) {
    return editPad(pad, [&](CGrooveTrack& track) {
        track.ChangeAt(grain, change);
        return S_OK;
    });
}

}  // namespace marnoth
