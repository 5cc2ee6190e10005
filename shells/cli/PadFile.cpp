#include "shells/cli/PadFile.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <vector>

#include "seam/Limits.h"
#include "shellkit/files/Failure.h"
#include "shellkit/text/Nearest.h"
#include "shellkit/text/PlainText.h"

namespace marnoth {

namespace {

bool isNameLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
}

/// Whether `text` begins with a comma, a name of letters and "=".
bool beginsSetting(std::string_view text) {
    const auto end = std::find_if_not(text.begin() + 1, text.end(), isNameLetter);
    return text.front() == ',' && end != text.begin() + 1 && end != text.end() && *end == '=';
}

std::vector<std::string> settingNames() {
    std::vector<std::string> names;
    for (const PadSettingWord& word : padSettingWords()) names.push_back(word.name);
    return names;
}

/// Reads the text of one `--pad` from its beginning to its end.
class PadText {
public:
    explicit PadText(std::string_view text) : whole_(text), rest_(text) {}

    PadFile read() {
        PadFile file;
        file.pad = readPad() - 1;
        file.file = readFile();
        while (!rest_.empty()) readSetting(file.settings);
        if (file.file.empty() && given_.empty()) fail(kForm);
        return file;
    }

private:
    static constexpr const char* kForm = "write N=FILE.wav with a pad N from 1 to 16";

    int readPad() {
        const std::size_t equals = rest_.find('=');
        if (equals == rest_.npos) fail(kForm);
        int pad = 0;
        const char* end = rest_.data() + equals;
        const auto [stop, error] = std::from_chars(rest_.data(), end, pad);
        if (error != std::errc{} || stop != end || pad < 1 || pad > kPads) fail(kForm);
        rest_.remove_prefix(equals + 1);
        return pad;
    }

    std::string readFile() {
        if (rest_.starts_with('"')) return readQuoted();
        std::size_t length = 0;
        while (length < rest_.size() && !beginsSetting(rest_.substr(length))) ++length;
        return take(length);
    }

    std::string readQuoted() {
        const std::size_t end = rest_.find('"', 1);
        if (end == rest_.npos) fail("the quote before its file's name has no second one behind it");
        const std::string file = take(end + 1);
        if (!rest_.empty() && rest_.front() != ',') fail("write a comma behind its file's name");
        return file.substr(1, file.size() - 2);
    }

    void readSetting(PadSettings& settings) {
        rest_.remove_prefix(1);  // the comma
        const std::string setting = take(std::min(rest_.find(','), rest_.size()));
        const std::size_t equals = std::min(setting.find('='), setting.size());
        const std::string name = setting.substr(0, equals);
        const PadSettingWord& word = wordNamed(name);
        if (!given_.insert(name).second) fail(name + " is given twice");
        const std::string value = equals < setting.size() ? setting.substr(equals + 1) : "";
        if (!word.read(settings, value)) fail(name + " \"" + value + "\": write " + word.values);
    }

    const PadSettingWord& wordNamed(const std::string& name) const {
        const auto& words = padSettingWords();
        const auto word = std::find_if(words.begin(), words.end(),
                                       [&](const PadSettingWord& known) { return known.name == name; });
        if (word != words.end()) return *word;
        const std::string hint = nearestHint(name, settingNames());
        fail("a pad has no \"" + name + "\"" +
             (hint.empty() ? "; there are " + joined(settingNames(), ", ") : hint));
    }

    std::string take(std::size_t length) {
        std::string taken(rest_.substr(0, length));
        rest_.remove_prefix(length);
        return taken;
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw WrongUse("--pad \"" + std::string(whole_) + "\": " + reason);
    }

    std::string_view whole_;
    std::string_view rest_;
    std::set<std::string> given_;
};

}  // namespace

PadFile readPadFile(std::string_view text) {
    return PadText(text).read();
}

}  // namespace marnoth
