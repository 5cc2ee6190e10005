#include "shells/desktop/window/TransportBar.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "editor/skin/Palette.h"
#include "editor/skin/Skin.h"
#include "editor/texts/PageTexts.h"
#include "hostkit/LiveTransport.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/RasterSurface.h"
#include "platform/drawing/Surface.h"
#include "seam/MusicalTime.h"
#include "shellkit/text/NoteNames.h"
#include "shells/desktop/playing/Bars.h"

namespace marnoth {

namespace {

constexpr int kPositionHeight = 14;

constexpr int kTop = 5;  ///< of the buttons
constexpr Rect kPositionPlace = Rect::at(142, kTop, 66, kBarButtonHeight);
constexpr Rect kTempoPlace = Rect::at(214, kTop + 2, 44, 16);
constexpr Rect kTempoLabel = Rect::at(260, kTop, 24, kBarButtonHeight);
constexpr Rect kBarsPlace = Rect::at(340, kTop + 2, 24, 16);
constexpr Rect kKeyLabel = Rect::at(420, kTop, 28, kBarButtonHeight);
constexpr Point kLevelPlace{449, 6};
constexpr Rect kMeter = Rect::at(470, 8, 44, 14);
constexpr Rect kClipLight = Rect::at(516, 8, 6, 14);
constexpr Rect kMidiLight = Rect::at(526, 7, 6, 6);
constexpr Rect kDropoutLight = Rect::at(526, 17, 6, 6);

constexpr Color kDark = kPalette[1];
constexpr Color kGreen = kPalette[6];
constexpr Color kYellow{230, 206, 96};
constexpr Color kRed{230, 92, 80};

constexpr int kKnobStrip = 237;
constexpr int kKnobSize = 17;
/// The knob's whole way is up to 6 dB; full level stands at two thirds.
constexpr double kHighestDecibels = 6.0;
constexpr double kLowestDecibels = -48.0;
constexpr float kFullLevelPortion =
    static_cast<float>(-kLowestDecibels / (kHighestDecibels - kLowestDecibels));

constexpr int kMostBars = 999;
constexpr int kLitTicks = 3;           ///< how long a light shines, of the timer
constexpr float kMeterFall = 0.86f;    ///< in a tick of the timer
constexpr double kMeterFloor = -48.0;  ///< dB
constexpr int kNoKey = 100;            ///< in the key's menu
constexpr int kKeysOfOctave = 12;

/// "5.2.480": bars and beats from 1, and what of the beat has gone, of 960.
std::string positionText(double tick) {
    const auto whole = static_cast<long long>(std::max(0.0, std::floor(tick)));
    const long long beat = whole / kTicksPerBeat;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%lld.%lld.%03lld", beat / kBeatsOfBar + 1,
                  beat % kBeatsOfBar + 1, whole % kTicksPerBeat);
    return text.data();
}

std::string tempoText(double beatsPerMinute) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f", beatsPerMinute);
    return text.data();
}

std::optional<double> numberOf(const std::string& text) {
    double value = 0.0;
    const char* const begin = text.data() + std::min(text.find_first_not_of(' '), text.size());
    const auto [end, error] = std::from_chars(begin, text.data() + text.size(), value);
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

float gainOf(double portion) {
    if (portion <= 0.0) return 0.0f;
    const double decibels = kLowestDecibels + portion * (kHighestDecibels - kLowestDecibels);
    // A hundredth of the way beside full level is meant as that.
    return std::abs(decibels) < 0.3 ? 1.0f : static_cast<float>(std::pow(10.0, decibels / 20.0));
}

float portionOf(float gain) {
    if (gain <= 0.0f) return 0.0f;
    const double decibels = 20.0 * std::log10(static_cast<double>(gain));
    return static_cast<float>(
        std::clamp((decibels - kLowestDecibels) / (kHighestDecibels - kLowestDecibels), 0.0, 1.0));
}

int meterWidth(float peak) {
    if (peak <= 0.0f) return 0;
    const double portion = 1.0 - 20.0 * std::log10(static_cast<double>(peak)) / kMeterFloor;
    return static_cast<int>(std::clamp(portion, 0.0, 1.0) * kMeter.width());
}

void plate(Surface& surface, const Rect& place, Color color) {
    surface.SelectPen({kDark});
    surface.SelectBrush(color);
    surface.Rectangle(place);
}

}  // namespace

