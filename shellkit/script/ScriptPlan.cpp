#include "shellkit/script/ScriptPlan.h"

#include <utility>

#include "project/ProjectBackup.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/media/AudioFiles.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

ScriptPlan::ScriptPlan(const std::filesystem::path& script, std::filesystem::path outputFolder)
    : folder_(script.parent_path()), outputFolder_(std::move(outputFolder)) {
    reads_.read("the script itself", script);
}

void ScriptPlan::take(const Words& words) {
    const std::string& command = words[0];
    if (command == "LoadFileToPad") read(reads_, words, 3);
    if (command == "LoadFileToBin") read(reads_, words, 2);
    if (command == "input" || command == "load-stream") read(reads_, words, 1);
    if (command == "drop") read(reads_, words, 3);
    if (command == "LoadProject") read(projects_, words, 1);
    // The answer to a question for a file: to open or to save.
    if (command == "SaveProject" || command == "answer") save(words);
    if (command == "answer") read(projects_, words, 1);
    if (command == "save-stream") write(words, named(words[1]));
    if (command == "shot") write(words, outputFolder_ / pathFromUtf8(words[1]));
    if (command == "connect") connect(words);
    if (command == "render") render();
}

void ScriptPlan::read(FilePlan& plan, const Words& words, std::size_t first) {
    for (std::size_t i = first; i < words.size(); ++i) {
        const std::filesystem::path file = named(words[i]);
        if (own_.has(file)) continue;
        audio_.check(words[0], words[i], file);
        plan.read(words[0] + " " + words[i], file);
    }
}

void ScriptPlan::write(const Words& words, const std::filesystem::path& file) {
    for (const FilePlan* plan : {&reads_, &projects_, &audio_}) plan->check(words[0], words[1], file);
    own_.read(words[0], file);
}

void ScriptPlan::save(const Words& words) {
    const std::filesystem::path file = named(savedName(words[1]));
    reads_.check(words[0], words[1], file);
    reads_.checkBeside(words[0], words[1], backupOf(file));
    own_.read(words[0], file);
}

void ScriptPlan::connect(const Words& words) {
    format_ = words[1] + " " + words[2];
    connected_.clear();
    for (std::size_t i = 3; i < words.size(); ++i) {
        for (int pin = 0; pin < kOutputPins; ++pin)
            if (words[i] == "all" || words[i] == (pin == 0 ? "mix" : std::to_string(pin)))
                connected_.push_back(pin);
    }
}

void ScriptPlan::render() {
    for (const int number : connected_) {
        Pin& pin = pins_[static_cast<std::size_t>(number)];
        if (std::exchange(pin.format, format_) == format_) continue;
        const std::filesystem::path file = outputFolder_ / audioFileName(number, ++pin.files);
        for (const FilePlan* plan : {&reads_, &projects_}) plan->check("--out", utf8FromPath(file), file);
        audio_.read("the audio", file);
    }
}

std::filesystem::path ScriptPlan::named(const std::string& word) const {
    return folder_ / pathFromUtf8(word);
}

}  // namespace marnoth
