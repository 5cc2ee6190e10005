#pragma once

#include "project/Project.h"

namespace marnoth {

/// Brings into the form of a project what an engine may hold beyond it, so that a save writes nothing that a
/// load refuses: loop lengths and keys are held to their limits, waves of more than two channels keep the
/// first two, and waves at rates that the form doesn't know are converted to the nearest that it does, with
/// all frame numbers that count at those rates. Waves are shared and stay as they are: `project` gets others.
///
/// `E_FAIL` for a wave without samples, `E_OUTOFMEMORY`, or `S_OK`. May be long work: no lock may be held.
HRESULT fitToForm(Project& project);

}  // namespace marnoth
