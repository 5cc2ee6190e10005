#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/drawing/CursorPicture.h"
#include "platform/drawing/IconPicture.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

class FileChooser;
class FontSource;
class QuestionView;

/// The page's window on X11: a window of its own, or a child of a host's. It has a connection to the display
/// of its own, shows the page enlarged by whole numbers, and draws messages and menus over the page.
///
/// It never waits: whoever runs it calls `dispatch` when `descriptor` is readable and when `deadline` has
/// come. A window that is destroyed from outside, or whose display has gone, is `isGone` and does nothing
/// more. All on one thread.
class X11Window final : public PageWindow {
public:
    using Time = std::chrono::steady_clock::time_point;

    struct Setup {
        unsigned long parent = 0;  ///< a host's window to be embedded in; 0 for a window of its own
        int scale = 0;             ///< pixels of the screen for one of the page; 0 by the user's resolution
        int width = 0;             ///< of the page
        int height = 0;
        std::string title;  ///< UTF-8
        CursorPictures cursors;
        std::vector<IconPicture> icon;  ///< of a window of its own, in any number of sizes
    };

    /// `fonts`, `questions` and `files` outlive it. Throws `std::runtime_error`, with a sentence for the
    /// user, when there is no display to show it on.
    X11Window(const Setup& setup, FontSource& fonts, QuestionView& questions, FileChooser& files);
    ~X11Window() override;

    /// Not owned; null without a page.
    void setPage(PageEvents* page);
    /// From here on other programs, and a host's connection, find it by its `id`.
    void show();
    void setTitle(const std::string& title);
    /// Called when the user closes the window; it stays open till it is destroyed.
    void onClose(std::function<void()> closes);
    /// Called with a key that the page has no use for, and whether it went down. Without this an embedded
    /// window sends such keys on to its host's.
    void onUnusedKey(std::function<void(int key, Modifiers held, bool down)> use);
    /// What `showHelp` does.
    void onHelp(std::function<void()> help);

    unsigned long id() const;
    int scale() const;
    /// As in `Setup`: the window takes the size that it needs for it. An embedded one's host is to be told.
    void setScale(int scale);
    bool isGone() const;
    /// A question is open, of whoever asked: another would take its place.
    bool isAsking() const;
    int descriptor() const;
    /// When `dispatch` has something to do though nothing comes; nothing for never.
    std::optional<Time> deadline() const;
    /// Everything that has come, the timer, and paint at the end.
    void dispatch();

    void requestPaint() override;
    void present(const Bitmap& screen, const Rect& changed) override;
    std::unique_ptr<Font> openFont(std::string_view face, int height, std::string& error) override;
    void setCapture() override;
    void releaseCapture() override;
    void beginRelativeDrag(PageCursor shown) override;
    void endRelativeDrag() override;
    void confinePointer(std::optional<Rect> area) override;
    Point pointer() override;
    void setCursor(PageCursor cursor) override;
    void setTimer(int milliseconds) override;
    void takeFocus(bool wanted) override;
    void askMessage(std::string_view text, MessageKind kind, std::function<void(PageAnswer)> then) override;
    void askFile(std::string_view filter, FileKind kind,
                 std::function<void(std::optional<std::string>)> then) override;
    void askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) override;
    void cancelQuestion() override;
    void readClipboard(std::function<void(std::string)> then) override;
    void setClipboardText(std::string_view text) override;
    void showHelp() override;

private:
    class Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace marnoth
