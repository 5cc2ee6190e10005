#include <array>

#include "windows/AtQuestion.h"
#include "windows/DropData.h"
#include "windows/UserInput.h"
#include "windows/WindowRig.h"

namespace marnoth::test::window_questions_test {
namespace {

constexpr const char* kFilter = "Mrn Files (*.mrn)|*.mrn||";

class WindowQuestions : public WindowRig {
protected:
    WindowQuestions() {
        window.takeFocus(true);
        settle();
    }

    /// Nothing when it isn't answered.
    std::optional<PageAnswer> message(std::string_view text, MessageKind kind) {
        std::optional<PageAnswer> got;
        window.askMessage(text, kind, [&](PageAnswer answer) { got = answer; });
        return got;
    }
    std::optional<int> menu(std::span<const MenuItem> items, Point at = {10, 10}) {
        std::optional<int> got;
        window.askMenu(at, items, [&](int answer) { got = answer; });
        return got;
    }
    static AtQuestion::Act click(int button) {
        return [button](HWND box) { SendDlgItemMessageW(box, button, BM_CLICK, 0, 0); };
    }
    /// What a message on this text leads to when somebody does `act` to the box.
    std::optional<PageAnswer> answered(MessageKind kind, AtQuestion::Act act) {
        const AtQuestion user(std::move(act));
        return message("Sure?", kind);
    }

    const std::vector<MenuItem> items{{32770, "Open Audio File", false}, {32771, "Drums & Bass", true}};
};

TEST_F(WindowQuestions, AMessageIsAnsweredInsideTheCall) {
    EXPECT_EQ(answered(MessageKind::note, click(IDOK)), PageAnswer::ok);
    EXPECT_EQ(answered(MessageKind::yesNo, click(IDYES)), PageAnswer::yes);
    EXPECT_EQ(answered(MessageKind::yesNo, click(IDNO)), PageAnswer::no);
    EXPECT_EQ(answered(MessageKind::yesNo, [](HWND box) { EndDialog(box, IDCANCEL); }), PageAnswer::cancel);
}

TEST_F(WindowQuestions, AMessageHasItsTextAndNoCaption) {
    std::wstring caption = L"?";
    std::wstring text;
    {
        const AtQuestion user([&](HWND box) {
            caption = textOf(box);
            for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
                if (isOfClass(child, L"Static") && !textOf(child).empty()) text = textOf(child);
            EndDialog(box, IDOK);
        });
        message(
            "\xC3\x9C"
            "ber & \xE9\x9F\xB3?",
            MessageKind::note);
    }
    EXPECT_EQ(caption, L"");
    EXPECT_EQ(text, L"\u00dcber & \u97f3?");
}

TEST_F(WindowQuestions, AMessageIsToldOrAnsweredByYesOrNo) {
    const auto buttonsOf = [](std::vector<int>& ids) {
        return [&ids](HWND box) {
            for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
                if (isOfClass(child, L"Button")) ids.push_back(GetDlgCtrlID(child));
            EndDialog(box, IDOK);
        };
    };
    std::vector<int> ofNote;
    std::vector<int> ofQuestion;
    answered(MessageKind::note, buttonsOf(ofNote));
    answered(MessageKind::yesNo, buttonsOf(ofQuestion));
    EXPECT_EQ(ofNote.size(), 1u);
    EXPECT_EQ(ofQuestion, (std::vector<int>{IDYES, IDNO}));
}

TEST_F(WindowQuestions, ABoxStandsOverTheOutermostWindowWhichWaits) {
    answered(MessageKind::note, [&](HWND box) {
        EXPECT_EQ(GetWindow(box, GW_OWNER), frame.handle());
        EXPECT_FALSE(IsWindowEnabled(frame.handle()));
        EndDialog(box, IDOK);
    });
    EXPECT_TRUE(IsWindowEnabled(frame.handle()));
}

TEST_F(WindowQuestions, TheKeyboardComesBackBehindAQuestion) {
    answered(MessageKind::note, [&](HWND box) {
        EXPECT_NE(GetFocus(), handle());
        Sleep(150);
        pump();
        EndDialog(box, IDOK);
    });
    EXPECT_EQ(GetFocus(), handle());
    Sleep(150);
    pump();
    EXPECT_EQ(page.take(), Lines{}) << "and was never lost";
}

TEST_F(WindowQuestions, AKeyboardThatThePageDoesNotWantStaysWhereItIs) {
    window.takeFocus(false);
    HWND const before = GetFocus();
    EXPECT_NE(before, handle());
    answered(MessageKind::note, click(IDOK));
    EXPECT_NE(GetFocus(), handle());
}

TEST_F(WindowQuestions, AKeyboardThatTheWindowHadComesBackUnasked) {
    window.takeFocus(false);
    SetFocus(handle());
    answered(MessageKind::note, click(IDOK));
    EXPECT_EQ(GetFocus(), handle());
}

/// Everything that a user and a timer can do to the page's window.
void disturb(HWND window) {
    SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    SendMessageW(window, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(5, 5));
    SendMessageW(window, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(5, 5));
    POINT at{5, 5};
    ClientToScreen(window, &at);
    SendMessageW(window, WM_CONTEXTMENU, 0, MAKELPARAM(at.x, at.y));
    SendMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), MAKELPARAM(at.x, at.y));
    SendMessageW(window, WM_KEYDOWN, 'A', 1);
    SendMessageW(window, WM_CHAR, 'a', 1);
    SendMessageW(window, WM_KEYUP, 'A', 1);
    SendMessageW(window, WM_TIMER, 1, 0);
    SendMessageW(window, WM_TIMER, 2, 0);
}

