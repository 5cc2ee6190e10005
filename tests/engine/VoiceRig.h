#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <iterator>
#include <vector>

#include "support/EngineHost.h"
#include "support/WaveFile.h"

namespace marnoth::test {

/// Frame i of a sound that tells its own position: no two frames are alike, and every value is exact in 32
/// bits.
inline float rampAt(std::int64_t frame) {
    return static_cast<float>(frame + 1) / 131072.0f;
}

inline std::vector<float> ramp(std::int64_t frames) {
    std::vector<float> sound;
    for (std::int64_t i = 0; i < frames; ++i) sound.push_back(rampAt(i));
    return sound;
}

inline std::vector<float> constant(std::int64_t frames, float value = 1.0f) {
    return std::vector<float>(static_cast<std::size_t>(frames), value);
}

/// Compares frames `first` to `last` of mono `audio`, and reports the first that is off.
inline void expectFrames(const std::vector<float>& audio, std::int64_t first, std::int64_t last,
                         const std::function<double(std::int64_t frame)>& expected, double tolerance = 1e-6) {
    ASSERT_LE(last, static_cast<std::int64_t>(audio.size()));
    for (std::int64_t i = first; i < last; ++i) {
        const double value = audio[static_cast<std::size_t>(i)];
        if (std::abs(value - expected(i)) <= tolerance) continue;
        ADD_FAILURE() << "frame " << i << " is " << value << ", not " << expected(i);
        return;
    }
}

inline void expectSilence(const std::vector<float>& audio, std::int64_t first, std::int64_t last) {
    expectFrames(
        audio, first, last, [](std::int64_t) { return 0.0; }, 0);
}

inline float peak(const std::vector<float>& audio) {
    float highest = 0;
    for (const float value : audio) highest = std::max(highest, std::abs(value));
    return highest;
}

/// An engine with sounds on its pads, played by notes as its shell would: a note gets its voice before the
/// block, a note-off ends the oldest held note of its key, and finished notes go behind the block. Mono by
/// default, so that a frame is a value. By default pad n answers the n-th white key from 60 on.
struct VoiceRig : EngineHost {
    explicit VoiceRig(std::uint32_t rate = 44100, std::uint16_t channels = 1) : EngineHost(rate, channels) {}
    ~VoiceRig() {
        for (QueuedEvent& note : notes) engine.ReleaseVoice(&note, 1);
    }

    /// Lays a file without a loop description on a pad: one grain, not looping, not synced.
    std::int32_t laySound(std::int32_t pad, const std::vector<float>& sound) {
        return lay(pad, waveOf(sound));
    }
    /// Lays a loop on a pad: four equal grains to the beat, looping and synced.
    std::int32_t layLoop(std::int32_t pad, const std::vector<float>& sound, std::uint32_t beats) {
        return lay(pad, waveOf(sound).acid({.beats = beats}));
    }
    WaveFile waveOf(const std::vector<float>& sound) {
        WaveFile file;
        file.floats().channels(engine.inputFormat.nChannels).rate(engine.inputFormat.nSamplesPerSec);
        return file.values(sound);
    }
    /// Gives the place in the Loop Bin.
    std::int32_t lay(std::int32_t pad, const WaveFile& file) {
        const TempPath path = file.writeTemp();
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        EXPECT_EQ(engine.LoadFileToPad(pad, "sound", path.c_str(), &bin, &status), S_OK);
        return bin;
    }
    std::int32_t loadToBin(const WaveFile& file) {
        const TempPath path = file.writeTemp();
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        EXPECT_EQ(engine.LoadFileToBin("sound", path.c_str(), &bin, &status), S_OK);
        return bin;
    }

    QueuedEvent& noteOn(std::uint8_t key, std::uint8_t velocity = 100, std::uint8_t channel = 0) {
        return queue(key, velocity, channel, 0, kDurationOpen);
    }
    /// A note of the sequence, in whole ticks.
    QueuedEvent& sequence(std::uint8_t key, std::int32_t ticks, std::uint32_t durationTicks) {
        return queue(key, 100, 0, ticks, durationTicks);
    }
    void noteOff(std::uint8_t key) { offs.push_back(key); }

    /// One block, as the shell goes about it.
    void cycle(std::int32_t frames) {
        drain();
        EXPECT_EQ(block(frames), S_OK);
        retire();
    }
    /// Goes on for `frames` frames and gives what a pin put out.
    std::vector<float> play(std::int64_t frames, std::int32_t blockFrames, std::size_t pin = 0) {
        std::vector<float> all;
        for (; frames > 0; frames -= blockFrames) {
            cycle(static_cast<std::int32_t>(std::min<std::int64_t>(frames, blockFrames)));
            all.insert(all.end(), audio[pin].begin(), audio[pin].end());
        }
        return all;
    }
    bool isPlaying(std::int32_t pad) {
        std::uint32_t playing = 0;
        engine.GetPadPlaying(pad, &playing);
        return playing != 0;
    }

    void drain() {
        eraseIf([](const QueuedEvent& note) { return note.event.duration == kDurationOff; }, 1);
        for (const std::uint8_t key : offs) {
            for (QueuedEvent& note : notes) {
                if (note.event.note != key || note.event.duration != kDurationOpen) continue;
                note.event.duration = kDurationOff;
                break;
            }
        }
        offs.clear();
    }
    void retire() {
        eraseIf([](const QueuedEvent&) { return true; }, 0);
    }

private:
    QueuedEvent& queue(std::uint8_t key, std::uint8_t velocity, std::uint8_t channel, std::int32_t ticks,
                       std::uint32_t duration) {
        QueuedEvent note;
        note.event.time = ticks;
        note.event.note = key;
        note.event.velocity = velocity;
        note.event.channel = channel;
        note.event.duration = duration;
        EXPECT_EQ(engine.CreateVoice(&note), S_OK);
        notes.push_back(note);
        return notes.back();
    }
    void eraseIf(const std::function<bool(const QueuedEvent&)>& which, std::int32_t flush) {
        for (auto it = notes.begin(); it != notes.end();) {
            it = which(*it) && engine.ReleaseVoice(&*it, flush) == S_OK ? notes.erase(it) : std::next(it);
        }
    }

    std::vector<std::uint8_t> offs;
};

}  // namespace marnoth::test
