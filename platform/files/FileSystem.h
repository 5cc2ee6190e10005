#pragma once

#include <filesystem>
#include <memory>

#include "platform/bytes/ByteStream.h"

namespace marnoth {

/// The system's files as a save changes them. Every change of a file or of a name goes through here, in the
/// order in which the medium gets it: a test can watch that, let a change fail, or cut the power between two.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Null when it can't be opened.
    virtual std::unique_ptr<ByteStream> open(const std::filesystem::path& path, FileMode mode) = 0;
    /// In place of whatever has the name `to`.
    virtual bool rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    virtual bool remove(const std::filesystem::path& path) = 0;
    /// Waits until the medium has the names in the folder of `path` as they are now.
    virtual bool syncFolderOf(const std::filesystem::path& path) = 0;
};

/// That of the process. Any thread.
FileSystem& systemFiles();

/// Whether a file that is there may be written over. Renaming needs rights to the folder alone: those to the
/// file itself are to be asked for.
bool mayBeWritten(const std::filesystem::path& file);

}  // namespace marnoth
