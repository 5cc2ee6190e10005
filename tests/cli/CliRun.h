#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "shellkit/text/InstrumentText.h"
#include "shells/cli/CommandLine.h"
#include "support/TempPath.h"

namespace marnoth::test {

/// A folder of its own that goes at the end with all that is in it.
class TempFolder {
public:
    TempFolder() { std::filesystem::create_directories(place_.path()); }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(place_.path(), ignored);
    }

    std::filesystem::path operator/(const std::filesystem::path& name) const { return place_.path() / name; }
    /// The name of something in it as the command line takes it.
    std::string name(const std::string& file) const {
        return utf8FromPath(place_.path() / pathFromUtf8(file));
    }

private:
    TempPath place_;
};

/// What a run of the program gave.
struct CliRun {
    int status = 0;
    std::string out;
    std::string err;
};

inline CliRun marnoth(std::vector<std::string> arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = runCommandLine(std::move(arguments), out, err);
    return {status, out.str(), err.str()};
}

inline void writeText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string readText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Runs the text of a script, which stands as `test.mrs` in `folder`; its audio goes to `folder`/out.
inline CliRun runScriptText(const TempFolder& folder, const std::string& text) {
    writeText(folder / "test.mrs", text);
    return marnoth({"script", folder.name("test.mrs"), "--out", folder.name("out")});
}

}  // namespace marnoth::test
