#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "shellkit/TempFolder.h"
#include "support/TestData.h"

namespace marnoth::test {

/// The scripts of tests/scripts, with what they load and what must come of them.
inline const std::filesystem::path& scriptFolder() {
    static const std::filesystem::path folder = testData(MARNOTH_SCRIPTS);
    return folder;
}

/// Without their extension, in their order.
inline std::vector<std::string> scriptNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(scriptFolder()))
        if (entry.path().extension() == ".mrs") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

/// Copies a script, and what scripts load, into a folder: scripts may write files beside themselves. Gives
/// the copy's name.
inline std::string copyScript(const std::string& name, const TempFolder& folder) {
    namespace fs = std::filesystem;
    fs::copy(scriptFolder() / "sounds", folder / "sounds");
    fs::copy_file(scriptFolder() / "drums.wav", folder / "drums.wav");
    fs::copy_file(scriptFolder() / (name + ".mrs"), folder / (name + ".mrs"));
    return folder.name(name + ".mrs");
}

/// The name of a test of that script.
inline std::string testNameOf(std::string script) {
    std::replace(script.begin(), script.end(), '-', '_');
    return script;
}

}  // namespace marnoth::test
