#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/com/Com.h"

namespace marnoth {

/// Whether `data` has a list of files. `data` may be null.
bool hasFiles(IDataObject* data);

/// The list of files of `data`, which may be null: full paths of any length. Nothing when it can't be had.
std::optional<std::vector<std::wstring>> readDroppedFiles(IDataObject* data);

/// The names in a block as the system hands lists of files over: wide ones, or ones in the code page. What
/// the block ends within is taken as far as it goes.
std::vector<std::wstring> parseFileList(std::span<const std::byte> block);

}  // namespace marnoth
