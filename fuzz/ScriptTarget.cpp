#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Check.h"
#include "fuzz/SeedFiles.h"
#include "shellkit/files/Failure.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/script/ScriptWords.h"
#include "shells/cli/ScriptRun.h"
#include "support/TempPath.h"

namespace marnoth::fuzz {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kMostLines = 64;

/// The first argument of these decides how long a script takes and how much memory; more is cut to this.
struct Bound {
    std::string_view command;
    std::int64_t most;
};
constexpr Bound kBounds[]{{"render", 1500}, {"block", 2048}, {"connect", 48000}};

/// The folder of the scripts: loops that they may load, and whatever they write. In memory where there is
/// such a place.
class Folder {
public:
    Folder()
        : place_(fs::path(fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                 test::TempPath().path().filename()) {
        fs::create_directories(place_);
        for (const auto& [name, file] : scriptSounds()) {
            file.write(place_ / name);
            kept_.insert(name);
        }
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(place_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    fs::path operator/(const char* name) const { return place_ / name; }

    /// Removes everything but the loops. A script can change those only by saving over them.
    void clean() {
        for (const auto& entry : fs::directory_iterator(place_))
            if (!kept_.contains(entry.path().filename().string())) fs::remove_all(entry.path());
    }

private:
    fs::path place_;
    std::set<std::string> kept_;
};

/// The line, or what it becomes so that it stays in the folder and is done soon.
std::string tamed(const std::string& line) {
    if (line.find('/') != line.npos || line.find("..") != line.npos) return "# outside";
    try {
        std::vector<std::string> words = splitWords(line);
        const auto bound = std::find_if(std::begin(kBounds), std::end(kBounds), [&](const Bound& candidate) {
            return !words.empty() && words[0] == candidate.command;
        });
        if (bound == std::end(kBounds) || words.size() < 2) return line;
        if (readNumber<std::int64_t>(words[1], "number") <= bound->most) return line;
        words[1] = std::to_string(bound->most);
        return joinWords(words);
    } catch (const ScriptError&) {
        return line;  // the runner stops there
    }
}

std::string tamedScript(std::string_view text) {
    std::string script;
    if (text.starts_with(kByteOrderMark)) {
        script = kByteOrderMark;
        text.remove_prefix(kByteOrderMark.size());
    }
    for (std::size_t count = 0; !text.empty() && count < kMostLines; ++count) {
        const std::size_t end = text.find('\n');
        std::string line(text.substr(0, end));
        const bool carriageReturn = line.ends_with('\r');
        if (carriageReturn) line.pop_back();
        script += tamed(line) + (carriageReturn ? "\r" : "") + (end == text.npos ? "" : "\n");
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return script;
}

}  // namespace
}  // namespace marnoth::fuzz

/// Whole scripts, files and audio and all, in a folder of their own.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace marnoth;
    using namespace marnoth::fuzz;
    static Folder folder;
    const fs::path script = folder / "script.mrs";
    std::ofstream(script, std::ios::binary) << tamedScript({reinterpret_cast<const char*>(data), size});
    std::ostringstream transcript, errors;
    try {
        const int status = runScriptFile(script.string(), folder / "out", transcript, errors);
        require(status == 0 || status == 2, "a script ends well or with a line that isn't understood");
        require((status == 0) == errors.str().empty(), "a reason is given for an error, and only for one");
    } catch (const FileFailure&) {
    }
    folder.clean();
    return 0;
}
