#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shells/cli/PadFile.h"
#include "shells/cli/RenderOutputs.h"
#include "shells/cli/Streams.h"

namespace marnoth {

/// What `marnoth render` was asked for. File names are in UTF-8.
struct RenderOptions {
    std::string project;   ///< loaded before the pads' files; empty for none
    bool recover = false;  ///< the project's backup is taken where it can't be loaded
    std::vector<PadFile> pads;
    std::string midi;                   ///< empty: every loaded pad is held from beat 0 to the end
    std::optional<double> tempo;        ///< in place of the MIDI file's
    std::optional<double> beats;        ///< in place of the length of the MIDI file, or of 16
    std::optional<std::uint32_t> rate;  ///< in place of that of the loops
    std::int32_t block = 1024;          ///< the audio is the same with any
    std::optional<std::uint32_t> key;   ///< 0 to 11 counted from A
    bool loop = false;                  ///< a turn is rendered before the files begin
    bool gate = false;                  ///< pads sound while their notes are held, in place of one-shot
    FileForm form;
    std::string out;
    std::string stems;  ///< folder for a file of each pad; empty for none
    std::string save;   ///< the project is kept there after the render; empty for none
};

/// The number of a key, from `A` for 0, with `#` or `b` behind the letter. Throws `WrongUse`.
std::uint32_t readKey(std::string_view name);

/// Renders offline and prints a line about it, and one about the project that was saved; what its user should
/// know besides goes to the errors, a line each. Throws `FileFailure`, and `WrongUse` for files that clash.
void runRender(const RenderOptions& options, const Streams& streams);

}  // namespace marnoth
