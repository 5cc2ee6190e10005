#include "editor/files/FileCommands.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/controls/PageControls.h"
#include "editor/texts/PageTexts.h"
#include "platform/files/SystemName.h"
#include "platform/text/Text.h"
#include "seam/Limits.h"

namespace marnoth {

namespace {

/// The engine's texts end there.
constexpr std::size_t kMostBytes = 259;

std::wstring lastPart(const std::wstring& path) {
    return wideFromPath(pathFromWide(path).filename());
}

/// A file as the engine takes it. One that the code page can't name, or only by more bytes than the engine
/// takes, has no name at all: cut or with other characters, it would be another file's.
struct EngineFile {
    EngineFile(const std::string& file, NamedFile kind) : path(systemName(wideFromUtf8(file), kind)) {
        if (!path) return;
        const std::wstring own = lastPart(wideFromUtf8(file));
        title = systemFromWide(isInSystem(own) ? own : lastPart(wideFromSystem(*path)));
    }

    std::string title;
    std::optional<std::string> path;
    bool fits() const { return path && path->size() <= kMostBytes && title.size() <= kMostBytes; }
};

}  // namespace

FileCommands::FileCommands(PaneParent& page, PageControls& controls, std::function<void()> keyboard,
                           std::function<void(bool)> poll)
    : page_(page), controls_(controls), keyboard_(std::move(keyboard)), poll_(std::move(poll)) {}

bool FileCommands::command(int id) {
    switch (id) {
        case kClearProject:
            clearProject();
            return true;
        case kOpenProject:
        case kSaveProject:
            projectCommand(id == kSaveProject);
            return true;
        case kLoadToBin:
            openForBin();
            return true;
        default:
            if (id < kFirstOpen || id >= kFirstOpen + kPads) return false;
            openForPad(id - kFirstOpen);
            return true;
    }
}

void FileCommands::RunFileCommand(FileTarget target, bool save, std::function<void()> then) {
    const char* const filter = target == FileTarget::project ? kProjectFilter : kWaveFilter;
    // The dialog takes the keyboard: what stands in an edit or a combo counts before what the file brings.
    keyboard_();
    const auto done = [this, then = std::move(then)] {
        page_.engine().requestRefresh();
        then();
    };
    page_.questions().askFile(filter, save ? FileKind::save : FileKind::open,
                              [this, target, save, done](const std::optional<std::string>& path) {
                                  if (!path) return done();
                                  page_.view().clearSelections();
                                  page_.view().currentBinFile = -1;
                                  if (target == FileTarget::project) return runProject(*path, save, done);
                                  loadChosen(target, *path, done);
                              });
}

LoadResult FileCommands::load(FileTarget target, const std::string& path) {
    LoadResult result;
    const EngineFile file(path, NamedFile::existing);
    const char* const title = file.title.c_str();
    if (!file.fits())
        result.code = E_INVALIDARG;
    else if (target == FileTarget::pad)
        result.code = page_.engine().call(&IGrooveSampler::LoadFileToPad, page_.view().currentPad, title,
                                          file.path->c_str(), &result.bin, &result.status);
    else
        result.code = page_.engine().call(&IGrooveSampler::LoadFileToBin, title, file.path->c_str(),
                                          &result.bin, &result.status);
    if (result.isInBin()) page_.view().currentBinFile = result.bin;
    return result;
}

void FileCommands::loadChosen(FileTarget target, const std::string& path, const std::function<void()>& then) {
    const bool ontoPad = target == FileTarget::pad;
    if (ontoPad) page_.engine().call(&IGrooveSampler::PushUndoState);
    const LoadResult result = load(target, path);
    const auto done = [this, ontoPad, then] {
        if (ontoPad) page_.SyncLoopToggles(page_.view().currentPad);
        then();
    };
    if (result.isFine()) return done();
    if (ontoPad) page_.engine().call(&IGrooveSampler::Undo);
    report(result, done);
}

void FileCommands::report(const LoadResult& result, const std::function<void()>& then) {
    const char* const text = result.status == kBinFull              ? kBinIsFull
                             : result.status == kLoadedFormatForced ? kNotPatched
                                                                    : kLoadFailed;
    page_.questions().askMessage(text, MessageKind::note, [then](PageAnswer) { then(); });
}

void FileCommands::runProject(const std::string& path, bool save, const std::function<void()>& then) {
    if (save) return carryOutProject(path, save, then);
    if (const std::optional<LoadAdvice> advice = check_ ? check_(path) : std::nullopt)
        return advise(*advice, then);
    if (!guard_) return carryOutProject(path, save, then);
    guard_([this, path, then](bool mayGo) {
        if (mayGo) return carryOutProject(path, false, then);
        then();
    });
}

void FileCommands::carryOutProject(const std::string& path, bool save, const std::function<void()>& then) {
    const EngineFile file(path, save ? NamedFile::fresh : NamedFile::existing);
    const BoundEngine& engine = page_.engine();
    HRESULT result = E_INVALIDARG;
    try {
        if (file.fits() && save) result = engine.call(&IGrooveSampler::SaveProject, 0, file.path->c_str());
        if (file.fits() && !save) result = engine.call(&IGrooveSampler::LoadProject, file.path->c_str());
    } catch (const std::invalid_argument&) {
        // The project names a grain that can't be.
    }
    if (SUCCEEDED(result) && listener_) listener_(path, save);
    if (result == S_OK) return then();
    if (advisor_ && !save && file.fits() && FAILED(result)) return advise(advisor_(path), then);
    // A project that loads and has to set the format gives 1: its user is told as well.
    page_.questions().askMessage(save ? kSaveProjectFailed : kLoadProjectFailed, MessageKind::note,
                                 [then](PageAnswer) { then(); });
}

void FileCommands::advise(const LoadAdvice& advice, const std::function<void()>& then) {
    const bool asks = !advice.instead.empty();
    page_.questions().askMessage(advice.text, asks ? MessageKind::yesNo : MessageKind::note,
                                 [this, other = advice.instead, then](PageAnswer answer) {
                                     if (answer == PageAnswer::yes) return runProject(other, false, then);
                                     then();
                                 });
}

void FileCommands::projectCommand(bool save) {
    page_.view().currentBinFile = -1;
    page_.SelectPad(0);
    RunFileCommand(FileTarget::project, save, [this, save] {
        page_.engine().requestRefresh();
        // Opening leaves its own toggle as the press left it, so that it stands down after every second use.
        controls_.toggle(save ? kSaveProject : kLoadToBin).setDown(false);
    });
}

void FileCommands::openForPad(int pad) {
    page_.SelectPad(pad);
    RunFileCommand(FileTarget::pad, false, [this, pad] {
        controls_.toggle(kFirstOpen + pad).setDown(false);
        page_.engine().requestRefresh();
    });
}

void FileCommands::openForBin() {
    RunFileCommand(FileTarget::loopBin, false, [this] {
        controls_.toggle(kLoadToBin).setDown(false);
        page_.engine().requestRefresh();
    });
}

void FileCommands::clearProject() {
    poll_(false);
    page_.questions().askMessage(kAskClearProject, MessageKind::yesNo, [this](PageAnswer answer) {
        if (answer == PageAnswer::yes) emptyProject();
        poll_(true);
    });
}

void FileCommands::emptyProject() {
    page_.view().currentBinFile = -1;
    page_.SelectPad(0);
    page_.view().clearSelections();
    page_.engine().call(&IGrooveSampler::ClearProject);
    page_.engine().requestRefresh();
}

void FileCommands::openProject(const std::string& path) {
    keyboard_();
    page_.view().currentBinFile = -1;
    page_.SelectPad(0);
    page_.view().clearSelections();
    runProject(path, false, [this] { page_.engine().requestRefresh(); });
}

LoadResult FileCommands::loadIntoBin(std::span<const std::string> paths) {
    page_.view().clearSelections();
    LoadResult result;
    for (const std::string& path : paths) {
        result = load(FileTarget::loopBin, path);
        if (!result.isFine()) break;
    }
    return result;
}

LoadResult FileCommands::loadOntoPad(int pad, std::span<const std::string> paths) {
    page_.view().clearSelections();
    LoadResult result;
    for (const std::string& path : paths) {
        page_.SelectPad(pad);
        page_.engine().call(&IGrooveSampler::PushUndoState);
        result = load(FileTarget::pad, path);
        if (result.isFine()) continue;
        page_.engine().call(&IGrooveSampler::Undo);
        break;
    }
    return result;
}

}  // namespace marnoth
