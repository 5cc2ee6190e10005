#include "engine/GrooveSampler.h"

namespace marnoth {

HRESULT CGrooveSampler::LoadProject(const char*) {
    return E_NOTIMPL;
}

HRESULT CGrooveSampler::LoadState(IStream*) {
    return E_NOTIMPL;
}

}  // namespace marnoth
