#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "hostkit/AudioGraph.h"
#include "hostkit/HostContext.h"
#include "hostkit/StreamSink.h"
#include "hostkit/StreamSource.h"
#include "platform/com/RefPtr.h"
#include "seam/IGrooveSampler.h"
#include "seam/InstrumentMaker.h"
#include "seam/KvxInterfaces.h"
#include "seam/Limits.h"

namespace marnoth {

/// An instrument in a graph of its own, behind a stream source, with a sink for each of its output pins: what
/// every host is built around.
///
/// One thread at a time, except for the instrument's interfaces, which have rules of their own. Output pins
/// are numbered as the instrument orders them: 0 the mix, 1 to 16 the channels. When it goes, the graph is
/// stopped and taken apart, and the instrument is detached.
class InstrumentGraph {
public:
    /// Has the instrument made by `make`, and the graph by `makeGraph`. `std::runtime_error` when that fails
    /// or the instrument lacks an interface, `std::bad_alloc` without memory.
    explicit InstrumentGraph(InstrumentMaker make, GraphMaker makeGraph = makeHostGraph);
    ~InstrumentGraph();
    InstrumentGraph(const InstrumentGraph&) = delete;
    InstrumentGraph& operator=(const InstrumentGraph&) = delete;

    /// As `HostRig::connect`.
    HRESULT connect(std::uint32_t rate, std::uint32_t channels, std::span<const int> pins);
    /// Room for blocks of up to `frames`, also while the graph runs. After a failure there is as much as
    /// before.
    HRESULT growBuffers(std::int32_t frames);
    /// Sends one block through the instrument into the sinks' takers. `VFW_E_NOT_CONNECTED` without a
    /// connected input.
    HRESULT send(const StreamBlock& block) { return source_->pin().send(block); }
    /// Whether media samples offer `IKvxSampleSilence`, from the next block on; they do at first.
    void setSilenceFlag(bool offered);
    /// The end of an output pin, 0 to 16.
    StreamSinkPin& sink(int pin) { return sinks_[static_cast<std::size_t>(pin)]->pin(); }
    AudioGraph& graph() { return *graph_; }

    /// Gives the host's services to the instrument. `E_UNEXPECTED` while attached.
    HRESULT attach(const HostContext::Services& services);
    HRESULT detach();

    /// `Save` (which clears the dirty mark) and `Load` of the instrument's `IPersistStream`.
    HRESULT save(IStream& stream);
    HRESULT load(IStream& stream);

    IGrooveSampler& sampler() { return *sampler_; }
    IKvxSoftSynth2& synth() { return *synth_; }
    IKvxNotify& notify() { return *notify_; }
    std::uint32_t rate() const { return rate_; }
    std::uint32_t channels() const { return channels_; }

private:
    void add(IBaseFilter& filter, LPCWSTR name);
    HRESULT connectAll(std::span<const int> pins);
    HRESULT connectPin(int pin, const AM_MEDIA_TYPE& type);

    RefPtr<IUnknown> instrument_;
    RefPtr<IBaseFilter> filter_;
    RefPtr<IGrooveSampler> sampler_;
    RefPtr<IKvxSoftSynth2> synth_;
    RefPtr<IKvxNotify> notify_;
    RefPtr<StreamSource> source_;
    std::array<RefPtr<StreamSink>, kOutputPins> sinks_;
    RefPtr<AudioGraph> graph_;  ///< goes first: it takes the connections apart
    bool attached_ = false;
    std::uint32_t rate_ = 44100;
    std::uint32_t channels_ = 2;
};

}  // namespace marnoth
