#include "shells/desktop/projects/ProjectCommands.h"

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

bool isSame(const std::string& file, const std::string& other) {
    std::error_code error;
    return std::filesystem::equivalent(pathFromUtf8(file), pathFromUtf8(other), error);
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
    page_.tellOfProjects([this](const std::string& path, bool saved) {
        holds(path, saved ? ProjectChange::saved : ProjectChange::loaded);
    });
}

void ProjectCommands::holds(const std::string& path, ProjectChange change) {
    const bool wasSaved = change == ProjectChange::saved;
    const bool isCopy = !wasSaved && isSame(path, copy_.first);
    if (isCopy)
        project_.holdsCopy(copy_.second);
    else if (savedName(path) != path && !wasSaved)
        // Saving it would make another file.
        project_.holdsCopy(nameOf(path));
    else
        project_.holds(wasSaved ? savedName(path) : path);
    listener_(change, isCopy ? copy_.first : path);
}

void ProjectCommands::begin() {
    leave([this] {
        page_.emptyProject();
        project_.holds({});
        listener_(ProjectChange::begun, {});
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
    holds(path, ProjectChange::saved);
    notices_.tell("Saved " + nameOf(path) + ".");
    return true;
} catch (const FileFailure& failure) {
    notices_.warn(failure.what() + std::string("."));
    return false;
}

}  // namespace marnoth