TransportBar::TransportBar(PageWindow& window, TransportBarHost& host)
    : PageFrame(window, drawBarGround(kWidth, kHeight),
                [](Bitmap& bitmap) { return std::make_unique<RasterSurface>(bitmap); }),
      host_(host),
      font_(barFont(window, kBarTextHeight)),
      large_(barFont(window, kPositionHeight)),
      tempo_(*this, kTempo),
      bars_(*this, kBars),
      level_(*this, kLevel) {
    makeButton(kFiles, 4, BarSymbol::files);
    makeButton(kToStart, 34, BarSymbol::toStart);
    makeToggle(kPlay, 60, BarSymbol::play);
    makeButton(kStop, 86, BarSymbol::stop);
    makeToggle(kRecord, 112, BarSymbol::record);
    makeText(tempo_, kTempoPlace);
    makeButton(kTap, 286, BarSymbol::tap);
    makeToggle(kLoop, 314, BarSymbol::loop);
    makeText(bars_, kBarsPlace);
    makeToggle(kMetronome, 368, BarSymbol::metronome);
    makeButton(kKey, 394, BarSymbol::key);
    level_.setPlace(Rect::at(kLevelPlace.x, kLevelPlace.y, 0, 0));
    level_.LoadKnobBitmap(skinBitmap(kKnobStrip), kKnobSize, kKnobSize, kFullLevelPortion, false, {});
    level_.SetValue(kFullLevelPortion);
    add(level_);
    makeButton(kPanic, 548, BarSymbol::panic);
    makeButton(kSettings, 572, BarSymbol::settings);
    bars_.setText(std::to_string(loopBars_));
}

const BarButtonPictures& TransportBar::pictures(BarSymbol symbol) {
    const auto found = pictures_.find(symbol);
    return found != pictures_.end() ? found->second
                                    : pictures_.emplace(symbol, drawBarButton(symbol)).first->second;
}

void TransportBar::makeButton(int id, int x, BarSymbol symbol) {
    CBitmapButton& button = buttons_.try_emplace(id, *this, id).first->second;
    button.setPlace(Rect::at(x, kTop, 0, 0));
    button.LoadBitmaps(pictures(symbol).up, pictures(symbol).down);
    add(button);
}

void TransportBar::makeToggle(int id, int x, BarSymbol symbol) {
    CBitmapToggleCtrl& toggle = toggles_.try_emplace(id, *this, id).first->second;
    toggle.setPlace(Rect::at(x, kTop, 0, 0));
    toggle.LoadToggleBitmaps(pictures(symbol).up, pictures(symbol).down, nullptr, nullptr, false, true);
    add(toggle);
}

void TransportBar::makeText(CFxEdit& edit, const Rect& place) {
    edit.setPlace(place);
    edit.setFont(font_.get());
    add(edit);
}

void TransportBar::open() {
    show(host_.look());
    invalidate({0, 0, kWidth, kHeight});
    window().setTimer(kTimerPeriod);
}

void TransportBar::setUp(bool metronome, float level, int loopBars) {
    toggles_.at(kMetronome).setDown(metronome);
    level_.SetValue(portionOf(level));
    loopBars_ = std::clamp(loopBars, 1, kMostBars);
    bars_.setText(std::to_string(loopBars_));
}

void TransportBar::timer() {
    show(host_.look());
}

