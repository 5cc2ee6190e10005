#pragma once

#include <cstdint>

#include "platform/com/Com.h"
#include "seam/Pzi.h"

struct IBaseFilter;

namespace marnoth {

/// The interfaces between a host's sequencer and the instrument: those that the instrument answers, and the
/// services that a host offers. Slots that the instrument never calls are named `reserved` and keep their
/// place in the table; hosts answer them with `E_NOTIMPL`.

#pragma pack(push, 1)
/// One live MIDI message, 8 bytes.
struct RawMidiEvent {
    std::uint32_t time = 0;  ///< ticks; only differences within one list count
    std::uint8_t status = 0;
    std::uint8_t data1 = 0;
    std::uint8_t data2 = 0;
    std::uint8_t unused = 0;
};

/// What `IKvxNotify::Notify` is told.
struct SynthNotification {
    std::uint32_t kind = 0;  ///< 0 channel, 1 mute, 2 and 3 velocity offsets, 4 and 5 note offsets
    std::int32_t port = 0;
    std::uint8_t value = 0;
    std::uint8_t mask = 0;  ///< kind 1: the mute bits to replace
};
#pragma pack(pop)
static_assert(sizeof(RawMidiEvent) == 8);
static_assert(sizeof(SynthNotification) == 10);

/// Formats of a `SynthTimeValue`.
enum SynthTimeFormat : std::uint32_t {
    kTimeSeconds = 1,  ///< f64
    kTimeSamples = 2,  ///< i64
    kTimeTicks = 3,    ///< the low 32 bits
    kTimeTicks16 = 4,  ///< i64, 16.16 ticks
};

/// A time in one of four units, 16 bytes. The value is read and written in the width of its format.
struct SynthTimeValue {
    std::uint32_t format = 0;  ///< a `SynthTimeFormat`
    std::uint32_t reserved = 0;
    union {
        double seconds;
        std::int64_t samples = 0;
        std::int32_t ticks;
        std::int64_t ticks16;
    };
};
static_assert(sizeof(SynthTimeValue) == 16);

inline constexpr IID IID_IKvxTempoMap{
    0x1D0B7C31, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x01}};

/// Service of the host: tempo by tick. Required by `AttachHost`.
struct IKvxTempoMap : IUnknown {
    virtual std::int32_t TicksToMilliseconds(std::int32_t ticks) = 0;
    virtual std::int32_t MillisecondsToTicks(std::int32_t milliseconds) = 0;
    virtual HRESULT reserved5() = 0;
    virtual HRESULT reserved6() = 0;
    virtual HRESULT reserved7() = 0;
    /// The tempo at a time, in hundredths of a beat per minute. `other` is not looked at.
    virtual HRESULT GetTempoAt(std::int32_t time, std::int32_t* other, std::int32_t* tempoHundredths) = 0;
};

inline constexpr IID IID_IKvxTimeConverter{
    0x1D0B7C32, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x02}};

/// Service of the host: exact conversion between the four units of time.
struct IKvxTimeConverter : IUnknown {
    /// Converts in place to `targetFormat`, a `SynthTimeFormat`.
    virtual HRESULT ConvertTime(SynthTimeValue* inOut, std::uint32_t targetFormat) = 0;
};

inline constexpr IID IID_IKvxProjectKeyMap{
    0x1D0B7C33, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x03}};

/// Service of the host: the project's key.
struct IKvxProjectKeyMap : IUnknown {
    virtual HRESULT reserved3() = 0;
    virtual HRESULT reserved4() = 0;
    virtual HRESULT reserved5() = 0;
    /// 0 to 11 counted from A; 0xFFFFFFFF for none.
    virtual HRESULT GetKeyAt(const SynthTimeValue* when, std::uint32_t* key) = 0;
};

inline constexpr IID IID_IKvxEventTarget{
    0x1D0B7C34, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x04}};

