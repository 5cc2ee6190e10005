#include <array>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "engine/control/ControlSurface.h"
#include "engine/persist/FormerProject.h"
#include "engine/persist/ProjectTracks.h"
#include "platform/bytes/RiffStream.h"
#include "platform/text/Text.h"
#include "project/ProjectReader.h"

namespace marnoth {
namespace {

constexpr HRESULT kFormatForced = 1;  ///< loaded, but the input had no usable format
constexpr std::size_t kLongestPath = 259;

/// Files without any extension may have a header of 24 bytes in front of the form.
bool skipWrapping(RiffStream& stream) {
    constexpr std::int64_t kWrapping = 24;
    std::array<char, 4> id;
    if (!stream.readExactly(id.data(), id.size())) return false;
    const bool isBare = std::string_view(id.data(), id.size()) == "RIFF";
    return stream.seek(isBare ? 0 : kWrapping) == kRiffOk;
}

}  // namespace

HRESULT CGrooveSampler::LoadProject(const char* path) {
    if (!path) return E_POINTER;
    return replaceProject([&] { return loadFile(wideFromSystem(path).substr(0, kLongestPath)); });
}

HRESULT CGrooveSampler::LoadState(IStream* stream) {
    if (!stream) return E_POINTER;
    return replaceProject([&] {
        const HRESULT placed = stream->Seek({}, STREAM_SEEK_CUR, nullptr);
        if (FAILED(placed)) return placed;
        RiffStream riff;
        return riff.open(stream) ? E_FAIL : loadForm(riff, Solo::kept);
    });
}

template <class Load>
HRESULT CGrooveSampler::replaceProject(Load load) {
    const auto empty = [this] {
        FormerProject former;
        CAutoLock lock(*this);
        removeProjectAndKeys(former);
    };
    {
        FormerProject former;
        CAutoLock lock(*this);
        removeProject(former);
    }
    HRESULT result;
    try {
        result = load();
    } catch (const std::bad_alloc&) {
        result = E_OUTOFMEMORY;
    } catch (const std::invalid_argument&) {
        empty();
        throw;
    }
    if (FAILED(result)) empty();
    return result;
}

HRESULT CGrooveSampler::loadFile(const std::wstring& path) {
    RiffStream stream;
    if (stream.open(pathFromWide(path), FileMode::read)) return E_FAIL;
    const bool mayBeWrapped = path.find(L'.') == std::wstring::npos;
    if (mayBeWrapped && !skipWrapping(stream)) return E_FAIL;
    return loadForm(stream, Solo::recomputed);
}

HRESULT CGrooveSampler::loadForm(RiffStream& stream, Solo solo) {
    Project project;
    bool forced;
    WAVEFORMATEX format;
    {
        CAutoLock lock(*this);
        forced = CheckFormat() != 0;
        format = inputFormat;
        project.auditionEnabled = auditionEnabled;
    }
    const HRESULT read = readProject(stream, project);
    stream.close();
    {
        CAutoLock lock(*this);
        auditionEnabled = project.auditionEnabled;
    }
    if (FAILED(read)) return read;
    ProjectTracks tracks;
    if (const HRESULT built = buildTracks(project, format, &context(), tracks); FAILED(built)) return built;
    publish(project, tracks, solo);
    return forced ? kFormatForced : S_OK;
}

void CGrooveSampler::publish(const Project& project, ProjectTracks& tracks, Solo solo) {
    // Whatever others have laid on the emptied project meanwhile goes.
    FormerProject former;
    CAutoLock lock(*this);
    removeProject(former);
    for (std::size_t pad = 0; pad < pads.size(); ++pad) pads[pad]->SwapPad(*tracks.pads[pad]);
    for (auto& file : tracks.files) binFiles.Add(std::move(file));
    for (const KeyMapRecord& keys : project.keys) {
        keyMap.AddOrReplace({keys.pad, padAt(keys.pad), keys.lowKey, keys.highKey, keys.rootKey,
                             keys.lowVelocity, keys.highVelocity});
    }
    if (solo == Solo::recomputed) recomputeAnySolo();
}

}  // namespace marnoth