TEST_F(WindowQuestions, NothingButPaintReachesThePageWhileOneIsOpen) {
    window.setTimer(10);
    page.heard.clear();
    bool painted = false;
    answered(MessageKind::note, [&](HWND box) {
        page.heard.clear();
        disturb(handle());
        EXPECT_NE(GetFocus(), handle()) << "a press takes no keyboard from a question";
        pump();
        page.onPaint = [&] { painted = true; };
        window.requestPaint();
        pump();
        EXPECT_EQ(page.take(), Lines{});
        EndDialog(box, IDOK);
    });
    EXPECT_TRUE(painted);
    window.setTimer(0);
    page.heard.clear();
    disturb(handle());
    EXPECT_EQ(page.heard.size(), 11u) << "and behind it everything does: all but the keyboard's timer";
}

TEST_F(WindowQuestions, FilesThatAreDroppedWhileOneIsOpenHaveNoEffect) {
    auto* const target = static_cast<IDropTarget*>(GetPropW(handle(), L"OleDropTargetInterface"));
    const auto data = RefPtr<DragData>::adopt(new DragData(CF_HDROP, wideFileList({L"C:\\a.wav"})));
    answered(MessageKind::note, [&](HWND box) {
        DWORD effect = DROPEFFECT_COPY;
        EXPECT_EQ(target->DragEnter(data.get(), 0, {}, &effect), S_OK);
        EXPECT_EQ(effect, DWORD{DROPEFFECT_NONE});
        effect = DROPEFFECT_COPY;
        EXPECT_EQ(target->DragOver(0, {}, &effect), S_OK);
        EXPECT_EQ(effect, DWORD{DROPEFFECT_NONE});
        effect = DROPEFFECT_COPY;
        EXPECT_EQ(target->Drop(data.get(), 0, {}, &effect), S_OK);
        EXPECT_EQ(effect, DWORD{DROPEFFECT_NONE});
        EXPECT_EQ(target->DragLeave(), S_OK);
        EndDialog(box, IDOK);
    });
    EXPECT_EQ(page.take(), Lines{});
}

TEST_F(WindowQuestions, AQuestionThatIsTakenBackIsNotAnswered) {
    const auto cancel = [&](HWND) { window.cancelQuestion(); };
    EXPECT_EQ(answered(MessageKind::note, cancel), std::nullopt);
    EXPECT_EQ(answered(MessageKind::yesNo, cancel), std::nullopt);
    EXPECT_EQ(openQuestion(), nullptr);
    EXPECT_TRUE(IsWindowEnabled(frame.handle()));
    window.cancelQuestion();
    EXPECT_EQ(answered(MessageKind::note, click(IDOK)), PageAnswer::ok) << "and the next one is";
}

