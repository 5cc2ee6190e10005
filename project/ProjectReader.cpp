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
constexpr std::int64_t kShortestFormatBytes = 16;  ///< a format without the count of its extra bytes

// Where a value has a limit on one side alone.
constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

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

private:
    RiffStream* stream_ = nullptr;
    ChunkInfo chunk_;
};

/// 32-bit float, which is what projects hold whatever else a format chunk says.
WAVEFORMATEX floatFormat(std::uint16_t channels, std::uint32_t rate, std::uint32_t bytesPerSecond) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    format.wBitsPerSample = 32;
    format.nBlockAlign = static_cast<WORD>(channels * sizeof(float));
    // Kept as it stands: a wave that was brought to another rate goes on telling the one of its file.
    format.nAvgBytesPerSec = bytesPerSecond;
    return format;
}

/// The frames of a wave that takes `chunkBytes` with its guard frame, for a track of `trackFrames`. The
/// storage of a wave may be rounded up, and its track, which the chunk holds, may end before it does.
std::int64_t framesInChunk(std::int64_t chunkBytes, std::int64_t trackFrames, std::int64_t channels) {
    const std::int64_t frameBytes = channels * static_cast<std::int64_t>(sizeof(float));
    const std::int64_t rounded = ((trackFrames + 1) * channels + 3) / 4 * 4;
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

/// The reading itself. Its steps give false when the project isn't to be taken; `fault_` then holds why, or
/// nothing, for a chunk that doesn't hold what it must.
class ProjectReading {
public:
    ProjectReading(RiffStream& stream, Project& project) : stream_(stream), project_(project) {}

    LoadFault read();

private:
    bool readForm();
    bool enterForm();
    bool readHeader();
    bool readKeys();
    bool readFile(std::int32_t number, ProjectFile& file);
    bool readFileSettings(ProjectFile& file);
    bool readWave(ProjectFile& file);
    bool readFormat(const ChunkInfo& form, WAVEFORMATEX& format);
    bool readAudio(const ChunkInfo& form, const WAVEFORMATEX& format, ProjectFile& file);
    bool readPad(std::int32_t number, ProjectPad& pad);
    bool readSettings(ChunkBody& chunk, TrackSettings& settings);
    bool readGrains(std::uint32_t ckid, std::int32_t lowestFile, std::vector<GrainSettings>& grains);

    bool enter(ChunkBody& chunk, const ChunkInfo& parent, std::uint32_t ckid);
    bool leave(ChunkBody& chunk) { return chunk.leave() || refuse({.kind = FaultKind::cannotRead}); }
    bool takeText(ChunkBody& chunk, std::wstring& text);

    bool isAcceptable(const KeyMapRecord& keys);
    bool isAcceptable(const TrackSettings& settings);
    bool isAcceptable(const GrainSettings& grain, std::int32_t lowestFile);
    bool isWithin(FaultQuantity quantity, std::int64_t value, std::int64_t least, std::int64_t most);
    bool isNumber(FaultQuantity quantity, double value);

    bool refuse(LoadFault fault);
    std::int64_t missingBytes();

    RiffStream& stream_;
    Project& project_;
    ChunkInfo form_;
    std::int32_t files_ = 0;
    FaultPlace place_;  ///< what is being read
    LoadFault fault_;
};

LoadFault ProjectReading::read() {
    if (readForm()) return {};
    if (fault_ && fault_.kind != FaultKind::chunkMissing) return fault_;
    // A form that ends too early lacks chunks, or parts of them, for that reason.
    if (const std::int64_t missing = missingBytes(); missing > 0)
        return {.kind = FaultKind::cutShort, .place = place_, .value = missing};
    return fault_ ? fault_ : LoadFault{.kind = FaultKind::chunkDamaged, .place = place_};
}

/// What the form claims beyond what there is; 0 where the medium doesn't tell.
std::int64_t ProjectReading::missingBytes() {
    const auto left = stream_.remaining();
    return left ? form_.end() - (stream_.position() + *left) : 0;
}

bool ProjectReading::refuse(LoadFault fault) {
    fault.place = place_;
    fault_ = fault;
    return false;
}

bool ProjectReading::isWithin(FaultQuantity quantity, std::int64_t value, std::int64_t least,
                              std::int64_t most) {
    return (value >= least && value <= most) || refuse(badValue(quantity, value, least, most));
}

bool ProjectReading::isNumber(FaultQuantity quantity, double value) {
    constexpr double kMost = std::numeric_limits<double>::max();
    return std::isfinite(value) || refuse(badReal(quantity, value, -kMost, kMost));
}

bool ProjectReading::isAcceptable(const KeyMapRecord& keys) {
    return isWithin(FaultQuantity::pad, keys.pad, 0, kPads - 1) &&
           isWithin(FaultQuantity::lowKey, keys.lowKey, 0, kHighest) &&
           isWithin(FaultQuantity::highKey, keys.highKey, kLowest, kHighestKey) &&
           isWithin(FaultQuantity::lowVelocity, keys.lowVelocity, 0, kHighest) &&
           isWithin(FaultQuantity::highVelocity, keys.highVelocity, kLowest, kHighestVelocity);
}

bool ProjectReading::isAcceptable(const TrackSettings& settings) {
    return isWithin(FaultQuantity::midiChannel, settings.midiChannel, -1, kMidiChannels - 1) &&
           isWithin(FaultQuantity::loopFrames, settings.lengthSamples, 0, kLongestProjectTrack) &&
           isNumber(FaultQuantity::volume, settings.volume) && isNumber(FaultQuantity::pan, settings.pan);
}

/// A grain of a file may come from none.
bool ProjectReading::isAcceptable(const GrainSettings& grain, std::int32_t lowestFile) {
    return isWithin(FaultQuantity::binFile, grain.binFile, lowestFile, kBinFiles - 1) &&
           isNumber(FaultQuantity::pitch, grain.pitchRatio) &&
           isNumber(FaultQuantity::volume, grain.volume) && isNumber(FaultQuantity::pan, grain.pan);
}

bool ProjectReading::enter(ChunkBody& chunk, const ChunkInfo& parent, std::uint32_t ckid) {
    place_.chunk = ckid;
    place_.record = -1;
    return chunk.find(stream_, parent, ckid) || refuse({.kind = FaultKind::chunkMissing});
}

bool ProjectReading::readForm() {
    if (!enterForm() || !readHeader() || !readKeys()) return false;
    for (std::int32_t i = 0; i < files_; ++i) {
        if (!readFile(i, project_.files.emplace_back())) return false;
    }
    for (std::int32_t i = 0; i < kPads; ++i) {
        if (!readPad(i, project_.pads[static_cast<std::size_t>(i)])) return false;
    }
    return stream_.ascend(form_) == kRiffOk || refuse({.kind = FaultKind::cannotRead});
}

bool ProjectReading::enterForm() {
    form_.fccType = fourCC("marn");
    if (stream_.descend(form_, nullptr, RiffFind::riff)) return refuse({.kind = FaultKind::notAProject});
    return form_.cksize != 0 || refuse({.kind = FaultKind::neverFinished});
}

bool ProjectReading::readHeader() {
    ChunkBody chunk;
    std::uint32_t version;
    std::int32_t pads;
    if (!enter(chunk, form_, fourCC("comn")) || !chunk.number(version)) return false;
    return chunk.number(project_.auditionEnabled) && chunk.number(files_) && chunk.number(pads) &&
           leave(chunk) && isWithin(FaultQuantity::version, version, kProjectVersion, kProjectVersion) &&
           isWithin(FaultQuantity::files, files_, 0, kBinFiles) &&
           isWithin(FaultQuantity::pads, pads, kPads, kPads);
}

bool ProjectReading::readKeys() {
    ChunkBody chunk;
    std::uint32_t count;
    if (!enter(chunk, form_, fourCC("keym")) || !chunk.number(count)) return false;
    if (!isWithin(FaultQuantity::keyRecords, count, 0, kPads)) return false;
    for (place_.record = 0; place_.record < static_cast<std::int32_t>(count); ++place_.record) {
        std::array<std::byte, kKeyRecordBytes> raw;
        if (!chunk.take(raw.data(), raw.size())) return false;
        if (!isAcceptable(project_.keys.emplace_back(decodeKeys(raw)))) return false;
    }
    return leave(chunk);
}

bool ProjectReading::readFile(std::int32_t number, ProjectFile& file) {
    constexpr std::int32_t kAnyFile = std::numeric_limits<std::int32_t>::min();
    place_.owner = number;
    return readFileSettings(file) && readWave(file) && readGrains(fourCC("lbte"), kAnyFile, file.grains);
}

bool ProjectReading::readFileSettings(ProjectFile& file) {
    ChunkBody chunk;
    std::int32_t index;
    return enter(chunk, form_, fourCC("lbtr")) && chunk.number(index) &&
           isWithin(FaultQuantity::fileIndex, index, 0, kBinFiles - 1) &&
           readSettings(chunk, file.settings) && takeText(chunk, file.name) && takeText(chunk, file.path) &&
           leave(chunk);
}

bool ProjectReading::readSettings(ChunkBody& chunk, TrackSettings& settings) {
    std::array<std::byte, kTrackRecordBytes> raw;
    if (!chunk.take(raw.data(), raw.size())) return false;
    settings = decodeTrack(raw);
    return isAcceptable(settings);
}

/// A text behind its length in bytes.
bool ProjectReading::takeText(ChunkBody& chunk, std::wstring& text) {
    std::uint32_t length;
    std::array<char, kLongestProjectText> raw;
    if (!chunk.number(length) || !isWithin(FaultQuantity::textBytes, length, 0, kLongestProjectText) ||
        !chunk.take(raw.data(), length)) {
        return false;
    }
    text = wideFromStored({raw.data(), length});
    return true;
}

bool ProjectReading::readWave(ProjectFile& file) {
    ChunkInfo form;
    form.fccType = fourCC("WAVE");
    place_.chunk = kRiffId;
    if (stream_.descend(form, &form_, RiffFind::riff)) return refuse({.kind = FaultKind::chunkMissing});
    WAVEFORMATEX format;
    if (!readFormat(form, format) || !readAudio(form, format, file)) return false;
    return stream_.ascend(form) == kRiffOk || refuse({.kind = FaultKind::cannotRead});
}

bool ProjectReading::readFormat(const ChunkInfo& form, WAVEFORMATEX& format) {
    ChunkBody chunk;
    std::uint16_t tag;
    std::uint16_t channels;
    std::uint32_t rate;
    std::uint32_t bytesPerSecond;
    if (!enter(chunk, form, fourCC("fmt ")) || chunk.bytes() < kShortestFormatBytes) return false;
    if (!chunk.number(tag) || !chunk.number(channels) || !chunk.number(rate) || !chunk.number(bytesPerSecond))
        return false;
    format = floatFormat(channels, rate, bytesPerSecond);
    return isWithin(FaultQuantity::channels, channels, 1, 2) &&
           isWithin(FaultQuantity::rate, rate, kLowestProjectRate, kHighestProjectRate) && leave(chunk);
}

bool ProjectReading::readAudio(const ChunkInfo& form, const WAVEFORMATEX& format, ProjectFile& file) {
    ChunkBody chunk;
    if (!enter(chunk, form, fourCC("data"))) return false;
    const std::int64_t trackFrames = file.settings.lengthSamples;
    if (!isWithin(FaultQuantity::loopFrames, trackFrames, 0, chunk.bytes() / format.nBlockAlign))
        return false;
    const std::int64_t frames = framesInChunk(chunk.bytes(), trackFrames, format.nChannels);
    const std::int64_t bytes = frames * format.nBlockAlign;
    if (!holds(stream_, bytes)) return false;
    file.wave = CWaveMem::make();
    if (FAILED(file.wave->Create(frames, format))) return refuse({.kind = FaultKind::noMemory});
    if (!chunk.take(file.wave->samples.get(), bytes)) return false;
    file.wave->writeGuardFrame();
    return leave(chunk);
}

bool ProjectReading::readPad(std::int32_t number, ProjectPad& pad) {
    ChunkBody chunk;
    std::uint32_t index;
    place_.owner = number;
    return enter(chunk, form_, fourCC("pdtr")) && chunk.number(index) && readSettings(chunk, pad.settings) &&
           leave(chunk) && readGrains(fourCC("pevt"), 0, pad.grains);
}

bool ProjectReading::readGrains(std::uint32_t ckid, std::int32_t lowestFile,
                                std::vector<GrainSettings>& grains) {
    ChunkBody chunk;
    std::uint32_t index;
    std::int32_t count;
    if (!enter(chunk, form_, ckid) || !chunk.number(index) || !chunk.number(count)) return false;
    constexpr auto kEntryBytes = static_cast<std::int64_t>(kGrainEntryBytes);
    if (!isWithin(FaultQuantity::grains, count, 0, chunk.left() / kEntryBytes)) return false;
    std::array<std::array<std::byte, kGrainEntryBytes>, kEntriesAtOnce> entries;
    place_.record = 0;
    for (auto left = static_cast<std::size_t>(count); left > 0;) {
        const std::size_t now = std::min(left, kEntriesAtOnce);
        if (!chunk.take(entries.data(), static_cast<std::int64_t>(now * kGrainEntryBytes))) return false;
        left -= now;
        for (std::size_t i = 0; i < now; ++i, ++place_.record) {
            std::array<std::byte, kGrainRecordBytes> raw;
            std::copy(entries[i].begin() + 4, entries[i].end(), raw.begin());
            if (!isAcceptable(grains.emplace_back(decodeGrain(raw)), lowestFile)) return false;
        }
    }
    return leave(chunk);
}

}  // namespace

LoadFault readProject(RiffStream& stream, Project& project) {
    try {
        return ProjectReading(stream, project).read();
    } catch (const std::bad_alloc&) {
        return {.kind = FaultKind::noMemory};
    }
}

LoadFault grainBelowZero(const Project& project) {
    const auto isBelowZero = [&](const GrainSettings& grain) {
        return grain.binGrain < 0 && static_cast<std::size_t>(grain.binFile) < project.files.size();
    };
    for (std::size_t pad = 0; pad < project.pads.size(); ++pad) {
        const std::vector<GrainSettings>& grains = project.pads[pad].grains;
        const auto found = std::find_if(grains.begin(), grains.end(), isBelowZero);
        if (found == grains.end()) continue;
        return badValue(FaultQuantity::binGrain, found->binGrain, 0, std::numeric_limits<std::int32_t>::max(),
                        {fourCC("pevt"), static_cast<std::int32_t>(pad),
                         static_cast<std::int32_t>(found - grains.begin())});
    }
    return {};
}

}  // namespace marnoth
