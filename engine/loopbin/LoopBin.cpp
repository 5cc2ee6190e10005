#include <new>
#include <string>
#include <utility>

#include "engine/control/ControlSurface.h"
#include "platform/text/Text.h"
#include "sample/AcidWave.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr HRESULT kSeeStatus = 1;  ///< result of a load whose status says more

HRESULT loadedResult(bool forced, std::uint32_t& status) {
    status = forced ? kLoadedFormatForced : kLoaded;
    return forced ? kSeeStatus : S_OK;
}

bool breaksLimit(const LoadFault& fault) {
    return fault.kind == FaultKind::noGrains ||
           (fault.kind == FaultKind::badValue &&
            (fault.quantity == FaultQuantity::beats || fault.quantity == FaultQuantity::loopSeconds ||
             fault.quantity == FaultQuantity::shotSeconds || fault.quantity == FaultQuantity::rate));
}

/// Reads a file into `track`, which nobody else may see yet.
HRESULT readFile(CGrooveTrack& track, const char* name, const char* path, const WAVEFORMATEX& format,
                 LoadFault& fault) {
    CAcidWave wave;
    if (wave.Open(path) != S_OK) {
        fault = wave.fault;
        return E_INVALIDARG;
    }
    fault = track.LoadFromWave(wave, wideFromSystem(name), wideFromSystem(path), 0, format);
    track.looping = 1;
    return breaksLimit(fault) ? E_UNEXPECTED : codeOf(fault);
}

void removeGrainsOf(CGrooveTrack& pad, std::int32_t bin) {
    for (std::int32_t i = pad.GetSize() - 1; i >= 0; --i) {
        if (pad.GetAt(i).binFile == bin) pad.RemoveGrain(i);
    }
}

void closeGapBehind(const CGrooveTrack& track, std::int32_t bin) {
    for (std::int32_t i = 0; i < track.GetSize(); ++i) {
        if (CGrooveEvent& grain = track.GetAt(i); grain.binFile >= bin) --grain.binFile;
    }
}

}  // namespace

HRESULT CGrooveSampler::LoadFileToBin(const char* title, const char* path, std::int32_t* bin,
                                      std::uint32_t* status) {
    if (!title || !path || !bin || !status) return E_POINTER;
    LoadFault fault;
    HRESULT result;
    try {
        result = LoadFile(title, path, *bin, *status, fault);
    } catch (const std::bad_alloc&) {
        fault = {.kind = FaultKind::noMemory};
        result = E_OUTOFMEMORY;
    }
    lastFault.set(fault);
    return result;
}

HRESULT CGrooveSampler::LoadFileToPad(std::int32_t pad, const char* title, const char* path,
                                      std::int32_t* bin, std::uint32_t* status) {
    if (!title || !path || !bin || !status) return E_POINTER;
    if (pad < 0 || pad >= kPads) return E_INVALIDARG;
    const HRESULT loaded = LoadFileToBin(title, path, bin, status);
    if (FAILED(loaded) || *status == kBinFull) return loaded;
    CAutoLock lock(*this);
    const CGrooveTrack* const file = binFileAt(*bin);
    if (!file) return E_FAIL;
    const HRESULT laid = layOnPad(*padAt(pad), *file);
    if (SUCCEEDED(laid)) return loaded;
    lastFault.set({.kind = FaultKind::noMemory});
    return laid;
}

HRESULT CGrooveSampler::LoadPadFromBin(std::int32_t pad, std::int32_t bin) {
    CAutoLock lock(*this);
    CGrooveTrack* const track = padAt(pad);
    const CGrooveTrack* const file = binFileAt(bin);
    return track && file ? layOnPad(*track, *file) : E_INVALIDARG;
}

HRESULT CGrooveSampler::LoadFile(const char* name, const char* path, std::int32_t& index,
                                 std::uint32_t& status, LoadFault& fault) {
    bool forced;
    WAVEFORMATEX format;
    {
        CAutoLock lock(*this);
        forced = CheckFormat() != 0;
        format = inputFormat;
        status = kLoaded;
        if (const std::int32_t found = findBinFile(wideFromSystem(path)); found >= 0) {
            index = found;
            return loadedResult(forced, status);
        }
    }
    // Long work on objects that nobody else can see: blocks go on meanwhile.
    auto track = std::make_unique<CGrooveTrack>(&context());
    if (const HRESULT result = readFile(*track, name, path, format, fault); FAILED(result)) return result;

    CAutoLock lock(*this);
    if (binFiles.GetSize() >= binFiles.GetCapacity()) {
        status = kBinFull;
        return kSeeStatus;
    }
    index = binFiles.GetSize();
    track->SetBinIndex(index);
    binFiles.Add(std::move(track));
    return loadedResult(forced, status);
}

std::int32_t CGrooveSampler::findBinFile(const std::wstring& path) const {
    for (std::int32_t bin = 0; bin < binFiles.GetSize(); ++bin) {
        if (binFiles[bin]->path == path) return bin;
    }
    return -1;
}

HRESULT CGrooveSampler::layOnPad(CGrooveTrack& pad, const CGrooveTrack& file) {
    pad.ClearGrains();
    if (FAILED(pad.CopyGrainsFrom(file))) return E_FAIL;
    pad.TakeLengthsFrom(file);
    // A file loops in the bin whatever it is; on a pad only one that follows the tempo does.
    pad.looping = pad.synced = file.synced;
    pad.followKey = file.followKey;
    pad.SetRootNote(file.rootNote);
    return S_OK;
}

HRESULT CGrooveSampler::RemoveBinFile(std::int32_t bin) {
    CAutoLock lock(*this);
    ResetVoices();
    if (!binFileAt(bin)) return S_FALSE;
    for (const auto& pad : pads) removeGrainsOf(*pad, bin);
    binFiles[bin].reset();
    binFiles.RemoveAt(bin);
    for (const auto& pad : pads) closeGapBehind(*pad, bin);
    for (const auto& file : binFiles) closeGapBehind(*file, bin);
    return S_OK;
}

}  // namespace marnoth
