#include <gtest/gtest.h>

#include "shells/desktop/playing/LiveInstrument.h"
#include "shells/desktop/playing/PadKeys.h"

namespace marnoth::test::pad_keys_test {
namespace {

TEST(PadKeys, FourRowsOfFourKeysLieAsThePadsDo) {
    LiveInstrument instrument;
    PadKeys keys;
    // The white keys from 60: pads 1, 5 and 16.
    EXPECT_EQ(keys.press('1', instrument.sampler()).value().key, 60);
    EXPECT_EQ(keys.press('Q', instrument.sampler()).value().key, 67);
    EXPECT_EQ(keys.press('V', instrument.sampler()).value().key, 86);
    EXPECT_TRUE(keys.press('Z', instrument.sampler()).value().on);
}

TEST(PadKeys, AKeyThatIsHeldPlaysOnce) {
    LiveInstrument instrument;
    PadKeys keys;
    EXPECT_TRUE(keys.press('1', instrument.sampler()));
    EXPECT_FALSE(keys.press('1', instrument.sampler()));
    const auto released = keys.release('1');
    ASSERT_TRUE(released);
    EXPECT_FALSE(released->on);
    EXPECT_EQ(released->key, 60);
    EXPECT_FALSE(keys.release('1'));
    EXPECT_TRUE(keys.press('1', instrument.sampler()));
}

TEST(PadKeys, TheNoteThatBeganEndsThoughTheKeyMapHasChanged) {
    LiveInstrument instrument;
    PadKeys keys;
    keys.press('1', instrument.sampler());
    const KeyMapRecord moved{0, 30, 30, 30, 0, 127};
    instrument.sampler().SetKeyMapEntry(&moved);
    EXPECT_EQ(keys.release('1').value().key, 60);
    EXPECT_EQ(keys.press('1', instrument.sampler()).value().key, 30);
}

TEST(PadKeys, OthersPlayNothing) {
    LiveInstrument instrument;
    PadKeys keys;
    for (const int key : {0, 27, 32, int{'G'}, int{'5'}, 189, 500})
        EXPECT_FALSE(keys.press(key, instrument.sampler())) << key;
}

}  // namespace
}  // namespace marnoth::test::pad_keys_test
