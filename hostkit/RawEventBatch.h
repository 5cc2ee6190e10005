#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "hostkit/LiveMessages.h"
#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// The live messages of one piece as the instrument reads them: a list that is filled over and over in the
/// same room. What the list answers to wrong calls stands at `ListOf`.
class RawEventBatch : public Implements<CUnknown, IKvxRawEventList> {
public:
    /// All messages that can wait, and a note-off for each key.
    static constexpr std::size_t kRoom = LiveMessages::kRoom + kHighestKey + 1;

    RawEventBatch() : Implements(nullptr) {}

    void clear() { count_ = 0; }
    /// There must be room.
    void add(const RawMidiEvent& event) { events_[count_++] = event; }
    std::span<const RawMidiEvent> events() const { return {events_.data(), count_}; }

    HRESULT reserved3() override { return E_NOTIMPL; }
    HRESULT GetCount(std::int32_t* count) override {
        if (!count) return E_POINTER;
        *count = static_cast<std::int32_t>(count_);
        return S_OK;
    }
    HRESULT GetAt(std::int32_t index, RawMidiEvent* event) override {
        if (!event) return E_POINTER;
        if (index < 0 || index >= static_cast<std::int32_t>(count_)) return E_INVALIDARG;
        *event = events_[static_cast<std::size_t>(index)];
        return S_OK;
    }

private:
    IUnknown* FindInterface(REFIID) override { return nullptr; }

    std::array<RawMidiEvent, kRoom> events_;
    std::size_t count_ = 0;
};

}  // namespace marnoth
