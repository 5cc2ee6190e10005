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

/// The floors from the ground up. Those on one line don't know each other.
const std::vector<std::vector<std::string>> kFloors{{"platform"}, {"seam"},   {"dsp"},  {"sample"},
                                                    {"project"},  {"engine"}, {"host"}, {"editor", "hostkit"},
                                                    {"shellkit"}, {"shells"}};

std::vector<std::string> folders() {
    std::vector<std::string> all;
    for (const auto& floor : kFloors) all.insert(all.end(), floor.begin(), floor.end());
    return all;
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.find('/'));
}

std::size_t heightOf(const std::string& path) {
    const auto holds = [&](const auto& floor) {
        return std::find(floor.begin(), floor.end(), folderOf(path)) != floor.end();
    };
    return static_cast<std::size_t>(std::find_if(kFloors.begin(), kFloors.end(), holds) - kFloors.begin());
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
    for (const std::string& folder : folders())
        if (folder != "platform") {
            EXPECT_FALSE(includesUnder(folder).empty()) << folder;
        }
}

TEST(IncludeArrows, RunDownwardOnly) {
    for (const std::string& folder : folders()) {
        for (const auto& [from, to] : includesUnder(folder)) {
            ASSERT_NE(heightOf(to), kFloors.size()) << from << " includes " << to << ", which is on no floor";
            const bool own = folderOf(to) == folder;
            EXPECT_TRUE(own || heightOf(to) < heightOf(from)) << from << " includes " << to;
        }
    }
}

TEST(IncludeArrows, NobodyButShellsSeesThePlatformsOwnFolders) {
    for (const std::string& folder : folders()) {
        if (folder == "shells") continue;
        for (const auto& [from, to] : includesUnder(folder)) {
            const bool inside = from.starts_with("platform/linux/") || from.starts_with("platform/windows/");
            const bool own = to.starts_with("platform/linux/") || to.starts_with("platform/windows/");
            EXPECT_TRUE(inside || !own) << from << " includes " << to;
        }
    }
}

TEST(IncludeArrows, PageAndHostKitKnowOfTheInstrumentTheSeamAlone) {
    for (const std::string folder : {"editor", "hostkit"})
        for (const auto& [from, to] : includesUnder(folder)) {
            const std::string target = folderOf(to);
            EXPECT_TRUE(target == folder || target == "platform" || target == "seam")
                << from << " includes " << to;
        }
}

TEST(IncludeArrows, TheCoreLeansOnTheStandardLibraryAndThePlatformAlone) {
    for (const std::string folder :
         {"platform", "seam", "dsp", "sample", "project", "engine", "host", "editor", "hostkit"})
        for (const auto& [from, to] : includesUnder(folder, '<', '>'))
            for (const char* foreign : {"CLI/", "lv2/", "sndfile", "glib", "benchmark/", "gtest/", "gmock/"})
                EXPECT_FALSE(to.starts_with(foreign)) << from << " includes " << to;
}

}  // namespace
