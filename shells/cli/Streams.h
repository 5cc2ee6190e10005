#pragma once

#include <ostream>
#include <string>

#include "shellkit/media/OutputFile.h"

namespace marnoth {

/// Where a command prints to.
struct Streams {
    std::ostream& out;
    std::ostream& errors;
    bool quiet = false;  ///< nothing is printed but what went wrong, or may have

    /// What is told about the output `file` doesn't go into it.
    std::ostream& reportBeside(const std::string& file) const {
        // A stream without a buffer takes everything and keeps nothing.
        static std::ostream nowhere(nullptr);
        return quiet ? nowhere : file == kStandardOutput ? errors : out;
    }
};

}  // namespace marnoth