void TransportBar::show(const TransportBarHost::State& state) {
    toggles_.at(kPlay).setDown(state.playing);
    toggles_.at(kRecord).setDown(state.recording);
    showTempo(state.tempo);
    if (std::string text = positionText(state.tick); text != shownPosition_) {
        shownPosition_ = std::move(text);
        invalidate(kPositionPlace);
    }
    left_ = std::max(state.peakLeft, left_ * kMeterFall);
    right_ = std::max(state.peakRight, right_ * kMeterFall);
    clipped_ = clipped_ || state.peakLeft > 1.0f || state.peakRight > 1.0f;
    midiLight_ = state.messages != messages_ ? kLitTicks : std::max(0, midiLight_ - 1);
    dropoutLight_ = state.dropouts != dropouts_ ? 20 * kLitTicks : std::max(0, dropoutLight_ - 1);
    messages_ = state.messages;
    dropouts_ = state.dropouts;
    load_ = static_cast<int>(std::lround(std::min(state.load, 9.99f) * 100.0f));
    invalidate({kMeter.left, 0, buttons_.at(kPanic).place().left, kHeight});
}

void TransportBar::showTempo(double beatsPerMinute) {
    if (beatsPerMinute == shownTempo_ || hasFocus(tempo_)) return;
    shownTempo_ = beatsPerMinute;
    tempo_.setText(tempoText(beatsPerMinute));
}

void TransportBar::paintPage(Surface& surface) {
    surface.BitBlt({0, 0, kWidth, kHeight}, ground_, {0, 0});
    drawPosition(surface);
    drawLabels(surface);
    drawMeter(surface);
    drawLights(surface);
}

void TransportBar::drawPosition(Surface& surface) {
    plate(surface, kPositionPlace, kDark);
    surface.SelectFont(large_.get());
    surface.SetTextColor(kPalette[8]);
    surface.SetGroundColor(kDark);
    const int x = kPositionPlace.right - 6 - large_->widthOf(shownPosition_);
    surface.TextOut({x, kPositionPlace.top + 3}, shownPosition_);
}

void TransportBar::drawLabels(Surface& surface) {
    surface.SelectFont(font_.get());
    surface.SetTextColor(kBarText);
    surface.SetGroundColor(kBarGround);
    const int y = kTop + 4;
    surface.TextOut({kTempoLabel.left, y}, "bpm");
    surface.TextOut({kKeyLabel.left, y}, key_ ? keyName(*key_) : "None");
    surface.TextOut({kMidiLight.right + 2, 3}, "M");
    surface.TextOut({kMidiLight.right + 2, 14}, std::to_string(load_));
}

void TransportBar::drawMeter(Surface& surface) const {
    const int middle = kMeter.top + kMeter.height() / 2;
    const auto bar = [&](float peak, int top) {
        plate(surface, {kMeter.left, top, kMeter.right, top + kMeter.height() / 2}, kDark);
        const int width = meterWidth(peak);
        const Color color = peak > 0.7f ? kYellow : kGreen;
        surface.SelectPen({color});
        surface.SelectBrush(color);
        if (width > 0)
            surface.Rectangle({kMeter.left, top + 1, kMeter.left + width, top + kMeter.height() / 2 - 1});
    };
    bar(left_, kMeter.top);
    bar(right_, middle);
    plate(surface, kClipLight, clipped_ ? kRed : kDark);
}

void TransportBar::drawLights(Surface& surface) const {
    plate(surface, kMidiLight, midiLight_ > 0 ? kGreen : kDark);
    plate(surface, kDropoutLight, dropoutLight_ > 0 ? kRed : kDark);
}

void TransportBar::pressed(Point at) {
    if (kClipLight.contains(at) || kMeter.contains(at)) {
        clipped_ = false;
        invalidate(kClipLight);
    }
    if (kKeyLabel.contains(at)) chooseKey();
    if (kTempoLabel.contains(at)) {
        dragFrom_ = at.y;
        captureForPage();
    }
}

