#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <span>
#include <utility>

#include "platform/com/RefPtr.h"
#include "sample/WaveMem.h"

namespace marnoth {

/// Plays a wave beside an instrument, once and as it is. What is cut falls to silence within milliseconds.
///
/// One thread hands waves over and frees them; the thread that renders takes them over and hands them back,
/// neither waiting.
class WavePlayer {
public:
    WavePlayer() = default;
    /// No block is under way any more.
    ~WavePlayer();
    WavePlayer(const WavePlayer&) = delete;
    WavePlayer& operator=(const WavePlayer&) = delete;

    // The thread that hands over.
    /// In place of what was heard before. The wave is one of `rate`.
    void play(RefPtr<CWaveMem> wave) { hand(std::move(wave)); }
    void stop();
    bool isPlaying() const { return ended_ != last_; }
    /// Frames per second; 0 while there is no sound.
    std::uint32_t rate() const { return rate_; }

    /// Between blocks. At another rate than before it ends what is heard, which was read for that one.
    void prepare(std::uint32_t rate);
    /// The thread that renders: adds to a block's outputs, the left one and the right one, of which those at
    /// the end may be missing and any may be null. `level` is a factor.
    void add(std::int32_t frames, std::span<float* const> outputs, float level);

private:
    /// A wave on its way to the ears; without one, silence in place of what was heard before.
    struct Sound {
        RefPtr<CWaveMem> wave;
        std::uint64_t number = 0;
    };

    void hand(RefPtr<CWaveMem> wave);
    void takeOver();
    bool isSilent() const;
    std::int64_t framesLeft() const;
    /// The value of a side at a frame of the block, of which `heard` frames are the wave's.
    float next(std::size_t side, std::int64_t frame, std::int64_t heard, float level);

    std::atomic<std::uint32_t> rate_ = 0;
    std::uint64_t last_ = 0;                ///< how many were handed over
    std::atomic<std::uint64_t> ended_ = 0;  ///< the number of the last that is over
    // Each of the three owns what it holds.
    std::atomic<Sound*> coming_ = nullptr;
    std::atomic<Sound*> going_ = nullptr;
    Sound* present_ = nullptr;  ///< the thread that renders

    // The thread that renders.
    std::int64_t position_ = 0;     ///< frames
    bool isCut_ = false;            ///< nothing more of it is heard
    std::array<float, 2> edges_{};  ///< what was heard last: it falls to silence where a wave is cut
};

}  // namespace marnoth
