#include "hostkit/MemoryStream.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <utility>

namespace marnoth {

std::vector<std::uint8_t> MemoryStream::takeBytes() {
    position_ = 0;
    return std::exchange(bytes_, {});
}

IUnknown* MemoryStream::FindInterface(REFIID iid) {
    const bool known = IsEqualIID(iid, IID_IStream) || IsEqualIID(iid, IID_ISequentialStream);
    return known ? static_cast<IStream*>(this) : nullptr;
}

HRESULT MemoryStream::Read(void* bytes, ULONG count, ULONG* read) {
    if (read) *read = 0;
    if (!bytes) return STG_E_INVALIDPOINTER;
    const std::uint64_t left = position_ < bytes_.size() ? bytes_.size() - position_ : 0;
    const auto got = static_cast<ULONG>(std::min<std::uint64_t>(count, left));
    if (got > 0) std::memcpy(bytes, bytes_.data() + position_, got);
    position_ += got;
    if (read) *read = got;
    return got == count ? S_OK : S_FALSE;
}

HRESULT MemoryStream::Write(const void* bytes, ULONG count, ULONG* written) {
    if (written) *written = 0;
    if (!bytes) return STG_E_INVALIDPOINTER;
    const std::uint64_t end = position_ + count;
    if (count > 0 && end > bytes_.size() && !resize(end)) return STG_E_MEDIUMFULL;
    if (count > 0) std::memcpy(bytes_.data() + position_, bytes, count);
    position_ = end;
    if (written) *written = count;
    return S_OK;
}

HRESULT MemoryStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
    std::optional<std::int64_t> base;
    if (origin == STREAM_SEEK_SET) base = 0;
    if (origin == STREAM_SEEK_CUR) base = static_cast<std::int64_t>(position_);
    if (origin == STREAM_SEEK_END) base = static_cast<std::int64_t>(bytes_.size());
    if (!base || move.QuadPart > std::numeric_limits<std::int64_t>::max() - *base)
        return STG_E_INVALIDFUNCTION;
    const std::int64_t target = *base + move.QuadPart;
    if (target < 0) return STG_E_INVALIDFUNCTION;
    position_ = static_cast<std::uint64_t>(target);
    if (position) position->QuadPart = position_;
    return S_OK;
}

HRESULT MemoryStream::SetSize(ULARGE_INTEGER size) {
    return resize(size.QuadPart) ? S_OK : STG_E_MEDIUMFULL;
}

bool MemoryStream::resize(std::uint64_t size) {
    if (size > bytes_.max_size()) return false;
    try {
        bytes_.resize(static_cast<std::size_t>(size));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

HRESULT MemoryStream::Stat(STATSTG* out, DWORD) {
    if (!out) return STG_E_INVALIDPOINTER;
    *out = {};
    out->type = STGTY_STREAM;
    out->cbSize.QuadPart = bytes_.size();
    out->grfMode = STGM_READWRITE;
    return S_OK;
}

}  // namespace marnoth
