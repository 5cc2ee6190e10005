#include <cstring>
#include <string>

#include "engine/control/Edit.h"
#include "engine/control/GrainListBlock.h"
#include "platform/text/Text.h"

namespace marnoth {
namespace {

constexpr std::size_t kMaxNameBytes = 259;

}  // namespace

HRESULT CGrooveSampler::GetBinFileCount(std::int32_t* count) {
    if (!count) return E_POINTER;
    CAutoLock lock(*this);
    *count = bank_.present().bin.size();
    return S_OK;
}

HRESULT CGrooveSampler::GetBinFileName(std::int32_t bin, std::uint32_t wantPath, char* text) {
    if (!text) return S_OK;
    std::shared_ptr<const BinFile::Names> names;
    {
        CAutoLock lock(*this);
        if (!bank_.present().bin.has(bin)) return S_OK;
        names = bank_.present().bin[bin].names;
    }
    const std::string narrow = systemFromWide(wantPath ? names->path : names->name, kMaxNameBytes);
    std::memcpy(text, narrow.c_str(), narrow.size() + 1);
    return S_OK;
}

HRESULT CGrooveSampler::GetPadGrainList(std::int32_t pad, GrainListEntry** list, std::int32_t* count) {
    if (!list || !count) return E_POINTER;
    *list = nullptr;
    *count = 0;
    GrainList grains;
    {
        CAutoLock lock(*this);
        if (!isPad(pad)) return S_FALSE;
        grains = padOf(bank_.present(), pad).grains();
    }
    return listGrains(grains, TailFlags::told, list, count);
}

HRESULT CGrooveSampler::GetBinGrainList(std::int32_t bin, GrainListEntry** list, std::int32_t* count) {
    if (!list || !count) return E_POINTER;
    *list = nullptr;
    *count = 0;
    GrainList grains;
    {
        CAutoLock lock(*this);
        if (!bank_.present().bin.has(bin)) return S_FALSE;
        grains = bank_.present().bin[bin].track.grains();
    }
    return listGrains(grains, TailFlags::leftOut, list, count);
}

}  // namespace marnoth
