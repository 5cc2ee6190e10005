#include "engine/ProjectSave.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <mutex>
#include <string>

#include "engine/GrooveSampler.h"
#include "engine/ProjectBackup.h"
#include "engine/ProjectForm.h"
#include "engine/ProjectWriter.h"
#include "platform/RiffStream.h"
#include "platform/Text.h"

namespace marnoth {
namespace {

constexpr std::string_view kExtension = ".mrn";

bool hasExtension(std::string_view path) {
    if (path.size() < kExtension.size()) return false;
    const std::string_view end = path.substr(path.size() - kExtension.size());
    return std::equal(end.begin(), end.end(), kExtension.begin(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

std::filesystem::path projectPath(std::string path) {
    if (!hasExtension(path)) path += kExtension;
    return pathFromWide(wideFromSystem(path));
}

/// Also measures: behind this a save can fail for its medium only.
HRESULT makeWritable(Project& project) {
    if (FAILED(fitToForm(project))) return E_FAIL;
    return projectBytes(project) <= kLargestProject ? S_OK : E_FAIL;
}

HRESULT writeAndClose(RiffStream& stream, const Project& project) {
    const HRESULT written = writeProject(stream, project);
    return stream.close() == kRiffOk ? written : E_FAIL;
}

}  // namespace

HRESULT saveProject(Project project, const std::filesystem::path& path) {
    if (const HRESULT result = makeWritable(project); FAILED(result)) return result;
    // Two saves at a time under one name would write into one file.
    static std::mutex oneAtATime;
    const std::lock_guard alone(oneAtATime);
    ProjectBackup backup(path);
    if (!backup.setAside()) return E_FAIL;
    RiffStream stream;
    if (stream.open(backup.target(), FileMode::create) != kRiffOk) {
        backup.putBack();
        return E_FAIL;
    }
    backup.passPermissions();
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

// The state is a matter of microseconds under the lock. The bytes go out from it with the lock free: no block
// waits for the disk.

HRESULT CGrooveSampler::SaveProject(std::uint32_t, const char* path) try {
    return path ? saveProject(takeProject(), projectPath(path)) : E_POINTER;
} catch (const std::exception&) {
    return E_FAIL;
}

HRESULT CGrooveSampler::SaveState(IStream* stream) try {
    return stream ? saveProject(takeProject(), *stream) : E_POINTER;
} catch (const std::exception&) {
    return E_FAIL;
}

}  // namespace marnoth
