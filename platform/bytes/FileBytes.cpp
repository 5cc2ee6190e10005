#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <system_error>
#include <vector>

#include "platform/bytes/ByteStream.h"

#ifdef _WIN32
#include <windows.h>
// The order matters: the rest needs windows.h.
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>

#include <cerrno>
#endif

namespace marnoth {
namespace {

constexpr std::int64_t kBufferBytes = 0x10000;
/// What a read takes after a jump. Walking along the chunks of a file looks at few bytes of each, so a whole
/// buffer would mostly be read in vain.
constexpr std::int64_t kBytesAfterJump = 0x1000;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

#ifdef _WIN32

/// Its name can be taken away while it is open: by whoever ends the program early.
std::FILE* createNewFile(const std::filesystem::path& path) {
    const HANDLE handle =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                    CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    const int file = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_RDWR | _O_BINARY);
    if (file >= 0) return _fdopen(file, "wb+");
    CloseHandle(handle);
    return nullptr;
}

std::FILE* openFile(const std::filesystem::path& path, FileMode mode) {
    if (mode == FileMode::createNew) return createNewFile(path);
    return _wfopen(path.c_str(), mode == FileMode::read ? L"rb" : L"wb+");
}

bool syncFile(std::FILE* file) {
    return FlushFileBuffers(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)))) != 0;
}

#else

std::FILE* openFile(const std::filesystem::path& path, FileMode mode) {
    if (mode == FileMode::createNew) return std::fopen(path.c_str(), "wbx+");
    return std::fopen(path.c_str(), mode == FileMode::read ? "rb" : "wb+");
}

bool syncFile(std::FILE* file) {
    // What isn't kept on a medium, such as a device, says that it can't be synced.
    return fsync(fileno(file)) == 0 || errno == EINVAL;
}

#endif

bool seekFile(std::FILE* file, std::int64_t offset, int origin) {
#ifdef _WIN32
    return _fseeki64(file, offset, origin) == 0;
#else
    static_assert(sizeof(off_t) == 8, "files may be larger than 2 GiB");
    return fseeko(file, offset, origin) == 0;
#endif
}

std::int64_t tellFile(std::FILE* file) {
#ifdef _WIN32
    return _ftelli64(file);
#else
    return ftello(file);
#endif
}

/// One buffer that holds either bytes read ahead or bytes not yet written.
class FileBytes final : public ByteStream {
public:
    FileBytes() : buffer_(kBufferBytes) {}
    ~FileBytes() override { flush(); }

    bool open(const std::filesystem::path& path, FileMode mode) {
        file_.reset(openFile(path, mode));
        if (file_) std::setvbuf(file_.get(), nullptr, _IONBF, 0);
        return file_ != nullptr;
    }

    std::int64_t read(void* buffer, std::int64_t bytes) override;
    bool write(const void* buffer, std::int64_t bytes) override;
    bool seek(std::int64_t offset) override;
    std::int64_t position() const override { return position_; }
    std::optional<std::int64_t> size() override;
    bool sync() override { return file_ && flush() && syncFile(file_.get()); }
    bool close() override;

private:
    std::int64_t bufferEnd() const { return start_ + held_; }
    std::int64_t takeBuffered(std::byte* to, std::int64_t bytes);
    std::int64_t readRaw(std::byte* to, std::int64_t bytes);
    bool fill();
    bool writeRaw(const std::byte* from, std::int64_t bytes, std::int64_t offset);
    bool flush();
    void dropBuffer();

    FileHandle file_;
    std::vector<std::byte> buffer_;
    std::int64_t position_ = 0;
    std::int64_t start_ = 0;  ///< offset in the file of the buffer's first byte
    std::int64_t held_ = 0;   ///< bytes in the buffer
    bool unwritten_ = false;  ///< the buffer holds bytes that the file doesn't have yet
};

std::int64_t FileBytes::takeBuffered(std::byte* to, std::int64_t bytes) {
    if (position_ < start_ || position_ >= bufferEnd()) return 0;
    const std::int64_t taken = std::min(bytes, bufferEnd() - position_);
    std::memcpy(to, buffer_.data() + (position_ - start_), static_cast<std::size_t>(taken));
    position_ += taken;
    return taken;
}

