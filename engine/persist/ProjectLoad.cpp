#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "engine/control/Edit.h"
#include "engine/persist/FormerProject.h"
#include "engine/persist/ProjectTracks.h"
#include "platform/bytes/RiffStream.h"
#include "platform/text/Text.h"
#include "project/ProjectFile.h"
#include "project/ProjectReader.h"

namespace marnoth {
namespace {

constexpr HRESULT kFormatForced = 1;  ///< loaded, but the input had no usable format

/// The one fault that leaves as an exception.
bool namesGrainBelowZero(const LoadFault& fault) {
    return fault.kind == FaultKind::badValue && fault.quantity == FaultQuantity::binGrain;
}

}  // namespace

HRESULT CGrooveSampler::LoadProject(const char* path) {
    if (!path) return E_POINTER;
    return replaceProject([&](LoadFault& fault) { return loadFile(path, fault); });
}

HRESULT CGrooveSampler::LoadState(IStream* stream) {
    if (!stream) return E_POINTER;
    return replaceProject([&](LoadFault& fault) {
        fault = {.kind = FaultKind::cannotRead};
        const HRESULT placed = stream->Seek({}, STREAM_SEEK_CUR, nullptr);
        if (FAILED(placed)) return placed;
        RiffStream riff;
        return riff.open(stream) ? E_FAIL : loadForm(riff, Solo::kept, fault);
    });
}

template <class Load>
HRESULT CGrooveSampler::replaceProject(Load load) {
    const auto empty = [this](void (CGrooveSampler::*remove)(FormerProject&)) {
        FormerProject former;
        const WritersTurn turn(*this);
        const CAutoLock lock(*this);
        renderer_.replace(bank_.change(), [&] { (this->*remove)(former); });
    };
    empty(&CGrooveSampler::removeProject);
    HRESULT result;
    LoadFault fault;
    try {
        result = load(fault);
    } catch (const std::bad_alloc&) {
        fault = {.kind = FaultKind::noMemory};
        result = E_OUTOFMEMORY;
    }
    if (FAILED(result)) empty(&CGrooveSampler::removeProjectAndKeys);
    lastFault_.set({fault, {}});
    if (namesGrainBelowZero(fault)) throw std::invalid_argument("a pad's grain names a grain below 0");
    return result;
}

HRESULT CGrooveSampler::loadFile(const char* path, LoadFault& fault) {
    RiffStream stream;
    fault = openProject(stream, wideFromSystem(path));
    return fault ? codeOf(fault) : loadForm(stream, Solo::recomputed, fault);
}

HRESULT CGrooveSampler::loadForm(RiffStream& stream, Solo solo, LoadFault& fault) {
    Project project;
    bool forced;
    EngineRates rates;
    {
        const CAutoLock lock(*this);
        forced = CheckFormat() != 0;
        rates = {inputFormat, context().GetSampleRate()};
        project.auditionEnabled = auditionEnabled_;
    }
    fault = readProject(stream, project);
    stream.close();
    {
        const CAutoLock lock(*this);
        auditionEnabled_ = project.auditionEnabled;
    }
    ProjectTracks tracks;
    if (!fault) fault = buildTracks(project, rates, tracks);
    if (fault) return codeOf(fault);
    publish(project, tracks, solo);
    return forced ? kFormatForced : S_OK;
}

void CGrooveSampler::publish(const Project& project, ProjectTracks& tracks, Solo solo) {
    // Whatever others have laid on the emptied project meanwhile goes.
    FormerProject former;
    const WritersTurn turn(*this);
    const CAutoLock lock(*this);
    Model& model = bank_.change();
    renderer_.replace(model, [&] {
        removeProject(former);
        std::swap(model.pads, tracks.pads);
        std::swap(model.bin, tracks.files);
        for (const KeyMapRecord& keys : project.keys) model.keys.AddOrReplace(keys);
        if (solo == Solo::recomputed) model.recomputeAnySolo();
    });
}

}  // namespace marnoth
