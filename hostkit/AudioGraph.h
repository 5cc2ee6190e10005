#pragma once

#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"

namespace marnoth {

/// The graph that a host plays in, as far as the host asks anything of it: it holds filters, connects their
/// pins, and takes all of them from state to state. Whether it is the kit's own or the system's, the host
/// doesn't know.
///
/// One thread at a time. When the last reference goes it takes everything apart.
struct AudioGraph : IUnknown {
    virtual HRESULT add(IBaseFilter& filter, LPCWSTR name) = 0;
    /// As `type`, with nothing between the two pins. The graph must be stopped, and both filters in it.
    virtual HRESULT connect(IPin& output, IPin& input, const AM_MEDIA_TYPE& type) = 0;
    /// Takes all connections of all filters apart, and gives the first failure. The graph must be stopped.
    virtual HRESULT disconnectAll() = 0;

    /// Each is over when it comes back: every filter is in the state. A failure on the way up from stopped
    /// stops everything again, and is the result.
    virtual HRESULT pause() = 0;
    virtual HRESULT run() = 0;
    /// Stops every filter whatever the others say; the first failure is the result.
    virtual HRESULT stop() = 0;
    virtual FILTER_STATE state() = 0;
};

/// Makes a graph that holds nothing yet. Throws `std::runtime_error` when that fails, `std::bad_alloc`
/// without memory.
using GraphMaker = RefPtr<AudioGraph> (*)();

/// Makes the kit's own graph.
RefPtr<AudioGraph> makeHostGraph();

}  // namespace marnoth
