#include "hostkit/LiveRate.h"

#include <new>

#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"

namespace marnoth {

namespace {

HRESULT moveTo(LiveHost& host, const LiveSetup& setup, IStream& project) {
    HRESULT hr = host.connect(setup);
    if (SUCCEEDED(hr)) hr = project.Seek({}, STREAM_SEEK_SET, nullptr);
    return SUCCEEDED(hr) ? host.load(project) : hr;
}

}  // namespace

HRESULT connectWithProject(LiveHost& host, const LiveSetup& setup, std::uint32_t former) try {
    if (former == 0 || former == setup.rate) return host.connect(setup);
    const RefPtr<MemoryStream> project = makeObject<MemoryStream>();
    HRESULT hr = host.save(*project);
    if (FAILED(hr)) return hr;
    hr = moveTo(host, setup, *project);
    // Nothing may be lost: at its former rate there was room for it a moment ago.
    LiveSetup before = setup;
    before.rate = former;
    if (FAILED(hr)) moveTo(host, before, *project);
    return hr;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

}  // namespace marnoth
