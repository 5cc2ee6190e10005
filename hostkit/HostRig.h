#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "hostkit/AudioGraph.h"
#include "hostkit/KeyService.h"
#include "seam/IGrooveSampler.h"
#include "seam/InstrumentMaker.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// How `HostRig::attach` sets up the host's services.
struct AttachOptions {
    double tempo = 120.0;  ///< beats per minute, from tick 0 on
    /// Project key, 0 to 11 counted from A, or `kNoProjectKey`; without it there is no key service.
    std::optional<std::uint32_t> key;
    bool converter = true;           ///< offer the time converter
    double converterRate = 44100.0;  ///< its frames per second
};

/// Takes rendered audio: `frames` interleaved frames of one output pin, in order. `silent` says that the
/// instrument delivered silence; the frames are zeros then.
using AudioTaker = std::function<void(std::span<const float> samples, bool silent)>;

/// A whole host in a box, on the instrument's public interfaces alone: a graph with a stream source, the
/// instrument and a sink for each connected output pin, and the services that a sequencer offers. It renders
/// offline, as fast as it can, on the caller's thread; it is what the command line, the tests and the
/// benchmarks drive.
///
/// One thread at a time, except for `sampler()`, which any other thread may use while blocks run.
/// Output pins are numbered as the instrument orders them: 0 the mix, 1 to 16 the channels.
class HostRig {
public:
    /// Has the instrument made by `make`, and the graph that it plays in by `makeGraph`. `std::runtime_error`
    /// when that fails or the instrument lacks an interface, `std::bad_alloc` without memory. What comes
    /// later ends in `E_OUTOFMEMORY` then.
    explicit HostRig(InstrumentMaker make, GraphMaker makeGraph = makeHostGraph);
    ~HostRig();
    HostRig(const HostRig&) = delete;
    HostRig& operator=(const HostRig&) = delete;

    /// Stops the graph, takes all connections apart, and connects the input pin with 32-bit float of `rate`
    /// and `channels`, then each of `pins` with the same format, also behind one that fails. Gives the first
    /// failure; `E_INVALIDARG` for a pin that there isn't, and for a rate or channel count of 0, which leaves
    /// everything as it is.
    HRESULT connect(std::uint32_t rate, std::uint32_t channels, std::span<const int> pins);
    /// Where the audio of an output pin goes from now on; none by default. It is called on the thread
    /// that renders. `std::invalid_argument` for a pin that there isn't.
    void setTaker(int pin, AudioTaker taker);

    /// `E_UNEXPECTED` while attached; `E_INVALIDARG` for a tempo, key or rate that can't be.
    HRESULT attach(const AttachOptions& options);
    HRESULT detach();
    /// From `tick` (whole ticks) on the host's tempo is `beatsPerMinute`. Ticks must rise; false when they
    /// don't, or without a host attached.
    bool addTempo(std::int32_t tick, double beatsPerMinute);

    /// Frames of one block, 512 at first; at least 1, or `E_INVALIDARG`. The buffers grow with it, also while
    /// the graph runs. After `E_OUTOFMEMORY` the blocks are as long as before.
    HRESULT setBlock(std::int32_t frames);
    /// Whether media samples offer `IKvxSampleSilence`, from the next block on; they do at first.
    void setSilenceFlag(bool offered);
    /// What the input pin is sent: zeros marked as silence (the default), zeros unmarked, or frames, then
    /// zeros.
    void setInputSilence();
    void setInputZeros();
    void setInputFrames(std::vector<float> interleaved);
    /// The next block is a discontinuity with this start time.
    void setDiscontinuity(double seconds);

    HRESULT pause();
    HRESULT run();
    HRESULT stop();
    /// Runs the graph if it isn't running, then sends `frames` frames in blocks, the last one shorter. Stops
    /// at the first failing block; the result is that of the last block. `VFW_E_NOT_CONNECTED` without a
    /// connected input, `E_INVALIDARG` for a negative length.
    HRESULT render(std::int64_t frames);

    HRESULT queueEvents(std::uint32_t port, std::span<const SynthEvent> events);
    HRESULT queueRawInput(std::uint32_t port, std::span<const RawMidiEvent> events);

    /// Saves the instrument to a stream as a host does with its own project, and loads it again: `Save`
    /// (which clears the dirty mark) and `Load` of its `IPersistStream`.
    HRESULT save(IStream& stream);
    HRESULT load(IStream& stream);

    IGrooveSampler& sampler();
    IKvxSoftSynth2& synth();
    IKvxNotify& notify();
    std::uint32_t rate() const;
    std::uint32_t channels() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace marnoth
