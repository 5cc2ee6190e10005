#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "support/WaveFile.h"

namespace marnoth::fuzz {

inline double tone(std::int64_t frame, int channel) {
    return 0.5 * std::sin(0.2 * static_cast<double>(frame) + channel);
}

/// Wave files of every kind that the reader tells apart, each as small as it can be.
inline std::vector<std::pair<std::string, test::WaveFile>> waveSeeds() {
    using test::WaveFile;
    std::vector<std::pair<std::string, WaveFile>> seeds;
    seeds.emplace_back("plain-16.wav", WaveFile().frames(64, tone));
    seeds.emplace_back("plain-24-stereo.wav", WaveFile().bits(24).channels(2).frames(64, tone));
    seeds.emplace_back("plain-float.wav", WaveFile().floats().rate(8000).frames(64, tone));
    seeds.emplace_back("loop.wav", WaveFile().rate(8000).channels(2).frames(400, tone).acid({.beats = 2}));
    seeds.emplace_back("loop-markers.wav", WaveFile()
                                               .rate(22050)
                                               .frames(400, tone)
                                               .acid({.flags = 2, .root = 57, .beats = 1})
                                               .strc(4, {{50}, {100, 2}, {200, 0, 0}, {300}}));
    seeds.emplace_back("one-shot.wav", WaveFile().frames(200, tone).acid({.flags = 1}).strc(2));
    seeds.emplace_back("tags.wav", WaveFile()
                                       .frames(64, tone)
                                       .acid({.beats = 1})
                                       .info("INAM", "name")
                                       .info("IART", "odd")
                                       .addChunk("junk", {1, 2, 3}));
    seeds.emplace_back("extensible.wav", WaveFile().floats().extensible().frames(64, tone));
    seeds.emplace_back("unfinished.wav", WaveFile().frames(64, tone).claim("data", 0).claim("RIFF", 0));
    seeds.emplace_back("cut-short.wav", WaveFile().frames(300, tone).truncate(200));
    return seeds;
}

/// The loops that the test scripts name, in small.
inline std::vector<std::pair<std::string, test::WaveFile>> scriptSounds() {
    using test::WaveFile;
    std::vector<std::pair<std::string, WaveFile>> sounds;
    for (const char* name : {"drums.wav", "half.wav", "pair.wav", "ping.wav", "pulse.wav", "steps.wav"})
        sounds.emplace_back(name, WaveFile().rate(8000).channels(2).frames(1000, tone).acid({.beats = 1}));
    sounds.emplace_back("steps-c.wav",
                        WaveFile().frames(500, tone).acid({.flags = 2, .beats = 1}).strc(3, {{100}, {300}}));
    sounds.emplace_back("one-shot.wav", WaveFile().frames(300, tone).acid({.flags = 1}));
    sounds.emplace_back("input.wav", WaveFile().floats().channels(2).frames(100, tone));
    return sounds;
}

}  // namespace marnoth::fuzz
