#include "shellkit/media/PngFile.h"

#include <memory>
#include <system_error>

#include "platform/bytes/ByteStream.h"
#include "shellkit/files/Failure.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

/// Null when all went well, else the reason.
const char* writeBytes(const std::filesystem::path& path, const std::vector<std::byte>& bytes) {
    const std::unique_ptr<ByteStream> file = openFileBytes(path, FileMode::create);
    if (!file) return "it can't be created";
    const bool written = file->write(bytes.data(), static_cast<std::int64_t>(bytes.size()));
    return file->close() && written ? nullptr : "writing failed";
}

}  // namespace

void writePng(const std::filesystem::path& path, const Bitmap& picture) {
    const std::vector<std::byte> bytes = encodePng(picture);
    if (bytes.empty()) throw FileFailure(utf8FromPath(path) + ": the picture can't be put into PNG");
    std::filesystem::path temporary = path;
    temporary += ".part";
    std::error_code error;
    const char* reason = writeBytes(temporary, bytes);
    if (!reason) {
        std::filesystem::rename(temporary, path, error);
        if (error) reason = "it can't be given its name";
    }
    if (!reason) return;
    std::filesystem::remove(temporary, error);
    throw FileFailure(utf8FromPath(path) + ": " + reason);
}

}  // namespace marnoth
