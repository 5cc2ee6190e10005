#include "shellkit/page/QuestionLayout.h"

#include <algorithm>
#include <string_view>

#include "platform/drawing/Font.h"

namespace marnoth {

namespace {

constexpr int kQuestionPadding = 16;
constexpr int kTextWidth = 330;
constexpr int kAnswerWidth = 72;
constexpr int kAnswerHeight = 20;
constexpr int kButtonGap = 8;
constexpr int kMenuMargin = 18;  ///< left of the texts, for checks, and right of them
constexpr int kMenuBorder = 3;
constexpr int kItemLeading = 4;

/// Words go into the next line where they don't fit, and where the text breaks a line.
std::vector<std::string> wrapped(std::string_view text, Font& font) {
    std::vector<std::string> lines{""};
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(" \n"), text.size());
        const std::string word(text.substr(0, end));
        const bool breaks = end < text.size() && text[end] == '\n';
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::string longer = lines.back().empty() ? word : lines.back() + " " + word;
        if (lines.back().empty() || font.widthOf(longer) <= kTextWidth)
            lines.back() = longer;
        else
            lines.push_back(word);
        if (breaks) lines.emplace_back();
    }
    return lines;
}

QuestionLayout layOutBox(const ShownQuestion& question, Font& font, const Rect& page) {
    QuestionLayout layout;
    layout.lines = wrapped(question.text, font);
    const int textHeight = static_cast<int>(layout.lines.size()) * font.lineHeight();
    const int width = kTextWidth + 2 * kQuestionPadding;
    const int height = textHeight + kAnswerHeight + 3 * kQuestionPadding;
    layout.box = Rect::at(page.left + (page.width() - width) / 2, page.top + (page.height() - height) / 2,
                          width, height);
    layout.text = {layout.box.left + kQuestionPadding, layout.box.top + kQuestionPadding};
    const int step = kAnswerWidth + kButtonGap;
    int left =
        layout.box.right - kQuestionPadding + kButtonGap - step * static_cast<int>(question.buttons.size());
    for (std::size_t button = 0; button < question.buttons.size(); ++button, left += step)
        layout.choices.push_back(Rect::at(left, layout.box.bottom - kQuestionPadding - kAnswerHeight,
                                          kAnswerWidth, kAnswerHeight));
    return layout;
}

QuestionLayout layOutMenu(const ShownQuestion& menu, Font& font, const Rect& page) {
    QuestionLayout layout;
    int width = 0;
    for (const MenuItem& item : menu.items) width = std::max(width, font.widthOf(item.text));
    width += 2 * kMenuMargin;
    const int rowHeight = font.lineHeight() + kItemLeading;
    const int fullWidth = width + 2 * kMenuBorder;
    const int height = static_cast<int>(menu.items.size()) * rowHeight + 2 * kMenuBorder;
    layout.box = Rect::at(std::clamp(menu.at.x, page.left, std::max(page.left, page.right - fullWidth)),
                          std::clamp(menu.at.y, page.top, std::max(page.top, page.bottom - height)),
                          fullWidth, height);
    int top = layout.box.top + kMenuBorder;
    for (std::size_t item = 0; item < menu.items.size(); ++item, top += rowHeight)
        layout.choices.push_back(Rect::at(layout.box.left + kMenuBorder, top, width, rowHeight));
    return layout;
}

}  // namespace

QuestionLayout layOut(const ShownQuestion& question, Font& font, const Rect& page) {
    return (question.items.empty() ? layOutBox : layOutMenu)(question, font, page);
}

}  // namespace marnoth
