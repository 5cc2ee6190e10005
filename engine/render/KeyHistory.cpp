#include "engine/render/KeyHistory.h"

#include <algorithm>
#include <cstdlib>

#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

/// By so much a place may be off where a standing clock changes its tempo.
constexpr std::int64_t kTick16 = 1 << 16;

}  // namespace

void KeyHistory::beginBlock(std::int64_t start, std::int64_t end) {
    const std::int64_t apart = minus(start, end_);
    if (apart > kTick16 || apart < -kTick16) forget();
    start_ = start;
    end_ = end;
    const std::int32_t key = ask(start);
    if (count_ > 0 && answers_[count_ - 1].key == key) return;
    if (count_ == kRoom) std::move(answers_.begin() + 1, answers_.end(), answers_.begin());
    count_ = std::min(count_ + 1, kRoom);
    answers_[count_ - 1] = {start, key};
}

std::int32_t KeyHistory::at(std::int64_t ticks16) const {
    if (ticks16 >= start_ || count_ == 0 || ticks16 < answers_[0].from) return ask(ticks16);
    std::size_t known = count_ - 1;
    while (answers_[known].from > ticks16) --known;
    const bool isPlanned =
        stillHolds(answers_[known]) && (known + 1 == count_ || stillHolds(answers_[known + 1]));
    return isPlanned ? ask(ticks16) : answers_[known].key;
}

std::int32_t KeyHistory::ask(std::int64_t ticks16) const {
    return static_cast<std::int32_t>(context_.GetKeyAtTime(ticks16));
}

}  // namespace marnoth
