#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// The floors from the ground up. The seam is one header that lies beneath the engine.
const std::vector<std::string> kFloors{"platform", "dsp",  "sample",  "seam",
                                       "engine",   "host", "hostkit", "shells"};

std::size_t heightOf(const std::string& path) {
    if (path == "host/Pzi.h" || path == "host/Pzi.cpp") return 3;
    const std::string folder = path.substr(0, path.find('/'));
    return static_cast<std::size_t>(std::find(kFloors.begin(), kFloors.end(), folder) - kFloors.begin());
}

struct Include {
    std::string from;
    std::string to;
};

std::vector<Include> includesUnder(const std::string& folder) {
    static const std::regex kQuoted(R"re(^\s*#\s*include\s*"([^"]+)")re");
    std::vector<Include> found;
    const fs::path root = MARNOTH_SOURCE_DIR;
    if (!fs::exists(root / folder)) return found;
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp") continue;
        std::ifstream file(entry.path());
        std::smatch match;
        for (std::string line; std::getline(file, line);)
            if (std::regex_search(line, match, kQuoted))
                found.push_back({fs::relative(entry.path(), root).generic_string(), match[1]});
    }
    return found;
}

TEST(IncludeArrows, EveryFloorHasIncludesToLookAt) {
    for (const char* folder : {"dsp", "sample", "engine", "host", "hostkit", "shells"})
        EXPECT_FALSE(includesUnder(folder).empty()) << folder;
}

TEST(IncludeArrows, RunDownwardOnly) {
    for (const std::string folder : {"platform", "dsp", "sample", "engine", "host", "hostkit", "shells"}) {
        for (const auto& [from, to] : includesUnder(folder)) {
            ASSERT_NE(heightOf(to), kFloors.size()) << from << " includes " << to << ", which is on no floor";
            EXPECT_LE(heightOf(to), heightOf(from)) << from << " includes " << to;
        }
    }
}

TEST(IncludeArrows, NobodyButShellsSeesThePlatformsOwnFolders) {
    for (const std::string folder : {"platform", "dsp", "sample", "engine", "host", "hostkit"})
        for (const auto& [from, to] : includesUnder(folder)) {
            const bool inside = from.starts_with("platform/linux/") || from.starts_with("platform/windows/");
            const bool own = to.starts_with("platform/linux/") || to.starts_with("platform/windows/");
            EXPECT_TRUE(inside || !own) << from << " includes " << to;
        }
}

TEST(IncludeArrows, TheCoreLeansOnTheStandardLibraryAndThePlatformAlone) {
    static const std::regex kForeign(
        R"re(^\s*#\s*include\s*<(CLI|nlohmann|smf|sndfile|glib|benchmark|gtest)[^>]*>)re");
    for (const std::string folder : {"platform", "dsp", "sample", "engine", "host", "hostkit"}) {
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(MARNOTH_SOURCE_DIR) / folder)) {
            if (!entry.is_regular_file()) continue;
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);)
                EXPECT_FALSE(std::regex_search(line, kForeign)) << entry.path() << ": " << line;
        }
    }
}

}  // namespace
