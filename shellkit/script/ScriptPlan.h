#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "seam/Limits.h"
#include "shellkit/files/FilePlan.h"

namespace marnoth {

/// What a script is going to read and to write, line by line, before it runs: nothing of what the runner
/// writes, nor a save of the instrument, may be the script itself, a loop or any other file that it reads. A
/// project that was loaded may be saved again: the instrument keeps it until the new one is whole. What the
/// script has written it may read.
class ScriptPlan {
public:
    /// Files that the script names are relative to `folder`, which is the script's, and audio and pictures to
    /// `outputFolder`.
    ScriptPlan(const std::filesystem::path& script, std::filesystem::path outputFolder);

    /// The words of one line, which is a command with as many arguments as it takes. Throws `WrongUse`.
    void take(const std::vector<std::string>& words);

private:
    using Words = std::vector<std::string>;

    /// The audio of one pin: a file for each format that it is connected in.
    struct Pin {
        std::string format;
        int files = 0;
    };

    void read(FilePlan& plan, const Words& words, std::size_t first);
    void write(const Words& words, const std::filesystem::path& file);
    void save(const Words& words);
    void connect(const Words& words);
    void render();
    std::filesystem::path named(const std::string& word) const;

    std::filesystem::path folder_;
    std::filesystem::path outputFolder_;
    FilePlan reads_;     ///< but projects
    FilePlan projects_;  ///< that are read
    FilePlan audio_;     ///< of the pins
    FilePlan own_;       ///< what is written before a later line reads it
    std::string format_;
    std::vector<int> connected_;
    std::array<Pin, kOutputPins> pins_;
};

}  // namespace marnoth
