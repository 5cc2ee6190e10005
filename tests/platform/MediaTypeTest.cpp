#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "platform/TestFilter.h"
#include "platform/graph/MediaType.h"

namespace marnoth::test::media_type_test {
namespace {

using test::floatFormat;
using test::floatType;
using test::TestFilter;

TEST(MediaType, WaveFormatMakesAnAudioTypeOfItsTag) {
    const CMediaType type = floatType(2, 48000);
    EXPECT_TRUE(type->majortype == MEDIATYPE_Audio);
    EXPECT_TRUE(type->subtype == MEDIASUBTYPE_IEEE_FLOAT);
    EXPECT_TRUE(type->formattype == FORMAT_WaveFormatEx);
    EXPECT_EQ(type->cbFormat, 18u);
    EXPECT_EQ(type->lSampleSize, 8u);
    ASSERT_NE(type.WaveFormat(), nullptr);
    EXPECT_EQ(type.WaveFormat()->nSamplesPerSec, 48000u);
}

TEST(MediaType, ACopyOwnsItsFormatBlock) {
    CMediaType copy;
    {
        const CMediaType original = floatType(1);
        ASSERT_EQ(copy.Set(*original), S_OK);
        EXPECT_NE(copy->pbFormat, original->pbFormat);
    }
    EXPECT_EQ(copy.WaveFormat()->nChannels, 1);
}

TEST(MediaType, SettingFromItselfKeepsTheContent) {
    CMediaType type = floatType(2);
    ASSERT_EQ(type.Set(*type), S_OK);
    EXPECT_EQ(type.WaveFormat()->nChannels, 2);
}

TEST(MediaType, ACopyHoldsAReferenceToTheObjectInside) {
    TestFilter object;
    CMediaType type = floatType();
    type->pUnk = object.Owner();
    type->pUnk->AddRef();
    EXPECT_EQ(object.references(), 2u);
    {
        CMediaType copy;
        ASSERT_EQ(copy.Set(*type), S_OK);
        EXPECT_EQ(object.references(), 3u);
    }
    EXPECT_EQ(object.references(), 2u);
    type.Reset();
    EXPECT_EQ(object.references(), 1u);
}

TEST(MediaType, BytesWithoutABlockAreRefusedAndTheContentStays) {
    CMediaType type = floatType(2);
    AM_MEDIA_TYPE broken{};
    broken.majortype = MEDIATYPE_Audio;
    broken.cbFormat = 18;
    EXPECT_EQ(type.Set(broken), E_INVALIDARG);
    EXPECT_EQ(type.WaveFormat()->nChannels, 2);
    AM_MEDIA_TYPE out;
    EXPECT_EQ(CopyMediaType(&out, broken), E_INVALIDARG);
    EXPECT_EQ(out.pbFormat, nullptr);
    EXPECT_EQ(CreateMediaType(broken), nullptr);
}

TEST(MediaType, ABlockOf17BytesIsNoWaveFormat) {
    CMediaType type;
    const std::array<BYTE, 18> bytes{};
    ASSERT_EQ(type.SetFormatBlock(bytes.data(), 17), S_OK);
    EXPECT_EQ(type.WaveFormat(), nullptr);
    ASSERT_EQ(type.SetFormatBlock(bytes.data(), 18), S_OK);
    EXPECT_NE(type.WaveFormat(), nullptr);
}

TEST(MediaType, TheBytesBehindAWaveFormatComeAlong) {
    std::array<BYTE, 22> bytes{};
    WAVEFORMATEX format = floatFormat(2, 44100);
    format.cbSize = 4;
    std::memcpy(bytes.data(), &format, sizeof format);
    bytes[21] = 0x5A;
    CMediaType type;
    ASSERT_EQ(type.SetWaveFormat(*reinterpret_cast<const WAVEFORMATEX*>(bytes.data())), S_OK);
    ASSERT_EQ(type->cbFormat, 22u);
    EXPECT_EQ(type->pbFormat[21], 0x5A);
}

TEST(MediaType, MovingLeavesTheSourceEmpty) {
    CMediaType source = floatType(2);
    const CMediaType target = std::move(source);
    EXPECT_EQ(target.WaveFormat()->nChannels, 2);
    EXPECT_EQ(source->pbFormat, nullptr);
}

TEST(MediaType, IsFullOnceMajorAndFormatTypeAreGiven) {
    CMediaType type = floatType();
    EXPECT_TRUE(IsFullySpecified(*type));
    type->subtype = GUID_NULL;
    EXPECT_TRUE(IsFullySpecified(*type));
    type->formattype = GUID_NULL;
    EXPECT_FALSE(IsFullySpecified(*type));
}

TEST(MediaType, AnOpenFieldMatchesAnythingAndAGivenOneOnlyItself) {
    const CMediaType stereo = floatType(2);
    const CMediaType mono = floatType(1);
    AM_MEDIA_TYPE wanted{};
    EXPECT_TRUE(MatchesPartial(*stereo, wanted));
    wanted.majortype = MEDIATYPE_Audio;
    EXPECT_TRUE(MatchesPartial(*stereo, wanted));
    wanted.subtype = MEDIASUBTYPE_PCM;
    EXPECT_FALSE(MatchesPartial(*stereo, wanted));
    EXPECT_TRUE(MatchesPartial(*stereo, *stereo));
    EXPECT_FALSE(MatchesPartial(*stereo, *mono)) << "the format blocks differ";
}

}  // namespace
}  // namespace marnoth::test::media_type_test
