#include "project/ProjectReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <string>

#include "platform/text/Text.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr std::size_t kGrainEntryBytes = 4 + kGrainRecordBytes;  ///< behind a running index
constexpr std::size_t kEntriesAtOnce = 64;
constexpr std::int64_t kFormatBytes = 16;  ///< a format without the count of its extra bytes

template <class T, std::size_t N>
T littleEndian(const std::array<std::byte, N>& bytes) {
    static_assert(sizeof(T) == N);
    std::uint64_t value = 0;
    for (std::size_t i = N; i-- > 0;) value = value << 8 | std::to_integer<std::uint64_t>(bytes[i]);
    return static_cast<T>(value);
}

/// A chunk that has been entered, read from front to back. Nothing is taken from behind its end.
class ChunkBody {
public:
    /// Finds the next chunk `ckid` in `parent`; false when there is none.
    bool find(RiffStream& stream, const ChunkInfo& parent, std::uint32_t ckid) {
        stream_ = &stream;
        chunk_.ckid = ckid;
        return stream.descend(chunk_, &parent, RiffFind::chunk) == kRiffOk;
    }
    bool leave() { return stream_->ascend(chunk_) == kRiffOk; }

    std::uint32_t bytes() const { return chunk_.cksize; }
    std::int64_t left() const { return chunk_.end() - stream_->position(); }
    bool take(void* to, std::int64_t count) { return count <= left() && stream_->readExactly(to, count); }

    template <class T>
    bool number(T& value) {
        std::array<std::byte, sizeof(T)> raw;
        if (!take(raw.data(), sizeof(T))) return false;
        value = littleEndian<T>(raw);
        return true;
    }
    /// A text behind its length in bytes.
    bool text(std::wstring& value) {
        std::uint32_t length;
        std::array<char, kLongestProjectText> raw;
        if (!number(length) || length > raw.size() || !take(raw.data(), length)) return false;
        value = wideFromStored({raw.data(), length});
        return true;
    }

private:
    RiffStream* stream_ = nullptr;
    ChunkInfo chunk_;
};

bool isAcceptable(const KeyMapRecord& keys) {
    return keys.pad >= 0 && keys.pad < kPads && keys.lowKey >= 0 && keys.highKey <= kHighestKey &&
           keys.lowVelocity >= 0 && keys.highVelocity <= kHighestVelocity;
}

bool isAcceptable(const TrackRecord& settings) {
    return settings.midiChannel >= -1 && settings.midiChannel < kMidiChannels &&
           settings.lengthSamples >= 0 && settings.lengthSamples <= kLongestProjectTrack &&
           std::isfinite(settings.volume) && std::isfinite(settings.pan);
}

/// A grain of a file may come from none.
bool isAcceptable(const GrainRecord& grain, std::int32_t lowestFile) {
    return grain.binFile >= lowestFile && grain.binFile < kBinFiles && std::isfinite(grain.pitchRatio) &&
           std::isfinite(grain.volume) && std::isfinite(grain.pan);
}

/// 32-bit float, which is what projects hold whatever else a format chunk says.
WAVEFORMATEX floatFormat(std::uint16_t channels, std::uint32_t rate) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    format.wBitsPerSample = 32;
    format.nBlockAlign = static_cast<WORD>(channels * sizeof(float));
    format.nAvgBytesPerSec = format.nBlockAlign * rate;
    return format;
}

/// The frames of a wave that takes `chunkBytes` with its guard frame, for a track of `trackFrames`. The
/// storage of a wave may be rounded up, and its track may end before it does. -1 for less than the track.
std::int64_t framesInChunk(std::int64_t chunkBytes, std::int64_t trackFrames, std::int64_t channels) {
    const std::int64_t frameBytes = channels * static_cast<std::int64_t>(sizeof(float));
    const std::int64_t rounded = ((trackFrames + 1) * channels + 3) / 4 * 4;
    if (chunkBytes < trackFrames * frameBytes) return -1;
    const bool isTheTrack = chunkBytes <= rounded * static_cast<std::int64_t>(sizeof(float));
    return isTheTrack ? trackFrames : chunkBytes / frameBytes - 1;
}

