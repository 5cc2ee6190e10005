#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/Com.h"
#include "platform/RiffStream.h"

namespace marnoth {

/// A run of frames of a file, one future grain.
struct WaveSegment {
    std::uint32_t start = 0;   ///< frames
    std::uint32_t length = 0;  ///< frames
    std::uint32_t unused = 0;  ///< has a place in the record and no meaning
};

/// A tag of the file: its chunk, what it says and the label to show it under.
struct WaveTag {
    MMCKINFO chunk{};
    std::string label;
    std::string value;
};

/// Reader of one RIFF/WAVE file: format, audio, `LIST`/`INFO` tags, and the loop description of the `acid` and `strc`
/// chunks, from which it builds the list of segments. Lives only during a load, on one thread.
///
/// It refuses only what it can't parse; what is acceptable for playback is the caller's business. Searches are bounded
/// by the RIFF chunk, reads by the file. However damaged the file, nothing is read outside a buffer, no more is
/// allocated than a small multiple of the file's size, and a refusal takes no noticeable time.
class CAcidWave {
public:
    CAcidWave();
    ~CAcidWave();
    CAcidWave(const CAcidWave&) = delete;
    CAcidWave& operator=(const CAcidWave&) = delete;

    /// Opens and parses a file. `path` is in the system code page, cut at 255 characters. 0 when the file can be read,
    /// with or without loop data, and stays open for `SeekFrame` and `ReadData`; `E_FAIL` otherwise, with the reason in
    /// `lastError` and the file closed.
    HRESULT Open(const char* path);

    /// Kind 2: `durationMs`. Kind 3: `frameCount`. Any other: 0.
    std::int64_t GetLength(std::uint32_t kind) const;

    /// Positions the reader at a frame of the first `data` chunk. `S_OK` or `E_FAIL`.
    HRESULT SeekFrame(std::uint32_t frame);

    /// Copies up to `bytes` from the `data` chunk, no more than what remains of it; gives how many were copied, 0 on
    /// any failure with `lastError` set.
    std::uint32_t ReadData(void* buffer, std::uint32_t bytes);

    std::int32_t GetSegmentCount() const;
    /// The segment at `index`; zeros when there is none.
    WaveSegment GetSegment(std::int32_t index) const;
};

}  // namespace marnoth
