#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cli/CliRun.h"
#include "shellkit/media/WaveFrames.h"
#include "support/WaveFile.h"

namespace marnoth::test {

/// Two beats at 120 of a level that doesn't change.
inline WaveFile steady(double level) {
    return WaveFile().floats().channels(2).frames(44100, [=](auto, int) { return level; }).acid({.beats = 2});
}

/// Two loops in a folder, and runs of the program over them.
class Studio {
public:
    Studio() {
        steady(0.25).write(folder / "a.wav");
        steady(0.125).write(folder / "b.wav");
    }

    std::string name(const std::string& file) const { return folder.name(file); }
    std::string pad(int number, const std::string& file) const {
        return std::to_string(number) + "=" + name(file);
    }

    CliRun render(std::vector<std::string> words) const {
        words.insert(words.begin(), "render");
        return marnoth(words);
    }
    /// Saves both loops on pads 1 and 3 as `project`.
    void save(const std::string& project, std::vector<std::string> more = {}) const {
        std::vector<std::string> words{"--pad", pad(1, "a.wav"),   "--pad",  pad(3, "b.wav"),
                                       "--out", name("saved.wav"), "--save", name(project)};
        words.insert(words.end(), more.begin(), more.end());
        const CliRun run = render(words);
        ASSERT_EQ(run.status, 0) << run.err;
    }
    CliRun play(const std::string& project, const std::string& out,
                std::vector<std::string> more = {}) const {
        std::vector<std::string> words{"--project", name(project), "--out", name(out)};
        words.insert(words.end(), more.begin(), more.end());
        return render(words);
    }
    /// What a script that stands in the folder prints.
    std::string script(const std::string& text) const { return runScriptText(folder, text).out; }

    std::string bytes(const std::string& file) const { return readText(folder / file); }
    WaveFrames audio(const std::string& file) const { return readWaveFrames(folder / file); }
    bool has(const std::string& file) const { return std::filesystem::exists(folder / file); }

    TempFolder folder;
};

}  // namespace marnoth::test