/// True when `bytes` are really there. Streams of hosts may say any size or none: for more than a little the
/// last byte is tried before storage is taken for them.
bool holds(RiffStream& stream, std::int64_t bytes) {
    constexpr std::int64_t kLittle = 0x10000;
    if (const auto left = stream.remaining(); left && *left < bytes) return false;
    if (bytes <= kLittle) return true;
    const std::int64_t start = stream.position();
    char last;
    return stream.seek(start + bytes - 1) == kRiffOk && stream.readExactly(&last, 1) &&
           stream.seek(start) == kRiffOk;
}

class ProjectReading {
public:
    ProjectReading(RiffStream& stream, Project& project) : stream_(stream), project_(project) {}

    HRESULT read();

private:
    bool enterForm();
    bool readHeader();
    bool readKeys();
    HRESULT readFile(ProjectFile& file);
    bool readFileSettings(ProjectFile& file);
    HRESULT readWave(ProjectFile& file);
    bool readFormat(const ChunkInfo& form, WAVEFORMATEX& format);
    HRESULT readAudio(const ChunkInfo& form, const WAVEFORMATEX& format, ProjectFile& file);
    bool readPad(ProjectPad& pad);
    bool readSettings(ChunkBody& chunk, TrackRecord& settings);
    bool readGrains(std::uint32_t ckid, std::int32_t lowestFile, std::vector<GrainRecord>& grains);

    RiffStream& stream_;
    Project& project_;
    ChunkInfo form_;
    std::int32_t files_ = 0;
};

HRESULT ProjectReading::read() {
    if (!enterForm() || !readHeader() || !readKeys()) return E_FAIL;
    for (std::int32_t i = 0; i < files_; ++i) {
        if (const HRESULT result = readFile(project_.files.emplace_back()); FAILED(result)) return result;
    }
    for (ProjectPad& pad : project_.pads) {
        if (!readPad(pad)) return E_FAIL;
    }
    return stream_.ascend(form_) == kRiffOk ? S_OK : E_FAIL;
}

bool ProjectReading::enterForm() {
    form_.fccType = fourCC("marn");
    return stream_.descend(form_, nullptr, RiffFind::riff) == kRiffOk;
}

bool ProjectReading::readHeader() {
    ChunkBody chunk;
    std::uint32_t version;
    std::int32_t pads;
    if (!chunk.find(stream_, form_, fourCC("comn")) || !chunk.number(version)) return false;
    return chunk.number(project_.auditionEnabled) && chunk.number(files_) && chunk.number(pads) &&
           chunk.leave() && version == kProjectVersion && files_ >= 0 && files_ <= kBinFiles && pads == kPads;
}

bool ProjectReading::readKeys() {
    ChunkBody chunk;
    std::uint32_t count;
    if (!chunk.find(stream_, form_, fourCC("keym")) || !chunk.number(count) || count > kPads) return false;
    for (; count > 0; --count) {
        std::array<std::byte, kKeyRecordBytes> raw;
        if (!chunk.take(raw.data(), raw.size())) return false;
        if (!isAcceptable(project_.keys.emplace_back(decodeKeys(raw)))) return false;
    }
    return chunk.leave();
}

HRESULT ProjectReading::readFile(ProjectFile& file) {
    if (!readFileSettings(file)) return E_FAIL;
    if (const HRESULT result = readWave(file); FAILED(result)) return result;
    constexpr std::int32_t kAnyFile = std::numeric_limits<std::int32_t>::min();
    return readGrains(fourCC("lbte"), kAnyFile, file.grains) ? S_OK : E_FAIL;
}

bool ProjectReading::readFileSettings(ProjectFile& file) {
    ChunkBody chunk;
    std::int32_t index;
    return chunk.find(stream_, form_, fourCC("lbtr")) && chunk.number(index) && index >= 0 &&
           index < kBinFiles && readSettings(chunk, file.settings) && chunk.text(file.name) &&
           chunk.text(file.path) && chunk.leave();
}

