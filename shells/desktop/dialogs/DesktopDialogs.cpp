#include "shells/desktop/dialogs/DesktopDialogs.h"

#include <cstdlib>
#include <utility>

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
    std::vector<FilePlace> places = chain_.places();
    if (!demo_.empty()) places.insert(places.begin(), {"Demo", demo_});
    return places;
}

}  // namespace marnoth
