#pragma once

#include <filesystem>
#include <fstream>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "platform/files/TemporaryFile.h"

namespace marnoth {

/// The name that stands for standard output where a command asks for a file.
inline constexpr std::string_view kStandardOutput = "-";

/// Where a command's audio or picture goes.
///
/// A regular file, be it there or not, grows beside its name with ".part" behind it and takes the name when
/// it is finished; behind a symbolic link it is the link's target. Whatever else has the name, a device or a
/// pipe, is written to, and so is a stream: from front to back, when the output is finished. An output that
/// isn't leaves nothing behind.
///
/// Every operation throws `FileFailure` with the name and the reason.
class OutputFile {
public:
    /// A ".part" that is there is left alone: it may be another process's, which makes this one fail.
    explicit OutputFile(const std::filesystem::path& path);
    /// `stream` outlives it.
    explicit OutputFile(std::ostream& stream);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Where to write, in any order; once. To be closed before `finish`, and before this object goes.
    std::unique_ptr<ByteStream> takeBytes() { return temporary_->takeBytes(); }
    /// A temporary file where this one grows, for what isn't ready for it.
    std::unique_ptr<TemporaryFile> makeSpool() const;
    /// Where it grows.
    std::filesystem::path folder() const;
    /// What was written is whole.
    void finish();

    /// As messages tell it.
    const std::string& name() const { return name_; }
    [[noreturn]] void fail(const std::string& reason) const;

private:
    void openBeside();
    void openDevice(const std::filesystem::path& path);
    void openSpool();
    void passOn();

    std::string name_;
    std::filesystem::path target_;    ///< of a regular file
    std::ofstream device_;            ///< of anything else with a name
    std::ostream* stream_ = nullptr;  ///< null for a regular file
    std::unique_ptr<TemporaryFile> temporary_;
};

/// The file that a user named, in UTF-8, or `standardOutput`.
std::unique_ptr<OutputFile> openOutput(const std::string& file, std::ostream& standardOutput);

}  // namespace marnoth
