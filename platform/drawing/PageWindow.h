#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/drawing/Geometry.h"

namespace marnoth {

class Bitmap;
class Font;

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

/// Those of the keys that change what a press means which were held while an event happened. A third-level
/// key, which some systems make of two others, is none of them.
struct Modifiers {
    bool shift = false;
    bool control = false;

    friend bool operator==(const Modifiers&, const Modifiers&) = default;
};

enum class PageCursor { arrow, dragCopy, sizeHorizontal, sizeVertical, none };

enum class WheelAxis { vertical, horizontal };

/// A message is told, or answered by yes or no, or by those with a button for neither.
enum class MessageKind { note, yesNo, yesNoCancel };
enum class FileKind { open, save };
enum class PageAnswer { ok, cancel, yes, no };

/// What a drop from outside does with what is dropped.
enum class DropEffect { none = 0, copy = 1 };

/// One entry of a popup menu.
struct MenuItem {
    int id = 0;
    std::string text;
    bool checked = false;
};

/// What the page asks of the window that shows it: X11, Win32, or none at all. Client pixels of the page
/// throughout, however large the window shows them; texts are UTF-8. Everything on the window's thread. A
/// window outlives its page.
class PageWindow {
public:
    virtual ~PageWindow() = default;

    /// Something of the page is out of date: the window calls `PageEvents::paint` once when no other event
    /// waits.
    virtual void requestPaint() = 0;
    /// Shows `screen`, which is as large as the page; only `changed` differs from what it was given last.
    virtual void present(const Bitmap& screen, const Rect& changed) = 0;
    /// A face for the page's texts, `height` pixels of the page from ascent to descent. How fine its glyphs
    /// are is the window's affair, who knows how large a pixel of the page is: the page asks no one else.
    /// Null, with a sentence in `error` that says what is missing, when the face can't be had. The font may
    /// outlive the window.
    virtual std::unique_ptr<Font> openFont(std::string_view face, int height, std::string& error) = 0;
    /// All mouse events go to the page until `releaseCapture`, also from outside the window.
    virtual void setCapture() = 0;
    virtual void releaseCapture() = 0;
    /// All mouse events go to the page until `endRelativeDrag`, and moves come as distances, by
    /// `PageEvents::relativeMove`: no edge of the screen sets a limit. The pointer shows as `shown` or, with
    /// `none`, not at all, and is where it was pressed when the drag ends. A window that may not put it back
    /// takes the distances from one place to the next.
    virtual void beginRelativeDrag(PageCursor shown) = 0;
    /// Without one it does nothing, and so does `releaseCapture`.
    virtual void endRelativeDrag() = 0;
    /// Keeps the pointer inside, where the system lets a window do that; nothing lets it go again.
    virtual void confinePointer(std::optional<Rect> area) = 0;
    /// Where the pointer is now.
    virtual Point pointer() = 0;
    virtual void setCursor(PageCursor cursor) = 0;
    /// `PageEvents::timer` every so many milliseconds; 0 stops it.
    virtual void setTimer(int milliseconds) = 0;
    /// The window itself wants keyboard input (true), or gives it back to whoever had it.
    virtual void takeFocus(bool wanted) = 0;

    // Questions. None of them waits: `then` is called once with the answer, inside the call by a window that
    // has it at once, else when it comes, with nothing else of the page under way. What is shown and can't be
    // answered any more counts as cancelled. The page has one question open at a time, and while it has the
    // window keeps the user's input away from the page if it can; what comes all the same the page ignores.
    /// `note` is answered by ok, the others by yes or no; each by cancel.
    virtual void askMessage(std::string_view text, MessageKind kind,
                            std::function<void(PageAnswer)> then) = 0;
    /// `filter` is "Name (*.ext)|*.ext||". The answer is a full path, or nothing when the user cancels.
    virtual void askFile(std::string_view filter, FileKind kind,
                         std::function<void(std::optional<std::string>)> then) = 0;
    /// The answer is the id of one of `items`, which are good during the call alone; 0 for none.
    virtual void askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) = 0;
    /// The page goes, or what the question was about: it is taken back, and its `then` isn't called any more.
    virtual void cancelQuestion() = 0;

    /// `then` gets the text on the clipboard, empty without one: inside the call, or when whoever has the
    /// text hands it over, which may be the program that the window is part of. It may come when the page is
    /// gone.
    virtual void readClipboard(std::function<void(std::string)> then) = 0;
    virtual void setClipboardText(std::string_view text) = 0;
    virtual void showHelp() = 0;
};

/// What a window tells its page. Client pixels of the page; on the window's thread. `held` are the modifiers
/// at the time of the event. A page may be destroyed between any two events, also under an open question.
class PageEvents {
public:
    virtual ~PageEvents() = default;

    virtual void paint() = 0;
    virtual void timer() = 0;
    virtual void leftDown(Point at, Modifiers held) = 0;
    virtual void leftUp(Point at, Modifiers held) = 0;
    /// In place of the second press.
    virtual void doubleClick(Point at, Modifiers held) = 0;
    virtual void mouseMove(Point at, Modifiers held) = 0;
    /// In place of `mouseMove` during a relative drag: how far the mouse went since the event before.
    virtual void relativeMove(Point distance, Modifiers held) = 0;
    /// `steps` are whole clicks of the wheel, away from the user or to the right above 0; parts of one are
    /// added up by the window.
    virtual void wheel(Point at, WheelAxis axis, int steps, Modifiers held) = 0;
    virtual void rightDown(Point at, Modifiers held) = 0;
    /// Follows the right button's release.
    virtual void contextMenu(Point at, Modifiers held) = 0;
    /// A virtual key, in the codes of `PageKey`; letters and digits have those of their capitals in ASCII.
    /// True when the page acted on it, or takes the character that it makes: a key of which it says false may
    /// be handed on to whoever shows the window.
    virtual bool keyDown(int key, Modifiers held) = 0;
    virtual void keyUp(int key, Modifiers held) = 0;
    virtual void character(char32_t character, Modifiers held) = 0;
    /// The window as a whole lost the keyboard, and it hasn't come back within `FocusPatience::kPatience`:
    /// toolkit hosts take it away for some milliseconds at each press. Isn't told while a question is open.
    virtual void focusLost() = 0;
    /// Something else took the mouse: the press or drag that is under way ends without effect, a relative
    /// drag included.
    virtual void captureLost() = 0;
    /// Something is dragged over the page from outside. Each answers what a drop would do.
    virtual DropEffect dragEnter(bool hasFiles) = 0;
    virtual DropEffect dragOver(Point at) = 0;
    virtual void dragLeave() = 0;
    /// Full paths in UTF-8; nothing when what was dropped isn't files.
    virtual DropEffect drop(Point at, std::optional<std::span<const std::string>> paths) = 0;
};

}  // namespace marnoth
