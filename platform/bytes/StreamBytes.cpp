#include <algorithm>
#include <limits>

#include "platform/bytes/ByteStream.h"
#include "platform/com/RefPtr.h"

namespace marnoth {
namespace {

/// The most that one call of a stream can carry.
constexpr std::int64_t kLargestCall = 1 << 30;

bool seekStream(IStream& stream, std::int64_t move, DWORD origin, ULARGE_INTEGER* position) {
    LARGE_INTEGER distance;
    distance.QuadPart = move;
    return SUCCEEDED(stream.Seek(distance, origin, position));
}

/// An `IStream` from where it stood on. Every call goes straight through: read-ahead would leave the stream
/// behind the bytes that were asked for.
class StreamBytes final : public ByteStream {
public:
    StreamBytes(IStream* stream, std::int64_t base) : stream_(stream), base_(base) {}

    std::int64_t read(void* buffer, std::int64_t bytes) override;
    bool write(const void* buffer, std::int64_t bytes) override;
    bool seek(std::int64_t offset) override;
    std::int64_t position() const override { return position_; }
    std::optional<std::int64_t> size() override;
    bool close() override;

private:
    void moveTo(std::int64_t offset) {
        position_ = offset;
        highest_ = std::max(highest_, offset);
    }

    RefPtr<IStream> stream_;
    std::int64_t base_;
    std::int64_t position_ = 0;
    std::int64_t highest_ = 0;
};

std::int64_t StreamBytes::read(void* buffer, std::int64_t bytes) {
    auto* to = static_cast<std::byte*>(buffer);
    std::int64_t done = 0;
    while (stream_ && done < bytes) {
        const auto wanted = static_cast<ULONG>(std::min(bytes - done, kLargestCall));
        ULONG got = 0;
        if (FAILED(stream_->Read(to + done, wanted, &got)) || got > wanted) return -1;
        if (got == 0) break;
        done += got;
        moveTo(position_ + got);
    }
    return stream_ ? done : -1;
}

bool StreamBytes::write(const void* buffer, std::int64_t bytes) {
    const auto* from = static_cast<const std::byte*>(buffer);
    std::int64_t done = 0;
    while (stream_ && done < bytes) {
        const auto wanted = static_cast<ULONG>(std::min(bytes - done, kLargestCall));
        ULONG got = 0;
        if (FAILED(stream_->Write(from + done, wanted, &got)) || got == 0 || got > wanted) return false;
        done += got;
        moveTo(position_ + got);
    }
    return stream_ && done == bytes;
}

bool StreamBytes::seek(std::int64_t offset) {
    if (!stream_ || offset < 0 || offset > std::numeric_limits<std::int64_t>::max() - base_) return false;
    if (!seekStream(*stream_, base_ + offset, STREAM_SEEK_SET, nullptr)) return false;
    moveTo(offset);
    return true;
}

std::optional<std::int64_t> StreamBytes::size() {
    STATSTG about{};
    if (!stream_ || FAILED(stream_->Stat(&about, STATFLAG_NONAME))) return std::nullopt;
    const auto all = static_cast<std::int64_t>(about.cbSize.QuadPart);
    return all >= base_ ? std::optional(all - base_) : std::nullopt;
}

bool StreamBytes::close() {
    if (!stream_) return true;
    const bool placed = seekStream(*stream_, base_ + highest_, STREAM_SEEK_SET, nullptr);
    stream_.reset();
    return placed;
}

}  // namespace

std::unique_ptr<ByteStream> openStreamBytes(IStream* stream) {
    // Nothing is stored behind so many bytes, and what is counted from there stays in range.
    constexpr ULONGLONG kFarthest = std::numeric_limits<std::int64_t>::max() / 2;
    ULARGE_INTEGER base{};
    if (!stream || !seekStream(*stream, 0, STREAM_SEEK_CUR, &base)) return nullptr;
    if (base.QuadPart > kFarthest) return nullptr;
    return std::make_unique<StreamBytes>(stream, static_cast<std::int64_t>(base.QuadPart));
}

}  // namespace marnoth
