#include "engine/EditRig.h"

namespace marnoth::test::keys_and_options_test {
namespace {

std::vector<std::int32_t> valuesOf(const KeyMapRecord& entry) {
    return {entry.pad, entry.lowKey, entry.highKey, entry.rootKey, entry.lowVelocity, entry.highVelocity};
}

TEST(KeyMapEntry, OfAPadIsItsWhiteKeyAtFirst) {
    EditRig rig;
    KeyMapRecord entry{4, 0, 0, 0, 0, 0};
    EXPECT_EQ(rig.engine.GetKeyMapEntry(&entry), S_OK);
    EXPECT_EQ(valuesOf(entry), (std::vector<std::int32_t>{4, 67, 67, 67, 0, 127}));
}

TEST(KeyMapEntry, IsKeptWithItsKeysInOrder) {
    EditRig rig;
    const KeyMapRecord given{4, 70, 60, 65, 0, 100};
    EXPECT_EQ(rig.engine.SetKeyMapEntry(&given), S_OK);
    KeyMapRecord entry{4, 0, 0, 0, 0, 0};
    rig.engine.GetKeyMapEntry(&entry);
    EXPECT_EQ(valuesOf(entry), (std::vector<std::int32_t>{4, 60, 70, 65, 0, 100}));
}

TEST(KeyMapEntry, OfABadPadIsRefused) {
    EditRig rig;
    for (const std::int32_t pad : {-1, 16}) {
        KeyMapRecord entry{pad, 1, 2, 3, 4, 5};
        EXPECT_EQ(rig.engine.GetKeyMapEntry(&entry), E_INVALIDARG);
        EXPECT_EQ(rig.engine.SetKeyMapEntry(&entry), E_INVALIDARG);
        EXPECT_EQ(valuesOf(entry), (std::vector<std::int32_t>{pad, 1, 2, 3, 4, 5}));
    }
    EXPECT_EQ(rig.engine.GetKeyMapEntry(nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.SetKeyMapEntry(nullptr), E_POINTER);
}

TEST(Options, ARefreshRequestIsReadOnce) {
    EditRig rig;
    std::uint32_t value = 55;
    EXPECT_EQ(rig.engine.SetRefreshRequest(2), S_OK);
    EXPECT_EQ(rig.engine.GetRefreshRequest(&value), S_OK);
    EXPECT_EQ(value, 2u);
    EXPECT_EQ(rig.engine.GetRefreshRequest(&value), S_OK);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(rig.engine.GetRefreshRequest(nullptr), E_POINTER);
}

TEST(Options, TheAuditionOptionIsKept) {
    EditRig rig;
    std::uint32_t value = 55;
    EXPECT_EQ(rig.engine.GetAuditionEnabled(&value), S_OK);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(rig.engine.SetAuditionEnabled(1), S_OK);
    rig.engine.GetAuditionEnabled(&value);
    EXPECT_EQ(value, 1u);
    EXPECT_EQ(rig.engine.GetAuditionEnabled(nullptr), E_POINTER);
}

}  // namespace
}  // namespace marnoth::test::keys_and_options_test
