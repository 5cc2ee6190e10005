#pragma once

#include "hostkit/LiveHost.h"

namespace marnoth {

/// `LiveHost::connect` for a host that was connected at `former` frames per second, or 0 and not at all: its
/// project stays, and its files are at the new rate then. Where that fails the project is at its former rate
/// again. `E_OUTOFMEMORY` leaves everything as it is. The thread that sets up.
HRESULT connectWithProject(LiveHost& host, const LiveSetup& setup, std::uint32_t former);

}  // namespace marnoth
