#include "engine/persist/TailPlan.h"

#include <algorithm>
#include <new>

#include "platform/system/Overflow.h"
#include "platform/system/Parallel.h"

namespace marnoth {
namespace {

/// Frames of tails that are worth starting threads for.
constexpr std::int64_t kTailsWorthThreads = 1 << 16;

HRESULT buildTail(CGrooveEvent& grain) {
    try {
        return grain.BuildTail();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace

void TailPlan::add(CGrooveEvent& grain) {
    if (grain.lengthSamples < 1) return;
    const auto [place, isNew] =
        builders_.try_emplace({grain.sample.get(), grain.sampleOffset, grain.lengthSamples}, &grain);
    if (isNew) {
        distinct_.push_back(&grain);
        frames_ = plus(frames_, times(grain.lengthSamples, 2));
    } else {
        sharers_.emplace_back(&grain, place->second);
    }
}

HRESULT TailPlan::build() {
    std::vector<HRESULT> results(distinct_.size(), S_OK);
    const auto buildAt = [&](std::size_t i) { results[i] = buildTail(*distinct_[i]); };
    if (frames_ >= kTailsWorthThreads) {
        forEachInParallel(distinct_.size(), buildAt);
    } else {
        for (std::size_t i = 0; i < distinct_.size(); ++i) buildAt(i);
    }
    for (const auto& [grain, builder] : sharers_) {
        grain->tailWave = builder->tailWave;
        grain->tailLengthSamples = builder->tailLengthSamples;
    }
    const auto failed = std::find_if(results.begin(), results.end(), [](HRESULT r) { return FAILED(r); });
    return failed != results.end() ? *failed : S_OK;
}

}  // namespace marnoth
