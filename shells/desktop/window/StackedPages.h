#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "platform/drawing/Bitmap.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// Pages in one window, one above the other: an upper one, the lower one, and a line at their foot. Each has
/// a window of its own here, and all of them one picture, one mouse and one keyboard. Whoever captured the
/// mouse has it, else the one under it; the keyboard is the upper page's while that wants it, else the lower
/// one's. The window's thread.
class StackedPages final : public PageEvents {
public:
    /// `window` outlives it. Sizes in pixels of the page.
    StackedPages(PageWindow& window, int width, int upperHeight, int lowerHeight, int footHeight = 0);
    ~StackedPages() override;

    PageWindow& upperWindow();
    PageWindow& lowerWindow();
    PageWindow& footWindow();
    /// Not owned; null without a page.
    void setUpper(PageEvents* page);
    void setLower(PageEvents* page);
    void setFoot(PageEvents* page);
    /// Gets files that are dropped before the lower page does: true when it has a use for them.
    using FileTaker = std::function<bool(std::span<const std::string> paths)>;
    void takeFiles(FileTaker taker) { taker_ = std::move(taker); }

    void paint() override;
    void timer() override;
    void leftDown(Point at, Modifiers held) override;
    void leftUp(Point at, Modifiers held) override;
    void doubleClick(Point at, Modifiers held) override;
    void mouseMove(Point at, Modifiers held) override;
    void relativeMove(Point distance, Modifiers held) override;
    void wheel(Point at, WheelAxis axis, int steps, Modifiers held) override;
    void rightDown(Point at, Modifiers held) override;
    void contextMenu(Point at, Modifiers held) override;
    bool keyDown(int key, Modifiers held) override;
    void keyUp(int key, Modifiers held) override;
    void character(char32_t character, Modifiers held) override;
    void focusLost() override;
    void captureLost() override;
    DropEffect dragEnter(bool hasFiles) override;
    DropEffect dragOver(Point at) override;
    void dragLeave() override;
    DropEffect drop(Point at, std::optional<std::span<const std::string>> paths) override;

private:
    class Storey;
    using MouseEvent = void (PageEvents::*)(Point, Modifiers);

    Storey& under(Point at);
    Storey& keyboard();
    void mouse(MouseEvent event, Point at, Modifiers held);
    void setTimer();

    PageWindow& window_;
    Bitmap picture_;
    std::unique_ptr<Storey> upper_;
    std::unique_ptr<Storey> lower_;
    std::unique_ptr<Storey> foot_;
    FileTaker taker_;
    Storey* captor_ = nullptr;  ///< who has captured the mouse
    Storey* over_ = nullptr;    ///< where the mouse was last
};

}  // namespace marnoth
