#pragma once

#include <lv2/atom/forge.h>
#include <lv2/midi/midi.h>
#include <lv2/patch/patch.h>
#include <lv2/time/time.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "lv2/PluginWorld.h"

namespace marnoth::test {

/// The buffer of a plug-in's event port: one that goes in is begun, gets its events by rising frames, and is
/// ended; one that comes out is offered.
class EventBuffer {
public:
    static constexpr std::size_t kBytes = 65536;

    explicit EventBuffer(PluginWorld& world) : world_(world) {
        lv2_atom_forge_init(&forge_, world.map());
        begin();
    }

    void* data() { return words_.data(); }
    std::span<std::uint8_t> bytes() { return {reinterpret_cast<std::uint8_t*>(words_.data()), kBytes}; }
    const LV2_Atom_Sequence& sequence() const {
        return *reinterpret_cast<const LV2_Atom_Sequence*>(words_.data());
    }

    void begin() {
        lv2_atom_forge_set_buffer(&forge_, bytes().data(), kBytes);
        lv2_atom_forge_sequence_head(&forge_, &frame_, 0);
    }
    void end() { lv2_atom_forge_pop(&forge_, &frame_); }
    void offer() {
        *static_cast<LV2_Atom*>(data()) = {kBytes - sizeof(LV2_Atom), world_.urid(LV2_ATOM__Chunk)};
    }

    void midi(std::int64_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
        const std::array<std::uint8_t, 3> message{status, data1, data2};
        lv2_atom_forge_frame_time(&forge_, frame);
        lv2_atom_forge_atom(&forge_, message.size(), world_.urid(LV2_MIDI__MidiEvent));
        lv2_atom_forge_write(&forge_, message.data(), message.size());
    }
    void position(std::int64_t frame, std::int64_t hostFrame, float speed, float tempo) {
        LV2_Atom_Forge_Frame object;
        lv2_atom_forge_frame_time(&forge_, frame);
        lv2_atom_forge_object(&forge_, &object, 0, world_.urid(LV2_TIME__Position));
        lv2_atom_forge_key(&forge_, world_.urid(LV2_TIME__frame));
        lv2_atom_forge_long(&forge_, hostFrame);
        lv2_atom_forge_key(&forge_, world_.urid(LV2_TIME__speed));
        lv2_atom_forge_float(&forge_, speed);
        lv2_atom_forge_key(&forge_, world_.urid(LV2_TIME__beatsPerMinute));
        lv2_atom_forge_float(&forge_, tempo);
        lv2_atom_forge_pop(&forge_, &object);
    }
    void set(std::int64_t frame, LV2_URID property, float value) {
        LV2_Atom_Forge_Frame object;
        lv2_atom_forge_frame_time(&forge_, frame);
        lv2_atom_forge_object(&forge_, &object, 0, world_.urid(LV2_PATCH__Set));
        lv2_atom_forge_key(&forge_, world_.urid(LV2_PATCH__property));
        lv2_atom_forge_urid(&forge_, property);
        lv2_atom_forge_key(&forge_, world_.urid(LV2_PATCH__value));
        lv2_atom_forge_float(&forge_, value);
        lv2_atom_forge_pop(&forge_, &object);
    }
    /// Asks for a property, 0 for all.
    void get(std::int64_t frame, LV2_URID property) {
        LV2_Atom_Forge_Frame object;
        lv2_atom_forge_frame_time(&forge_, frame);
        lv2_atom_forge_object(&forge_, &object, 0, world_.urid(LV2_PATCH__Get));
        if (property) {
            lv2_atom_forge_key(&forge_, world_.urid(LV2_PATCH__property));
            lv2_atom_forge_urid(&forge_, property);
        }
        lv2_atom_forge_pop(&forge_, &object);
    }

private:
    PluginWorld& world_;
    LV2_Atom_Forge forge_{};
    LV2_Atom_Forge_Frame frame_{};
    std::vector<std::uint64_t> words_ = std::vector<std::uint64_t>(kBytes / 8);
};

}  // namespace marnoth::test
