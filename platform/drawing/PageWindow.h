#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/drawing/Geometry.h"

namespace marnoth {

class Bitmap;

/// Virtual keys, in the codes that the page's table of gestures uses.
enum PageKey : int {
    kKeyBackspace = 8,
    kKeyReturn = 13,
    kKeyShift = 16,
    kKeyControl = 17,
    kKeyEscape = 27,
    kKeySpace = 32,
    kKeyEnd = 35,
    kKeyHome = 36,
    kKeyLeft = 37,
    kKeyUp = 38,
    kKeyRight = 39,
    kKeyDown = 40,
    kKeyDelete = 46,
    kKeyA = 65,
    kKeyC = 67,
    kKeyV = 86,
    kKeyX = 88,
    kKeyZ = 90,
    kKeyAdd = 107,
    kKeySubtract = 109,
    kKeyF1 = 112,
    kKeyF11 = 122,
};

enum class PageCursor { arrow, dragCopy, sizeHorizontal, sizeVertical, none };
enum class PageAnswer { ok, cancel, yes, no };

/// What a drop from outside does with what is dropped.
enum class DropEffect { none = 0, copy = 1 };

/// One entry of a popup menu.
struct MenuItem {
    int id = 0;
    std::string text;
    bool checked = false;
};

/// What the page asks of the window that shows it: X11, Win32, or none at all. Client pixels throughout;
/// texts are UTF-8. Everything on the window's thread. A window outlives its page.
class PageWindow {
public:
    virtual ~PageWindow() = default;

    /// Something of the page is out of date: the window calls `PageEvents::paint` once when no other event
    /// waits.
    virtual void requestPaint() = 0;
    /// Shows `screen`, which is as large as the page; only `changed` differs from what it was given last.
    virtual void present(const Bitmap& screen, const Rect& changed) = 0;
    /// All mouse events go to the page until `releaseCapture`, also from outside the window.
    virtual void setCapture() = 0;
    virtual void releaseCapture() = 0;
    /// Keeps the pointer inside; nothing lets it go again.
    virtual void confinePointer(std::optional<Rect> area) = 0;
    virtual void warpPointer(Point to) = 0;
    /// Where the pointer is now.
    virtual Point pointer() = 0;
    virtual void setCursor(PageCursor cursor) = 0;
    /// True while the key is held. `kKeyShift` or `kKeyControl`.
    virtual bool isKeyDown(int key) = 0;
    /// `PageEvents::timer` every so many milliseconds; 0 stops it.
    virtual void setTimer(int milliseconds) = 0;
    /// The window itself wants keyboard input (true), or gives it back to whoever had it.
    virtual void takeFocus(bool wanted) = 0;
    /// Waits for the answer. `yesNo`: yes or no; else ok.
    virtual PageAnswer askMessage(std::string_view text, bool yesNo) = 0;
    /// Waits for a choice. `filter` is "Name (*.ext)|*.ext||". Nothing when the user cancels.
    virtual std::optional<std::string> askFile(std::string_view filter, bool save) = 0;
    /// Waits for a choice; 0 for none.
    virtual int askMenu(Point at, std::span<const MenuItem> items) = 0;
    virtual std::string clipboardText() = 0;
    virtual void setClipboardText(std::string_view text) = 0;
    virtual void showHelp() = 0;
};

/// What a window tells its page. Client pixels; on the window's thread. While a question (`ask...`) is open,
/// events don't come; `paint` alone may, so that the page behind the question is shown as it stands. A page
/// isn't destroyed before its question has returned.
class PageEvents {
public:
    virtual ~PageEvents() = default;

    virtual void paint() = 0;
    virtual void timer() = 0;
    virtual void leftDown(Point at) = 0;
    virtual void leftUp(Point at) = 0;
    /// In place of the second press.
    virtual void doubleClick(Point at) = 0;
    virtual void mouseMove(Point at) = 0;
    virtual void rightDown(Point at) = 0;
    /// Follows the right button's release.
    virtual void contextMenu(Point at) = 0;
    /// A virtual key, in the codes of `PageKey`; letters and digits have those of their capitals in ASCII.
    virtual void keyDown(int key) = 0;
    virtual void keyUp(int key) = 0;
    virtual void character(char32_t character) = 0;
    /// The window as a whole lost the keyboard.
    virtual void focusLost() = 0;
    /// Something else took the mouse: the press or drag that is under way ends without effect.
    virtual void captureLost() = 0;
    /// Something is dragged over the page from outside. Each answers what a drop would do.
    virtual DropEffect dragEnter(bool hasFiles) = 0;
    virtual DropEffect dragOver(Point at) = 0;
    virtual void dragLeave() = 0;
    /// Full paths in UTF-8; nothing when what was dropped isn't files.
    virtual DropEffect drop(Point at, std::optional<std::span<const std::string>> paths) = 0;
};

}  // namespace marnoth
