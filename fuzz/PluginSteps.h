#pragma once

#include <cstdint>

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
    restore,  ///< project u8, faults u8 (`StateFault`), bytes kept u16, edits u8; each where u16, byte
    names,
    count,
};

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
