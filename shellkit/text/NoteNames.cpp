#include "shellkit/text/NoteNames.h"

#include <array>

#include "editor/texts/RootScale.h"
#include "editor/texts/TextForms.h"

namespace marnoth {

namespace {

constexpr int kSemitones = 12;
constexpr int kAAboveC = 9;  ///< semitones

}  // namespace

std::string keyName(std::int32_t key) {
    const bool isKey = key >= 0 && key < kSemitones;
    return isKey ? FormatNoteName((key + kAAboveC) % kSemitones, false) : std::to_string(key);
}

std::string rootName(std::int32_t root) {
    const bool isNote = root >= 0 && root < kRootNotes;
    return isNote ? keyName(noteOfRoot(root, RootScale::ofLoops)) : std::to_string(root);
}

std::optional<std::uint32_t> keyNamed(std::string_view name) {
    // Semitones above A of the letters from A on.
    constexpr std::array<int, 7> kLetters{0, 2, 3, 5, 7, 8, 10};
    const char letter = name.empty() ? ' ' : static_cast<char>(name[0] & ~0x20);
    const std::string_view sign = name.empty() ? name : name.substr(1);
    if (letter < 'A' || letter > 'G' || (!sign.empty() && sign != "#" && sign != "b")) return {};
    const int step = sign == "#" ? 1 : sign == "b" ? kSemitones - 1 : 0;
    return static_cast<std::uint32_t>((kLetters[static_cast<std::size_t>(letter - 'A')] + step) % kSemitones);
}

std::string noteName(std::int32_t note) {
    const std::string name = FormatNoteName(note, true);
    return name.empty() ? std::to_string(note) : name;
}

}  // namespace marnoth
