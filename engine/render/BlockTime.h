#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "seam/MusicalTime.h"
#include "seam/Pzi.h"

namespace marnoth {

/// Conversions of time within one block. The same few times come up for every pad, and within a block the
/// context's answers don't change: each is asked for once.
///
/// Streaming thread, under the engine's lock; allocates nothing.
class BlockTime {
public:
    explicit BlockTime(CPziSynthContext& context) : context_(context) {}
    BlockTime(const BlockTime&) = delete;
    BlockTime& operator=(const BlockTime&) = delete;

    /// Another block: `frames` frames from `start` on, in samples. What was known is forgotten.
    void begin(std::int64_t start, std::int32_t frames);

    std::int64_t toSamples(std::int64_t ticks16) {
        return samples_.answer(ticks16, [this](std::int64_t ticks) { return askSamples(ticks); });
    }
    /// What has no known end in ticks has none in samples.
    std::int64_t toSamplesOrOpen(std::int64_t ticks16) {
        return ticks16 == kOpenEnded ? kOpenEnded : toSamples(ticks16);
    }
    std::int64_t toTicks(std::int64_t samples) {
        return ticks_.answer(samples, [this](std::int64_t frames) { return askTicks(frames); });
    }

    /// The first frame at or behind a time. A conversion there and back may be one frame off.
    std::int64_t firstFrameFrom(std::int64_t ticks16);

    // The block's own place.
    std::int64_t startSamples() const { return startSamples_; }
    std::int64_t startTicks() const { return startTicks_; }
    std::int64_t lengthTicks() const { return lengthTicks_; }

private:
    /// Answers already given, each at the place that its question hashes to.
    class Memo {
    public:
        void forget() { ++block_; }
        template <class Ask>
        std::int64_t answer(std::int64_t question, Ask ask) {
            // Multiplicative hashing: the golden ratio spreads times that differ by a constant.
            const std::uint64_t spread = static_cast<std::uint64_t>(question) * 0x9E3779B97F4A7C15u;
            Entry& entry = entries_[static_cast<std::size_t>(spread >> (64 - kBits))];
            if (entry.block != block_ || entry.question != question)
                entry = {question, ask(question), block_};
            return entry.answer;
        }

    private:
        struct Entry {
            std::int64_t question = 0;
            std::int64_t answer = 0;
            std::uint64_t block = 0;  ///< in which it was given
        };
        static constexpr int kBits = 7;

        std::array<Entry, std::size_t{1} << kBits> entries_{};
        std::uint64_t block_ = 1;
    };

    std::int64_t askSamples(std::int64_t ticks16);
    std::int64_t askTicks(std::int64_t samples);

    CPziSynthContext& context_;
    Memo samples_;
    Memo ticks_;
    std::int64_t startSamples_ = -1;
    std::int64_t startTicks_ = 0;
    std::int64_t lengthTicks_ = 0;
};

}  // namespace marnoth
