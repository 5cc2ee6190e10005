#pragma once

namespace marnoth {

/// The key that makes a character on an American keyboard, in the codes of `PageKey`, without its modifiers;
/// 0 for a character that has none.
int keyOfCharacter(char32_t character);

}  // namespace marnoth
