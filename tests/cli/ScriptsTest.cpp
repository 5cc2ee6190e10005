#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "cli/CliRun.h"
#include "cli/ScriptFolder.h"
#include "shellkit/media/WaveFrames.h"

/// Runs every script of tests/scripts, in a copy of that folder: scripts may write files beside themselves.
/// Beside a script stands what must come of it: NAME.transcript, all that
/// it prints, or NAME.audio, or both. A line of the latter is
///
///     FILE FRAMES CHANNELS              the length and the channels of a file
///     FILE BEGIN END left|right VALUE   a value that all frames from BEGIN to END have
///     FILE BEGIN END as OTHER           these frames are those from OTHER on, to the bit

namespace marnoth::test::scripts_test {
namespace {

namespace fs = std::filesystem;

/// Renders go through 32-bit floats several times.
constexpr float kTolerance = 1e-6f;

fs::path beside(const std::string& name, const char* extension) {
    return scriptFolder() / (name + extension);
}

/// The audio files of a run, read when they are asked for.
class AudioOf {
public:
    explicit AudioOf(const TempFolder& folder) : folder_(folder) {}
    const WaveFrames& file(const std::string& name) {
        if (!files_.contains(name)) files_[name] = readWaveFrames(folder_ / name);
        return files_[name];
    }

private:
    const TempFolder& folder_;
    std::map<std::string, WaveFrames> files_;
};

void expectShape(const WaveFrames& wave, std::size_t frames, std::uint32_t channels,
                 const std::string& line) {
    EXPECT_EQ(wave.channels, channels) << line;
    EXPECT_EQ(wave.samples.size() / wave.channels, frames) << line;
}

void expectValue(const WaveFrames& wave, std::size_t begin, std::size_t end, std::size_t channel, float value,
                 const std::string& line) {
    ASSERT_LT(begin, end) << line;
    ASSERT_LE(end * wave.channels, wave.samples.size()) << line;
    for (std::size_t frame = begin; frame < end; ++frame)
        ASSERT_NEAR(wave.samples[frame * wave.channels + channel], value, kTolerance)
            << line << ", frame " << frame;
}

void expectRepeated(const WaveFrames& wave, std::size_t begin, std::size_t end, std::size_t other,
                    const std::string& line) {
    ASSERT_LT(begin, end) << line;
    ASSERT_LE(std::max(end, other + end - begin) * wave.channels, wave.samples.size()) << line;
    for (std::size_t i = begin * wave.channels; i < end * wave.channels; ++i)
        ASSERT_EQ(wave.samples[i], wave.samples[i - begin * wave.channels + other * wave.channels])
            << line << ", frame " << i / wave.channels;
}

void checkAudioLine(AudioOf& audio, const std::string& line) {
    std::istringstream words(line);
    std::string name;
    std::size_t first = 0;
    std::size_t second = 0;
    ASSERT_TRUE(words >> name >> first >> second) << line;
    const WaveFrames& wave = audio.file(name);
    std::string side;
    float value = 0;
    std::size_t other = 0;
    if (!(words >> side)) return expectShape(wave, first, static_cast<std::uint32_t>(second), line);
    if (side == "as") {
        ASSERT_TRUE(words >> other) << line;
        return expectRepeated(wave, first, second, other, line);
    }
    ASSERT_TRUE(side == "left" || side == "right") << line;
    ASSERT_TRUE(words >> value) << line;
    expectValue(wave, first, second, side == "right" ? 1 : 0, value, line);
}

class Scripts : public testing::TestWithParam<std::string> {};

TEST_P(Scripts, GiveWhatStandsBesideThem) {
    const fs::path transcript = beside(GetParam(), ".transcript");
    const fs::path audioLines = beside(GetParam(), ".audio");
    ASSERT_TRUE(fs::exists(transcript) || fs::exists(audioLines)) << "nothing says what must come of it";

    const TempFolder scripts;
    const std::string script = copyScript(GetParam(), scripts);
    const TempFolder folder;
    const CliRun run = marnoth({"script", script, "--out", folder.name("")});
    EXPECT_EQ(run.status, 0) << run.err;
    if (fs::exists(transcript)) {
        EXPECT_EQ(run.out, readText(transcript));
    }
    AudioOf audio(folder);
    std::istringstream lines(readText(audioLines));
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && line.front() != '#') checkAudioLine(audio, line);
}

INSTANTIATE_TEST_SUITE_P(Session, Scripts, testing::ValuesIn(scriptNames()),
                         [](const auto& test) { return testNameOf(test.param); });

}  // namespace
}  // namespace marnoth::test::scripts_test
