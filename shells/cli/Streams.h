#pragma once

#include <iosfwd>
#include <string>

#include "shellkit/media/OutputFile.h"

namespace marnoth {

/// Where a command prints to.
struct Streams {
    std::ostream& out;
    std::ostream& errors;

    /// What is told about the output `file` doesn't go into it.
    std::ostream& reportBeside(const std::string& file) const {
        return file == kStandardOutput ? errors : out;
    }
};

}  // namespace marnoth
