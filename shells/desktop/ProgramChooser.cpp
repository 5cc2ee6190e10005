#include "shells/desktop/ProgramChooser.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "shells/desktop/DialogPrograms.h"

namespace marnoth {

namespace {

/// Longer than any path.
constexpr std::size_t kLongestAnswer = 1 << 16;

}  // namespace

void ProgramChooser::ask(std::string_view filter, FileKind kind, unsigned long window,
                         std::function<void(std::optional<std::string>)> then) {
    end();
    answer_.clear();
    std::vector<std::string> command = dialogCommand(program_, filter, kind, window);
    if (command.empty() || !start(std::move(command))) {
        tell_(
            program_.empty()
                ? "Files are chosen by zenity or kdialog, and neither is installed. Files can be dropped on "
                  "the page, or named when the program is started."
                : program_ + " can't be started.");
        return then({});
    }
    then_ = std::move(then);
    loop_.watch(pipe_, [this] { read(); });
}

void ProgramChooser::cancel() {
    end();
    then_ = {};
}

bool ProgramChooser::start(std::vector<std::string> command) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (std::string& word : command) words.push_back(word.data());
    words.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, ends[1], STDOUT_FILENO);
    const int failed = posix_spawn(&child_, program_.c_str(), &files, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    close(ends[1]);
    pipe_ = ends[0];
    if (failed == 0) return true;
    child_ = 0;
    end();
    return false;
}

void ProgramChooser::read() {
    std::array<char, 4096> part;
    const ssize_t count = ::read(pipe_, part.data(), part.size());
    if (count > 0 && answer_.size() < kLongestAnswer) {
        answer_.append(part.data(), static_cast<std::size_t>(count));
        return;
    }
    // Its end of the pipe is closed: it has answered.
    const bool isChosen = end();
    while (answer_.ends_with('\n')) answer_.pop_back();
    const auto then = std::exchange(then_, {});
    if (then) then(isChosen && answer_.starts_with('/') ? std::optional(answer_) : std::nullopt);
}

bool ProgramChooser::end() {
    if (pipe_ >= 0) {
        loop_.forget(pipe_);
        close(std::exchange(pipe_, -1));
    }
    if (child_ == 0) return false;
    const pid_t child = std::exchange(child_, 0);
    // One that has answered is about to end; one that hasn't has nothing to lose.
    if (then_ && answer_.empty()) kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace marnoth
