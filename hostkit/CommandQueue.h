#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <optional>

namespace marnoth {

/// A queue of fixed room from any number of threads to one, in which nobody waits: whoever finds it full or
/// empty is told so. Commands of one thread come out in their order. One whose thread was pushed aside in the
/// middle of `push` holds back those behind it until it goes on; `pop` says "empty" meanwhile.
///
/// Each place carries the number of the turn that may use it next, as in the bounded queue that Dmitry Vyukov
/// published at 1024cores.net, here with one consumer. `Command` is copied and its copies don't fail; `kRoom`
/// is a power of two.
template <class Command, std::size_t kRoom>
class CommandQueue {
    static_assert(kRoom >= 2 && (kRoom & (kRoom - 1)) == 0);

public:
    CommandQueue() {
        for (std::size_t i = 0; i < kRoom; ++i) places_[i].turn.store(i, std::memory_order_relaxed);
    }

    /// Any thread. False when the queue is full.
    bool push(const Command& command) {
        std::size_t turn = pushed_.load(std::memory_order_relaxed);
        for (;;) {
            Place& place = places_[turn % kRoom];
            const std::size_t its = place.turn.load(std::memory_order_acquire);
            if (its != turn) {
                const std::size_t newest = pushed_.load(std::memory_order_relaxed);
                // Nobody has pushed meanwhile: the place still holds what was pushed a round ago.
                if (newest == turn) return false;
                turn = newest;
            } else if (pushed_.compare_exchange_weak(turn, turn + 1, std::memory_order_relaxed)) {
                place.command = command;
                place.turn.store(turn + 1, std::memory_order_release);
                return true;
            }
        }
    }

    /// The one thread that takes, as below. Nothing when the queue is empty.
    std::optional<Command> pop() {
        Place& place = places_[popped_ % kRoom];
        if (place.turn.load(std::memory_order_acquire) != popped_ + 1) return std::nullopt;
        const Command command = place.command;
        place.turn.store(popped_ + kRoom, std::memory_order_release);
        ++popped_;
        return command;
    }

    /// Whether nobody has begun a push that hasn't been taken.
    bool isEmpty() const { return pushed_.load(std::memory_order_acquire) == popped_; }

private:
    struct Place {
        std::atomic<std::size_t> turn;
        Command command;
    };

    std::array<Place, kRoom> places_;
    alignas(64) std::atomic<std::size_t> pushed_ = 0;
    alignas(64) std::size_t popped_ = 0;
};

}  // namespace marnoth
