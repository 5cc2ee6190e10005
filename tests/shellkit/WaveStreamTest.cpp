#include <gtest/gtest.h>

#include <algorithm>

#include "shellkit/media/WaveStream.h"
#include "support/WaveFile.h"

namespace marnoth::test::wave_stream_test {
namespace {

/// Keeps the first bytes that it gets, and counts the others.
class CountingBytes final : public ByteStream {
public:
    struct Seen {
        Bytes front = Bytes(128);
        std::int64_t size = 0;
    };

    explicit CountingBytes(Seen& seen) : seen_(seen) {}

    std::int64_t read(void*, std::int64_t) override { return -1; }
    bool write(const void* buffer, std::int64_t bytes) override {
        const auto* from = static_cast<const std::uint8_t*>(buffer);
        const std::int64_t kept = std::clamp<std::int64_t>(std::ssize(seen_.front) - position_, 0, bytes);
        std::copy(from, from + kept, seen_.front.begin() + std::min(position_, std::int64_t{128}));
        position_ += bytes;
        seen_.size = std::max(seen_.size, position_);
        return true;
    }
    bool seek(std::int64_t offset) override {
        position_ = offset;
        return true;
    }
    std::int64_t position() const override { return position_; }
    std::optional<std::int64_t> size() override { return seen_.size; }
    bool sync() override { return true; }
    bool close() override { return true; }

private:
    Seen& seen_;
    std::int64_t position_ = 0;
};

template <class T>
T at(const Bytes& bytes, std::size_t offset) {
    T value{};
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

TEST(WaveStream, WhatIsExpectedToPassFourGigabytesHasSizesOf64Bits) {
    // 2^29 stereo frames of 8 bytes are 4 GiB; ten more frames pass that by 80 bytes.
    constexpr std::int64_t kFrames = (std::int64_t{1} << 29) + 10;
    CountingBytes::Seen seen;
    WaveStream stream(std::make_unique<CountingBytes>(seen),
                      {.rate = 96000, .channels = 2, .expectedFrames = kFrames});
    ASSERT_TRUE(stream.begin());
    const std::vector<float> million(2 << 20);
    for (std::int64_t done = 0; done < kFrames;) {
        const std::int64_t now = std::min(kFrames - done, std::int64_t{1} << 20);
        ASSERT_TRUE(stream.fits(now));
        ASSERT_TRUE(stream.write(std::span(million).first(static_cast<std::size_t>(2 * now))));
        done += now;
    }
    ASSERT_TRUE(stream.finish());

    constexpr std::uint64_t kData = (std::uint64_t{1} << 32) + 80;
    constexpr std::uint64_t kHeader = 12 + 36 + 26 + 12 + 8;
    EXPECT_EQ(seen.size, static_cast<std::int64_t>(kHeader + kData));
    EXPECT_EQ(std::string(seen.front.begin(), seen.front.begin() + 4), "RF64");
    EXPECT_EQ(at<std::uint64_t>(seen.front, 20), kHeader + kData - 8);
    EXPECT_EQ(at<std::uint64_t>(seen.front, 28), kData);
    EXPECT_EQ(at<std::uint64_t>(seen.front, 36), static_cast<std::uint64_t>(kFrames));
}

TEST(WaveStream, WhatTurnsOutShorterThanExpectedTellsItsOwnSizes) {
    CountingBytes::Seen seen;
    WaveStream stream(std::make_unique<CountingBytes>(seen),
                      {.rate = 96000, .channels = 2, .expectedFrames = std::int64_t{1} << 40});
    ASSERT_TRUE(stream.begin() && stream.write(std::vector<float>(6)) && stream.finish());
    EXPECT_EQ(std::string(seen.front.begin(), seen.front.begin() + 4), "RF64");
    EXPECT_EQ(at<std::uint64_t>(seen.front, 28), 24u);
    EXPECT_EQ(at<std::uint64_t>(seen.front, 36), 3u);
}

TEST(WaveStream, WithoutExpectationItEndsAtFourGigabytes) {
    CountingBytes::Seen seen;
    const WaveStream stream(std::make_unique<CountingBytes>(seen), {.rate = 96000, .channels = 2});
    EXPECT_TRUE(stream.fits(1000));
    EXPECT_FALSE(stream.fits(std::int64_t{1} << 29));
}

TEST(WaveStream, AnOddNumberOfBytesIsPadded) {
    CountingBytes::Seen seen;
    WaveStream stream(
        std::make_unique<CountingBytes>(seen),
        {.rate = 8000, .channels = 1, .encoding = {.format = SampleFormat::integer24, .dither = false}});
    ASSERT_TRUE(stream.begin() && stream.write(std::vector<float>{0.5f, -0.5f, 0.25f}) && stream.finish());
    // 12 bytes of form, 24 of format, 8 of the data's head, then 0x400000, 0xC00000 and 0x200000.
    EXPECT_EQ(seen.size, 12 + 24 + 8 + 9 + 1);
    EXPECT_EQ(at<std::uint32_t>(seen.front, 40), 9u);
    EXPECT_EQ(Bytes(seen.front.begin() + 44, seen.front.begin() + 54),
              (Bytes{0, 0, 0x40, 0, 0, 0xC0, 0, 0, 0x20, 0}));
}

}  // namespace
}  // namespace marnoth::test::wave_stream_test
