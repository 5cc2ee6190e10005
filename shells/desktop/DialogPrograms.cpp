#include "shells/desktop/DialogPrograms.h"

#include <unistd.h>

#include <sstream>

namespace marnoth {

namespace {

struct Filter {
    std::string name;      ///< "Audio files (*.wav)"
    std::string patterns;  ///< "*.wav", several with blanks between
};

Filter parsed(std::string_view text) {
    Filter filter;
    const std::size_t bar = text.find('|');
    filter.name = text.substr(0, bar);
    if (bar == text.npos) return filter;
    const std::string_view rest = text.substr(bar + 1);
    filter.patterns = rest.substr(0, rest.find('|'));
    for (char& c : filter.patterns)
        if (c == ';') c = ' ';
    return filter;
}

std::vector<std::string> zenity(const Filter& filter, FileKind kind, unsigned long window) {
    std::vector<std::string> words{"zenity",
                                   "--file-selection",
                                   "--modal",
                                   "--attach=" + std::to_string(window),
                                   "--file-filter=" + filter.name + " | " + filter.patterns,
                                   "--file-filter=* | *"};
    if (kind == FileKind::save) words.insert(words.end(), {"--save", "--confirm-overwrite"});
    return words;
}

std::vector<std::string> kdialog(const Filter& filter, FileKind kind, unsigned long window) {
    return {"kdialog",
            "--attach",
            std::to_string(window),
            kind == FileKind::save ? "--getsavefilename" : "--getopenfilename",
            ".",
            filter.name + " (" + filter.patterns + ")"};
}

}  // namespace

std::vector<std::string> dialogCommand(std::string_view program, std::string_view filter, FileKind kind,
                                       unsigned long window) {
    if (program.ends_with("zenity")) return zenity(parsed(filter), kind, window);
    if (program.ends_with("kdialog")) return kdialog(parsed(filter), kind, window);
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