TEST_F(WindowQuestions, WhatIsAskedWhileOneThatWasTakenBackStillEndsIsAnswered) {
    std::optional<PageAnswer> inner;
    const auto outer = answered(MessageKind::yesNo, [&](HWND) {
        window.cancelQuestion();
        inner = answered(MessageKind::yesNo, click(IDNO));
    });
    EXPECT_EQ(outer, std::nullopt);
    EXPECT_EQ(inner, PageAnswer::no);
}

TEST_F(WindowQuestions, AWindowThatClosesUnderItsQuestionTakesItBack) {
    EXPECT_EQ(answered(MessageKind::yesNo, [&](HWND) { window.close(); }), std::nullopt);
    EXPECT_EQ(handle(), nullptr);
    EXPECT_EQ(openQuestion(), nullptr);
    EXPECT_TRUE(IsWindowEnabled(frame.handle()));
}

TEST_F(WindowQuestions, AWindowThatClosesUnderTwoTakesBothBack) {
    std::optional<PageAnswer> inner;
    const auto outer = answered(MessageKind::yesNo, [&](HWND) {
        inner = answered(MessageKind::yesNo, [&](HWND) { window.close(); });
    });
    EXPECT_EQ(outer, std::nullopt);
    EXPECT_EQ(inner, std::nullopt);
    EXPECT_EQ(openQuestion(), nullptr);
}

TEST_F(WindowQuestions, AFrameThatGoesUnderAQuestionTakesItBack) {
    EXPECT_EQ(answered(MessageKind::yesNo, [&](HWND) { frame.close(); }), std::nullopt);
    EXPECT_EQ(handle(), nullptr);
    EXPECT_EQ(openQuestion(), nullptr);
}

TEST_F(WindowQuestions, AClosedWindowsQuestionsAreCancelled) {
    window.close();
    EXPECT_EQ(message("Sure?", MessageKind::yesNo), PageAnswer::cancel);
    EXPECT_EQ(menu(items), 0);
    std::optional<std::string> file = "(no answer)";
    window.askFile(kFilter, FileKind::open, [&](std::optional<std::string> path) { file = std::move(path); });
    EXPECT_EQ(file, std::nullopt);
}

TEST_F(WindowQuestions, AMenuGivesTheIdOfWhatIsChosen) {
    const AtQuestion user([&](HWND) {
        key(VK_DOWN, true);
        key(VK_DOWN, false);
        key(VK_DOWN, true);
        key(VK_DOWN, false);
        key(VK_RETURN, true);
        key(VK_RETURN, false);
    });
    EXPECT_EQ(menu(items), 32771);
}

TEST_F(WindowQuestions, AMenuShowsItsItemsAndWhichAreChecked) {
    constexpr UINT kGetMenu = 0x01E1;  // MN_GETHMENU
    const AtQuestion user([&](HWND shown) {
        auto* const menu = reinterpret_cast<HMENU>(SendMessageW(shown, kGetMenu, 0, 0));
        ASSERT_EQ(GetMenuItemCount(menu), 2);
        std::array<wchar_t, 64> text{};
        GetMenuStringW(menu, 0, text.data(), 64, MF_BYPOSITION);
        EXPECT_STREQ(text.data(), L"Open Audio File");
        GetMenuStringW(menu, 1, text.data(), 64, MF_BYPOSITION);
        EXPECT_STREQ(text.data(), L"Drums && Bass") << "which is shown with one of them";
        EXPECT_EQ(GetMenuState(menu, 0, MF_BYPOSITION) & MF_CHECKED, 0u);
        EXPECT_NE(GetMenuState(menu, 1, MF_BYPOSITION) & MF_CHECKED, 0u);
        RECT place{};
        GetWindowRect(shown, &place);
        EXPECT_NEAR(place.left, screenPoint({10, 10}).x, 4);
        EXPECT_NEAR(place.top, screenPoint({10, 10}).y, 4);
        EndMenu();
    });
    EXPECT_EQ(menu(items), 0);
}

TEST_F(WindowQuestions, AMenuThatIsLeftGivesNothing) {
    const AtQuestion user([&](HWND) {
        key(VK_ESCAPE, true);
        key(VK_ESCAPE, false);
    });
    EXPECT_EQ(menu(items), 0);
}

