/// The editor page as a script drives it.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "editor/controls/FxComboBox.h"
#include "editor/controls/StaticText.h"
#include "shellkit/media/PngFile.h"
#include "shellkit/script/ScriptCommand.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/script/ScriptWords.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

/// Pixels from the page's corner that a pointer can be away from it: far more than any desk of screens.
constexpr std::int64_t kFarthest = 100000;
constexpr std::int64_t kLastKey = 255;

/// Carries a command out on the page that is open; gives what stands behind the result.
using PageAction = std::function<std::string(HeadlessPage&, ScriptSession&, Arguments)>;

ScriptCommand onPage(std::string_view name, std::string_view form, PageAction action) {
    const auto run = [action = std::move(action)](ScriptSession& session, Arguments words) {
        HeadlessPage& page = session.page();
        const std::string out = action(page, session, words);
        page.window().settle();
        return printResult(S_OK) + (out.empty() ? "" : " ") + out;
    };
    return {name, form, run};
}

Point readPoint(Arguments words) {
    return {static_cast<int>(readInteger(words[0], "X", -kFarthest, kFarthest)),
            static_cast<int>(readInteger(words[1], "Y", -kFarthest, kFarthest))};
}

/// The user does `act` at a point.
ScriptCommand atPoint(std::string_view name, void (HeadlessWindow::*act)(Point)) {
    return onPage(name, "X Y", [act](HeadlessPage& page, ScriptSession&, Arguments words) {
        (page.window().*act)(readPoint(words));
        return std::string();
    });
}

int readKeyName(const std::string& word) {
    if (word == "shift") return kKeyShift;
    if (word == "ctrl") return kKeyControl;
    throw ScriptError("\"" + word + "\" is neither shift nor ctrl");
}

/// The user does `act` with one of the keys that are held.
ScriptCommand withHeldKey(std::string_view name, void (HeadlessWindow::*act)(int)) {
    return onPage(name, "shift|ctrl", [act](HeadlessPage& page, ScriptSession&, Arguments words) {
        (page.window().*act)(readKeyName(words[0]));
        return std::string();
    });
}

Control& readControl(HeadlessPage& page, const std::string& word) {
    const int id = readNumber<std::int32_t>(word, "ID");
    if (Control* control = page.page().controlOf(id)) return *control;
    throw ScriptError("the page has no control " + std::to_string(id));
}

[[noreturn]] void fail(const Control& control, const std::string& reason) {
    throw ScriptError("control " + std::to_string(control.id()) + " " + reason);
}

std::string page(ScriptSession& session, Arguments words) {
    if (words[0] == "open")
        session.openPage();
    else if (words[0] == "close")
        session.closePage();
    else
        throw ScriptError("\"" + words[0] + "\" is neither open nor close");
    return printResult(S_OK);
}

std::string key(HeadlessPage& page, ScriptSession&, Arguments words) {
    page.window().key(static_cast<int>(readInteger(words[0], "CODE", 0, kLastKey)));
    return {};
}

std::string type(HeadlessPage& page, ScriptSession&, Arguments words) {
    page.window().type(words[0]);
    return {};
}

std::string focus(HeadlessPage& page, ScriptSession&, Arguments words) {
    Control& control = readControl(page, words[0]);
    if (!control.takesMouse()) fail(control, "is a text that can't have the keyboard");
    const bool hadIt = page.page().hasFocus(control);
    page.page().focusControl(control);
    // Its whole text is selected then, also when the keyboard was there before.
    if (hadIt && control.takesText()) control.handle({ControlEventKind::focusIn, {}});
    return {};
}

std::string choose(HeadlessPage& page, ScriptSession&, Arguments words) {
    Control& control = readControl(page, words[0]);
    auto* combo = dynamic_cast<CFxComboBox*>(&control);
    if (!combo) fail(control, "isn't a combo");
    // What the change of the keyboard leads to is over before the list opens.
    page.page().focusControl(*combo);
    if (!combo->choose(words[1])) fail(control, "has no item " + inQuotes(words[1]));
    return {};
}

std::string tick(HeadlessPage& page, ScriptSession&, Arguments) {
    page.window().tick();
    return {};
}

std::string drop(HeadlessPage& page, ScriptSession& session, Arguments words) {
    const Point at = readPoint(words);
    std::vector<std::string> files;
    for (const std::string& word : words.subspan(2)) files.push_back(utf8FromPath(session.file(word)));
    page.window().drop(at, files);
    return {};
}

std::string answer(HeadlessPage& page, ScriptSession&, Arguments words) {
    if (words[0] == "later")
        page.window().leaveOpen();
    else
        page.window().answer(words[0]);
    return {};
}

std::string text(HeadlessPage& page, ScriptSession&, Arguments words) {
    const Control& control = readControl(page, words[0]);
    const std::optional<std::string> shown = control.shownText();
    if (!shown) fail(control, "shows no text");
    return inQuotes(*shown);
}

std::string state(HeadlessPage& page, ScriptSession&, Arguments words) {
    const Control& control = readControl(page, words[0]);
    const std::optional<int> shown = control.shownState();
    if (!shown) fail(control, "has no state");
    return std::to_string(*shown);
}

/// The grains that are selected, each as `TRACK:GRAIN` behind a blank.
std::string grainWords(const CEventSelection& selection) {
    std::string words;
    for (const EventSelectionInfo& item : selection)
        words += " " + std::to_string(item.track) + ":" + std::to_string(item.grain);
    return words;
}

std::string view(HeadlessPage& shown, ScriptSession&, Arguments) {
    const CGrooveSamplerPropPage& page = shown.page();
    const TimeScale scale = page.scale();
    const Point bin = page.binPosition();
    std::string line = std::to_string(page.currentPad()) + " " + std::to_string(page.currentBinFile()) + " " +
                       printReal(scale.pixelsPerBeat);
    for (const int number : {scale.rowHeight, scale.snapIndex, page.showsKeyMap() ? 1 : 0, scale.horizontal,
                             scale.vertical, bin.x, bin.y})
        line += " " + std::to_string(number);
    return line + grainWords(page.selection()) + " /" + grainWords(page.binSelection());
}

std::string shot(HeadlessPage& page, ScriptSession& session, Arguments words) {
    writePng(session.outputFile(words[0]), page.picture());
    return {};
}

}  // namespace

std::vector<ScriptCommand> pageCommands() {
    return {
        {"page", "open|close", page},
        atPoint("press", &HeadlessWindow::press),
        atPoint("move", &HeadlessWindow::move),
        atPoint("release", &HeadlessWindow::release),
        atPoint("double", &HeadlessWindow::doubleClick),
        atPoint("right", &HeadlessWindow::rightClick),
        withHeldKey("hold", &HeadlessWindow::hold),
        withHeldKey("let", &HeadlessWindow::let),
        onPage("key", "CODE", key),
        onPage("type", "TEXT", type),
        onPage("focus", "ID", focus),
        onPage("choose", "ID TEXT", choose),
        onPage("tick", "", tick),
        onPage("drop", "X Y FILE ...", drop),
        onPage("answer", "WORD", answer),
        onPage("text", "ID", text),
        onPage("state", "ID", state),
        onPage("view", "", view),
        onPage("shot", "FILE", shot),
    };
}

}  // namespace marnoth
