#pragma once

#include "hostkit/KeyService.h"
#include "hostkit/PinService.h"
#include "hostkit/TempoService.h"
#include "hostkit/TimeConverter.h"
#include "platform/com/RefPtr.h"

namespace marnoth {

/// What the instrument is given to attach to: answers for each service that the host offers. Each service has
/// a count of its own, so the instrument may hold them longer than this object.
class HostContext : public CUnknown {
public:
    /// Services that aren't there are null and refused with `E_NOINTERFACE`.
    struct Services {
        RefPtr<TempoService> tempoMap;
        RefPtr<TimeConverter> timeConverter;
        RefPtr<KeyService> key;
        RefPtr<PinService> pins;
    };
    explicit HostContext(Services services);

protected:
    IUnknown* FindInterface(REFIID iid) override;

private:
    Services services_;
};

}  // namespace marnoth
