#pragma once

namespace marnoth {

/// What the page says to the user, as it stands.

inline constexpr const char* kPageCaption = "Marnoth";
inline constexpr const char* kFontFace = "Arial";
inline constexpr const char* kAskDeleteFile =
    "Any grains sourced from this file will be deleted from the Pad Editor.  OK to proceed?";
inline constexpr const char* kSelectFileFirst = "Please select a file in the Loop Bin.";
inline constexpr const char* kBinIsFull =
    "The Loop Bin is full.  If possible, delete one or more entries before loading additional files.";
inline constexpr const char* kLoadFailed =
    "There was an error loading the file.  The file may be too large or have an invalid format.";
inline constexpr const char* kSaveProjectFailed = "Error saving file!  Save aborted!";
inline constexpr const char* kLoadProjectFailed = "Error loading file!  The file may be corrupted.";
inline constexpr const char* kAskClearProject =
    "Are you sure you want to clear the contents of this project?";
inline constexpr const char* kNotPatched =
    "Important!:  Be sure to patch Marnoth into one or more TRELL audio tracks and start the audio engine.";

inline constexpr const char* kWaveFilter = "Wave Files (*.wav)|*.wav||";
inline constexpr const char* kProjectFilter = "Mrn Files (*.mrn)|*.mrn||";

}  // namespace marnoth
