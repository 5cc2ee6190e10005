#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>

#include "editor/PaneParent.h"
#include "editor/files/LoadAdvice.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {

class PageControls;
class PageFrame;

/// Where a file goes to or comes from; the numbers are the modes of a file command.
enum class FileTarget { loopBin = 0, pad = 1, project = 3 };

/// What the load of an audio file gave.
struct LoadResult {
    HRESULT code = S_OK;
    std::int32_t bin = -1;
    std::uint32_t status = kLoaded;  ///< a `LoadStatus`, or anything else for an error

    bool isFine() const { return SUCCEEDED(code) && status == kLoaded; }
    bool isInBin() const { return isFine() || status == kLoadedFormatForced; }
};

/// Loading and saving: what the buttons with a file on them do, and what becomes of files that are dropped.
/// The page's thread.
class FileCommands {
public:
    /// `keyboard` puts the keyboard where it belongs while no text is typed; `poll` lets the page's timer run
    /// or stand. `page` and `controls` outlive it.
    FileCommands(PaneParent& page, PageControls& controls, std::function<void()> keyboard,
                 std::function<void(bool)> poll);

    /// From now on the user is told of a project that isn't loaded what `advisor` says, in place of the
    /// page's own message, and asked what to load instead.
    void adviseOnLoads(LoadAdvisor advisor) { advisor_ = std::move(advisor); }
    /// From now on a project is loaded only when `check` has nothing to say of it.
    void checkLoads(LoadCheck check) { check_ = std::move(check); }
    /// From now on a project is loaded only when `guard` lets the one that there is go.
    void guardLoads(LoadGuard guard) { guard_ = std::move(guard); }
    /// From now on `listener` hears of each project that is loaded or saved.
    void tellOfProjects(ProjectListener listener) { listener_ = std::move(listener); }
    /// As the button does once its user has chosen.
    void openProject(const std::string& path);
    /// As the button does once its user has agreed.
    void emptyProject();

    /// Asks for a file and loads or saves it. `then` follows, also when the user cancels.
    void RunFileCommand(FileTarget target, bool save, std::function<void()> then);
    /// False when it is the command of another pane.
    bool command(int id);

    // Files from outside. What the last load gave, which is the first one that failed.
    LoadResult loadIntoBin(std::span<const std::string> paths);
    LoadResult loadOntoPad(int pad, std::span<const std::string> paths);
    /// Tells the user what went wrong, and goes on with `then`.
    void report(const LoadResult& result, const std::function<void()>& then);

private:
    /// Into the Loop Bin, or onto the current pad as well.
    LoadResult load(FileTarget target, const std::string& path);
    void loadChosen(FileTarget target, const std::string& path, const std::function<void()>& then);
    void runProject(const std::string& path, bool save, const std::function<void()>& then);
    void carryOutProject(const std::string& path, bool save, const std::function<void()>& then);
    void advise(const LoadAdvice& advice, const std::function<void()>& then);
    void projectCommand(bool save);
    void openForPad(int pad);
    void openForBin();
    void clearProject();

    PaneParent& page_;
    PageControls& controls_;
    std::function<void()> keyboard_;
    std::function<void(bool)> poll_;
    LoadAdvisor advisor_;
    LoadCheck check_;
    LoadGuard guard_;
    ProjectListener listener_;
};

}  // namespace marnoth
