#pragma once

#include <string>

namespace marnoth {

/// Lets a user hear a file before it is chosen. It never waits. The window's thread.
class FileListener {
public:
    virtual ~FileListener() = default;

    /// In place of what was heard before. `file` is a full path in UTF-8. Gives a sentence for the user when
    /// it can't be heard, empty otherwise.
    virtual std::string play(const std::string& file) = 0;
    virtual void stop() = 0;
    virtual bool isPlaying() const = 0;
};

}  // namespace marnoth
