#include "shells/cli/InfoJson.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// Numbers from here on are told with an exponent, and those below the other.
constexpr double kLarge = 1e15;
constexpr double kSmall = 1e-4;

/// The fewest digits that give the number again; a whole one shows that it needn't have been.
std::string jsonNumber(double value) {
    if (!std::isfinite(value)) return "null";
    const double size = std::abs(value);
    const bool isFixed = size == 0 || (size >= kSmall && size < kLarge);
    std::array<char, 40> buffer{};
    const auto form = isFixed ? std::chars_format::fixed : std::chars_format::scientific;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, form).ptr;
    const std::string text(buffer.data(), end);
    return isFixed && text.find('.') == text.npos ? text + ".0" : text;
}

std::string escapedInJson(char letter) {
    switch (letter) {
        case '"':
            return "\\\"";
        case '\\':
            return "\\\\";
        case '\b':
            return "\\b";
        case '\f':
            return "\\f";
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            break;
    }
    if (static_cast<unsigned char>(letter) >= 0x20) return {letter};
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(letter));
    return code.data();
}

std::string inJsonQuotes(const std::string& words) {
    std::string text = "\"";
    for (const char letter : utf8FromWide(wideFromUtf8(words))) text += escapedInJson(letter);
    return text + '"';
}

}  // namespace

Json::Json(double value) : text_(jsonNumber(value)) {}

Json::Json(const std::string& words) : text_(inJsonQuotes(words)) {}

Json::Json(const std::vector<std::string>& items) : kind_(Kind::list) {
    for (const std::string& item : items) push_back(item);
}

Json::Json(std::initializer_list<Field> fields) : kind_(Kind::object) {
    for (const Field& field : fields) (*this)[field.name] = field.value;
}

Json Json::array() {
    return std::vector<std::string>();
}

Json Json::object() {
    return std::initializer_list<Field>();
}

Json& Json::operator[](const std::string& name) {
    const auto found = std::find(names_.begin(), names_.end(), name);
    if (found != names_.end()) return items_[static_cast<std::size_t>(found - names_.begin())];
    names_.push_back(name);
    return items_.emplace_back();
}

void Json::push_back(Json item) {
    items_.push_back(std::move(item));
}

std::string Json::text(int depth) const {
    if (kind_ == Kind::plain) return text_;
    const bool isList = kind_ == Kind::list;
    const std::string edge(static_cast<std::size_t>(2 * depth), ' ');
    std::string text = isList ? "[" : "{";
    const char* before = "\n";
    for (std::size_t i = 0; i < items_.size(); ++i) {
        text +=
            before + edge + "  " + (isList ? "" : inJsonQuotes(names_[i]) + ": ") + items_[i].text(depth + 1);
        before = ",\n";
    }
    if (!items_.empty()) text += "\n" + edge;
    return text + (isList ? "]" : "}");
}

std::string printed(const Json& json) {
    return json.text() + '\n';
}

}  // namespace marnoth
