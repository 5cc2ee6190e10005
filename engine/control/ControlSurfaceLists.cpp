#include <algorithm>
#include <cstring>
#include <string>

#include "engine/control/ControlSurface.h"
#include "platform/text/Text.h"

namespace marnoth {
namespace {

constexpr std::size_t kMaxNameBytes = 259;

/// The grain's entries of the peak table. Offset and count are rounded each for itself and may reach one
/// entry too far, which the table has; a project may have told anything.
std::int32_t plotLengthOf(const CGrooveEvent& grain) {
    const std::int64_t left = std::int64_t{grain.sample->peakPoints} + 1 - grain.peakOffset;
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(grain.peakCount, std::max<std::int64_t>(left, 0)));
}

void plotGrain(GrainListEntry& entry, const CGrooveEvent& grain) {
    const CWaveMem* const wave = grain.sample.get();
    if (!wave) return;
    entry.channels = wave->format.nChannels;
    if (!wave->peaks) return;
    entry.plotLength = plotLengthOf(grain);
    if (entry.plotLength > 0) {
        entry.plotData = wave->peaks.get() + std::size_t{grain.peakOffset} * 2 * wave->format.nChannels;
    }
}

GrainListEntry describe(const CGrooveEvent& grain, std::uint32_t extra) {
    GrainListEntry entry{};
    entry.startTicks = grain.startTicks;
    entry.endTicks = grain.GetEnd(kTicks16, 0);
    entry.transpose = grain.transpose;
    entry.volume = static_cast<float>(grain.volume);
    entry.extra = extra;
    plotGrain(entry, grain);
    return entry;
}

/// Fills `list` with one entry for each grain, `extraOf` giving its last field. `track` null is a bad index.
template <class Extra>
HRESULT listGrains(const CGrooveTrack* track, GrainListEntry** list, std::int32_t* count, Extra extraOf) {
    *list = nullptr;
    *count = 0;
    if (!track) return S_FALSE;
    const std::int32_t size = track->GetSize();
    if (size == 0) return S_OK;
    *list =
        static_cast<GrainListEntry*>(CoTaskMemAlloc(static_cast<std::size_t>(size) * sizeof(GrainListEntry)));
    if (!*list) return E_OUTOFMEMORY;
    for (std::int32_t i = 0; i < size; ++i) {
        const CGrooveEvent& grain = track->GetAt(i);
        (*list)[i] = describe(grain, extraOf(grain));
    }
    *count = size;
    return S_OK;
}

}  // namespace

HRESULT CGrooveSampler::GetBinFileCount(std::int32_t* count) {
    if (!count) return E_POINTER;
    CAutoLock lock(*this);
    *count = binFiles.GetSize();
    return S_OK;
}

HRESULT CGrooveSampler::GetBinFileName(std::int32_t bin, std::uint32_t wantPath, char* text) {
    CAutoLock lock(*this);
    const CGrooveTrack* const file = binFileAt(bin);
    if (!file || !text) return S_OK;
    const std::string narrow = systemFromWide(wantPath ? file->path : file->name, kMaxNameBytes);
    std::memcpy(text, narrow.c_str(), narrow.size() + 1);
    return S_OK;
}

HRESULT CGrooveSampler::GetPadGrainList(std::int32_t pad, GrainListEntry** list, std::int32_t* count) {
    if (!list || !count) return E_POINTER;
    CAutoLock lock(*this);
    return listGrains(padAt(pad), list, count, [](const CGrooveEvent& grain) { return grain.tailOn; });
}

HRESULT CGrooveSampler::GetBinGrainList(std::int32_t bin, GrainListEntry** list, std::int32_t* count) {
    if (!list || !count) return E_POINTER;
    CAutoLock lock(*this);
    return listGrains(binFileAt(bin), list, count, [](const CGrooveEvent&) { return 0u; });
}

HRESULT CGrooveSampler::GetGrainCount(std::uint32_t kind, std::uint32_t index, std::int32_t* count) {
    if (!count) return E_POINTER;
    CAutoLock lock(*this);
    const CGrooveTrack* const track = trackOf(kind, index);
    if (!track) return E_INVALIDARG;
    *count = track->GetSize();
    return S_OK;
}

}  // namespace marnoth
