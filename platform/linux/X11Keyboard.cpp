#include "platform/linux/X11Keyboard.h"

#include <string_view>
#include <utility>

#include "platform/linux/X11Keys.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// Characters and their keys have the same symbols in Latin-1; others carry their code behind this.
constexpr KeySym kUnicode = 0x01000000;

char32_t characterOf(KeySym symbol) {
    if (symbol >= XK_KP_0 && symbol <= XK_KP_9) return static_cast<char32_t>(symbol - XK_KP_0) + U'0';
    if (symbol > kUnicode) return static_cast<char32_t>(symbol - kUnicode);
    return symbol <= 0xFF ? static_cast<char32_t>(symbol) : 0;
}

bool isPrintable(char32_t character) {
    return character >= 0x20 && character != 0x7F && !(character >= 0x80 && character < 0xA0);
}

}  // namespace

X11Keyboard::X11Keyboard(X11Display& display, ::Window window) : display_(display), window_(window) {
    // A key that is held comes down again and again, and up once.
    XkbSetDetectableAutoRepeat(display.get(), kXTrue, nullptr);
    open();
}

X11Keyboard::~X11Keyboard() {
    if (context_) XDestroyIC(context_);
    if (method_) XCloseIM(method_);
}

/// The user's own input method, by the environment; where that isn't running, the locale's.
void X11Keyboard::open() {
    const char* const set = XSetLocaleModifiers(nullptr);
    const std::string before = set ? set : "";
    // In a host's process the modifiers are the host's.
    if (before.empty()) XSetLocaleModifiers("");
    if (!isServerGone_ && openMethod()) return;
    XSetLocaleModifiers("@im=none");
    openMethod();
    XSetLocaleModifiers(before.c_str());
}

bool X11Keyboard::openMethod() {
    method_ = XOpenIM(display_.get(), nullptr, nullptr, nullptr);
    if (method_ && openContext()) return true;
    if (method_) XCloseIM(std::exchange(method_, nullptr));
    return false;
}

bool X11Keyboard::openContext() {
    XIMCallback gone{reinterpret_cast<XPointer>(this), methodGone};
    XSetIMValues(method_, XNDestroyCallback, &gone, nullptr);
    context_ = XCreateIC(method_, XNInputStyle, XIMPreeditNothing | XIMStatusNothing, XNClientWindow, window_,
                         XNFocusWindow, window_, nullptr);
    if (context_ && hasFocus_) XSetICFocus(context_);
    return context_ != nullptr;
}

/// Its contexts are gone with it.
void X11Keyboard::methodGone(XIM, XPointer self, XPointer) {
    auto& keyboard = *reinterpret_cast<X11Keyboard*>(self);
    keyboard.method_ = nullptr;
    keyboard.context_ = nullptr;
    keyboard.isServerGone_ = true;
}

bool X11Keyboard::keeps(XEvent& event) {
    const bool isKept = XFilterEvent(&event, kXNone) != 0;
    if (isServerGone_ && !method_) open();
    return isKept;
}

int X11Keyboard::keyOf(XKeyEvent& event) const {
    KeySym symbol = kXNone;
    // Num Lock and Shift say whether the keypad has digits.
    XLookupString(&event, nullptr, 0, &symbol, nullptr);
    if (const int key = pageKeyOf(symbol)) return key;
    // Of a key of another script, what stands there in the first that is Latin: Ctrl+Z is where Z is.
    const auto code = static_cast<KeyCode>(event.keycode);
    for (unsigned group = 0; group < XkbNumKbdGroups; ++group)
        if (const int key = pageKeyOf(XkbKeycodeToKeysym(display_.get(), code, group, 0))) return key;
    return 0;
}

std::string X11Keyboard::utf8Of(XKeyEvent& event) {
    std::string text(32, '\0');
    int answer = 0;
    int length =
        Xutf8LookupString(context_, &event, text.data(), static_cast<int>(text.size()), nullptr, &answer);
    if (answer == XBufferOverflow) {
        text.resize(static_cast<std::size_t>(length));
        length = Xutf8LookupString(context_, &event, text.data(), length, nullptr, &answer);
    }
    const bool hasText = answer == XLookupChars || answer == XLookupBoth;
    text.resize(hasText ? static_cast<std::size_t>(length) : 0);
    return text;
}

std::u32string X11Keyboard::charactersOf(XKeyEvent& event) {
    std::u32string characters;
    const auto take = [&](char32_t character) {
        if (isPrintable(character)) characters += character;
    };
    if (context_) {
        const std::string text = utf8Of(event);
        for (std::string_view rest = text; !rest.empty();) take(takeUtf8(rest));
        return characters;
    }
    KeySym symbol = kXNone;
    XLookupString(&event, nullptr, 0, &symbol, nullptr);
    if (!(event.state & ControlMask)) take(characterOf(symbol));
    return characters;
}

void X11Keyboard::focus(bool here) {
    hasFocus_ = here;
    if (context_) (here ? XSetICFocus : XUnsetICFocus)(context_);
}

}  // namespace marnoth
