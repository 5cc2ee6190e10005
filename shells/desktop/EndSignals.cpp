#include "shells/desktop/EndSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace marnoth {

namespace {

/// The first three end the program; the others are ignored.
constexpr std::array kSignalsOfEnd{SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ};
constexpr std::size_t kEnding = 3;

std::atomic<int> cameSignal{0};
std::atomic<int> writingEnd{-1};

extern "C" void noteEndSignal(int signal) {
    const int kept = errno;
    cameSignal = signal;
    const int end = writingEnd;
    // A pipe that is full has told it already.
    [[maybe_unused]] const ssize_t written = end >= 0 ? write(end, "", 1) : 0;
    errno = kept;
}

}  // namespace

EndSignals::EndSignals() {
    cameSignal = 0;
    if (pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) == 0) writingEnd = pipe_[1];
    for (std::size_t i = 0; i < kSignalsOfEnd.size(); ++i) {
        struct sigaction wanted {};
        wanted.sa_handler = i < kEnding ? noteEndSignal : SIG_IGN;
        // The second one has its usual effect.
        wanted.sa_flags = i < kEnding ? SA_RESETHAND : 0;
        sigaction(kSignalsOfEnd[i], nullptr, &former_[i]);
        if (former_[i].sa_handler != SIG_IGN) sigaction(kSignalsOfEnd[i], &wanted, nullptr);
    }
}

EndSignals::~EndSignals() {
    for (std::size_t i = 0; i < kSignalsOfEnd.size(); ++i) sigaction(kSignalsOfEnd[i], &former_[i], nullptr);
    writingEnd = -1;
    for (const int end : pipe_)
        if (end >= 0) close(end);
}

int EndSignals::came() {
    return cameSignal;
}

}  // namespace marnoth
