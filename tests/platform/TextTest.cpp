#include <gtest/gtest.h>

#include <fstream>

#include "platform/text/Text.h"
#include "support/TempPath.h"

namespace marnoth::test::text_test {
namespace {

constexpr std::string_view kDrum = "\xF0\x9F\xA5\x81";  // U+1F941, four bytes of UTF-8

TEST(Text, Utf8GoesToWideAndBack) {
    const std::string text = "a\xC3\xA9\xE2\x82\xAC" + std::string(kDrum);
    const std::wstring wide = wideFromUtf8(text);
    EXPECT_EQ(wide, L"a\u00E9\u20AC\U0001F941");
    EXPECT_EQ(utf8FromWide(wide), text);
}

TEST(Text, ZeroCharactersAreKept) {
    const std::string text("a\0b", 3);
    EXPECT_EQ(wideFromUtf8(text), std::wstring(L"a\0b", 3));
    EXPECT_EQ(utf8FromWide(std::wstring(L"a\0b", 3)), text);
}

TEST(Text, EmptyTextIsEmptyEverywhere) {
    EXPECT_EQ(wideFromSystem(""), L"");
    EXPECT_EQ(systemFromWide(L""), "");
    EXPECT_EQ(wideFromUtf8(""), L"");
    EXPECT_EQ(cutSystem("", 0), "");
    EXPECT_EQ(systemFromWide(L"abc", 0), "");
}

TEST(Text, EveryCharacterSurvivesUtf8) {
    for (char32_t c = 1; c <= 0x10FFFF; c += c < 0x800 ? 1 : 0x101) {
        if (c >= 0xD800 && c <= 0xDFFF) continue;
        std::wstring wide;
        if (sizeof(wchar_t) == 2 && c >= 0x10000) {
            wide = {static_cast<wchar_t>(0xD800 + ((c - 0x10000) / 0x400)),
                    static_cast<wchar_t>(0xDC00 + ((c - 0x10000) % 0x400))};
        } else {
            wide = {static_cast<wchar_t>(c)};
        }
        const std::string utf8 = utf8FromWide(wide);
        ASSERT_EQ(utf8.size(), c < 0x80 ? 1u : c < 0x800 ? 2u : c < 0x10000 ? 3u : 4u);
        ASSERT_TRUE(isUtf8(utf8));
        ASSERT_EQ(wideFromUtf8(utf8), wide);
    }
}

TEST(Text, WhatIsntUtf8IsRecognised) {
    for (const std::string_view bad : {
             "\x80",              // a continuation alone
             "\xC3",              // cut short
             "\xE2\x82",          // cut short
             "\xC0\xAF",          // overlong slash
             "\xC1\xBF",          // overlong
             "\xE0\x80\xAF",      // overlong
             "\xF0\x80\x80\xAF",  // overlong
             "\xED\xA0\x80",      // a surrogate
             "\xF4\x90\x80\x80",  // above U+10FFFF
             "\xF5\x80\x80\x80",  // above U+10FFFF
             "\xFF",              // never part of UTF-8
             "\xC3(",             // no continuation
         }) {
        EXPECT_FALSE(isUtf8(bad)) << testing::PrintToString(bad);
        const std::string between = "a" + std::string(bad) + "z";
        const std::wstring wide = wideFromUtf8(between);
        EXPECT_EQ(wide.front(), L'a');
        EXPECT_EQ(wide.back(), L'z');
        EXPECT_NE(wide.find(L'\uFFFD'), std::wstring::npos);
    }
    EXPECT_TRUE(isUtf8(kDrum));
}

TEST(Text, EachBadByteBecomesOneReplacement) {
    EXPECT_EQ(wideFromUtf8("\xE2\x82z"), L"\uFFFD\uFFFDz");
    EXPECT_EQ(wideFromUtf8("\xC3(\xFF"), L"\uFFFD(\uFFFD");
}

TEST(Text, ALoneSurrogateBecomesAReplacement) {
    const std::wstring high{static_cast<wchar_t>(0xD83E), L'x'};
    EXPECT_EQ(utf8FromWide(high), "\xEF\xBF\xBDx");
    const std::wstring low{static_cast<wchar_t>(0xDD41)};
    EXPECT_EQ(utf8FromWide(low), "\xEF\xBF\xBD");
}

TEST(Text, APairOfSurrogatesIsOneCharacterAtAnyWidth) {
    const std::wstring pair{static_cast<wchar_t>(0xD83E), static_cast<wchar_t>(0xDD41)};
    EXPECT_EQ(utf8FromWide(pair), kDrum);
}

TEST(Text, PlainLettersAreTheSameInTheSystemsCodePage) {
    EXPECT_EQ(wideFromSystem("Chan 16"), L"Chan 16");
    EXPECT_EQ(systemFromWide(L"Mix Output"), "Mix Output");
    EXPECT_EQ(cutSystem("Marnoth", 4), "Marn");
    EXPECT_EQ(cutSystem("Marnoth", 7), "Marnoth");
    EXPECT_EQ(cutSystem("Marnoth", 100), "Marnoth");
}

TEST(Text, CuttingNeverMakesTextThatReadsOtherwise) {
    const std::wstring name = L"caf\u00E9 \u20AC loop";
    const std::string all = systemFromWide(name);
    const std::wstring whole = wideFromSystem(all);
    for (std::size_t most = 0; most <= all.size() + 1; ++most) {
        const std::string cut = systemFromWide(name, most);
        EXPECT_LE(cut.size(), most);
        EXPECT_EQ(whole.substr(0, wideFromSystem(cut).size()), wideFromSystem(cut)) << "at " << most;
    }
}

TEST(Text, StoredTextReadsBackAsItWas) {
    for (const std::wstring& text :
         {std::wstring(L"loop"), std::wstring(), std::wstring(L"\u00DCbung"),
          std::wstring(L"\u97F3 \U0001F941"),
          // Taken letter by letter from Windows-1252, its bytes are the UTF-8 of another text.
          std::wstring(L"\u00C3\u00A9"), std::wstring(L"a\0b", 3)}) {
        EXPECT_EQ(wideFromStored(storedFromWide(text, 259)), text);
    }
}

TEST(Text, StoredTextIsCutBehindTheLastCharacterThatFits) {
    EXPECT_EQ(storedFromWide(L"Marnoth", 4), "Marn");
    EXPECT_EQ(storedFromWide(L"ab\U0001F941", 5), "ab") << "no code page but UTF-8 has the drum";
    EXPECT_EQ(storedFromWide(L"ab\U0001F941", 6), "ab" + std::string(kDrum));
    const std::wstring text = L"\u00DC \u97F3 \U0001F941 end";
    for (std::size_t most = 0; most < 20; ++most) {
        const std::string stored = storedFromWide(text, most);
        EXPECT_LE(stored.size(), most);
        EXPECT_TRUE(text.starts_with(wideFromStored(stored))) << most;
    }
}

TEST(Text, StoredTextThatIsUtf8IsReadAsUtf8Everywhere) {
    EXPECT_EQ(wideFromStored("caf\xC3\xA9"), L"caf\u00E9");
    EXPECT_EQ(wideFromStored(kDrum), L"\U0001F941");
    EXPECT_EQ(wideFromStored("caf\xE9"), wideFromSystem("caf\xE9"));
}

#if !defined(_WIN32) || defined(MARNOTH_UTF8_PROCESS)

TEST(Text, OutsideWindowsAndInOurProgramsTheCodePageIsUtf8) {
    EXPECT_EQ(wideFromSystem("caf\xC3\xA9"), L"caf\u00E9");
    EXPECT_EQ(systemFromWide(L"caf\u00E9"), "caf\xC3\xA9");
}

TEST(Text, WhatIsntUtf8IsReadAsWindows1252) {
    EXPECT_EQ(wideFromSystem("caf\xE9 \x80 \x93quoted\x94"), L"caf\u00E9 \u20AC \u201Cquoted\u201D");
    // The five bytes that the code page leaves undefined.
    EXPECT_EQ(wideFromSystem("\x81\x8D\x8F\x90\x9D"), L"\u0081\u008D\u008F\u0090\u009D");
    EXPECT_EQ(wideFromSystem("\xFF\xFE"), L"\u00FF\u00FE");
    // Text that is partly UTF-8 isn't UTF-8: all of it is read alike.
    EXPECT_EQ(wideFromSystem("\xC3\xA9\xE9"), L"\u00C3\u00A9\u00E9");
}

TEST(Text, ACutStandsBeforeTheCharacterThatDoesntFit) {
    const std::string text = "a\xE2\x82\xAC" + std::string(kDrum);
    EXPECT_EQ(cutSystem(text, 1), "a");
    EXPECT_EQ(cutSystem(text, 2), "a");
    EXPECT_EQ(cutSystem(text, 3), "a");
    EXPECT_EQ(cutSystem(text, 4), "a\xE2\x82\xAC");
    EXPECT_EQ(cutSystem(text, 7), "a\xE2\x82\xAC");
    EXPECT_EQ(cutSystem(text, 8), text);
    EXPECT_EQ(cutSystem(kDrum, 3), "");
}

TEST(Text, TextOfSingleBytesIsCutAnywhere) {
    EXPECT_EQ(cutSystem("\xE9\xE9\xE9", 2), "\xE9\xE9");
    EXPECT_EQ(cutSystem("\x80\x80\x80", 1), "\x80");
}

#endif

TEST(Text, AFileIsOpenedByItsWideName) {
    const test::TempPath dir;
    std::filesystem::create_directory(dir.path());
    const std::wstring name = dir.wide() + L"/\u00DCbung \u97F3.wav";
    std::ofstream(pathFromWide(name), std::ios::binary) << "x";
    EXPECT_TRUE(std::filesystem::exists(pathFromWide(name)));
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path())) {
        ++files;
        EXPECT_EQ(wideFromPath(entry.path().filename()), L"\u00DCbung \u97F3.wav");
    }
    EXPECT_EQ(files, 1);
    std::filesystem::remove(pathFromWide(name));
}

}  // namespace
}  // namespace marnoth::test::text_test
