#include "hostkit/HostContext.h"

#include <utility>

namespace marnoth {

namespace {

/// The service as what it is asked for; null when there is none.
template <class Interface, class Service>
IUnknown* as(const RefPtr<Service>& service) {
    return static_cast<Interface*>(service.get());
}

}  // namespace

HostContext::HostContext(Services services) : CUnknown(nullptr), services_(std::move(services)) {}

IUnknown* HostContext::FindInterface(REFIID iid) {
    if (iid == IID_IKvxTempoMap) return as<IKvxTempoMap>(services_.tempoMap);
    if (iid == IID_IKvxTimeConverter) return as<IKvxTimeConverter>(services_.timeConverter);
    if (iid == IID_IKvxProjectKeyMap) return as<IKvxProjectKeyMap>(services_.key);
    if (iid == IID_IKvxPinHost) return as<IKvxPinHost>(services_.pins);
    return nullptr;
}

}  // namespace marnoth
