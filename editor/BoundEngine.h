#pragma once

#include <cstdint>
#include <new>
#include <span>
#include <string>

#include "platform/com/RefPtr.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {

class FetchedGrains;

/// The engine that a page works on, if it has one: without one every call fails and every value is its
/// default.
class BoundEngine {
public:
    /// Lets go of the engine it has and takes the first of `objects` that is one.
    void bind(std::span<IUnknown* const> objects);
    explicit operator bool() const { return static_cast<bool>(engine_); }

    /// Runs an operation: `call(&IGrooveSampler::SetPadMute, pad, state)`.
    template <class... Parameters, class... Arguments>
    HRESULT call(HRESULT (IGrooveSampler::*operation)(Parameters...), Arguments... arguments) const {
        return engine_ ? (engine_.get()->*operation)(static_cast<Parameters>(arguments)...) : E_UNEXPECTED;
    }

    /// What an operation gives out last: `get(&IGrooveSampler::GetPadVolume, 1.0f, pad)`. `preset` stays when
    /// the operation fails.
    template <class Value, class... Parameters, class... Arguments>
    Value get(HRESULT (IGrooveSampler::*operation)(Parameters...), Value preset,
              Arguments... arguments) const {
        call(operation, arguments..., &preset);
        return preset;
    }
    bool isOn(HRESULT (IGrooveSampler::*operation)(std::int32_t, std::uint32_t*), int pad) const {
        return get(operation, std::uint32_t{0}, pad) != 0;
    }

    /// Of a pad, 16.16 ticks.
    std::int64_t loopLength(int pad) const;
    int grainCount(int pad) const;
    KeyMapRecord keyMapEntry(int pad) const;
    FetchedGrains padGrains(int pad) const;
    FetchedGrains binGrains(int bin) const;
    int binFileCount() const;
    /// UTF-8.
    std::string binFileName(int bin, bool wantPath) const;
    /// Everything is read again at the page's next tick.
    void requestRefresh() const { call(&IGrooveSampler::SetRefreshRequest, 1u); }

private:
    RefPtr<IGrooveSampler> engine_;
};

/// The grains of a pad or of a Loop Bin file, in the block that the engine gives out; what they point to is
/// good as long as the block. A list that can't be had is empty; without memory `std::bad_alloc` is thrown,
/// as it is by everything else that a page does.
class FetchedGrains {
public:
    using Operation = HRESULT (IGrooveSampler::*)(std::int32_t, GrainListEntry**, std::int32_t*);

    FetchedGrains(const BoundEngine& engine, Operation operation, std::int32_t track) {
        const HRESULT result = engine.call(operation, track, &list_, &count_);
        if (result == E_OUTOFMEMORY) throw std::bad_alloc();
        if (FAILED(result) || !list_ || count_ < 0) count_ = 0;
    }
    ~FetchedGrains() { CoTaskMemFree(list_); }
    FetchedGrains(const FetchedGrains&) = delete;
    FetchedGrains& operator=(const FetchedGrains&) = delete;

    std::span<const GrainListEntry> entries() const { return {list_, static_cast<std::size_t>(count_)}; }
    /// Throws `std::invalid_argument` where there is no such grain.
    std::int64_t startOf(int grain) const;

private:
    GrainListEntry* list_ = nullptr;
    std::int32_t count_ = 0;
};

}  // namespace marnoth
