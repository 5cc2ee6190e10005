#include "shellkit/media/FloatSpool.h"

#include <cstdint>
#include <vector>

namespace marnoth {

namespace {

constexpr std::size_t kSamplesAtOnce = 0x4000;

}  // namespace

bool FloatSpool::write(std::span<const float> samples) {
    return bytes_->write(samples.data(), static_cast<std::int64_t>(samples.size_bytes()));
}

bool FloatSpool::passOn(const std::function<void(std::span<const float>)>& taker) {
    if (!bytes_->seek(0)) return false;
    std::vector<float> samples(kSamplesAtOnce);
    constexpr std::int64_t kBytes = kSamplesAtOnce * sizeof(float);
    std::int64_t got = 0;
    while ((got = bytes_->read(samples.data(), kBytes)) > 0)
        taker(std::span(samples).first(static_cast<std::size_t>(got) / sizeof(float)));
    return got == 0;
}

}  // namespace marnoth
