#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/drawing/PageWindow.h"
#include "shells/desktop/playing/SongCommands.h"
#include "shells/desktop/projects/DemoFiles.h"
#include "shells/desktop/projects/ProjectCommands.h"
#include "shells/desktop/settings/DesktopSettings.h"
#include "shells/desktop/window/Notices.h"

namespace marnoth {

inline constexpr const char* kFilesFilter = "Projects and MIDI files|*.mrn;*.mid;*.midi||";

/// The menu of projects and MIDI files, and what its entries do. Remembers in the settings which files were
/// used last. Nothing here may be called while a question is open. The window's thread.
class FileMenu {
public:
    /// All outlive it. Without `demo` the menu doesn't offer one.
    FileMenu(PageWindow& window, ProjectCommands& projects, SongCommands& song, DesktopSettings& settings,
             Notices& notices, std::optional<DemoFiles> demo);

    std::vector<MenuItem> items() const;
    void choose(int id);
    /// The keys of its entries. False for a key that is none of them.
    bool useKey(int key, Modifiers held);

    /// By what the file is; what can't be opened is told, and costs nothing of what is open.
    void open(const std::string& file);
    /// Files that are dropped on the window: a MIDI file and a project; what else comes with them is left
    /// out, and that is told. False when there are none among them.
    bool take(std::span<const std::string> files);
    /// Both of its files.
    void openDemo();
    /// For `ProjectCommands::onChange`.
    void projectChanged(ProjectChange change, const std::string& path);
    /// A file that is open now, by whatever way: it comes first among those used last.
    void remember(const std::string& file);

private:
    enum Id {
        kNew = 1,
        kOpen,
        kSave,
        kSaveAs,
        kDemo,
        kCloseSong,
        kSongTempo,
        kSongRepeats,
        kHelp,
        kFirstRecent = 100,
    };

    void askForFile();
    void openSong(const std::string& file);
    void openRecent(std::size_t place);
    void playDemo();
    void leaveDemo();

    PageWindow& window_;
    ProjectCommands& projects_;
    SongCommands& song_;
    DesktopSettings& settings_;
    Notices& notices_;
    const std::optional<DemoFiles> demo_;
    bool songIsDemos_ = false;
    bool repeatsOthers_ = false;  ///< what MIDI files do but for the demo's, which repeats
};

}  // namespace marnoth
