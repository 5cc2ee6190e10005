#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/drawing/Geometry.h"

namespace marnoth {

/// One character as a picture: `coverage` has one byte for each pixel, 0 to 255, top row first.
struct Glyph {
    int left = 0;  ///< of the picture, from the pen position
    int top = 0;   ///< of the picture, from the top of the line
    int width = 0;
    int height = 0;
    int advance = 0;  ///< whole pixels to the next character
    std::vector<unsigned char> coverage;
};

/// A face at one height. The same text has the same width on every machine: hinting and rounding are fixed,
/// there is no kerning. One thread at a time.
class Font {
public:
    virtual ~Font() = default;

    /// Height of a line, which is what the ground of a text covers: ascent and descent.
    virtual int lineHeight() const = 0;
    /// Good until the next call. A character that the face lacks gives its box.
    virtual const Glyph& glyph(char32_t character) = 0;

    /// Pixels from the first to behind the last character. `text` is UTF-8.
    int widthOf(std::string_view text);
};

/// What makes fonts on a platform.
class FontSource {
public:
    virtual ~FontSource() = default;
    /// Null, with a sentence in `error` that says what is missing, when the face can't be had. `height` in
    /// pixels, from ascent to descent; weight is regular.
    virtual std::unique_ptr<Font> open(std::string_view face, int height, std::string& error) = 0;
};

}  // namespace marnoth
