#include "hostkit/FileStream.h"

#include <limits>
#include <optional>
#include <system_error>

namespace marnoth {

FileStream::FileStream(std::unique_ptr<ByteStream> bytes, FileMode mode)
    : bytes_(std::move(bytes)), mode_(mode) {}

HRESULT FileStream::open(const std::filesystem::path& path, FileMode mode, RefPtr<FileStream>* out) {
    auto bytes = openFileBytes(path, mode);
    if (!bytes) {
        std::error_code error;
        const bool missing = mode == FileMode::read && !std::filesystem::exists(path, error);
        return missing ? STG_E_FILENOTFOUND : STG_E_ACCESSDENIED;
    }
    *out = RefPtr<FileStream>::adopt(new FileStream(std::move(bytes), mode));
    return S_OK;
}

HRESULT FileStream::close() {
    return bytes_->close() ? S_OK : STG_E_WRITEFAULT;
}

IUnknown* FileStream::FindInterface(REFIID iid) {
    const bool known = IsEqualIID(iid, IID_IStream) || IsEqualIID(iid, IID_ISequentialStream);
    return known ? static_cast<IStream*>(this) : nullptr;
}

HRESULT FileStream::Read(void* bytes, ULONG count, ULONG* read) {
    if (read) *read = 0;
    if (!bytes) return STG_E_INVALIDPOINTER;
    const std::int64_t got = bytes_->read(bytes, count);
    if (got < 0) return STG_E_READFAULT;
    if (read) *read = static_cast<ULONG>(got);
    return got == count ? S_OK : S_FALSE;
}

HRESULT FileStream::Write(const void* bytes, ULONG count, ULONG* written) {
    if (written) *written = 0;
    if (!bytes) return STG_E_INVALIDPOINTER;
    if (mode_ != FileMode::create) return STG_E_ACCESSDENIED;
    if (!bytes_->write(bytes, count)) return STG_E_WRITEFAULT;
    if (written) *written = count;
    return S_OK;
}

HRESULT FileStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
    std::optional<std::int64_t> base;
    if (origin == STREAM_SEEK_SET) base = 0;
    if (origin == STREAM_SEEK_CUR) base = bytes_->position();
    if (origin == STREAM_SEEK_END) base = bytes_->size();
    if (!base || move.QuadPart > std::numeric_limits<std::int64_t>::max() - *base)
        return STG_E_INVALIDFUNCTION;
    const std::int64_t target = *base + move.QuadPart;
    if (target < 0 || !bytes_->seek(target)) return STG_E_INVALIDFUNCTION;
    if (position) position->QuadPart = static_cast<ULONGLONG>(target);
    return S_OK;
}

HRESULT FileStream::Commit(DWORD) {
    // To tell its size a file must have everything that is held back.
    return bytes_->size() ? S_OK : STG_E_WRITEFAULT;
}

HRESULT FileStream::Stat(STATSTG* out, DWORD) {
    if (!out) return STG_E_INVALIDPOINTER;
    *out = {};
    const auto size = bytes_->size();
    if (!size) return STG_E_WRITEFAULT;
    out->type = STGTY_STREAM;
    out->cbSize.QuadPart = static_cast<ULONGLONG>(*size);
    out->grfMode = mode_ == FileMode::create ? STGM_READWRITE : STGM_READ;
    return S_OK;
}

HRESULT FileStream::SetSize(ULARGE_INTEGER) {
    return STG_E_INVALIDFUNCTION;
}

}  // namespace marnoth
