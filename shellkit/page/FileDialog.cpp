#include "shellkit/page/FileDialog.h"

#include <algorithm>
#include <utility>

#include "shellkit/page/QuestionPicture.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr int kTabKey = 9;
constexpr int kPageUpKey = 33;
constexpr int kPageDownKey = 34;
constexpr int kRowsOfAWheelStep = 3;

std::vector<std::string> foldersOf(const std::vector<FilePlace>& places) {
    std::vector<std::string> folders;
    folders.reserve(places.size());
    for (const FilePlace& place : places) folders.push_back(place.folder);
    return folders;
}

}  // namespace

FileDialog::FileDialog(const Setup& setup, Font& font, PageWindow& clipboard,
                       std::function<void(std::optional<std::string>)> then)
    : font_(font),
      clipboard_(clipboard),
      listener_(setup.question.kind == FileKind::open ? setup.listener : nullptr),
      places_(setup.places),
      room_(setup.room),
      layout_(layOutFileDialog(font, setup.room)),
      then_(std::move(then)),
      browser_(setup.question, foldersOf(setup.places)),
      question_(font),
      keyboard_(browser_.saves() ? Keyboard::name : Keyboard::list) {
    name_.setFont(&font);
}

FileDialog::~FileDialog() {
    stopListening();
}

Rect FileDialog::place() const {
    const Rect& box = layout_.box;
    return {box.left - kShadowBefore, box.top - kShadowBefore, box.right + kShadowBehind,
            box.bottom + kShadowBehind};
}

void FileDialog::paint(Surface& surface) {
    FileDialogLooks looks;
    looks.places = places_;
    looks.firstRow = firstRow_;
    looks.keyboard = keyboard_;
    looks.pressed = pressed_;
    looks.canListen = listener_ != nullptr;
    looks.listens = listener_ && listener_->isPlaying();
    looks.note = note_.empty() ? browser_.trouble() : note_;
    drawFileDialog(surface, font_, layout_, browser_, name_, looks);
    question_.paint(surface);
}

// The mouse.

FileDialog::Button FileDialog::buttonAt(Point at) const {
    if (layout_.up.contains(at)) return Button::up;
    if (layout_.cancel.contains(at)) return Button::cancel;
    if (layout_.accept.contains(at)) return Button::accept;
    return listener_ && layout_.listen.contains(at) ? Button::listen : Button::none;
}

void FileDialog::leftDown(Point at) {
    if (question_.isOpen()) return answerReplace(question_.leftDown(at));
    pressed_ = buttonAt(at);
    if (layout_.name.contains(at)) {
        keyboard_ = Keyboard::name;
        selects_ = true;
        return name_.press(at.x - layout_.name.left);
    }
    if (layout_.list.contains(at)) return pressList(at);
    if (layout_.places.contains(at)) return pressPlace(at);
    if (layout_.scroller.contains(at)) pressScroller(at);
}

void FileDialog::leftUp(Point at) {
    if (question_.isOpen()) return answerReplace(question_.leftUp(at));
    selects_ = false;
    scrollsFrom_.reset();
    const Button pressed = std::exchange(pressed_, Button::none);
    if (pressed != Button::none && buttonAt(at) == pressed) press(pressed);
}

void FileDialog::doubleClick(Point at) {
    if (question_.isOpen()) return answerReplace(question_.leftDown(at));
    if (!layout_.list.contains(at) || !entryAt(at)) return leftDown(at);
    pressList(at);
    accept();
}

void FileDialog::mouseMove(Point at) {
    if (question_.isOpen()) return question_.mouseMove(at);
    if (selects_) name_.drag(at.x - layout_.name.left);
    if (scrollsFrom_) dragScroller(at.y);
}

void FileDialog::wheel(Point at, int steps) {
    if (question_.isOpen() || !layout_.box.contains(at)) return;
    scrollTo(static_cast<std::ptrdiff_t>(firstRow_) - std::ptrdiff_t{steps} * kRowsOfAWheelStep);
}

