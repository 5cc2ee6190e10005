#include "platform/drawing/HeadlessWindow.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <utility>

#include "platform/drawing/CharacterKeys.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

constexpr std::string_view kCancel = "cancel";

/// In double quotes, with quotes and backslashes escaped.
std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result + '"';
}

/// A word of a transcript: in quotes where it holds a blank.
std::string asWord(std::string_view text) {
    return text.find_first_of(" \t") == text.npos ? std::string(text) : quoted(text);
}

std::optional<int> numberIn(std::string_view word) {
    int number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size()) return {};
    return number;
}

}  // namespace

template <class Event>
void HeadlessWindow::tell(Event event) {
    if (page_) event(*page_);
    settle();
}

void HeadlessWindow::settle() {
    if (page_ && std::exchange(paintRequested_, false)) page_->paint();
}

void HeadlessWindow::press(Point at) {
    pointer_ = at;
    tell([&](PageEvents& page) { page.leftDown(at, held()); });
}

void HeadlessWindow::move(Point to) {
    if (dragsRelatively_) {
        const Point distance{to.x - pointer_.x, to.y - pointer_.y};
        return tell([&](PageEvents& page) { page.relativeMove(distance, held()); });
    }
    pointer_ = to;
    tell([&](PageEvents& page) { page.mouseMove(to, held()); });
}

void HeadlessWindow::release(Point at) {
    pointer_ = at;
    tell([&](PageEvents& page) { page.leftUp(at, held()); });
}

void HeadlessWindow::doubleClick(Point at) {
    press(at);
    release(at);
    pointer_ = at;
    tell([&](PageEvents& page) { page.doubleClick(at, held()); });
    release(at);
}

void HeadlessWindow::rightClick(Point at) {
    pointer_ = at;
    tell([&](PageEvents& page) { page.rightDown(at, held()); });
    tell([&](PageEvents& page) { page.contextMenu(at, held()); });
}

void HeadlessWindow::wheel(Point at, WheelAxis axis, int steps) {
    pointer_ = at;
    tell([&](PageEvents& page) { page.wheel(at, axis, steps, held()); });
}

void HeadlessWindow::hold(int key) {
    held_.insert(key);
    tell([&](PageEvents& page) { page.keyDown(key, held()); });
}

void HeadlessWindow::let(int key) {
    held_.erase(key);
    tell([&](PageEvents& page) { page.keyUp(key, held()); });
}

void HeadlessWindow::loseCapture() {
    captured_ = dragsRelatively_ = false;
    tell([](PageEvents& page) { page.captureLost(); });
}

bool HeadlessWindow::key(int key) {
    bool taken = false;
    tell([&](PageEvents& page) { taken = page.keyDown(key, held()); });
    tell([&](PageEvents& page) { page.keyUp(key, held()); });
    return taken;
}

void HeadlessWindow::type(std::string_view text) {
    while (!text.empty()) {
        const char32_t character = takeUtf8(text);
        const int key = keyOfCharacter(character);
        tell([&](PageEvents& page) { page.keyDown(key, held()); });
        tell([&](PageEvents& page) { page.character(character, held()); });
        tell([&](PageEvents& page) { page.keyUp(key, held()); });
    }
}

void HeadlessWindow::tick() {
    if (timerPeriod_ > 0) tell([](PageEvents& page) { page.timer(); });
}

void HeadlessWindow::drop(Point at, std::span<const std::string> paths) {
    pointer_ = at;
    tell([](PageEvents& page) { page.dragEnter(true); });
    tell([at](PageEvents& page) { page.dragOver(at); });
    tell([at, paths](PageEvents& page) { page.drop(at, paths); });
}

std::unique_ptr<Font> HeadlessWindow::openFont(std::string_view face, int height, std::string& error) {
    if (fonts_) return fonts_->open(face, height, error);
    error = "The window has no fonts.";
    return nullptr;
}

