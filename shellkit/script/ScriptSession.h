#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/HostRig.h"
#include "shellkit/media/AudioFiles.h"
#include "shellkit/media/WaveFrames.h"
#include "shellkit/page/HeadlessPage.h"

namespace marnoth {

/// Opens the page of an instrument. File answers that are relative count from `folder`. Throws
/// `std::runtime_error`, with a sentence for the user, when it can't.
using PageMaker =
    std::function<std::unique_ptr<HeadlessPage>(IUnknown& instrument, const std::filesystem::path& folder)>;

/// Where a script plays, made by the shell: an instrument in its host, which outlives the script, and how its
/// page is opened when the script asks for it.
struct ScriptStage {
    HostRig& rig;
    PageMaker makePage;
};

/// What the commands of one script work on: its stage, the audio files that come out, and what the runner has
/// to remember between the lines. One thread.
class ScriptSession {
public:
    /// Files that the script names are relative to `scriptFolder`; audio and pictures go to `outputFolder`,
    /// which must exist.
    ScriptSession(const ScriptStage& stage, const std::filesystem::path& scriptFolder,
                  const std::filesystem::path& outputFolder);
    ~ScriptSession();
    ScriptSession(const ScriptSession&) = delete;
    ScriptSession& operator=(const ScriptSession&) = delete;

    HostRig& rig() { return rig_; }

    /// A file that the script names, as a full path.
    std::filesystem::path file(std::string_view word) const;
    /// A file that the script names to have it written among the audio.
    std::filesystem::path outputFile(std::string_view word) const;

    /// Connects the input pin and `pins`, numbered as the rig does.
    HRESULT connect(std::uint32_t rate, std::uint32_t channels, const std::vector<int>& pins);
    /// The rate of the last `connect`, failed or not; nothing before.
    std::optional<std::uint32_t> rate() const { return rate_; }

    void setInputSilence();
    void setInputZeros();
    /// Throws `ScriptError` when the file can't be read or isn't of the input pin's format.
    void setInputFile(std::string_view word);

    HRESULT setBlock(std::int32_t frames);
    /// Renders in blocks into the audio files. Throws `FileFailure` when these can't be written.
    HRESULT render(std::int64_t frames);

    /// Saves the instrument's state into a file. Throws `FileFailure` when that can't be written.
    HRESULT saveStream(std::string_view word);
    /// Loads it again. Throws `ScriptError` when the file can't be opened.
    HRESULT loadStream(std::string_view word);

    /// The editor page. Throws `ScriptError` when there is none.
    HeadlessPage& page();
    /// Throws `ScriptError` when there is one, and `std::runtime_error` when its font can't be had.
    void openPage();
    /// Throws `ScriptError` when there is none.
    void closePage();
    /// The lines of the page's questions since the last call.
    std::vector<std::string> takeQuestions();

    /// Gives the audio files their names. Throws `FileFailure`.
    void finish() { files_.finish(); }

private:
    struct InputFormat {
        std::string name;
        std::uint32_t rate;
        std::uint32_t channels;
    };

    /// Throws `ScriptError` when the input file doesn't fit the connection.
    void checkInput() const;

    std::filesystem::path folder_;
    std::filesystem::path outputFolder_;
    AudioFiles files_;
    HostRig& rig_;
    PageMaker makePage_;
    std::unique_ptr<HeadlessPage> page_;
    std::optional<std::uint32_t> rate_;
    std::uint32_t channels_ = 0;
    std::optional<InputFormat> input_;
    std::int32_t block_ = 512;
};

}  // namespace marnoth
