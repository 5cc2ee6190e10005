#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/bytes/RiffStream.h"

namespace marnoth {

/// What a tag of a `LIST`/`INFO` chunk is called on a screen.
struct TagLabel {
    std::uint32_t code;
    std::string_view label;
};

inline constexpr std::array<TagLabel, 23> kTagLabels{{
    {fourCC("IARL"), "Archival Location:"},
    {fourCC("IART"), "Artist:"},
    {fourCC("ICMS"), "Commisioned:"},
    {fourCC("ICMT"), "Comments:"},
    {fourCC("ICOP"), "Copyright:"},
    {fourCC("ICRD"), "Created:"},
    {fourCC("ICRP"), "Cropped:"},
    {fourCC("IDIM"), "Dimensions:"},
    {fourCC("IDPI"), "Dots per Inch:"},
    {fourCC("IENG"), "Engineer:"},
    {fourCC("IGNR"), "Genre:"},
    {fourCC("IKEY"), "Keywords:"},
    {fourCC("ILGT"), "Lightness:"},
    {fourCC("IMED"), "Medium:"},
    {fourCC("INAM"), "Name/Title:"},
    {fourCC("IPLT"), "Palette Setting:"},
    {fourCC("IPRD"), "Product:"},
    {fourCC("ISBJ"), "Subject:"},
    {fourCC("ISFT"), "Software:"},
    {fourCC("ISHP"), "Sharpness:"},
    {fourCC("ISRC"), "Source:"},
    {fourCC("ISRF"), "Source Form:"},
    {fourCC("ITCH"), "Technician:"},
}};

/// Names of a root note, counted from C as MIDI counts; 12 stands for none, the rest is unused.
inline constexpr std::array<std::string_view, 24> kNoteNames{
    "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B", "Not Tranposed"};

/// Names of `CAcidWave::divisionExponent`.
inline constexpr std::array<std::string_view, 7> kDivisionNames{
    "Whole Notes",     "Half Notes",          "Quarter Notes",     "Eighth Notes",
    "Sixteenth Notes", "Thirty-Second Notes", "Sixty-Fourth Notes"};

inline constexpr std::array<std::string_view, 4> kSegmentTypeNames{
    "Unknown (Value of 0 is undefined)", "Looping Segments", "Non-Looping Segments", "Pitch Shift Segments"};

inline constexpr std::array<std::string_view, 3> kStretchModeNames{"Manual", "Disabled", "Auto"};

}  // namespace marnoth
