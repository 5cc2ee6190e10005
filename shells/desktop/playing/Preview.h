#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

#include "platform/com/RefPtr.h"
#include "sample/WaveMem.h"
#include "shellkit/page/FileListener.h"
#include "shells/desktop/audio/AudioDriver.h"
#include "shells/desktop/playing/MasterLevel.h"

namespace marnoth {

/// Plays a file behind the instrument, once and as it is, for a user who chooses one. Project, takes and
/// meters know nothing of it.
///
/// Stands between an audio system and the client that it would call without it. The window's thread reads
/// files and frees them; the thread that renders takes them over and hands them back, neither waiting.
class Preview final : public AudioClient, public FileListener {
public:
    /// A longer file isn't read for it.
    static constexpr double kLongestSeconds = 300;

    /// Both outlive it. `level` is that of the mix, in which the file is heard.
    Preview(AudioClient& instrument, const MasterLevel& level) : instrument_(instrument), level_(level) {}
    /// No block is under way any more.
    ~Preview() override;
    Preview(const Preview&) = delete;
    Preview& operator=(const Preview&) = delete;

    // FileListener: the window's thread.
    std::string play(const std::string& file) override;
    void stop() override;
    bool isPlaying() const override { return ended_ != last_; }

    // AudioClient.
    bool prepare(std::uint32_t rate, std::int32_t mostFrames) override;
    void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) override {
        instrument_.midi(frame, status, data1, data2);
    }
    void render(std::int32_t frames, OutputPointers outputs) override;
    void follow(const LiveTransport& told) override { instrument_.follow(told); }
    void freewheel() override { instrument_.freewheel(); }
    MusicalPlace placeOf(std::int64_t frame) override { return instrument_.placeOf(frame); }
    void dropout() override { instrument_.dropout(); }

private:
    /// A file on its way to the ears; without a wave, silence in place of what was heard before.
    struct Sound {
        RefPtr<CWaveMem> wave;
        std::uint64_t number = 0;
    };

    void hand(RefPtr<CWaveMem> wave);
    void takeOver();
    std::int64_t framesLeft() const;
    /// The value of a side at a frame of the block, of which `heard` frames are the sound's.
    float next(std::size_t side, std::int64_t frame, std::int64_t heard);

    AudioClient& instrument_;
    const MasterLevel& level_;
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
    std::array<float, 2> edges_{};  ///< what was heard last: it falls to silence where a sound is cut
};

}  // namespace marnoth
