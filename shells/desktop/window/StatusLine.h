#pragma once

#include <functional>
#include <memory>
#include <string>

#include "editor/PageFrame.h"
#include "shells/desktop/window/Notices.h"

namespace marnoth {

/// The line below the page: what there is to tell, and while that is nothing, what plays; at its right what
/// it is heard through. The window's thread.
class StatusLine final : public PageFrame {
public:
    static constexpr int kWidth = 600;
    static constexpr int kHeight = 18;

    /// `window` outlives it. Throws `std::runtime_error`, with a sentence for the user, when the window
    /// hasn't got the font.
    explicit StatusLine(PageWindow& window);

    /// What is told now, if anything; what stands there otherwise, and at the right.
    void show(const Notice& notice, const std::string& music, const std::string& sound);
    /// Called when the user presses on the line.
    void onPressed(std::function<void()> pressed) { pressed_ = std::move(pressed); }

    void timer() override {}
    DropEffect dragEnter(bool) override { return DropEffect::none; }
    DropEffect dragOver(Point) override { return DropEffect::none; }
    void dragLeave() override {}
    DropEffect drop(Point, std::optional<std::span<const std::string>>) override { return DropEffect::none; }
    void editLeft(int) override {}
    void comboLeft(int) override {}
    void comboClosed(int) override {}

private:
    void paintPage(Surface& backBuffer) override;
    void pressed(Point) override { pressed_(); }
    void released(Point) override {}
    void doubleClicked(Point at) override { pressed(at); }
    void moved(Point) override {}
    void wheelTurned(Point, WheelAxis, int) override {}
    void menuWanted(Point) override {}
    void gestureLost() override {}
    void command(int) override {}
    void scrolled(Control&) override {}
    void editReturned(int) override {}

    std::unique_ptr<Font> font_;
    const Bitmap ground_;
    std::function<void()> pressed_ = [] {};
    Notice notice_;
    std::string music_;
    std::string sound_;
};

}  // namespace marnoth
