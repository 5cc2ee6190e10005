#include "sample/AcidWave.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/text/Text.h"
#include "sample/FileType.h"

namespace marnoth {
namespace {

constexpr std::size_t kMaxPathCharacters = 255;

constexpr std::int64_t kFormatBytes = 16;
constexpr std::int64_t kExtensibleBytes = 40;  ///< of the whole format
constexpr std::int64_t kExtensionBytes = 22;   ///< of what stands behind the count of extra bytes
constexpr int kSubFormatOffset = 6;            ///< in those
constexpr std::int64_t kAcidBytes = 24;
constexpr std::int64_t kStretchHeaderBytes = 28;
constexpr std::int64_t kMarkerBytes = 32;
constexpr std::int64_t kMarkersAtOnce = 2048;

// What the file's own fields can say at most.
constexpr std::int64_t kMostBlockBytes = 0xFFFF;
constexpr std::int64_t kMostFrames = 0xFFFFFFFF;

/// A number at `offset` of a record, little-endian as the file has it.
template <class T>
T field(const std::byte* record, int offset) {
    T value;
    std::memcpy(&value, record + offset, sizeof value);
    return value;
}

/// What all sub-formats that stand for a format tag have behind those two bytes.
constexpr std::array<unsigned char, 14> kTagFamily{0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                   0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

/// Sizes from here on stand for an unknown length in files that were written into a pipe.
constexpr std::uint32_t kUnknownSize = 0x7FFF0000;
constexpr std::uint32_t kMostChunkBytes = 0xFFFFFFFF;

std::string_view labelOf(std::uint32_t code) {
    std::string_view label;
    for (const TagLabel& row : kTagLabels) {
        if (row.code == code) label = row.label;
    }
    return label;
}

/// The whole milliseconds of a duration and one more.
std::uint32_t millisecondsBeyond(float seconds) {
    const double whole = std::trunc(seconds * -1000.0);
    constexpr double kMost = std::numeric_limits<std::uint32_t>::max();
    return 1.0 - whole < kMost ? static_cast<std::uint32_t>(1.0 - whole)
                               : std::numeric_limits<std::uint32_t>::max();
}

}  // namespace

HRESULT CAcidWave::Open(const char* path) {
    forget();
    if (openForm(path) && readFormat() && measureData() && readTags() && readLoop()) return S_OK;
    file_.close();
    return E_FAIL;
}

void CAcidWave::forget() {
    file_.close();
    hasFormat = hasAcid = hasStretch = 0;
    stretchMarkerCount = 0;
    segments.clear();
    tags.fill({});
    lastError = kRiffOk;
    fault = {};
    damage = {};
    unread_ = 0;
}

bool CAcidWave::fail(std::uint32_t error, const LoadFault& why) {
    lastError = error;
    fault = why;
    return false;
}

bool CAcidWave::lacks(const char (&id)[5]) {
    return fail(kRiffChunkNotFound, {.kind = FaultKind::chunkMissing, .place = {fourCC(id)}});
}

bool CAcidWave::endsEarly(const ChunkInfo& chunk, std::int64_t missing) {
    missing = std::max<std::int64_t>(missing, 0);
    return fail(kRiffCannotRead, {.kind = FaultKind::cutShort, .place = {chunk.ckid}, .value = missing});
}

bool CAcidWave::leave(ChunkInfo& chunk) {
    return file_.ascend(chunk) == kRiffOk ||
           fail(kRiffCannotSeek, {.kind = FaultKind::cannotRead, .place = {chunk.ckid}});
}

HRESULT CAcidWave::failWith(std::uint32_t error) {
    lastError = error;
    return E_FAIL;
}

bool CAcidWave::find(const char (&id)[5], ChunkInfo& chunk) {
    chunk = {.ckid = fourCC(id)};
    return file_.descend(chunk, &riff_, RiffFind::chunk) == kRiffOk;
}

bool CAcidWave::openForm(const char* path) {
    const std::wstring whole = wideFromSystem(path);
    pathName = whole.substr(0, kMaxPathCharacters);
    if (file_.open(pathFromWide(pathName), FileMode::read)) {
        return fail(kRiffCannotOpen, whyNotOpened(whole, kMaxPathCharacters));
    }
    fileBytes = file_.remaining().value_or(0);
    riff_ = {};
    const bool isWave =
        file_.descend(riff_) == kRiffOk && riff_.ckid == kRiffId && riff_.fccType == fourCC("WAVE");
    // The form's size is written last, and never into a pipe.
    if (lenient && riff_.cksize == 0) riff_.cksize = kMostChunkBytes;
    return isWave || fail(kRiffInvalidFile, whyNotAWave());
}

LoadFault CAcidWave::whyNotAWave() {
    std::array<std::byte, kFileTypeBytes> first;
    file_.seek(0);
    const auto count = std::max<std::int64_t>(file_.read(first.data(), first.size()), 0);
    if (count == 0) return {.kind = FaultKind::emptyFile};
    const FileType type = fileType(std::span(first).first(static_cast<std::size_t>(count)));
    if (type == FileType::unknown) return {.kind = FaultKind::notAWave};
    return {.kind = FaultKind::otherFileType, .type = type};
}

bool CAcidWave::readFormat() {
    ChunkInfo chunk;
    if (!find("fmt ", chunk)) return lacks("fmt ");
    hasFormat = 1;
    format = {};
    if (!file_.readExactly(&format, kFormatBytes)) return endsEarly(chunk, chunk.end() - fileBytes);
    std::uint16_t extraBytes;
    if (format.wFormatTag != WAVE_FORMAT_PCM && !file_.readExactly(&extraBytes, sizeof extraBytes)) {
        return endsEarly(chunk, chunk.end() - fileBytes);
    }
    readSubFormat(chunk);
    if (format.nBlockAlign == 0)
        return fail(kRiffInvalidFile,
                    badValue(FaultQuantity::blockBytes, 0, 1, kMostBlockBytes, {chunk.ckid}));
    return leave(chunk);
}

/// Of an extensible format whose chunk is too short, or whose sub-format stands for no tag, nobody knows
/// more.
void CAcidWave::readSubFormat(const ChunkInfo& chunk) {
    sampleTag = format.wFormatTag;
    std::array<std::byte, kExtensionBytes> extension;
    if (format.wFormatTag != WAVE_FORMAT_EXTENSIBLE || chunk.cksize < kExtensibleBytes) return;
    if (!file_.readExactly(extension.data(), kExtensionBytes)) return;
    const std::byte* family = extension.data() + kSubFormatOffset + sizeof sampleTag;
    if (std::memcmp(family, kTagFamily.data(), kTagFamily.size()) == 0)
        sampleTag = field<std::uint16_t>(extension.data(), kSubFormatOffset);
}

bool CAcidWave::findData() {
    if (!find("data", data_)) return false;
    if (lenient) takeWhatIsThere();
    return true;
}

/// Has the chunk end with the file where it claims more than there is, or says nothing: a size of 0 counts as
/// nothing where the form doesn't go on behind it.
void CAcidWave::takeWhatIsThere() {
    const std::int64_t missing = data_.end() - fileBytes;
    const std::int64_t there = std::max<std::int64_t>(fileBytes - data_.dataOffset, 0);
    const bool formGoesOn = riff_.end() > data_.dataOffset && riff_.end() <= fileBytes;
    const bool isOpen = data_.cksize == 0 && there > 0 && !formGoesOn;
    if (missing <= 0 && !isOpen) return;
    damage = isOpen || data_.cksize >= kUnknownSize
                 ? LoadFault{.kind = FaultKind::lengthUnknown, .place = {data_.ckid}}
                 : LoadFault{.kind = FaultKind::cutShort, .place = {data_.ckid}, .value = missing};
    data_.cksize = static_cast<std::uint32_t>(std::min<std::int64_t>(there, kMostChunkBytes));
}

bool CAcidWave::measureData() {
    if (!findData()) return lacks("data");
    if (data_.cksize == 0)
        return fail(kRiffInvalidFile, badValue(FaultQuantity::frames, 0, 1, kMostFrames, {data_.ckid}));
    dataBytes = data_.cksize;
    durationSeconds = format.nAvgBytesPerSec == 0
                          ? std::numeric_limits<float>::infinity()
                          : static_cast<float>(data_.cksize) / static_cast<float>(format.nAvgBytesPerSec);
    durationMs = millisecondsBeyond(durationSeconds);
    frameCount = data_.cksize / format.nBlockAlign;
    return leave(data_);
}

bool CAcidWave::readTags() {
    ChunkInfo list;
    int count = 0;
    if (find("LIST", list) && list.fccType == fourCC("INFO")) {
        while (count < kMaxTags && readTag(tags[count], list)) ++count;
        if (lastError == kRiffCannotSeek) return false;
    }
    tags[count].chunk.ckid = kEndTag;
    return true;
}

/// Takes one sub-chunk of the list; one of an unknown code leaves `tag` empty. False when there is none, or
/// none can follow.
bool CAcidWave::readTag(WaveTag& tag, const ChunkInfo& list) {
    ChunkInfo chunk;
    if (file_.descend(chunk, &list)) return false;
    std::string text = readText(chunk);
    if (const std::string_view label = labelOf(chunk.ckid); !label.empty()) {
        tag = {chunk, std::string(label), std::move(text)};
    }
    return leave(chunk);
}

/// The text of a tag up to its terminator, as much of it as the file holds.
std::string CAcidWave::readText(const ChunkInfo& chunk) {
    const std::int64_t present = std::min<std::int64_t>(chunk.cksize, file_.remaining().value_or(0));
    if (present < chunk.cksize) lastError = kRiffCannotRead;
    std::string text(static_cast<std::size_t>(std::min(present, kMaxTagBytes)), '\0');
    const std::int64_t got = file_.read(text.data(), static_cast<std::int64_t>(text.size()));
    text.resize(static_cast<std::size_t>(std::max<std::int64_t>(got, 0)));
    if (const auto terminator = text.find('\0'); terminator != std::string::npos) text.resize(terminator);
    return text;
}

bool CAcidWave::readLoop() {
    // From the end of the audio again: tags and loop data come in either order.
    if (!leave(data_)) return false;
    if (!find("acid", acid_)) return true;
    if (!readAcid()) return false;
    segments.push_back({0, frameCount, 0});
    if (!leave(acid_) || !readStretch()) return false;
    if (segments.size() == 1) divideEvenly();
    return true;
}

bool CAcidWave::readAcid() {
    std::array<std::byte, kAcidBytes> record{};
    const std::int64_t present = file_.remaining().value_or(0);
    const std::int64_t known = std::min<std::int64_t>(acid_.cksize, kAcidBytes);
    if (present < acid_.cksize || !file_.readExactly(record.data(), known)) {
        return endsEarly(acid_, acid_.cksize - present);
    }

    const auto flags = field<std::uint32_t>(record.data(), 0);
    const auto note = field<std::int16_t>(record.data(), 4);
    hasAcid = 1;
    divisionExponent = 4;
    tempo = field<float>(record.data(), 20);
    isLoop = (flags & 1) == 0;
    rootNoteSet = flags >> 1 & 1;
    stretchOn = flags >> 2 & 1;
    diskBased = flags >> 3 & 1;
    beats = field<std::uint32_t>(record.data(), 12);
    rootNote = (note + 3) % 12;
    return true;
}

bool CAcidWave::readStretch() {
    ChunkInfo chunk;
    if (!find("strc", chunk)) return true;
    std::array<std::byte, kStretchHeaderBytes> header;
    if (!file_.readExactly(header.data(), kStretchHeaderBytes)) {
        return endsEarly(chunk, chunk.dataOffset + kStretchHeaderBytes - fileBytes);
    }
    hasStretch = 1;
    stretchMarkerCount = field<std::uint32_t>(header.data(), 4);
    stretchField16 = field<std::uint32_t>(header.data(), 16);
    stretchField20 = field<std::uint32_t>(header.data(), 20);
    divisionExponent = field<std::uint32_t>(header.data(), 24);
    if (!readMarkers(chunk)) return false;
    endLastSegment(frameCount);
    return leave(chunk);
}

bool CAcidWave::readMarkers(const ChunkInfo& chunk) {
    const std::int64_t missing = stretchMarkerCount * kMarkerBytes - file_.remaining().value_or(0);
    if (missing > 0) return endsEarly(chunk, missing);
    if (stretchMarkerCount > kMaxMarkers) {
        return fail(kRiffInvalidFile,
                    badValue(FaultQuantity::markers, stretchMarkerCount, 0, kMaxMarkers, {chunk.ckid}));
    }
    std::vector<std::byte> records(std::min<std::int64_t>(stretchMarkerCount, kMarkersAtOnce) * kMarkerBytes);
    for (std::int64_t left = stretchMarkerCount; left > 0; left -= kMarkersAtOnce) {
        const std::int64_t bytes = std::min(left, kMarkersAtOnce) * kMarkerBytes;
        if (!file_.readExactly(records.data(), bytes)) return endsEarly(chunk, 0);
        for (const std::byte* record = records.data(); record < records.data() + bytes;
             record += kMarkerBytes) {
            const auto type = field<std::uint32_t>(record, 0);
            const auto position = field<std::uint32_t>(record, 8);
            const auto activity = field<std::uint32_t>(record, 16);
            if ((type == 0 || type == 2) && position != 0 && activity != 0) addSegment(position);
        }
    }
    return true;
}

void CAcidWave::addSegment(std::uint32_t start) {
    endLastSegment(start);
    segments.push_back({start, 0, 0});
}

/// Markers aren't sorted: a length may come out as a huge number.
void CAcidWave::endLastSegment(std::uint32_t end) {
    segments.back().length = end - segments.back().start;
}

void CAcidWave::divideEvenly() {
    const double perBeat = std::pow(2.0, divisionExponent - 2.0);
    const double wanted = beats * perBeat + 0.5;
    // Written so that a count that isn't a number (0 beats in endless parts) leaves the file whole too.
    if (!(wanted < kMaxDivisions + 1.0)) return;
    const auto count = static_cast<std::uint32_t>(wanted);
    for (std::uint32_t i = 1; i < count; ++i) {
        addSegment(static_cast<std::uint32_t>(frameCount * (static_cast<double>(i) / count)));
    }
    endLastSegment(frameCount);
}

std::int64_t CAcidWave::GetLength(std::uint32_t kind) const {
    switch (kind) {
        case kLengthInMilliseconds:
            return durationMs;
        case kLengthInFrames:
            return frameCount;
        default:
            return 0;
    }
}

HRESULT CAcidWave::SeekFrame(std::uint32_t frame) {
    constexpr std::int64_t kFormTypeBytes = 4;
    unread_ = 0;
    if (file_.seek(riff_.dataOffset + kFormTypeBytes)) return failWith(kRiffCannotSeek);
    if (!findData()) return failWith(kRiffChunkNotFound);
    const std::int64_t offset = static_cast<std::int64_t>(frame) * format.nBlockAlign;
    if (file_.seek(data_.dataOffset + offset)) return failWith(kRiffCannotSeek);
    readPosition = static_cast<std::uint32_t>(offset);
    unread_ = data_.cksize;
    return S_OK;
}

std::uint32_t CAcidWave::ReadData(void* buffer, std::uint32_t bytes) {
    const std::uint32_t wanted = std::min(bytes, unread_);
    unread_ -= wanted;
    if (wanted == 0) return 0;
    if (!file_.readExactly(buffer, wanted)) {
        lastError = kRiffCannotRead;
        return 0;
    }
    readPosition += wanted;
    return wanted;
}

WaveSegment CAcidWave::GetSegment(std::int32_t index) const {
    return index >= 0 && index < GetSegmentCount() ? segments[index] : WaveSegment{};
}

}  // namespace marnoth
