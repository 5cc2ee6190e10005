#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "cli/Studio.h"
#include "editor/PageLayout.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/page/HeadlessPage.h"

namespace marnoth::test::recovery_test {
namespace {

namespace fs = std::filesystem;

const std::string kInBackup = "; what was saved before is in ";

/// A project and what a save over it that was cut off leaves.
class CutOff {
public:
    CutOff() {
        studio.save("p.mrn");
        whole = studio.bytes("p.mrn");
        fs::rename(studio.folder / "saved.wav", studio.folder / "before.wav");
    }

    /// What stands under the project's name, with the former one beside it.
    void leave(const std::string& bytes) const {
        fs::remove(studio.folder / "p.mrn");
        writeText(studio.folder / "p.mrn.bak", whole);
        if (!bytes.empty()) writeText(studio.folder / "p.mrn", bytes);
    }
    /// A save ends by writing its size.
    std::string unfinished() const {
        return whole.substr(0, 4) + std::string(4, '\0') + whole.substr(8, 100000);
    }

    /// The runs of all commands that load a project.
    std::vector<CliRun> runs(std::vector<std::string> more) const {
        std::vector<CliRun> all;
        for (std::vector<std::string> words :
             {std::vector{std::string("info"), studio.name("p.mrn")},
              {"render", "--project", studio.name("p.mrn"), "--out", studio.name("after.wav")},
              {"page", studio.name("p.mrn"), "--out", studio.name("after.png")}}) {
            words.insert(words.end(), more.begin(), more.end());
            all.push_back(marnoth(words));
        }
        return all;
    }

