/// The names that a host asks for: lists, the object that makes them, and the way to both.

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstring>
#include <functional>
#include <future>
#include <string>
#include <vector>

#include "host/Instrument.h"
#include "host/StringMap.h"
#include "host/SynthUnderTest.h"

namespace marnoth::test::name_lists_test {
namespace {

constexpr IID kForeign{0x0F1E2D3C, 0x1111, 0x2222, {1, 2, 3, 4, 5, 6, 7, 8}};

/// A buffer full of rubbish, and what an operation has put into it.
struct NameBuffer {
    NameBuffer() { bytes.fill('#'); }
    std::string text() const { return bytes.data(); }
    std::string all(std::size_t count) const { return {bytes.data(), count}; }
    std::array<char, 64> bytes{};
};

std::string listName(IKvxNameList& list) {
    NameBuffer buffer;
    EXPECT_EQ(list.GetListName(buffer.bytes.data(), 64), S_OK);
    return buffer.text();
}

std::uint32_t maxCount(IKvxNameList& list) {
    std::uint32_t count = 999999;
    EXPECT_EQ(list.GetMaxCount(&count), S_OK);
    return count;
}

std::uint32_t count(IKvxNameList& list) {
    RefPtr<IKvxNameList2> more;
    EXPECT_EQ(list.QueryInterface(IID_IKvxNameList2, more.putVoid()), S_OK);
    std::uint32_t names = 999999;
    EXPECT_EQ(more->GetCount(&names), S_OK);
    return names;
}

RefPtr<CStringMap> emptyList() {
    return RefPtr<CStringMap>(new CStringMap("Empty", 128));
}

RefPtr<CStringMap> drums() {
    return RefPtr<CStringMap>(new CStringMap("Drums", 128,
                                             {{42, L"Hat"},
                                              {36, L"Kick"},
                                              {38,
                                               L"Sn\x00E4"
                                               L"re"}}));
}

TEST(NameList, OfNothingHasNoNameForAnyId) {
    const auto list = emptyList();
    NameBuffer buffer;
    EXPECT_EQ(list->GetNameAt(127, buffer.bytes.data(), 64), S_OK);
    EXPECT_EQ(buffer.text(), "");
    EXPECT_EQ(list->GetNameAt(128, buffer.bytes.data(), 64), E_INVALIDARG);
    EXPECT_EQ(list->GetNameAt(-1, buffer.bytes.data(), 64), E_INVALIDARG);
    EXPECT_EQ(list->FindName(0, buffer.bytes.data(), 64), S_FALSE);
    EXPECT_EQ(count(*list), 0u);
}

TEST(NameList, OfNothingIsAtItsEndAtOnce) {
    const auto list = emptyList();
    void* position = nullptr;
    EXPECT_EQ(list->GetFirst(&position), S_OK);
    EXPECT_NE(position, nullptr);
    EXPECT_EQ(list->GetNext(&position, nullptr, nullptr, 0), S_FALSE);
}

TEST(NameList, IsTraversedInTheOrderOfItsIds) {
    const auto list = drums();
    EXPECT_EQ(count(*list), 3u);
    void* position = nullptr;
    ASSERT_EQ(list->GetFirst(&position), S_OK);
    std::vector<std::pair<std::uint32_t, std::string>> seen;
    std::uint32_t id = 0;
    for (NameBuffer buffer; list->GetNext(&position, &id, buffer.bytes.data(), 64) == S_OK;)
        seen.emplace_back(id, buffer.text());
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0], std::pair(36u, std::string("Kick")));
    EXPECT_EQ(seen[1].first, 38u);
    EXPECT_EQ(seen[2], std::pair(42u, std::string("Hat")));
    EXPECT_EQ(list->GetNext(&position, &id, nullptr, 0), S_FALSE);
}

