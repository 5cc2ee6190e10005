#include <thread>

#include "windows/UserInput.h"
#include "windows/WindowRig.h"

namespace marnoth::test::window_keys_test {
namespace {

using Milliseconds = std::chrono::milliseconds;

class WindowKeys : public WindowRig {
protected:
    WindowKeys() {
        window.takeFocus(true);
        settle();
    }

    /// Messages as a host's loop answers them.
    void pumpAsHost() {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (window.translate(message)) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    Lines press(WORD code) {
        key(code, true);
        key(code, false);
        pumpAsHost();
        return page.take();
    }
    /// Two keys that go down or up at the same moment; what the page hears of them. Characters come later.
    Lines together(UINT what, WPARAM first, unsigned firstDetails, WPARAM second, unsigned secondDetails) {
        DWORD begin = 0;
        do {
            pump();
            page.heard.clear();
            begin = GetTickCount();
            PostMessageW(handle(), what, first, static_cast<LPARAM>(firstDetails));
            PostMessageW(handle(), what, second, static_cast<LPARAM>(secondDetails));
        } while (GetTickCount() != begin);
        for (int i = 0; i < 2; ++i) {
            MSG message{};
            PeekMessageW(&message, handle(), what, what, PM_REMOVE);
            DispatchMessageW(&message);
        }
        return page.take();
    }
    void character(unsigned unit) { send(WM_CHAR, unit, 1); }
};

TEST_F(WindowKeys, TellsOfKeysByTheirCodesAndOfTheCharacterBetweenDownAndUp) {
    EXPECT_EQ(press('D'), (Lines{"key 68", "U+100", "let 68"}));
    EXPECT_EQ(press(VK_DELETE), (Lines{"key 46", "let 46"}));
    EXPECT_EQ(press(VK_ADD), (Lines{"key 107", "U+43", "let 107"}));
    EXPECT_EQ(press(VK_F11), (Lines{"key 122", "let 122"}));
}

TEST_F(WindowKeys, EditingKeysMakeNoCharacters) {
    EXPECT_EQ(press(VK_BACK), (Lines{"key 8", "let 8"}));
    EXPECT_EQ(press(VK_RETURN), (Lines{"key 13", "let 13"}));
    EXPECT_EQ(press(VK_ESCAPE), (Lines{"key 27", "let 27"}));
    EXPECT_EQ(press(VK_TAB), (Lines{"key 9", "let 9"}));
    const HeldKey control(VK_CONTROL);
    pump();
    page.heard.clear();
    EXPECT_EQ(press('C'), (Lines{"key ctrl 67", "let ctrl 67"}));
}

TEST_F(WindowKeys, ModifiersAreKeysTooAndAreHeldFromTheirDownToTheirUp) {
    {
        const HeldKey shift(VK_SHIFT);
        EXPECT_EQ(press('Z'), (Lines{"key shift 16", "key shift 90", "U+shift 90", "let shift 90"}));
    }
    pumpAsHost();
    EXPECT_EQ(page.take(), Lines{"let 16"});
}

TEST_F(WindowKeys, CharactersBeyondTheFirstPlaneComeWhole) {
    character(0xD834);
    EXPECT_EQ(page.take(), Lines{});
    character(0xDD1E);
    EXPECT_EQ(page.take(), Lines{"U+119070"});  // the G clef, U+1D11E
    character(0xDBFF);
    character(0xDFFF);
    EXPECT_EQ(page.take(), Lines{"U+1114111"});
    character(0xE9);
    EXPECT_EQ(page.take(), Lines{"U+233"});
}

TEST_F(WindowKeys, HalfACharacterIsNone) {
    character(0xDD1E);
    EXPECT_EQ(page.take(), Lines{});
    character(0xD834);
    character('a');
    character(0xDD1E);
    EXPECT_EQ(page.take(), Lines{"U+97"});
    character(0xD800);
    character(0xD834);
    character(0xDD1E);
    EXPECT_EQ(page.take(), Lines{"U+119070"});
}

TEST_F(WindowKeys, AMessageThatStandsForSeveralCountsForSeveral) {
    send(WM_KEYDOWN, VK_RIGHT, 3);
    send(WM_CHAR, 'a', 2);
    EXPECT_EQ(page.take(), (Lines{"key 39", "key 39", "key 39", "U+97", "U+97"}));
}

TEST_F(WindowKeys, F1ComesOnceAndNoHostIsAskedForHelp) {
    EXPECT_EQ(press(VK_F1), (Lines{"key 112", "let 112"}));
    HELPINFO asked{};
    asked.cbSize = sizeof asked;
    EXPECT_NE(send(WM_HELP, 0, reinterpret_cast<LPARAM>(&asked)), 0);
    EXPECT_EQ(page.take(), Lines{});
}

TEST_F(WindowKeys, TheControlKeyOfAThirdLevelKeyIsNotTold) {
    constexpr unsigned kRight = KF_EXTENDED << 16;
    EXPECT_EQ(together(WM_KEYDOWN, VK_CONTROL, 1, VK_MENU, kRight | 1), Lines{"key 18"});
    EXPECT_EQ(together(WM_KEYDOWN, VK_CONTROL, kRight | 1, VK_MENU, kRight | 1), (Lines{"key 17", "key 18"}))
        << "a control key of its own";
    EXPECT_EQ(together(WM_KEYDOWN, VK_CONTROL, 1, 'C', 1), (Lines{"key 17", "key 67"}));
    EXPECT_EQ(together(WM_KEYUP, VK_CONTROL, 1, VK_MENU, kRight | 1), Lines{"let 18"});
    EXPECT_EQ(together(WM_KEYDOWN, VK_SHIFT, 1, VK_MENU, kRight | 1), (Lines{"key 16", "key 18"}));
}

TEST_F(WindowKeys, WantsEveryKeyOfADialog) {
    EXPECT_NE(send(WM_GETDLGCODE) & DLGC_WANTALLKEYS, 0);
}

TEST_F(WindowKeys, TranslatesKeysOfThePagesWindowAlone) {
    MSG message{handle(), WM_KEYDOWN, VK_TAB, 1, 0, {}};
    EXPECT_TRUE(window.translate(message));
    EXPECT_EQ(page.take(), Lines{"key 9"});
    MSG elsewhere{frame.handle(), WM_KEYDOWN, VK_TAB, 1, 0, {}};
    EXPECT_FALSE(window.translate(elsewhere));
    MSG mouse{handle(), WM_LBUTTONDOWN, 0, 0, 0, {}};
    EXPECT_FALSE(window.translate(mouse));
    MSG ofNobody{nullptr, WM_KEYDOWN, VK_TAB, 1, 0, {}};
    window.close();
    EXPECT_FALSE(window.translate(ofNobody));
    EXPECT_EQ(page.take(), Lines{});
}

/// A control of the host's, which has the keyboard at first.
class WindowKeyboard : public WindowRig {
protected:
    WindowKeyboard() {
        SetFocus(other);
        settle();
    }