    Studio studio;
    std::string whole;
};

void expectLine(const std::string& text, const std::string& line) {
    EXPECT_EQ(text, "marnoth: " + line + "\n");
}

TEST(Recovery, ASaveThatWasCutOffIsToldWithWhereTheFormerProjectIs) {
    const CutOff it;
    const std::string name = it.studio.name("p.mrn");
    const std::string inBackup = kInBackup + name + ".bak: --recover takes that";
    const std::string cutOff = ": a save of it was cut off" + inBackup;
    for (const auto& [bytes, reason] : std::vector<std::pair<std::string, std::string>>{
             {it.unfinished(), ": its saving was never finished" + inBackup},
             {"RIF", ": it isn't a project" + cutOff},
             {"", ": there is no such file" + cutOff}}) {
        it.leave(bytes);
        for (const CliRun& run : it.runs({})) {
            EXPECT_EQ(run.status, 1);
            EXPECT_EQ(run.out, "");
            expectLine(run.err, name + reason);
        }
    }
    EXPECT_FALSE(it.studio.has("after.wav") || it.studio.has("after.png"));
}

TEST(Recovery, TakesTheFormerProjectAndSaysSo) {
    const CutOff it;
    const std::string name = it.studio.name("p.mrn");
    for (const std::string& bytes : {it.unfinished(), std::string()}) {
        it.leave(bytes);
        const std::vector<CliRun> runs = it.runs({"--recover"});
        for (const CliRun& run : runs) {
            EXPECT_EQ(run.status, 0);
            EXPECT_NE(run.err.find(kInBackup + name + ".bak, which is taken\n"), std::string::npos)
                << run.err;
        }
        EXPECT_TRUE(runs[0].out.starts_with("project   " + name + ".bak\n")) << runs[0].out;
        EXPECT_TRUE(it.studio.bytes("after.wav") == it.studio.bytes("before.wav"));
        EXPECT_TRUE(it.studio.bytes("p.mrn.bak") == it.whole) << "nothing is moved";
        EXPECT_EQ(it.studio.has("p.mrn"), !bytes.empty());
    }
}

TEST(Recovery, TakesAWholeProjectAsItIs) {
    const CutOff it;
    for (const CliRun& run : it.runs({"--recover"})) {
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
    }
    it.leave(it.whole);
    writeText(it.studio.folder / "p.mrn.bak", "older");
    for (const CliRun& run : it.runs({"--recover"})) EXPECT_EQ(run.err, "");
}

TEST(Recovery, ABackupThatIsNoneIsntNamed) {
    const CutOff it;
    it.leave(it.unfinished());
    const std::string line = it.studio.name("p.mrn") + ": its saving was never finished";
    for (const std::string& backup : {it.unfinished(), std::string("RIFF"), std::string()}) {
        writeText(it.studio.folder / "p.mrn.bak", backup);
        for (const CliRun& run : it.runs({"--recover"})) {
            EXPECT_EQ(run.status, 1);
            expectLine(run.err, line);
        }
    }
}

TEST(Recovery, ADamagedProjectIsToldWithWhatIsDamagedAndWhere) {
    const CutOff it;
    std::string damaged = it.whole;
    const std::size_t lastPad = damaged.rfind("pdtr");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::memcpy(damaged.data() + lastPad + 8 + 4 + 56, &nan, sizeof nan);
    it.leave(damaged);
    const std::string name = it.studio.name("p.mrn");
    for (const CliRun& run : it.runs({}))
        expectLine(run.err,
                   name +
                       ": it is damaged: a value in it is none that a project has (volume of pad 16: "
                       "nan)" +
                       kInBackup + name + ".bak: --recover takes that");
}

TEST(Recovery, InfoTellsOfABackupThatASaveLeftBesideItsProject) {
    const CutOff it;
    EXPECT_EQ(it.runs({})[0].out.find("backup"), std::string::npos);
    it.leave(it.whole);
    const std::string name = it.studio.name("p.mrn.bak");
    EXPECT_NE(it.runs({})[0].out.find("\nbackup    " + name + ", of a save that was ended"),
              std::string::npos);
    EXPECT_NE(marnoth({"info", it.studio.name("p.mrn"), "--json"}).out.find("\"backup\": "),
              std::string::npos);
}

TEST(Recovery, NoOutputTakesThePlaceOfTheBackup) {
    const CutOff it;
    it.leave(it.unfinished());
    const CliRun run = it.studio.play("p.mrn", "p.mrn.bak", {"--recover"});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(it.studio.bytes("p.mrn.bak") == it.whole);
}

/// The page as a shell in a window has it.
class Window {
public:
    explicit Window(const TempFolder& folder) {
        const std::array<int, 1> mix{0};
        EXPECT_EQ(rig.connect(44100, 2, mix), S_OK);
        page = std::make_unique<HeadlessPage>(rig.sampler(), folder / "");
        page->page().adviseOnLoads(
            [this](const std::string& path) { return adviceOnLoad(rig.sampler(), path); });
    }
    /// Opens a project; gives the questions but the one for its file.
    std::vector<std::string> open(const std::vector<std::string>& answers) {
        for (const std::string& word : answers) page->window().answer(word);
        const Rect place = page->page().controlOf(kOpenProject)->place();
        const Point at{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
        page->window().press(at);
        page->window().release(at);
        std::vector<std::string> log = page->window().takeLog();
        log.erase(log.begin());
        return log;
    }
    std::int32_t files() {
        std::int32_t count = -1;
        EXPECT_EQ(rig.sampler().GetBinFileCount(&count), S_OK);
        return count;
    }

    HostRig rig{createInstrument};
    std::unique_ptr<HeadlessPage> page;
};

TEST(Recovery, InAWindowTheShellAsks) {
    const CutOff it;
    it.leave(it.unfinished());
    const std::string question =
        "? message \"p.mrn isn't loaded: its saving was never finished; what was saved before is in "
        "p.mrn.bak.  Load that?\" -> ";
    Window window(it.studio.folder);
    EXPECT_EQ(window.open({"p.mrn", "no"}), std::vector{question + "no"});
    EXPECT_EQ(window.files(), 0);
    EXPECT_EQ(window.open({"p.mrn", "yes"}), std::vector{question + "yes"});
    EXPECT_EQ(window.files(), 2);
    fs::remove(it.studio.folder / "p.mrn.bak");
    EXPECT_EQ(
        window.open({"p.mrn", "ok"}),
        std::vector<std::string>{"? message \"p.mrn isn't loaded: its saving was never finished.\" -> ok"});
    it.leave(it.whole);
    EXPECT_EQ(window.open({"p.mrn"}), std::vector<std::string>{});
}

TEST(Recovery, AScriptPrintsNoQuestionOfItsOwn) {
    const CutOff it;
    it.leave(it.unfinished());
    // The button that opens a project.
    const std::string printed = it.studio.script(
        "connect 44100 2 mix\npage open\nanswer p.mrn\nanswer ok\npress 20 40\nrelease 20 40\n");
    EXPECT_NE(printed.find("? message \"Error loading file!  The file may be corrupted.\" -> ok\n"),
              std::string::npos)
        << printed;
    EXPECT_EQ(printed.find(".bak"), std::string::npos) << printed;
}

}  // namespace
}  // namespace marnoth::test::recovery_test
