#include "shells/desktop/dialogs/DesktopDialogs.h"

#include <array>
#include <cstdlib>
#include <utility>

#include "editor/texts/PageTexts.h"
#include "shells/desktop/dialogs/DialogPrograms.h"
#include "shells/desktop/projects/FileMenu.h"

namespace marnoth {

namespace {

/// Projects are saved by one, and opened with MIDI files by the other.
constexpr std::array kProjectFilters{kProjectFilter, kFilesFilter};

std::string programPath() {
    const char* const path = std::getenv("PATH");
    return path ? path : "";
}

}  // namespace

DesktopDialogs::DesktopDialogs(EventLoop& loop, Font& font, FileListener& listener, std::string demo)
    : demo_(std::move(demo)),
      portal_(loop),
      program_(loop, findDialogProgram(programPath())),
      page_(font, &listener, [this] { return morePlaces(); }) {}

void DesktopDialogs::beginWhereKept(const DesktopSettings& settings) {
    chain_.folders[kWaveFilter] = settings.loopFolder;
    for (const char* const filter : kProjectFilters) chain_.folders[filter] = settings.projectFolder;
}

void DesktopDialogs::keepFolders(DesktopSettings& settings) {
    const auto keep = [](const std::string& folder, std::string& kept) {
        if (!folder.empty()) kept = folder;
    };
    keep(chain_.folders[kWaveFilter], settings.loopFolder);
    // What isn't the kept one was chosen since, and holds for the other question too.
    const std::string before = settings.projectFolder;
    for (const char* const filter : kProjectFilters)
        if (chain_.folders[filter] != before) keep(chain_.folders[filter], settings.projectFolder);
    for (const char* const filter : kProjectFilters) chain_.folders[filter] = settings.projectFolder;
    settings = usable(std::move(settings));
}

std::vector<FilePlace> DesktopDialogs::morePlaces() const {
    std::vector<FilePlace> places = chain_.places();
    if (!demo_.empty()) places.insert(places.begin(), {"Demo", demo_});
    return places;
}

}  // namespace marnoth