void HeadlessWindow::beginRelativeDrag(PageCursor shown) {
    captured_ = dragsRelatively_ = true;
    cursor_ = shown;
}

void HeadlessWindow::endRelativeDrag() {
    captured_ = dragsRelatively_ = false;
}

void HeadlessWindow::present(const Bitmap& screen, const Rect& changed) {
    if (screen_.width() != screen.width() || screen_.height() != screen.height()) {
        screen_ = screen;
        return;
    }
    // Only what the page says it changed: a page that says too little shows here.
    const Rect area = intersection(changed, screen.bounds());
    for (int y = area.top; y < area.bottom; ++y)
        std::ranges::copy(screen.row(y).subspan(static_cast<std::size_t>(area.left),
                                                static_cast<std::size_t>(area.width())),
                          screen_.row(y).begin() + area.left);
}

void HeadlessWindow::answer(std::string word) {
    if (!open_) {
        answers_.emplace_back(std::move(word));
        return;
    }
    const Question question = *std::exchange(open_, {});
    log(question.line, word);
    question.take(word);
    settle();
}

void HeadlessWindow::cancelQuestion() {
    if (!open_) return;
    const std::optional<Question> taken = std::exchange(open_, {});
    try {
        log(taken->line, kCancel);
    } catch (const std::bad_alloc&) {
        // A page that goes takes its question back, be there room for the line or not.
    }
}

void HeadlessWindow::ask(Question question) {
    const std::optional<std::string> answer = nextAnswer();
    if (!answer) {
        open_ = std::move(question);
        return;
    }
    log(question.line, *answer);
    question.take(*answer);
}

std::optional<std::string> HeadlessWindow::nextAnswer() {
    if (watcher_) watcher_();
    if (answers_.empty()) return std::string(kCancel);
    std::optional<std::string> answer = std::move(answers_.front());
    answers_.pop_front();
    return answer;
}

void HeadlessWindow::log(std::string_view question, std::string_view answer) {
    log_.push_back("? " + std::string(question) + " -> " + asWord(answer));
}

std::vector<std::string> HeadlessWindow::takeLog() {
    return std::exchange(log_, {});
}

void HeadlessWindow::askMessage(std::string_view text, MessageKind kind,
                                std::function<void(PageAnswer)> then) {
    ask({"message " + quoted(text), shownMessage(text, kind),
         [then = std::move(then)](const std::string& answer) {
             then(answer == "yes"  ? PageAnswer::yes
                  : answer == "no" ? PageAnswer::no
                  : answer == "ok" ? PageAnswer::ok
                                   : PageAnswer::cancel);
         }});
}

void HeadlessWindow::askFile(std::string_view filter, FileKind kind,
                             std::function<void(std::optional<std::string>)> then) {
    const bool saves = kind == FileKind::save;
    const std::string name(filter.substr(0, filter.find('|')));
    ask({(saves ? "file save " : "file open ") + quoted(filter),
         {name, {saves ? "Save" : "Open", "Cancel"}, {}, {}},
         [this, then = std::move(then)](const std::string& answer) {
             if (answer == kCancel) return then({});
             // In the system's own spelling: a file is known by its path.
             then(
                 utf8FromWide(wideFromPath((folder_ / pathFromWide(wideFromUtf8(answer))).make_preferred())));
         }});
}

void HeadlessWindow::askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) {
    std::string line = "menu";
    for (const MenuItem& item : items)
        line += ' ' + std::to_string(item.id) + ':' + item.text + (item.checked ? ":checked" : "");
    const std::vector<MenuItem> all(items.begin(), items.end());
    ask({line, {{}, {}, all, at}, [all, then = std::move(then)](const std::string& answer) {
             const std::optional<int> id = numberIn(answer);
             const bool there = std::ranges::any_of(all, [&](const MenuItem& item) { return id == item.id; });
             then(there ? *id : 0);
         }});
}

}  // namespace marnoth
