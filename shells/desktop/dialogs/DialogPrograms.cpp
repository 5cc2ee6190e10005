#include "shells/desktop/dialogs/DialogPrograms.h"

#include <unistd.h>

#include <sstream>

#include "shellkit/page/FileFilter.h"

namespace marnoth {

namespace {

std::string patternsOf(const FileFilter& filter) {
    std::string patterns;
    for (const std::string& pattern : filter.patterns) patterns += (patterns.empty() ? "" : " ") + pattern;
    return patterns;
}

std::vector<std::string> zenity(const FileQuestion& question, unsigned long window) {
    const FileFilter filter(question.filter);
    const bool saves = question.kind == FileKind::save;
    std::vector<std::string> words{"zenity",
                                   "--file-selection",
                                   "--title=" + filter.title(saves),
                                   "--modal",
                                   "--attach=" + std::to_string(window),
                                   "--file-filter=" + filter.name + " | " + patternsOf(filter),
                                   "--file-filter=* | *"};
    // With the slash it is a folder, not a name in the one above.
    if (!question.folder.empty()) words.push_back("--filename=" + question.folder + "/");
    if (saves) words.insert(words.end(), {"--save", "--confirm-overwrite"});
    return words;
}

std::vector<std::string> kdialog(const FileQuestion& question, unsigned long window) {
    const FileFilter filter(question.filter);
    const bool saves = question.kind == FileKind::save;
    return {"kdialog",
            "--title",
            filter.title(saves),
            "--attach",
            std::to_string(window),
            saves ? "--getsavefilename" : "--getopenfilename",
            question.folder.empty() ? "." : question.folder + "/",
            filter.name + " (" + patternsOf(filter) + ")"};
}

}  // namespace

std::vector<std::string> dialogCommand(std::string_view program, const FileQuestion& question,
                                       unsigned long window) {
    if (program.ends_with("zenity")) return zenity(question, window);
    if (program.ends_with("kdialog")) return kdialog(question, window);
    return {};
}

std::string findDialogProgram(std::string_view path) {
    for (const char* const program : {"zenity", "kdialog"}) {
        std::istringstream folders{std::string(path)};
        for (std::string folder; std::getline(folders, folder, ':');) {
            std::string file = folder + "/" + program;
            if (access(file.c_str(), X_OK) == 0) return file;
        }
    }
    return {};
}

}  // namespace marnoth
