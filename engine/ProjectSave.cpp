#include "engine/GrooveSampler.h"

namespace marnoth {

HRESULT CGrooveSampler::SaveProject(std::uint32_t, const char*) {
    return E_NOTIMPL;
}

HRESULT CGrooveSampler::SaveState(IStream*) {
    return E_NOTIMPL;
}

}  // namespace marnoth
