#include "host/AudioFormats.h"
#include "host/FilterHost.h"
#include "host/SynthUnderTest.h"

namespace marnoth::test::audio_formats_test {
namespace {

HRESULT check(const CMediaType& type) {
    return CheckAudioMediaType(type.Get());
}

TEST(AudioMediaType, TakesFloatOf32AndIntegerOf16BitsInOneOrTwoChannels) {
    EXPECT_EQ(check(audioType(44100, 1)), S_OK);
    EXPECT_EQ(check(audioType(44100, 2)), S_OK);
    EXPECT_EQ(check(audioType(44100, 1, 1, 16)), S_OK);
    EXPECT_EQ(check(audioType(44100, 2, 0xFFFE, 16)), S_OK);
}

TEST(AudioMediaType, RefusesOtherWidthsAndTags) {
    EXPECT_EQ(check(audioType(44100, 2, 3, 64)), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(check(audioType(44100, 2, 1, 24)), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(check(audioType(44100, 2, 2, 16)), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(AudioMediaType, RefusesThreeChannelsAndNone) {
    EXPECT_EQ(check(audioType(44100, 3)), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(check(audioType(44100, 0)), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(AudioMediaType, RefusesAnExtensibleFormatOf32BitsIn24Bytes) {
    struct {
        WAVEFORMATEX format = waveFormat(44100, 2, 0xFFFE, 32);
        BYTE extra[6] = {};
    } block;
    static_assert(sizeof block == 24);
    CMediaType type = audioType(44100, 2);
    ASSERT_EQ(type.SetFormatBlock(&block, sizeof block), S_OK);
    EXPECT_EQ(check(type), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(AudioMediaType, DoesntLookIntoABlockOf17Bytes) {
    CMediaType type = audioType(44100, 2);
    AM_MEDIA_TYPE shorter = *type;
    shorter.cbFormat = 17;
    // Reading from here would crash.
    shorter.pbFormat = reinterpret_cast<BYTE*>(8);
    EXPECT_EQ(CheckAudioMediaType(&shorter), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(AudioMediaType, RefusesARecordThatPromisesABlockAndHasNone) {
    AM_MEDIA_TYPE type = *audioType(44100, 2).Get();
    type.cbFormat = 18;
    type.pbFormat = nullptr;
    EXPECT_EQ(CheckAudioMediaType(&type), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(AudioMediaType, LooksAtTheMajorTypeAndNotAtTheOthers) {
    CMediaType type = audioType(44100, 2);
    type->subtype = GUID_NULL;
    type->formattype = GUID_NULL;
    EXPECT_EQ(check(type), S_OK);
    type->majortype = GUID_NULL;
    EXPECT_EQ(check(type), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(AudioMediaType, RefusesCompressionInTime) {
    CMediaType type = audioType(44100, 2);
    type->bTemporalCompression = TRUE;
    EXPECT_EQ(check(type), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(AudioMediaType, OfNothingIsABadPointer) {
    EXPECT_EQ(CheckAudioMediaType(nullptr), E_POINTER);
}

TEST(Transform, ChangesChannelsInAnyDirectionButNeverTheRate) {
    FilterHost host;
    CPzi& pzi = host.filter->pzi();
    const CMediaType mono = audioType(44100, 1), stereo = audioType(44100, 2), faster = audioType(48000, 2);
    EXPECT_EQ(CheckTransform(pzi, mono.Get(), stereo.Get()), S_OK);
    EXPECT_EQ(CheckTransform(pzi, stereo.Get(), mono.Get()), S_OK);
    EXPECT_EQ(CheckTransform(pzi, stereo.Get(), faster.Get()), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(Transform, RefusesIntegersOnEitherSide) {
    FilterHost host;
    CPzi& pzi = host.filter->pzi();
    const CMediaType floats = audioType(44100, 2), integers = audioType(44100, 2, 1, 16);
    EXPECT_EQ(CheckTransform(pzi, integers.Get(), floats.Get()), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(CheckTransform(pzi, floats.Get(), integers.Get()), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(Transform, LeavesTheLastWordToTheInstrument) {
    struct Refusing : FakePzi {
        HRESULT CheckFormatPair(const WAVEFORMATEX* in, const WAVEFORMATEX* out) override {
            return in->nChannels == out->nChannels ? S_OK : E_ABORT;
        }
    } pzi;
    EXPECT_EQ(CheckTransform(pzi, audioType(44100, 1).Get(), audioType(44100, 2).Get()), E_ABORT);
    EXPECT_EQ(CheckTransform(pzi, audioType(44100, 1).Get(), audioType(44100, 1).Get()), S_OK);
}

TEST(FormatOfADirection, IsTakenOverOnlyWhenEveryTestPasses) {
    FakePzi pzi;
    pzi.inputFormat = pzi.outputFormat = waveFormat(22050, 1);
    EXPECT_EQ(SetFormat(pzi, PINDIR_INPUT, nullptr), E_POINTER);
    EXPECT_EQ(SetFormat(pzi, PINDIR_OUTPUT, audioType(44100, 3).Get()), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(+pzi.inputFormat.nSamplesPerSec, 22050u);
    EXPECT_EQ(SetFormat(pzi, PINDIR_INPUT, audioType(44100, 2).Get()), S_OK);
    EXPECT_EQ(+pzi.inputFormat.nSamplesPerSec, 44100u);
    EXPECT_EQ(pzi.inputFormat.nBlockAlign, 8);
    EXPECT_EQ(+pzi.outputFormat.nSamplesPerSec, 22050u);
    EXPECT_EQ(SetFormat(pzi, PINDIR_OUTPUT, audioType(48000, 2).Get()), S_OK);
    EXPECT_EQ(+pzi.outputFormat.nSamplesPerSec, 48000u);
}

TEST(FormatOfADirection, NeedsAPlainYesOfTheInstrument) {
    struct Hesitating : FakePzi {
        HRESULT CheckInputFormat(const WAVEFORMATEX*) override { return S_FALSE; }
    } pzi;
    EXPECT_EQ(SetFormat(pzi, PINDIR_INPUT, audioType(48000, 2).Get()), S_FALSE);
    EXPECT_NE(+pzi.inputFormat.nSamplesPerSec, 48000u);
}

TEST(FormatOfADirection, HasTheFrameSizeOfItsChannelsWhateverTheRecordSays) {
    FakePzi pzi;
    for (const WORD told : {0, 1, 4, 7, 0xFFFF}) {
        WAVEFORMATEX format = waveFormat(44100, 2);
        format.nBlockAlign = told;
        EXPECT_EQ(SetFormat(pzi, PINDIR_INPUT, audioType(format).Get()), S_OK);
        EXPECT_EQ(pzi.inputFormat.nBlockAlign, 8);
        format.nChannels = 1;
        EXPECT_EQ(SetFormat(pzi, PINDIR_OUTPUT, audioType(format).Get()), S_OK);
        EXPECT_EQ(pzi.outputFormat.nBlockAlign, 4);
    }
}

}  // namespace
}  // namespace marnoth::test::audio_formats_test
