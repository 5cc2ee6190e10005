#pragma once

#include <span>
#include <vector>

#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// A list of events as the instrument reads it. `E_POINTER` for a null out-pointer, `E_INVALIDARG` for an
/// index that isn't in the list.
template <class Interface, class Event>
class ListOf : public Implements<CUnknown, Interface> {
public:
    explicit ListOf(std::span<const Event> events)
        : Implements<CUnknown, Interface>(nullptr), events_(events.begin(), events.end()) {}

    HRESULT reserved3() override { return E_NOTIMPL; }
    HRESULT GetCount(std::int32_t* count) override {
        if (!count) return E_POINTER;
        *count = static_cast<std::int32_t>(events_.size());
        return S_OK;
    }
    HRESULT GetAt(std::int32_t index, Event* event) override {
        if (!event) return E_POINTER;
        if (index < 0 || index >= static_cast<std::int32_t>(events_.size())) return E_INVALIDARG;
        *event = events_[static_cast<std::size_t>(index)];
        return S_OK;
    }

private:
    IUnknown* FindInterface(REFIID) override { return nullptr; }

    std::vector<Event> events_;
};

/// Sequenced events.
using EventList = ListOf<IKvxEventList, SynthEvent>;
/// Live MIDI messages.
using RawEventList = ListOf<IKvxRawEventList, RawMidiEvent>;

}  // namespace marnoth
