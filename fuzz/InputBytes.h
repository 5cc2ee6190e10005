#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

namespace marnoth::fuzz {

/// An input that is taken piece by piece. Behind its end everything is zero.
class InputBytes {
public:
    explicit InputBytes(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool isEmpty() const { return bytes_.empty(); }
    /// As many of so many as there are.
    std::span<const std::uint8_t> take(std::size_t count) {
        const auto taken = bytes_.first(std::min(count, bytes_.size()));
        bytes_ = bytes_.subspan(taken.size());
        return taken;
    }
    template <class T>
    T number() {
        T value{};
        const auto taken = take(sizeof value);
        if (!taken.empty()) std::memcpy(&value, taken.data(), taken.size());
        return value;
    }
    std::uint8_t byte() { return number<std::uint8_t>(); }

private:
    std::span<const std::uint8_t> bytes_;
};

}  // namespace marnoth::fuzz
