#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "sample/TailStore.h"
#include "sample/WaveMem.h"

namespace marnoth::test::tail_store_test {
namespace {

constexpr std::int64_t kRunValues = TailStore::kRunBytes / 4;

/// All tails of a store, each filled with a number of its own as it comes.
struct TakenTails {
    explicit TakenTails(std::vector<std::int64_t> lengths) : values(std::move(lengths)) {
        TailStore store(values);
        for (std::size_t i = 0; i < values.size(); ++i) {
            tails.push_back(store.next());
            if (tails.back()) fill(i);
        }
        EXPECT_FALSE(store.next());
    }

    void fill(std::size_t i) {
        float* const tail = tails[i].get();
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(tail) % 64, 0u);
        EXPECT_EQ(std::count(tail, tail + values[i], 0.0f), values[i]);
        std::fill_n(tail, values[i], static_cast<float>(i + 1));
    }
    bool holds(std::size_t i) const {
        const float* const tail = tails[i].get();
        return tail && std::count(tail, tail + values[i], static_cast<float>(i + 1)) == values[i];
    }

    std::vector<std::int64_t> values;
    std::vector<Samples> tails;
};

TEST(TailStore, EveryTailIsSilenceOfItsOwn) {
    for (const std::vector<std::int64_t>& values :
         std::vector<std::vector<std::int64_t>>{{1},
                                                {15, 16, 17, 1, 33},
                                                std::vector<std::int64_t>(100, 41343),
                                                {kRunValues, kRunValues - 1, 1, kRunValues + 1, 5},
                                                {3, 3 * kRunValues, 3, kRunValues / 2, kRunValues, 2}}) {
        const TakenTails it(values);
        for (std::size_t i = 0; i < values.size(); ++i) EXPECT_TRUE(it.holds(i)) << i;
    }
}

TEST(TailStore, TailsOutliveTheStoreAndTheirNeighbours) {
    TakenTails it(std::vector<std::int64_t>(60, 50000));
    for (std::size_t i = 0; i < it.tails.size(); ++i) {
        if (i % 7 != 0) it.tails[i].reset();
    }
    for (std::size_t i = 0; i < it.tails.size(); i += 7) EXPECT_TRUE(it.holds(i)) << i;
}

TEST(TailStore, ATailThatThereIsNoMemoryForIsNullAndTheOthersAreThere) {
    const TakenTails it({10, std::int64_t{1} << 58, 20});
    EXPECT_TRUE(it.holds(0));
    EXPECT_FALSE(it.tails[1]);
    EXPECT_TRUE(it.holds(2));
}

TEST(TailStore, OfNoTailsIsEmpty) {
    EXPECT_FALSE(TailStore({}).next());
}

TEST(TailStore, ATailInAShareOfARunIsTheSameAsOneInItsOwnStorage) {
    const RefPtr<CWaveMem> source = CWaveMem::make();
    WAVEFORMATEX format{};
    format.nChannels = 2;
    format.nSamplesPerSec = 44100;
    ASSERT_EQ(source->Create(5000, format), S_OK);
    for (int i = 0; i < 10000; ++i) source->samples[i] = static_cast<float>(i % 101) / 128 - 0.25f;
    source->writeGuardFrame();
    const std::int64_t values = CWaveMem::tailValues(2, 1777);
    TailStore store({3, values});
    store.next();
    const RefPtr<CWaveMem> own = CWaveMem::make(), shared = CWaveMem::make();
    ASSERT_EQ(own->CreateTail(*source, 300, 1777), S_OK);
    ASSERT_EQ(shared->CreateTail(*source, 300, 1777, store.next()), S_OK);
    EXPECT_EQ(shared->frames, own->frames);
    EXPECT_EQ(std::memcmp(shared->samples.get(), own->samples.get(), static_cast<std::size_t>(values) * 4),
              0);
}

}  // namespace
}  // namespace marnoth::test::tail_store_test