bool ProjectReading::readSettings(ChunkBody& chunk, TrackRecord& settings) {
    std::array<std::byte, kTrackRecordBytes> raw;
    if (!chunk.take(raw.data(), raw.size())) return false;
    settings = decodeTrack(raw);
    return isAcceptable(settings);
}

HRESULT ProjectReading::readWave(ProjectFile& file) {
    ChunkInfo form;
    form.fccType = fourCC("WAVE");
    if (stream_.descend(form, &form_, RiffFind::riff)) return E_FAIL;
    WAVEFORMATEX format;
    if (!readFormat(form, format)) return E_FAIL;
    if (const HRESULT result = readAudio(form, format, file); FAILED(result)) return result;
    return stream_.ascend(form) == kRiffOk ? S_OK : E_FAIL;
}

bool ProjectReading::readFormat(const ChunkInfo& form, WAVEFORMATEX& format) {
    ChunkBody chunk;
    std::uint16_t tag;
    std::uint16_t channels;
    std::uint32_t rate;
    if (!chunk.find(stream_, form, fourCC("fmt ")) || chunk.bytes() < kFormatBytes) return false;
    if (!chunk.number(tag) || !chunk.number(channels) || !chunk.number(rate)) return false;
    format = floatFormat(channels, rate);
    return (channels == 1 || channels == 2) && rate >= kLowestProjectRate && rate <= kHighestProjectRate &&
           chunk.leave();
}

HRESULT ProjectReading::readAudio(const ChunkInfo& form, const WAVEFORMATEX& format, ProjectFile& file) {
    ChunkBody chunk;
    if (!chunk.find(stream_, form, fourCC("data"))) return E_FAIL;
    const std::int64_t frames = framesInChunk(chunk.bytes(), file.settings.lengthSamples, format.nChannels);
    const std::int64_t bytes = frames * format.nBlockAlign;
    if (frames < 0 || !holds(stream_, bytes)) return E_FAIL;
    file.wave = CWaveMem::make();
    if (FAILED(file.wave->Create(frames, format))) return E_OUTOFMEMORY;
    if (!chunk.take(file.wave->samples.get(), bytes)) return E_FAIL;
    file.wave->writeGuardFrame();
    return chunk.leave() ? S_OK : E_FAIL;
}

bool ProjectReading::readPad(ProjectPad& pad) {
    ChunkBody chunk;
    std::uint32_t index;
    return chunk.find(stream_, form_, fourCC("pdtr")) && chunk.number(index) &&
           readSettings(chunk, pad.settings) && chunk.leave() && readGrains(fourCC("pevt"), 0, pad.grains);
}

bool ProjectReading::readGrains(std::uint32_t ckid, std::int32_t lowestFile,
                                std::vector<GrainRecord>& grains) {
    ChunkBody chunk;
    std::uint32_t index;
    std::int32_t count;
    if (!chunk.find(stream_, form_, ckid) || !chunk.number(index) || !chunk.number(count)) return false;
    if (count < 0 || std::int64_t{count} * static_cast<std::int64_t>(kGrainEntryBytes) > chunk.left()) {
        return false;
    }
    std::array<std::array<std::byte, kGrainEntryBytes>, kEntriesAtOnce> entries;
    for (auto left = static_cast<std::size_t>(count); left > 0;) {
        const std::size_t now = std::min(left, kEntriesAtOnce);
        if (!chunk.take(entries.data(), static_cast<std::int64_t>(now * kGrainEntryBytes))) return false;
        left -= now;
        for (std::size_t i = 0; i < now; ++i) {
            std::array<std::byte, kGrainRecordBytes> raw;
            std::copy(entries[i].begin() + 4, entries[i].end(), raw.begin());
            if (!isAcceptable(grains.emplace_back(decodeGrain(raw)), lowestFile)) return false;
        }
    }
    return chunk.leave();
}

}  // namespace

HRESULT readProject(RiffStream& stream, Project& project) {
    try {
        return ProjectReading(stream, project).read();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace marnoth
