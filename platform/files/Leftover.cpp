#include "platform/files/Leftover.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace marnoth {
namespace {

using Name = const std::filesystem::path::value_type*;

/// What a signal's handler reads: it may touch nothing but atomics that need no lock.
std::array<std::atomic<Name>, 64> leftovers{};
std::atomic<int> pauses{0};
std::atomic<int> waitingSignal{0};
static_assert(std::atomic<Name>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

[[noreturn]] void endBy(int signal) {
    for (const std::atomic<Name>& leftover : leftovers) {
        const Name name = leftover;
        if (!name) continue;
#ifdef _WIN32
        DeleteFileW(name);
#else
        unlink(name);
#endif
    }
    std::_Exit(128 + signal);
}

void endIfAsked() {
    if (const int signal = waitingSignal) endBy(signal);
}

extern "C" void handleSignal(int signal) {
    waitingSignal = signal;
    if (pauses == 0) endBy(signal);
}

void handle(int signal) {
    if (std::signal(signal, handleSignal) == SIG_IGN) std::signal(signal, SIG_IGN);
}

int takeSlot(Name name) {
    for (std::size_t i = 0; i < leftovers.size(); ++i) {
        Name none = nullptr;
        if (leftovers[i].compare_exchange_strong(none, name)) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace

Leftover::Leftover(std::filesystem::path path) : path_(std::move(path)), slot_(takeSlot(path_.c_str())) {}

Leftover::~Leftover() {
    // A handler on another thread that has begun reads names until the process ends.
    const SignalPause pause;
    if (slot_ >= 0) leftovers[static_cast<std::size_t>(slot_)] = nullptr;
}

SignalPause::SignalPause() {
    ++pauses;
    endIfAsked();
}

SignalPause::~SignalPause() {
    if (--pauses == 0) endIfAsked();
}

void removeLeftoversOnSignals() {
    handle(SIGINT);
    handle(SIGTERM);
#ifndef _WIN32
    handle(SIGHUP);
    handle(SIGPIPE);
#endif
}

}  // namespace marnoth
