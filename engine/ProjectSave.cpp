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

HRESULT makeWritable(Project& project) {
    if (const HRESULT result = fitToForm(project); FAILED(result)) return result;
    return projectBytes(project) <= kLargestProject ? S_OK : E_FAIL;
}

HRESULT writeAndClose(RiffStream& stream, const Project& project) {
    const HRESULT written = writeProject(stream, project);
    return stream.close() == kRiffOk ? written : E_FAIL;
}

/// In place, with what stood there kept until the new file is whole.
HRESULT writeFile(const std::filesystem::path& path, const Project& project) {
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

}  // namespace

HRESULT CGrooveSampler::SaveProject(std::uint32_t, const char* path) try {
    if (!path) return E_POINTER;
    // The state is a matter of microseconds; the bytes go out from it with the lock free, and no block waits
    // for the disk.
    Project project = takeProject();
    if (FAILED(makeWritable(project))) return E_FAIL;
    return writeFile(projectPath(path), project);
} catch (const std::exception&) {
    return E_FAIL;
}

HRESULT CGrooveSampler::SaveState(IStream* stream) try {
    if (!stream) return E_POINTER;
    if (const HRESULT result = stream->Seek({}, STREAM_SEEK_CUR, nullptr); FAILED(result)) return result;
    Project project = takeProject();
    if (FAILED(makeWritable(project))) return E_FAIL;
    RiffStream form;
    if (form.open(stream) != kRiffOk) return E_FAIL;
    return writeAndClose(form, project);
} catch (const std::exception&) {
    return E_FAIL;
}

}  // namespace marnoth
