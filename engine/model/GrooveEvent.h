#pragma once

#include <cstdint>

#include "dsp/Stretch.h"
#include "platform/com/Com.h"
#include "platform/com/RefPtr.h"
#include "sample/WaveMem.h"
#include "seam/MusicalTime.h"

namespace marnoth {

struct GrainRecord;

/// A grain: a stretch of a sample, placed at a time on a track. It holds its place in 16.16 ticks, for
/// playback that follows the tempo, and in samples, for playback at the file's own speed.
///
/// Copies share sample and tail and copy everything else. No lock of its own: under the engine's lock, or on
/// a track that nobody else can see yet.
class CGrooveEvent {
public:
    CGrooveEvent() = default;
    CGrooveEvent(const CGrooveEvent&) = default;
    CGrooveEvent& operator=(const CGrooveEvent&) = delete;
    virtual ~CGrooveEvent() = default;

    /// `kind` is a `TimeKind`. Negative values are not written.
    std::int64_t GetStart(std::uint32_t kind) const;
    void SetStart(std::int64_t value, std::uint32_t kind);
    /// In samples, the tail's length when `useTail` is set and the grain plays its tail.
    std::int64_t GetLength(std::uint32_t kind, std::uint32_t useTail) const;
    void SetLength(std::int64_t value, std::uint32_t kind);
    std::int64_t GetEnd(std::uint32_t kind, std::uint32_t useTail) const;

    /// Shares `wave` and takes its format; the grain begins at frame `offset`, at most the wave's length.
    void AttachSample(RefPtr<CWaveMem> wave, std::int64_t offset);
    /// Renders the grain's own tail wave. `E_FAIL` without a sample, `E_OUTOFMEMORY`, or `S_OK`; a grain of 0
    /// frames has no tail.
    HRESULT BuildTail();
    /// True when the render is to read the tail: the flag is set and there is one.
    bool playsTail() const { return tailOn && tailWave; }

    /// Renders `frames` frames from target frame `pos` of a grain that fills `targetFrames` (below 1: its own
    /// length), and adds them to the interleaved `dest` at `destFrame`. Only `nChannels` of `destFormat` is
    /// read. `padVolume` 0 to 2, `padPan` 0 to 1. Audio thread. Always 0.
    HRESULT Render(std::int64_t pos, std::int64_t destFrame, std::int32_t frames, std::int64_t targetFrames,
                   float* dest, const WAVEFORMATEX* destFormat, float padVolume, float padPan) const;
    /// The same transposed by `semitones`, with the length on the timeline unchanged.
    HRESULT RenderShifted(std::int64_t pos, std::int64_t destFrame, std::int32_t frames,
                          std::int64_t targetFrames, float* dest, const WAVEFORMATEX* destFormat,
                          float padVolume, float padPan, std::int32_t semitones) const;

    /// Takes a saved grain's values as they are; sample and tail stay. Negative times are not taken.
    void FromRecord(const GrainRecord& record);
    /// What a project file keeps of the grain.
    GrainRecord ToRecord() const;

    RefPtr<CWaveMem> sample;
    std::int64_t sampleOffset = 0;  ///< first frame of the grain in the sample
    RefPtr<CWaveMem> tailWave;      ///< may be null
    std::uint32_t peakOffset = 0;   ///< first entry in the sample's peak table
    std::uint32_t peakCount = 0;
    std::int64_t startTicks = 0;  ///< 16.16 ticks
    std::int64_t startSamples = 0;
    std::int64_t lengthTicks = 0;  ///< 16.16 ticks
    std::int64_t lengthSamples = 0;
    std::int64_t tailLengthSamples = 0;
    std::uint32_t tempoLocked = 0;  ///< cut on the file's beat grid: stretches with the tempo
    double pitchRatio = 1.0;        ///< extra playback ratio of the transposed render
    std::int32_t transpose = 0;     ///< semitones
    double volume = 1.0;
    double pan = 0.5;            ///< 0 left to 1 right
    WAVEFORMATEX format{};       ///< of the sample, at the time it was attached
    std::int32_t binFile = -1;   ///< Loop Bin file it came from
    std::int32_t binGrain = -1;  ///< its index in that file
    std::uint32_t tailOn = 0;    ///< the render reads the tail instead of the sample
    std::uint32_t deleted = 0;   ///< goes with the next `PurgeAndSort`

private:
    StretchSource source() const;
};

}  // namespace marnoth
