#include <gtest/gtest.h>

#include "platform/TestFilter.h"

namespace marnoth::test::enumerator_test {
namespace {

using test::TestFilter;

TEST(EnumPins, GivesThePinsInOrderAndThenFalse) {
    TestFilter filter;
    RefPtr<IEnumPins> pins;
    ASSERT_EQ(filter.EnumPins(pins.put()), S_OK);
    RefPtr<IPin> pin;
    ULONG fetched = 9;
    EXPECT_EQ(pins->Next(1, pin.put(), &fetched), S_OK);
    EXPECT_EQ(fetched, 1u);
    EXPECT_EQ(pin.get(), &filter.input);
    EXPECT_EQ(pins->Next(1, pin.put(), nullptr), S_OK);
    EXPECT_EQ(pin.get(), &filter.output);
    EXPECT_EQ(pins->Next(1, pin.put(), &fetched), S_FALSE);
    EXPECT_EQ(fetched, 0u);
    EXPECT_FALSE(pin);
}

TEST(EnumPins, GivesWhatIsThereWhenAskedForMore) {
    TestFilter filter;
    RefPtr<IEnumPins> pins;
    filter.EnumPins(pins.put());
    IPin* out[5] = {};
    ULONG fetched = 0;
    EXPECT_EQ(pins->Next(5, out, &fetched), S_FALSE);
    ASSERT_EQ(fetched, 2u);
    out[0]->Release();
    out[1]->Release();
    pins.reset();
    EXPECT_EQ(filter.references(), 1u);
}

TEST(EnumPins, SeveralPinsNeedAPlaceForTheirNumber) {
    TestFilter filter;
    RefPtr<IEnumPins> pins;
    filter.EnumPins(pins.put());
    IPin* out[2] = {};
    EXPECT_EQ(pins->Next(2, out, nullptr), E_INVALIDARG);
    EXPECT_EQ(pins->Next(1, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(out[0], nullptr);
}

TEST(EnumPins, SkipsResetsAndClonesAtItsPosition) {
    TestFilter filter;
    RefPtr<IEnumPins> pins;
    filter.EnumPins(pins.put());
    EXPECT_EQ(pins->Skip(1), S_OK);
    RefPtr<IEnumPins> clone;
    ASSERT_EQ(pins->Clone(clone.put()), S_OK);
    RefPtr<IPin> pin;
    EXPECT_EQ(clone->Next(1, pin.put(), nullptr), S_OK);
    EXPECT_EQ(pin.get(), &filter.output);
    EXPECT_EQ(pins->Skip(2), S_FALSE);
    EXPECT_EQ(pins->Next(1, pin.put(), nullptr), S_FALSE);
    EXPECT_EQ(pins->Reset(), S_OK);
    EXPECT_EQ(pins->Skip(0xFFFFFFFF), S_FALSE);
    EXPECT_EQ(pins->Reset(), S_OK);
    EXPECT_EQ(pins->Next(1, pin.put(), nullptr), S_OK);
    EXPECT_EQ(pin.get(), &filter.input);
}

TEST(EnumPins, ANewPinPutsItOutOfSyncUntilReset) {
    TestFilter filter;
    RefPtr<IEnumPins> pins;
    filter.EnumPins(pins.put());
    filter.IncrementPinVersion();
    RefPtr<IPin> pin;
    RefPtr<IEnumPins> clone;
    EXPECT_EQ(pins->Next(1, pin.put(), nullptr), VFW_E_ENUM_OUT_OF_SYNC);
    EXPECT_EQ(pins->Skip(1), VFW_E_ENUM_OUT_OF_SYNC);
    EXPECT_EQ(pins->Clone(clone.put()), VFW_E_ENUM_OUT_OF_SYNC);
    EXPECT_EQ(pins->Reset(), S_OK);
    EXPECT_EQ(pins->Next(1, pin.put(), nullptr), S_OK);
}

TEST(EnumPins, HoldsItsFilter) {
    TestFilter filter;
    RefPtr<IEnumPins> pins;
    filter.EnumPins(pins.put());
    EXPECT_EQ(filter.references(), 2u);
    RefPtr<IUnknown> identity;
    EXPECT_EQ(pins->QueryInterface(IID_IEnumPins, identity.putVoid()), S_OK);
}

int channelsOfNext(IEnumMediaTypes& types) {
    AM_MEDIA_TYPE* type = nullptr;
    if (types.Next(1, &type, nullptr) != S_OK) return -1;
    const int channels = WaveFormatOf(*type)->nChannels;
    DeleteMediaType(type);
    return channels;
}

TEST(EnumMediaTypes, GivesThePinsProposalsInOrder) {
    TestFilter filter;
    filter.output.behaviour.proposedChannels = {2, 1};
    RefPtr<IEnumMediaTypes> types;
    ASSERT_EQ(filter.output.EnumMediaTypes(types.put()), S_OK);
    EXPECT_EQ(channelsOfNext(*types), 2);
    EXPECT_EQ(channelsOfNext(*types), 1);
    EXPECT_EQ(channelsOfNext(*types), -1);
    types->Reset();
    EXPECT_EQ(channelsOfNext(*types), 2);
}

TEST(EnumMediaTypes, SkipsAndClonesAtItsPosition) {
    TestFilter filter;
    filter.output.behaviour.proposedChannels = {3, 4, 5};
    RefPtr<IEnumMediaTypes> types;
    filter.output.EnumMediaTypes(types.put());
    EXPECT_EQ(types->Skip(2), S_OK);
    RefPtr<IEnumMediaTypes> clone;
    ASSERT_EQ(types->Clone(clone.put()), S_OK);
    EXPECT_EQ(channelsOfNext(*clone), 5);
    EXPECT_EQ(types->Skip(2), S_FALSE);
    EXPECT_EQ(channelsOfNext(*types), -1);
}

TEST(EnumMediaTypes, SeveralTypesAreAllTheCallers) {
    TestFilter filter;
    filter.output.behaviour.proposedChannels = {1, 2};
    RefPtr<IEnumMediaTypes> types;
    filter.output.EnumMediaTypes(types.put());
    AM_MEDIA_TYPE* out[3] = {};
    ULONG fetched = 0;
    EXPECT_EQ(types->Next(3, out, &fetched), S_FALSE);
    ASSERT_EQ(fetched, 2u);
    EXPECT_EQ(WaveFormatOf(*out[1])->nChannels, 2);
    DeleteMediaType(out[0]);
    DeleteMediaType(out[1]);
    EXPECT_EQ(types->Next(2, out, nullptr), E_INVALIDARG);
}

TEST(EnumMediaTypes, NewProposalsPutItOutOfSyncUntilReset) {
    TestFilter filter;
    filter.output.behaviour.proposedChannels = {2};
    RefPtr<IEnumMediaTypes> types;
    filter.output.EnumMediaTypes(types.put());
    filter.output.IncrementMediaTypeVersion();
    AM_MEDIA_TYPE* type = nullptr;
    EXPECT_EQ(types->Next(1, &type, nullptr), VFW_E_ENUM_OUT_OF_SYNC);
    EXPECT_EQ(types->Skip(1), VFW_E_ENUM_OUT_OF_SYNC);
    types->Reset();
    EXPECT_EQ(channelsOfNext(*types), 2);
}

TEST(EnumMediaTypes, APinWithoutProposalsGivesNone) {
    TestFilter filter;
    RefPtr<IEnumMediaTypes> types;
    ASSERT_EQ(filter.input.EnumMediaTypes(types.put()), S_OK);
    EXPECT_EQ(channelsOfNext(*types), -1);
}

}  // namespace
}  // namespace marnoth::test::enumerator_test
