#pragma once

#include <sys/types.h>

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
    /// What is told when nobody can be asked: a sentence for the user.
    using Tell = std::function<void(const std::string&)>;

    /// `loop` outlives it. `program` is the program's path; empty without one.
    ProgramChooser(EventLoop& loop, std::string program, Tell tell)
        : loop_(loop), program_(std::move(program)), tell_(std::move(tell)) {}
    ~ProgramChooser() override { cancel(); }

    void ask(std::string_view filter, FileKind kind, unsigned long window,
             std::function<void(std::optional<std::string>)> then) override;
    void cancel() override;

private:
    bool start(std::vector<std::string> command);
    void read();
    /// Ends the program, if one runs, and reaps it. True when it ended well by itself.
    bool end();

    EventLoop& loop_;
    const std::string program_;
    const Tell tell_;
    pid_t child_ = 0;
    int pipe_ = -1;
    std::string answer_;
    std::function<void(std::optional<std::string>)> then_;
};

}  // namespace marnoth
