#pragma once

#include <cstdint>

#include "platform/com/Com.h"

namespace marnoth {

inline constexpr IID IID_IMarnothOptions{
    0x5B94E0A7, 0x2C6D, 0x4F18, {0xA3, 0x71, 0x0E, 0x95, 0xD8, 0x46, 0xBC, 0x2F}};

/// How an instrument departs from what its hosts know, and what it tells beyond that, for shells that ask for
/// it: the instrument answers `QueryInterface` for it. Any thread but the streaming one, which may ask for
/// `GetChanges` between blocks; takes the lock.
///
/// It stands beside `IGrooveSampler` since the slots of that one are fixed. All options are off at first,
/// belong to the one instrument, and are in no project.
struct IMarnothOptions : IUnknown {
    /// Whether sound is steady from the next block on: the same notes give the same audio however time is cut
    /// into blocks, and what ends fades out over 20 ms wherever blocks end. `E_OUTOFMEMORY`, with nothing
    /// changed, or `S_OK`.
    virtual HRESULT SetSteady(std::uint32_t on) = 0;
    /// 1 or 0. `E_POINTER` for null.
    virtual HRESULT GetSteady(std::uint32_t* on) = 0;
    /// Whether the loads of audio files that begin from now on take the audio as far as it goes where a file
    /// ends before its audio does, or doesn't say how long that is, as files do that were written into a pipe
    /// or whose recording broke off. What is passed over is told by `IMarnothFaults::GetLoadDamage`.
    /// Otherwise what is missing is silence, up to a limit; beyond it, and where nothing is said, the file
    /// isn't loaded.
    virtual HRESULT SetLenientFiles(std::uint32_t on) = 0;
    /// 1 or 0. `E_POINTER` for null.
    virtual HRESULT GetLenientFiles(std::uint32_t* on) = 0;
    /// A number that grows with every change of what a project keeps, undo, loads and settings that are set
    /// to what they are already among them; playing, auditions and saves leave it. Where it is what it was at
    /// a save, that save has everything. `E_POINTER` for null.
    virtual HRESULT GetChanges(std::uint64_t* count) = 0;
    /// Whether outputs are sparse from the next block on: one that stays silent through a block delivers
    /// nothing, and a buffer is asked for when there is something to put into it. That is under the lock, so
    /// it is for hosts whose buffers keep nobody waiting. The end of a stream is told as ever. `S_OK`.
    virtual HRESULT SetSparse(std::uint32_t on) = 0;
    /// 1 or 0. `E_POINTER` for null.
    virtual HRESULT GetSparse(std::uint32_t* on) = 0;
};

}  // namespace marnoth
