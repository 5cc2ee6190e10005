#pragma once

#include <filesystem>

#include "tools/Loop.h"

namespace marnoth::tools {

enum class SampleKind { pcm16, pcm24, float32 };

/// Writes a loop as a WAV file with its title, its `acid` data and, where it has them, its markers. Throws
/// `std::runtime_error` when the file can't be written.
void writeLoop(const Loop& loop, SampleKind kind, const std::filesystem::path& path);

}  // namespace marnoth::tools
