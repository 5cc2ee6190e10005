#pragma once

#include <cstdint>

#include "dsp/Stretch.h"
#include "platform/com/Com.h"
#include "platform/com/RefPtr.h"
#include "project/GrainSettings.h"
#include "sample/WaveMem.h"
#include "seam/MusicalTime.h"

namespace marnoth {

/// A grain: a stretch of a sample, placed at a time on a track. It holds its place in 16.16 ticks, for
/// playback that follows the tempo, and in samples, for playback at the file's own speed.
///
/// A value: copies share sample and tail. Those that stand on a track are never changed; an edit puts another
/// in their place.
class CGrooveEvent : public GrainSettings {
public:
    /// All that a project keeps of the grain but its audio.
    const GrainSettings& settings() const { return *this; }

    /// `kind` is a `TimeKind`. Negative values are not written.
    std::int64_t GetStart(std::uint32_t kind) const { return read(startTicks, startSamples, kind); }
    void SetStart(std::int64_t value, std::uint32_t kind);
    /// In samples, the tail's length when `useTail` is set and the grain plays its tail.
    std::int64_t GetLength(std::uint32_t kind, std::uint32_t useTail) const {
        return read(lengthTicks, useTail && playsTail() ? tailLengthSamples : lengthSamples, kind);
    }
    void SetLength(std::int64_t value, std::uint32_t kind);
    std::int64_t GetEnd(std::uint32_t kind, std::uint32_t useTail) const;

    /// Shares `wave` and takes its format; the grain begins at frame `offset`, at most the wave's length.
    void AttachSample(RefPtr<CWaveMem> wave, std::int64_t offset);
    /// Renders the grain's own tail wave, into `silence` as `CWaveMem::CreateTail` has it. `E_FAIL` without a
    /// sample, `E_OUTOFMEMORY`, or `S_OK`; a grain of 0 frames has no tail.
    HRESULT BuildTail(Samples silence = nullptr);
    /// True when the render is to read the tail: the flag is set and there is one.
    bool playsTail() const { return tailOn && tailWave; }
    /// True for a grain that lasts as long at any tempo: it isn't cut on the beat, or plays its tail.
    bool keepsDuration() const { return !tempoLocked || playsTail(); }

    /// Renders `frames` frames from target frame `pos` of a grain that fills `targetFrames` (below 1: its own
    /// length), and adds them to the interleaved `dest` at `destFrame`. Only `nChannels` of `destFormat` is
    /// read. `padVolume` 0 to 2, `padPan` 0 to 1.
    /// Audio thread. Always 0.
    HRESULT Render(std::int64_t pos, std::int64_t destFrame, std::int32_t frames, std::int64_t targetFrames,
                   float* dest, const WAVEFORMATEX* destFormat, float padVolume, float padPan,
                   Ramps ramps = {}) const;
    /// The same transposed by `semitones`, with the length on the timeline unchanged.
    HRESULT RenderShifted(std::int64_t pos, std::int64_t destFrame, std::int32_t frames,
                          std::int64_t targetFrames, float* dest, const WAVEFORMATEX* destFormat,
                          float padVolume, float padPan, std::int32_t semitones, Ramps ramps = {}) const;

    RefPtr<CWaveMem> sample;
    RefPtr<CWaveMem> tailWave;  ///< may be null
    WAVEFORMATEX format{};      ///< of the sample, at the time it was attached
    std::uint32_t deleted = 0;  ///< goes with the next `PurgeAndSort`

private:
    static std::int64_t read(std::int64_t ticks16, std::int64_t samples, std::uint32_t kind) {
        switch (kind) {
            case kWholeTicks:
                return ticks16 >> 16;
            case kTicks16:
                return ticks16;
            case kSamples:
                return samples;
            default:
                return 0;
        }
    }
    StretchSource source() const;
};

}  // namespace marnoth