/// Service of the host: a taker of events. The instrument holds it and calls nothing on it.
struct IKvxEventTarget : IUnknown {};

inline constexpr IID IID_IKvxPinHost{
    0x1D0B7C35, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x05}};

/// What a host is told about the set of output pins.
enum PinSetChange : std::uint32_t {
    kPinSetAsking = 1,  ///< a failure refuses the change
    kPinSetChanged = 2,
};

/// Service of the host: a say in the set of output pins.
struct IKvxPinHost : IUnknown {
    /// `count` is the number of output pins after the change.
    virtual HRESULT OnPinSetChange(std::uint32_t kind, IBaseFilter* filter, std::int32_t count) = 0;
};

/// A list of sequenced events, offered by the host for the length of a call.
struct IKvxEventList : IUnknown {
    virtual HRESULT reserved3() = 0;
    virtual HRESULT GetCount(std::int32_t* count) = 0;
    virtual HRESULT GetAt(std::int32_t index, SynthEvent* event) = 0;
};

/// A list of live MIDI messages, offered by the host for the length of a call.
struct IKvxRawEventList : IUnknown {
    virtual HRESULT reserved3() = 0;
    virtual HRESULT GetCount(std::int32_t* count) = 0;
    virtual HRESULT GetAt(std::int32_t index, RawMidiEvent* event) = 0;
};

inline constexpr IID IID_IKvxNameList{
    0x1D0B7C3A, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x0A}};

/// Names by number, for a host to show. Texts are in the system's code page; a buffer of `size` bytes that is
/// too small for a name gets its beginning, always with a zero at its end. A null buffer of a size above 0 is
/// `E_POINTER`, and so is a null pointer where a value is given out.
struct IKvxNameList : IUnknown {
    /// The name of the list itself. A null buffer is `E_POINTER` whatever the size.
    virtual HRESULT GetListName(char* buffer, std::int32_t size) = 0;
    /// Names that there may be: their ids lie below it.
    virtual HRESULT GetMaxCount(std::uint32_t* count) = 0;
    /// An empty text for an id without a name, `E_INVALIDARG` for one that can't have any.
    virtual HRESULT GetNameAt(std::int32_t id, char* buffer, std::int32_t size) = 0;
};

inline constexpr IID IID_IKvxNameList2{
    0x1D0B7C3B, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x0B}};

/// The same, and a way through the names that there are. A list has one cursor: two traversals at once
/// disturb each other.
struct IKvxNameList2 : IKvxNameList {
    virtual HRESULT GetCount(std::uint32_t* count) = 0;
    /// Begins a traversal. `*position` is for `GetNext` alone.
    virtual HRESULT GetFirst(void** position) = 0;
    /// The next name and its id, either of which may be left out. `S_FALSE` behind the last.
    virtual HRESULT GetNext(void** position, std::uint32_t* id, char* buffer, std::int32_t size) = 0;
    /// `S_FALSE` for an id without a name.
    virtual HRESULT FindName(std::int32_t id, char* buffer, std::int32_t size) = 0;
};

inline constexpr IID IID_IKvxInstrument{
    0x1D0B7C3C, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x0C}};

/// What an instrument says of its banks, patches, notes and controllers. A bank lies in -1 to 16383 and a
/// patch in -1 to 127, where -1 stands for any; `E_INVALIDARG` otherwise. Lists come with a reference.
struct IKvxInstrument : IUnknown {
    /// `E_POINTER` when the name and its zero don't fit in `size` bytes.
    virtual HRESULT GetName(char* buffer, std::int32_t size) = 0;
    /// One block from the task allocator, which the caller frees.
    virtual HRESULT GetBankList(std::int32_t** banks, std::uint32_t* count) = 0;
    /// `S_FALSE` for every bank and patch that can be.
    virtual HRESULT QueryPatchFalse(std::int32_t bank, std::int32_t patch) = 0;
    /// `S_OK` for every bank and patch that can be.
    virtual HRESULT QueryPatchTrue(std::int32_t bank, std::int32_t patch) = 0;
    virtual HRESULT GetPatchList(std::int32_t bank, IKvxNameList** out) = 0;
    /// `S_FALSE` on success. Takes any patch.
    virtual HRESULT GetNoteList(std::int32_t bank, std::int32_t patch, IKvxNameList** out) = 0;
    virtual HRESULT GetControllerList(IKvxNameList** out) = 0;
    virtual HRESULT GetRpnList(IKvxNameList** out) = 0;
    virtual HRESULT GetNrpnList(IKvxNameList** out) = 0;
};

