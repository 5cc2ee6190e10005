#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <set>
#include <utility>

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// A window without a screen. A test or a script is its user: it moves the pointer, presses keys, waits for
/// the timer and answers questions in advance; what the page wanted of the window can be read back.
///
/// Each thing that the user does reaches the page at once, and the page paints before the call returns when
/// it asked for that. One thread.
class HeadlessWindow final : public PageWindow {
public:
    /// Not owned; null without a page: what the user does then changes only the pointer and the keys.
    void setPage(PageEvents* page) { page_ = page; }

    // What the user does. Coordinates are taken as they are, also while the page confines the pointer.
    void press(Point at);
    void move(Point to);
    void release(Point at);
    /// Press, release, double click, release.
    void doubleClick(Point at);
    /// The right button goes down and up, and the context-menu event follows.
    void rightClick(Point at);
    /// `kKeyShift` or `kKeyControl` is down until `let`. The page is told nothing.
    void hold(int key) { held_.insert(key); }
    void let(int key) { held_.erase(key); }
    /// Down and up.
    void key(int key);
    /// Each character between its key's down and up. UTF-8.
    void type(std::string_view text);
    /// One period of the timer passes; nothing when none is set.
    void tick();
    /// Files come from outside: enter, over, drop.
    void drop(Point at, std::span<const std::string> paths);
    /// For the next question that has none yet: "yes", "no", "ok", "cancel", a menu's id or a file. A
    /// question without an answer is cancelled, and so is one that can't be answered in that way.
    void answer(std::string word) { answers_.push_back(std::move(word)); }
    /// Called at each question before it is answered, so that the user can look around; `settle` shows the
    /// page as it stands behind the question. Nothing else that a user does may come from there.
    void setWatcher(std::function<void()> watcher) { watcher_ = std::move(watcher); }
    /// Where answers that are relative files count from; the working directory at first.
    void setFolder(std::filesystem::path folder) { folder_ = std::move(folder); }
    /// Lets the page paint what is out of date.
    void settle();

    // What the page wanted.
    bool paintRequested() const { return paintRequested_; }
    const Bitmap& screen() const { return screen_; }  ///< as presented last; empty before
    bool hasCapture() const { return captured_; }
    std::optional<Rect> confinement() const { return confinement_; }
    PageCursor cursor() const { return cursor_; }
    int timerPeriod() const { return timerPeriod_; }  ///< milliseconds; 0 while it stands
    bool wantsFocus() const { return wantsFocus_; }
    int helpShown() const { return helpShown_; }  ///< how often
    /// The questions since the last call, each as a line without its end: `? message "TEXT" -> ANSWER`,
    /// `? file open|save "FILTER" -> ANSWER`, `? menu ID:TEXT[:checked] ... -> ANSWER`.
    std::vector<std::string> takeLog();

    void requestPaint() override { paintRequested_ = true; }
    void present(const Bitmap& screen, const Rect& changed) override;
    void setCapture() override { captured_ = true; }
    void releaseCapture() override { captured_ = false; }
    void confinePointer(std::optional<Rect> area) override { confinement_ = area; }
    void warpPointer(Point to) override { pointer_ = to; }
    Point pointer() override { return pointer_; }
    void setCursor(PageCursor cursor) override { cursor_ = cursor; }
    bool isKeyDown(int key) override { return held_.contains(key); }
    void setTimer(int milliseconds) override { timerPeriod_ = milliseconds; }
    void takeFocus(bool wanted) override { wantsFocus_ = wanted; }
    PageAnswer askMessage(std::string_view text, bool yesNo) override;
    std::optional<std::string> askFile(std::string_view filter, bool save) override;
    int askMenu(Point at, std::span<const MenuItem> items) override;
    std::string clipboardText() override { return clipboard_; }
    void setClipboardText(std::string_view text) override { clipboard_ = text; }
    void showHelp() override { ++helpShown_; }

private:
    template <class Event>
    void tell(Event event);
    std::string nextAnswer();
    void log(std::string_view question, std::string_view answer);

    PageEvents* page_ = nullptr;
    std::set<int> held_;
    Point pointer_;
    std::string clipboard_;
    std::deque<std::string> answers_;
    std::function<void()> watcher_;
    std::filesystem::path folder_;
    std::vector<std::string> log_;
    Bitmap screen_;
    std::optional<Rect> confinement_;
    PageCursor cursor_ = PageCursor::arrow;
    int timerPeriod_ = 0;
    int helpShown_ = 0;
    bool captured_ = false;
    bool wantsFocus_ = false;
    bool paintRequested_ = false;
};

/// The key that makes a character on an American keyboard, in the codes of `PageKey`, without its modifiers;
/// 0 for a character that has none.
int keyOfCharacter(char32_t character);

}  // namespace marnoth
