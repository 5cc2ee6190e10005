#include "shells/desktop/ProjectCommands.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "editor/texts/PageTexts.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

bool exists(const std::string& file) {
    std::error_code ignored;
    return std::filesystem::exists(pathFromUtf8(file), ignored);
}

std::string nameOf(const std::string& file) {
    return utf8FromPath(pathFromUtf8(file).filename());
}

}  // namespace

ProjectCommands::ProjectCommands(IGrooveSampler& sampler, PageWindow& window, CGrooveSamplerPropPage& page,
                                 Notices& notices)
    : sampler_(sampler), window_(window), page_(page), notices_(notices) {
    page_.checkLoads(adviceBeforeLoad);
    page_.guardLoads([this](const std::function<void(bool)>& then) { askAboutChanges(then); });
    page_.adviseOnLoads([this](const std::string& file) { return adviceOnLoad(sampler_, file); });
    page_.tellOfProjects([this](const std::string& path) { holds(path); });
}

void ProjectCommands::holds(const std::string& path) {
    // What a save couldn't have written there is opened as a copy: saving it would make another file.
    if (savedName(path) == path)
        project_.holds(path);
    else
        project_.holdsCopy(nameOf(path));
    settled_();
}

void ProjectCommands::begin(const std::function<void()>& then) {
    leave([this, then] {
        page_.emptyProject();
        project_.holds({});
        settled_();
        then();
    });
}

void ProjectCommands::leave(const std::function<void()>& then) {
    askAboutChanges([then](bool mayGo) {
        if (mayGo) then();
    });
}

void ProjectCommands::askAboutChanges(const std::function<void(bool)>& then) {
    if (!project_.hasChanged()) return then(true);
    window_.askMessage("Save the changes to " + project_.name() + "?", MessageKind::yesNoCancel,
                       [this, then](PageAnswer answer) {
                           if (answer == PageAnswer::yes) return saveThen(then);
                           then(answer == PageAnswer::no);
                       });
}

void ProjectCommands::save() {
    saveThen([](bool) {});
}

void ProjectCommands::saveAs() {
    askForName([](bool) {});
}

void ProjectCommands::saveThen(const std::function<void(bool)>& then) {
    if (project_.path().empty()) return askForName(then);
    then(saveTo(project_.path()));
}

void ProjectCommands::askForName(const std::function<void(bool)>& then) {
    window_.askFile(kProjectFilter, FileKind::save, [this, then](const std::optional<std::string>& chosen) {
        if (!chosen) return then(false);
        const std::string path = savedName(*chosen);
        // The dialog has asked about the name that was chosen, and knows of no other.
        if (path == *chosen || !exists(path)) return then(saveTo(path));
        window_.askMessage(
            nameOf(path) + " is there already. Write over it?", MessageKind::yesNo,
            [this, then, path](PageAnswer answer) { then(answer == PageAnswer::yes && saveTo(path)); });
    });
}

bool ProjectCommands::saveTo(const std::string& path) try {
    saveProjectFile(sampler_, path);
    holds(path);
    notices_.tell("Saved " + nameOf(path) + ".");
    return true;
} catch (const FileFailure& failure) {
    window_.askMessage(failure.what() + std::string("."), MessageKind::note, [](PageAnswer) {});
    return false;
}

}  // namespace marnoth
