#include "shells/desktop/projects/FileMenu.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "shellkit/files/Failure.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::size_t kLongestFolderShown = 40;  ///< bytes

/// "groove.mrn (/home/me/Music)": the end of a long folder is what tells it from others.
std::string labelOf(const std::string& file) {
    const std::filesystem::path path = pathFromUtf8(file);
    std::string folder = utf8FromPath(path.parent_path());
    if (folder.size() > kLongestFolderShown) {
        const std::size_t cut = folder.find('/', folder.size() - kLongestFolderShown);
        folder = "..." + folder.substr(std::min(cut, folder.size()));
    }
    return utf8FromPath(path.filename()) + "  (" + folder + ")";
}

bool isThere(const std::string& file) {
    std::error_code ignored;
    return std::filesystem::exists(pathFromUtf8(file), ignored);
}

std::string fullPath(const std::string& file) {
    std::error_code error;
    const std::filesystem::path full = std::filesystem::absolute(pathFromUtf8(file), error);
    return error ? file : utf8FromPath(full.lexically_normal());
}

}  // namespace

FileMenu::FileMenu(PageWindow& window, ProjectCommands& projects, SongCommands& song,
                   DesktopSettings& settings, Notices& notices, std::optional<DemoFiles> demo)
    : window_(window),
      projects_(projects),
      song_(song),
      settings_(settings),
      notices_(notices),
      demo_(std::move(demo)) {
    if (demo_) projects_.openAsCopy(demo_->project, "Demo");
}

std::vector<MenuItem> FileMenu::items() const {
    std::vector<MenuItem> items{{kNew, "New  (Ctrl+N)"},
                                {kOpen, "Open project or MIDI file ...  (Ctrl+O)"},
                                {kSave, "Save  (Ctrl+S)"},
                                {kSaveAs, "Save as ...  (Ctrl+Shift+S)"}};
    if (demo_) items.push_back({kDemo, "Open the demo"});
    if (song_.isOpen()) items.push_back({kCloseSong, "Close " + song_.name()});
    items.push_back({kSongTempo, "MIDI files play in their own tempo", song_.followsTempo()});
    items.push_back({kSongRepeats, "MIDI files repeat", song_.repeats()});
    items.push_back({kHelp, "Keys  (F1)"});
    for (int id = kFirstRecent; const std::string& file : settings_.recent)
        items.push_back({id++, labelOf(file)});
    return items;
}

void FileMenu::choose(int id) {
    switch (id) {
        case kNew:
            return projects_.begin();
        case kOpen:
            return askForFile();
        case kSave:
            return projects_.save();
        case kSaveAs:
            return projects_.saveAs();
        case kDemo:
            return openDemo();
        case kCloseSong:
            return song_.close();
        case kSongTempo:
            settings_.songTempo = !song_.followsTempo();
            return song_.followTempo(settings_.songTempo);
        case kSongRepeats:
            repeatsOthers_ = settings_.songRepeats = !song_.repeats();
            return song_.repeat(settings_.songRepeats);
        case kHelp:
            return window_.showHelp();
        default:
            return openRecent(static_cast<std::size_t>(id - kFirstRecent));
    }
}

bool FileMenu::useKey(int key, Modifiers held) {
    if (!held.control) return false;
    switch (key) {
        case 'N':
            choose(kNew);
            return true;
        case 'O':
            choose(kOpen);
            return true;
        case 'S':
            choose(held.shift ? kSaveAs : kSave);
            return true;
        default:
            return false;
    }
}

void FileMenu::askForFile() {
    window_.askFile(kFilesFilter, FileKind::open, [this](const std::optional<std::string>& file) {
        if (file) open(*file);
    });
}

void FileMenu::open(const std::string& file) {
    if (isSong(file))
        openSong(file);
    else
        projects_.open(file);
}

bool FileMenu::take(std::span<const std::string> files) {
    const auto song = std::ranges::find_if(files, isSong);
    const auto project =
        std::ranges::find_if(files, [](const std::string& file) { return !isSong(file) && isProject(file); });
    const std::size_t taken = (song != files.end()) + (project != files.end());
    if (taken == 0) return false;
    if (taken < files.size())
        notices_.tell("At once only a project and a MIDI file are opened; drop loops by themselves.");
    if (song != files.end()) openSong(*song);
    // This may ask about the one that is open, and comes last.
    if (project != files.end()) projects_.open(*project);
    return true;
}

void FileMenu::openRecent(std::size_t place) {
    if (place >= settings_.recent.size()) return;
    const std::string file = settings_.recent[place];
    if (isThere(file)) return open(file);
    std::erase(settings_.recent, file);
    notices_.warn(file + " isn't there any more.");
}

void FileMenu::openDemo() {
    // Its MIDI file comes with it.
    if (demo_) projects_.open(demo_->project);
}

void FileMenu::openSong(const std::string& file) try {
    song_.open(file);
    leaveDemo();
    remember(file);
} catch (const FileFailure& failure) {
    notices_.warn(failure.what() + std::string("."));
}

void FileMenu::leaveDemo() {
    if (std::exchange(songIsDemos_, false)) song_.repeat(repeatsOthers_);
}

void FileMenu::projectChanged(ProjectChange change, const std::string& path) {
    const bool isDemo = demo_ && path == demo_->project && change == ProjectChange::loaded;
    // The music of the demo would play on with whatever comes next.
    if (change == ProjectChange::begun || (change == ProjectChange::loaded && songIsDemos_)) song_.close();
    if (change != ProjectChange::saved) leaveDemo();
    if (isDemo)
        playDemo();
    else if (!path.empty())
        remember(path);
}

void FileMenu::playDemo() try {
    song_.open(demo_->song);
    songIsDemos_ = true;
    repeatsOthers_ = song_.repeats();
    song_.repeat(true);
} catch (const FileFailure& failure) {
    notices_.warn(failure.what() + std::string("."));
}

void FileMenu::remember(const std::string& file) {
    const std::string full = fullPath(file);
    std::erase(settings_.recent, full);
    settings_.recent.insert(settings_.recent.begin(), full);
    settings_ = usable(settings_);
}

}  // namespace marnoth
