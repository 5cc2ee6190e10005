#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "platform/text/Text.h"

namespace marnoth::test {

/// Looks at the boxes and menus of this process from a thread of its own, and tells each as it comes, with
/// where its buttons and items are on the screen, and that it has gone:
///
///     question box "CAPTION" LEFT TOP WIDTH HEIGHT
///     button X Y TEXT
///     menu X Y TEXT
///     answered
class QuestionWatch {
public:
    /// `tell` is called on the watch's thread.
    explicit QuestionWatch(std::function<void(const std::string&)> tell)
        : tell_(std::move(tell)), thread_([this](const std::stop_token& stop) { watch(stop); }) {}

private:
    static constexpr UINT kGetMenu = 0x1E1;  // MN_GETHMENU

    void watch(const std::stop_token& stop) {
        HWND shown = nullptr;
        while (!stop.stop_requested()) {
            Sleep(20);
            HWND found = nullptr;
            EnumWindows(&isQuestion, reinterpret_cast<LPARAM>(&found));
            if (found == shown) continue;
            if (shown) tell_("answered");
            shown = found;
            // What is in it comes a little later than it.
            Sleep(100);
            if (shown) describe(shown);
        }
    }
    static std::wstring classOf(HWND window) {
        wchar_t name[16]{};
        GetClassNameW(window, name, 16);
        return name;
    }
    static BOOL CALLBACK isQuestion(HWND window, LPARAM found) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process != GetCurrentProcessId() || !IsWindowVisible(window)) return TRUE;
        const std::wstring name = classOf(window);
        if (name != L"#32770" && name != L"#32768") return TRUE;
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }
    static std::string textOf(HWND window) {
        wchar_t text[1024]{};
        GetWindowTextW(window, text, 1024);
        return utf8FromWide(text);
    }
    void tellPlace(const char* kind, const RECT& place, const std::string& text) {
        tell_(std::string(kind) + " " + std::to_string((place.left + place.right) / 2) + " " +
              std::to_string((place.top + place.bottom) / 2) + " " + text);
    }
    void describe(HWND window) {
        if (classOf(window) == L"#32768") return describeMenu(window);
        RECT place{};
        GetWindowRect(window, &place);
        std::string fact = "question box \"" + textOf(window) + "\"";
        for (const LONG number : {place.left, place.top, place.right - place.left, place.bottom - place.top})
            fact += " " + std::to_string(number);
        tell_(fact);
        EnumChildWindows(
            window,
            [](HWND child, LPARAM self) {
                RECT place{};
                GetWindowRect(child, &place);
                const std::wstring kind = classOf(child);
                if (kind == L"Button" || kind == L"Static")
                    reinterpret_cast<QuestionWatch*>(self)->tellPlace(kind == L"Button" ? "button" : "says",
                                                                      place, textOf(child));
                return TRUE;
            },
            reinterpret_cast<LPARAM>(this));
    }
    void describeMenu(HWND window) {
        auto* const menu = reinterpret_cast<HMENU>(SendMessageW(window, kGetMenu, 0, 0));
        tell_("question menu");
        for (int i = 0; i < GetMenuItemCount(menu); ++i) {
            RECT place{};
            GetMenuItemRect(window, menu, static_cast<UINT>(i), &place);
            wchar_t text[256]{};
            GetMenuStringW(menu, static_cast<UINT>(i), text, 256, MF_BYPOSITION);
            const bool checked = GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION) & MF_CHECKED;
            tellPlace("menu", place,
                      std::to_string(GetMenuItemID(menu, i)) + ":" + utf8FromWide(text) +
                          (checked ? ":checked" : ""));
        }
    }

    std::function<void(const std::string&)> tell_;
    std::jthread thread_;
};

}  // namespace marnoth::test
