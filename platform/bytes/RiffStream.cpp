#include "platform/bytes/RiffStream.h"

#include <algorithm>
#include <array>
#include <limits>

namespace marnoth {
namespace {

/// What passing over a chunk takes from the searches' budget. A header that lies near the last one comes out
/// of a buffer, which has to be filled; one that lies far takes calls of the system, and perhaps a turn of
/// the disk, whatever the distance.
int costOfPassing(const ChunkInfo& chunk) {
    constexpr std::uint32_t kFarBytes = 2048;
    constexpr std::uint32_t kBytesAtNoCost = 32;
    return 1 + static_cast<int>(std::min(chunk.cksize, kFarBytes) / kBytesAtNoCost);
}

constexpr std::int64_t kTypeBytes = 4;

std::uint32_t loadU32(const std::uint8_t* from) {
    return from[0] | from[1] << 8 | from[2] << 16 | static_cast<std::uint32_t>(from[3]) << 24;
}

std::array<std::uint8_t, 4> storeU32(std::uint32_t value) {
    return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
            static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 24)};
}

bool holdsChunks(const ChunkInfo& chunk) {
    return chunk.ckid == kRiffId || chunk.ckid == kListId;
}

bool matches(const ChunkInfo& found, const ChunkInfo& wanted, RiffFind find) {
    switch (find) {
        case RiffFind::chunk:
            return found.ckid == wanted.ckid;
        case RiffFind::riff:
            return found.ckid == kRiffId && found.fccType == wanted.fccType;
        case RiffFind::list:
            return found.ckid == kListId && found.fccType == wanted.fccType;
        default:
            return true;
    }
}

bool beginsInside(std::int64_t position, const ChunkInfo* parent) {
    return !parent || (position >= parent->dataOffset && position < parent->end());
}

}  // namespace

RiffError RiffStream::open(const std::filesystem::path& path, FileMode mode) {
    close();
    bytes_ = openFileBytes(path, mode);
    return bytes_ ? kRiffOk : kRiffCannotOpen;
}

RiffError RiffStream::open(IStream* stream) {
    close();
    bytes_ = openStreamBytes(stream);
    return bytes_ ? kRiffOk : kRiffCannotSeek;
}

void RiffStream::open(std::unique_ptr<ByteStream> bytes) {
    close();
    bytes_ = std::move(bytes);
}

RiffError RiffStream::close() {
    searchBudget_ = kSearchBudget;
    if (!bytes_) return kRiffOk;
    const bool closed = bytes_->close();
    bytes_.reset();
    return closed ? kRiffOk : kRiffCannotClose;
}

bool RiffStream::readHeader(ChunkInfo& chunk) {
    std::array<std::uint8_t, kChunkHeaderBytes> header;
    if (!readExactly(header.data(), kChunkHeaderBytes)) return false;
    chunk = {};
    chunk.ckid = loadU32(header.data());
    chunk.cksize = loadU32(header.data() + 4);
    chunk.dataOffset = position();
    if (!holdsChunks(chunk)) return true;
    if (!readExactly(header.data(), kTypeBytes)) return false;
    chunk.fccType = loadU32(header.data());
    return true;
}

RiffError RiffStream::find(ChunkInfo& chunk, const ChunkInfo* parent, RiffFind kind) {
    ChunkInfo found;
    while (searchBudget_ > 0) {
        if (!beginsInside(position(), parent) || !readHeader(found)) return kRiffChunkNotFound;
        if (matches(found, chunk, kind)) {
            chunk = found;
            return kRiffOk;
        }
        if (const RiffError error = seek(found.paddedEnd())) return error;
        searchBudget_ -= costOfPassing(found);
    }
    return kRiffChunkNotFound;
}

RiffError RiffStream::descend(ChunkInfo& chunk, const ChunkInfo* parent, RiffFind find) {
    if (!bytes_) return kRiffCannotRead;
    const std::int64_t before = position();
    const RiffError error = this->find(chunk, parent, find);
    if (error) seek(before);
    return error;
}

RiffError RiffStream::ascend(ChunkInfo& chunk) {
    if (!(chunk.flags & ChunkInfo::kDirty)) return seek(chunk.paddedEnd());
    const std::int64_t written = position() - chunk.dataOffset;
    if (written < 0) return kRiffInvalidFile;
    if (written > std::numeric_limits<std::uint32_t>::max()) return kRiffCannotExpand;
    if (chunk.cksize != written) {
        chunk.cksize = static_cast<std::uint32_t>(written);
        if (const RiffError error = seek(chunk.dataOffset - 4)) return error;
        if (!write(storeU32(chunk.cksize).data(), 4)) return kRiffCannotWrite;
        if (const RiffError error = seek(chunk.end())) return error;
    }
    chunk.flags &= ~ChunkInfo::kDirty;
    const char padding = 0;
    return (chunk.cksize & 1) == 0 || write(&padding, 1) ? kRiffOk : kRiffCannotWrite;
}

RiffError RiffStream::createChunk(ChunkInfo& chunk, RiffCreate kind) {
    if (kind == RiffCreate::riff) chunk.ckid = kRiffId;
    if (kind == RiffCreate::list) chunk.ckid = kListId;
    chunk.dataOffset = position() + kChunkHeaderBytes;
    chunk.flags = ChunkInfo::kDirty;
    const bool written = write(storeU32(chunk.ckid).data(), 4) && write(storeU32(chunk.cksize).data(), 4) &&
                         (kind == RiffCreate::chunk || write(storeU32(chunk.fccType).data(), 4));
    return written ? kRiffOk : kRiffCannotWrite;
}

std::int64_t RiffStream::read(void* buffer, std::int64_t bytes) {
    return bytes_ ? bytes_->read(buffer, bytes) : -1;
}

bool RiffStream::write(const void* buffer, std::int64_t bytes) {
    return bytes_ && bytes_->write(buffer, bytes);
}

RiffError RiffStream::seek(std::int64_t offset) {
    return bytes_ && bytes_->seek(offset) ? kRiffOk : kRiffCannotSeek;
}

std::optional<std::int64_t> RiffStream::remaining() {
    if (!bytes_) return std::nullopt;
    const std::optional<std::int64_t> size = bytes_->size();
    if (!size) return std::nullopt;
    return *size > position() ? *size - position() : 0;
}

}  // namespace marnoth
