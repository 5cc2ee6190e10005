#pragma once

#include <cstdint>

#include "engine/model/GrainList.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {

/// Whether the entries of a list tell which grains play their tail.
enum class TailFlags { told, leftOut };

/// Lists grains for an editor in one block, which the caller frees with `CoTaskMemFree`: an entry for each,
/// and behind the entries the peak tables that they are drawn from, each distinct table once. So the block
/// stays good whatever becomes of the grains. `*list` and `*count` come as null and 0 and stay that for an
/// empty list. `E_OUTOFMEMORY` or `S_OK`. No lock may be held for it: the list may be long.
HRESULT listGrains(const GrainList& grains, TailFlags tails, GrainListEntry** list, std::int32_t* count);

}  // namespace marnoth
