#pragma once

#include <cstdint>
#include <span>

#include "platform/com/RefPtr.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {

/// The engine that a page works on, if it has one: without one every call fails and every value is its
/// default.
class BoundEngine {
public:
    /// Lets go of the engine it has and takes the first of `objects` that is one.
    void bind(std::span<IUnknown* const> objects) {
        engine_.reset();
        for (IUnknown* object : objects)
            if (object && SUCCEEDED(object->QueryInterface(IID_IGrooveSampler, engine_.putVoid()))) return;
    }
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

private:
    RefPtr<IGrooveSampler> engine_;
};

/// The grains of a pad or of a Loop Bin file, in the block that the engine gives out. A list that can't be
/// had is empty.
class GrainList {
public:
    using Operation = HRESULT (IGrooveSampler::*)(std::int32_t, GrainListEntry**, std::int32_t*);

    GrainList(const BoundEngine& engine, Operation operation, std::int32_t track) {
        if (SUCCEEDED(engine.call(operation, track, &list_, &count_)) && list_ && count_ > 0) return;
        count_ = 0;
    }
    ~GrainList() { CoTaskMemFree(list_); }
    GrainList(const GrainList&) = delete;
    GrainList& operator=(const GrainList&) = delete;

    std::span<const GrainListEntry> entries() const { return {list_, static_cast<std::size_t>(count_)}; }

private:
    GrainListEntry* list_ = nullptr;
    std::int32_t count_ = 0;
};

}  // namespace marnoth
