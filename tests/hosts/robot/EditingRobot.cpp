#include "tests/hosts/robot/EditingRobot.h"

#include <cstdio>
#include <fstream>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <utility>

#include "editor/PageLayout.h"
#include "tests/hosts/robot/FileSource.h"

namespace marnoth::robot {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::chrono::seconds kPatience{20};  ///< on a machine that is kept busy
constexpr int kAnswerEvery = 20;               ///< gestures
constexpr int kPlayEvery = 200;

constexpr int kBarHeight = 30;
constexpr Rect kWholeBar{0, 0, 546, kBarHeight};  ///< but for panic and settings
constexpr Point kFiles{16, 15}, kToStart{46, 15}, kPlay{72, 15}, kStop{98, 15}, kRecord{124, 15},
    kTempo{236, 15}, kTap{298, 15}, kLoop{326, 15}, kBars{352, 15}, kMetronome{380, 15}, kKey{406, 15},
    kPanic{559, 15}, kSettings{584, 15};
constexpr Rect kPlayPicture{62, 7, 82, 23};

constexpr Point onPage(int x, int y) {
    return {x, y + kBarHeight};
}
constexpr Rect onPage(const Rect& place) {
    return place.movedBy(0, kBarHeight);
}

const std::vector<Point> kFields{{570, 88},  {570, 105}, {570, 127}, {570, 144},
                                 {570, 161}, {58, 405},  {58, 444},  {58, 483}};
const std::vector<Point> kCombos{{560, 28}, {560, 46}, {560, 64}, {50, 521}};
const std::vector<Rect> kPanes{kBinList, kPadBlock, kStripPlot, kPadView, kPadPlot, kKeyMapRect};

Point knobOfPad(int pad, bool volume) {
    const Point cell = padCell(pad);
    return volume ? onPage(cell.x + 55, cell.y - 29) : onPage(cell.x + 73, cell.y - 9);
}

/// Memory that no other program shares, KiB.
long ownMemory(int process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    long sum = 0;
    for (std::string line; std::getline(file, line);) {
        long kilobytes = 0;
        if (std::sscanf(line.c_str(), "Private_%*[^:]: %ld", &kilobytes) == 1) sum += kilobytes;
    }
    if (sum == 0) throw std::runtime_error("the program is gone");
    return sum;
}

}  // namespace

EditingRobot::EditingRobot(UserHands& hands, RobotSetup setup)
    : hands_(hands), setup_(std::move(setup)), random_(setup_.seed) {
    learnPictures();
}

const std::vector<EditingRobot::Gesture>& EditingRobot::gestures() {
    using R = EditingRobot;
    static const std::vector<Gesture> all{{12, "press", &R::pressSomewhere},
                                          {4, "double click", &R::doubleClickSomewhere},
                                          {10, "drag", &R::dragSomewhere},
                                          {14, "drag a grain", &R::dragGrain},
                                          {6, "knob", &R::turnKnob},
                                          {6, "wheel", &R::turnWheel},
                                          {4, "menu", &R::openMenu},
                                          {3, "combo", &R::useCombo},
                                          {5, "field", &R::typeIntoField},
                                          {8, "keys", &R::pressKeys},
                                          {8, "pads", &R::playPads},
                                          {6, "undo", &R::undoAndRedo},
                                          {6, "answer", &R::answerQuestion},
                                          {4, "open a loop", &R::openLoop},
                                          {2, "open a project", &R::openProject},
                                          {2, "save", &R::saveProject},
                                          {1, "clear", &R::clearProject},
                                          {2, "drop", &R::dropSomewhere},
                                          {8, "transport", &R::useTransport},
                                          {2, "tempo", &R::typeTempo},
                                          {1, "take", &R::recordTake},
                                          {3, "files", &R::openFileMenu},
                                          {1, "settings", &R::openSettings}};
    return all;
}

void EditingRobot::work(std::chrono::seconds time) {
    const auto end = Clock::now() + time;
    const int weights = std::accumulate(gestures().begin(), gestures().end(), 0,
                                        [](int sum, const Gesture& one) { return sum + one.weight; });
    while (Clock::now() < end) {
        int drawn = any(weights);
        auto gesture = gestures().begin();
        while (drawn >= gesture->weight) drawn -= (gesture++)->weight;
        say(gesture->name);
        (this->*gesture->make)();
        hands_.letGo();
        pause(15);
        if (++made_ % kAnswerEvery == 0) expectAnswer();
        if (made_ % kPlayEvery == 0) expectPlaying();
    }
    say(std::to_string(made_) + " gestures were made");
}

