#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "editor/PageRig.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth::test {

/// A window whose user thinks before answering: questions stay open until the test answers them. It holds no
/// event back meanwhile, and keeps what it was to call with an answer for as long as it likes, also when the
/// page is gone.
class LateWindow final : public PageWindow {
public:
    // How a question is answered; also one that was answered before, or taken back.
    void answer(PageAnswer answer) { std::exchange(message, {})(answer); }
    void answer(std::optional<std::string> path) { std::exchange(file, {})(std::move(path)); }
    void answer(int item) { std::exchange(menu, {})(item); }

    std::vector<std::string> asked;  ///< since the test looked last: a message's text, a filter, or "menu"
    int cancelled = 0;               ///< how often a question was taken back
    int timerPeriod = 0;
    bool captured = false;
    bool dragsRelatively = false;
    int paintsWanted = 0;
    std::function<void(PageAnswer)> message;
    std::function<void(std::optional<std::string>)> file;
    std::function<void(int)> menu;
    std::function<void(std::string)> clipboard;  ///< that somebody waits for

    std::vector<std::string> take() { return std::exchange(asked, {}); }

    void requestPaint() override { ++paintsWanted; }
    void present(const Bitmap&, const Rect&) override {}
    std::unique_ptr<Font> openFont(std::string_view face, int height, std::string& error) override {
        return fonts_.open(face, height, error);
    }
    void setCapture() override { captured = true; }
    void releaseCapture() override { captured = false; }
    void beginRelativeDrag(PageCursor) override { dragsRelatively = true; }
    void endRelativeDrag() override { dragsRelatively = false; }
    void confinePointer(std::optional<Rect>) override {}
    Point pointer() override { return {}; }
    void setCursor(PageCursor) override {}
    void setTimer(int milliseconds) override { timerPeriod = milliseconds; }
    void takeFocus(bool) override {}
    void askMessage(std::string_view text, MessageKind, std::function<void(PageAnswer)> then) override {
        asked.emplace_back(text);
        message = std::move(then);
    }
    void askFile(std::string_view filter, FileKind,
                 std::function<void(std::optional<std::string>)> then) override {
        asked.emplace_back(filter);
        file = std::move(then);
    }
    void askMenu(Point, std::span<const MenuItem>, std::function<void(int)> then) override {
        asked.emplace_back("menu");
        menu = std::move(then);
    }
    void cancelQuestion() override { ++cancelled; }
    void readClipboard(std::function<void(std::string)> then) override { clipboard = std::move(then); }
    void setClipboardText(std::string_view) override {}
    void showHelp() override {}

private:
    FixedFonts fonts_;
};

}  // namespace marnoth::test
