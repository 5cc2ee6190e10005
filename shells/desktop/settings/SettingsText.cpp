#include "shells/desktop/settings/SettingsText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <optional>
#include <utility>

#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// One name of the file.
struct Entry {
    std::string name;
    std::function<std::string(const DesktopSettings&)> get;
    /// False, with nothing set, for what is no value of it.
    std::function<bool(DesktopSettings&, const std::string&)> set;
};

template <class Number>
std::string inDigits(Number number) {
    std::array<char, 64> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return {digits.data(), result.ptr};
}

template <class Number>
Entry number(std::string name, Number DesktopSettings::*member) {
    return {std::move(name), [member](const DesktopSettings& settings) { return inDigits(settings.*member); },
            [member](DesktopSettings& settings, const std::string& text) {
                Number value{};
                const char* const end = text.data() + text.size();
                const auto result = std::from_chars(text.data(), end, value);
                if (result.ec != std::errc() || result.ptr != end) return false;
                settings.*member = value;
                return true;
            }};
}

Entry word(std::string name, std::string DesktopSettings::*member) {
    return {std::move(name), [member](const DesktopSettings& settings) { return settings.*member; },
            [member](DesktopSettings& settings, const std::string& text) {
                settings.*member = text;
                return true;
            }};
}

/// One of `words`, whose places are the values.
template <class Value, std::size_t kCount>
Entry choice(std::string name, Value DesktopSettings::*member, std::array<const char*, kCount> words) {
    return {std::move(name),
            [member, words](const DesktopSettings& settings) {
                return std::string(words.at(static_cast<std::size_t>(settings.*member)));
            },
            [member, words](DesktopSettings& settings, const std::string& text) {
                const auto found = std::ranges::find(words, text);
                if (found == words.end()) return false;
                settings.*member = static_cast<Value>(found - words.begin());
                return true;
            }};
}

Entry yesOrNo(std::string name, bool DesktopSettings::*member) {
    return choice(std::move(name), member, std::array{"no", "yes"});
}

Entry recentFile(std::size_t place) {
    return {"recent-" + std::to_string(place + 1),
            [place](const DesktopSettings& settings) {
                return place < settings.recent.size() ? settings.recent[place] : std::string();
            },
            [place](DesktopSettings& settings, const std::string& text) {
                settings.recent.resize(std::max(settings.recent.size(), place + 1));
                settings.recent[place] = text;
                return true;
            }};
}

const std::vector<Entry>& entries() {
    using S = DesktopSettings;
    static const std::vector<Entry> all = [] {
        std::vector<Entry> list{word("audio", &S::audio),
                                word("midi", &S::midiPort),
                                number("rate", &S::rate),
                                number("block", &S::frames),
                                number("scale", &S::scale),
                                choice("transport", &S::transport, std::array{"own", "follows", "leads"}),
                                yesOrNo("metronome", &S::metronome),
                                number("level", &S::level),
                                number("loop-bars", &S::loopBars),
                                yesOrNo("song-tempo", &S::songTempo),
                                yesOrNo("song-repeats", &S::songRepeats),
                                word("loop-folder", &S::loopFolder),
                                word("project-folder", &S::projectFolder)};
        for (std::size_t place = 0; place < S::kMostRecent; ++place) list.push_back(recentFile(place));
        return list;
    }();
    return all;
}

std::string trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == text.npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

/// Empty for a line that has none.
std::string nameIn(const std::string& line) {
    const std::size_t equals = line.find('=');
    return equals == line.npos ? std::string() : trimmed(line.substr(0, equals));
}

std::string valueIn(const std::string& line) {
    return trimmed(line.substr(line.find('=') + 1));
}

/// The last line of a name holds, as it does when it is read.
void setLine(std::vector<std::string>& lines, const std::string& name, const std::string& value) {
    std::string line = name + " = " + value;
    const auto found = std::find_if(lines.rbegin(), lines.rend(),
                                    [&](const std::string& old) { return nameIn(old) == name; });
    if (found != lines.rend())
        *found = std::move(line);
    else
        lines.push_back(std::move(line));
}

}  // namespace

bool isText(std::string_view text) {
    const auto isStray = [](char letter) {
        return static_cast<unsigned char>(letter) < ' ' && letter != '\n' && letter != '\r' && letter != '\t';
    };
    return isUtf8(text) && std::ranges::none_of(text, isStray);
}

ReadSettings readSettings(std::string_view text) {
    ReadSettings read;
    for (const std::string& line : linesOf(text)) {
        const std::string name = nameIn(line);
        const auto entry = std::ranges::find(entries(), name, &Entry::name);
        if (entry == entries().end()) continue;
        DesktopSettings changed = read.settings;
        const std::string value = valueIn(line);
        // What `usable` would change can't be.
        if (entry->set(changed, value) && entry->get(usable(changed)) == entry->get(changed))
            read.settings = changed;
        else
            read.notUnderstood.push_back(trimmed(line));
    }
    read.settings = usable(read.settings);
    return read;
}

std::string withSettings(std::string_view text, const DesktopSettings& former, const DesktopSettings& now) {
    std::vector<std::string> lines = linesOf(text);
    for (const Entry& entry : entries())
        if (const std::string value = entry.get(now); value != entry.get(former))
            setLine(lines, entry.name, value);
    std::string whole;
    for (const std::string& line : lines) whole += line + "\n";
    return whole;
}

}  // namespace marnoth
