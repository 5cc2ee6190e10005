#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "platform/com/Com.h"

namespace marnoth {

/// A run of bytes with a position, beneath the RIFF streams. Offsets count from where the run begins and may
/// lie behind its end. One thread at a time.
class ByteStream {
public:
    virtual ~ByteStream() = default;

    /// Copies up to `bytes` from the position and moves behind them. Fewer at the end; -1 when the medium
    /// fails.
    virtual std::int64_t read(void* buffer, std::int64_t bytes) = 0;

    /// Writes at the position and moves behind. False when not everything went out.
    virtual bool write(const void* buffer, std::int64_t bytes) = 0;

    /// Moves to `offset` from the beginning. False, with the position unspecified, for one that can't be
    /// reached.
    virtual bool seek(std::int64_t offset) = 0;

    virtual std::int64_t position() const = 0;

    /// How many bytes there are, where the medium can tell.
    virtual std::optional<std::int64_t> size() = 0;

    /// Writes out what is held back and waits until the medium has it: what was written before survives a
    /// power cut. False when that fails. A medium that somebody else answers for, such as a host's stream, is
    /// left alone.
    virtual bool sync() { return true; }

    /// Writes out what is held back and lets go of the medium. False when something was lost.
    virtual bool close() = 0;
};

enum class FileMode {
    read,       ///< an existing regular file, for reading
    create,     ///< a new or emptied file, for reading and writing
    createNew,  ///< a file where there was nothing, for reading and writing; nobody else has made it
};

/// A file of any size behind a buffer of its own. Null when it can't be opened.
std::unique_ptr<ByteStream> openFileBytes(const std::filesystem::path& path, FileMode mode);

/// An `IStream` from its present position on, which becomes offset 0; `close` leaves it behind the highest
/// offset that was touched. Holds a reference until then. Null when the stream can't tell its position.
std::unique_ptr<ByteStream> openStreamBytes(IStream* stream);

}  // namespace marnoth
