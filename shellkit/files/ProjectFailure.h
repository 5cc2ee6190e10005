#pragma once

#include <string>

#include "platform/com/Com.h"

namespace marnoth {

/// In words why a file isn't read as a project: `result` is what the reader gave. Looks into the file itself,
/// since the codes alone don't tell.
std::string whyProjectNotRead(const std::string& file, HRESULT result);

}  // namespace marnoth
