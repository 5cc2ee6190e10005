#pragma once

#include <cstdint>
#include <string>

#include "sample/AcidWave.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {

/// WAV files by their names, which are in UTF-8. The instrument gets a file's full path, by which it knows
/// it, and its name without folders as the title. What fails throws a `FileFailure` with the file and the
/// reason.

/// Opens a file and reads what it tells of itself, whether the instrument takes it or not.
void openLoopFile(CAcidWave& wave, const std::string& file);

/// Puts a file onto a pad, 0 to 15, in place of what lies there.
void loadLoopFile(IGrooveSampler& sampler, std::int32_t pad, const std::string& file);

}  // namespace marnoth
