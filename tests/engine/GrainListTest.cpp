#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "engine/model/GrainList.h"

namespace marnoth::test::grain_list_test {
namespace {

CGrooveEvent marked(std::int32_t mark, std::int64_t startTicks = 0) {
    CGrooveEvent grain;
    grain.binGrain = mark;
    grain.startTicks = startTicks;
    return grain;
}

std::vector<std::int32_t> marksOf(const GrainList& list) {
    std::vector<std::int32_t> marks;
    list.forEach([&](const CGrooveEvent& grain) { marks.push_back(grain.binGrain); });
    return marks;
}

GrainList listOf(const std::vector<std::int32_t>& marks) {
    std::vector<RefPtr<const GrainPart>> parts;
    for (const std::int32_t mark : marks) parts.push_back(GrainList::part(marked(mark)));
    return GrainList(std::move(parts));
}

/// The deepest part that holds parts, and whether each group is as full as a list lets it be.
std::int32_t depthOf(const GrainList& list) {
    return list.root() ? list.root()->level : 0;
}

TEST(GrainList, IsEmptyAtFirst) {
    const GrainList list;
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(list.root(), nullptr);
    EXPECT_EQ(list.firstFrom(0), 0);
    EXPECT_TRUE(list.parts().empty());
}

TEST(GrainList, KeepsTheOrderThatItWasMadeWith) {
    for (const std::int32_t size : {1, 15, 16, 17, 255, 256, 257, 5000}) {
        std::vector<std::int32_t> marks;
        for (std::int32_t i = 0; i < size; ++i) marks.push_back(i * 7 % 1000);
        const GrainList list = listOf(marks);
        EXPECT_EQ(list.size(), size);
        EXPECT_EQ(marksOf(list), marks);
        for (const std::int32_t at : {0, size / 2, size - 1})
            EXPECT_EQ(list[at].binGrain, marks[static_cast<std::size_t>(at)]);
    }
}

TEST(GrainList, DoesWhatAnArrayDoes) {
    std::mt19937 random(20);
    for (int run = 0; run < 20; ++run) {
        GrainList list;
        std::vector<std::int32_t> array;
        for (std::int32_t mark = 0; mark < 1500; ++mark) {
            const auto size = static_cast<std::int32_t>(array.size());
            const auto at = size ? static_cast<std::int32_t>(random() % static_cast<unsigned>(size)) : 0;
            const unsigned what = random() % 10;
            // Some runs grow, others shrink again.
            if (size == 0 || what < (mark < 1000 || run % 2 ? 6u : 1u)) {
                const std::int32_t place = what == 0 ? size : at;
                list.insert(place, marked(mark));
                array.insert(array.begin() + place, mark);
            } else if (what < 8) {
                list.remove(at);
                array.erase(array.begin() + at);
            } else {
                list.replace(at, marked(mark));
                array[static_cast<std::size_t>(at)] = mark;
            }
            ASSERT_EQ(list.size(), static_cast<std::int32_t>(array.size()));
        }
        ASSERT_EQ(marksOf(list), array) << run;
        for (std::size_t i = 0; i < array.size(); i += 13)
            ASSERT_EQ(list[static_cast<std::int32_t>(i)].binGrain, array[i]);
    }
}

TEST(GrainList, StaysFlatHoweverItGrows) {
    GrainList atTheEnd;
    GrainList atTheFront;
    for (std::int32_t i = 0; i < 4096; ++i) {
        atTheEnd.insert(atTheEnd.size(), marked(i));
        atTheFront.insert(0, marked(i));
    }
    // 16 * 16 * 16 grains fit in three levels; groups that were split in the middle are half full.
    EXPECT_EQ(depthOf(atTheEnd), 3);
    EXPECT_EQ(depthOf(atTheFront), 4);
    while (atTheEnd.size() > 1) atTheEnd.remove(atTheEnd.size() / 2);
    EXPECT_EQ(depthOf(atTheEnd), 1);
    atTheEnd.remove(0);
    EXPECT_EQ(atTheEnd.root(), nullptr);
}

TEST(GrainList, ACopyIsThatOfTheMomentAndSharesItsGrains) {
    GrainList list = listOf({1, 2, 3, 4, 5});
    const GrainList copy = list;
    EXPECT_TRUE(copy == list);
    list.replace(2, marked(9));
    list.remove(0);
    list.insert(0, marked(7));
    EXPECT_EQ(marksOf(copy), (std::vector<std::int32_t>{1, 2, 3, 4, 5}));
    EXPECT_EQ(marksOf(list), (std::vector<std::int32_t>{7, 2, 9, 4, 5}));
    EXPECT_EQ(&list[1], &copy[1]) << "what wasn't touched is shared";
    EXPECT_FALSE(copy == list);
}

TEST(GrainList, SamplesGoWithTheLastListThatHoldsThem) {
    const RefPtr<CWaveMem> wave = CWaveMem::make();
    {
        GrainList list;
        for (int i = 0; i < 100; ++i) {
            CGrooveEvent grain;
            grain.sample = wave;
            list.insert(0, grain);
        }
        const GrainList former = list;
        list.clear();
        EXPECT_EQ(wave->refCount, 101u);
    }
    EXPECT_EQ(wave->refCount, 1u);
}

TEST(GrainList, FindsTheFirstThatDoesNotStartBefore) {
    std::mt19937 random(21);
    for (int run = 0; run < 50; ++run) {
        GrainList list;
        std::vector<std::int64_t> starts;
        const int size = 1 + static_cast<int>(random() % 600);
        for (int i = 0; i < size; ++i) {
            starts.push_back(static_cast<std::int64_t>(random() % 1000));
            list.insert(list.size(), marked(i, starts.back()));
        }
        // Also while the list isn't in order.
        for (std::int64_t ticks = 0; ticks < 1002; ticks += 50) {
            std::int32_t first = 0;
            while (first < size && starts[static_cast<std::size_t>(first)] < ticks) ++first;
            ASSERT_EQ(list.firstFrom(ticks), first) << ticks;
        }
    }
}

}  // namespace
}  // namespace marnoth::test::grain_list_test
