#pragma once

#include <optional>

namespace marnoth {

/// Puts characters together from the units that the system sends one by one: those beyond U+FFFF come as two.
/// Half a character is dropped.
class CharacterJoiner {
public:
    /// The character that `unit` ends.
    std::optional<char32_t> take(char16_t unit) {
        const char16_t first = first_;
        first_ = isFirst(unit) ? unit : u'\0';
        if (isFirst(unit)) return {};
        if (!isSecond(unit)) return unit;
        if (first == 0) return {};
        return 0x10000 + ((static_cast<char32_t>(first) - 0xD800) << 10) + (unit - 0xDC00);
    }

private:
    static bool isFirst(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
    static bool isSecond(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

    char16_t first_ = 0;  ///< 0 when none waits for its second
};

}  // namespace marnoth
