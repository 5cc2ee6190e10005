#pragma once

#include <optional>
#include <string>
#include <vector>

#include "shells/desktop/audio/AudioDriver.h"
#include "shells/desktop/audio/NullDriver.h"
#include "shells/desktop/playing/TakeRecorder.h"

namespace marnoth {

/// Sound that goes into a WAV file, at the pace of the clock: all of it, from when it is opened on.
class FileDriver final : public AudioDriver, private AudioClient {
public:
    /// The file is the device of `wish`, in UTF-8; 48000 and 512 where nothing else is wished. `client`
    /// outlives it. Throws `std::runtime_error`, with a sentence for the user, when the file can't be made.
    FileDriver(const AudioWish& wish, AudioClient& client);
    /// Finishes the file. What goes wrong then is said on standard error: nobody can ask any more.
    ~FileDriver() override;

    std::string name() const override { return file_; }
    std::uint32_t rate() const override { return clock_->rate(); }
    std::int32_t frames() const override { return clock_->frames(); }
    std::string trouble() const override { return trouble_; }
    void look() override;

private:
    // The clock's client.
    bool prepare(std::uint32_t rate, std::int32_t mostFrames) override;
    void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) override;
    void render(std::int32_t frames, OutputPointers outputs) override;
    void dropout() override { client_.dropout(); }

    const std::string file_;
    AudioClient& client_;
    TakeRecorder recorder_;
    std::vector<float> left_;
    std::vector<float> right_;
    std::string trouble_;
    std::optional<NullDriver> clock_;
};

}  // namespace marnoth
