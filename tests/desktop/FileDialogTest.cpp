#include <gtest/gtest.h>

#include "editor/TestPage.h"
#include "platform/drawing/RecordingSurface.h"
#include "shellkit/TempFolder.h"
#include "shellkit/page/PageChooser.h"
#include "support/PlainAskingWindow.h"

namespace marnoth::test::file_dialog_test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kWaves = "Wave Files (*.wav)|*.wav||";
constexpr const char* kProjects = "Mrn Files (*.mrn)|*.mrn||";
constexpr int kTab = 9;
constexpr int kPageDown = 34;

class Ears final : public FileListener {
public:
    std::string play(const std::string& file) override {
        playing = file;
        return trouble;
    }
    void stop() override { playing.clear(); }
    bool isPlaying() const override { return !playing.empty(); }

    std::string playing;
    std::string trouble;
};

/// A folder of loops, and a user before the dialog.
class FileDialogTest : public testing::Test {
protected:
    FileDialogTest() {
        fs::create_directories(folder / "Drums");
        fs::create_directories(folder / ".hidden");
        for (const char* const name : {"bass.wav", "Clap.WAV", "chords.wav", "notes.txt", ".secret.wav"})
            writeText(folder / name, "x");
        writeText(folder / "Drums/kick.wav", "x");
        writeText(folder / "old.mrn", "x");
    }

    void open(FileKind kind = FileKind::open, const char* filter = kWaves) {
        answer.reset();
        chooser.ask({filter, kind, folder.name("")}, window,
                    [this](const FileAnswer& given) { answer = given; });
    }
    FileDialog& dialog() { return dynamic_cast<FileDialog&>(*window.over); }
    void key(int code) { dialog().keyDown(code, {}); }
    void type(std::string_view text) {
        for (const char c : text) dialog().character(static_cast<char32_t>(c));
    }
    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const FolderList::Entry& entry : dialog().browser().entries()) found.push_back(entry.name);
        return found;
    }
    std::string lit() {
        const auto entry = dialog().browser().lit();
        return entry ? dialog().browser().entries()[*entry].name : "";
    }
    std::string here(const std::string& name) const { return folder.name(name); }
    void click(Point at) {
        dialog().leftDown(at);
        if (window.over) dialog().leftUp(at);
    }
    FileDialogLayout layout() { return layOutFileDialog(font, window.room()); }
    Point row(int number) {
        const Rect place = layout().row(layout().list, number);
        return {place.left + 30, place.top + 3};
    }
    static Point middle(const Rect& place) {
        return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    }
    std::vector<std::string> texts() {
        RecordingSurface surface;
        dialog().paint(surface);
        std::vector<std::string> found;
        for (const std::string& call : surface.calls())
            if (call.starts_with("TextOut "))
                found.push_back(call.substr(call.find('"') + 1, call.rfind('"') - call.find('"') - 1));
        return found;
    }
    bool shows(const std::string& text) { return std::ranges::count(texts(), text) > 0; }

    TempFolder folder;
    FixedFont font;
    Ears ears;
    PlainAskingWindow window;
    PageChooser chooser{font, &ears};
    std::optional<FileAnswer> answer;
};

TEST_F(FileDialogTest, FoldersStandBeforeFilesThatFitAndHiddenOnesAreLeftOut) {
    open();
    EXPECT_EQ(names(), (std::vector<std::string>{"Drums", "bass.wav", "chords.wav", "Clap.WAV"}));
    writeText(folder / "\xC3\xBC.wav", "x");
    open();
    EXPECT_EQ(names().back(), "\xC3\xBC.wav");
}

TEST_F(FileDialogTest, WhatIsNoFileAndNamesThatNobodyCanSayAreLeftOut) {
    fs::create_symlink(folder / "nowhere", folder / "broken.wav");
    writeText(folder / "bad\xFF.wav", "x");
    open();
    EXPECT_EQ(names().size(), 4u);
}

TEST_F(FileDialogTest, ArrowsLightAndReturnOpens) {
    open();
    key(kKeyDown);
    EXPECT_EQ(lit(), "Drums");
    key(kKeyReturn);
    EXPECT_EQ(names(), (std::vector<std::string>{"kick.wav"}));
    key(kKeyBackspace);
    EXPECT_EQ(lit(), "Drums") << "the folder that was left";
    key(kKeyEnd);
    EXPECT_EQ(lit(), "Clap.WAV");
    key(kKeyHome);
    key(kKeyDown);
    EXPECT_EQ(dialog().name(), "bass.wav");
    key(kKeyReturn);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->file, here("bass.wav"));
    EXPECT_EQ(window.over, nullptr);
}

