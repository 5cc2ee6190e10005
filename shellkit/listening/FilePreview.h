#pragma once

#include <string>

#include "shellkit/listening/FileListener.h"
#include "shellkit/listening/WavePlayer.h"

namespace marnoth {

/// Reads the files that a user listens to while choosing one, for a player that may be anywhere.
class FilePreview final : public FileListener {
public:
    /// A longer file isn't read for it.
    static constexpr double kLongestSeconds = 300;

    /// `player` outlives it.
    explicit FilePreview(WavePlayer& player) : player_(player) {}

    std::string play(const std::string& file) override;
    void stop() override { player_.stop(); }
    bool isPlaying() const override { return player_.isPlaying(); }

private:
    WavePlayer& player_;
};

}  // namespace marnoth
