#include <gtest/gtest.h>

#include "editor/PageRig.h"

/// What the page shows of the engine, and what its combos tell it.
namespace marnoth::test::page_values_test {
namespace {

constexpr Point kNowhere{20, 548};  ///< ground without a control on it

class PageValues : public testing::Test {
protected:
    /// Somebody asks for it, and the next tick comes.
    void refresh() {
        rig.engine.SetRefreshRequest(1);
        rig.window.tick();
        rig.calls();
    }

    PageRig rig;
};

TEST_F(PageValues, ARefreshShowsTheEnginesValues) {
    rig.engine.auditionEnabled = true;
    ModelPad& pad = rig.engine.pads[0];
    pad.oneShot = pad.tail = pad.solo = pad.looping = true;
    pad.output = 3;
    pad.channel = 15;
    pad.rootNote = 4;
    pad.lowKey = 36;
    pad.highKey = 127;
    pad.rootKey = 61;
    pad.lowVelocity = 7;
    pad.highVelocity = 99;
    pad.volume = 3.0f;
    pad.pan = 0.25f;
    rig.open();
    for (const int id : {+kAudition, +kOneShot, +kPadTail, 1145, 1057}) EXPECT_EQ(rig.state(id), 1) << id;
    for (const int id : {+kFollowKey, 1024, 1041, 1146}) EXPECT_EQ(rig.state(id), 0) << id;
    EXPECT_EQ(rig.text(kOutput), "Chan 3");
    EXPECT_EQ(rig.text(kMidiChannel), "Ch. 16");
    EXPECT_EQ(rig.text(kRootNote), "C#");
    EXPECT_EQ(rig.text(kLowKey), "C3");
    EXPECT_EQ(rig.text(kHighKey), "G10");
    EXPECT_EQ(rig.text(kRootKey), "C#5");
    EXPECT_EQ(rig.text(kLowVelocity), "7");
    EXPECT_EQ(rig.text(kHighVelocity), "99");
    EXPECT_EQ(rig.state(kFirstVolumeKnob), 100);  // held to 2
    EXPECT_EQ(rig.state(kFirstPanKnob), 25);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(PageValues, OfASyncedPadThatDoesNotLoopBothTogglesStandUp) {
    rig.engine.pads[6].synced = true;
    rig.engine.pads[7].synced = rig.engine.pads[7].looping = true;
    rig.open();
    EXPECT_EQ(rig.state(kFirstSynced + 6), 0);
    EXPECT_EQ(rig.state(kFirstLooping + 6), 0);
    EXPECT_EQ(rig.state(kFirstSynced + 7), 1);
    EXPECT_EQ(rig.state(kFirstLooping + 7), 1);
}

TEST_F(PageValues, AfterARefreshTheReadOutsShowPadSixteenUntilAPadIsChosen) {
    rig.engine.pads[0].volume = 0.0f;
    rig.engine.pads[0].pan = 0.25f;
    rig.engine.pads[15].volume = 2.0f;
    rig.engine.pads[15].pan = 0.75f;
    rig.open();
    EXPECT_EQ(rig.page->currentPad(), 0);
    EXPECT_EQ(rig.text(kPadVolumeText), "6.0");
    EXPECT_EQ(rig.text(kPadPanText), "50R");
    rig.page->SelectPad(0);
    EXPECT_EQ(rig.text(kPadVolumeText), "-Inf");
    EXPECT_EQ(rig.text(kPadPanText), "50L");
    refresh();
    EXPECT_EQ(rig.text(kPadVolumeText), "6.0");
    EXPECT_EQ(rig.text(kPadPanText), "50R");
}

TEST_F(PageValues, ACombosItemsStandForTheEnginesNumbers) {
    rig.open();
    const char* const roots[] = {"None", "A", "A#", "B", "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#"};
    for (int item = 0; item < 17; ++item) {
        rig.engine.pads[0].output = static_cast<std::uint32_t>(item);
        rig.engine.pads[0].channel = item - 1;
        rig.engine.pads[0].rootNote = item - 1;
        rig.page->RefreshAll();
        const std::string number = std::to_string(item);
        EXPECT_EQ(rig.text(kOutput), item == 0 ? "Mix Only" : "Chan " + number);
        EXPECT_EQ(rig.text(kMidiChannel), item == 0 ? "Omni" : "Ch. " + number);
        // For a note above the octave there is no item.
        EXPECT_EQ(rig.text(kRootNote), item < 13 ? roots[item] : "");
        EXPECT_EQ(rig.state(kRootNote), item < 13 ? item : -1);
    }
}

TEST_F(PageValues, ByTheScaleOfLoopsRootSixIsC) {
    rig.open();
    rig.page->setRootScale(RootScale::ofLoops);
    const char* const roots[] = {"F#", "G", "G#", "A", "A#", "B", "C", "C#", "D", "D#", "E", "F"};
    for (int root = 0; root < 12; ++root) {
        rig.engine.pads[0].rootNote = root;
        refresh();
        EXPECT_EQ(rig.text(kRootNote), roots[root]) << root;
    }
}

TEST_F(PageValues, ByTheScaleOfLoopsAChosenNoteSetsItsNumber) {
    rig.open();
    rig.page->setRootScale(RootScale::ofLoops);
    const std::pair<const char*, int> choices[] = {{"C", 6}, {"G#", 2}, {"A", 3},
                                                   {"B", 5}, {"F", 11}, {"F#", 0}};
    for (const auto& [note, root] : choices) {
        dynamic_cast<CFxComboBox&>(rig.control(kRootNote)).choose(note);
        EXPECT_EQ(rig.changes(), Calls{"SetPadRootNote 0 " + std::to_string(root)});
        EXPECT_EQ(rig.text(kRootNote), note);
        refresh();
        EXPECT_EQ(rig.text(kRootNote), note);
    }
    dynamic_cast<CFxComboBox&>(rig.control(kRootNote)).choose("None");
    EXPECT_EQ(rig.changes(), Calls{"SetPadRootNote 0 -1"});
}

TEST_F(PageValues, NoScaleNamesARootThatIsNoNote) {
    rig.open();
    for (const RootScale scale : {RootScale::fromA, RootScale::ofLoops}) {
        rig.page->setRootScale(scale);
        for (const auto& [root, text] : {std::pair{-1, "None"}, {12, ""}, {127, ""}}) {
            rig.engine.pads[0].rootNote = root;
            refresh();
            EXPECT_EQ(rig.text(kRootNote), text) << root;
        }
    }
}

TEST_F(PageValues, AnotherScaleShowsAtOnceAndTellsTheEngineNothing) {
    rig.engine.pads[0].rootNote = 6;
    rig.open();
    EXPECT_EQ(rig.text(kRootNote), "D#");
    rig.page->setRootScale(RootScale::ofLoops);
    EXPECT_EQ(rig.text(kRootNote), "C");
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(PageValues, ACombosChoiceCountsWhenItsListClosesAndOnceMoreWhenItIsLeft) {
    struct Case {
        int id;
        const char* call;
    };
    rig.open();
    rig.page->SelectPad(7);
    // Rows of the lists are 12 high, within a border of 1, under controls that are 12 high.
    for (const auto& [id, call] : {Case{kOutput, "SetPadOutput 7 3"}, Case{kMidiChannel, "SetPadChannel 7 2"},
                                   Case{kRootNote, "SetPadRootNote 7 2"}}) {
        rig.calls();
        rig.click(rig.on(id));
        EXPECT_EQ(rig.changes(), Calls{});
        const Rect place = rig.control(id).place();
        rig.click({place.left + 10, place.bottom + 1 + 3 * 12 + 6});
        EXPECT_EQ(rig.changes(), Calls{call});
        EXPECT_EQ(rig.state(id), 3);
        rig.click(kNowhere);
        EXPECT_EQ(rig.changes(), Calls{call});
    }
}

TEST_F(PageValues, TheSnapComboChangesThePageAlone) {
    rig.open();
    rig.page->focusControl(rig.control(kSnap));
    rig.window.type("4");
    EXPECT_EQ(rig.page->scale().snapIndex, 6);
    rig.click(kNowhere);
    EXPECT_EQ(rig.page->scale().snapIndex, 4);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(PageValues, AComboWhoseTextIsNoItemKeepsTheEnginesValue) {
    rig.engine.pads[0].output = 5;
    rig.engine.pads[0].rootNote = 40;
    rig.open();
    for (const int id : {+kOutput, +kMidiChannel, +kRootNote, +kSnap}) {
        rig.page->focusControl(rig.control(id));
        rig.window.type("chan 3");
        rig.click(kNowhere);
    }
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.text(kOutput), "chan 3");
    refresh();
    // A text that was empty from the start is no item either.
    rig.page->focusControl(rig.control(kRootNote));
    rig.click(kNowhere);
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.page->scale().snapIndex, 6);
    EXPECT_EQ(rig.text(kOutput), "Chan 5");
    EXPECT_EQ(rig.text(kSnap), "12");
}

}  // namespace
}  // namespace marnoth::test::page_values_test
