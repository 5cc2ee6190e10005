#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "seam/Pzi.h"

namespace marnoth {

/// The project's key as a grain keeps it that began at a time, in the steady mode.
///
/// A host answers for a time either from a plan, which gives the same whenever it is asked, or with the key
/// that is chosen just then. So what it said of the time of each block is kept as long as it matters: as long
/// as it still says so of a time that is past, its plan is asked; otherwise that time has the key that it
/// had.
///
/// Times are 16.16 ticks. Streaming thread, under the engine's lock; allocates nothing.
class KeyHistory {
public:
    explicit KeyHistory(CPziSynthContext& context) : context_(context) {}

    /// The block from `start` to `end` comes. Where it doesn't go on from the last, nothing is known of
    /// before.
    void beginBlock(std::int64_t start, std::int64_t end);
    void forget() { count_ = 0; }

    /// The key of a grain that begins there.
    std::int32_t at(std::int64_t ticks16) const;

private:
    static constexpr std::size_t kRoom = 64;

    struct Answer {
        std::int64_t from = 0;
        std::int32_t key = 0;
    };

    std::int32_t ask(std::int64_t ticks16) const;
    bool stillHolds(const Answer& answer) const { return ask(answer.from) == answer.key; }

    CPziSynthContext& context_;
    std::array<Answer, kRoom> answers_;  ///< each differs from the one before it
    std::size_t count_ = 0;
    std::int64_t start_ = 0;  ///< of the block
    std::int64_t end_ = 0;
};

}  // namespace marnoth
