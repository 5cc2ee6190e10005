#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "dsp/SourceWave.h"
#include "platform/com/Com.h"
#include "platform/com/RefPtr.h"
#include "sample/Samples.h"

namespace marnoth {

/// One block of audio in memory: interleaved 32-bit float frames at the engine's rate, mono or stereo, with a
/// guard frame behind the last. Shared by a count between the Loop Bin's file and all grains cut from it; a
/// tail wave belongs to one grain and its copies.
///
/// Written on the thread that loads a file, before anybody else can see it; read-only from then on.
class CWaveMem {
public:
    /// Points of the peak table that the editor draws from; the scale of a grain's `peakOffset` and
    /// `peakCount`.
    static constexpr std::int32_t kPeakPoints = 544;
    /// More frames than any file or grain has.
    static constexpr std::int64_t kFrameLimit = std::int64_t{1} << 30;
    /// How far `Resample` lets a wave grow: to the longest loop in stereo at 192000 Hz, or by this factor.
    /// Beyond both there are only files that were made to exhaust the memory.
    static constexpr double kResampleLimit = 128.0 * 192000 * 2;
    static constexpr double kMostGrowth = 64;

    CWaveMem() = default;
    virtual ~CWaveMem() = default;
    CWaveMem(const CWaveMem&) = delete;
    CWaveMem& operator=(const CWaveMem&) = delete;

    /// A new, empty wave with one owner.
    static RefPtr<CWaveMem> make();

    std::uint32_t AddRef() { return ++refCount; }
    /// Deletes the wave when the last owner lets go.
    std::uint32_t Release();

    /// Takes the format, and storage for `frameCount` frames with unspecified contents and a silent guard
    /// frame. The storage is a multiple of four values; what is over is silent too.
    /// `E_OUTOFMEMORY`, with no samples held, or `S_OK`.
    HRESULT Create(std::int64_t frameCount, const WAVEFORMATEX& newFormat);

    /// The same for a source of `sourceFrames` frames that is brought to `rate` while it comes in: frames,
    /// storage and `rateRatio` are those that `Resample` would leave, the format is the source's still.
    HRESULT createForRate(std::int64_t sourceFrames, const WAVEFORMATEX& sourceFormat, std::uint32_t rate);

    /// Repeats the last frame behind it. Of more than two channels only the first.
    void writeGuardFrame();

    /// Converts to `newFormat.nSamplesPerSec` by a four-point quadratic and keeps the ratio in `rateRatio`.
    /// An equal rate changes nothing. `E_FAIL` without samples; `E_OUTOFMEMORY` leaves the wave without
    /// samples.
    HRESULT Resample(const WAVEFORMATEX& newFormat);

    /// Makes a peak table of `points` entries that are all 0. `E_OUTOFMEMORY` or `S_OK`.
    HRESULT PreparePeaks(std::int32_t points);

    /// Fills the peak table with `points` entries when `mode` is 0, else only drops the count of points.
    /// Entries that no frame reaches are 0. `E_OUTOFMEMORY` or `S_OK`.
    HRESULT BuildPeaks(std::int32_t mode, std::int32_t points);

    /// Makes this the tail wave of the grain of `length` frames at `firstFrame` of `source`: twice as long,
    /// the grain repeated in passes that fall to 0.15 over each grain length. `E_FAIL`, with nothing changed,
    /// for a grain without frames or a source without samples; `E_OUTOFMEMORY` or `S_OK`. `silence` is
    /// `tailValues` zeros to put it in; null for storage of its own.
    HRESULT CreateTail(const CWaveMem& source, std::int64_t firstFrame, std::int64_t length,
                       Samples silence = nullptr);
    /// Values of the tail of a grain of `length` frames, with its guard frame.
    static std::int64_t tailValues(std::int32_t channels, std::int64_t length) {
        return channels * (2 * length + 1);
    }

    SourceWave view() const { return {samples.get(), frames, format.nChannels}; }

    WAVEFORMATEX format{};
    Samples samples;  ///< (frames + 1) * channels values at least
    /// Per point the minimum and maximum of the left channel, then of the right one; may be null.
    std::unique_ptr<float[]> peaks;
    /// Atomic, since what a save holds and what a load has replaced is let go outside the engine's lock,
    /// while blocks copy grains of the same wave under it.
    std::atomic<std::uint32_t> refCount = 1;
    std::int64_t frames = 0;        ///< guard frame not counted
    std::int64_t tailFrames = 0;    ///< tail waves only: twice the grain's length
    double tailDecay = 0;           ///< tail waves only: gain factor per frame
    std::int32_t peakPoints = 0;    ///< 0 when there is no table
    std::int32_t peakCapacity = 0;  ///< values in `peaks`, which has one spare entry behind them
    std::uint64_t byteSize = 0;     ///< bytes of `samples`
    double rateRatio = 1.0;         ///< new rate / the file's rate

private:
    HRESULT allocateForRate(std::int64_t sourceFrames, std::uint32_t rate);
};

}  // namespace marnoth
