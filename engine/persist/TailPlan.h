#pragma once

#include <cstdint>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/model/GrooveEvent.h"

namespace marnoth {

/// The tails of all grains of a project: noted grain by grain, then built together, on several threads where
/// there is enough to do. Grains of one place and length share their tail.
///
/// For grains that nobody else can see yet; they stay where they are until `build` is through.
class TailPlan {
public:
    /// Notes that `grain`, which has its sample and length, needs its tail. A grain of 0 frames needs none.
    void add(CGrooveEvent& grain);
    /// Frames of all tails that are to be built.
    std::int64_t frames() const { return frames_; }
    /// Gives every noted grain its tail. `E_OUTOFMEMORY` or `S_OK`.
    HRESULT build();

private:
    using Place = std::tuple<const CWaveMem*, std::int64_t, std::int64_t>;

    std::map<Place, const CGrooveEvent*> builders_;
    std::vector<CGrooveEvent*> distinct_;
    std::vector<std::pair<CGrooveEvent*, const CGrooveEvent*>> sharers_;  ///< and whose tail they take
    std::int64_t frames_ = 0;
};

}  // namespace marnoth
