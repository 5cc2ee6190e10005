#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/com/Com.h"

namespace marnoth::test {

/// What a user sees of a box of the system's.
inline std::wstring textOf(HWND window) {
    wchar_t text[512]{};
    GetWindowTextW(window, text, 512);
    return text;
}

inline bool isOfClass(HWND window, std::wstring_view name) {
    wchar_t text[64]{};
    GetClassNameW(window, text, 64);
    return text == name;
}

/// The dialog or menu that is on this thread's screen; the innermost of several. Null for none.
inline HWND openQuestion() {
    HWND found = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM out) -> BOOL {
            const bool isOne = isOfClass(window, L"#32770") || isOfClass(window, L"#32768");
            if (!isOne || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
            *reinterpret_cast<HWND*>(out) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

/// A user who does something once at each of the next questions, from within the messages that a question
/// dispatches. A question that stays open for long is ended.
class AtQuestion {
public:
    using Act = std::function<void(HWND question)>;

    explicit AtQuestion(Act act) : AtQuestion(std::vector{std::move(act)}) {}
    explicit AtQuestion(std::vector<Act> acts)
        : acts_(std::move(acts)), outer_(std::exchange(current_, this)) {
        timer_ = SetTimer(nullptr, 0, kPeriod, [](HWND, UINT, UINT_PTR, DWORD) { current_->look(); });
    }
    ~AtQuestion() {
        KillTimer(nullptr, timer_);
        current_ = outer_;
        EXPECT_EQ(done_, acts_.size()) << "that many questions were asked";
    }
    AtQuestion(const AtQuestion&) = delete;
    AtQuestion& operator=(const AtQuestion&) = delete;

private:
    static constexpr UINT kPeriod = 10;  // milliseconds

    void look() {
        HWND const question = openQuestion();
        if (question && question != last_ && done_ < acts_.size()) {
            last_ = question;
            looks_ = 0;
            return acts_[done_++](question);
        }
        if (question && ++looks_ == 1000) {
            ADD_FAILURE() << "a question stays open";
            EndMenu();
            EndDialog(question, IDCANCEL);
        }
    }

    static inline AtQuestion* current_ = nullptr;
    std::vector<Act> acts_;
    AtQuestion* const outer_;
    UINT_PTR timer_ = 0;
    std::size_t done_ = 0;
    HWND last_ = nullptr;
    int looks_ = 0;
};

}  // namespace marnoth::test