long EditingRobot::rest() {
    expectPlaying();
    hands_.click(kStop);
    hands_.click(kPanic);
    clearProject();
    hands_.tap("y");
    // Whoever saves over what is open spoils a copy.
    const std::filesystem::path original = setup_.project;
    const std::filesystem::path copy = original.parent_path() / "at-rest.mrn";
    std::filesystem::copy_file(original, copy, std::filesystem::copy_options::overwrite_existing);
    choose(copy);
    openProject();
    for (const auto end = Clock::now() + kPatience; std::filesystem::exists(setup_.nextChoice); pause(100))
        if (Clock::now() > end) throw std::runtime_error("no file was asked for");
    // What there was isn't saved.
    std::this_thread::sleep_for(milliseconds(500));
    hands_.tap("n");
    expectPlaying();
    hands_.click(kStop);
    // Copies that are written beside the work end by then.
    std::this_thread::sleep_for(milliseconds(1500));
    expectAnswer();
    const long memory = ownMemory(hands_.processId());
    say("at rest with " + std::to_string(memory) + " KiB");
    return memory;
}

void EditingRobot::finish() {
    expectPlaying();
    choose(setup_.result);
    saveProject();
    for (const auto end = Clock::now() + kPatience; !std::filesystem::exists(setup_.result); pause(100))
        if (Clock::now() > end) throw std::runtime_error("the project wasn't saved");
    expectPlaying();
    say("close");
    hands_.askToClose();
}

// --- Gestures.

void EditingRobot::pressSomewhere() {
    hold("Control_L", oneOf(5));
    hold("Shift_L", oneOf(5));
    hands_.click(somewhere());
}

void EditingRobot::doubleClickSomewhere() {
    const Point at = somewhere();
    hands_.click(at);
    hands_.click(at);
}

void EditingRobot::dragSomewhere() {
    hold("Control_L", oneOf(4));
    hold("Shift_L", oneOf(6));
    drag(somewhere(), somewhere());
}

void EditingRobot::dragGrain() {
    const Rect rows = onPage(kPadPlot);
    const Point from = oneOf(4) ? within(onPage(kBinList)) : within(rows);
    hold("Control_L", oneOf(3));
    drag(from, oneOf(8) ? within(onPage(kPadBlock)) : within(rows));
}

void EditingRobot::turnKnob() {
    const Point knob = oneOf(5) ? onPage(23, any({405, 444, 483})) : knobOfPad(any(kPads), oneOf(2));
    drag(knob, {knob.x, knob.y + any(160) - 80});
}

void EditingRobot::turnWheel() {
    hands_.moveTo(somewhere());
    hold("Control_L", oneOf(6));
    const Button way = any({Button::wheelUp, Button::wheelDown, Button::wheelLeft, Button::wheelRight});
    for (int step = any(8); step >= 0; --step) {
        hands_.press(way);
        hands_.release(way);
    }
}

void EditingRobot::openMenu() {
    hands_.click(within(onPage(padImage(any(kPads)))), Button::right);
    pause(60);
    for (int down = any(5); down > 0; --down) hands_.tap("Down");
    hands_.tap(oneOf(3) ? "Escape" : "Return");
}

void EditingRobot::useCombo() {
    const Point combo = any(kCombos);
    hands_.click(onPage(combo.x, combo.y));
    pause(60);
    for (int step = any(18); step > 0; --step) hands_.tap(oneOf(3) ? "Up" : "Down");
    hands_.tap(oneOf(4) ? "Escape" : "Return");
}

void EditingRobot::typeIntoField() {
    const Point field = any(kFields);
    hands_.click(onPage(field.x, field.y));
    if (!oneOf(4)) {
        hold("Control_L", true);
        hands_.tap(any({"a", "a", "c", "v", "x"}));
        hold("Control_L", false);
    }
    const int kind = any(4);
    hands_.type(kind == 0   ? "C" + std::to_string(any(9))
                : kind == 1 ? std::to_string(any(400) - 200)
                : kind == 2 ? "-6.5"
                            : "9e99xyz#");
    hands_.tap(any({"Return", "Return", "Tab", "Escape"}));
}

void EditingRobot::pressKeys() {
    hold("Control_L", oneOf(3));
    hold("Shift_L", oneOf(5));
    for (int count = any(6); count >= 0; --count)
        hands_.tap(any({"Left", "Right", "Up",  "Down",      "Delete", "KP_Add", "KP_Subtract", "F1", "F11",
                        "Home", "End",   "Tab", "BackSpace", "space",  "Escape", "Return",      "a",  "c",
                        "v",    "x",     "z",   "Page_Up",   "Insert", "s",      "o",           "n"}));
}

void EditingRobot::playPads() {
    static const std::string kKeys = "1234qwerasdfzxcv";
    for (int count = any(8); count >= 0; --count) {
        const std::string key(1, kKeys[static_cast<std::size_t>(any(16))]);
        hands_.keyDown(key);
        if (oneOf(2)) hands_.keyUp(key);
        pause(30);
    }
}

void EditingRobot::undoAndRedo() {
    hold("Control_L", true);
    hold("Shift_L", oneOf(3));
    for (int count = any(10); count >= 0; --count) hands_.tap("z");
}

void EditingRobot::answerQuestion() {
    hands_.tap(any({"Return", "Escape", "y", "n", "Tab", "space", "Left"}));
}

void EditingRobot::openLoop() {
    const Point cell = padCell(any(kPads));
    hands_.click(oneOf(2) ? onPage(122, 58) : onPage(cell.x + 9, cell.y + 8));
    pause(300);
}

