#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/bytes/RiffStream.h"
#include "platform/com/Com.h"
#include "sample/AcidNames.h"
#include "seam/LoadFault.h"

namespace marnoth {

/// Kinds of `CAcidWave::GetLength`.
inline constexpr std::uint32_t kLengthInMilliseconds = 2;
inline constexpr std::uint32_t kLengthInFrames = 3;

/// A run of frames of a file, one future grain. As the file says it: it needn't lie inside the audio.
struct WaveSegment {
    std::uint32_t start = 0;   ///< frames
    std::uint32_t length = 0;  ///< frames
    std::uint32_t unused = 0;  ///< has a place in the record and no meaning
};

/// A tag of the file: its chunk, the label to show it under and what it says.
struct WaveTag {
    ChunkInfo chunk{};
    std::string label;
    std::string value;
};

/// Reader of one RIFF/WAVE file: format, audio, `LIST`/`INFO` tags, and the loop description of the `acid`
/// and `strc` chunks, from which it builds the list of segments. Lives only during a load, on one thread.
///
/// It refuses only what it can't parse; what is acceptable for playback is the caller's business. Searches
/// are bounded by the RIFF chunk, reads by the file. In a damaged file too nothing is read outside a
/// buffer, no more is allocated than a small multiple of the file's size, and a refusal takes no noticeable
/// time.
class CAcidWave {
public:
    static constexpr std::uint32_t kEndTag = fourCC("    ");  ///< `ckid` of the record behind the last tag
    static constexpr int kMaxTags = 23;                       ///< sub-chunks of the list that are looked at
    static constexpr std::uint32_t kMaxDivisions = 4096;      ///< of a loop without markers
    /// Eight thousand in each second of the longest loop that can be played; a file of more is refused, so
    /// that a list of markers as long as a disk doesn't take its time before the loop is refused.
    static constexpr std::uint32_t kMaxMarkers = 1u << 20;
    /// What is kept of a longer tag.
    static constexpr std::int64_t kMaxTagBytes = 1 << 24;

    CAcidWave() = default;
    ~CAcidWave() = default;
    CAcidWave(const CAcidWave&) = delete;
    CAcidWave& operator=(const CAcidWave&) = delete;

    /// Whether `Open` takes audio that is cut short, or of unknown length, as far as the file holds it.
    bool lenient = false;

    /// Opens and parses a file. `path` is in the system code page (UTF-8 where there is none), cut at 255
    /// characters. 0 when the file can be read, with or without loop data, and stays open for `SeekFrame` and
    /// `ReadData`; `E_FAIL` otherwise, with the reason in `fault` and `lastError` and the file closed.
    HRESULT Open(const char* path);

    /// `durationMs` or `frameCount`; of any kind but these two 0.
    std::int64_t GetLength(std::uint32_t kind) const;

    /// Positions the reader at a frame behind the beginning of the first `data` chunk. `S_OK` or `E_FAIL`.
    /// What `ReadData` may copy is then the size of the whole chunk, whatever the frame.
    HRESULT SeekFrame(std::uint32_t frame);

    /// Copies up to `bytes` from the `data` chunk, no more than what remains of it; gives how many were
    /// copied. When the file ends first, `buffer` holds what was there, the result is 0 and `lastError` 261.
    std::uint32_t ReadData(void* buffer, std::uint32_t bytes);

    /// Bytes of the audio, as it is taken, that lie behind the end of the file; 0 when all of it is there.
    std::int64_t missingBytes() const { return std::max<std::int64_t>(data_.end() - fileBytes, 0); }

    std::int32_t GetSegmentCount() const { return static_cast<std::int32_t>(segments.size()); }
    /// The segment at `index`; zeros when there is none.
    WaveSegment GetSegment(std::int32_t index) const;

    std::array<WaveTag, 100> tags{};
    std::wstring pathName;
    std::uint32_t hasFormat = 0;
    std::uint32_t hasAcid = 0;
    std::uint32_t hasStretch = 0;
    std::uint32_t durationMs = 0;  ///< by the average byte rate; 0xFFFFFFFF when that gives no number
    float durationSeconds = 0;
    std::uint32_t readPosition = 0;  ///< bytes into the `data` chunk
    std::uint32_t frameCount = 0;  ///< by the chunk's size, of which the file may hold less unless `lenient`
    std::uint32_t isLoop = 0;      ///< 0 for a one-shot
    std::uint32_t rootNoteSet = 0;
    std::int32_t rootNote = 0;  ///< 0 to 11 counted from A; a negative note leaves a negative remainder
    std::uint32_t stretchOn = 0;
    std::uint32_t diskBased = 0;
    std::uint32_t beats = 0;
    float tempo = 0;  ///< beats per minute
    std::uint32_t stretchField16 = 0;
    std::uint32_t divisionExponent = 4;  ///< index into `kDivisionNames`, from any file any number
    std::uint32_t stretchField20 = 0;
    std::uint32_t stretchMarkerCount = 0;
    std::vector<WaveSegment> segments;
    WAVEFORMATEX format{};        ///< `cbSize` is always 0
    std::uint16_t sampleTag = 0;  ///< what the samples are: the sub-format's tag of an extensible format
    std::uint32_t lastError = 0;  ///< a `RiffError`
    LoadFault fault;              ///< why `Open` failed
    LoadFault damage;             ///< what a lenient `Open` passed over
    std::int64_t dataBytes = 0;   ///< size of the measured `data` chunk, as its header says or as it is taken
    std::int64_t fileBytes = 0;   ///< size of the file

private:
    void forget();
    // These give false, with what it was in `lastError` and `fault`.
    bool fail(std::uint32_t error, const LoadFault& why);
    bool lacks(const char (&id)[5]);
    bool endsEarly(const ChunkInfo& chunk, std::int64_t missing);

    /// False when the medium fails.
    bool leave(ChunkInfo& chunk);
    HRESULT failWith(std::uint32_t error);
    bool find(const char (&id)[5], ChunkInfo& chunk);

    bool openForm(const char* path);
    LoadFault whyNotAWave();
    bool readFormat();
    void readSubFormat(const ChunkInfo& chunk);
    bool findData();
    void takeWhatIsThere();
    bool measureData();
    bool readTags();
    bool readTag(WaveTag& tag, const ChunkInfo& list);
    std::string readText(const ChunkInfo& chunk);
    bool readLoop();
    bool readAcid();
    bool readStretch();
    bool readMarkers(const ChunkInfo& chunk);
    void addSegment(std::uint32_t start);
    void endLastSegment(std::uint32_t end);
    void divideEvenly();

    RiffStream file_;
    ChunkInfo riff_;
    ChunkInfo data_;
    ChunkInfo acid_;
    std::uint32_t unread_ = 0;  ///< bytes of `data` that `ReadData` may still copy
};

}  // namespace marnoth
