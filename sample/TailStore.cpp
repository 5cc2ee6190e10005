#include "sample/TailStore.h"

#include <utility>

namespace marnoth {
namespace {

/// Every tail begins where vectors may.
constexpr std::int64_t kValuesAtOnce = 16;
constexpr auto kRunValues = TailStore::kRunBytes / std::int64_t{sizeof(float)};

}  // namespace

TailStore::TailStore(std::vector<std::int64_t> values) : room_(std::move(values)) {
    for (std::int64_t& room : room_) room = (room + kValuesAtOnce - 1) / kValuesAtOnce * kValuesAtOnce;
}

Samples TailStore::next() {
    if (taken_ == room_.size()) return nullptr;
    if (taken_ == runEnd_) beginRun();
    float* const tail = next_;
    const std::int64_t room = room_[taken_++];
    if (!tail) return nullptr;
    next_ += room;
    return {tail, SamplesRelease(run_)};
}

/// A run of whole tails: the first that come to `kRunBytes`, and of those that exceed it one at a time.
void TailStore::beginRun() {
    std::int64_t values = room_[runEnd_++];
    while (runEnd_ < room_.size() && values < kRunValues && room_[runEnd_] <= kRunValues)
        values += room_[runEnd_++];
    const std::size_t bytes = static_cast<std::size_t>(values) * sizeof(float);
    run_ = std::make_shared<const FreshMemory>(takeZeros(bytes));
    next_ = reinterpret_cast<float*>(run_->get());
}

}  // namespace marnoth
