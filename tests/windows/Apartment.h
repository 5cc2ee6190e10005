#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <string>
#include <thread>

#include "shellkit/component/ComApartment.h"

namespace marnoth::test {

/// Runs `body` on a thread of its own in an apartment of the kind.
template <class Body>
void inApartment(COINIT kind, Body body) {
    std::thread([&] {
        const ComApartment apartment(kind);
        body();
    }).join();
}

inline std::string nameOf(COINIT kind) {
    return kind == COINIT_MULTITHREADED ? "in_many_threads" : "in_a_single_thread";
}

/// What comes of something that runs on another thread. What doesn't come ends the program, for nobody could
/// join its thread.
template <class Future>
auto inTime(Future& coming) {
    constexpr std::chrono::seconds kPatience(60);
    if (coming.wait_for(kPatience) != std::future_status::ready) {
        std::fprintf(stderr, "a call didn't come back\n");
        std::_Exit(EXIT_FAILURE);
    }
    return coming.get();
}

/// What `call` gives, which is given time, but not for ever.
template <class Call>
auto answerOf(Call call) {
    auto answer = std::async(std::launch::async, [&call] {
        const ComApartment apartment(COINIT_MULTITHREADED);
        return call();
    });
    return inTime(answer);
}

}  // namespace marnoth::test
