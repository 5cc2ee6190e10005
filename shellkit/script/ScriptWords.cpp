#include "shellkit/script/ScriptWords.h"

#include "platform/text/Text.h"

namespace marnoth {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

bool endsWord(char c) {
    return isBlank(c) || c == '#';
}

/// Takes words off the front of a line.
class WordReader {
public:
    explicit WordReader(std::string_view line) : rest_(line) {}

    bool hasWord() {
        while (!rest_.empty() && isBlank(rest_.front())) rest_.remove_prefix(1);
        return !rest_.empty() && rest_.front() != '#';
    }

    std::string word() { return rest_.front() == '"' ? quotedWord() : plainWord(); }

private:
    std::string plainWord() {
        std::size_t length = 0;
        while (length < rest_.size() && !endsWord(rest_[length])) {
            if (rest_[length] == '"')
                throw ScriptError("a quote inside a word: put the whole word into quotes");
            ++length;
        }
        std::string word(rest_.substr(0, length));
        rest_.remove_prefix(length);
        return word;
    }

    std::string quotedWord() {
        std::string word;
        std::size_t i = 1;
        for (;; ++i) {
            if (i >= rest_.size()) throw ScriptError("the quote at the end of a word is missing");
            if (rest_[i] == '"') break;
            if (isEscape(i)) ++i;
            word += rest_[i];
        }
        rest_.remove_prefix(i + 1);
        if (!rest_.empty() && !endsWord(rest_.front()))
            throw ScriptError("a blank is missing behind a word in quotes");
        return word;
    }

    bool isEscape(std::size_t i) const {
        return rest_[i] == '\\' && i + 1 < rest_.size() && (rest_[i + 1] == '"' || rest_[i + 1] == '\\');
    }

    std::string_view rest_;
};

}  // namespace

std::vector<std::string> splitWords(std::string_view line) {
    if (line.find('\0') != line.npos) throw ScriptError("the line holds a zero byte");
    if (!isUtf8(line)) throw ScriptError("the line isn't UTF-8");
    std::vector<std::string> words;
    for (WordReader reader(line); reader.hasWord();) words.push_back(reader.word());
    return words;
}

std::string joinWords(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        if (&word != &words.front()) line += ' ';
        const bool hasBlank = word.find_first_of(" \t") != word.npos;
        line += hasBlank ? inQuotes(word) : word;
    }
    return line;
}

std::string inQuotes(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result + '"';
}

}  // namespace marnoth
