#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "hostkit/LiveTransport.h"
#include "hostkit/SeparateOutputs.h"
#include "seam/IGrooveSampler.h"
#include "seam/InstrumentMaker.h"

namespace marnoth {

/// What a live host is connected for.
struct LiveSetup {
    std::uint32_t rate = 48000;      ///< frames per second, 1 to 10,000,000
    std::int32_t mostFrames = 1024;  ///< of a block, at least 1; a longer one comes in pieces of this length
    std::span<const int> outputs = {};  ///< the outputs that are rendered: 0 the mix, 1 to 16 the channels
};

/// A host for a running clock: what every shell needs whose audio comes in blocks on a real-time thread, in
/// stereo. It owns an instrument, and has a musical clock, the project's key, live messages and commands.
///
/// Each note starts and ends on its exact frame: blocks are cut at notes, and at nothing else. The instrument
/// is in the steady mode: the same messages on the same frames give the same audio in blocks of any length,
/// and whatever ends fades out over 20 ms, note-offs, jumps and stops of the transport, the panic, and files
/// that are removed or replaced among them. What `connect` and failures end is cut.
///
/// Three kinds of threads call: one that sets up, one that renders, and any others. `connect` and `process`
/// are never called at once; everything else may be. Below "The thread that renders" nothing allocates or
/// frees, and the one lock that may be held by others is the instrument's; nobody waits below "Any thread".
class LiveHost {
public:
    /// Has the instrument made by `make`. `std::runtime_error` when that fails.
    explicit LiveHost(InstrumentMaker make);
    ~LiveHost();
    LiveHost(const LiveHost&) = delete;
    LiveHost& operator=(const LiveHost&) = delete;

    // The thread that sets up.

    /// Connects and starts the graph, or does it anew: for another rate, longer blocks, other outputs. What
    /// sounded has ended, playing starts anew with the next block, messages go on waiting. The
    /// instrument's files stay at the rate at which they were loaded: after another rate load the project
    /// again. `E_INVALIDARG` for a setup that can't be, which leaves everything as it is; after any other
    /// failure nothing is connected.
    HRESULT connect(const LiveSetup& setup);

    /// Saves the instrument to a stream as a host does with its own project, and loads it again: `Save`
    /// (which clears the dirty mark) and `Load` of its `IPersistStream`. Blocks go on meanwhile.
    HRESULT save(IStream& stream);
    HRESULT load(IStream& stream);

    /// The control surface, with its own rules for threads.
    IGrooveSampler& sampler();

    // The thread that renders.

    /// A message of one to three bytes that comes `frame` frames behind the start of the next block: notes
    /// play, controllers 120, 121 and 123 end them (`readLiveMessage`), any other is passed over. Messages
    /// may come in any order; those of one frame keep theirs. One at or behind the end of a block waits for
    /// the block that has its frame. Below 0 counts as 0. False when it finds no room, which never happens to
    /// a note-off; there is room for hundreds (`LiveMessages::kRoomForNotes`).
    bool addMessage(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2);

    /// Renders a block and writes it to `outputs`; outputs that aren't rendered are zeros. With the caller's
    /// transport, or with its own, which the commands below move. A start, jump or stop ends every note
    /// before the messages of its frame come; what sounded fades out meanwhile.
    ///
    /// With 0 frames nothing happens: messages, commands and the transport wait. `E_INVALIDARG` below 0,
    /// `VFW_E_NOT_CONNECTED` before `connect`. Any other failure is the instrument's, out of memory first of
    /// all: the rest of the block is zeros, all notes have ended, and playing starts anew with the next one.
    HRESULT process(std::int32_t frames, const LiveTransport& transport, OutputPointers outputs);
    HRESULT process(std::int32_t frames, OutputPointers outputs);

    // Any thread. Commands are taken up by the next block, those of one thread in their order, before the
    // transport and the messages of that block. False when too many wait already; try again then.

    /// As `addMessage` at frame 0. Note-offs and the end of all sound are never refused: when too many
    /// commands wait, they come behind them.
    bool send(std::uint8_t status, std::uint8_t data1, std::uint8_t data2);
    /// The host's own transport. Ticks are 960 to the beat and are told apart in fractions; one that can't be
    /// (`isLiveTick`) changes nothing.
    bool play();
    bool stop();
    bool locate(double tick);
    /// The tempo of the host's own transport, and of a caller's that tells none. 120 at first; one that can't
    /// be (`isLiveTempo`) changes nothing.
    bool setTempo(double beatsPerMinute);
    /// Ends all notes and all sound, one-shot pads and what is played from the page too. Never refused.
    void panic();
    /// The project's key, 0 to 11 counted from A, or none, as at first, with which nothing is transposed; for
    /// grains that begin from the next block on. False for any other.
    bool setKey(std::optional<std::uint32_t> key);

    /// Where the last block ended, and whether it played.
    bool isPlaying() const;
    double tick() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace marnoth
