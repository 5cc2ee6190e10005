#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "sample/PeakTable.h"

/// The peak table beside its rule for one frame at a time, for waves that come in pieces made at random.
namespace marnoth::test::peak_table_test {
namespace {

/// Each frame is folded into the running extremes, which are stored at its entry; when the entry is another
/// than the frame's before, they begin anew behind it.
std::vector<float> byFrames(const SourceWave& wave, std::int32_t points) {
    const std::size_t width = 2 * static_cast<std::size_t>(wave.channels);
    std::vector<float> table(static_cast<std::size_t>(points) * width, 0.0f);
    const double step = 1.0 / (static_cast<double>(wave.frames) / points);
    float low[2] = {1, 1}, high[2] = {-1, -1};
    std::int64_t last = 0;
    for (std::int64_t i = 0; i < wave.frames; ++i) {
        const auto p = static_cast<std::int64_t>(static_cast<double>(i) * step);
        if (p >= points) break;
        for (int c = 0; c < (wave.channels == 2 ? 2 : 1); ++c) {
            const float value = wave.samples[i * wave.channels + c];
            low[c] = std::min(low[c], value);
            high[c] = std::max(high[c], value);
            table[static_cast<std::size_t>(p) * width + static_cast<std::size_t>(2 * c)] = low[c];
            table[static_cast<std::size_t>(p) * width + static_cast<std::size_t>(2 * c) + 1] = high[c];
        }
        if (p == last) continue;
        low[0] = low[1] = 1;
        high[0] = high[1] = -1;
        last = p;
    }
    return table;
}

TEST(PeakTable, WavesThatComeInPiecesHaveTheTableOfTheRule) {
    std::mt19937 random(60);
    std::uniform_real_distribution<float> level(-1.2f, 1.2f);
    for (int turn = 0; turn < 400; ++turn) {
        const int channels = 1 + turn % 3;
        const auto frames = static_cast<std::int64_t>(1 + random() % (turn % 2 ? 100 : 5000));
        const auto points = static_cast<std::int32_t>(1 + random() % 544);
        std::vector<float> samples(static_cast<std::size_t>(frames * channels));
        for (float& sample : samples) sample = level(random);
        const SourceWave wave{samples.data(), frames, channels};
        std::vector<float> table(static_cast<std::size_t>(points * channels) * 2, 0.0f);
        PeakFolder folder(frames, channels, points, table.data());
        const std::uint32_t most = turn % 5 == 0 ? 3 : 400;
        for (std::int64_t at = 0, count = 0; at < frames; at += count) {
            count = std::min<std::int64_t>(frames - at, random() % (most + 1));
            folder.fold(samples.data() + at * channels, count);
        }
        ASSERT_EQ(table, byFrames(wave, points))
            << frames << " frames, " << points << " points, " << channels;
    }
}

TEST(PeakTable, NothingIsStoredForNoFramesAndNoPoints) {
    const float sample = 0.5f;
    float table[4] = {0, 0, 0, 0};
    PeakFolder(0, 1, 2, table).fold(&sample, 1);
    PeakFolder(1, 1, 0, table).fold(&sample, 1);
    for (float value : table) EXPECT_EQ(value, 0.0f);
}

}  // namespace
}  // namespace marnoth::test::peak_table_test
