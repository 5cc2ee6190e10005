#pragma once

#include <optional>

#include "platform/windows/SystemDialog.h"

namespace marnoth {

/// The questions that a window has open, within each other: the page has one at a time, but one that is taken
/// back may be open a moment longer, until the messages that are under way have been answered.
class OpenQuestion {
public:
    /// What the system shows: a dialog, or a menu.
    enum class Kind { dialog, menu };
    /// The innermost one of a window; null for none.
    using Innermost = OpenQuestion*;

    /// Made before the system is asked, and gone behind its answer. `owner` is the outermost window.
    OpenQuestion(Innermost& innermost, Kind kind, HWND owner);
    ~OpenQuestion() { innermost_ = outer_; }
    OpenQuestion(const OpenQuestion&) = delete;
    OpenQuestion& operator=(const OpenQuestion&) = delete;

    bool isTakenBack() const { return takenBack_; }
    /// With those outside of it.
    void takeBack();

private:
    Innermost& innermost_;
    OpenQuestion* const outer_;
    std::optional<SystemDialog> dialog_;  ///< a menu otherwise
    bool takenBack_ = false;
};

}  // namespace marnoth
