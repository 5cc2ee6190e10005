#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "platform/bytes/ByteStream.h"
#include "platform/com/Com.h"

namespace marnoth {

/// Why an operation on a RIFF stream failed, in the numbers of Windows' multimedia file I/O. 0 is success.
enum RiffError : std::uint32_t {
    kRiffOk = 0,
    kRiffOutOfMemory = 258,
    kRiffCannotOpen = 259,
    kRiffCannotClose = 260,
    kRiffCannotRead = 261,
    kRiffCannotWrite = 262,
    kRiffCannotSeek = 263,
    kRiffCannotExpand = 264,  ///< a chunk outgrew the 32 bits of its size
    kRiffChunkNotFound = 265,
    kRiffInvalidFile = 272,
};

/// A four-character code as it stands in a file: `fourCC("fmt ")`.
constexpr std::uint32_t fourCC(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 3; i >= 0; --i) code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

inline constexpr std::uint32_t kRiffId = fourCC("RIFF");
inline constexpr std::uint32_t kListId = fourCC("LIST");
inline constexpr std::int64_t kChunkHeaderBytes = 8;  ///< id and size

/// One chunk of a RIFF stream. The size is what its header says, which in a damaged file may be anything.
struct ChunkInfo {
    static constexpr std::uint32_t kDirty =
        0x10000000;  ///< being written: the size in the header isn't final

    std::uint32_t ckid = 0;
    std::uint32_t cksize = 0;   ///< bytes of the body, padding not counted; with form type for RIFF and LIST
    std::uint32_t fccType = 0;  ///< form type of RIFF and list type of LIST, else 0
    std::int64_t dataOffset = 0;  ///< of the body (of the form type, for RIFF and LIST) in the stream
    std::uint32_t flags = 0;      ///< `kDirty` or 0

    /// Behind the last byte of the body.
    std::int64_t end() const { return dataOffset + cksize; }
    /// Behind the padding to an even length, where the next chunk begins.
    std::int64_t paddedEnd() const { return end() + (cksize & 1); }
};

enum class RiffFind {
    next,   ///< the chunk at the position, whatever it is
    chunk,  ///< the next with the wanted `ckid`
    riff,   ///< the next RIFF chunk with the wanted `fccType`
    list,   ///< the next LIST chunk with the wanted `fccType`
};

enum class RiffCreate { chunk, riff, list };

/// Reads and writes a tree of RIFF chunks in a file or in an `IStream`.
///
/// Nothing it reads is trusted: sizes are 64 bits wide as soon as they are read, and a search always moves
/// forward. All searches from `open` to `close` together pass over a million tiny chunks or sixteen thousand
/// long ones at most, and find nothing from then on: no input keeps a reader busy for a second. It allocates
/// nothing by what a file says. One thread at a time.
class RiffStream {
public:
    RiffStream() = default;
    ~RiffStream() { close(); }
    RiffStream(const RiffStream&) = delete;
    RiffStream& operator=(const RiffStream&) = delete;

    /// Opens a file. `kRiffCannotOpen` when that fails. Whatever was open is closed first.
    RiffError open(const std::filesystem::path& path, FileMode mode);

    /// Uses a stream from its present position on, which becomes offset 0. `close` leaves the stream behind
    /// the highest offset that was touched. Holds a reference until then. `kRiffCannotSeek` for a stream that
    /// can't be positioned.
    RiffError open(IStream* stream);

    /// Uses any bytes from their beginning; none are there with null.
    void open(std::unique_ptr<ByteStream> bytes);

    bool isOpen() const { return bytes_ != nullptr; }

    /// `kRiffCannotClose` when bytes that were written got lost.
    RiffError close();

    /// Enters a chunk: fills `chunk` and puts the position at its body (behind the form or list type). With
    /// `find` other than `next` the wanted `ckid` or `fccType` stands in `chunk`, and chunks from the
    /// position on are passed over until it comes. Only headers that begin inside `parent` count; without one
    /// the stream's end is the bound. `kRiffChunkNotFound` leaves the position where it was.
    RiffError descend(ChunkInfo& chunk, const ChunkInfo* parent = nullptr, RiffFind find = RiffFind::next);

    /// Leaves a chunk: the position goes behind it and its padding. A dirty chunk ends at the position; its
    /// size is put right in its header and an odd length padded with a 0.
    RiffError ascend(ChunkInfo& chunk);

    /// Begins a chunk at the position: writes the header with `ckid` (RIFF and LIST take their own id, and
    /// `fccType`) and the expected `cksize`, and marks `chunk` dirty for `ascend`.
    RiffError createChunk(ChunkInfo& chunk, RiffCreate kind = RiffCreate::chunk);

    /// Copies up to `bytes`; bounded by the stream's end, not by any chunk. How many were copied, or -1.
    std::int64_t read(void* buffer, std::int64_t bytes);
    /// True when all of `bytes` were there.
    bool readExactly(void* buffer, std::int64_t bytes) { return read(buffer, bytes) == bytes; }
    bool write(const void* buffer, std::int64_t bytes);

    /// As `ByteStream::sync`.
    bool sync() { return bytes_ && bytes_->sync(); }

    /// Absolute, in bytes from the beginning; behind the end is allowed.
    RiffError seek(std::int64_t offset);
    std::int64_t position() const { return bytes_ ? bytes_->position() : 0; }

    /// Bytes from the position to the end, for checking a size before storage is taken for it; nothing when
    /// the medium doesn't tell.
    std::optional<std::int64_t> remaining();

private:
    static constexpr int kSearchBudget = 1 << 20;

    RiffError find(ChunkInfo& chunk, const ChunkInfo* parent, RiffFind kind);
    bool readHeader(ChunkInfo& chunk);

    std::unique_ptr<ByteStream> bytes_;
    int searchBudget_ = kSearchBudget;  ///< what is left for passing over chunks
};

}  // namespace marnoth
