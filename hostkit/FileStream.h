#pragma once

#include <filesystem>
#include <memory>

#include "hostkit/PlainStream.h"
#include "platform/bytes/ByteStream.h"
#include "platform/com/RefPtr.h"

#ifndef _WIN32
inline constexpr HRESULT STG_E_FILENOTFOUND = static_cast<HRESULT>(0x80030002);
#endif

namespace marnoth {

/// A file as the stream that a host gives an instrument to save itself to or to load itself from.
///
/// Buffered: an error of the medium may only show in `Commit` or `close`, so whoever writes ends with one of
/// them. Reading and seeking work in both modes, writing only in a new file (`STG_E_ACCESSDENIED`). One
/// thread at a time. What a file can't do (locking regions, cloning, reverting) gives
/// `STG_E_INVALIDFUNCTION`.
class FileStream : public PlainStream {
public:
    /// Opens the file with the position at its beginning. `FileMode::create` empties a file that is there.
    /// `STG_E_FILENOTFOUND` when there is no such file to read, `STG_E_ACCESSDENIED` for everything else that
    /// keeps it from being opened.
    static HRESULT open(const std::filesystem::path& path, FileMode mode, RefPtr<FileStream>* out);

    /// Writes out what is held back and lets go of the file; everything fails from then on.
    /// `STG_E_WRITEFAULT` when something was lost.
    HRESULT close();

    // IStream. A read that meets the end of the file gives `S_FALSE` and the bytes that there were.
    HRESULT Read(void* bytes, ULONG count, ULONG* read) override;
    HRESULT Write(const void* bytes, ULONG count, ULONG* written) override;
    /// To a place before the beginning: `STG_E_INVALIDFUNCTION`. Behind the end is allowed.
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    HRESULT SetSize(ULARGE_INTEGER size) override;
    HRESULT Commit(DWORD flags) override;
    /// Size and mode; there is no name, whatever the flags ask for.
    HRESULT Stat(STATSTG* out, DWORD flags) override;

private:
    FileStream(std::unique_ptr<ByteStream> bytes, FileMode mode);
    IUnknown* FindInterface(REFIID iid) override;

    const std::unique_ptr<ByteStream> bytes_;
    const FileMode mode_;
};

}  // namespace marnoth
