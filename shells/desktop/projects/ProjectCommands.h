#pragma once

#include <functional>
#include <string>
#include <utility>

#include "editor/GrooveSamplerPropPage.h"
#include "platform/drawing/PageWindow.h"
#include "seam/IGrooveSampler.h"
#include "shells/desktop/projects/OpenProject.h"
#include "shells/desktop/window/Notices.h"

namespace marnoth {

/// How the project that is open came to be what its file holds.
enum class ProjectChange { begun, loaded, saved };

/// What a user does with a whole project: begins, opens and saves one, and is asked before changes are lost.
/// A project is read whole before the instrument gets it, so that one that is damaged costs nobody the one
/// that is open. Nothing here may be called while a question is open. The window's thread.
class ProjectCommands {
public:
    /// All outlive it. From now on it answers for the projects that the page loads and saves by itself.
    ProjectCommands(IGrooveSampler& sampler, PageWindow& window, CGrooveSamplerPropPage& page,
                    Notices& notices);

    OpenProject& project() { return project_; }
    /// Called whenever the project that is open is another, or has been saved. `path` is empty for one that
    /// is new, and what `openAsCopy` was told for the file that it is.
    using Listener = std::function<void(ProjectChange change, const std::string& path)>;
    void onChange(Listener listener) { listener_ = std::move(listener); }
    /// What is in this file is opened as a copy that is called `name`, and never saved there.
    void openAsCopy(std::string path, std::string name) { copy_ = {std::move(path), std::move(name)}; }

    /// The instrument has loaded it.
    void opened(const std::string& path) { holds(path, ProjectChange::loaded); }

    /// An empty one, without a name.
    void begin();
    void open(const std::string& path) { page_.openProject(path); }
    /// Where it came from; where it has no name yet, or under another name, the user is asked for one.
    void save();
    void saveAs();
    /// Calls `then` as soon as nothing would be lost: the user is asked about changes, and may save them.
    void leave(const std::function<void()>& then);

private:
    void askAboutChanges(const std::function<void(bool mayGo)>& then);
    void saveThen(const std::function<void(bool saved)>& then);
    void askForName(const std::function<void(bool saved)>& then);
    bool saveTo(const std::string& path);
    void holds(const std::string& path, ProjectChange change);

    IGrooveSampler& sampler_;
    PageWindow& window_;
    CGrooveSamplerPropPage& page_;
    Notices& notices_;
    OpenProject project_{sampler_};
    std::pair<std::string, std::string> copy_;  ///< path and name
    Listener listener_ = [](ProjectChange, const std::string&) {};
};

}  // namespace marnoth