TEST_F(FileDialogTest, EscapeAndCancelChooseNothing) {
    open();
    key(kKeyEscape);
    ASSERT_TRUE(answer);
    EXPECT_TRUE(answer->wasAsked);
    EXPECT_EQ(answer->file, std::nullopt);
    open();
    click(middle(layout().cancel));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->file, std::nullopt);
}

TEST_F(FileDialogTest, TypingFindsAndTabCompletes) {
    open();
    type("ch");
    EXPECT_EQ(lit(), "chords.wav");
    key(kTab);
    EXPECT_EQ(dialog().name(), "chords.wav");
    key(kKeyReturn);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->file, here("chords.wav"));
}

TEST_F(FileDialogTest, TheBeginningOfANameIsEnough) {
    open();
    type("cl");
    key(kKeyReturn);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->file, here("Clap.WAV"));
}

TEST_F(FileDialogTest, TheBeginningOfAFoldersNameShowsIt) {
    open();
    type("dr");
    key(kKeyReturn);
    EXPECT_EQ(dialog().browser().folder(), here("Drums"));
    EXPECT_EQ(dialog().name(), "");
}

TEST_F(FileDialogTest, WhatIsTypedBehindAnArrowTakesTheNamesPlace) {
    open();
    type("b");
    key(kKeyDown);
    EXPECT_EQ(dialog().name(), "chords.wav");
    type("cl");
    EXPECT_EQ(dialog().name(), "cl");
}

TEST_F(FileDialogTest, NamesMayBeFullOrCountFromTheFolderOrFromHome) {
    open();
    type("Drums/kick.wav");
    key(kKeyReturn);
    EXPECT_EQ(answer.value_or(FileAnswer{}).file, here("Drums/kick.wav"));
    open();
    type(here("Drums"));
    key(kKeyReturn);
    ASSERT_FALSE(answer) << "a folder is shown";
    EXPECT_EQ(dialog().browser().folder(), here("Drums"));
    EXPECT_EQ(dialog().name(), "");
    type("~");
    key(kKeyReturn);
    EXPECT_EQ(dialog().browser().folder(), homeFolder());
}

TEST_F(FileDialogTest, WhatIsntThereIsSaid) {
    open();
    type("nothing.wav");
    key(kKeyReturn);
    EXPECT_FALSE(answer);
    EXPECT_TRUE(shows("There is no file nothing.wav."));
    key(kKeyBackspace);
    EXPECT_FALSE(shows("There is no file nothing.wav."));
}

TEST_F(FileDialogTest, AFolderThatCantBeReadIsSaid) {
    open();
    fs::remove_all(folder / "Drums");
    key(kKeyDown);
    key(kKeyReturn);
    EXPECT_FALSE(answer);
    EXPECT_TRUE(std::ranges::any_of(
        texts(), [](const std::string& text) { return text.starts_with("The folder can't be read: "); }));
}

TEST_F(FileDialogTest, HostileNamesAreRefused) {
    open();
    type(std::string(250, 'a') + "/" + std::string(250, 'b'));
    key(kKeyReturn);
    EXPECT_FALSE(answer);
    EXPECT_NE(window.over, nullptr);
    EXPECT_FALSE(texts().empty());
}

TEST_F(FileDialogTest, SavingAddsTheExtensionAndAsksBeforeItReplaces) {
    open(FileKind::save, kProjects);
    type("new");
    key(kKeyReturn);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->file, here("new.mrn"));

    open(FileKind::save, kProjects);
    type("old");
    key(kKeyReturn);
    EXPECT_FALSE(answer);
    EXPECT_TRUE(shows("Replace"));
    key(kKeyReturn);
    EXPECT_FALSE(answer) << "the safe answer is the one that is lit";
    EXPECT_FALSE(shows("Replace"));
    key(kKeyReturn);
    key(kKeyRight);
    key(kKeyReturn);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->file, here("old.mrn"));
}

TEST_F(FileDialogTest, SavingIntoAFolderThatIsntThereIsRefused) {
    open(FileKind::save, kProjects);
    type("nowhere/new");
    key(kKeyReturn);
    EXPECT_FALSE(answer);
    EXPECT_TRUE(std::ranges::any_of(
        texts(), [](const std::string& text) { return text.starts_with("There is no folder "); }));
}

