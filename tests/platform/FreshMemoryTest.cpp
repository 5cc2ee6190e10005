#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/system/FreshMemory.h"

namespace marnoth::test::fresh_memory_test {
namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

TEST(FreshMemory, IsZeroToItsLastByteAndCanBeFilled) {
    for (const std::size_t bytes : {std::size_t{1}, std::size_t{4096}, std::size_t{65537}, 2 * kMegabyte - 1,
                                    2 * kMegabyte, 5 * kMegabyte + 3}) {
        const FreshMemory memory = takeZeros(bytes);
        ASSERT_TRUE(memory) << bytes;
        EXPECT_EQ(std::count(memory.get(), memory.get() + bytes, std::byte{0}),
                  static_cast<std::ptrdiff_t>(bytes));
        std::fill_n(memory.get(), bytes, std::byte{7});
        EXPECT_EQ(memory[bytes - 1], std::byte{7});
    }
}

TEST(FreshMemory, IsZeroAgainAfterItWasGivenBack) {
    for (int turn = 0; turn < 3; ++turn) {
        const FreshMemory memory = takeZeros(3 * kMegabyte);
        ASSERT_TRUE(memory);
        EXPECT_EQ(memory[0], std::byte{0});
        EXPECT_EQ(memory[3 * kMegabyte - 1], std::byte{0});
        std::fill_n(memory.get(), 3 * kMegabyte, std::byte{1});
    }
}

TEST(FreshMemory, PiecesLieApart) {
    std::vector<FreshMemory> pieces;
    for (int i = 0; i < 8; ++i) {
        pieces.push_back(takeZeros(2 * kMegabyte + 100000));
        ASSERT_TRUE(pieces.back());
        std::fill_n(pieces.back().get(), 2 * kMegabyte + 100000, static_cast<std::byte>(i));
    }
    pieces.erase(pieces.begin() + 3);
    for (const FreshMemory& piece : pieces)
        EXPECT_EQ(std::count(piece.get(), piece.get() + 2 * kMegabyte + 100000, piece[0]),
                  2 * kMegabyte + 100000);
    EXPECT_EQ(pieces[3][0], std::byte{4});
}

#ifdef __linux__
TEST(FreshMemory, OfMegabytesBeginsAtALargePage) {
    const FreshMemory first = takeZeros(2 * kMegabyte), second = takeZeros(7 * kMegabyte);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first.get()) % (2 * kMegabyte), 0u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(second.get()) % (2 * kMegabyte), 0u);
}
#endif

TEST(FreshMemory, IsNullWhereThereIsNotSoMuch) {
    EXPECT_FALSE(takeZeros(std::size_t{1} << 62));
}

TEST(ExpectFilling, LeavesContentsAlone) {
    std::vector<std::byte> bytes(5 * kMegabyte, std::byte{3});
    expectFilling(bytes.data() + 1, bytes.size() - 2);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), std::byte{3}),
              static_cast<std::ptrdiff_t>(bytes.size()));
    expectFilling(nullptr, 100);
    expectFilling(bytes.data(), 0);
}

}  // namespace
}  // namespace marnoth::test::fresh_memory_test
