#pragma once

#include <cstdint>
#include <string>

#include "sample/AcidWave.h"
#include "seam/IGrooveSampler.h"
#include "seam/LoadFault.h"

namespace marnoth {

/// WAV files by their names, which are in UTF-8. The instrument gets a file's full path, by which it knows
/// it, and its name without folders as the title. What fails throws a `FileFailure` with the file and the
/// reason.

/// Opens a file and reads what it tells of itself, whether the instrument takes it or not. Damaged and
/// unfinished audio is taken as far as it goes.
void openLoopFile(CAcidWave& wave, const std::string& file);

/// Puts a file onto a pad, 0 to 15, in place of what lies there. Gives what is damaged in it.
LoadFault loadLoopFile(IGrooveSampler& sampler, std::int32_t pad, const std::string& file);

/// Whether an instrument takes damaged and unfinished audio as far as it goes; it doesn't at first. The
/// result is the instrument's, or that it doesn't know of such an option.
HRESULT setLenientFiles(IUnknown& instrument, bool on);

}  // namespace marnoth