TEST(NameList, GivesEitherIdOrNameOrNeither) {
    const auto list = drums();
    void* position = nullptr;
    ASSERT_EQ(list->GetFirst(&position), S_OK);
    EXPECT_EQ(list->GetNext(&position, nullptr, nullptr, 0), S_OK);
    std::uint32_t id = 0;
    EXPECT_EQ(list->GetNext(&position, &id, nullptr, -5), S_OK);
    EXPECT_EQ(id, 38u);
    NameBuffer buffer;
    EXPECT_EQ(list->GetNext(&position, nullptr, buffer.bytes.data(), 64), S_OK);
    EXPECT_EQ(buffer.text(), "Hat");
}

TEST(NameList, HasOneCursorForAllTraversals) {
    const auto list = drums();
    void* first = nullptr;
    void* second = nullptr;
    std::uint32_t id = 0;
    ASSERT_EQ(list->GetFirst(&first), S_OK);
    ASSERT_EQ(list->GetNext(&first, &id, nullptr, 0), S_OK);
    ASSERT_EQ(list->GetFirst(&second), S_OK);
    EXPECT_EQ(list->GetNext(&first, &id, nullptr, 0), S_OK);
    EXPECT_EQ(id, 36u);
    EXPECT_EQ(list->GetNext(&second, &id, nullptr, 0), S_OK);
    EXPECT_EQ(id, 38u);
}

TEST(NameList, WithoutAPositionHasNothingNext) {
    const auto list = drums();
    void* position = nullptr;
    EXPECT_EQ(list->GetNext(nullptr, nullptr, nullptr, 0), E_POINTER);
    EXPECT_EQ(list->GetNext(&position, nullptr, nullptr, 0), S_FALSE);
    position = &position;
    EXPECT_EQ(list->GetNext(&position, nullptr, nullptr, 0), S_FALSE) << "no traversal has begun";
}

TEST(NameList, GoesOnFromItsOwnPositionAlone) {
    const auto list = drums();
    void* position = nullptr;
    ASSERT_EQ(list->GetFirst(&position), S_OK);
    void* const token = position;
    void* none = nullptr;
    EXPECT_EQ(list->GetNext(&none, nullptr, nullptr, 0), S_FALSE) << "although a traversal has begun";
    position = &position;
    std::uint32_t id = 0;
    EXPECT_EQ(list->GetNext(&position, &id, nullptr, 0), S_OK);
    EXPECT_EQ(id, 36u);
    EXPECT_EQ(position, token) << "each step gives it anew";
}

TEST(NameList, FindsANameById) {
    const auto list = drums();
    NameBuffer buffer;
    EXPECT_EQ(list->FindName(36, buffer.bytes.data(), 64), S_OK);
    EXPECT_EQ(buffer.text(), "Kick");
    EXPECT_EQ(list->GetNameAt(42, buffer.bytes.data(), 64), S_OK);
    EXPECT_EQ(buffer.text(), "Hat");
    EXPECT_EQ(list->GetNameAt(43, buffer.bytes.data(), 64), S_OK);
    EXPECT_EQ(buffer.text(), "");
    EXPECT_EQ(list->FindName(43, buffer.bytes.data(), 64), S_FALSE);
    EXPECT_EQ(list->FindName(36, nullptr, 0), S_OK);
}

TEST(NameList, CutsANameAndAlwaysEndsItWithAZero) {
    const auto list = drums();
    NameBuffer buffer;
    EXPECT_EQ(list->GetListName(buffer.bytes.data(), 4), S_OK);
    EXPECT_EQ(buffer.all(5), std::string("Dru\0#", 5));
    EXPECT_EQ(list->GetNameAt(36, buffer.bytes.data(), 3), S_OK);
    EXPECT_EQ(buffer.all(4), std::string("Ki\0\0", 4));
    EXPECT_EQ(list->FindName(36, buffer.bytes.data(), 1), S_OK);
    EXPECT_EQ(buffer.text(), "");
    void* position = nullptr;
    list->GetFirst(&position);
    EXPECT_EQ(list->GetNext(&position, nullptr, buffer.bytes.data(), 2), S_OK);
    EXPECT_EQ(buffer.text(), "K");
}

