#pragma once

#include <lv2/atom/atom.h>
#include <lv2/midi/midi.h>
#include <lv2/patch/patch.h>
#include <lv2/time/time.h>

#include <cstdint>
#include <string_view>

namespace marnoth::fuzz {

/// What a host does with a plug-in's instance, as an input says it: a byte for the step (remainders of
/// `count`), then what it takes, where zeros stand for what isn't there. Numbers are little-endian, those of
/// names count from the front of a table.
enum class PluginStep : std::uint8_t {
    run,        ///< frames u16, bytes of events left out u8, room for what comes out u8 (16 bytes each)
    midi,       ///< frame i16, length u8, bytes
    atom,       ///< frame i16, type u8, length u8, bytes
    object,     ///< frame i16, type u8, properties u8; each key u8, type u8, length u8, bytes
    set,        ///< frame i16, parameter u8, type u8, eight bytes
    overwrite,  ///< where in the events u16, four bytes
    connect,    ///< bits of what is connected, u32
    activate,
    rate,     ///< which u8, type u8
    save,     ///< which property the host refuses u8, files u8
    restore,  ///< project u8, faults u8 (`StateFault`), bytes kept u16, edits u8; each where u16, byte;
              ///< how the page was left u8, bytes
    names,
    page,
    count,
};

/// What atoms and objects are and what they say, counted from 1 in an input; 0 is no name.
inline constexpr const char* kStoryNames[]{
    LV2_ATOM__Int,      LV2_ATOM__Float,  LV2_ATOM__Double,   LV2_ATOM__Long,           LV2_ATOM__Bool,
    LV2_ATOM__URID,     LV2_ATOM__Object, LV2_ATOM__Blank,    LV2_ATOM__Resource,       LV2_ATOM__Sequence,
    LV2_ATOM__Chunk,    LV2_ATOM__Path,   LV2_ATOM__String,   LV2_MIDI__MidiEvent,      LV2_PATCH__Set,
    LV2_PATCH__Get,     LV2_PATCH__Put,   LV2_PATCH__body,    LV2_PATCH__property,      LV2_PATCH__value,
    LV2_TIME__Position, LV2_TIME__frame,  LV2_TIME__speed,    LV2_TIME__beatsPerMinute, LV2_TIME__bar,
    LV2_TIME__barBeat,  LV2_TIME__beat,   LV2_TIME__beatUnit, LV2_TIME__beatsPerBar};

constexpr std::uint8_t storyNumber(std::string_view name) {
    std::uint8_t number = 1;
    while (kStoryNames[number - 1] != name) ++number;
    return number;
}

/// What is wrong with a state; with none it is whole.
enum StateFault : std::uint8_t {
    kNoVersion = 1,
    kNoProject = 2,
    kNewerVersion = 4,
    kOddVersion = 8,   ///< of another type or size
    kOddProject = 16,  ///< of another type
    kInFile = 32,      ///< no fault: the project is a file
    kNoFile = 64,      ///< whose path the host doesn't know
    kCut = 128,        ///< to the bytes kept
};

}  // namespace marnoth::fuzz
