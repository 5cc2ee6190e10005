#include "platform/drawing/Font.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "platform/text/Text.h"

namespace marnoth {

int Font::widthOf(std::string_view text) {
    std::int64_t width = 0;
    while (!text.empty()) width += glyph(takeUtf8(text)).advance;
    return static_cast<int>(std::min<std::int64_t>(width, std::numeric_limits<int>::max()));
}

}  // namespace marnoth