void TransportBar::moved(Point at) {
    if (!dragFrom_) return;
    const int up = *dragFrom_ - at.y;
    dragFrom_ = at.y;
    if (up != 0) applyTempo(tempoText(std::round(shownTempo_) + up));
}

void TransportBar::released(Point) {
    if (!dragFrom_) return;
    dragFrom_.reset();
    releaseMouse();
}

void TransportBar::wheelTurned(Point at, WheelAxis axis, int steps) {
    if (axis == WheelAxis::vertical && kTempoLabel.contains(at))
        applyTempo(tempoText(std::round(shownTempo_) + steps));
}

void TransportBar::command(int id) {
    // The keyboard goes back to the page.
    focus(nullptr);
    switch (id) {
        case kFiles:
            return chooseFile();
        case kToStart:
            return host_.toStart();
        case kPlay:
            return toggles_.at(kPlay).isDown() ? host_.play() : host_.stop();
        case kStop:
            return host_.stop();
        case kRecord:
            return host_.record(toggles_.at(kRecord).isDown());
        case kTap:
            if (const std::optional<double> tempo = tap_.tap(TapTempo::Time::clock::now()))
                applyTempo(tempoText(*tempo));
            return;
        case kLoop:
            return host_.setLoop(toggles_.at(kLoop).isDown() ? loopBars_ : 0);
        case kMetronome:
            return host_.setMetronome(toggles_.at(kMetronome).isDown());
        case kKey:
            return chooseKey();
        case kPanic:
            return host_.panic();
        case kSettings:
            return chooseSettings(host_.settings());
        default:
            return;
    }
}

void TransportBar::scrolled(Control&) {
    host_.setLevel(gainOf(level_.portion()));
}

void TransportBar::editReturned(int) {
    focus(nullptr);
}

void TransportBar::applyEdit(int id) {
    if (id == kTempo) applyTempo(tempo_.text());
    if (id == kBars) applyBars(bars_.text());
}

/// What is no tempo leaves the one that is.
void TransportBar::applyTempo(const std::string& text) {
    const std::optional<double> tempo = numberOf(text);
    if (tempo && isLiveTempo(*tempo)) {
        shownTempo_ = *tempo;
        host_.setTempo(*tempo);
    }
    tempo_.setText(tempoText(shownTempo_));
}

void TransportBar::applyBars(const std::string& text) {
    const std::optional<double> bars = numberOf(text);
    if (bars && *bars >= 1.0) loopBars_ = static_cast<int>(std::min<double>(*bars, kMostBars));
    bars_.setText(std::to_string(loopBars_));
    if (toggles_.at(kLoop).isDown()) host_.setLoop(loopBars_);
}

void TransportBar::chooseKey() {
    std::vector<MenuItem> items{{kNoKey, "None", !key_}};
    for (int key = 0; key < kKeysOfOctave; ++key) items.push_back({key + 1, keyName(key), key_ == key});
    questions().askMenu({kKeyLabel.left, kHeight}, items, [this](int id) {
        if (id == 0) return;
        key_ = id == kNoKey ? std::nullopt : std::optional(id - 1);
        host_.setKey(key_);
        invalidate(kKeyLabel);
    });
}

void TransportBar::chooseFile() {
    const std::vector<MenuItem> items = host_.files();
    questions().askMenu({buttons_.at(kFiles).place().left, kHeight}, items, [this](int id) {
        if (id != 0) host_.chooseFile(id);
    });
}

void TransportBar::chooseSettings(const std::vector<MenuItem>& items) {
    questions().askMenu({buttons_.at(kSettings).place().left, kHeight}, items, [this](int id) {
        if (id == 0) return;
        const std::vector<MenuItem> behind = host_.chooseSetting(id);
        if (!behind.empty()) chooseSettings(behind);
    });
}

}  // namespace marnoth