TEST_F(WindowQuestions, AMenuThatIsTakenBackIsNotAnswered) {
    {
        const AtQuestion user([&](HWND) { window.cancelQuestion(); });
        EXPECT_EQ(menu(items), std::nullopt);
    }
    const AtQuestion user([&](HWND) { window.close(); });
    EXPECT_EQ(menu(items), std::nullopt);
    EXPECT_EQ(openQuestion(), nullptr);
}

TEST_F(WindowQuestions, NothingButPaintReachesThePageWhileAMenuIsOpen) {
    const AtQuestion user([&](HWND) {
        page.heard.clear();
        disturb(handle());
        EXPECT_EQ(page.take(), Lines{});
        EndMenu();
    });
    EXPECT_EQ(menu(items), 0);
}

/// Page and window in one, as their owner holds them, and what a question under which he lets go leads to.
struct Whole {
    explicit Whole(HWND frame) : window(frame, {0, 0, 100, 80}, fonts, {}, {}) {}

    NoFonts fonts;
    ListeningPage page;
    Win32Window window;
    bool* isGone = nullptr;
    ~Whole() {
        if (isGone) *isGone = true;
    }
};

TEST(WindowLifeUnderQuestions, APageThatIsLetGoUnderItsQuestionLivesUntilThatHasReturned) {
    Frame frame;
    bool isGone = false;
    bool livedBehind = false;
    bool answered = false;
    auto whole = std::make_shared<Whole>(frame.handle());
    whole->isGone = &isGone;
    whole->window.setPage(&whole->page);
    whole->window.setLife(whole);
    whole->page.act = [&, inside = whole.get()](const std::string& line) {
        if (line != "key 65") return;
        inside->window.askMessage("Sure?", MessageKind::yesNo, [&](PageAnswer) { answered = true; });
        livedBehind = !isGone;
        inside->page.heard.push_back("still here");
    };
    HWND const window = whole->window.handle();
    const AtQuestion user([&](HWND) {
        whole->window.close();
        whole.reset();
        EXPECT_FALSE(isGone);
    });
    SendMessageW(window, WM_KEYDOWN, 'A', 1);
    EXPECT_TRUE(livedBehind);
    EXPECT_FALSE(answered);
    EXPECT_TRUE(isGone) << "and no longer";
    EXPECT_FALSE(IsWindow(window));
}

TEST(SystemDialogs, AnotherOwnersDialogIsNotTheOneThatEnds) {
    const Frame frame;
    const Frame other;
    const auto make = [](HWND owner) {
        return CreateWindowExW(0, L"#32770", L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, owner, nullptr,
                               nullptr, nullptr);
    };
    const SystemDialog watched(frame.handle());
    watched.end();
    HWND const others = make(other.handle());
    HWND const own = make(frame.handle());
    HWND const second = make(frame.handle());
    watched.end();
    EXPECT_TRUE(IsWindowVisible(others));
    EXPECT_FALSE(IsWindowVisible(own));
    EXPECT_TRUE(IsWindowVisible(second));
}

TEST(WindowLifeUnderQuestions, ADropUnderWhoseQuestionThePageIsLetGoReturnsToo) {
    Frame frame;
    bool isGone = false;
    auto whole = std::make_shared<Whole>(frame.handle());
    whole->isGone = &isGone;
    whole->window.setPage(&whole->page);
    whole->window.setLife(whole);
    bool livedBehind = false;
    whole->page.act = [&, inside = whole.get()](const std::string& line) {
        if (!line.starts_with("drop")) return;
        inside->window.askMessage("No.", MessageKind::note, [](PageAnswer) {});
        livedBehind = !isGone;
    };
    // As the system keeps it while it calls.
    const RefPtr<IDropTarget> target(
        static_cast<IDropTarget*>(GetPropW(whole->window.handle(), L"OleDropTargetInterface")));
    const auto data = RefPtr<DragData>::adopt(new DragData(CF_HDROP, wideFileList({L"C:\\a.wav"})));
    const AtQuestion user([&](HWND) {
        whole->window.close();
        whole.reset();
        EXPECT_FALSE(isGone);
    });
    DWORD effect = DROPEFFECT_NONE;
    EXPECT_EQ(target->Drop(data.get(), 0, {}, &effect), S_OK);
    EXPECT_TRUE(livedBehind);
    EXPECT_TRUE(isGone);
}

}  // namespace
}  // namespace marnoth::test::window_questions_test
