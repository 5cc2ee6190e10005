#include "editor/PanelRig.h"

/// The texts of the panels: the selected grain's, and the current pad's keys and velocities.
namespace marnoth::test::panel_edits_test {
namespace {

class GrainPanel : public PanelRig {
protected:
    /// Grain 1 of pad 3 is selected, or grain 2 as well.
    void openWithSelected(int count) {
        rig.fillPad(2, 4);
        open();
        rig.click(PageRig::onBeat(2, 1));
        rig.window.hold(kKeyShift);
        if (count == 2) rig.click(PageRig::onBeat(2, 2));
        rig.window.let(kKeyShift);
        rig.calls();
    }
    ModelGrain& grain(std::size_t index) {
        if (pad(2).grains.empty()) rig.fillPad(2, 4);
        return pad(2).grains.at(index);
    }
    /// Typing `text` gives the grain `value`, and the edit shows `result` then.
    template <class Value>
    void expectTyped(int id, const std::string& text, const std::string& setter, Value value,
                     const std::string& result) {
        EXPECT_EQ(typed(id, text), Calls{callText(setter, 2, 1, value)}) << text;
        EXPECT_EQ(shown, result) << text;
    }
};

TEST_F(GrainPanel, TransposeIsReadFromTheTextsStartAndHeldToTwoOctaves) {
    openWithSelected(1);
    const auto expect = [&](const std::string& text, int value) {
        expectTyped(1134, text, "SetGrainTranspose", value, std::to_string(value));
    };
    expect("7", 7);
    expect("-12", -12);
    expect("+3", 3);
    expect("  5 up", 5);
    expect("3.9", 3);
    expect("25", 24);
    expect("-30", -24);
}

TEST_F(GrainPanel, VolumeIsReadAsDecibels) {
    openWithSelected(1);
    const auto expect = [&](const std::string& text, float value, const std::string& result) {
        expectTyped(1135, text, "SetGrainVolume", value, result);
    };
    expect("0", 1.0f, "0.0");
    expect("-6", 0.501187234f, "-6.0");  // 10 to the power -0.3
    expect("-20 dB", 0.1f, "-20.0");
    expect("6.1", 2.0f, "6.0");  // 2.018 is held to 2
    expect("-Inf", 0.0f, "-Inf");
}

TEST_F(GrainPanel, Minus75DecibelsAreASmallGainAndLessIsSilence) {
    openWithSelected(1);
    expectTyped(1135, "-75", "SetGrainVolume", 0.000177827941f, "-75.0");  // 10 to the power -3.75
    expectTyped(1135, "-75.1", "SetGrainVolume", 0.0f, "-Inf");
}

TEST_F(GrainPanel, PanIsReadWithItsSideOrWithASign) {
    openWithSelected(1);
    const auto expect = [&](const std::string& text, float value, const std::string& result) {
        expectTyped(1136, text, "SetGrainPan", value, result);
    };
    expect("50L", 0.25f, "50L");
    expect("c", 0.5f, "C");
    expect("100r", 1.0f, "100R");
    expect("-30", 0.35f, "30L");
    expect("1R", 0.505f, "1R");
    expect("1l", 0.495f, "1L");
    expect("250", 1.0f, "100R");
    expect("20 C", 0.5f, "C");
}

TEST_F(GrainPanel, ATextThatCannotBeReadSendsTheValueBefore) {
    grain(1).transpose = 5;
    grain(1).volume = 0.5f;
    grain(1).pan = 0.25f;
    openWithSelected(1);
    expectTyped(1134, "up", "SetGrainTranspose", 5, "5");
    expectTyped(1135, "loud", "SetGrainVolume", 0.5f, "-6.0");
    expectTyped(1136, "r", "SetGrainPan", 0.25f, "50L");
}

TEST_F(GrainPanel, ShowsTheGrainThatWasSelectedFirst) {
    grain(1).transpose = -7;
    grain(1).volume = 2.0f;
    grain(1).pan = 0.75f;
    openWithSelected(1);
    EXPECT_EQ(texts({1134, 1135, 1136}), (Calls{"-7", "6.0", "50R"}));
    // (-7 + 24) / 48 is 0.354.
    EXPECT_EQ(rig.state(1167), 35);
    EXPECT_EQ(rig.state(1168), 100);
    EXPECT_EQ(rig.state(1169), 75);
}

TEST_F(GrainPanel, TheKnobsSendTheirValues) {
    openWithSelected(1);
    EXPECT_EQ(turned(1167, 2), (Calls{"SetGrainTranspose 2 1 0", "SetGrainTranspose 2 1 1"}))
        << "0.52 x 48 + 0.5 is 25.46";
    EXPECT_EQ(rig.text(1134), "1");
    EXPECT_EQ(turned(1167, 90).back(), "SetGrainTranspose 2 1 24");
    EXPECT_EQ(turned(1167, -100).back(), "SetGrainTranspose 2 1 -24");
    EXPECT_EQ(rig.text(1134), "-24");
    EXPECT_EQ(turned(1168, 20), (Calls{"SetGrainVolume 2 1 1", callText("SetGrainVolume", 2, 1, 1.4f)}));
    EXPECT_EQ(rig.text(1135), "2.9") << "20 log10(1.4) is 2.92";
    EXPECT_EQ(turned(1169, -20), (Calls{"SetGrainPan 2 1 0.5", callText("SetGrainPan", 2, 1, 0.3f)}));
    EXPECT_EQ(rig.text(1136), "40L");
}

TEST_F(GrainPanel, ATransposeKnobRestsOnTheNearestSemitone) {
    openWithSelected(1);
    // 0.51 x 48 + 0.5 is 24.98: still no semitone up, and the knob goes back to where 0 stands.
    EXPECT_EQ(turned(1167, 1), (Calls{"SetGrainTranspose 2 1 0", "SetGrainTranspose 2 1 0"}));
    EXPECT_EQ(rig.state(1167), 50);
}

TEST_F(GrainPanel, EachEditIsAppliedByReturnAndAgainWhenItIsLeft) {
    openWithSelected(1);
    const std::vector<std::pair<int, std::string>> expected{{1134, "SetGrainTranspose 2 1 0"},
                                                            {1135, "SetGrainVolume 2 1 1"},
                                                            {1136, "SetGrainPan 2 1 0.5"},
                                                            {1138, "SetKeyMapEntry 2 60 60 60 0 127"},
                                                            {1139, "SetKeyMapEntry 2 60 60 60 0 127"},
                                                            {1140, "SetKeyMapEntry 2 60 60 60 0 127"},
                                                            {1141, "SetKeyMapEntry 2 60 60 60 0 127"},
                                                            {1142, "SetKeyMapEntry 2 60 60 60 0 127"}};
    for (const auto& [id, call] : expected) {
        rig.page->focusControl(rig.control(id));
        EXPECT_EQ(rig.changes(), Calls{}) << id;
        rig.window.key(kKeyReturn);
        EXPECT_EQ(rig.changes(), Calls{call}) << id;
        EXPECT_EQ(left(), Calls{call}) << id;
    }
}

TEST_F(GrainPanel, WithTwoGrainsTheEditsShowNothingOfThemAndTypingChangesNothing) {
    grain(1).transpose = 12;
    openWithSelected(2);
    EXPECT_EQ(texts({1134, 1135, 1136}), (Calls{"0", "0", "C"}));
    EXPECT_EQ(rig.state(1167), 75) << "the knob stands at the first one's";
    for (const auto& [id, text] : {std::pair(1134, "7"), {1135, "-6"}, {1136, "50L"}})
        EXPECT_EQ(typed(id, text), Calls{}) << id;
    EXPECT_EQ(texts({1134, 1135, 1136}), (Calls{"0", "0", "C"}));
}

TEST_F(GrainPanel, WithTwoGrainsTheKnobsMoveAllTheSame) {
    openWithSelected(2);
    for (const int knob : {1167, 1168, 1169}) {
        EXPECT_EQ(turned(knob, 10), Calls{}) << knob;
        EXPECT_EQ(rig.state(knob), 60) << knob;
    }
    EXPECT_EQ(texts({1134, 1135, 1136}), (Calls{"0", "0", "C"}));
    rig.enter(1134, "12");
    EXPECT_EQ(rig.state(1167), 75) << "(12 + 24) / 48";
    rig.window.key(kKeyBackspace);
    rig.window.type("100");
    rig.window.key(kKeyReturn);
    EXPECT_EQ(rig.state(1167), 100) << "what isn't held goes through";
    rig.enter(1136, "50L");
    EXPECT_EQ(rig.state(1169), 25);
}

TEST_F(GrainPanel, WithoutAGrainTypingChangesNothing) {
    open();
    for (const auto& [id, text] : {std::pair(1134, "7"), {1135, "-6"}, {1136, "50L"}})
        EXPECT_EQ(typed(id, text), Calls{}) << id;
    EXPECT_EQ(texts({1134, 1135, 1136}), (Calls{"0", "0", "C"}));
}

constexpr int kHigh = 1138;
constexpr int kLow = 1139;
constexpr int kRoot = 1140;
constexpr int kSoftest = 1141;
constexpr int kLoudest = 1142;

/// Pad 1 lies on keys 30 to 40 with the root 36, at velocities 20 to 80.
class PadPanel : public PanelRig {
protected:
    PadPanel() { set({30, 40, 36, 20, 80}); }
    void set(const std::array<int, 5>& values) {
        pad(0).lowKey = values[0];
        pad(0).highKey = values[1];
        pad(0).rootKey = values[2];
        pad(0).lowVelocity = values[3];
        pad(0).highVelocity = values[4];
    }
};

TEST_F(PadPanel, ShowsTheKeysAsNotesAndTheVelocitiesAsNumbers) {
    open();
    EXPECT_EQ(texts({kLow, kHigh, kRoot, kSoftest, kLoudest}), (Calls{"F#2", "E3", "C3", "20", "80"}));
    pad(7).lowKey = 0;
    pad(7).highKey = 127;
    choosePad(7);
    EXPECT_EQ(texts({kLow, kHigh, kRoot, kSoftest, kLoudest}), (Calls{"C0", "G10", "C5", "0", "127"}));
}

TEST_F(PadPanel, C5AsTheLowKeyRaisesAHighKeyOf40) {
    open();
    EXPECT_EQ(typed(kLow, "C5"), Calls{"SetKeyMapEntry 0 60 60 36 20 80"});
    EXPECT_EQ(texts({kLow, kHigh}), (Calls{"C5", "C5"}));
}

TEST_F(PadPanel, AHighKeyBelowTheLowKeyLowersThat) {
    open();
    EXPECT_EQ(typed(kHigh, "C2"), Calls{"SetKeyMapEntry 0 24 24 36 20 80"});
    EXPECT_EQ(texts({kLow, kHigh}), (Calls{"C2", "C2"}));
}

TEST_F(PadPanel, TheRootKeyGoesAlone) {
    open();
    EXPECT_EQ(typed(kRoot, "a9"), Calls{"SetKeyMapEntry 0 30 40 117 20 80"});
    EXPECT_EQ(shown, "A9");
}

TEST_F(PadPanel, NotesAreReadInEitherCaseAndHeldToTheKeyboard) {
    open();
    EXPECT_EQ(typed(kRoot, "c#4"), Calls{"SetKeyMapEntry 0 30 40 49 20 80"});
    EXPECT_EQ(shown, "C#4");
    EXPECT_EQ(typed(kRoot, "C11"), Calls{"SetKeyMapEntry 0 30 40 0 20 80"}) << "no such octave";
    EXPECT_EQ(shown, "C0");
    EXPECT_EQ(typed(kRoot, "B10"), Calls{"SetKeyMapEntry 0 30 40 127 20 80"}) << "131 is held";
    EXPECT_EQ(shown, "G10");
}

TEST_F(PadPanel, ANoteThatCannotBeReadSendsTheOneBefore) {
    open();
    for (const std::string text : {"H3", "#4", "-", "C"}) {
        EXPECT_EQ(typed(kRoot, text), Calls{"SetKeyMapEntry 0 30 40 36 20 80"}) << text;
        EXPECT_EQ(shown, "C3") << text;
        EXPECT_EQ(typed(kLow, text), Calls{"SetKeyMapEntry 0 30 40 36 20 80"}) << text;
        EXPECT_EQ(shown, "F#2") << text;
        EXPECT_EQ(typed(kHigh, text), Calls{"SetKeyMapEntry 0 30 40 36 20 80"}) << text;
        EXPECT_EQ(shown, "E3") << text;
    }
}

TEST_F(PadPanel, AVelocityPushesTheOtherOneAlong) {
    open();
    EXPECT_EQ(typed(kSoftest, "100"), Calls{"SetKeyMapEntry 0 30 40 36 100 100"});
    EXPECT_EQ(texts({kSoftest, kLoudest}), (Calls{"100", "100"}));
    EXPECT_EQ(typed(kLoudest, "50"), Calls{"SetKeyMapEntry 0 30 40 36 50 50"});
    EXPECT_EQ(texts({kSoftest, kLoudest}), (Calls{"50", "50"}));
    EXPECT_EQ(typed(kSoftest, "10"), Calls{"SetKeyMapEntry 0 30 40 36 10 50"});
}

TEST_F(PadPanel, VelocitiesAreHeldAndReadFromTheTextsStart) {
    open();
    EXPECT_EQ(typed(kLoudest, "200"), Calls{"SetKeyMapEntry 0 30 40 36 20 127"});
    EXPECT_EQ(shown, "127");
    EXPECT_EQ(typed(kSoftest, "-5"), Calls{"SetKeyMapEntry 0 30 40 36 0 127"});
    EXPECT_EQ(shown, "0");
    EXPECT_EQ(typed(kLoudest, "64ish"), Calls{"SetKeyMapEntry 0 30 40 36 0 64"});
    EXPECT_EQ(typed(kLoudest, "all"), Calls{"SetKeyMapEntry 0 30 40 36 0 64"}) << "the one before";
    EXPECT_EQ(shown, "64");
    EXPECT_EQ(typed(kSoftest, "none"), Calls{"SetKeyMapEntry 0 30 40 36 0 64"});
}

TEST_F(PadPanel, TheEntryIsReadBeforeItIsWrittenAndAKeyDrawsTheStripAgain) {
    open();
    rig.click({16, 260});  // the tab of the key map
    rig.page->focusControl(rig.control(kRoot));
    rig.window.type("A4");
    rig.calls();
    rig.window.key(kKeyReturn);
    Calls expected{"GetKeyMapEntry 0", "SetKeyMapEntry 0 30 40 57 20 80", "GetBinFileCount",
                   "GetKeyMapEntry 0"};
    for (const std::string& call : padBlockDrawn()) expected.push_back(call);
    EXPECT_EQ(rig.calls(), expected);
    rig.page->focusControl(rig.control(kSoftest));
    rig.window.type("30");
    rig.calls();
    rig.window.key(kKeyReturn);
    EXPECT_EQ(rig.calls(), (Calls{"GetKeyMapEntry 0", "SetKeyMapEntry 0 30 40 57 30 80"}));
}

TEST_F(PadPanel, WhatIsTypedGoesToTheCurrentPad) {
    open();
    choosePad(11);
    EXPECT_EQ(typed(kLow, "C4"), Calls{"SetKeyMapEntry 11 48 60 60 0 127"});
    EXPECT_EQ(typed(kLoudest, "1"), Calls{"SetKeyMapEntry 11 48 60 60 0 1"});
}

}  // namespace
}  // namespace marnoth::test::panel_edits_test
