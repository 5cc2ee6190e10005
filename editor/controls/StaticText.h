#pragma once

#include <string>
#include <string_view>

#include "editor/controls/Control.h"
#include "platform/drawing/Font.h"

namespace marnoth {

/// A read-out. Its mouse events go to the page.
class StaticText : public Control {
public:
    using Control::Control;

    void setFont(Font* font) { font_ = font; }  ///< not owned; null draws the ground alone
    const std::string& text() const { return text_; }
    void setText(std::string_view text);

    void paint(Surface& surface) override;
    bool handle(const ControlEvent&) override { return false; }
    bool takesMouse() const override { return false; }
    std::optional<std::string> shownText() const override { return text(); }

private:
    Font* font_ = nullptr;
    std::string text_;
};

}  // namespace marnoth