    HWND const other = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 300, 20, 50, 20,
                                       frame.handle(), nullptr, nullptr, nullptr);
};

TEST_F(WindowKeyboard, IsTakenWhenThePageWantsItAndGivenBackToWhoeverHadIt) {
    window.takeFocus(true);
    EXPECT_EQ(GetFocus(), handle());
    window.takeFocus(false);
    EXPECT_EQ(GetFocus(), other);
}

TEST_F(WindowKeyboard, GoesToTheFrameWhenWhoeverHadItIsGone) {
    window.takeFocus(true);
    DestroyWindow(other);
    window.takeFocus(false);
    EXPECT_EQ(GetFocus(), frame.handle());
}

TEST_F(WindowKeyboard, ThatIsElsewhereStaysThere) {
    window.takeFocus(true);
    SetFocus(frame.handle());
    window.takeFocus(false);
    EXPECT_EQ(GetFocus(), frame.handle());
}

TEST_F(WindowKeyboard, ComesWithAPressWhenThePageWantsIt) {
    send(WM_LBUTTONDOWN, MK_LBUTTON, 0);
    EXPECT_EQ(GetFocus(), other);
    window.takeFocus(true);
    SetFocus(other);
    send(WM_LBUTTONDOWN, MK_LBUTTON, 0);
    EXPECT_EQ(GetFocus(), handle());
}

TEST_F(WindowKeyboard, IsLostWhenItDoesNotComeBack) {
    window.takeFocus(true);
    SetFocus(other);
    EXPECT_EQ(page.take(), Lines{});
    EXPECT_TRUE(pumpUntil([&] { return !page.heard.empty(); }));
    EXPECT_EQ(page.take(), Lines{"focus lost"});
    std::this_thread::sleep_for(3 * FocusPatience::kPatience);
    pump();
    EXPECT_EQ(page.take(), Lines{}) << "once for each loss";
}

TEST_F(WindowKeyboard, ThatIsTakenAwayForAMomentIsNotLost) {
    window.takeFocus(true);
    SetFocus(other);
    SetFocus(handle());
    std::this_thread::sleep_for(3 * FocusPatience::kPatience);
    pump();
    EXPECT_EQ(page.take(), Lines{});
}

TEST_F(WindowKeys, TheTimerTicksUntilItIsStopped) {
    window.setTimer(20);
    EXPECT_TRUE(pumpUntil([&] { return page.heard.size() >= 3; }));
    EXPECT_EQ(page.heard[0], "timer");
    window.setTimer(0);
    std::this_thread::sleep_for(Milliseconds(60));
    page.heard.clear();
    std::this_thread::sleep_for(Milliseconds(60));
    pump();
    EXPECT_EQ(page.take(), Lines{});
}

}  // namespace
}  // namespace marnoth::test::window_keys_test
