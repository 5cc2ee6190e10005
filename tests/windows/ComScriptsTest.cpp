/// Session scripts on the registered component in the system's graph, beside the same on the program's own
/// instrument in the host kit's.

#include <gtest/gtest.h>

#include <map>

#include "cli/CliRun.h"
#include "cli/ScriptFolder.h"
#include "windows/Apartment.h"
#include "windows/Registered.h"

namespace marnoth::test::com_scripts_test {
namespace {

namespace fs = std::filesystem;

bool usesPage(const std::string& script) {
    return readText(scriptFolder() / (script + ".mrs")).find("page open") != std::string::npos;
}

std::vector<std::string> scriptsWithoutPage() {
    std::vector<std::string> names = scriptNames();
    names.erase(std::remove_if(names.begin(), names.end(), usesPage), names.end());
    return names;
}

/// What comes of a script: what it prints, and all files that are there behind it, by their names.
struct Outcome {
    CliRun run;
    std::map<std::string, std::string> files;
};

void readFilesOf(const TempFolder& folder, Outcome& outcome) {
    const fs::path root = folder / "";
    for (const auto& entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file())
            outcome.files[fs::relative(entry.path(), root).generic_string()] = readText(entry.path());
}

/// All plays of a script are in one place: projects hold the names of their loops' files.
Outcome play(const std::string& script, const TempFolder& folder, const std::vector<std::string>& more = {}) {
    fs::remove_all(folder / "");
    fs::create_directories(folder / "");
    std::vector<std::string> words{"script", copyScript(script, folder), "--out", folder.name("out")};
    words.insert(words.end(), more.begin(), more.end());
    Outcome outcome{marnoth(words), {}};
    readFilesOf(folder, outcome);
    return outcome;
}

bool isComponentLoaded() {
    return GetModuleHandleW(fs::absolute(Component::builtFile()).c_str()) != nullptr;
}

class ComScripts : public Registered<testing::TestWithParam<std::string>> {};

TEST_P(ComScripts, GiveTheTranscriptAndTheFilesOfTheProgramsOwnInstrument) {
    const TempFolder folder;
    const Outcome own = play(GetParam(), folder);
    EXPECT_FALSE(isComponentLoaded());
    EXPECT_EQ(own.run.status, 0) << own.run.err;
    EXPECT_FALSE(own.run.out.empty());
    for (const COINIT kind : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED}) {
        SCOPED_TRACE(nameOf(kind));
        Outcome component;
        inApartment(kind, [&] {
            component = play(GetParam(), folder, {"--com"});
            EXPECT_TRUE(isComponentLoaded());
        });
        EXPECT_EQ(component.run.status, 0) << component.run.err;
        EXPECT_EQ(component.run.out, own.run.out);
        ASSERT_EQ(component.files.size(), own.files.size());
        for (const auto& [name, bytes] : own.files) EXPECT_TRUE(component.files[name] == bytes) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Session, ComScripts, testing::ValuesIn(scriptsWithoutPage()),
                         [](const auto& test) { return testNameOf(test.param); });

}  // namespace
}  // namespace marnoth::test::com_scripts_test
