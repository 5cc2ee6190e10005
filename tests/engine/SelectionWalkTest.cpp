#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "engine/render/SelectGrains.h"
#include "platform/system/Overflow.h"
#include "support/EngineHost.h"
#include "support/Sparingly.h"

namespace marnoth::test::selection_walk_test {
namespace {

constexpr std::int64_t kBeat = kTicks16PerBeat;

/// The rule in its plainest form: all grains in their order, up to the first that starts behind the range.
std::vector<StreamEventInfo> plainWalk(const CGrooveTrack& track, std::int64_t origin, TimeRange range,
                                       std::int64_t cycle, CPziSynthContext& context) {
    const std::uint32_t kind = track.synced ? kTicks16 : kSamples;
    const std::int64_t base = plus(times(cycle, track.GetLength(kind)), origin);
    std::vector<StreamEventInfo> found;
    for (std::int32_t i = 0; i < track.GetSize(); ++i) {
        const CGrooveEvent& grain = track.GetAt(i);
        const std::int64_t start = grain.GetStart(kind);
        if (start > range.to) break;
        std::int64_t end = grain.GetEnd(kind, 1);
        if (kind == kTicks16 && (!grain.tempoLocked || (grain.tailOn && grain.tailWave)))
            end = context.SamplesToTicks(context.TicksToSamples(start) + grain.GetLength(kSamples, 1));
        if (end <= range.from || start >= range.to) continue;
        if (found.size() == kStreamEvents) continue;
        found.push_back({&grain, start + base, end + base, std::max(range.from, start) + base,
                         std::min(end, range.to) + base});
    }
    return found;
}

/// Four grains to the beat with what may be different about them: tails, files without beats, overlaps, gaps,
/// places in samples that don't follow those in ticks.
CGrooveTrack randomTrack(std::mt19937& random, std::int32_t size, bool inOrder) {
    const RefPtr<CWaveMem> tail = CWaveMem::make();
    const auto below = [&](std::int64_t limit) {
        return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(limit));
    };
    CGrooveTrack track;
    const std::int64_t beats = size / 4 + 1;
    const unsigned habit = random() % 4;
    for (std::int32_t i = 0; i < size; ++i) {
        CGrooveEvent grain;
        const std::int64_t place = inOrder ? i : below(size);
        grain.startSamples = place * 5500 + (habit == 1 ? below(20000) : 0);
        grain.lengthTicks = below(4) == 0 ? 0 : kBeat / 4 + below(kBeat);
        grain.lengthSamples = 1 + below(habit == 2 && below(50) == 0 ? 400000 : 8000);
        grain.tempoLocked = habit == 0 || below(3) != 0;
        grain.tailLengthSamples = 2 * grain.lengthSamples;
        grain.tailOn = below(5) == 0;
        if (below(2)) grain.tailWave = tail;
        track.AppendGrain(grain, place * kBeat / 4 + (habit == 3 ? below(kBeat) : 0), false, 44100);
        // Placing has made the place in samples that of the loop.
        track.ChangeAt(track.GetSize() - 1,
                       [&](CGrooveEvent& placed) { placed.startSamples = grain.startSamples; });
    }
    track.lengthTicks = beats * kBeat;
    track.lengthSamples = beats * 22000;
    track.looping = below(2) != 0;
    track.synced = below(2) != 0;
    return track;
}

void expectEqual(const StreamEvents& events, const std::vector<StreamEventInfo>& plain) {
    ASSERT_EQ(events.GetSize(), static_cast<std::int32_t>(plain.size()));
    for (std::int32_t i = 0; i < events.GetSize(); ++i) {
        const StreamEventInfo& expected = plain[static_cast<std::size_t>(i)];
        ASSERT_EQ(events[i].grain, expected.grain);
        ASSERT_EQ(events[i].start, expected.start);
        ASSERT_EQ(events[i].end, expected.end);
        ASSERT_EQ(events[i].clipStart, expected.clipStart);
        ASSERT_EQ(events[i].clipEnd, expected.clipEnd);
    }
}

TEST(SelectionWalk, PassingOverWhatCannotSoundGivesWhatTheWholeWalkGives) {
    std::mt19937 random(22);
    std::int64_t sounding = 0;
    for (int run = 0; run < 1500; run += kSparingly) {
        const std::int32_t sizes[] = {1, 3, 16, 17, 60, 300, 2000};
        const CGrooveTrack track = randomTrack(random, sizes[random() % 7], random() % 2 != 0);
        FakeSynthContext context;
        const double tempos[] = {1.0, 33.3, 60.0, 120.0, 127.3, 240.0, 999.0};
        context.tempo = tempos[random() % 7];
        BlockTime time(context);
        const std::int64_t length = track.synced ? track.lengthTicks : track.lengthSamples;
        const std::int64_t block = track.synced ? context.SamplesToTicks(512) : 512;
        for (int i = 0; i < 20; ++i) {
            time.begin(0, 512);
            const auto from = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(length));
            const TimeRange range{from, from + 1 + block * static_cast<std::int64_t>(random() % 20)};
            StreamEvents events(kStreamEvents);
            const std::int32_t found = collectCycle(events, track, 7, range, 3, time);
            const auto plain = plainWalk(track, 7, range, 3, context);
            ASSERT_NO_FATAL_FAILURE(expectEqual(events, plain)) << "run " << run << ", from " << from;
            ASSERT_EQ(found, plain.empty() ? 0 : 1);
            sounding += static_cast<std::int64_t>(plain.size());
        }
    }
    EXPECT_GT(sounding, 10000 / kSparingly) << "most ranges have grains to find";
}

}  // namespace
}  // namespace marnoth::test::selection_walk_test
