#include "shells/desktop/window/StatusLine.h"

#include <utility>

#include "editor/skin/Palette.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/RasterSurface.h"
#include "platform/text/Text.h"
#include "shells/desktop/window/BarPictures.h"

namespace marnoth {

namespace {

constexpr int kMargin = 8;
constexpr int kTextTop = 3;

constexpr Color kNews = kPalette[8];
constexpr Color kWarning{240, 200, 96};

/// The end goes where it doesn't fit, and dots say so.
std::string fitting(const std::string& text, int width, Font& font) {
    if (font.widthOf(text) <= width) return text;
    constexpr const char* kDots = "...";
    std::string shorter;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view before = rest;
        takeUtf8(rest);
        const std::string longer = shorter + std::string(before.substr(0, before.size() - rest.size()));
        if (font.widthOf(longer + kDots) > width) break;
        shorter = longer;
    }
    return shorter + kDots;
}

}  // namespace

StatusLine::StatusLine(PageWindow& window)
    : PageFrame(window, drawBarGround(kWidth, kHeight),
                [](Bitmap& bitmap) { return std::make_unique<RasterSurface>(bitmap); }),
      font_(barFont(window, kBarTextHeight)),
      ground_(drawBarGround(kWidth, kHeight)) {}

void StatusLine::show(const Notice& notice, const std::string& music, const std::string& sound) {
    if (notice == notice_ && music == music_ && sound == sound_) return;
    notice_ = notice;
    music_ = music;
    sound_ = sound;
    invalidate({0, 0, kWidth, kHeight});
}

void StatusLine::paintPage(Surface& surface) {
    surface.BitBlt({0, 0, kWidth, kHeight}, ground_, {0, 0});
    surface.SelectFont(font_.get());
    surface.SetGroundColor(kBarGround);
    const bool tells = !notice_.text.empty();
    // What is told has the whole line: it goes again.
    const int right = tells ? kWidth - kMargin : kWidth - kMargin - font_->widthOf(sound_);
    surface.SetTextColor(!tells ? kBarText : notice_.warns ? kWarning : kNews);
    surface.TextOut({kMargin, kTextTop}, fitting(tells ? notice_.text : music_, right - 2 * kMargin, *font_));
    surface.SetTextColor(kBarText);
    if (!tells) surface.TextOut({right, kTextTop}, sound_);
}

}  // namespace marnoth
