#pragma once

#include <cstdint>
#include <list>
#include <memory_resource>

#include "platform/com/Com.h"
#include "platform/system/CritSec.h"

struct IMediaSample;
struct IPin;
struct IStream;

namespace marnoth {

/// The seam between the shell and the one instrument inside it: `CPzi` is what the shell asks of the
/// instrument, `CPziSynthContext` what the instrument asks of the shell. With these two classes and
/// `PinBuffer` the engine can be built and driven without a shell.

struct VoiceState;

/// What an event is; the values are those of the wire.
enum class SynthEventType : std::uint32_t {
    note = 0,
    keyAftertouch = 1,
    controller = 2,
    patch = 3,
    channelAftertouch = 4,
    pitchWheel = 5,
    mute = 11,
};

/// Values of `SynthEvent::duration` that are no length.
inline constexpr std::uint32_t kDurationOpen = 0xFFFFFFFF;      ///< the note is held, its end isn't known yet
inline constexpr std::uint32_t kDurationOff = 0;                ///< a note-off, or a note told to release
inline constexpr std::uint32_t kDurationReleased = 0xFFFFFFFE;  ///< the engine has taken the release up

#pragma pack(push, 1)
/// The event record that crosses the boundary with the host: 17 bytes, little-endian, packed.
struct SynthEvent {
    std::int32_t time = 0;     ///< ticks
    std::uint8_t port = 0;     ///< mute events: the mute value
    std::uint8_t channel = 0;  ///< 0 to 15; mute events: the mute mask
    SynthEventType type = SynthEventType::note;
    std::uint8_t note = 0;             ///< key; controller number; patch; low byte of a pitch wheel's 14 bits
    std::uint8_t velocity = 0;         ///< velocity, or the message's value; high byte of a pitch wheel
    std::uint8_t releaseVelocity = 0;  ///< 64 in events made from live MIDI; patches: low byte of the bank
    std::uint32_t duration = 0;        ///< ticks, notes only; patches: its low byte is the bank's high byte
};
#pragma pack(pop)
static_assert(sizeof(SynthEvent) == 17);

/// An event on the instrument's timeline: the element of the time map and of the event queue.
struct QueuedEvent {
    SynthEvent event;
    std::uint32_t port = 0;       ///< input port on which it came
    std::int64_t sampleTime = 0;  ///< samples on the running timeline
    /// The note's playing state: null until `CPzi::CreateVoice`, freed by `CPzi::ReleaseVoice`.
    VoiceState* voice = nullptr;
};

/// The notes that have been drained into play, in order of draining. A note stays where it is in memory for
/// as long as it is in the queue.
using NoteQueue = std::pmr::list<QueuedEvent>;

inline constexpr IID IID_IKvxSampleSilence{
    0x6F1C2A54, 0x93D7, 0x4C1E, {0x8B, 0x40, 0x2D, 0x57, 0x9E, 0x61, 0xC8, 0x13}};

/// Optional on a media sample: carries the silence flag between host and instrument.
///
/// A marked sample counts as silence whatever its memory holds. Asking a marked sample for its memory clears
/// the memory and takes the mark away, since whoever asks means to write: a block rendered into a silent
/// buffer starts from zeros.
struct IKvxSampleSilence : IUnknown {
    virtual std::int32_t GetSilent() = 0;
    virtual void SetSilent(std::int32_t silent) = 0;
};

struct PinBuffer;

/// Gives a buffer its sample when the instrument first opens it. Without the sample, which may fail to come,
/// the buffer has no memory.
class BufferSource {
public:
    virtual void bring(PinBuffer& buffer) = 0;

protected:
    ~BufferSource() = default;
};

/// One block buffer.
struct PinBuffer {
    std::int32_t frames = 0;         ///< capacity in frames, then the frames of the block
    std::uint32_t pinId = 0;         ///< id of the output pin; not set for the input
    IMediaSample* sample = nullptr;  ///< one reference held by the descriptor
    float* data = nullptr;  ///< null at the start of a block; memory given here is used instead of `sample`'s
    std::int32_t silent = 0;  ///< not 0: no valid audio in it, it counts as silence
    /// The buffer that this one is a piece of, from value `wholeFrom` on; null: it is whole. Opening the
    /// piece opens the whole, which counts as silent until then and is cleared first.
    PinBuffer* whole = nullptr;
    std::int64_t wholeFrom = 0;
    std::int64_t wholeValues = 0;
    BufferSource* source = nullptr;  ///< asked once for a sample that isn't there yet; null: nobody has one
};

/// The block's memory, for reading and writing; from then on the buffer isn't silent.
///
/// A silent buffer whose sample knows no `IKvxSampleSilence` has its first `frames` * 4 bytes cleared, which
/// of a stereo block is half; with that interface the sample clears itself.
float* GetBufferData(PinBuffer& buffer);

/// What the instrument asks of the shell: output pins, conversions of time, transport and key. All under the
/// one lock. 16.16 ticks are 1/960 of a beat in fixed point, 62914560 to the beat.
class CPziSynthContext {
public:
    /// Makes an output pin at the end of the list. `name` and `id` may be null.
    virtual HRESULT AddOutputPin(const char* name, std::uint32_t* id) = 0;
    virtual HRESULT RemoveOutputPin(std::uint32_t id) = 0;
    virtual HRESULT RemoveAllOutputPins() = 0;
    /// The pin with this id, without a reference; null when there is none.
    virtual IPin* FindOutputPin(std::uint32_t id) = 0;
    virtual std::int32_t GetOutputPinCount() = 0;
    /// Id of the pin at `index` of the list; 0xFFFFFFFF when there is none.
    virtual std::uint32_t GetPinId(std::int32_t index) = 0;
    virtual std::int64_t WholeTicksToSamples(std::int32_t ticks) = 0;
    virtual std::int32_t SamplesToWholeTicks(std::int64_t samples) = 0;
    virtual std::int64_t TicksToSamples(std::int64_t ticks16) = 0;
    virtual std::int64_t SamplesToTicks(std::int64_t samples) = 0;
    /// The project's key at a time in 16.16 ticks, 0 to 11 counted from A.
    virtual std::uint32_t GetKeyAtTime(std::int64_t ticks16) = 0;
    virtual std::int32_t IsTransportRunning() = 0;
    /// Frames per second as the host's time converter has it; 44100 without one.
    virtual std::int32_t GetSampleRate() = 0;
    /// Beats per minute, the fallback without host services.
    virtual double GetTempo() = 0;
    virtual void SetTempo(double beatsPerMinute) = 0;

protected:
    ~CPziSynthContext() = default;
};

/// What the shell asks of the instrument. Owns the one lock of the whole instrument and the two formats; the
/// context isn't owned and outlives it.
class CPzi : public CCritSec {
public:
    /// Keeps the id of output pin 0 as the mix and makes the channel pins.
    virtual HRESULT RegisterOutputs() = 0;
    virtual HRESULT CheckInputFormat(const WAVEFORMATEX* format) = 0;
    virtual HRESULT CheckOutputFormat(const WAVEFORMATEX* format) = 0;
    virtual HRESULT CheckFormatPair(const WAVEFORMATEX* input, const WAVEFORMATEX* output) = 0;
    virtual HRESULT ProposeOutputFormat(WAVEFORMATEX* format) = 0;
    virtual const WAVEFORMATEX* GetInputFormat() { return &inputFormat; }
    virtual const WAVEFORMATEX* GetOutputFormat() { return &outputFormat; }
    /// Renders one block of `input->frames` frames at `position` (samples, as the graph counts) into `pins`.
    /// `S_FALSE`, with nothing done, when `input` is null. Streaming thread, under the lock; allocates
    /// nothing.
    virtual HRESULT ProcessBlock(std::int64_t position, PinBuffer* input, PinBuffer* pins,
                                 std::int32_t pinCount, std::int64_t reserved, NoteQueue* notes) = 0;
    /// `S_OK`: keep the event. `S_FALSE`: drop it.
    virtual HRESULT IsIgnoredEvent(const SynthEvent* event) = 0;
    /// Gives a note its playing state. `E_OUTOFMEMORY` or `S_OK`.
    virtual HRESULT CreateVoice(QueuedEvent* event) = 0;
    /// 0: the state is freed (or there was none), the note may go. 1: there is more to play and `flush` is 0.
    virtual HRESULT ReleaseVoice(QueuedEvent* event, std::int32_t flush) = 0;
    virtual HRESULT PrepareResources() = 0;
    virtual HRESULT FreeResources() = 0;
    virtual std::int32_t GetPersistSize() = 0;
    /// What the instrument keeps, from the stream's position on and to it; the stream stands behind it
    /// afterwards. Both take the lock for themselves, and not while bytes come or go. A failed load leaves
    /// the instrument empty; it may throw `std::invalid_argument` for a state that names what can't be.
    virtual HRESULT LoadState(IStream* stream) = 0;
    virtual HRESULT SaveState(IStream* stream) = 0;
    /// Ends every voice at once, without a fade, and unsets the running position.
    virtual void ResetVoices() = 0;
    /// Whether blocks are to be rendered in pieces that end at events.
    virtual bool IsSteady() const { return false; }
    /// Whether an output that stays silent through a block needs no buffer and delivers nothing.
    virtual bool IsSparse() const { return false; }

    /// Set by the shell when a connection is made, under the lock. The engine's audio format is the input
    /// format.
    WAVEFORMATEX inputFormat{};
    WAVEFORMATEX outputFormat{};

protected:
    ~CPzi() = default;
    CPziSynthContext& context() const { return *context_; }
    /// The instrument's constructor says whom it was given; nothing is asked of the context before.
    void setContext(CPziSynthContext* context) { context_ = context; }

private:
    CPziSynthContext* context_ = nullptr;
};

}  // namespace marnoth
