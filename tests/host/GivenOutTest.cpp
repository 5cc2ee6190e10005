#include "host/FilterHost.h"
#include "platform/com/ModuleLock.h"
#include "platform/graph/MemAllocator.h"

namespace marnoth::test::given_out_test {
namespace {

/// What holds the module when the instrument itself has gone and a host has kept one thing.
template <class Take>
long heldBy(Take take) {
    const long before = ModuleLock::count();
    RefPtr<IUnknown> kept;
    {
        FilterHost host;
        kept = RefPtr<IUnknown>(take(host).get());
    }
    const long held = ModuleLock::count() - before;
    kept.reset();
    EXPECT_EQ(ModuleLock::count(), before);
    return held;
}

TEST(GivenOut, NothingLeavesTheModuleFree) {
    const long before = ModuleLock::count();
    { FilterHost host; }
    EXPECT_EQ(ModuleLock::count(), before);
}

TEST(GivenOut, AnOutputPinKeepsTheModule) {
    EXPECT_EQ(heldBy([](FilterHost& host) { return RefPtr<IPin>(&host.output(3)); }), 1);
}

TEST(GivenOut, AnEnumeratorOfPinsKeepsTheModuleAndTheInstrument) {
    EXPECT_GT(heldBy([](FilterHost& host) {
                  RefPtr<IEnumPins> pins;
                  EXPECT_EQ(host.filter->EnumPins(pins.put()), S_OK);
                  return pins;
              }),
              17);
}

TEST(GivenOut, AnAllocatorKeepsTheModule) {
    EXPECT_EQ(heldBy([](FilterHost& host) {
                  RefPtr<IMemAllocator> allocator;
                  EXPECT_EQ(host.input().GetAllocator(allocator.put()), S_OK);
                  return allocator;
              }),
              1);
}

TEST(GivenOut, ASampleKeepsTheModuleWithItsAllocator) {
    EXPECT_EQ(heldBy([](FilterHost& host) {
                  RefPtr<IMemAllocator> allocator;
                  EXPECT_EQ(host.input().GetAllocator(allocator.put()), S_OK);
                  ALLOCATOR_PROPERTIES request{1, 64, 1, 0};
                  ALLOCATOR_PROPERTIES actual{};
                  EXPECT_EQ(allocator->SetProperties(&request, &actual), S_OK);
                  EXPECT_EQ(allocator->Commit(), S_OK);
                  RefPtr<IMediaSample> sample;
                  EXPECT_EQ(allocator->GetBuffer(sample.put(), nullptr, nullptr, 0), S_OK);
                  return sample;
              }),
              1);
}

TEST(GivenOut, TheInstrumentsNamesKeepTheModule) {
    EXPECT_GE(heldBy([](FilterHost& host) {
                  RefPtr<IKvxInstrument> names;
                  EXPECT_EQ(host.filter->GetInstrument(0, names.put()), S_OK);
                  return names;
              }),
              1);
}

TEST(GivenOut, AListOfNamesKeepsTheModule) {
    EXPECT_EQ(heldBy([](FilterHost& host) {
                  RefPtr<IKvxInstrument> names;
                  EXPECT_EQ(host.filter->GetInstrument(0, names.put()), S_OK);
                  RefPtr<IKvxNameList> list;
                  EXPECT_EQ(names->GetControllerList(list.put()), S_OK);
                  return list;
              }),
              1);
}

}  // namespace
}  // namespace marnoth::test::given_out_test
