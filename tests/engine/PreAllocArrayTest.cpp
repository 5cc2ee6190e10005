#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "engine/render/PreAllocArray.h"

namespace marnoth::test::pre_alloc_array_test {
namespace {

std::vector<int> items(const CPreAllocArray<int>& array) {
    return {array.begin(), array.end()};
}

TEST(PreAllocArray, DropsWhatComesWhenItIsFull) {
    CPreAllocArray<int> array(100);
    for (int i = 0; i < 101; ++i) array.Add(i);
    EXPECT_EQ(array.GetSize(), 100);
    EXPECT_EQ(array[99], 99);
    array.InsertAt(0, -1);
    EXPECT_EQ(array[0], 0);
}

TEST(PreAllocArray, WithoutStorageTakesNothing) {
    CPreAllocArray<int> array;
    array.Add(1);
    array.InsertAt(0, 1);
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetCapacity(), 0);
}

TEST(PreAllocArray, InsertsInFrontAndClampsTheIndex) {
    CPreAllocArray<int> array(8);
    array.Add(1);
    array.Add(2);
    array.InsertAt(1, 5);
    array.InsertAt(-3, 6);
    array.InsertAt(99, 7);
    EXPECT_EQ(items(array), (std::vector<int>{6, 1, 5, 2, 7}));
}

TEST(PreAllocArray, RemovingClosesTheGap) {
    CPreAllocArray<int> array(4);
    for (int i = 0; i < 4; ++i) array.Add(i);
    array.RemoveAt(1);
    EXPECT_EQ(items(array), (std::vector<int>{0, 2, 3}));
    array.RemoveAt(2);
    EXPECT_EQ(items(array), (std::vector<int>{0, 2}));
}

TEST(PreAllocArray, ForgettingAllKeepsTheStorage) {
    CPreAllocArray<int> array(2);
    array.Add(1);
    const int* const storage = array.begin();
    array.RemoveAll();
    EXPECT_EQ(array.GetSize(), 0);
    array.Add(3);
    EXPECT_EQ(array.begin(), storage);
    EXPECT_EQ(array[0], 3);
}

TEST(PreAllocArray, TakesItemsThatCanOnlyBeMoved) {
    CPreAllocArray<std::unique_ptr<int>> array(3);
    array.Add(std::make_unique<int>(1));
    array.Add(std::make_unique<int>(2));
    array.InsertAt(0, std::make_unique<int>(3));
    EXPECT_EQ(*array[0], 3);
    EXPECT_EQ(*array[2], 2);
}

}  // namespace
}  // namespace marnoth::test::pre_alloc_array_test
