#include "shells/desktop/playing/PadKeys.h"

#include <string_view>
#include <utility>

namespace marnoth {

namespace {

constexpr std::string_view kKeysOfPads = "1234QWERASDFZXCV";
constexpr std::int32_t kHighestNote = 127;

}  // namespace

std::optional<int> PadKeys::padOf(int key) {
    if (key <= 0 || key > 0x7F) return {};
    const std::size_t at = kKeysOfPads.find(static_cast<char>(key));
    return at == kKeysOfPads.npos ? std::nullopt : std::optional(static_cast<int>(at));
}

std::optional<PadKeys::Note> PadKeys::press(int key, IGrooveSampler& sampler) {
    const std::optional<int> pad = padOf(key);
    if (!pad || held_[static_cast<std::size_t>(*pad)]) return {};
    KeyMapRecord entry{};
    entry.pad = *pad;
    entry.rootKey = -1;
    if (FAILED(sampler.GetKeyMapEntry(&entry)) || entry.rootKey < 0 || entry.rootKey > kHighestNote)
        return {};
    const auto note = static_cast<std::uint8_t>(entry.rootKey);
    held_[static_cast<std::size_t>(*pad)] = note;
    return Note{note, true};
}

std::optional<PadKeys::Note> PadKeys::release(int key) {
    const std::optional<int> pad = padOf(key);
    if (!pad) return {};
    const std::optional<std::uint8_t> note = std::exchange(held_[static_cast<std::size_t>(*pad)], {});
    return note ? std::optional(Note{*note, false}) : std::nullopt;
}

}  // namespace marnoth
