#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace marnoth {

/// A value of the JSON of `marnoth info`: nothing (null), a number, a word, a list or an object. Fields keep
/// the order in which they are told. Taking one apart needs no memory.
class Json {
public:
    struct Field;

    Json() = default;
    Json(bool value) : text_(value ? "true" : "false") {}
    Json(std::integral auto value) : text_(std::to_string(value)) {}
    /// What is no number, or is infinite, is null.
    Json(double value);
    /// UTF-8. A byte that isn't shows as a replacement character.
    Json(const std::string& words);
    Json(const char* words) : Json(std::string(words)) {}
    /// A list.
    Json(const std::vector<std::string>& items);
    /// An object.
    Json(std::initializer_list<Field> fields);

    static Json array();
    static Json object();

    /// The field of an object; null at first.
    Json& operator[](const std::string& name);
    /// At the end of a list.
    void push_back(Json item);

    /// Two spaces for each step in, `depth` steps at first.
    std::string text(int depth = 0) const;

private:
    enum class Kind { plain, list, object };

    Kind kind_ = Kind::plain;
    std::string text_ = "null";       ///< of what is plain, as it is printed
    std::vector<std::string> names_;  ///< of the items of an object, index for index
    std::vector<Json> items_;
};

struct Json::Field {
    std::string name;
    Json value;
};

/// As text that ends with its line.
std::string printed(const Json& json);

}  // namespace marnoth
