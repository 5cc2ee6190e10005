#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/drawing/Font.h"
#include "platform/drawing/Geometry.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

class Surface;

/// One line of text that a user edits: caret, selection, keys, mouse and drawing, for edits and combos.
/// UTF-8; positions are bytes; at most `kLongest` of them, what would go beyond is cut. Horizontal places
/// count from the line's left edge on the screen.
class EditLine {
public:
    static constexpr std::size_t kLongest = 255;

    void setFont(Font* font) { font_ = font; }  ///< not owned; null draws nothing

    const std::string& text() const { return text_; }
    /// The caret goes behind the text, unless it is the text that stands there already.
    void setText(std::string_view text);

    void selectAll();
    /// No selection, caret and view at the beginning.
    void rest();
    std::string_view selected() const;

    /// True when the key means something here. `window` has the clipboard, to copy to. To paste, which
    /// `asksToPaste` tells, takes somebody who can wait.
    bool key(int key, Modifiers held, PageWindow& window);
    static bool asksToPaste(int key, Modifiers held) { return key == kKeyV && held.control; }
    /// Replaces the selection, with what stands before the first end of a line.
    void paste(std::string_view text);
    /// Replaces the selection. False for what isn't text.
    bool insert(char32_t character);

    /// Sets the caret to the gap between characters that is nearest.
    void press(int x);
    /// Remembers the place and leaves the selection, until the pointer moves on to another gap.
    void pressKeeping(int x);
    void drag(int x);

    /// Draws ground, text and, with the keyboard on it, selection or caret; first scrolls the caret into
    /// view.
    void paint(Surface& surface, const Rect& room, bool focused);

private:
    std::size_t before(std::size_t position) const;
    std::size_t behind(std::size_t position) const;
    std::size_t gapAt(int x) const;
    int widthTo(std::size_t position) const;
    std::size_t selectionBegin() const { return caret_ < anchor_ ? caret_ : anchor_; }
    std::size_t selectionEnd() const { return caret_ < anchor_ ? anchor_ : caret_; }
    bool hasSelection() const { return caret_ != anchor_; }

    void moveTo(std::size_t caret, bool extend);
    void step(bool forward, bool extend);
    void erase(bool forward);
    void replaceSelection(std::string_view with);
    bool shortcut(int key, PageWindow& window);
    void copy(PageWindow& window) const;
    int scrollFor(int width) const;
    void paintText(Surface& surface, Point at, bool focused) const;
    void paintCaret(Surface& surface, const Rect& room) const;

    Font* font_ = nullptr;
    std::string text_;
    std::size_t caret_ = 0;
    std::size_t anchor_ = 0;   ///< where the selection began; the caret without one
    std::size_t pressed_ = 0;  ///< the gap of the last press
    bool keeping_ = false;     ///< a drag leaves the selection until it comes to another gap
    int scroll_ = 0;           ///< pixels that the text is moved to the left
};

}  // namespace marnoth
