#pragma once

#include <filesystem>

namespace marnoth {

/// A file that nobody wants when the process ends before its work is done. From the constructor to the
/// destructor a signal takes it away; how, `removeLeftoversOnSignals` tells. Any thread. Of more than 64 at a
/// time the last ones stay.
class Leftover {
public:
    explicit Leftover(std::filesystem::path path);
    ~Leftover();
    Leftover(const Leftover&) = delete;
    Leftover& operator=(const Leftover&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    const std::filesystem::path path_;
    int slot_ = -1;
};

/// While one of these is alive a signal waits, so that making a file and telling of it are one.
class SignalPause {
public:
    SignalPause();
    ~SignalPause();
    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;
};

/// For the main program, once: from now on an interruption from the keyboard and a wish to terminate (and,
/// where there are such, a terminal or a reader of the output that goes away) remove all leftovers and end
/// the process with 128 and the signal's number: 130 and 143. A signal that is ignored stays ignored.
void removeLeftoversOnSignals();

}  // namespace marnoth
