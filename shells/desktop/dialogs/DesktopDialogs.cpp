#include "shells/desktop/dialogs/DesktopDialogs.h"

#include <cstdlib>
#include <utility>

#include "shellkit/text/InstrumentText.h"
#include "shells/desktop/dialogs/DialogPrograms.h"

namespace marnoth {

namespace {

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

std::vector<FilePlace> DesktopDialogs::morePlaces() const {
    std::vector<FilePlace> places;
    if (!demo_.empty()) places.push_back({"Demo", demo_});
    for (const auto& [filter, folder] : chain_.folders)
        if (!folder.empty()) places.push_back({utf8FromPath(pathFromUtf8(folder).filename()), folder});
    return places;
}

}  // namespace marnoth
