#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "platform/bytes/ByteStream.h"
#include "platform/files/Leftover.h"

namespace marnoth {

/// A file that grows under a name of its own until it is whole. It is made where there was nothing, so that
/// it can't be another process's, and goes with this object, or with the process that a signal ends, unless
/// it got its final name.
class TemporaryFile {
public:
    /// Null when the file can't be made, as when there is one of that name.
    static std::unique_ptr<TemporaryFile> make(const std::filesystem::path& path);
    /// Under a name that nobody else has.
    static std::unique_ptr<TemporaryFile> makeIn(const std::filesystem::path& folder);
    /// The same in the system's folder for such files.
    static std::unique_ptr<TemporaryFile> makeAnywhere();
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Once. To be closed before the file gets its name, and before this object goes.
    std::unique_ptr<ByteStream> takeBytes() { return std::move(bytes_); }
    const std::filesystem::path& path() const { return leftover_->path(); }
    /// The file takes its final name and the place of whatever had it; once. False when it can't.
    bool becomes(const std::filesystem::path& name);

private:
    TemporaryFile() = default;

    std::unique_ptr<ByteStream> bytes_;
    std::optional<Leftover> leftover_;  ///< none when it has its name
};

}  // namespace marnoth
