/// Loading and saving: what the buttons with a file on them do.

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/PageTexts.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// The engine's texts end there.
constexpr std::size_t kMostBytes = 259;

/// A path as the engine takes it. A longer one than it takes has no name at all: cut, it would be another
/// file's.
struct EngineFile {
    explicit EngineFile(const std::string& path)
        : EngineFile(wideFromUtf8(path), pathFromWide(wideFromUtf8(path)).filename()) {}

    std::string title;
    std::string path;
    bool fits() const { return path.size() <= kMostBytes && title.size() <= kMostBytes; }

private:
    EngineFile(const std::wstring& path, const std::filesystem::path& name)
        : title(systemFromWide(wideFromPath(name))), path(systemFromWide(path)) {}
};

}  // namespace

void CGrooveSamplerPropPage::RunFileCommand(FileMode mode, bool save, std::function<void()> then) {
    const char* const filter = mode == FileMode::project ? kProjectFilter : kWaveFilter;
    // The dialog takes the keyboard: what stands in an edit or a combo counts before what the file brings.
    focus(&m_controls.toggle(kBinPlay));
    const auto done = [this, then = std::move(then)] {
        requestRefresh();
        then();
    };
    askFile(filter, save ? FileKind::save : FileKind::open,
            [this, mode, save, done](const std::optional<std::string>& path) {
                if (!path) return done();
                clearSelections();
                m_currentBinFile = -1;
                if (mode == FileMode::project) return runProjectFile(*path, save, done);
                loadChosenFile(mode, *path, done);
            });
}

CGrooveSamplerPropPage::LoadResult CGrooveSamplerPropPage::loadFile(FileMode mode, const std::string& path) {
    LoadResult result;
    const EngineFile file(path);
    const char* const title = file.title.c_str();
    if (!file.fits())
        result.code = E_INVALIDARG;
    else if (mode == FileMode::pad)
        result.code = call(&IGrooveSampler::LoadFileToPad, m_currentPad, title, file.path.c_str(),
                           &result.bin, &result.status);
    else
        result.code =
            call(&IGrooveSampler::LoadFileToBin, title, file.path.c_str(), &result.bin, &result.status);
    return result;
}

void CGrooveSamplerPropPage::loadChosenFile(FileMode mode, const std::string& path,
                                            const std::function<void()>& then) {
    const bool ontoPad = mode == FileMode::pad;
    if (ontoPad) call(&IGrooveSampler::PushUndoState);
    const LoadResult result = loadFile(mode, path);
    if (result.isInBin()) m_currentBinFile = result.bin;
    const auto done = [this, ontoPad, then] {
        if (ontoPad) SyncLoopToggles(m_currentPad);
        then();
    };
    if (result.isFine()) return done();
    if (ontoPad) call(&IGrooveSampler::Undo);
    reportLoad(result, done);
}

void CGrooveSamplerPropPage::reportLoad(const LoadResult& result, const std::function<void()>& then) {
    const char* const text = result.status == kBinFull              ? kBinIsFull
                             : result.status == kLoadedFormatForced ? kNotPatched
                                                                    : kLoadFailed;
    askMessage(text, MessageKind::note, [then](PageAnswer) { then(); });
}

void CGrooveSamplerPropPage::runProjectFile(const std::string& path, bool save,
                                            const std::function<void()>& then) {
    const EngineFile file(path);
    HRESULT result = E_INVALIDARG;
    try {
        if (file.fits() && save) result = call(&IGrooveSampler::SaveProject, 0, file.path.c_str());
        if (file.fits() && !save) result = call(&IGrooveSampler::LoadProject, file.path.c_str());
    } catch (const std::invalid_argument&) {
        // The project names a grain that can't be.
    }
    if (result == S_OK) return then();
    // A project that loads and has to set the format gives 1: its user is told as well.
    askMessage(save ? kSaveProjectFailed : kLoadProjectFailed, MessageKind::note,
               [then](PageAnswer) { then(); });
}

void CGrooveSamplerPropPage::projectCommand(bool save) {
    m_currentBinFile = -1;
    SelectPad(0);
    RunFileCommand(FileMode::project, save, [this, save] {
        requestRefresh();
        // Opening leaves its own toggle as the press left it, so that it stands down after every second use.
        m_controls.toggle(save ? kSaveProject : kLoadToBin).setDown(false);
    });
}

void CGrooveSamplerPropPage::clearProject() {
    window().setTimer(0);
    askMessage(kAskClearProject, MessageKind::yesNo, [this](PageAnswer answer) {
        if (answer == PageAnswer::yes) {
            m_currentBinFile = -1;
            SelectPad(0);
            clearSelections();
            call(&IGrooveSampler::ClearProject);
            requestRefresh();
        }
        window().setTimer(kTimerPeriod);
    });
}

}  // namespace marnoth
