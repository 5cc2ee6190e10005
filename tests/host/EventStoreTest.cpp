#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "host/EventStore.h"
#include "support/AllocationMeter.h"

namespace marnoth::test::event_store_test {
namespace {

constexpr std::int64_t kEarliest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();

/// The port tells events apart.
QueuedEvent eventAt(std::int64_t sampleTime, std::uint32_t number) {
    QueuedEvent event;
    event.port = number;
    event.sampleTime = sampleTime;
    return event;
}

std::vector<std::uint32_t> takeAll(EventStore& store, std::int64_t begin, std::int64_t end) {
    std::vector<std::uint32_t> numbers;
    while (const auto event = store.take(begin, end)) numbers.push_back(event->port);
    return numbers;
}

void fill(EventStore& store, std::size_t events) {
    for (std::size_t i = 0; i < events; ++i)
        store.insert(eventAt(static_cast<std::int64_t>(i % 97), static_cast<std::uint32_t>(i)));
}

TEST(EventStore, GivesEventsByTimeAndThenByArrival) {
    EventStore store;
    store.insert(eventAt(7, 1));
    store.insert(eventAt(-3, 2));
    store.insert(eventAt(7, 3));
    store.insert(eventAt(5, 4));
    EXPECT_EQ(takeAll(store, kEarliest, kLatest), (std::vector<std::uint32_t>{2, 4, 1, 3}));
    EXPECT_TRUE(takeAll(store, kEarliest, kLatest).empty());
}

TEST(EventStore, GivesFromTheFirstTimeUpToTheSecondWithoutIt) {
    EventStore store;
    for (const int time : {9, 10, 19, 20}) store.insert(eventAt(time, static_cast<std::uint32_t>(time)));
    EXPECT_EQ(takeAll(store, 10, 20), (std::vector<std::uint32_t>{10, 19}));
    EXPECT_TRUE(takeAll(store, 21, 20).empty());
    EXPECT_EQ(takeAll(store, kEarliest, kLatest), (std::vector<std::uint32_t>{9, 20}));
}

/// Beside a multimap of the standard library, which keeps events of one time in the order of arrival too.
TEST(EventStore, IsAMultimapFromTimesToEventsWhateverComesAndGoes) {
    std::mt19937 random(20240611);
    const auto upTo = [&](int most) { return static_cast<std::int64_t>(random() % (most + 1u)); };
    EventStore store;
    std::multimap<std::int64_t, std::uint32_t> plain;
    std::uint32_t number = 0;
    for (int round = 0; round < 4000; ++round) {
        for (auto i = upTo(12); i > 0; --i) {
            const std::int64_t time = upTo(3) == 0 ? round : round + upTo(2000) - 300;
            store.insert(eventAt(time, number));
            plain.emplace(time, number++);
        }
        const std::int64_t begin = round + upTo(100) - 50;
        const std::int64_t end = begin + upTo(40);
        std::vector<std::uint32_t> expected;
        for (auto it = plain.lower_bound(begin); it != plain.end() && it->first < end; it = plain.erase(it))
            expected.push_back(it->second);
        ASSERT_EQ(takeAll(store, begin, end), expected);
        if (upTo(500) != 0) continue;
        store.clear();
        plain.clear();
    }
    EXPECT_FALSE(plain.empty());
}

TEST(EventStore, HasRoomForAThousandEventsFromTheBeginning) {
    EventStore store;
    AllocationMeter meter;
    fill(store, 1024);
    EXPECT_EQ(meter.peakBytes(), 0u);
    EXPECT_FALSE(store.hasRoom(1));
}

TEST(EventStore, TakesEventsIntoPlayAndLetsThemGoInThePlaceThatTheyHave) {
    EventStore store;
    fill(store, EventStore::kRoom);
    AllocationMeter meter;
    for (int round = 0; round < 3; ++round) {
        while (const auto event = store.take(kEarliest, kLatest)) store.queue().push_back(*event);
        EXPECT_EQ(store.queue().size(), EventStore::kRoom);
        EXPECT_FALSE(store.hasRoom(1));
        while (!store.queue().empty()) store.queue().pop_back();
        EXPECT_TRUE(store.hasRoom(EventStore::kRoom));
        fill(store, EventStore::kRoom);
    }
    EXPECT_EQ(meter.peakBytes(), 0u);
    EXPECT_EQ(meter.frees(), 0u);
}

TEST(EventStore, TakesRoomThatWasMadeElsewhereAsItIs) {
    EventStore store;
    fill(store, EventStore::kRoom);
    auto room = EventStore::makeRoom();
    AllocationMeter meter;
    store.addRoom(std::move(room));
    EXPECT_TRUE(store.hasRoom(EventStore::kRoom));
    fill(store, EventStore::kRoom);
    EXPECT_EQ(meter.peakBytes(), 0u);
    EXPECT_EQ(store.capacity(), 2 * EventStore::kRoom);
}

TEST(EventStore, GrowsByItselfWhenNobodyMadeRoom) {
    EventStore store;
    fill(store, EventStore::kRoom + 1);
    EXPECT_EQ(store.capacity(), 2 * EventStore::kRoom);
    EXPECT_EQ(takeAll(store, kEarliest, kLatest).size(), EventStore::kRoom + 1);
}

TEST(EventStore, ClearedHasItsFirstRoomAndNoMore) {
    EventStore store;
    fill(store, 3 * EventStore::kRoom);
    for (int i = 0; i < 100; ++i) store.queue().push_back(*store.take(kEarliest, kLatest));
    store.clear();
    EXPECT_TRUE(store.queue().empty());
    EXPECT_TRUE(takeAll(store, kEarliest, kLatest).empty());
    EXPECT_EQ(store.capacity(), EventStore::kRoom);
    AllocationMeter meter;
    fill(store, EventStore::kRoom);
    EXPECT_EQ(meter.peakBytes(), 0u);
}

TEST(EventStore, ClearedWithinItsFirstRoomFreesNothing) {
    EventStore store;
    fill(store, EventStore::kRoom);
    for (int i = 0; i < 100; ++i) store.queue().push_back(*store.take(kEarliest, kLatest));
    AllocationMeter meter;
    store.clear();
    EXPECT_EQ(meter.frees(), 0u);
}

TEST(EventStore, WithoutMemoryForOneMoreEventKeepsTheOthers) {
    EventStore store;
    fill(store, EventStore::kRoom);
    {
        AllocationMeter meter;
        meter.refuseFrom(1);
        EXPECT_THROW(store.insert(eventAt(0, 0)), std::bad_alloc);
    }
    EXPECT_EQ(takeAll(store, kEarliest, kLatest).size(), EventStore::kRoom);
}

}  // namespace
}  // namespace marnoth::test::event_store_test
