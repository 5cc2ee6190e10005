#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "engine/GrooveSampler.h"
#include "host/FilterPins.h"
#include "host/SoftSynth.h"
#include "platform/com/ModuleLock.h"
#include "platform/com/PersistStream.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/BaseFilter.h"

namespace marnoth {

/// The whole instrument as one object: the engine, what the sequencer talks to, and the node of the audio
/// graph with one input pin and seventeen output pins ("Mix Output", "Chan 1" to "Chan 16").
///
/// One identity and one reference count for every interface. Audio at the input pin is the only clock: each
/// sample received is one block rendered and one sample delivered on every connected output pin, or, for
/// hosts that ask for it, on every one that there is something to hear of.
///
/// The instrument's lock is that of `CPzi`: the streaming thread holds it while it renders a block, everybody
/// else for one operation. The stream has a lock of its own, held from the sample that comes in to the last
/// one that is handed out, and taken first: whoever is kept waiting downstream, or for a buffer, keeps no one
/// waiting but the stream, and the stop of the graph.
class CFilter : public CSoftSynth,
                public CGrooveSampler,
                public CBaseFilter,
                public CPersistStream,
                public ISpecifyPropertyPages {
public:
    using OutputPins = std::vector<RefPtr<CFilterOutputPin>>;

    /// Begins with one reference. `outer` is the object that this one becomes a part of, or null. A failure
    /// to make the pins goes into `*result`, which is left alone otherwise; such an object is only fit to be
    /// released.
    CFilter(IUnknown* outer, HRESULT* result);

    // IUnknown, for every interface of the object.
    HRESULT QueryInterface(REFIID iid, void** out) override { return CBaseFilter::QueryInterface(iid, out); }
    ULONG AddRef() override { return CBaseFilter::AddRef(); }
    ULONG Release() override { return CBaseFilter::Release(); }

    // IPersist, for both bases that have it.
    HRESULT GetClassID(CLSID* out) override { return CBaseFilter::GetClassID(out); }

    // IDispatch, served from the type library of `IGrooveSampler` that is registered on this machine. Without
    // one there is no type information (a count of 0), and the rest gives `E_NOTIMPL`.
    HRESULT GetTypeInfoCount(UINT* count) override;
    HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) override;
    HRESULT GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    HRESULT Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                   EXCEPINFO* exception, UINT* argumentError) override;

    // ISpecifyPropertyPages: the editor.
    HRESULT GetPages(CAUUID* pages) override;

    // CBaseFilter.
    int GetPinCount() override;
    CBasePin* GetPin(int index) override;
    HRESULT Stop() override;
    HRESULT Pause() override;
    HRESULT Run(REFERENCE_TIME start) override;

    // CPziSynthContext: the output pins. Everything that changes their set asks the attached host first,
    // which may refuse, and tells host and graph afterwards.
    HRESULT AddOutputPin(const char* name, std::uint32_t* id) override;
    /// A connected pin stays: `E_UNEXPECTED`. An unknown id counts as the last pin's, and what goes is one
    /// from the count of pins while the pin itself stays.
    HRESULT RemoveOutputPin(std::uint32_t id) override;
    /// Removes from the first on; a connected pin ends it with `E_UNEXPECTED` and the count as it was.
    HRESULT RemoveAllOutputPins() override;
    IPin* FindOutputPin(std::uint32_t id) override;
    std::int32_t GetOutputPinCount() override;
    std::uint32_t GetPinId(std::int32_t index) override;

    // For the pins.
    CPzi& pzi() { return *this; }
    CFilterInputPin& inputPin() { return m_inputPin; }
    const OutputPins& outputPins() const { return m_outputPins; }
    /// Renders and delivers one block. Streaming thread. A failure to get buffers for it comes back; what the
    /// engine or a pin downstream says of the block doesn't.
    HRESULT Receive(IMediaSample* in);
    /// Lets the engine play out, then sends the end of the stream down.
    HRESULT EndOfStream();
    /// Calls `tell(const Downstream&)` for the connected output pins in order until one fails. Without the
    /// lock, since whoever hears of it may ask back from any thread.
    template <class Tell>
    HRESULT tellConnectedOutputs(Tell tell) {
        for (std::size_t index = 0; const auto outlet = connectedOutlet(index); ++index)
            if (const HRESULT hr = tell(*outlet->to); FAILED(hr)) return hr;
        return S_OK;
    }
    /// For the stream alone: held while a sample, a segment or the end of the stream goes through.
    CCritSec& streamLock() { return m_streamLock; }

