#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <utility>

namespace marnoth {

/// What the program has to tell its user.
struct Notice {
    std::string text;  ///< a sentence
    bool warns = false;

    friend bool operator==(const Notice&, const Notice&) = default;
};

/// What there is to tell in passing, while the user plays: a sentence at a time, each long enough to be read,
/// and none that would have to be answered. The window's thread.
class Notices {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Nothing when `sentence` is empty. What waits to be told already isn't told twice.
    void tell(std::string sentence) { add({std::move(sentence), false}); }
    /// What went wrong: told longer.
    void warn(std::string sentence) { add({std::move(sentence), true}); }
    /// What is to be read now; an empty one for nothing.
    Notice current(Time now);
    /// The user has read it.
    void dismiss();

private:
    void add(Notice notice);
    std::chrono::milliseconds timeFor(const Notice& notice) const;

    std::deque<Notice> waiting_;  ///< the first is shown
    std::optional<Time> shownSince_;
};

}  // namespace marnoth
