#include <new>
#include <string>
#include <utility>
#include <vector>

#include "engine/control/Edit.h"
#include "platform/text/Text.h"
#include "sample/AcidWave.h"

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

/// How files are read: what an instrument is at when a load begins.
struct Reading {
    WAVEFORMATEX format;      ///< the engine's
    std::int32_t sampleRate;  ///< the host's
    bool lenient;
};

/// Reads a file into `file`, which nobody else may see yet.
HRESULT readFile(BinFile& file, const char* name, const char* path, const Reading& reading,
                 LoadOutcome& outcome) {
    CAcidWave wave;
    wave.lenient = reading.lenient;
    if (wave.Open(path) != S_OK) {
        outcome.fault = wave.fault;
        return E_INVALIDARG;
    }
    outcome.fault = file.LoadFromWave(wave, wideFromSystem(name), wideFromSystem(path), 0, reading.format,
                                      reading.sampleRate);
    if (!outcome.fault) outcome.damage = wave.damage;
    file.track.looping = 1;
    return breaksLimit(outcome.fault) ? E_UNEXPECTED : codeOf(outcome.fault);
}

/// Takes out the grains of a file that goes, and closes the gap that its number leaves.
void forgetFile(CGrooveTrack& track, std::int32_t bin, bool removeGrains) {
    if (removeGrains) track.RemoveGrainsOf(bin);
    track.ChangeAll([bin](CGrooveEvent& grain) {
        if (grain.binFile < bin) return false;
        --grain.binFile;
        return true;
    });
}

}  // namespace

HRESULT CGrooveSampler::LoadFileToBin(const char* title, const char* path, std::int32_t* bin,
                                      std::uint32_t* status) {
    if (!title || !path || !bin || !status) return E_POINTER;
    LoadOutcome outcome;
    HRESULT result;
    try {
        result = LoadFile(title, path, *bin, *status, outcome);
    } catch (const std::bad_alloc&) {
        outcome = {{.kind = FaultKind::noMemory}, {}};
        result = E_OUTOFMEMORY;
    }
    lastFault_.set(outcome);
    return result;
}

HRESULT CGrooveSampler::LoadFile(const char* name, const char* path, std::int32_t& index,
                                 std::uint32_t& status, LoadOutcome& outcome) {
    const std::wstring widePath = wideFromSystem(path);
    bool forced;
    Reading reading;
    {
        CAutoLock lock(*this);
        forced = CheckFormat() != 0;
        reading = {inputFormat, context().GetSampleRate(), lenientFiles_ != 0};
        status = kLoaded;
        if (const std::int32_t found = bank_.present().bin.find(widePath); found >= 0) {
            index = found;
            return loadedResult(forced, status);
        }
    }
    // Long work on a file that nobody else can see: blocks go on meanwhile.
    BinFile file;
    if (const HRESULT result = readFile(file, name, path, reading, outcome); FAILED(result)) return result;
    if (const HRESULT result = addToBin(file, index, status); FAILED(result)) {
        outcome.fault = {.kind = FaultKind::noMemory};
        return result;
    }
    return status == kBinFull ? kSeeStatus : loadedResult(forced, status);
}

HRESULT CGrooveSampler::addToBin(const BinFile& file, std::int32_t& index, std::uint32_t& status) {
    struct Draft {
        std::int32_t index;
        BinFile file;
    };
    return edit(
        [&](const Model& now) {
            return Draft{now.bin.size(), file};
        },
        [&](Draft& draft) {
            if (draft.index < kBinFiles) draft.file.track.SetBinIndex(draft.index);
            return S_OK;
        },
        [&](Model& model, Draft& draft) {
            status = model.bin.isFull() ? kBinFull : kLoaded;
            if (model.bin.isFull()) return;
            index = draft.index;
            model.bin.add(std::move(draft.file));
        });
}

HRESULT CGrooveSampler::RemoveBinFile(std::int32_t bin) {
    struct Draft {
        Pads pads;
        LoopBin bin;
        bool removes;
    };
    bool removed = false;
    const HRESULT result = edit(
        [&](const Model& now) {
            return Draft{now.pads, now.bin, now.bin.has(bin)};
        },
        [&](Draft& draft) {
            if (!draft.removes) return S_OK;
            draft.bin.remove(bin);
            for (CGrooveTrack& pad : draft.pads) forgetFile(pad, bin, true);
            for (std::int32_t file = 0; file < draft.bin.size(); ++file)
                forgetFile(draft.bin[file].track, bin, false);
            return S_OK;
        },
        [&](Model& model, Draft& draft) {
            renderer_.replace(model, [&] {
                renderer_.forgetVoices();
                if (!draft.removes) return;
                std::swap(model.pads, draft.pads);
                std::swap(model.bin, draft.bin);
                removed = true;
            });
        });
    return result == S_OK && !removed ? S_FALSE : result;
}

}  // namespace marnoth