void FileDialog::press(Button button) {
    switch (button) {
        case Button::none:
            return;
        case Button::up:
            return goUp();
        case Button::listen:
            return listen();
        case Button::cancel:
            return finish({});
        case Button::accept:
            return accept();
    }
}

std::optional<std::size_t> FileDialog::entryAt(Point at) const {
    const std::size_t entry =
        firstRow_ + static_cast<std::size_t>((at.y - layout_.list.top) / layout_.rowHeight);
    return entry < browser_.entries().size() ? std::optional(entry) : std::nullopt;
}

void FileDialog::pressList(Point at) {
    keyboard_ = Keyboard::list;
    light(entryAt(at));
}

void FileDialog::pressPlace(Point at) {
    const auto number = static_cast<std::size_t>((at.y - layout_.places.top) / layout_.rowHeight);
    if (number < places_.size()) enter(places_[number].folder);
}

void FileDialog::pressScroller(Point at) {
    const Rect thumb = scrollerThumb(layout_.scroller, firstRow_, layout_.rows(), browser_.entries().size());
    if (thumb.isEmpty()) return;
    if (thumb.contains(at)) {
        scrollsFrom_ = at.y - thumb.top;
        return;
    }
    const int page = layout_.rows() - 1;
    scrollTo(static_cast<std::ptrdiff_t>(firstRow_) + (at.y < thumb.top ? -page : page));
}

void FileDialog::dragScroller(int y) {
    const std::size_t count = browser_.entries().size();
    const Rect thumb = scrollerThumb(layout_.scroller, firstRow_, layout_.rows(), count);
    const int way = layout_.scroller.height() - thumb.height();
    if (thumb.isEmpty() || way <= 0) return;
    const int top = std::clamp(y - *scrollsFrom_ - layout_.scroller.top, 0, way);
    const auto hidden = static_cast<std::ptrdiff_t>(count) - layout_.rows();
    scrollTo((top * hidden + way / 2) / way);
}

// The list.

void FileDialog::enter(const std::string& folder) {
    note_.clear();
    browser_.enter(pathFromUtf8(folder));
    firstRow_ = 0;
}

void FileDialog::goUp() {
    note_.clear();
    browser_.goUp();
    firstRow_ = 0;
    showLit();
}

void FileDialog::light(std::optional<std::size_t> entry) {
    note_.clear();
    browser_.light(entry);
    if (browser_.litFile())
        name_.setText(browser_.entries()[*browser_.lit()].name);
    else if (!browser_.saves())
        name_.setText("");
    // What is typed next stands in its place.
    name_.selectAll();
    showLit();
}

void FileDialog::step(std::ptrdiff_t by) {
    const auto count = static_cast<std::ptrdiff_t>(browser_.entries().size());
    if (count == 0) return;
    const std::ptrdiff_t from = browser_.lit() ? static_cast<std::ptrdiff_t>(*browser_.lit())
                                : by > 0       ? -1
                                               : count;
    light(static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(from + by, 0, count - 1)));
}

void FileDialog::scrollTo(std::ptrdiff_t first) {
    const auto hidden = static_cast<std::ptrdiff_t>(browser_.entries().size()) - layout_.rows();
    firstRow_ =
        static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(first, 0, std::max<std::ptrdiff_t>(hidden, 0)));
}

void FileDialog::showLit() {
    const auto first = static_cast<std::ptrdiff_t>(firstRow_);
    if (!browser_.lit()) return scrollTo(first);
    const auto lit = static_cast<std::ptrdiff_t>(*browser_.lit());
    scrollTo(std::clamp(first, lit - layout_.rows() + 1, lit));
}

// The keyboard.

void FileDialog::keyDown(int key, Modifiers held) {
    if (question_.isOpen()) return answerReplace(question_.keyDown(key, held));
    if (eitherKey(key)) return;
    if (keyboard_ == Keyboard::name) return fieldKey(key, held);
    listKey(key);
}