TEST(NameList, EndsALargerBufferWithAZeroToo) {
    NameBuffer buffer;
    EXPECT_EQ(drums()->GetListName(buffer.bytes.data(), 10), S_OK);
    EXPECT_EQ(buffer.text(), "Drums");
    EXPECT_EQ(buffer.bytes[9], 0);
    EXPECT_EQ(buffer.bytes[10], '#');
}

TEST(NameList, WritesNothingIntoABufferOfNoSize) {
    const auto list = drums();
    NameBuffer buffer;
    EXPECT_EQ(list->GetListName(buffer.bytes.data(), 0), S_OK);
    EXPECT_EQ(list->GetListName(buffer.bytes.data(), -1), S_OK);
    EXPECT_EQ(list->GetNameAt(36, buffer.bytes.data(), 0), S_OK);
    EXPECT_EQ(buffer.all(64), std::string(64, '#'));
}

TEST(NameList, RefusesNullPointers) {
    const auto list = drums();
    void* position = nullptr;
    list->GetFirst(&position);
    EXPECT_EQ(list->GetListName(nullptr, 0), E_POINTER);
    EXPECT_EQ(list->GetMaxCount(nullptr), E_POINTER);
    EXPECT_EQ(list->GetNameAt(36, nullptr, 1), E_POINTER);
    EXPECT_EQ(list->GetCount(nullptr), E_POINTER);
    EXPECT_EQ(list->GetFirst(nullptr), E_POINTER);
    EXPECT_EQ(list->GetNext(&position, nullptr, nullptr, 1), E_POINTER);
    EXPECT_EQ(list->FindName(36, nullptr, 1), E_POINTER);
    std::uint32_t id = 0;
    EXPECT_EQ(list->GetNext(&position, &id, nullptr, 0), S_OK);
    EXPECT_EQ(id, 36u) << "a refused call moves nothing";
}