std::int64_t FileBytes::readRaw(std::byte* to, std::int64_t bytes) {
    if (!seekFile(file_.get(), position_, SEEK_SET)) return -1;
    const std::size_t got = std::fread(to, 1, static_cast<std::size_t>(bytes), file_.get());
    return got == 0 && std::ferror(file_.get()) ? -1 : static_cast<std::int64_t>(got);
}

bool FileBytes::fill() {
    const bool jumped = position_ != bufferEnd();
    dropBuffer();
    const std::int64_t got = readRaw(buffer_.data(), jumped ? kBytesAfterJump : kBufferBytes);
    held_ = std::max<std::int64_t>(got, 0);
    return got >= 0;
}

std::int64_t FileBytes::read(void* buffer, std::int64_t bytes) {
    if (!file_ || !flush()) return -1;
    auto* to = static_cast<std::byte*>(buffer);
    std::int64_t done = takeBuffered(to, bytes);
    while (done < bytes) {
        std::int64_t got = 0;
        if (bytes - done >= kBufferBytes) {
            got = readRaw(to + done, bytes - done);
            position_ += std::max<std::int64_t>(got, 0);
        } else {
            got = fill() ? takeBuffered(to + done, bytes - done) : -1;
        }
        if (got < 0) return -1;
        if (got == 0) break;
        done += got;
    }
    return done;
}

bool FileBytes::writeRaw(const std::byte* from, std::int64_t bytes, std::int64_t offset) {
    const auto count = static_cast<std::size_t>(bytes);
    return seekFile(file_.get(), offset, SEEK_SET) && std::fwrite(from, 1, count, file_.get()) == count;
}

bool FileBytes::flush() {
    if (!unwritten_) return true;
    const std::int64_t start = start_;
    const std::int64_t bytes = held_;
    dropBuffer();
    return writeRaw(buffer_.data(), bytes, start);
}

void FileBytes::dropBuffer() {
    start_ = position_;
    held_ = 0;
    unwritten_ = false;
}

bool FileBytes::write(const void* buffer, std::int64_t bytes) {
    if (!file_) return false;
    const auto* from = static_cast<const std::byte*>(buffer);
    const bool continues = unwritten_ && position_ == bufferEnd();
    if (!continues || held_ + bytes > kBufferBytes) {
        if (!flush()) return false;
        dropBuffer();
    }
    if (bytes > kBufferBytes) {
        const std::int64_t offset = position_;
        position_ += bytes;
        dropBuffer();
        return writeRaw(from, bytes, offset);
    }
    std::memcpy(buffer_.data() + held_, from, static_cast<std::size_t>(bytes));
    held_ += bytes;
    position_ += bytes;
    unwritten_ = true;
    return true;
}

bool FileBytes::seek(std::int64_t offset) {
    if (!file_ || offset < 0) return false;
    position_ = offset;
    return true;
}

std::optional<std::int64_t> FileBytes::size() {
    if (!file_ || !flush() || !seekFile(file_.get(), 0, SEEK_END)) return std::nullopt;
    const std::int64_t end = tellFile(file_.get());
    return end >= 0 ? std::optional(end) : std::nullopt;
}

bool FileBytes::close() {
    if (!file_) return true;
    const bool flushed = flush();
    return std::fclose(file_.release()) == 0 && flushed;
}

}  // namespace

std::unique_ptr<ByteStream> openFileBytes(const std::filesystem::path& path, FileMode mode) {
    std::error_code error;
    // A directory opens on some systems, and a pipe may keep its reader waiting for ever.
    if (mode == FileMode::read && !std::filesystem::is_regular_file(path, error)) return nullptr;
    // Memory comes first: a file that is made and can't be written to would be left behind.
    auto file = std::make_unique<FileBytes>();
    if (!file->open(path, mode)) return nullptr;
    return file;
}

}  // namespace marnoth
