#pragma once

#include <optional>

#include "platform/drawing/PageWindow.h"
#include "platform/drawing/ShownQuestion.h"

namespace marnoth {

class Surface;

/// A message or a menu that is shown over the page and answered there, for windows whose system has no boxes
/// of its own. A window hands it the user's input while it is open, and paints it above the page.
///
/// Client pixels of the page. The window's thread.
class QuestionView {
public:
    virtual ~QuestionView() = default;

    /// Shows `question` over a page of this size; what was shown before is gone.
    virtual void open(const ShownQuestion& question, const Rect& page) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    /// What it covers, its shadow included; nothing while it is closed.
    virtual Rect place() const = 0;
    virtual void paint(Surface& surface) = 0;

    // What the user does. Each says what of it is the answer, if it is one: a button's number from 0, a menu
    // entry's id, or `kCancelled`. The view stays open until `close`.
    static constexpr int kCancelled = -1;
    virtual void mouseMove(Point at) = 0;
    virtual std::optional<int> leftDown(Point at) = 0;
    virtual std::optional<int> leftUp(Point at) = 0;
    virtual std::optional<int> keyDown(int key, Modifiers held) = 0;
};

}  // namespace marnoth
