#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace marnoth {

/// The JSON of `marnoth info`: its fields keep the order in which they are told.
using Json = nlohmann::ordered_json;

/// As text. What isn't UTF-8 shows as replacement characters.
std::string printed(const Json& json);

}  // namespace marnoth
