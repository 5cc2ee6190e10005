#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "editor/PageFrame.h"
#include "editor/controls/BitmapKnobCtrl.h"
#include "editor/controls/BitmapToggleCtrl.h"
#include "editor/controls/FxEdit.h"
#include "shells/desktop/playing/TapTempo.h"
#include "shells/desktop/window/BarPictures.h"

namespace marnoth {

/// What the transport bar shows, and what it asks for: the program behind it.
class TransportBarHost {
public:
    struct State {
        bool playing = false;
        bool recording = false;
        double tick = 0.0;   ///< 960 to the beat
        double tempo = 120;  ///< beats per minute
        float peakLeft = 0;  ///< since the last look; full scale is 1
        float peakRight = 0;
        float load = 0;              ///< of the audio thread; its whole time is 1
        std::uint32_t messages = 0;  ///< MIDI messages so far
        std::uint32_t dropouts = 0;
    };

    virtual ~TransportBarHost() = default;
    virtual State look() = 0;
    virtual void play() = 0;
    virtual void stop() = 0;
    virtual void toStart() = 0;
    virtual void record(bool on) = 0;
    virtual void setTempo(double beatsPerMinute) = 0;
    virtual void setLoop(int bars) = 0;  ///< 0: none
    virtual void setMetronome(bool on) = 0;
    virtual void setLevel(float gain) = 0;
    /// 0 to 11 counted from A; nothing for none.
    virtual void setKey(std::optional<int> key) = 0;
    virtual void panic() = 0;
    /// What the menu of projects and MIDI files holds, and what one of its entries does.
    virtual std::vector<MenuItem> files() = 0;
    virtual void chooseFile(int id) = 0;
    /// What the settings' menu holds, and what one of its entries does.
    virtual std::vector<MenuItem> settings() = 0;
    /// The menu behind that entry, empty when there is none.
    virtual std::vector<MenuItem> chooseSetting(int id) = 0;
};

/// The bar above the page: transport, tempo, loop, metronome, key, level and meters. The window's thread.
class TransportBar final : public PageFrame {
public:
    static constexpr int kWidth = 600;
    static constexpr int kHeight = 30;
    static constexpr int kTimerPeriod = 50;  ///< milliseconds

    /// `window` and `host` outlive it. Throws `std::runtime_error`, with a sentence for the user, when the
    /// window hasn't got the font.
    TransportBar(PageWindow& window, TransportBarHost& host);

    void open();
    /// What it shows at first: level as a factor, bars from 1 on.
    void setUp(bool metronome, float level, int loopBars);
    /// That the loop has when it is switched on.
    int loopBars() const { return loopBars_; }

    void timer() override;
    DropEffect dragEnter(bool) override { return DropEffect::none; }
    DropEffect dragOver(Point) override { return DropEffect::none; }
    void dragLeave() override {}
    DropEffect drop(Point, std::optional<std::span<const std::string>>) override { return DropEffect::none; }
    void editLeft(int id) override { applyEdit(id); }
    void comboLeft(int) override {}
    void comboClosed(int) override {}

private:
    enum Id {
        kFiles = 1,
        kToStart,
        kPlay,
        kStop,
        kRecord,
        kTempo,
        kTap,
        kLoop,
        kBars,
        kMetronome,
        kKey,
        kLevel,
        kPanic,
        kSettings
    };

    void paintPage(Surface& backBuffer) override;
    void pressed(Point at) override;
    void released(Point at) override;
    void doubleClicked(Point at) override { pressed(at); }
    void moved(Point at) override;
    void wheelTurned(Point at, WheelAxis axis, int steps) override;
    void menuWanted(Point) override {}
    void gestureLost() override { dragFrom_.reset(); }
    void command(int id) override;
    void scrolled(Control& knob) override;
    void editReturned(int id) override;

    const BarButtonPictures& pictures(BarSymbol symbol);
    void makeButton(int id, int x, BarSymbol symbol);
    void makeToggle(int id, int x, BarSymbol symbol);
    void makeText(CFxEdit& edit, const Rect& place);
    void applyEdit(int id);
    void applyTempo(const std::string& text);
    void applyBars(const std::string& text);
    void showTempo(double beatsPerMinute);
    void chooseKey();
    void chooseFile();
    void chooseSettings(const std::vector<MenuItem>& items);
    void show(const TransportBarHost::State& state);
    void drawPosition(Surface& surface);
    void drawLabels(Surface& surface);
    void drawMeter(Surface& surface) const;
    void drawLights(Surface& surface) const;

    TransportBarHost& host_;
    const Bitmap ground_ = drawBarGround(kWidth, kHeight);
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> large_;
    std::map<BarSymbol, BarButtonPictures> pictures_;
    std::map<int, CBitmapButton> buttons_;
    std::map<int, CBitmapToggleCtrl> toggles_;
    CFxEdit tempo_;
    CFxEdit bars_;
    CBitmapKnobCtrl level_;
    TapTempo tap_;
    std::optional<int> dragFrom_;  ///< where the mouse was last as it drags the tempo
    std::string shownPosition_;
    std::optional<int> key_;
    int loopBars_ = 4;
    double shownTempo_ = 0;
    float left_ = 0;  ///< of the meter, falling; full scale is 1
    float right_ = 0;
    bool clipped_ = false;
    int midiLight_ = 0;  ///< ticks of the timer that it is lit yet
    int dropoutLight_ = 0;
    std::uint32_t messages_ = 0;
    std::uint32_t dropouts_ = 0;
    int load_ = 0;  ///< percent
};

}  // namespace marnoth
