#include "platform/drawing/CharacterKeys.h"

#include <array>
#include <string_view>

#include "platform/drawing/PageWindow.h"

namespace marnoth {

int keyOfCharacter(char32_t character) {
    if (character >= 'a' && character <= 'z') return static_cast<int>(character - 'a') + 'A';
    if (character >= 'A' && character <= 'Z') return static_cast<int>(character);
    if (character >= '0' && character <= '9') return static_cast<int>(character);
    if (character == ' ') return kKeySpace;
    struct Sign {
        std::u32string_view characters;
        int key;
    };
    static constexpr std::array<Sign, 21> kSigns{{
        {U"!", '1'},  {U"@", '2'},  {U"#", '3'},  {U"$", '4'},  {U"%", '5'},   {U"^", '6'},  {U"&", '7'},
        {U"*", '8'},  {U"(", '9'},  {U")", '0'},  {U";:", 186}, {U"=+", 187},  {U",<", 188}, {U"-_", 189},
        {U".>", 190}, {U"/?", 191}, {U"`~", 192}, {U"[{", 219}, {U"\\|", 220}, {U"]}", 221}, {U"'\"", 222},
    }};
    for (const Sign& sign : kSigns)
        if (sign.characters.find(character) != sign.characters.npos) return sign.key;
    return 0;
}

}  // namespace marnoth
