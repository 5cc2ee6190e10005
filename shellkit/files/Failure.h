#pragma once

#include <stdexcept>
#include <string>

namespace marnoth {

/// The program was called in a way that it doesn't understand, or a script holds a line that it doesn't.
/// `what()` is one line that says what to do. Ends the program with status 2.
struct WrongUse : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A file can't be read, written or used. `what()` is one line with the file and the reason. Ends the program
/// with status 1.
struct FileFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace marnoth
