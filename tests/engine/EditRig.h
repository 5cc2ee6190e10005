#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "support/EngineHost.h"
#include "support/WaveFile.h"

namespace marnoth::test {

/// One beat in 16.16 ticks.
inline constexpr std::int64_t kBeat = 62914560;

inline double sine(std::int64_t frame, int channel) {
    return 0.5 * std::sin(0.05 * static_cast<double>(frame) + channel);
}

/// A loop at 120 beats per minute, four equal grains to the beat.
inline WaveFile loopFile(std::uint32_t beats, std::uint32_t rate = 44100) {
    WaveFile file;
    file.rate(rate).frames(static_cast<std::int64_t>(beats) * rate / 2, sine);
    return file.acid({.beats = beats});
}

/// A file without loop data, of so many seconds.
inline WaveFile plainFile(double seconds, std::uint32_t rate = 8000) {
    WaveFile file;
    return file.rate(rate).frames(std::llround(seconds * rate));
}

/// A wave of silence.
inline RefPtr<CWaveMem> wave(std::int64_t frames, std::uint32_t rate = 44100) {
    RefPtr<CWaveMem> made = CWaveMem::make();
    EXPECT_EQ(made->Create(frames, floatFormat(rate, 1)), S_OK);
    std::fill_n(made->samples.get(), frames + 1, 0.0f);
    return made;
}

/// A list of grains with the block that it came in, which holds the peaks that its entries point to.
struct ListedGrains : std::vector<GrainListEntry> {
    ListedGrains(GrainListEntry* list, std::int32_t count)
        : std::vector<GrainListEntry>(list, list + count), block(list, CoTaskMemFree) {}

    std::shared_ptr<void> block;
};

/// An engine that is edited by its control surface.
struct EditRig : EngineHost {
    using EngineHost::EngineHost;

    struct Loaded {
        HRESULT result;
        std::int32_t bin;  ///< -7 when the load left it alone
        std::uint32_t status;
    };

    Loaded load(const TempPath& path) {
        Loaded loaded{0, -7, 99};
        loaded.result = engine.LoadFileToBin("file", path.c_str(), &loaded.bin, &loaded.status);
        return loaded;
    }
    Loaded load(const WaveFile& file) { return load(file.writeTemp()); }
    Loaded lay(std::int32_t pad, const TempPath& path) {
        Loaded loaded{0, -7, 99};
        loaded.result = engine.LoadFileToPad(pad, "file", path.c_str(), &loaded.bin, &loaded.status);
        return loaded;
    }
    Loaded lay(std::int32_t pad, const WaveFile& file) { return lay(pad, file.writeTemp()); }

    ListedGrains padGrains(std::int32_t pad) {
        GrainListEntry* list = nullptr;
        std::int32_t count = 0;
        EXPECT_EQ(engine.GetPadGrainList(pad, &list, &count), S_OK);
        return {list, count};
    }
    ListedGrains binGrains(std::int32_t bin) {
        GrainListEntry* list = nullptr;
        std::int32_t count = 0;
        EXPECT_EQ(engine.GetBinGrainList(bin, &list, &count), S_OK);
        return {list, count};
    }
    std::vector<std::int64_t> starts(std::int32_t pad) {
        std::vector<std::int64_t> all;
        for (const GrainListEntry& grain : padGrains(pad)) all.push_back(grain.startTicks);
        return all;
    }
    std::int32_t count(std::uint32_t kind, std::uint32_t index) {
        std::int32_t grains = -1;
        EXPECT_EQ(engine.GetGrainCount(kind, index, &grains), S_OK);
        return grains;
    }
    std::int32_t binFiles() {
        std::int32_t files = -1;
        EXPECT_EQ(engine.GetBinFileCount(&files), S_OK);
        return files;
    }
    std::int64_t length(std::uint32_t kind, std::uint32_t index) {
        std::int64_t ticks = -1;
        EXPECT_EQ(engine.GetLoopLength(kind, index, &ticks), S_OK);
        return ticks;
    }
    /// Loop Bin file and index there of a pad's grain.
    std::pair<std::int32_t, std::int32_t> source(std::int32_t pad, std::int32_t grain) {
        std::pair<std::int32_t, std::int32_t> from{-9, -9};
        EXPECT_EQ(engine.GetGrainSource(pad, grain, &from.first, &from.second), S_OK);
        return from;
    }
    /// Reads with one of the getters of a pad.
    template <class T>
    T get(HRESULT (IGrooveSampler::*getter)(std::int32_t, T*), std::int32_t pad) {
        T value{};
        EXPECT_EQ((engine.*getter)(pad, &value), S_OK);
        return value;
    }
};

}  // namespace marnoth::test
