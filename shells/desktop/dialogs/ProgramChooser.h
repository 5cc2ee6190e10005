#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/drawing/FileChooser.h"
#include "shells/desktop/EventLoop.h"

namespace marnoth {

/// Asks for files by another program, zenity or kdialog, which runs beside the loop: the window goes on. The
/// loop's thread.
class ProgramChooser final : public FileChooser {
public:
    /// A dialog that was closed sooner than a user can is one that didn't come up.
    static constexpr std::chrono::milliseconds kQuickestUser{250};

    /// `loop` outlives it. `program` is the program's path; empty without one.
    ProgramChooser(EventLoop& loop, std::string program) : loop_(loop), program_(std::move(program)) {}
    ~ProgramChooser() override { cancel(); }

    void ask(const FileQuestion& question, AskingWindow& window,
             std::function<void(FileAnswer)> then) override;
    void cancel() override;

private:
    bool start(std::vector<std::string> command);
    /// Takes what the program has written; false when there is no more.
    bool read();
    void ended();
    /// Ends the program, if one runs, and reaps it. Gives how it ended.
    int end();
    FileAnswer answerOf(int status) const;

    EventLoop& loop_;
    const std::string program_;
    pid_t child_ = 0;
    int process_ = -1;  ///< readable when the program has ended
    int pipe_ = -1;     ///< what it writes
    EventLoop::Time begin_;
    std::string answer_;
    std::function<void(FileAnswer)> then_;
};

}  // namespace marnoth
