#pragma once

#include "platform/drawing/FileChooser.h"
#include "platform/drawing/HeadlessWindow.h"

namespace marnoth::test {

/// A window as large as the page's that asks for a file, and knows what lies over it.
class PlainAskingWindow final : public AskingWindow {
public:
    unsigned long id() const override { return 77; }
    Rect room() const override { return {0, 0, 600, 583}; }
    void showOver(PageOverlay* dialog) override { over = dialog; }
    PageWindow& clipboardWindow() override { return headless; }

    PageOverlay* over = nullptr;
    HeadlessWindow headless;
};

}  // namespace marnoth::test
