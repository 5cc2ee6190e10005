#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "seam/KvxInterfaces.h"
#include "support/TestObject.h"

namespace marnoth::test {

/// A list as a host offers it. `failAt` makes `GetAt` of that index fail.
template <class Interface, class Event>
class FakeEventList : public TestObject<Interface> {
public:
    FakeEventList(std::initializer_list<Event> list) : events(list) {}

    std::vector<Event> events;
    HRESULT countResult = S_OK;
    std::int32_t failAt = -1;

    HRESULT reserved3() override { return E_NOTIMPL; }
    HRESULT GetCount(std::int32_t* count) override {
        *count = static_cast<std::int32_t>(events.size());
        return countResult;
    }
    HRESULT GetAt(std::int32_t index, Event* event) override {
        if (index == failAt) return E_FAIL;
        *event = events.at(static_cast<std::size_t>(index));
        return S_OK;
    }

protected:
    void* find(REFIID) override { return nullptr; }
};

using EventList = FakeEventList<IKvxEventList, SynthEvent>;
using RawEventList = FakeEventList<IKvxRawEventList, RawMidiEvent>;

/// A note as a sequencer sends it; open without a length.
inline SynthEvent note(std::int32_t time, std::uint8_t key, std::uint32_t duration = kDurationOpen,
                       std::uint8_t velocity = 100, std::uint8_t channel = 0) {
    SynthEvent event;
    event.time = time;
    event.channel = channel;
    event.note = key;
    event.velocity = velocity;
    event.duration = duration;
    return event;
}

inline SynthEvent noteOff(std::int32_t time, std::uint8_t key, std::uint8_t channel = 0) {
    return note(time, key, kDurationOff, 0, channel);
}

inline RawMidiEvent midi(std::uint32_t time, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    return {time, status, data1, data2, 0};
}

}  // namespace marnoth::test
