#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// The floors from the ground up. The seam is one header that lies beneath the engine.
const std::vector<std::string> kFloors{"platform", "dsp",  "sample",  "seam",  "engine",
                                       "editor",   "host", "hostkit", "shells"};

std::size_t heightOf(const std::string& path) {
    if (path == "host/Pzi.h" || path == "host/Pzi.cpp") return 3;
    const std::string folder = path.substr(0, path.find('/'));
    return static_cast<std::size_t>(std::find(kFloors.begin(), kFloors.end(), folder) - kFloors.begin());
}

struct Include {
    std::string from;
    std::string to;
};

/// What a line includes between `open` and `close`; nothing when it is no such include.
std::optional<std::string> includedBy(const std::string& line, char open, char close) {
    const std::size_t hash = line.find_first_not_of(" \t");
    if (hash == line.npos || line[hash] != '#') return {};
    const std::size_t word = line.find_first_not_of(" \t", hash + 1);
    if (word == line.npos || line.compare(word, 7, "include") != 0) return {};
    const std::size_t begin = line.find_first_not_of(" \t", word + 7);
    if (begin == line.npos || line[begin] != open) return {};
    const std::size_t end = line.find(close, begin + 1);
    if (end == line.npos) return {};
    return line.substr(begin + 1, end - begin - 1);
}

std::vector<Include> includesUnder(const std::string& folder, char open = '"', char close = '"') {
    std::vector<Include> found;
    const fs::path root = MARNOTH_SOURCE_DIR;
    if (!fs::exists(root / folder)) return found;
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp") continue;
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);)
            if (const auto to = includedBy(line, open, close))
                found.push_back({fs::relative(entry.path(), root).generic_string(), *to});
    }
    return found;
}

TEST(IncludeArrows, EveryFloorHasIncludesToLookAt) {
    for (const char* folder : {"dsp", "sample", "engine", "editor", "host", "hostkit", "shells"})
        EXPECT_FALSE(includesUnder(folder).empty()) << folder;
}

TEST(IncludeArrows, RunDownwardOnly) {
    for (const std::string folder :
         {"platform", "dsp", "sample", "engine", "editor", "host", "hostkit", "shells"}) {
        for (const auto& [from, to] : includesUnder(folder)) {
            ASSERT_NE(heightOf(to), kFloors.size()) << from << " includes " << to << ", which is on no floor";
            EXPECT_LE(heightOf(to), heightOf(from)) << from << " includes " << to;
        }
    }
}

TEST(IncludeArrows, NobodyButShellsSeesThePlatformsOwnFolders) {
    for (const std::string folder : {"platform", "dsp", "sample", "engine", "editor", "host", "hostkit"})
        for (const auto& [from, to] : includesUnder(folder)) {
            const bool inside = from.starts_with("platform/linux/") || from.starts_with("platform/windows/");
            const bool own = to.starts_with("platform/linux/") || to.starts_with("platform/windows/");
            EXPECT_TRUE(inside || !own) << from << " includes " << to;
        }
}

TEST(IncludeArrows, TheEditorKnowsOfTheEngineItsInterfaceAlone) {
    for (const auto& [from, to] : includesUnder("editor"))
        EXPECT_TRUE(to.starts_with("editor/") || to.starts_with("platform/") ||
                    to == "engine/IGrooveSampler.h")
            << from << " includes " << to;
}

TEST(IncludeArrows, TheCoreLeansOnTheStandardLibraryAndThePlatformAlone) {
    for (const std::string folder : {"platform", "dsp", "sample", "engine", "editor", "host", "hostkit"})
        for (const auto& [from, to] : includesUnder(folder, '<', '>'))
            for (const char* foreign :
                 {"CLI/", "nlohmann/", "smf", "sndfile", "glib", "benchmark/", "gtest/", "gmock/"})
                EXPECT_FALSE(to.starts_with(foreign)) << from << " includes " << to;
}

}  // namespace