TEST_F(FileDialogTest, TheMouseLightsOpensAndGoesToPlaces) {
    open();
    click(row(1));
    EXPECT_EQ(dialog().name(), "bass.wav");
    dialog().leftDown(row(0));
    dialog().leftUp(row(0));
    dialog().doubleClick(row(0));
    EXPECT_EQ(dialog().browser().folder(), here("Drums"));
    click(middle(layout().up));
    EXPECT_EQ(dialog().browser().folder(), fs::path(here("")).parent_path().string());
    click(row(2));
    click(middle(layout().accept));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->file, here("chords.wav"));
}

TEST_F(FileDialogTest, ALongListScrollsByWheelThumbAndKeys) {
    for (int number = 100; number < 200; ++number)
        writeText(folder / ("loop" + std::to_string(number) + ".wav"), "x");
    open();
    const int rows = layout().rows();
    dialog().wheel(middle(layout().list), -1);
    click(row(0));
    EXPECT_EQ(lit(), names()[3]);
    key(kPageDown);
    EXPECT_EQ(lit(), names()[static_cast<std::size_t>(3 + rows - 1)]);
    // The thumb at the top is dragged to the bottom.
    dialog().wheel(middle(layout().list), 100);
    const Rect scroller = layout().scroller;
    dialog().leftDown({scroller.left + 3, scroller.top + 1});
    dialog().mouseMove({scroller.left + 3, scroller.bottom + 50});
    dialog().leftUp({scroller.left + 3, scroller.bottom + 50});
    click(row(rows - 1));
    EXPECT_EQ(lit(), names().back());
}

TEST_F(FileDialogTest, AFileIsHeardUntilItIsPressedAgainOrTheDialogGoes) {
    open();
    key(kKeyEnd);
    key(kKeySpace);
    EXPECT_EQ(ears.playing, here("Clap.WAV"));
    EXPECT_TRUE(shows("Stop"));
    key(kKeySpace);
    EXPECT_EQ(ears.playing, "");
    click(middle(layout().listen));
    EXPECT_EQ(ears.playing, here("Clap.WAV"));
    key(kKeyUp);
    key(kKeySpace);
    EXPECT_EQ(ears.playing, here("chords.wav")) << "another takes its place";
    key(kKeyEscape);
    EXPECT_EQ(ears.playing, "");
    ears.trouble = "No sound.";
    open();
    key(kKeyEnd);
    key(kKeySpace);
    EXPECT_TRUE(shows("No sound."));
}

TEST_F(FileDialogTest, AFileOfAnotherFolderIsHeardByTheNameThatIsTyped) {
    open();
    click(middle(layout().listen));
    EXPECT_EQ(ears.playing, "");
    EXPECT_TRUE(shows("Choose a file to hear it."));
    type("Drums/kick.wav");
    click(middle(layout().listen));
    EXPECT_EQ(ears.playing, here("Drums/kick.wav"));
    EXPECT_FALSE(shows("Choose a file to hear it."));
}

TEST_F(FileDialogTest, OnlyFilesToOpenCanBeHeard) {
    open(FileKind::save, kProjects);
    EXPECT_FALSE(shows("Listen"));
}

TEST_F(FileDialogTest, ANameIsPastedAndCopied) {
    window.headless.setClipboardText(here("bass.wav"));
    open();
    key(kTab);
    dialog().keyDown(kKeyV, {.shift = false, .control = true});
    EXPECT_EQ(dialog().name(), here("bass.wav"));
    key(kKeyReturn);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->file, here("bass.wav"));
}

TEST_F(FileDialogTest, AnAnswerMayAskAtOnceAgain) {
    bool answered = false;
    chooser.ask({kWaves, FileKind::open, folder.name("")}, window, [&](const FileAnswer&) {
        chooser.ask({kWaves, FileKind::open, folder.name("")}, window,
                    [&](const FileAnswer&) { answered = true; });
    });
    key(kKeyEscape);
    ASSERT_NE(window.over, nullptr);
    key(kKeyEscape);
    EXPECT_TRUE(answered);
}

TEST_F(FileDialogTest, NothingOfItLiesOutsideItsPlace) {
    open();
    const FileDialogLayout places = layout();
    const Rect room = window.room();
    EXPECT_EQ(intersection(places.box, room), places.box);
    for (const Rect& part :
         {places.title, places.up, places.path, places.places, places.list, places.scroller, places.name,
          places.note, places.listen, places.cancel, places.accept})
        EXPECT_EQ(intersection(part, places.box), part);
    EXPECT_LE(places.list.top + places.rows() * places.rowHeight, places.list.bottom);
}

}  // namespace
}  // namespace marnoth::test::file_dialog_test
