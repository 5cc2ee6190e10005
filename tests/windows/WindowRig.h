#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/windows/Win32Window.h"

namespace marnoth::test {

using Lines = std::vector<std::string>;

/// Writes down what the window tells it, and does what a test wants of a page then.
class ListeningPage final : public PageEvents {
public:
    Lines heard;
    /// Called behind each line.
    std::function<void(const std::string&)> act;
    std::function<void()> onPaint;
    DropEffect effect = DropEffect::copy;
    int paints = 0;

    void paint() override {
        ++paints;
        if (onPaint) onPaint();
    }
    void timer() override { note("timer"); }
    void leftDown(Point at, Modifiers held) override { point("down", at, held); }
    void leftUp(Point at, Modifiers held) override { point("up", at, held); }
    void doubleClick(Point at, Modifiers held) override { point("double", at, held); }
    void mouseMove(Point at, Modifiers held) override { point("move", at, held); }
    void relativeMove(Point distance, Modifiers held) override { point("by", distance, held); }
    void wheel(Point at, WheelAxis axis, int steps, Modifiers held) override {
        point((axis == WheelAxis::vertical ? "wheel " : "sideways ") + std::to_string(steps) + " at", at,
              held);
    }
    void rightDown(Point at, Modifiers held) override { point("right", at, held); }
    void contextMenu(Point at, Modifiers held) override { point("menu", at, held); }
    bool keyDown(int key, Modifiers held) override {
        note("key " + with(held) + std::to_string(key));
        return false;
    }
    void keyUp(int key, Modifiers held) override { note("let " + with(held) + std::to_string(key)); }
    void character(char32_t character, Modifiers held) override {
        note("U+" + with(held) + std::to_string(static_cast<unsigned>(character)));
    }
    void focusLost() override { note("focus lost"); }
    void captureLost() override { note("capture lost"); }
    DropEffect dragEnter(bool hasFiles) override {
        note(hasFiles ? "enter with files" : "enter");
        return hasFiles ? effect : DropEffect::none;
    }
    DropEffect dragOver(Point at) override {
        point("over", at, {});
        return effect;
    }
    void dragLeave() override { note("leave"); }
    DropEffect drop(Point at, std::optional<std::span<const std::string>> paths) override {
        if (paths) dropped.assign(paths->begin(), paths->end());
        point(paths ? "drop" : "drop of something else", at, {});
        return paths ? effect : DropEffect::none;
    }
    Lines dropped;

    Lines take() { return std::exchange(heard, {}); }

private:
    static std::string with(Modifiers held) {
        return std::string(held.shift ? "shift " : "") + (held.control ? "ctrl " : "");
    }
    void note(const std::string& line) {
        heard.push_back(line);
        if (act) act(line);
    }
    void point(const std::string& what, Point at, Modifiers held) {
        note(what + " " + with(held) + std::to_string(at.x) + "," + std::to_string(at.y));
    }
};

/// A window of a host, with nothing in it.
class Frame {
public:
    Frame()
        : window_(CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 80, 800, 700,
                                  nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)) {
        EXPECT_TRUE(window_);
        SetForegroundWindow(window_);
    }
    ~Frame() { close(); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    HWND handle() const { return window_; }
    void close() {
        if (HWND const window = std::exchange(window_, nullptr)) DestroyWindow(window);
    }

private:
    HWND window_;
};

class NoFonts final : public FontSource {
public:
    std::unique_ptr<Font> open(std::string_view face, int, std::string& error) override {
        error = "No " + std::string(face) + ".";
        return nullptr;
    }
};

/// Answers all messages that wait.
inline void pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

/// Answers messages until `isDone`, or some seconds.
inline bool pumpUntil(const std::function<bool()>& isDone) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isDone() && std::chrono::steady_clock::now() < end) {
        pump();
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    }
    return isDone();
}

/// A pointer of the page's own: a square of four pixels a side, in a colour for each, with the spot in it.
inline const CursorPicture& squareCursor(PageCursor cursor) {
    static std::map<PageCursor, CursorPicture> made;
    CursorPicture& square = made[cursor];
    if (square.mask.width() > 0) return square;
    const auto red = static_cast<std::uint8_t>(50 * static_cast<int>(cursor));
    square = {Bitmap(32, 32), Bitmap(32, 32), {1, 2}};
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) {
            square.picture.at(x, y) = {red, 20, 30};
            square.mask.at(x, y) = {255, 255, 255};
        }
    return square;
}

/// A page of 100 by 80 pixels in its window, in a frame, 10 pixels to the right and 20 down.
class WindowRig : public testing::Test {
protected:
    static constexpr int kWidth = 100;
    static constexpr int kHeight = 80;
    static constexpr RECT kPlace{10, 20, 10 + kWidth, 20 + kHeight};

    WindowRig() {
        window.setPage(&page);
        window.show(SW_SHOW);
        settle();
    }
    ~WindowRig() override { window.close(); }

    void settle() {
        pump();
        page.heard.clear();
        page.paints = 0;
    }
    HWND handle() const { return window.handle(); }
    LRESULT send(UINT message, WPARAM first = 0, LPARAM second = 0) {
        return SendMessageW(handle(), message, first, second);
    }
    static LPARAM halves(Point at) { return MAKELPARAM(at.x, at.y); }
    /// As a user sees it.
    COLORREF pixel(Point at) const {
        HDC const device = GetDC(handle());
        const COLORREF color = GetPixel(device, at.x, at.y);
        ReleaseDC(handle(), device);
        return color;
    }
    POINT screenPoint(Point at) const {
        POINT point{at.x, at.y};
        ClientToScreen(handle(), &point);
        return point;
    }
    LPARAM screenHalves(Point at) const {
        const POINT point = screenPoint(at);
        return MAKELPARAM(point.x, point.y);
    }

    Frame frame;
    NoFonts fonts;
    ListeningPage page;
    Win32Window window{frame.handle(), kPlace, fonts, squareCursor, {}};
};

}  // namespace marnoth::test
