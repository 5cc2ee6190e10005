#include "hostkit/InstrumentOptions.h"

#include "platform/com/RefPtr.h"
#include "seam/IMarnothOptions.h"

namespace marnoth {

namespace {

HRESULT setOption(IUnknown& instrument, HRESULT (IMarnothOptions::*set)(std::uint32_t), bool on) {
    RefPtr<IMarnothOptions> options;
    const HRESULT result = instrument.QueryInterface(IID_IMarnothOptions, options.putVoid());
    return FAILED(result) ? result : (options.get()->*set)(on ? 1 : 0);
}

}  // namespace

HRESULT setSteady(IUnknown& instrument, bool on) {
    return setOption(instrument, &IMarnothOptions::SetSteady, on);
}

HRESULT setSparse(IUnknown& instrument, bool on) {
    return setOption(instrument, &IMarnothOptions::SetSparse, on);
}

}  // namespace marnoth
