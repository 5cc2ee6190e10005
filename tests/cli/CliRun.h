#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "shellkit/TempFolder.h"
#include "shells/cli/CommandLine.h"

namespace marnoth::test {

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

/// Runs the text of a script, which stands as `test.mrs` in `folder`; its audio goes to `folder`/out.
inline CliRun runScriptText(const TempFolder& folder, const std::string& text) {
    writeText(folder / "test.mrs", text);
    return marnoth({"script", folder.name("test.mrs"), "--out", folder.name("out")});
}

}  // namespace marnoth::test
