#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>

#include "seam/IGrooveSampler.h"
#include "seam/MusicalTime.h"
#include "support/TestData.h"

namespace marnoth::test {

/// Makes the folder of the committed sounds the working one for as long as it lives: files that are loaded by
/// relative names have the same names everywhere, and the strip shows them.
class SoundFolder {
public:
    SoundFolder() { std::filesystem::current_path(testData(MARNOTH_SCRIPTS)); }
    SoundFolder(const SoundFolder&) = delete;
    SoundFolder& operator=(const SoundFolder&) = delete;
    ~SoundFolder() { std::filesystem::current_path(before_); }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

/// A groove of eight beats as a musician would leave it: nine files, ten pads of different lengths and
/// settings. Wants a `SoundFolder` and an instrument that is connected.
class Groove {
public:
    explicit Groove(IGrooveSampler& sampler) : sampler_(sampler) {
        for (const char* file : {"drums", "sounds/pulse", "sounds/steps", "sounds/steps-c", "sounds/markers",
                                 "sounds/ping", "sounds/one-shot", "sounds/pair", "sounds/long-loop"})
            load(file);
        layDrums();
        layTones();
        layOthers();
        set();
    }

private:
    enum File { kDrums, kPulse, kSteps, kStepsC, kMarkers, kPing, kOneShot, kPair, kLongLoop };

    static std::int64_t ticks(double beats) {
        return static_cast<std::int64_t>(beats * static_cast<double>(kTicks16PerBeat));
    }
    void load(const std::string& file) {
        const std::string title = file.substr(file.find('/') + 1) + ".wav";
        std::int32_t bin = -1;
        std::uint32_t status = 99;
        EXPECT_EQ(sampler_.LoadFileToBin(title.c_str(), (file + ".wav").c_str(), &bin, &status), S_OK)
            << file;
    }
    /// A grain of a file at each of `beats`.
    void lay(int pad, File file, int grain, std::initializer_list<double> beats) {
        for (const double beat : beats) EXPECT_EQ(sampler_.AddGrain(file, grain, pad, ticks(beat)), S_OK);
    }
    void loop(int pad, double beats) { sampler_.SetLoopLength(kPadLoop, pad, ticks(beats)); }

    void layDrums() {
        sampler_.LoadPadFromBin(0, kDrums);
        lay(0, kDrums, 0, {2, 3, 4, 6, 7});
        lay(0, kDrums, 2, {2.5, 3.5, 4.5, 6.5, 7.25});
        lay(0, kDrums, 5, {5, 5.5, 7.5, 7.75});
        loop(0, 8);
        sampler_.LoadPadFromBin(1, kPulse);
        lay(1, kPulse, 3, {2.5, 3.25, 3.5});
        loop(1, 4);
    }
    void layTones() {
        for (const int step : {0, 1, 2, 3}) lay(2, kSteps, step, {step * 1.0, step * 1.0 + 4, step + 0.5});
        loop(2, 8);
        sampler_.LoadPadFromBin(3, kMarkers);
        sampler_.LoadPadFromBin(6, kLongLoop);
        lay(4, kStepsC, 0, {1.5, 1.75});
        lay(4, kStepsC, 2, {5.5, 5.75});
        loop(4, 6);
    }
    void layOthers() {
        lay(5, kPing, 0, {0, 3, 6});
        loop(5, 8);
        lay(8, kPair, 0, {1, 5});
        loop(8, 7);
        lay(11, kOneShot, 0, {2});
        loop(11, 3);
        sampler_.LoadPadFromBin(15, kPulse);
    }
    void set() {
        setPad(0, 1.0f, 0.5f, 60, 60);
        setPad(1, 0.7f, 0.35f, 62, 62);
        setPad(2, 1.2f, 0.5f, 36, 47);
        setPad(3, 0.5f, 0.8f, 48, 71);
        setPad(5, 1.5f, 0.1f, 64, 64);
        setPad(15, 0.0f, 1.0f, 90, 101);
        sampler_.SetPadMute(8, 1);
        sampler_.SetPadMute(15, 1);
        sampler_.SetPadSynced(5, 0);
        sampler_.SetPadLooping(11, 0);
        sampler_.SetPadSynced(11, 0);
        sampler_.SetPadOutput(2, 3);
        sampler_.SetPadChannel(2, 9);
        sampler_.SetPadRootNote(2, 3);
        sampler_.SetPadFollowKey(2, 1);
        sampler_.SetPadOneShot(2, 0);
        sampler_.SetGrainTranspose(2, 6, -5);
        sampler_.SetGrainVolume(2, 6, 0.5f);
        sampler_.SetGrainPan(2, 6, 0.25f);
        sampler_.SetRefreshRequest(1);
    }
    void setPad(int pad, float volume, float pan, int lowKey, int highKey) {
        sampler_.SetPadVolume(pad, volume);
        sampler_.SetPadPan(pad, pan);
        const KeyMapRecord entry{pad, lowKey, highKey, lowKey, 10 * pad, 127};
        EXPECT_EQ(sampler_.SetKeyMapEntry(&entry), S_OK);
    }

    IGrooveSampler& sampler_;
};

}  // namespace marnoth::test
