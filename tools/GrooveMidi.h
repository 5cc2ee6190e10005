#pragma once

#include <filesystem>

namespace marnoth::tools {

/// Writes the demo's part as a standard MIDI file: sixteen bars that switch the loops of pads 1 to 4 on and
/// off. The pads are one-shot, so a note starts a loop and the next note on the same key ends it. Throws
/// `std::runtime_error` when the file can't be written.
void writeGroove(const std::filesystem::path& path);

}  // namespace marnoth::tools
