#pragma once

#include <string>

namespace marnoth {

/// A bar on standard error that shows how far a piece of work has come; nothing when nobody watches.
class Progress {
public:
    /// Nothing is shown where it isn't `wanted`.
    explicit Progress(bool wanted = true);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `done` runs from 0 to 1.
    void show(double done);

private:
    bool watched_;
    std::string shown_;
};

}  // namespace marnoth
