#pragma once

#include <cstdint>

#include "shellkit/listening/FilePreview.h"
#include "shellkit/listening/WavePlayer.h"
#include "shells/desktop/audio/AudioDriver.h"
#include "shells/desktop/playing/MasterLevel.h"

namespace marnoth {

/// Plays a file behind the instrument, once and as it is, for a user who chooses one. Project, takes and
/// meters know nothing of it.
///
/// Stands between an audio system and the client that it would call without it.
class Preview final : public AudioClient {
public:
    /// Both outlive it. `level` is that of the mix, in which the file is heard.
    Preview(AudioClient& instrument, const MasterLevel& level) : instrument_(instrument), level_(level) {}

    /// For the window's thread.
    FileListener& listener() { return files_; }

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
    AudioClient& instrument_;
    const MasterLevel& level_;
    WavePlayer player_;
    FilePreview files_{player_};
};

}  // namespace marnoth
