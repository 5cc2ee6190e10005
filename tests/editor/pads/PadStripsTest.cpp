#include "editor/PanelRig.h"
#include "editor/skin/Palette.h"
#include "editor/skin/Skin.h"

/// Pads, their buttons, knobs and menu, and the toggles of the panel beside them.
namespace marnoth::test::pad_strips_test {
namespace {

/// The sixteen lines of a call for all pads.
Calls forAllPads(const std::string& name, int value) {
    Calls calls;
    for (int pad = 0; pad < 16; ++pad) calls.push_back(callText(name, pad, value));
    return calls;
}

/// In the quarter of pad 7, right of its image and between its two knobs.
constexpr Point kBesidePad7{390, 70};

class PadStrips : public PanelRig {
protected:
    /// The calls of a choice in the pad's menu.
    Calls chosen(int pad, const std::string& id) {
        rig.window.answer(id);
        rig.window.rightClick(PageRig::onPadImage(pad));
        return rig.changes();
    }
};

TEST_F(PadStrips, HoldingAPadPlaysItAndLettingGoStopsIt) {
    open();
    rig.press(PageRig::onPadImage(5));
    EXPECT_EQ(rig.changes(), Calls{"AuditionPad 5 -1"});
    EXPECT_EQ(rig.page->currentPad(), 5);
    rig.release(PageRig::onPadImage(5));
    EXPECT_EQ(rig.changes(), Calls{"StopPad 5"});
}

TEST_F(PadStrips, APressOnTheCurrentPadPlaysItAndReadsNothing) {
    open();
    rig.press(PageRig::onPadImage(0));
    EXPECT_EQ(rig.calls(), Calls{"AuditionPad 0 -1"});
}

TEST_F(PadStrips, APressBesideAnImageSelectsThePadOfThatQuarterInSilence) {
    open();
    rig.click(kBesidePad7);
    EXPECT_EQ(rig.page->currentPad(), 6);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(PadStrips, AnImageCountsMoreThanTheQuarterThatItBeginsIn) {
    open();
    // The image of pad 2 begins at 227, the second quarter at 228.25.
    rig.click({227, 20});
    EXPECT_EQ(rig.changes(), (Calls{"AuditionPad 1 -1", "StopPad 1"}));
}

TEST_F(PadStrips, ReleasedOverAnotherPadThatOneIsStoppedAndSelected) {
    open();
    rig.press(PageRig::onPadImage(2));
    rig.calls();
    rig.release(PageRig::onPadImage(3));
    EXPECT_EQ(rig.changes(), Calls{"StopPad 3"});
    EXPECT_EQ(rig.page->currentPad(), 3);
}

TEST_F(PadStrips, TheMenuTellsWhatThePadDoesAndSelectsIt) {
    pad(9).looping = true;
    open();
    rig.window.rightClick(PageRig::onPadImage(9));
    EXPECT_EQ(rig.window.takeLog(), Calls{"? menu 32770:Open Audio File 32771:Looping:checked "
                                          "32772:Synced Playback 32773:Clear Pad -> cancel"});
    EXPECT_EQ(rig.page->currentPad(), 9);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(PadStrips, TheMenuOpensBetweenThePadsToo) {
    pad(6).looping = pad(6).synced = true;
    open();
    rig.window.rightClick(kBesidePad7);
    EXPECT_EQ(rig.window.takeLog(), Calls{"? menu 32770:Open Audio File 32771:Looping:checked "
                                          "32772:Synced Playback:checked 32773:Clear Pad -> cancel"});
    EXPECT_EQ(rig.page->currentPad(), 6);
}

TEST_F(PadStrips, OutsideThePadBlockNoMenuOpens) {
    open();
    for (const Point at : {Point{300, 300}, Point{138, 20}, Point{300, 238}, Point{496, 100}})
        rig.window.rightClick(at);
    EXPECT_EQ(rig.window.takeLog(), Calls{});
    EXPECT_EQ(rig.calls(), Calls{});
}

TEST_F(PadStrips, LoopingInTheMenuTurnsItAndTakesSyncedAlongWhenOff) {
    open();
    EXPECT_EQ(chosen(2, "32771"), (Calls{"SetPadLooping 2 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.state(1059), 1);
    EXPECT_EQ(rig.state(1043), 0);
    chosen(2, "32772");
    EXPECT_EQ(chosen(2, "32771"), (Calls{"SetPadSynced 2 0", "SetPadLooping 2 0", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.state(1059), 0);
    EXPECT_EQ(rig.state(1043), 0);
}

TEST_F(PadStrips, SyncedInTheMenuTakesLoopingAlongWhenOn) {
    open();
    EXPECT_EQ(chosen(2, "32772"), (Calls{"SetPadSynced 2 1", "SetPadLooping 2 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.state(1043), 1);
    EXPECT_EQ(rig.state(1059), 1);
    EXPECT_EQ(chosen(2, "32772"), (Calls{"SetPadSynced 2 0", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.state(1043), 0);
    EXPECT_EQ(rig.state(1059), 1);
}

TEST_F(PadStrips, ClearPadIsOneStepThatCanBeUndone) {
    rig.fillPad(4, 3);
    pad(4).synced = pad(4).looping = pad(4).mute = pad(4).solo = true;
    rig.addFile("beat.wav", 4);
    open();
    rig.click(PageRig::onBeat(4, 1));
    rig.calls();
    rig.window.answer("32773");
    rig.window.rightClick(PageRig::onPadImage(4));
    const Calls calls = rig.calls();
    const auto push = std::ranges::find(calls, "PushUndoState");
    ASSERT_TRUE(push != calls.begin() && push != calls.end());
    EXPECT_EQ(push[-1], "GetGrainCount 1 4");
    Calls changes(push, calls.end());
    std::erase_if(changes, [](const std::string& call) { return call.starts_with("Get"); });
    EXPECT_EQ(changes, (Calls{"PushUndoState", "DeleteGrain 4 0 1", "DeleteGrain 4 1 1", "DeleteGrain 4 2 1",
                              "SetPadSynced 4 0", "SetPadLooping 4 0", "SetPadMute 4 0", "SetPadSolo 4 0",
                              "CommitGrainEdits", "SetRefreshRequest 1"}));
    for (const int toggle : {1045, 1061, 1028, 1149}) EXPECT_EQ(rig.state(toggle), 0) << toggle;
    EXPECT_TRUE(rig.page->selection().isEmpty());
    EXPECT_EQ(rig.page->currentBinFile(), -1);
}

TEST_F(PadStrips, OpenAudioFileInTheMenuLoadsOntoThePad) {
    open();
    rig.window.answer("32770");
    rig.window.answer("kick.wav");
    rig.window.rightClick(PageRig::onPadImage(3));
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "LoadFileToPad 3 kick.wav kick.wav",
                                    "SetRefreshRequest 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.window.takeLog().back(), "? file open \"Wave Files (*.wav)|*.wav||\" -> kick.wav");
}

TEST_F(PadStrips, TheOpenButtonLoadsOntoItsPadAndGoesUpAgain) {
    open();
    pad(7).looping = true;  // as the engine has it after the load
    rig.window.answer("kick.wav");
    EXPECT_EQ(clicked(1080), (Calls{"PushUndoState", "LoadFileToPad 7 kick.wav kick.wav",
                                    "SetRefreshRequest 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.state(1080), 0);
    EXPECT_EQ(rig.state(1064), 1);
    EXPECT_EQ(rig.page->currentPad(), 7);
    EXPECT_EQ(clicked(1081), (Calls{"SetRefreshRequest 1", "SetRefreshRequest 1"})) << "cancelled";
}

TEST_F(PadStrips, EachMuteAndSoloSelectsItsPadAndSendsItsState) {
    open();
    for (int number = 0; number < 16; ++number) {
        const int mute = number == 15 ? 1040 : 1024 + number;
        EXPECT_EQ(clicked(mute), Calls{callText("SetPadMute", number, 1)});
        EXPECT_EQ(rig.page->currentPad(), number);
        EXPECT_EQ(clicked(mute), Calls{callText("SetPadMute", number, 0)});
        EXPECT_EQ(clicked(1145 + number), Calls{callText("SetPadSolo", number, 1)});
        EXPECT_EQ(clicked(1145 + number), Calls{callText("SetPadSolo", number, 0)});
    }
    EXPECT_EQ(shiftClicked(1024), Calls{"SetPadMute 0 1"}) << "shift means nothing here";
}

TEST_F(PadStrips, AToggleSelectsItsPadFirstAlsoWhenThatIsCurrent) {
    open();
    rig.press(rig.on(1024));
    const Calls calls = rig.calls();
    const auto read = std::ranges::find(calls, "GetPadOutput 0");
    EXPECT_LT(read, std::ranges::find(calls, "SetPadMute 0 1"));
    EXPECT_TRUE(holds(calls, "SetPadMute 0 1"));
}

TEST_F(PadStrips, SyncedOnPutsLoopingOn) {
    open();
    EXPECT_EQ(clicked(1047), (Calls{"SetPadSynced 6 1", "SetPadLooping 6 1"}));
    EXPECT_EQ(rig.state(1063), 1);
    EXPECT_EQ(clicked(1047), Calls{"SetPadSynced 6 0"});
    EXPECT_EQ(rig.state(1063), 1) << "looping stays";
    EXPECT_EQ(rig.page->currentPad(), 6);
}

TEST_F(PadStrips, LoopingOffPutsSyncedOff) {
    open();
    EXPECT_EQ(clicked(1063), Calls{"SetPadLooping 6 1"});
    EXPECT_EQ(rig.state(1047), 0);
    clicked(1047);
    EXPECT_EQ(clicked(1063), (Calls{"SetPadSynced 6 0", "SetPadLooping 6 0"}));
    EXPECT_EQ(rig.state(1047), 0);
}

TEST_F(PadStrips, ShiftOnSyncedOfAPadThatWasOffSetsAllPadsSyncedAndLooping) {
    pad(3).synced = pad(3).looping = true;
    open();
    Calls expected;
    for (int number = 0; number < 16; ++number) {
        expected.push_back(callText("SetPadSynced", number, 1));
        expected.push_back(callText("SetPadLooping", number, 1));
    }
    EXPECT_EQ(shiftClicked(1049), expected);
    for (int id = 1041; id <= 1072; ++id) EXPECT_EQ(rig.state(id), 1) << id;
    EXPECT_EQ(shiftClicked(1049), forAllPads("SetPadSynced", 0));
    for (int id = 1041; id <= 1056; ++id) EXPECT_EQ(rig.state(id), 0) << id;
    for (int id = 1057; id <= 1072; ++id) EXPECT_EQ(rig.state(id), 1) << id;
}

TEST_F(PadStrips, ShiftOnLoopingSendsTheClickedPadsStateToAll) {
    open();
    EXPECT_EQ(shiftClicked(1057), forAllPads("SetPadLooping", 1));
    shiftClicked(1041);
    Calls expected;
    for (int number = 0; number < 16; ++number) {
        expected.push_back(callText("SetPadSynced", number, 0));
        expected.push_back(callText("SetPadLooping", number, 0));
    }
    EXPECT_EQ(shiftClicked(1072), expected);
    for (int id = 1041; id <= 1072; ++id) EXPECT_EQ(rig.state(id), 0) << id;
}

TEST_F(PadStrips, ARefreshShowsSyncedOnlyWithLooping) {
    open();
    pad(1).synced = true;
    pad(2).looping = true;
    pad(3).synced = pad(3).looping = true;
    rig.engine.refreshRequest = 1;
    rig.window.tick();
    const auto states = [&](int number) {
        return std::pair(rig.state(1041 + number), rig.state(1057 + number));
    };
    EXPECT_EQ(states(1), std::pair(0, 0)) << "looping off puts synced up, and that comes last";
    EXPECT_EQ(states(2), std::pair(0, 1));
    EXPECT_EQ(states(3), std::pair(1, 1));
    EXPECT_EQ(rig.changes(), Calls{}) << "showing tells the engine nothing";
}

TEST_F(PadStrips, ThePanelsTogglesSetTheCurrentPadAndWithShiftAllPads) {
    open();
    choosePad(3);
    for (const auto& [id, name] :
         {std::pair(1125, "SetPadTail"), {1137, "SetPadFollowKey"}, {1166, "SetPadOneShot"}}) {
        EXPECT_EQ(clicked(id), Calls{callText(name, 3, 1)});
        EXPECT_EQ(shiftClicked(id), forAllPads(name, 0));
        EXPECT_EQ(shiftClicked(id), forAllPads(name, 1));
    }
    EXPECT_EQ(rig.page->currentPad(), 3);
}

TEST_F(PadStrips, OnlyTheTailToggleDrawsTheGrainsAgain) {
    open();
    for (const auto& [id, draws] : {std::pair(1125, true), {1137, false}, {1166, false}}) {
        rig.click(rig.on(id));
        EXPECT_EQ(holds(rig.calls(), "GetPadGrainList 0"), draws) << id;
    }
}

TEST_F(PadStrips, TheAuditionToggleIsGlobal) {
    open();
    EXPECT_EQ(shiftClicked(1092), Calls{"SetAuditionEnabled 1"});
    EXPECT_EQ(clicked(1092), Calls{"SetAuditionEnabled 0"});
}

TEST_F(PadStrips, AVolumeKnobSelectsItsPadOnceAndGivesTwiceItsPosition) {
    open();
    const Point at = rig.on(1097);
    rig.press(at);
    Calls calls = rig.calls();
    EXPECT_TRUE(holds(calls, "GetPadOutput 4")) << "it is selected";
    EXPECT_TRUE(holds(calls, "SetPadVolume 4 1"));
    EXPECT_EQ(rig.page->currentPad(), 4);
    rig.move({at.x, at.y - 3});
    EXPECT_EQ(rig.calls(), Calls{callText("SetPadVolume", 4, static_cast<float>(53 * 0.01 * 2.0))})
        << "and not again";
    EXPECT_EQ(rig.text(1172), "0.5") << "20 log10(1.06) is 0.506";
    rig.release(at);
    EXPECT_EQ(turned(1097, 60), (Calls{callText("SetPadVolume", 4, 1.06f), "SetPadVolume 4 2"}));
    EXPECT_EQ(rig.text(1172), "6.0");
    EXPECT_EQ(turned(1097, -100), (Calls{"SetPadVolume 4 2", "SetPadVolume 4 0"}));
    EXPECT_EQ(rig.text(1172), "-Inf");
}

TEST_F(PadStrips, APanKnobGivesItsPosition) {
    open();
    EXPECT_EQ(turned(1124, 1), (Calls{"SetPadPan 15 0.5", callText("SetPadPan", 15, 0.51f)}));
    EXPECT_EQ(rig.page->currentPad(), 15);
    EXPECT_EQ(rig.text(1173), "2R");
    EXPECT_EQ(turned(1124, -2).back(), callText("SetPadPan", 15, 0.49f));
    EXPECT_EQ(rig.text(1173), "2L");
    EXPECT_EQ(turned(1124, 1).back(), "SetPadPan 15 0.5");
    EXPECT_EQ(rig.text(1173), "C");
}

TEST_F(PadStrips, ThePadsReadOutsShowVolumeInDecibelsAndPanInPercentOfASide) {
    struct Shown {
        float volume, pan;
        Calls texts;
    };
    const std::vector<Shown> all{{2.0f, 0.5f, {"6.0", "C"}},    {0.0f, 0.505f, {"-Inf", "1R"}},
                                 {1.0f, 0.495f, {"0.0", "1L"}}, {0.5f, 0.0f, {"-6.0", "100L"}},
                                 {7.0f, 3.0f, {"6.0", "100R"}}, {-1.0f, -1.0f, {"-Inf", "100L"}}};
    for (std::size_t i = 0; i < all.size(); ++i) {
        rig.engine.pads[i + 1].volume = all[i].volume;
        rig.engine.pads[i + 1].pan = all[i].pan;
    }
    open();
    for (std::size_t i = 0; i < all.size(); ++i) {
        choosePad(static_cast<int>(i) + 1);
        EXPECT_EQ(texts({1172, 1173}), all[i].texts) << i;
    }
}

TEST_F(PadStrips, TheKnobsStandWhereTheEngineHasThem) {
    pad(1).volume = 1.5f;
    pad(1).pan = 0.25f;
    pad(2).volume = 7.0f;
    pad(2).pan = -3.0f;
    open();
    EXPECT_EQ(rig.state(1094), 75);
    EXPECT_EQ(rig.state(1110), 25);
    EXPECT_EQ(rig.state(1095), 100);
    EXPECT_EQ(rig.state(1111), 0);
}

TEST_F(PadStrips, APlayingPadGlowsAtTheNextTickAndTheCurrentOneHasARing) {
    open();
    choosePad(5);
    const auto shows = [&](int pad, int picture) {
        const Rect place = padImage(pad);
        const Bitmap& image = skinBitmap(picture);
        for (int y = 0; y < 38; ++y)
            for (int x = 0; x < 44; ++x)
                if (rig.page->screen().at(place.left + x, place.top + y) != image.at(x, y)) return false;
        return true;
    };
    EXPECT_TRUE(shows(3, 247));
    pad(3).playing = true;
    rig.window.tick();
    EXPECT_TRUE(shows(3, 246));
    EXPECT_TRUE(shows(4, 249));
    // The ring of pad 6 begins at 137 + 89, 4 + 57, that of pad 5 a cell to the left.
    EXPECT_EQ(rig.page->screen().at(226, 90), kPalette[8]);
    EXPECT_NE(rig.page->screen().at(137, 90), kPalette[8]);
    choosePad(6);
    EXPECT_NE(rig.page->screen().at(226, 90), kPalette[8]);
}

}  // namespace
}  // namespace marnoth::test::pad_strips_test
