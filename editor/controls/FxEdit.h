#pragma once

#include <string>
#include <string_view>

#include "editor/controls/Control.h"
#include "editor/controls/EditLine.h"

namespace marnoth {

/// A field for one line of text. Entering it selects all. Tells the page when the keyboard leaves it and when
/// the return key goes up; changes of the text on the way are told to nobody.
class CFxEdit : public Control {
public:
    using Control::Control;

    void setFont(Font* font) { line_.setFont(font); }  ///< not owned; null draws no text
    const std::string& text() const { return line_.text(); }
    void setText(std::string_view text);
    std::string_view selected() const { return line_.selected(); }

    void paint(Surface& surface) override;
    bool handle(const ControlEvent& event) override;
    void paste(std::string_view text) override;
    bool takesText() const override { return true; }
    std::optional<std::string> shownText() const override { return text(); }

private:
    void press(int x);
    bool mouse(const ControlEvent& event);
    bool key(const ControlEvent& event);
    bool keyboard(const ControlEvent& event);
    bool focusChange(bool entered);
    /// Draws anew when something was done.
    bool changed(bool done) const;

    EditLine line_;
    bool selecting_ = false;  ///< by a drag of the mouse
};

}  // namespace marnoth
