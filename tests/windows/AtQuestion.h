#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>

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

/// A user who does something once at the next question, from within the messages that the question
/// dispatches. A question that stays open for long is ended.
class AtQuestion {
public:
    using Act = std::function<void(HWND question)>;

    explicit AtQuestion(Act act) : act_(std::move(act)), outer_(current_) {
        current_ = this;
        timer_ = SetTimer(nullptr, 0, 10, tick);
    }
    ~AtQuestion() {
        KillTimer(nullptr, timer_);
        current_ = outer_;
        EXPECT_TRUE(seen_) << "no question was asked";
    }
    AtQuestion(const AtQuestion&) = delete;
    AtQuestion& operator=(const AtQuestion&) = delete;

private:
    static void CALLBACK tick(HWND, UINT, UINT_PTR, DWORD) {
        HWND const question = openQuestion();
        if (!current_ || !question) return;
        if (!current_->seen_) {
            current_->seen_ = true;
            return current_->act_(question);
        }
        if (++current_->ticks_ == 1000) {
            ADD_FAILURE() << "a question stays open";
            EndMenu();
            EndDialog(question, IDCANCEL);
        }
    }

    static inline AtQuestion* current_ = nullptr;
    Act act_;
    AtQuestion* const outer_;
    UINT_PTR timer_ = 0;
    bool seen_ = false;
    int ticks_ = 0;
};

}  // namespace marnoth::test
