#include "shellkit/media/OutputFile.h"

#include <ostream>
#include <system_error>
#include <vector>

#include "platform/files/FileSystem.h"
#include "platform/files/Links.h"
#include "shellkit/files/Failure.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace fs = std::filesystem;

OutputFile::OutputFile(const fs::path& path) : name_(utf8FromPath(path)), target_(behindLinks(path)) {
    std::error_code ignored;
    const fs::file_status there = fs::status(path, ignored);
    if (fs::is_directory(there)) fail("a folder has that name");
    if (!fs::exists(there) || fs::is_regular_file(there))
        openBeside();
    else
        openDevice(path);
}

OutputFile::OutputFile(std::ostream& stream) : name_("standard output"), stream_(&stream) {
    openSpool();
}

void OutputFile::openBeside() {
    std::error_code ignored;
    if (fs::exists(target_, ignored) && !mayBeWritten(target_)) fail("it is write-protected");
    fs::path beside = target_;
    beside += ".part";
    temporary_ = TemporaryFile::make(beside);
    if (temporary_) return;
    if (!fs::exists(fs::symlink_status(beside, ignored))) fail("it can't be created");
    fail(utf8FromPath(beside.filename()) +
         " is in the way: another run is writing it, or was killed while it did; remove it if none runs");
}

void OutputFile::openDevice(const fs::path& path) {
    device_.open(path, std::ios::binary);
    if (!device_.is_open()) fail("it can't be opened");
    stream_ = &device_;
    openSpool();
}

/// Sizes at the front of a file are known at its end, and a pipe goes one way.
void OutputFile::openSpool() {
    temporary_ = TemporaryFile::makeAnywhere();
    if (!temporary_) fail("there is no place for a temporary file");
}

fs::path OutputFile::folder() const {
    const fs::path folder = temporary_->path().parent_path();
    return folder.empty() ? "." : folder;
}

std::unique_ptr<TemporaryFile> OutputFile::makeSpool() const {
    auto spool = TemporaryFile::makeIn(folder());
    if (!spool) fail("there is no place for a temporary file");
    return spool;
}

void OutputFile::finish() {
    if (stream_) return passOn();
    if (!temporary_->becomes(target_)) fail("it can't be given its name");
}

void OutputFile::passOn() {
    const std::unique_ptr<ByteStream> bytes = openFileBytes(temporary_->path(), FileMode::read);
    if (!bytes) fail("what was written can't be read again");
    std::vector<char> buffer(0x10000);
    std::int64_t got = 0;
    while ((got = bytes->read(buffer.data(), static_cast<std::int64_t>(buffer.size()))) > 0)
        stream_->write(buffer.data(), got);
    if (got < 0 || !stream_->flush()) fail("writing failed");
}

void OutputFile::fail(const std::string& reason) const {
    throw FileFailure(name_ + ": " + reason);
}

std::unique_ptr<OutputFile> openOutput(const std::string& file, std::ostream& standardOutput) {
    if (file == kStandardOutput) return std::make_unique<OutputFile>(standardOutput);
    return std::make_unique<OutputFile>(pathFromUtf8(file));
}

}  // namespace marnoth
