#pragma once

#include <cstddef>
#include <span>

#include "platform/com/Com.h"

namespace marnoth {

/// Memory that programs hand each other, in place as long as this lives. `memory` outlives it; null, or what
/// can't be locked, has no bytes.
class LockedMemory {
public:
    explicit LockedMemory(HGLOBAL memory)
        : memory_(memory), bytes_(memory ? static_cast<std::byte*>(GlobalLock(memory)) : nullptr) {}
    ~LockedMemory() {
        if (bytes_) GlobalUnlock(memory_);
    }
    LockedMemory(const LockedMemory&) = delete;
    LockedMemory& operator=(const LockedMemory&) = delete;

    std::span<std::byte> bytes() const {
        if (!bytes_) return {};
        return {bytes_, GlobalSize(memory_)};
    }

private:
    HGLOBAL const memory_;
    std::byte* const bytes_;
};

}  // namespace marnoth
