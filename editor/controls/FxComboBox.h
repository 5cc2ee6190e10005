#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "editor/controls/Control.h"
#include "editor/controls/EditLine.h"

namespace marnoth {

/// A field that can be typed into, with a list that opens over the page. Tells the page when the list closes,
/// in whichever way, and when the keyboard leaves it; what was chosen is the text that stands there then.
///
/// A press on the field opens the list, and while it is open the combo has the mouse: a press on a row picks
/// it, so does the release of the press that opened the list; a press anywhere else closes the list and does
/// nothing more. Up and Down walk the list, or with the list closed through the items; Return picks, Escape
/// closes. The wheel goes on to the item after, or back to the one before, and tells the page as well.
class CFxComboBox : public Control {
public:
    using Control::Control;

    void setFont(Font* font);  ///< not owned; null draws no text
    void setItems(std::vector<std::string> items) { items_ = std::move(items); }

    const std::string& text() const { return line_.text(); }
    /// The item that stands there, counted from 0; -1 when the text is none of them.
    int selection() const;
    /// Shows an item, or an empty text when there is no such item. Nobody is told.
    void select(int item);

    bool isOpen() const { return open_; }
    /// As a user does it: takes the keyboard, opens the list, picks and closes. False, with nothing done, for
    /// a text that is no item.
    bool choose(std::string_view item);

    void paint(Surface& surface) override;
    Rect overlay() const override;
    void paintOverlay(Surface& surface) override;
    bool handle(const ControlEvent& event) override;
    void paste(std::string_view text) override;
    bool takesText() const override { return true; }
    std::optional<std::string> shownText() const override { return text(); }
    std::optional<int> shownState() const override { return selection(); }

private:
    int indexOf(std::string_view item) const;
    int rowAt(Point at) const;
    Rect rowRect(int row) const;
    void show(int item);
    void open();
    void close();
    void pick(int row);
    void hover(int row);
    void walk(int step);
    void press(Point at);
    void release(Point at);
    void letGoOfMouse();
    /// Goes on by so many items, up to the first and the last, and tells the page.
    bool turn(int items);
    bool key(int key, Modifiers held);
    bool mouse(const ControlEvent& event);
    bool keyboard(const ControlEvent& event);
    void leave();
    void paintArrow(Surface& surface) const;
    void paintRow(Surface& surface, int row) const;

    EditLine line_;
    Font* font_ = nullptr;
    std::vector<std::string> items_;
    bool open_ = false;
    bool captured_ = false;
    int hover_ = -1;  ///< the lit row of the open list, -1 for none
};

}  // namespace marnoth
