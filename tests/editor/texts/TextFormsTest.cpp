#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <locale>

#include "editor/texts/TextForms.h"

namespace marnoth::test::text_forms_test {
namespace {

TEST(TextForms, VolumeReadsInDecibels) {
    EXPECT_EQ(volumeText(2.0f), "6.0");
    EXPECT_EQ(volumeText(1.0f), "0.0");
    EXPECT_EQ(volumeText(0.5f), "-6.0");
    EXPECT_EQ(volumeText(0.25f), "-12.0");
    EXPECT_EQ(volumeText(0.0001f), "-80.0");
}

TEST(TextForms, SilenceReadsMinusInf) {
    EXPECT_EQ(volumeText(0.0f), "-Inf");
    EXPECT_EQ(volumeText(-0.0f), "-Inf");
}

TEST(TextForms, TheSmallestVolumeHasAText) {
    // The smallest float is 2 to the power -149: -149 * 6.0206 dB.
    EXPECT_EQ(volumeText(std::numeric_limits<float>::denorm_min()), "-897.1");
}

TEST(TextForms, DecibelsBecomeGain) {
    EXPECT_EQ(parseVolume("0"), 1.0f);
    EXPECT_EQ(parseVolume("20"), 10.0f);
    EXPECT_EQ(parseVolume("-20"), 0.1f);
    EXPECT_FLOAT_EQ(parseVolume("6.0206").value(), 2.0f);
    EXPECT_FLOAT_EQ(parseVolume("-6.0206").value(), 0.5f);
    EXPECT_EQ(parseVolume("2e1"), 10.0f);
}

TEST(TextForms, Minus75DecibelsAreASmallGainAndLessIsSilence) {
    EXPECT_FLOAT_EQ(parseVolume("-75").value(), 0.00017782794f);  // 10 to the power -3.75
    EXPECT_FLOAT_EQ(parseVolume("-75.0").value(), 0.00017782794f);
    EXPECT_EQ(parseVolume("-75.1"), 0.0f);
    EXPECT_EQ(parseVolume("-Inf"), 0.0f);
}

TEST(TextForms, ANumberIsReadFromItsStart) {
    EXPECT_EQ(parseVolume(" \t20 dB"), 10.0f);
    EXPECT_EQ(parseVolume("+20"), 10.0f);
    EXPECT_EQ(parseVolume("20,5"), 10.0f);
    EXPECT_EQ(parseInteger(" 12 semitones"), 12);
    EXPECT_EQ(parseInteger("-7.9"), -7);
    EXPECT_EQ(parseInteger("+3"), 3);
}

TEST(TextForms, TextWithoutANumberGivesNothing) {
    for (const char* text : {"", " ", "x", ".", "-", "+", "+-3", "++3", "- 3", "+ 3", "--3", "dB 3"}) {
        EXPECT_EQ(parseVolume(text), std::nullopt) << text;
        EXPECT_EQ(parseInteger(text), std::nullopt) << text;
    }
    EXPECT_EQ(parseVolume("nan"), std::nullopt);
}

TEST(TextForms, NumbersBeyondAnyRangeAreTheEndsOfIt) {
    const float most = std::numeric_limits<float>::max();
    EXPECT_EQ(parseInteger("99999999999"), std::numeric_limits<int>::max());
    EXPECT_EQ(parseInteger("-99999999999"), std::numeric_limits<int>::min());
    for (const char* text : {"1000", "1e999", "1e99999999999", "inf"})
        EXPECT_EQ(parseVolume(text), most) << text;
    EXPECT_EQ(parseVolume(std::string(400, '9')), most);
    EXPECT_EQ(parseVolume("-1e999"), 0.0f);
    // Next to nothing of a decibel.
    EXPECT_EQ(parseVolume("1e-999"), 1.0f);
    EXPECT_EQ(parseVolume("-1e-999"), 1.0f);
    EXPECT_EQ(parseVolume("0." + std::string(400, '0') + "1"), 1.0f);
}

TEST(TextForms, PanReadsInPercentOfASide) {
    EXPECT_EQ(panText(0.0f), "100L");
    EXPECT_EQ(panText(0.25f), "50L");
    EXPECT_EQ(panText(0.495f), "1L");
    EXPECT_EQ(panText(0.499f), "0L");
    EXPECT_EQ(panText(0.5f), "C");
    EXPECT_EQ(panText(0.505f), "1R");
    EXPECT_EQ(panText(1.0f), "100R");
}

TEST(TextForms, PanIsReadWithItsSideOrWithASign) {
    EXPECT_EQ(parsePan("c"), 0.5f);
    EXPECT_EQ(parsePan("C"), 0.5f);
    EXPECT_EQ(parsePan("50l"), 0.25f);
    EXPECT_EQ(parsePan("50L"), 0.25f);
    EXPECT_EQ(parsePan("50r"), 0.75f);
    EXPECT_EQ(parsePan("50R"), 0.75f);
    EXPECT_EQ(parsePan("-50R"), 0.25f);
    EXPECT_EQ(parsePan("-50"), 0.25f);
    EXPECT_EQ(parsePan("25"), 0.625f);
    EXPECT_EQ(parsePan("0"), 0.5f);
}

TEST(TextForms, PanIsHeldToItsSides) {
    EXPECT_EQ(parsePan("200R"), 1.0f);
    EXPECT_EQ(parsePan("200L"), 0.0f);
    EXPECT_EQ(parsePan("-101"), 0.0f);
}

TEST(TextForms, PanWithoutANumberGivesNothing) {
    // The minus of the left side makes a second one.
    for (const char* text : {"", "L", "R", "-5L", " 5L", "x"})
        EXPECT_EQ(parsePan(text), std::nullopt) << text;
    // Only the last character tells the side.
    EXPECT_EQ(parsePan("5L "), 0.525f);
}

TEST(TextForms, EachPercentOfPanReadsAsItWasTyped) {
    for (int percent = 1; percent <= 100; ++percent)
        for (const char* side : {"L", "R"}) {
            const std::string text = std::to_string(percent) + side;
            EXPECT_EQ(panText(parsePan(text).value()), text);
        }
}

TEST(TextForms, NotesAreNamedWithTheirOctave) {
    EXPECT_EQ(FormatNoteName(60, true), "C5");
    EXPECT_EQ(FormatNoteName(0, true), "C0");
    EXPECT_EQ(FormatNoteName(61, true), "C#5");
    EXPECT_EQ(FormatNoteName(127, true), "G10");
    EXPECT_EQ(FormatNoteName(61, false), "C#");
}

TEST(TextForms, WhatIsNoNoteHasNoName) {
    EXPECT_EQ(FormatNoteName(128, true), "");
    EXPECT_EQ(FormatNoteName(-1, false), "");
}

/// -1 for what isn't read.
int noteOf(std::string_view text, bool withOctave = true) {
    int note = -1;
    const bool read = ParseNoteName(text, &note, withOctave);
    EXPECT_EQ(read, note != -1) << text;
    return note;
}

TEST(TextForms, NotesAreReadInEitherCase) {
    EXPECT_EQ(noteOf("C5"), 60);
    EXPECT_EQ(noteOf("c5"), 60);
    EXPECT_EQ(noteOf("c#4"), 49);
    EXPECT_EQ(noteOf("g10"), 127);
    EXPECT_EQ(noteOf("b0"), 11);
}

TEST(TextForms, EachNoteIsReadFromItsName) {
    for (int note = 0; note < 128; ++note) EXPECT_EQ(noteOf(FormatNoteName(note, true)), note);
}

TEST(TextForms, NotesAreNotHeldTo127) {
    EXPECT_EQ(noteOf("B10"), 131);
    EXPECT_EQ(noteOf("B#10"), 132);
}

TEST(TextForms, AnOctaveOutsideTheKeyboardReadsAsNote0) {
    EXPECT_EQ(noteOf("C11"), 0);
    EXPECT_EQ(noteOf("A99"), 0);
    EXPECT_EQ(noteOf("A-1"), 0);
}

TEST(TextForms, AnOctaveHasTwoCharactersAtMost) {
    EXPECT_EQ(noteOf("C105"), 120);
    EXPECT_EQ(noteOf("C 5"), 60);
    EXPECT_EQ(noteOf("C5x"), 60);
}

TEST(TextForms, SharpsAreAddedToAnyLetter) {
    EXPECT_EQ(noteOf("E#3"), 41);
    EXPECT_EQ(noteOf("B#", false), 12);
    // The mark of a black key between the letters names that key.
    EXPECT_EQ(noteOf("~5"), 61);
}

TEST(TextForms, WhatNamesNoNoteLeavesItAlone) {
    for (const char* text : {"", "H5", " C5", "5", "#"}) {
        EXPECT_EQ(noteOf(text), -1) << text;
        EXPECT_EQ(noteOf(text, false), -1) << text;
    }
    for (const char* text : {"C", "C#", "Cx"}) EXPECT_EQ(noteOf(text), -1) << text;
    EXPECT_EQ(noteOf("C", false), 0);
}

struct DecimalComma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST(TextForms, TheSystemsLanguageDoesNotMatter) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new DecimalComma));
    // And for functions of C, where the system has such a language.
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "German"})
        if (std::setlocale(LC_NUMERIC, name)) break;
    EXPECT_EQ(volumeText(2.0f), "6.0");
    EXPECT_FLOAT_EQ(parseVolume("6.0206").value(), 2.0f);
    EXPECT_EQ(parseVolume("-75.1"), 0.0f);
    std::locale::global(before);
    std::setlocale(LC_NUMERIC, "C");
}

}  // namespace
}  // namespace marnoth::test::text_forms_test
