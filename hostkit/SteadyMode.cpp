#include "hostkit/SteadyMode.h"

#include "platform/com/RefPtr.h"
#include "seam/IMarnothOptions.h"

namespace marnoth {

HRESULT setSteady(IUnknown& instrument, bool on) {
    RefPtr<IMarnothOptions> options;
    const HRESULT result = instrument.QueryInterface(IID_IMarnothOptions, options.putVoid());
    return FAILED(result) ? result : options->SetSteady(on ? 1 : 0);
}

}  // namespace marnoth
