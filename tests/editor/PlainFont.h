#pragma once

#include "platform/drawing/Font.h"

namespace marnoth::test {

/// A font that is known by its line height and draws nothing.
class PlainFont final : public Font {
public:
    explicit PlainFont(int height) : height_(height) {}

    int lineHeight() const override { return height_; }
    const Glyph& glyph(char32_t) override { return glyph_; }

private:
    int height_;
    Glyph glyph_;
};

}  // namespace marnoth::test
