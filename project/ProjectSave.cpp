#include "project/ProjectSave.h"

#include <filesystem>
#include <mutex>
#include <new>

#include "platform/bytes/RiffStream.h"
#include "platform/files/Leftover.h"
#include "project/ProjectBackup.h"
#include "project/ProjectForm.h"
#include "project/ProjectWriter.h"

namespace marnoth {
namespace {

/// Also measures: behind this a save can fail for its medium only.
HRESULT makeWritable(Project& project) {
    if (FAILED(fitToForm(project))) return E_FAIL;
    return projectBytes(project) <= kLargestProject ? S_OK : E_FAIL;
}

HRESULT writeAndClose(RiffStream& stream, const Project& project) {
    const HRESULT written = writeProject(stream, project);
    const bool kept = SUCCEEDED(written) && stream.sync();
    return stream.close() == kRiffOk && kept ? S_OK : E_FAIL;
}

bool openNew(RiffStream& stream, const std::filesystem::path& path, FileSystem& files) try {
    stream.open(files.open(path, FileMode::create));
    return stream.isOpen();
} catch (const std::bad_alloc&) {
    return false;
}

}  // namespace

HRESULT saveProject(Project project, const std::filesystem::path& path, FileSystem& files) {
    if (const HRESULT result = makeWritable(project); FAILED(result)) return result;
    // Two saves at a time under one name would write into one file.
    static std::mutex oneAtATime;
    const std::lock_guard alone(oneAtATime);
    // An interruption doesn't cut a save off: it waits until this is done.
    const SignalPause pause;
    ProjectBackup backup(path, files);
    if (!backup.setAside()) return E_FAIL;
    RiffStream stream;
    if (!openNew(stream, backup.target(), files)) {
        backup.putBack();
        return E_FAIL;
    }
    if (!backup.begun()) return E_FAIL;
    const HRESULT result = writeAndClose(stream, project);
    if (SUCCEEDED(result)) backup.drop();
    return result;
}

HRESULT saveProject(Project project, IStream& stream) {
    if (const HRESULT result = stream.Seek({}, STREAM_SEEK_CUR, nullptr); FAILED(result)) return result;
    if (const HRESULT result = makeWritable(project); FAILED(result)) return result;
    RiffStream form;
    if (form.open(&stream) != kRiffOk) return E_FAIL;
    return writeAndClose(form, project);
}

}  // namespace marnoth
