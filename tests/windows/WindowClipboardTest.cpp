#include <thread>

#include "platform/text/Text.h"
#include "windows/DropData.h"
#include "windows/WindowRig.h"

namespace marnoth::test::window_clipboard_test {
namespace {

class WindowClipboard : public WindowRig {
protected:
    ~WindowClipboard() override { put(0, {}); }

    std::string read() {
        std::string text = "(no answer)";
        window.readClipboard([&](std::string got) { text = std::move(got); });
        return text;
    }
    /// As another program does; nothing at all for a format of 0.
    void put(UINT format, std::span<const char> bytes) const {
        ASSERT_TRUE(OpenClipboard(frame.handle()));
        EmptyClipboard();
        if (format != 0) {
            EXPECT_TRUE(SetClipboardData(format, memoryWith(bytes)));
        }
        CloseClipboard();
    }
    void putWide(const std::wstring& units) const {
        put(CF_UNICODETEXT, {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(wchar_t)});
    }
    /// As another program reads it.
    static std::wstring onClipboard() {
        if (!OpenClipboard(nullptr)) return L"(locked)";
        HANDLE const memory = GetClipboardData(CF_UNICODETEXT);
        std::wstring text = memory ? static_cast<const wchar_t*>(GlobalLock(memory)) : L"(none)";
        if (memory) GlobalUnlock(memory);
        CloseClipboard();
        return text;
    }
};

TEST_F(WindowClipboard, GivesTheTextThatAnotherProgramPutThere) {
    putWide(std::wstring(L"-12.5 dB \u00e9\u97f3\U0001D11E") + L'\0');
    EXPECT_EQ(read(), "-12.5 dB \xC3\xA9\xE9\x9F\xB3\xF0\x9D\x84\x9E");
}

TEST_F(WindowClipboard, GivesNothingWithoutAText) {
    put(0, {});
    EXPECT_EQ(read(), "");
    put(CF_HDROP, wideFileList({L"C:\\a.wav"}));
    EXPECT_EQ(read(), "");
}

TEST_F(WindowClipboard, ATextThatIsNotEndedEndsWithItsMemory) {
    putWide(std::wstring(64, L'x'));
    // Systems may end it themselves.
    const std::string text = read();
    EXPECT_TRUE(text == std::string(64, 'x') || text == std::string(63, 'x')) << text;
}

TEST_F(WindowClipboard, WhatThePagePutsThereOthersRead) {
    window.setClipboardText("C5 \xF0\x9D\x84\x9E");
    EXPECT_EQ(onClipboard(), L"C5 \U0001D11E");
    EXPECT_EQ(read(), "C5 \xF0\x9D\x84\x9E");
    window.setClipboardText("");
    EXPECT_EQ(onClipboard(), L"");
}

TEST_F(WindowClipboard, WaitsForAProgramThatHasItOpenForAMoment) {
    putWide(std::wstring(L"late") + L'\0');
    std::atomic<bool> isOpen = false;
    std::thread other([&] {
        EXPECT_TRUE(OpenClipboard(nullptr));
        isOpen = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(15));
        CloseClipboard();
    });
    while (!isOpen) std::this_thread::yield();
    EXPECT_EQ(read(), "late");
    other.join();
}

TEST_F(WindowClipboard, GivesNothingWhenAnotherProgramKeepsItOpen) {
    window.setClipboardText("mine");
    std::atomic<bool> isDone = false;
    std::atomic<bool> isOpen = false;
    std::thread other([&] {
        EXPECT_TRUE(OpenClipboard(nullptr));
        isOpen = true;
        while (!isDone) std::this_thread::yield();
        CloseClipboard();
    });
    while (!isOpen) std::this_thread::yield();
    EXPECT_EQ(read(), "");
    window.setClipboardText("not now");
    isDone = true;
    other.join();
    EXPECT_EQ(read(), "mine");
}

TEST_F(WindowClipboard, ClosedItGivesAndTakesNothing) {
    window.setClipboardText("before");
    window.close();
    EXPECT_EQ(read(), "");
    window.setClipboardText("after");
    EXPECT_NE(onClipboard(), L"after");
}

}  // namespace
}  // namespace marnoth::test::window_clipboard_test