void EditingRobot::openProject() {
    hands_.click(onPage(17, 35));
    pause(300);
}

void EditingRobot::saveProject() {
    hands_.click(onPage(38, 35));
    pause(300);
}

void EditingRobot::clearProject() {
    hands_.click(onPage(58, 34));
    pause(60);
}

void EditingRobot::dropSomewhere() {
    std::vector<std::string> files;
    for (int count = any(4); count >= 0; --count) files.push_back(any(setup_.files));
    const bool taken = dropFiles(hands_.window(), hands_.onScreen(somewhere()), files);
    say(taken ? "taken" : "not taken");
}

void EditingRobot::useTransport() {
    hands_.click(any({kToStart, kPlay, kPlay, kStop, kTap, kLoop, kMetronome, kKey, kPanic}));
    if (oneOf(3)) hands_.tap("space");
}

void EditingRobot::typeTempo() {
    hands_.click(oneOf(3) ? kBars : kTempo);
    hold("Control_L", true);
    hands_.tap("a");
    hold("Control_L", false);
    hands_.type(any(std::vector<std::string>{"97", "120.5", "60", "240", "0", "1e9", "abc", "-5", "3"}));
    hands_.tap(any({"Return", "Return", "Escape"}));
}

void EditingRobot::recordTake() {
    hands_.click(kRecord);
}

void EditingRobot::openFileMenu() {
    hands_.click(kFiles);
    pause(60);
    for (int down = any(12); down > 0; --down) hands_.tap("Down");
    hands_.tap(oneOf(4) ? "Escape" : "Return");
    pause(300);
}

void EditingRobot::openSettings() {
    hands_.click(kSettings);
    pause(60);
    hands_.tap("Escape");
}

// --- What is to be so.

void EditingRobot::leaveQuestions() {
    hands_.letGo();
    // A file that was chosen may be damaged, which is told behind it.
    for (int turn = 0; turn < 4; ++turn) {
        expectAnswer();
        hands_.tap("Escape");
        pause(100);
    }
}

void EditingRobot::expectAnswer() {
    if (!hands_.answers(kPatience)) throw std::runtime_error("the program doesn't answer");
}

/// The button itself goes down at once; what it shows a while later is told by the thread that renders.
bool EditingRobot::sees(std::uint64_t picture) {
    std::this_thread::sleep_for(milliseconds(300));
    for (const auto end = Clock::now() + std::chrono::seconds(2); Clock::now() < end; pause(100))
        if (hands_.look(kPlayPicture) == picture) return true;
    return false;
}

void EditingRobot::learnPictures() {
    std::this_thread::sleep_for(milliseconds(1000));
    stopped_ = hands_.look(kPlayPicture);
    hands_.click(kPlay);
    std::this_thread::sleep_for(milliseconds(1000));
    playing_ = hands_.look(kPlayPicture);
    if (stopped_ == playing_) throw std::runtime_error("it doesn't play");
}

bool EditingRobot::stopsAndPlays() {
    hands_.click(kStop);
    if (!sees(stopped_)) return false;
    hands_.click(kPlay);
    return sees(playing_);
}

void EditingRobot::expectPlaying() {
    say("stop and play");
    for (const auto end = Clock::now() + kPatience; Clock::now() < end;) {
        leaveQuestions();
        if (stopsAndPlays()) return;
    }
    throw std::runtime_error("it doesn't stop and play: a question stays open, or no blocks are rendered");
}

// --- Hands.

void EditingRobot::choose(const std::string& file) {
    std::ofstream(setup_.nextChoice) << file << "\n";
}

Point EditingRobot::within(const Rect& place) {
    return {place.left + any(place.width()), place.top + any(place.height())};
}

Point EditingRobot::somewhere() {
    if (oneOf(10)) return within(kWholeBar);
    return within(onPage(oneOf(3) ? Rect{0, 0, kPageWidth, kPageHeight} : any(kPanes)));
}

void EditingRobot::drag(Point from, Point to) {
    hands_.moveTo(from);
    hands_.press(Button::left);
    const int steps = 1 + any(10);
    for (int step = 1; step <= steps; ++step) {
        hands_.moveTo({from.x + (to.x - from.x) * step / steps, from.y + (to.y - from.y) * step / steps});
        pause(8);
    }
    // Some think better of it.
    if (oneOf(12)) hands_.tap("Escape");
    hands_.release(Button::left);
}

void EditingRobot::hold(const std::string& key, bool down) {
    if (down)
        hands_.keyDown(key);
    else
        hands_.keyUp(key);
}

void EditingRobot::say(const std::string& what) {
    const std::chrono::duration<double> time = Clock::now() - begin_;
    std::printf("%9.3f %s\n", time.count(), what.c_str());
    std::fflush(stdout);
}

void EditingRobot::pause(int mostMilliseconds) {
    std::this_thread::sleep_for(milliseconds(any(mostMilliseconds + 1)));
}

}  // namespace marnoth::robot
