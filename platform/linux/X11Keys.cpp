#include "platform/linux/X11Keys.h"

#include <algorithm>
#include <array>

#include "platform/drawing/CharacterKeys.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

namespace {

struct NamedKey {
    KeySym symbol;
    int key;
};

constexpr int kTab = 9;
constexpr int kKeypadDigits = 96;
constexpr int kKeypadMultiply = 106;
constexpr int kKeypadDecimal = 110;
constexpr int kKeypadDivide = 111;
constexpr int kPageUp = 33;
constexpr int kPageDown = 34;
constexpr int kInsert = 45;

constexpr std::array kNamed{
    NamedKey{XK_BackSpace, kKeyBackspace},
    NamedKey{XK_Tab, kTab},
    NamedKey{XK_ISO_Left_Tab, kTab},
    NamedKey{XK_Return, kKeyReturn},
    NamedKey{XK_KP_Enter, kKeyReturn},
    NamedKey{XK_Shift_L, kKeyShift},
    NamedKey{XK_Shift_R, kKeyShift},
    NamedKey{XK_Control_L, kKeyControl},
    NamedKey{XK_Control_R, kKeyControl},
    NamedKey{XK_Escape, kKeyEscape},
    NamedKey{XK_Page_Up, kPageUp},
    NamedKey{XK_Page_Down, kPageDown},
    NamedKey{XK_End, kKeyEnd},
    NamedKey{XK_Home, kKeyHome},
    NamedKey{XK_Left, kKeyLeft},
    NamedKey{XK_Up, kKeyUp},
    NamedKey{XK_Right, kKeyRight},
    NamedKey{XK_Down, kKeyDown},
    NamedKey{XK_Insert, kInsert},
    NamedKey{XK_Delete, kKeyDelete},
    NamedKey{XK_KP_Home, kKeyHome},
    NamedKey{XK_KP_End, kKeyEnd},
    NamedKey{XK_KP_Left, kKeyLeft},
    NamedKey{XK_KP_Up, kKeyUp},
    NamedKey{XK_KP_Right, kKeyRight},
    NamedKey{XK_KP_Down, kKeyDown},
    NamedKey{XK_KP_Page_Up, kPageUp},
    NamedKey{XK_KP_Page_Down, kPageDown},
    NamedKey{XK_KP_Insert, kInsert},
    NamedKey{XK_KP_Delete, kKeyDelete},
    NamedKey{XK_KP_Multiply, kKeypadMultiply},
    NamedKey{XK_KP_Add, kKeyAdd},
    NamedKey{XK_KP_Subtract, kKeySubtract},
    NamedKey{XK_KP_Decimal, kKeypadDecimal},
    NamedKey{XK_KP_Separator, kKeypadDecimal},
    NamedKey{XK_KP_Divide, kKeypadDivide},
};

}  // namespace

int pageKeyOf(KeySym symbol) {
    const auto named = std::ranges::find(kNamed, symbol, &NamedKey::symbol);
    if (named != kNamed.end()) return named->key;
    if (symbol >= XK_KP_0 && symbol <= XK_KP_9) return kKeypadDigits + static_cast<int>(symbol - XK_KP_0);
    if (symbol >= XK_F1 && symbol <= XK_F24) return kKeyF1 + static_cast<int>(symbol - XK_F1);
    // Symbols of ASCII have its codes.
    return symbol < 0x80 ? keyOfCharacter(static_cast<char32_t>(symbol)) : 0;
}

}  // namespace marnoth