inline constexpr IID IID_IKvxSoftSynth{
    0x1D0B7C36, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x06}};
inline constexpr IID IID_IKvxSoftSynth2{
    0x1D0B7C37, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x07}};

/// What the sequencer drives: services, transport, events, names. Any thread of the host; every operation
/// runs under the instrument's lock. Ticks are whole ticks, 960 to the beat.
struct IKvxSoftSynth : IUnknown {
    /// Takes the host's services and takes over the caller's reference to `context`. `E_UNEXPECTED` when
    /// attached; the failure of the query when there is no tempo map, with nothing taken.
    virtual HRESULT AttachHost(IUnknown* context) = 0;
    virtual HRESULT DetachHost() = 0;
    virtual HRESULT StartPlayback(std::int32_t ticks) = 0;
    virtual HRESULT LoopPlayback(std::int32_t restartTicks, std::int32_t stopTicks) = 0;
    virtual HRESULT StopPlayback() = 0;
    /// Sequenced events. The first two values are not read.
    virtual HRESULT QueueEvents(std::uint32_t unused1, std::uint32_t unused2, std::uint32_t port,
                                IKvxEventList* list) = 0;
    /// Live MIDI: plays from the next block on, spaced as the list's times are.
    virtual HRESULT QueueRawInput(std::uint32_t port, IKvxRawEventList* list) = 0;
    /// One block from the task allocator, which the caller frees.
    virtual HRESULT GetBankList(std::int32_t** banks, std::uint32_t* count) = 0;
    virtual HRESULT QueryPatchFalse(std::uint32_t bank, std::uint32_t patch) = 0;
    virtual HRESULT QueryPatchTrue(std::uint32_t bank, std::uint32_t patch) = 0;
    virtual HRESULT GetPatchList(std::uint32_t bank, IKvxNameList** list) = 0;
    virtual HRESULT GetNoteList(std::uint32_t bank, std::uint32_t patch, IKvxNameList** list) = 0;
    virtual HRESULT GetControllerList(IKvxNameList** list) = 0;
    virtual HRESULT GetRpnList(IKvxNameList** list) = 0;
    virtual HRESULT GetNrpnList(IKvxNameList** list) = 0;
    virtual HRESULT GetInstrument(std::uint32_t unused, IKvxInstrument** instrument) = 0;
};

/// The same table under its second name.
struct IKvxSoftSynth2 : IKvxSoftSynth {};

inline constexpr IID IID_IKvxNotify{
    0x1D0B7C38, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x08}};

/// How a host sets what the instrument does with the events of one input port.
struct IKvxNotify : IUnknown {
    virtual HRESULT Notify(const SynthNotification* record) = 0;
};

inline constexpr IID IID_IKvxInputPort{
    0x1D0B7C39, 0x2A5E, 0x4E0F, {0x9C, 0x11, 0x54, 0x70, 0xA8, 0x3D, 0xE2, 0x09}};

/// Gives the instrument a taker of events, or asks for it.
struct IKvxInputPort : IUnknown {
    /// Null is allowed.
    virtual HRESULT SetEventTarget(IUnknown* target) = 0;
    /// `S_FALSE` and null when there is none.
    virtual HRESULT GetEventTarget(IUnknown** out) = 0;
};

}  // namespace marnoth