TEST(NameList, IsOneTableUnderBothItsNames) {
    const auto list = drums();
    RefPtr<IUnknown> identity, older, newer;
    EXPECT_EQ(list->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    EXPECT_EQ(list->QueryInterface(IID_IKvxNameList, older.putVoid()), S_OK);
    EXPECT_EQ(list->QueryInterface(IID_IKvxNameList2, newer.putVoid()), S_OK);
    EXPECT_TRUE(identity == older && older == newer);
    void* out = &out;
    EXPECT_EQ(list->QueryInterface(kForeign, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

/// An instrument of which a test can watch how lists come to be, and how it goes.
class WatchedInstrument : public CInstrument {
public:
    explicit WatchedInstrument(bool& gone) : CInstrument(L"Marnoth"), gone_(gone) {}

    std::function<HRESULT()> onBuild;

private:
    ~WatchedInstrument() override { gone_ = true; }
    HRESULT BuildPatchList(std::int32_t bank) override {
        return onBuild ? onBuild() : CInstrument::BuildPatchList(bank);
    }
    HRESULT BuildNoteList(std::int32_t bank, std::int32_t patch) override {
        return onBuild ? onBuild() : CInstrument::BuildNoteList(bank, patch);
    }
    HRESULT BuildControllerList() override {
        return onBuild ? onBuild() : CInstrument::BuildControllerList();
    }
    HRESULT BuildRpnList() override { return onBuild ? onBuild() : CInstrument::BuildRpnList(); }
    HRESULT BuildNrpnList() override { return onBuild ? onBuild() : CInstrument::BuildNrpnList(); }

    bool& gone_;
};

RefPtr<CInstrument> instrument() {
    return RefPtr<CInstrument>(new CInstrument(L"Marnoth"));
}

RefPtr<IKvxNameList> patches(CInstrument& names, std::int32_t bank) {
    RefPtr<IKvxNameList> list;
    EXPECT_EQ(names.GetPatchList(bank, list.put()), S_OK);
    return list;
}

RefPtr<IKvxNameList> notes(CInstrument& names, std::int32_t bank, std::int32_t patch) {
    RefPtr<IKvxNameList> list;
    EXPECT_EQ(names.GetNoteList(bank, patch, list.put()), S_FALSE);
    return list;
}

TEST(InstrumentNames, HaveOneBank) {
    std::int32_t* banks = nullptr;
    std::uint32_t count = 0;
    ASSERT_EQ(instrument()->GetBankList(&banks, &count), S_OK);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(banks[0], 0);
    CoTaskMemFree(banks);
    EXPECT_EQ(instrument()->GetBankList(nullptr, &count), E_POINTER);
    EXPECT_EQ(instrument()->GetBankList(&banks, nullptr), E_POINTER);
}

TEST(InstrumentNames, GiveTheSamePatchListForABankEveryTime) {
    const auto names = instrument();
    const auto list = patches(*names, 5);
    EXPECT_TRUE(list == patches(*names, 5));
    EXPECT_FALSE(list == patches(*names, 6));
    EXPECT_EQ(count(*list), 0u);
    EXPECT_EQ(maxCount(*list), 128u);
    EXPECT_EQ(listName(*list), "Marnoth Patches");
}

TEST(InstrumentNames, GiveANoteListForEveryBankAndPatch) {
    const auto names = instrument();
    const auto list = notes(*names, 0, 999);
    EXPECT_EQ(listName(*list), "Marnoth Notes");
    EXPECT_EQ(maxCount(*list), 128u);
    EXPECT_TRUE(list == notes(*names, 0, 999));
    EXPECT_FALSE(list == notes(*names, 0, 998));
    EXPECT_FALSE(list == notes(*names, 1, 999));
    EXPECT_TRUE(notes(*names, 3, -1) == notes(*names, 3, 65535)) << "16 bits of the patch count";
    EXPECT_FALSE(notes(*names, 0, 0x8000) == notes(*names, 0, 0)) << "all of them";
    EXPECT_FALSE(notes(*names, 0, 0x8000) == notes(*names, 1, 0)) << "and none reaches into the bank";
}

TEST(InstrumentNames, HaveOneListEachForControllersAndParameters) {
    const auto names = instrument();
    RefPtr<IKvxNameList> list, again;
    ASSERT_EQ(names->GetControllerList(list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth Controllers");
    EXPECT_EQ(maxCount(*list), 128u);
    EXPECT_EQ(names->GetControllerList(again.put()), S_OK);
    EXPECT_TRUE(list == again);
    ASSERT_EQ(names->GetRpnList(list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth RPNs");
    EXPECT_EQ(maxCount(*list), 16383u);
    EXPECT_EQ(names->GetRpnList(again.put()), S_OK);
    EXPECT_TRUE(list == again);
    ASSERT_EQ(names->GetNrpnList(list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth NRPNs");
    EXPECT_EQ(maxCount(*list), 16383u);
    EXPECT_EQ(names->GetNrpnList(again.put()), S_OK);
    EXPECT_TRUE(list == again);
}

TEST(InstrumentNames, AreAskedWithinTheRangesOfBankAndPatch) {
    const auto names = instrument();
    RefPtr<IKvxNameList> list;
    EXPECT_EQ(names->GetPatchList(16384, list.put()), E_INVALIDARG);
    EXPECT_EQ(names->GetPatchList(-2, list.put()), E_INVALIDARG);
    EXPECT_EQ(names->GetPatchList(16383, list.put()), S_OK);
    EXPECT_EQ(names->GetPatchList(-1, list.put()), S_OK);
    EXPECT_EQ(names->GetNoteList(16384, 0, list.put()), E_INVALIDARG);
    EXPECT_EQ(names->QueryPatchFalse(0, 128), E_INVALIDARG);
    EXPECT_EQ(names->QueryPatchFalse(0, -2), E_INVALIDARG);
    EXPECT_EQ(names->QueryPatchFalse(16384, 0), E_INVALIDARG);
    EXPECT_EQ(names->QueryPatchFalse(16383, 127), S_FALSE);
    EXPECT_EQ(names->QueryPatchFalse(-1, -1), S_FALSE);
    EXPECT_EQ(names->QueryPatchTrue(0, 128), E_INVALIDARG);
    EXPECT_EQ(names->QueryPatchTrue(-2, 0), E_INVALIDARG);
    EXPECT_EQ(names->QueryPatchTrue(16383, 127), S_OK);
    EXPECT_EQ(names->QueryPatchTrue(-1, -1), S_OK);
}

TEST(InstrumentNames, NeedAPlaceToGo) {
    const auto names = instrument();
    EXPECT_EQ(names->GetPatchList(0, nullptr), E_POINTER);
    EXPECT_EQ(names->GetPatchList(16384, nullptr), E_INVALIDARG);
    EXPECT_EQ(names->GetNoteList(0, 0, nullptr), E_POINTER);
    EXPECT_EQ(names->GetNoteList(16384, 0, nullptr), E_INVALIDARG);
    EXPECT_EQ(names->GetControllerList(nullptr), E_POINTER);
    EXPECT_EQ(names->GetRpnList(nullptr), E_POINTER);
    EXPECT_EQ(names->GetNrpnList(nullptr), E_POINTER);
}

TEST(InstrumentNames, TellTheInstrumentsNameIfThereIsRoomForItAndItsZero) {
    const auto names = instrument();
    NameBuffer buffer;
    EXPECT_EQ(names->GetName(buffer.bytes.data(), 7), E_POINTER) << "exactly the length of the name";
    EXPECT_EQ(names->GetName(nullptr, 64), E_POINTER);
    EXPECT_EQ(names->GetName(buffer.bytes.data(), 8), S_OK);
    EXPECT_EQ(buffer.text(), "Marnoth");
    EXPECT_EQ(names->GetName(buffer.bytes.data(), 20), S_OK);
    EXPECT_EQ(buffer.bytes[19], 0);
    EXPECT_EQ(buffer.bytes[20], '#');
}

TEST(InstrumentNames, AnswerAnyInterfaceWithAReferenceAndLeaveOutWhatTheyDontHave) {
    const auto names = instrument();
    void* out = &out;
    void* const before = out;
    EXPECT_EQ(names->QueryInterface(kForeign, &out), S_OK);
    EXPECT_EQ(out, before);
    EXPECT_EQ(names->Release(), 1u) << "the reference that the query added";
    RefPtr<IUnknown> identity, face;
    EXPECT_EQ(names->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    EXPECT_EQ(names->QueryInterface(IID_IKvxInstrument, face.putVoid()), S_OK);
    EXPECT_TRUE(identity == face);
}

TEST(InstrumentNames, ComeThroughTheOperationsThatBuildThem) {
    bool gone = false;
    const RefPtr<WatchedInstrument> names(new WatchedInstrument(gone));
    const std::vector<std::function<HRESULT(IKvxNameList**)>> all{
        [&](auto out) { return names->GetPatchList(0, out); },
        [&](auto out) { return names->GetNoteList(0, 0, out); },
        [&](auto out) { return names->GetControllerList(out); },
        [&](auto out) { return names->GetRpnList(out); }, [&](auto out) { return names->GetNrpnList(out); }};
    names->onBuild = [] { return E_ABORT; };
    RefPtr<IKvxNameList> list;
    for (const auto& ask : all) EXPECT_EQ(ask(list.put()), E_ABORT);
    names->onBuild = [] { return S_OK; };
    EXPECT_EQ(all[0](list.put()), E_FAIL) << "nothing was built for the bank";
    EXPECT_EQ(all[1](list.put()), E_FAIL);
    names->onBuild = nullptr;
    for (const auto& ask : all) EXPECT_TRUE(SUCCEEDED(ask(list.put())) && list);
}

TEST(InstrumentNames, AreBuiltUnderALockOfTheirOwn) {
    bool gone = false;
    const RefPtr<WatchedInstrument> names(new WatchedInstrument(gone));
    std::vector<std::future<HRESULT>> others;
    names->onBuild = [&] {
        others.push_back(std::async(std::launch::async, [&] { return names->QueryPatchTrue(0, 0); }));
        EXPECT_EQ(others.back().wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
        return E_ABORT;
    };
    RefPtr<IKvxNameList> list;
    EXPECT_EQ(names->GetPatchList(0, list.put()), E_ABORT);
    EXPECT_EQ(names->GetNoteList(0, 0, list.put()), E_ABORT);
    EXPECT_EQ(names->GetControllerList(list.put()), E_ABORT);
    EXPECT_EQ(names->GetRpnList(list.put()), E_ABORT);
    EXPECT_EQ(names->GetNrpnList(list.put()), E_ABORT);
    for (auto& other : others) EXPECT_EQ(other.get(), S_OK);
}

TEST(InstrumentNames, EndWithTheLastReferenceWhileListsThatAreHeldStay) {
    bool gone = false;
    RefPtr<CInstrument> names(new WatchedInstrument(gone));
    const auto list = patches(*names, 0);
    const auto noteList = notes(*names, 0, 0);
    names.reset();
    EXPECT_TRUE(gone);
    EXPECT_EQ(listName(*list), "Marnoth Patches");
    EXPECT_EQ(list->AddRef(), 2u);
    EXPECT_EQ(list->Release(), 1u) << "the test's own is the last";
}

TEST(SynthNames, AreThoseOfItsInstrument) {
    SynthHost host;
    IKvxSoftSynth2& synth = host.synth;
    RefPtr<IKvxInstrument> names;
    ASSERT_EQ(synth.GetInstrument(77, names.put()), S_OK);
    EXPECT_EQ(synth.GetInstrument(77, nullptr), E_POINTER);
    NameBuffer buffer;
    EXPECT_EQ(names->GetName(buffer.bytes.data(), 64), S_OK);
    EXPECT_EQ(buffer.text(), "Marnoth");

    RefPtr<IKvxNameList> list, same;
    EXPECT_EQ(synth.GetPatchList(5, list.put()), S_OK);
    EXPECT_EQ(names->GetPatchList(5, same.put()), S_OK);
    EXPECT_TRUE(list == same);
    EXPECT_EQ(synth.GetNoteList(0, 999, list.put()), S_FALSE);
    EXPECT_EQ(names->GetNoteList(0, 999, same.put()), S_FALSE);
    EXPECT_TRUE(list == same);
    EXPECT_EQ(synth.GetControllerList(list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth Controllers");
    EXPECT_EQ(synth.GetRpnList(list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth RPNs");
    EXPECT_EQ(synth.GetNrpnList(list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth NRPNs");

    EXPECT_EQ(synth.QueryPatchFalse(0xFFFFFFFF, 0), S_FALSE) << "any bank";
    EXPECT_EQ(synth.QueryPatchFalse(0, 128), E_INVALIDARG);
    EXPECT_EQ(synth.QueryPatchTrue(0, 127), S_OK);
    EXPECT_EQ(synth.GetPatchList(16384, list.put()), E_INVALIDARG);
    std::int32_t* banks = nullptr;
    std::uint32_t count = 0;
    EXPECT_EQ(synth.GetBankList(&banks, &count), S_OK);
    EXPECT_EQ(count, 1u);
    CoTaskMemFree(banks);
}

TEST(SynthNames, AreAskedUnderTheLock) {
    SynthHost host;
    std::future<HRESULT> asked;
    {
        CAutoLock lock(host.pzi);
        asked = std::async(std::launch::async, [&] { return host.synth.QueryPatchTrue(0, 0); });
        EXPECT_EQ(asked.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    }
    EXPECT_EQ(asked.get(), S_OK);
}

TEST(SynthNames, OutliveTheSynthWithWhoeverHoldsThem) {
    RefPtr<IKvxInstrument> names;
    {
        SynthHost host;
        ASSERT_EQ(host.synth.GetInstrument(0, names.put()), S_OK);
        EXPECT_EQ(names->AddRef(), 3u);
        EXPECT_EQ(names->Release(), 2u);
    }
    EXPECT_EQ(names->AddRef(), 2u);
    EXPECT_EQ(names->Release(), 1u);
    EXPECT_EQ(names->QueryPatchTrue(0, 0), S_OK);
}

/// Calls an operation by its place in the table, as a host compiled elsewhere does.
template <class... Arguments>
HRESULT callSlot(IUnknown& object, int slot, Arguments... arguments) {
    using Operation = HRESULT (*)(void*, Arguments...);
    void** table = nullptr;
    std::memcpy(&table, static_cast<void*>(&object), sizeof table);
    return reinterpret_cast<Operation>(table[slot])(&object, arguments...);
}

TEST(NameSlots, OfAListAreWhereHostsCallThem) {
    const auto list = drums();
    NameBuffer buffer;
    char* text = buffer.bytes.data();
    std::uint32_t value = 0;
    void* position = nullptr;
    EXPECT_EQ(callSlot(*list, 3, text, 64), S_OK);
    EXPECT_EQ(buffer.text(), "Drums");
    EXPECT_EQ(callSlot(*list, 4, &value), S_OK);
    EXPECT_EQ(value, 128u);
    EXPECT_EQ(callSlot(*list, 5, 42, text, 64), S_OK);
    EXPECT_EQ(buffer.text(), "Hat");
    EXPECT_EQ(callSlot(*list, 6, &value), S_OK);
    EXPECT_EQ(value, 3u);
    EXPECT_EQ(callSlot(*list, 7, &position), S_OK);
    EXPECT_EQ(callSlot(*list, 8, &position, &value, text, 64), S_OK);
    EXPECT_EQ(value, 36u);
    EXPECT_EQ(callSlot(*list, 9, 43, text, 64), S_FALSE);
}

TEST(NameSlots, OfAnInstrumentAreWhereHostsCallThem) {
    const auto names = instrument();
    NameBuffer buffer;
    RefPtr<IKvxNameList> list;
    std::int32_t* banks = nullptr;
    std::uint32_t count = 0;
    EXPECT_EQ(callSlot(*names, 3, buffer.bytes.data(), 64), S_OK);
    EXPECT_EQ(buffer.text(), "Marnoth");
    EXPECT_EQ(callSlot(*names, 4, &banks, &count), S_OK);
    CoTaskMemFree(banks);
    EXPECT_EQ(callSlot(*names, 5, 0, 0), S_FALSE);
    EXPECT_EQ(callSlot(*names, 6, 0, 0), S_OK);
    EXPECT_EQ(callSlot(*names, 7, 0, list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth Patches");
    EXPECT_EQ(callSlot(*names, 8, 0, 0, list.put()), S_FALSE);
    EXPECT_EQ(listName(*list), "Marnoth Notes");
    EXPECT_EQ(callSlot(*names, 9, list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth Controllers");
    EXPECT_EQ(callSlot(*names, 10, list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth RPNs");
    EXPECT_EQ(callSlot(*names, 11, list.put()), S_OK);
    EXPECT_EQ(listName(*list), "Marnoth NRPNs");
}

}  // namespace
}  // namespace marnoth::test::name_lists_test
