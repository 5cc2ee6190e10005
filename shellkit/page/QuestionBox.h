#pragma once

#include "platform/drawing/QuestionView.h"
#include "shellkit/page/QuestionLayout.h"

namespace marnoth {

class Font;

/// A question in the page's own looks.
///
/// Of a message, Return and space take the lit button, Tab and the arrows light another, Escape cancels; the
/// first letter of a button takes it. Of a menu, Up and Down light an entry and the mouse the one under it; a
/// press outside cancels. A choice is made by pressing and releasing on it; in a menu also by the release of
/// the press that opened it, once the mouse has moved on an entry.
class QuestionBox final : public QuestionView {
public:
    /// `font` outlives it.
    explicit QuestionBox(Font& font) : font_(font) {}

    void open(const ShownQuestion& question, const Rect& page) override;
    void close() override;
    bool isOpen() const override { return open_; }
    Rect place() const override;
    void paint(Surface& surface) override;
    void mouseMove(Point at) override;
    std::optional<int> leftDown(Point at) override;
    std::optional<int> leftUp(Point at) override;
    std::optional<int> keyDown(int key, Modifiers held) override;

private:
    bool isMenu() const { return !question_.items.empty(); }
    int choices() const { return static_cast<int>(layout_.choices.size()); }
    int choiceAt(Point at) const;
    /// The answer that a choice stands for; nothing when there is none.
    std::optional<int> answerOf(int choice) const;
    void step(int by);
    std::optional<int> letter(int key) const;

    Font& font_;
    ShownQuestion question_;
    QuestionLayout layout_;
    int lit_ = -1;
    int pressed_ = -1;
    bool moved_ = false;  ///< over an entry, since a menu was opened
    bool open_ = false;
};

}  // namespace marnoth
