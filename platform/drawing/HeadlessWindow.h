#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/PageWindow.h"
#include "platform/drawing/ShownQuestion.h"

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
    /// Where the page's faces come from; not owned. Without them it has none.
    void setFonts(FontSource& fonts) { fonts_ = &fonts; }

    // What the user does. Coordinates are taken as they are, also while the page confines the pointer.
    void press(Point at);
    /// During a relative drag the pointer stays where it is, and each move counts from there.
    void move(Point to);
    void release(Point at);
    /// Press, release, double click, release.
    void doubleClick(Point at);
    /// The right button goes down and up, and the context-menu event follows.
    void rightClick(Point at);
    void wheel(Point at, WheelAxis axis, int steps);
    /// `kKeyShift` or `kKeyControl` goes down, and is until `let`.
    void hold(int key);
    void let(int key);
    /// Down and up. True when the page acted on it.
    bool key(int key);
    /// Each character between its key's down and up. UTF-8.
    void type(std::string_view text);
    /// Something else takes the mouse.
    void loseCapture();
    /// One period of the timer passes; nothing when none is set.
    void tick();
    /// Files come from outside: enter, over, drop.
    void drop(Point at, std::span<const std::string> paths);
    /// For the question that is open, or else for the next one that has no answer yet: "yes", "no", "ok",
    /// "cancel", a menu's id or a file. A question without an answer is cancelled, and so is one that can't
    /// be answered in that way.
    void answer(std::string word);
    /// The user leaves the next question that has no answer yet open, until `answer`.
    void leaveOpen() { answers_.push_back({}); }
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
    bool hasCapture() const { return captured_; }     ///< by a relative drag too
    bool dragsRelatively() const { return dragsRelatively_; }
    std::optional<Rect> confinement() const { return confinement_; }
    PageCursor cursor() const { return cursor_; }
    int timerPeriod() const { return timerPeriod_; }  ///< milliseconds; 0 while it stands
    bool wantsFocus() const { return wantsFocus_; }
    /// The question that was left open; null without one.
    const ShownQuestion* openQuestion() const { return open_ ? &open_->shown : nullptr; }
    const std::string& clipboardText() const { return clipboard_; }
    int helpShown() const { return helpShown_; }  ///< how often
    /// The questions since the last call, each as a line without its end: `? message "TEXT" -> ANSWER`,
    /// `? file open|save "FILTER" -> ANSWER`, `? menu ID:TEXT[:checked] ... -> ANSWER`.
    std::vector<std::string> takeLog();

    void requestPaint() override { paintRequested_ = true; }
    void present(const Bitmap& screen, const Rect& changed) override;
    std::unique_ptr<Font> openFont(std::string_view face, int height, std::string& error) override;
    void setCapture() override { captured_ = true; }
    void releaseCapture() override { captured_ = false; }
    void beginRelativeDrag(PageCursor shown) override;
    void endRelativeDrag() override;
    void confinePointer(std::optional<Rect> area) override { confinement_ = area; }
    Point pointer() override { return pointer_; }
    void setCursor(PageCursor cursor) override { cursor_ = cursor; }
    void setTimer(int milliseconds) override { timerPeriod_ = milliseconds; }
    void takeFocus(bool wanted) override { wantsFocus_ = wanted; }
    void askMessage(std::string_view text, MessageKind kind, std::function<void(PageAnswer)> then) override;
    void askFile(std::string_view filter, FileKind kind,
                 std::function<void(std::optional<std::string>)> then) override;
    void askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) override;
    void cancelQuestion() override;
    void readClipboard(std::function<void(std::string)> then) override { then(clipboard_); }
    void setClipboardText(std::string_view text) override { clipboard_ = text; }
    void showHelp() override { ++helpShown_; }

private:
    struct Question {
        std::string line;  ///< of the log, without the answer
        ShownQuestion shown;
        std::function<void(const std::string&)> take;  ///< the answer
    };

    template <class Event>
    void tell(Event event);
    void ask(Question question);
    /// Nothing when the question is to be left open.
    std::optional<std::string> nextAnswer();
    void log(std::string_view question, std::string_view answer);
    Modifiers held() const { return {held_.contains(kKeyShift), held_.contains(kKeyControl)}; }

    PageEvents* page_ = nullptr;
    FontSource* fonts_ = nullptr;
    std::set<int> held_;
    Point pointer_;
    bool dragsRelatively_ = false;
    std::string clipboard_;
    std::deque<std::optional<std::string>> answers_;  ///< nothing for a question that is left open
    std::optional<Question> open_;
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

}  // namespace marnoth
