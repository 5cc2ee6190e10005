#include "engine/render/BlockTime.h"

#include "platform/system/Overflow.h"

namespace marnoth {

template <class Ask>
std::int64_t BlockTime::Memo::answer(std::int64_t question, Ask ask) {
    // Multiplicative hashing: the golden ratio spreads times that differ by a constant.
    const std::uint64_t spread = static_cast<std::uint64_t>(question) * 0x9E3779B97F4A7C15u;
    Entry& entry = entries_[static_cast<std::size_t>(spread >> (64 - kBits))];
    if (entry.block != block_ || entry.question != question) entry = {question, ask(question), block_};
    return entry.answer;
}

void BlockTime::begin(std::int64_t start, std::int32_t frames) {
    samples_.forget();
    ticks_.forget();
    startSamples_ = start;
    startTicks_ = toTicks(start);
    lengthTicks_ = minus(toTicks(plus(start, frames)), startTicks_);
}

std::int64_t BlockTime::toSamples(std::int64_t ticks16) {
    return samples_.answer(ticks16, [this](std::int64_t ticks) { return context_.TicksToSamples(ticks); });
}

std::int64_t BlockTime::toTicks(std::int64_t samples) {
    return ticks_.answer(samples, [this](std::int64_t frames) { return context_.SamplesToTicks(frames); });
}

}  // namespace marnoth
