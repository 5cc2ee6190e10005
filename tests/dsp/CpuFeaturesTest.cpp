#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

#include "dsp/CpuFeatures.h"

namespace marnoth::test::cpu_features_test {
namespace {

#if defined(__x86_64__)
constexpr std::uint32_t kVectors = 1;
#else
constexpr std::uint32_t kVectors = 0;
#endif

TEST(CpuFeatures, FastFormsAreAllowed) {
    EXPECT_EQ(fastMixEnabled, 1u);
    EXPECT_EQ(GetFastMixEnabled(), 1u);
}

TEST(CpuFeatures, TheFirstQuestionFillsTheStateForGood) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(HasSse(), kVectors);
        EXPECT_EQ(HasSse2(), kVectors);
        EXPECT_EQ(cpuState.cpuQueried, 1u);
        EXPECT_EQ(cpuState.hasSse, kVectors);
        EXPECT_EQ(cpuState.hasSse2, kVectors);
        EXPECT_EQ(cpuState.hyperThreading, 0u);
    }
}

TEST(CpuFeatures, ThreadsMayAskAtTheSameTime) {
    std::vector<std::uint32_t> answers(16, 2);
    std::vector<std::thread> threads;
    for (int i = 0; i < 16; ++i)
        threads.emplace_back([&answers, i] { answers[i] = i % 2 == 0 ? HasSse() : HasSse2(); });
    for (auto& thread : threads) thread.join();
    for (const auto answer : answers) EXPECT_EQ(answer, kVectors);
}

TEST(CpuFeatures, AnEmptyRecordKnowsNothingButQuery4) {
    for (std::uint32_t query = 0; query < 70; ++query) EXPECT_EQ(GetCpuInfo(query), query == 4 ? 1u : 0u);
    EXPECT_EQ(GetCpuInfo(std::numeric_limits<std::uint32_t>::max()), 0u);
}

}  // namespace
}  // namespace marnoth::test::cpu_features_test