protected:
    /// References delete the object; nobody else does.
    ~CFilter() override;

    IUnknown* FindInterface(REFIID iid) override;

    // CPersistStream: the project behind the version word. The engine takes the lock, but never while bytes
    // come or go. `E_FAIL` for a project that isn't one.
    HRESULT WriteToStream(IStream* stream) override;
    HRESULT ReadFromStream(IStream* stream) override;
    int SizeMax() override { return GetPersistSize(); }

private:
    /// Where the audio of a pin goes, kept until the block is handed out.
    struct Outlet {
        std::uint32_t pinId = 0;
        std::shared_ptr<const Downstream> to;
    };
    /// The buffers of one block: one descriptor for each connected output pin, in order.
    struct BlockBuffers {
        std::vector<PinBuffer> buffers;
        std::vector<Outlet> outlets;    ///< of `buffers`, index for index
        std::vector<PinBuffer> pieces;  ///< likewise, those of the present piece
        /// What the engine said; nothing while it hasn't been asked.
        std::optional<HRESULT> rendered;
        // As they were when the block came.
        WAVEFORMATEX input{};
        WAVEFORMATEX output{};
        bool sparse = false;
    };
    class BlockScope;
    class LateBuffers;
    struct SampleFlags;

    // Output pins.
    /// `change(OutputPins&)`, seen by whoever only looks whole or not at all. What it takes out is held
    /// longer by the caller: nobody's end belongs under that lock.
    template <class Change>
    void changePins(Change change) {
        const CAutoLock look(LookLock());
        change(m_outputPins);
        IncrementPinVersion();
    }
    HRESULT askForPinSet(std::int32_t count);
    HRESULT NotifyPinSetChanged(std::int32_t count);
    void disconnectLeftOverPins();

    // Buffers of a block.
    std::optional<Outlet> connectedOutlet(std::size_t& index);
    void takeOutlets(BlockBuffers& block);
    bool isAsItCame(const BlockBuffers& block) const;
    HRESULT prepareBuffers(BlockBuffers& block, const SampleFlags& flags);
    HRESULT prepareBuffer(const Outlet& outlet, const WAVEFORMATEX& format, PinBuffer* buffer,
                          const SampleFlags& flags);
    HRESULT fitBuffers(BlockBuffers& block, std::int32_t frames, LONG bytes);
    HRESULT fitBuffer(PinBuffer& buffer, std::int32_t frames, LONG bytes) const;

    // Block cycle.
    HRESULT beginBlock(BlockBuffers& block, PinBuffer& input, SampleFlags& flags);
    HRESULT renderReceived(BlockBuffers& block, PinBuffer& input);
    HRESULT renderWhole(BlockBuffers& block, PinBuffer& input);
    HRESULT renderPieces(BlockBuffers& block, PinBuffer& input);
    PinBuffer pieceOf(PinBuffer& whole, std::int64_t from, std::int64_t to) const;
    HRESULT processBlock(BlockBuffers& block, PinBuffer* input);
    void deliverBlock(BlockBuffers& block);
    HRESULT deliverBuffer(const BlockBuffers& block, std::size_t index);
    HRESULT drainRest(std::int32_t frames);
    HRESULT renderRest(BlockBuffers& block, std::int32_t frames);
    HRESULT deliverRest(BlockBuffers& block, HRESULT rendered);
    HRESULT endAllStreams(BlockBuffers& block);
    HRESULT endOfStreamWithoutInput();
    void awaitStream();
    void advance(std::int32_t frames);
    void releaseAbandonedSamples();

    std::optional<ModuleLock> m_moduleLock;
    CCritSec m_streamLock;
    CFilterInputPin m_inputPin;
    OutputPins m_outputPins;
    std::int32_t m_outputPinCount = 0;  ///< as told to the host; may differ from the list after odd removals
    std::int64_t m_streamPosition = 0;  ///< samples on the input pin since the last `Pause`
    BlockBuffers m_spareBuffers;        ///< storage for a block, with room for every output pin
    std::vector<RefPtr<IMediaSample>> m_abandonedSamples;  ///< of blocks that failed; kept until `Stop`
};

}  // namespace marnoth