bool FileDialog::eitherKey(int key) {
    const int page = layout_.rows() - 1;
    switch (key) {
        case kKeyEscape:
            finish({});
            return true;
        case kKeyReturn:
            accept();
            return true;
        case kTabKey:
            tab();
            return true;
        case kKeyUp:
        case kKeyDown:
            step(key == kKeyUp ? -1 : 1);
            return true;
        case kPageUpKey:
        case kPageDownKey:
            step(key == kPageUpKey ? -page : page);
            return true;
        default:
            return false;
    }
}

void FileDialog::listKey(int key) {
    const auto count = static_cast<std::ptrdiff_t>(browser_.entries().size());
    switch (key) {
        case kKeyHome:
            return step(-count);
        case kKeyEnd:
            return step(count);
        case kKeyBackspace:
            return goUp();
        case kKeySpace:
            return listen();
        default:
            return;
    }
}

void FileDialog::fieldKey(int key, Modifiers held) {
    if (EditLine::asksToPaste(key, held)) return paste();
    const std::string before = name_.text();
    name_.key(key, held, clipboard_);
    if (name_.text() != before) typed();
}

void FileDialog::character(char32_t character) {
    if (question_.isOpen()) return;
    if (keyboard_ == Keyboard::list) {
        if (character == U' ') return;
        keyboard_ = Keyboard::name;
        name_.setText("");
    }
    if (name_.insert(character)) typed();
}

void FileDialog::paste() {
    clipboard_.readClipboard([this, life = std::weak_ptr(life_)](const std::string& text) {
        if (life.expired()) return;
        name_.paste(text);
        typed();
    });
}

void FileDialog::tab() {
    if (keyboard_ == Keyboard::list) {
        keyboard_ = Keyboard::name;
        return name_.selectAll();
    }
    const std::string completed = browser_.completed(name_.text());
    if (name_.text().empty() || completed == name_.text()) {
        keyboard_ = Keyboard::list;
        return;
    }
    name_.setText(completed);
    typed();
}

void FileDialog::typed() {
    note_.clear();
    browser_.lightByName(name_.text());
    showLit();
}

// What it is for.

void FileDialog::listen() {
    if (!listener_) return;
    auto file = browser_.litFile();
    if (!file) file = browser_.fileNamed(name_.text());
    const bool isHeard = listener_->isPlaying() && (!file || *file == heard_);
    stopListening();
    note_.clear();
    if (isHeard) return;
    if (!file) {
        note_ = "Choose a file to hear it.";
        return;
    }
    heard_ = *file;
    note_ = listener_->play(*file);
}

void FileDialog::stopListening() {
    if (listener_) listener_->stop();
}

void FileDialog::accept() {
    note_.clear();
    const bool opensLit = browser_.lit() && browser_.entries()[*browser_.lit()].isFolder &&
                          (keyboard_ == Keyboard::list || name_.text().empty());
    const std::string before = browser_.folder();
    const FileBrowser::Result result =
        browser_.accept(opensLit ? browser_.entries()[*browser_.lit()].name : name_.text());
    if (result.kind == FileBrowser::Result::Kind::file) return finish(result.file);
    if (result.kind == FileBrowser::Result::Kind::replaces) return askToReplace(result.file);
    if (browser_.folder() == before) return;
    firstRow_ = 0;
    // What named the folder has done its work.
    if (!opensLit || !browser_.saves()) name_.setText("");
}

void FileDialog::askToReplace(std::string file) {
    const std::string name = utf8FromPath(pathFromUtf8(file).filename());
    replaced_ = std::move(file);
    question_.open({"There is a file " + name + " already. Replace it?", {"Cancel", "Replace"}, {}, {}},
                   room_);
}

void FileDialog::answerReplace(std::optional<int> answer) {
    if (!answer) return;
    question_.close();
    if (*answer == 1) finish(replaced_);
}

void FileDialog::finish(std::optional<std::string> file) {
    stopListening();
    // Nothing of the dialog is touched behind this.
    const auto then = then_;
    then(std::move(file));
}

}  // namespace marnoth
