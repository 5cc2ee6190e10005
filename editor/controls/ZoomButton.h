#pragma once

#include "editor/controls/BitmapButton.h"

namespace marnoth {

/// A push button for which every click of a fast series counts.
class CZoomButton : public CBitmapButton {
public:
    using CBitmapButton::CBitmapButton;

    bool handle(const ControlEvent& event) override;
};

}  // namespace marnoth
