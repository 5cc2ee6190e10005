#include <gtest/gtest.h>

#include "engine/VoiceRig.h"
#include "engine/model/KeyMap.h"

namespace marnoth::test::key_map_test {
namespace {

/// A map over the pads, of whose entries only the first four fields matter to most tests.
struct Map {
    Pads pads;
    CKeyMap map;
    CKeyMap::Answers room;
    std::span<const AnsweringPad> found;

    static KeyMapRecord entry(std::int32_t pad, std::int32_t low, std::int32_t high, std::int32_t root) {
        return {pad, low, high, root, 0, 127};
    }
    std::size_t find(std::int32_t key, std::int32_t channel = 0, std::int32_t velocity = 100) {
        found = map.FindPads(room, pads, key, channel, velocity);
        return found.size();
    }
};

TEST(KeyMap, NoteInTwoRangesSoundsBothPadsEachWithItsOwnOffset) {
    Map it;
    it.map.AddOrReplace(it.entry(0, 40, 60, 48));
    it.map.AddOrReplace(it.entry(1, 50, 70, 61));
    ASSERT_EQ(it.find(55), 2u);
    EXPECT_EQ(it.found[0].pad, 0);
    EXPECT_EQ(it.found[0].semitones, 7);
    EXPECT_EQ(it.found[1].pad, 1);
    EXPECT_EQ(it.found[1].semitones, -6);
}

TEST(KeyMap, RangeEndsAreInside) {
    Map it;
    it.map.AddOrReplace(it.entry(0, 40, 60, 48));
    EXPECT_EQ(it.find(39), 0u);
    EXPECT_EQ(it.find(40), 1u);
    EXPECT_EQ(it.find(60), 1u);
    EXPECT_EQ(it.find(61), 0u);
}

TEST(KeyMap, EachSearchForgetsTheOneBefore) {
    Map it;
    it.map.AddOrReplace(it.entry(0, 40, 60, 48));
    it.find(50);
    EXPECT_EQ(it.find(50), 1u);
    EXPECT_EQ(it.find(10), 0u);
    EXPECT_EQ(it.found.size(), 0u);
}

TEST(KeyMap, PadOnChannel3IgnoresChannel4WhateverItsKeys) {
    Map it;
    it.pads[0].midiChannel = 3;
    it.map.AddOrReplace(it.entry(0, 0, 127, 60));
    EXPECT_EQ(it.find(60, 4), 0u);
    EXPECT_EQ(it.find(60, 3), 1u);
}

TEST(KeyMap, OmniPadAnswersEveryChannel) {
    Map it;
    it.map.AddOrReplace(it.entry(0, 60, 60, 60));
    for (std::int32_t channel = 0; channel < 16; ++channel) EXPECT_EQ(it.find(60, channel), 1u);
}

TEST(KeyMap, VelocitySelectsAndMinusOneIsAny) {
    Map it;
    KeyMapRecord soft = it.entry(0, 0, 127, 60);
    soft.lowVelocity = 1;
    soft.highVelocity = 63;
    it.map.AddOrReplace(soft);
    EXPECT_EQ(it.find(60, 0, 1), 1u);
    EXPECT_EQ(it.find(60, 0, 63), 1u);
    EXPECT_EQ(it.find(60, 0, 64), 0u);
    EXPECT_EQ(it.find(60, 0, -1), 1u);
}

TEST(KeyMap, VelocitiesOutOfOrderMatchNoNote) {
    Map it;
    KeyMapRecord entry = it.entry(0, 0, 127, 60);
    entry.lowVelocity = 80;
    entry.highVelocity = 40;
    it.map.AddOrReplace(entry);
    EXPECT_EQ(it.find(60, 0, 60), 0u);
    EXPECT_EQ(it.find(60, 0, -1), 1u);
}

TEST(KeyMap, OverwritingPutsKeysInOrder) {
    Map it;
    it.map.AddOrReplace(it.entry(0, 1, 2, 1));
    EXPECT_EQ(it.map.AddOrReplace(it.entry(0, 70, 60, 65)), 1);
    ASSERT_NE(it.map.find(0), nullptr);
    EXPECT_EQ(it.map.find(0)->lowKey, 60);
    EXPECT_EQ(it.map.find(0)->highKey, 70);
    EXPECT_EQ(it.map.find(0)->rootKey, 65);
}

TEST(KeyMap, NewEntryKeepsItsKeysAsGiven) {
    Map it;
    EXPECT_EQ(it.map.AddOrReplace(it.entry(0, 70, 60, 65)), 1);
    EXPECT_EQ(it.map.find(0)->lowKey, 70);
    EXPECT_EQ(it.map.find(0)->highKey, 60);
}

TEST(KeyMap, FullMapTakesNoSeventeenthEntry) {
    Map it;
    for (std::int32_t pad = 0; pad < 16; ++pad) {
        EXPECT_EQ(it.map.AddOrReplace(it.entry(pad, 60, 60, 60)), pad + 1);
    }
    EXPECT_EQ(it.map.AddOrReplace(it.entry(16, 60, 60, 60)), 16);
    EXPECT_EQ(it.map.find(16), nullptr);
}

TEST(KeyMap, EngineStartsWithOneWhiteKeyForEachPad) {
    VoiceRig rig;
    const std::int32_t keys[] = {60, 62, 64, 65, 67, 69, 71, 72, 74, 76, 77, 79, 81, 83, 84, 86};
    for (std::int32_t pad = 0; pad < 16; ++pad) {
        KeyMapRecord entry{pad, -1, -1, -1, -1, -1};
        ASSERT_EQ(rig.engine.GetKeyMapEntry(&entry), S_OK);
        EXPECT_EQ(entry.lowKey, keys[pad]);
        EXPECT_EQ(entry.highKey, keys[pad]);
        EXPECT_EQ(entry.rootKey, keys[pad]);
        EXPECT_EQ(entry.lowVelocity, 0);
        EXPECT_EQ(entry.highVelocity, 127);
    }
}

TEST(KeyMap, ResetMakesPadsOneShotOmniOnTheMixWithoutRoot) {
    VoiceRig rig;
    for (std::int32_t pad = 0; pad < 16; ++pad) {
        rig.engine.SetPadOneShot(pad, 0);
        rig.engine.SetPadChannel(pad, 5);
        rig.engine.SetPadOutput(pad, 2);
        rig.engine.SetPadRootNote(pad, 7);
        rig.engine.SetPadFollowKey(pad, 1);
        rig.engine.SetPadTail(pad, 1);
    }
    rig.engine.ClearProject();
    for (std::int32_t pad = 0; pad < 16; ++pad) {
        std::uint32_t oneShot = 0, output = 1, follow = 1, tail = 1;
        std::int32_t channel = 0, root = 0;
        rig.engine.GetPadOneShot(pad, &oneShot);
        rig.engine.GetPadOutput(pad, &output);
        rig.engine.GetPadFollowKey(pad, &follow);
        rig.engine.GetPadTail(pad, &tail);
        rig.engine.GetPadChannel(pad, &channel);
        rig.engine.GetPadRootNote(pad, &root);
        EXPECT_EQ(oneShot, 1u);
        EXPECT_EQ(output, 0u);
        EXPECT_EQ(follow, 0u);
        EXPECT_EQ(tail, 0u);
        EXPECT_EQ(channel, -1);
        EXPECT_EQ(root, -1);
    }
}

}  // namespace
}  // namespace marnoth::test::key_map_test
