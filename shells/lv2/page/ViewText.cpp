#include "shells/lv2/page/ViewText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

namespace marnoth {

namespace {

constexpr char kBetween = '\t';  ///< of a folder: its filter and its path

template <class Number>
void append(std::string& text, Number number) {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(" ").append(digits.data(), end);
}

/// A line of a word and numbers.
template <class... Numbers>
std::string line(std::string_view word, Numbers... numbers) {
    std::string text(word);
    (append(text, numbers), ...);
    return text + '\n';
}

std::string line(std::string_view word, const std::vector<EventSelectionInfo>& grains) {
    if (grains.empty() || grains.size() > kMostKeptGrains) return {};
    std::string text(word);
    for (const EventSelectionInfo& grain : grains) {
        append(text, grain.track);
        append(text, grain.grain);
    }
    return text + '\n';
}

bool isPlain(const std::string& text) {
    return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

/// Takes what stands before the first `end`, which goes too; all where there is none.
std::string_view takeUpTo(char end, std::string_view& text) {
    const std::string_view taken = text.substr(0, text.find(end));
    text.remove_prefix(std::min(taken.size() + 1, text.size()));
    return taken;
}

/// Takes a number that is followed by a blank or by nothing; false, with `number` as it was, on anything
/// else.
template <class Number>
bool take(std::string_view& text, Number& number) {
    const std::string_view word = takeUpTo(' ', text);
    Number read{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), read);
    if (error != std::errc() || end != word.data() + word.size()) return false;
    number = read;
    return true;
}

std::vector<EventSelectionInfo> grainsIn(std::string_view text) {
    std::vector<EventSelectionInfo> grains;
    EventSelectionInfo grain;
    while (grains.size() < kMostKeptGrains && take(text, grain.track) && take(text, grain.grain))
        grains.push_back(grain);
    return grains;
}

Point pointIn(std::string_view text) {
    Point point;
    if (take(text, point.x)) take(text, point.y);
    return point;
}

void readFolder(std::string_view text, LeftPage& left) {
    const std::string_view filter = takeUpTo(kBetween, text);
    if (!text.empty()) left.folders[std::string(filter)] = text;
}

void readLine(std::string_view word, std::string_view rest, LeftPage& left) {
    KeptView& view = left.view;
    if (word == "pad") {
        take(rest, view.currentPad);
    } else if (word == "file") {
        take(rest, view.currentBinFile);
    } else if (word == "zoom") {
        if (take(rest, view.pixelsPerBeat)) take(rest, view.rowHeight);
    } else if (word == "snap") {
        take(rest, view.snapIndex);
    } else if (word == "keys") {
        view.showsKeyMap = true;
    } else if (word == "editor") {
        view.editorPosition = pointIn(rest);
    } else if (word == "bin") {
        view.binPosition = pointIn(rest);
    } else if (word == "grains") {
        view.selection = grainsIn(rest);
    } else if (word == "file-grains") {
        view.binSelection = grainsIn(rest);
    } else if (word == "folder") {
        readFolder(rest, left);
    }
}

}  // namespace

std::string textOf(const LeftPage& left) {
    const KeptView& view = left.view;
    std::string text = line("pad", view.currentPad) + line("file", view.currentBinFile) +
                       line("zoom", view.pixelsPerBeat, view.rowHeight) + line("snap", view.snapIndex) +
                       line("editor", view.editorPosition.x, view.editorPosition.y) +
                       line("bin", view.binPosition.x, view.binPosition.y) + line("grains", view.selection) +
                       line("file-grains", view.binSelection);
    if (view.showsKeyMap) text += line("keys");
    for (const auto& [filter, folder] : left.folders)
        if (!folder.empty() && isPlain(filter) && isPlain(folder))
            text.append("folder ").append(filter).append(1, kBetween).append(folder).append("\n");
    return text;
}

LeftPage leftPageIn(std::string_view text) {
    LeftPage left;
    while (!text.empty()) {
        std::string_view rest = takeUpTo('\n', text);
        const std::string_view word = takeUpTo(' ', rest);
        readLine(word, rest, left);
    }
    return left;
}

}  // namespace marnoth
