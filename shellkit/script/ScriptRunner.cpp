#include "shellkit/script/ScriptRunner.h"

#include <array>
#include <fstream>
#include <ostream>
#include <string_view>
#include <system_error>

#include "shellkit/files/Failure.h"
#include "shellkit/script/ScriptCommand.h"
#include "shellkit/script/ScriptPlan.h"
#include "shellkit/script/ScriptSession.h"
#include "shellkit/script/ScriptWords.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr int kWrongUseStatus = 2;
constexpr std::string_view kLineEnd = "\r\n";  ///< the longest
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::size_t lengthOfLastLine(std::string_view text) {
    return text.size() - (text.rfind('\n') + 1);
}

std::string readScript(const std::string& name) {
    const std::filesystem::path path = pathFromUtf8(name);
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) throw FileFailure(name + ": there is no such file");
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, ignored)) throw FileFailure(name + ": it can't be read");
    std::string text;
    std::array<char, 0x1000> part{};
    // Behind a line that is refused nothing is wanted, be there ever so much.
    while (lengthOfLastLine(text) <= kMostLineBytes + kLineEnd.size() && file) {
        file.read(part.data(), part.size());
        text.append(part.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (file.bad()) throw FileFailure(name + ": it can't be read");
    return text;
}

void makeFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder, error))
        throw FileFailure(utf8FromPath(folder) + ": the folder can't be made");
}

/// Gives out the lines of a text, whichever of the two ways they end.
class LineReader {
public:
    explicit LineReader(std::string_view text) : rest_(text) {
        if (rest_.starts_with(kByteOrderMark)) rest_.remove_prefix(kByteOrderMark.size());
    }

    bool next(std::string_view& line) {
        if (rest_.empty()) return false;
        const std::size_t end = rest_.find('\n');
        line = rest_.substr(0, end);
        rest_.remove_prefix(end == rest_.npos ? rest_.size() : end + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        ++number_;
        return true;
    }

    int number() const { return number_; }

private:
    std::string_view rest_;
    int number_ = 0;
};

/// The command of a line with its words, which are none for a line without one. Throws `ScriptError`.
const ScriptCommand* commandOf(std::string_view line, std::vector<std::string>& words) {
    if (line.size() > kMostLineBytes)
        throw ScriptError("the line is longer than " + std::to_string(kMostLineBytes) + " bytes");
    words = splitWords(line);
    if (words.empty()) return nullptr;
    const ScriptCommand& command = findCommand(words.front());
    command.checkCount(words.size() - 1);
    return &command;
}

/// Whether nothing that the script reads is written over. It ends where the run will end.
void checkFiles(LineReader& lines, ScriptPlan plan) try {
    std::vector<std::string> words;
    for (std::string_view line; lines.next(line);)
        if (commandOf(line, words)) plan.take(words);
} catch (const ScriptError&) {
    // Told in its turn.
}

/// What the page asked stands ahead of the command that led to it, be it one that failed.
std::string runCommand(const ScriptCommand& command, ScriptSession& session, Arguments arguments,
                       std::ostream& transcript) {
    const auto tellQuestions = [&] {
        for (const std::string& line : session.takeQuestions()) transcript << line << '\n';
        transcript << std::flush;
    };
    try {
        std::string outcome = command.run(session, arguments);
        tellQuestions();
        return outcome;
    } catch (...) {
        tellQuestions();
        throw;
    }
}

void runLine(ScriptSession& session, std::string_view line, std::ostream& transcript) {
    std::vector<std::string> words;
    const ScriptCommand* command = commandOf(line, words);
    if (!command) return;
    const std::string outcome = runCommand(*command, session, Arguments(words).subspan(1), transcript);
    // One line at a time, so that the transcript of a run that is broken off is whole up to there.
    transcript << joinWords(words) << " -> " << outcome << '\n' << std::flush;
}

}  // namespace

int runScript(const ScriptStage& stage, const std::string& scriptName,
              const std::filesystem::path& outputFolder, std::ostream& transcript, std::ostream& errors) {
    const std::string text = readScript(scriptName);
    const auto tell = [&](const LineReader& lines, const std::exception& error) {
        errors << scriptName << ':' << lines.number() << ": " << error.what() << std::endl;
        return kWrongUseStatus;
    };
    LineReader ahead(text);
    try {
        checkFiles(ahead, ScriptPlan(pathFromUtf8(scriptName), outputFolder));
    } catch (const WrongUse& error) {
        return tell(ahead, error);
    }
    makeFolder(outputFolder);
    ScriptSession session(stage, pathFromUtf8(scriptName).parent_path(), outputFolder);
    LineReader lines(text);
    int status = 0;
    try {
        for (std::string_view line; lines.next(line);) runLine(session, line, transcript);
    } catch (const ScriptError& error) {
        status = tell(lines, error);
    } catch (...) {
        // What could be written keeps its place even when one file failed.
        try {
            session.finish();
        } catch (const FileFailure&) {
        }
        throw;
    }
    session.finish();
    return status;
}

}  // namespace marnoth
