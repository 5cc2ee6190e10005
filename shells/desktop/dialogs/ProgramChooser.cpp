#include "shells/desktop/dialogs/ProgramChooser.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "shellkit/page/UserPlaces.h"
#include "shells/desktop/dialogs/DialogPrograms.h"

namespace marnoth {

namespace {

/// Longer than any path.
constexpr std::size_t kLongestAnswer = 1 << 16;
constexpr int kCancelled = 1;  ///< what both programs end with then

/// Both dialogs end what they write with the end of a line.
std::string withoutLineEnd(std::string text) {
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

}  // namespace

void ProgramChooser::ask(const FileQuestion& question, AskingWindow& window,
                         std::function<void(FileAnswer)> then) {
    cancel();
    answer_.clear();
    FileQuestion begun = question;
    // By themselves they begin with files of any kind that were used last, or where the program was started.
    if (begun.folder.empty()) begun.folder = folderToBeginIn();
    std::vector<std::string> command = dialogCommand(program_, begun, window.id());
    if (command.empty() || !start(std::move(command))) {
        end();
        return then({.wasAsked = false, .file = {}});
    }
    then_ = std::move(then);
    begin_ = EventLoop::Time::clock::now();
    loop_.watch(process_, [this] { ended(); });
    loop_.watch(pipe_, [this] {
        if (read()) return;
        loop_.forget(pipe_);
        // Nothing that is a file: it would write on for ever.
        if (answer_.size() >= kLongestAnswer) kill(child_, SIGKILL);
    });
}

void ProgramChooser::cancel() {
    then_ = {};
    end();
}

bool ProgramChooser::start(std::vector<std::string> command) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    pipe_ = ends[0];
    fcntl(pipe_, F_SETFL, O_NONBLOCK);
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
    if (failed != 0) child_ = 0;
    if (child_ != 0) process_ = static_cast<int>(syscall(SYS_pidfd_open, child_, 0));
    return process_ >= 0;
}

bool ProgramChooser::read() {
    std::array<char, 4096> part;
    const ssize_t count = ::read(pipe_, part.data(), part.size());
    if (count <= 0 || answer_.size() >= kLongestAnswer) return false;
    answer_.append(part.data(), static_cast<std::size_t>(count));
    return true;
}

void ProgramChooser::ended() {
    while (read()) {
    }
    const FileAnswer answer = answerOf(end());
    const auto then = std::exchange(then_, {});
    if (then) then(answer);
}

FileAnswer ProgramChooser::answerOf(int status) const {
    const bool isChosen = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    if (std::string file = withoutLineEnd(answer_); isChosen && file.starts_with('/'))
        return {.wasAsked = true, .file = std::move(file)};
    const bool isCancelled = WIFEXITED(status) && WEXITSTATUS(status) == kCancelled;
    return {.wasAsked = isCancelled && EventLoop::Time::clock::now() - begin_ >= kQuickestUser, .file = {}};
}

int ProgramChooser::end() {
    for (int* const descriptor : {&process_, &pipe_}) {
        if (*descriptor < 0) continue;
        loop_.forget(*descriptor);
        close(std::exchange(*descriptor, -1));
    }
    if (child_ == 0) return 0;
    const pid_t child = std::exchange(child_, 0);
    // One that has ended hears nothing any more, and one that hasn't has nothing to lose.
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

}  // namespace marnoth
