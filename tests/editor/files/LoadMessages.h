#pragma once

#include <string>

namespace marnoth::test {

// The lines of the window's log for what the page says of a file that doesn't load, each answered with ok.

inline const std::string kFull =
    "? message \"The Loop Bin is full.  If possible, delete one or more entries before loading additional "
    "files.\" -> ok";
inline const std::string kWrong =
    "? message \"There was an error loading the file.  The file may be too large or have an invalid "
    "format.\" -> ok";
inline const std::string kPatch =
    "? message \"Important!:  Be sure to patch Marnoth into one or more TRELL audio tracks and start the "
    "audio "
    "engine.\" -> ok";

}  // namespace marnoth::test
