#pragma once

#include <cstdint>
#include <vector>

#include "hostkit/PlainStream.h"

namespace marnoth {

/// Bytes in memory as the stream that a host gives an instrument to save itself to or to load itself from:
/// for hosts that keep a state among their own bytes.
///
/// Reads, writes and seeks; a write behind the end fills what lies between with zeros. One thread at a time.
/// What it can't do (copying, locking regions, cloning, reverting) gives `STG_E_INVALIDFUNCTION`.
class MemoryStream : public PlainStream {
public:
    /// Stands at the beginning of `content`.
    explicit MemoryStream(std::vector<std::uint8_t> content = {}) : bytes_(std::move(content)) {}

    const std::vector<std::uint8_t>& bytes() const { return bytes_; }
    /// Gives all bytes away; the stream is empty then and stands at its beginning.
    std::vector<std::uint8_t> takeBytes();

    // IStream. A read that meets the end gives `S_FALSE` and the bytes that there were.
    HRESULT Read(void* bytes, ULONG count, ULONG* read) override;
    /// Everything or, with `STG_E_MEDIUMFULL`, nothing.
    HRESULT Write(const void* bytes, ULONG count, ULONG* written) override;
    /// To a place before the beginning: `STG_E_INVALIDFUNCTION`. Behind the end is allowed.
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    /// Cuts, or fills with zeros. The position stays. `STG_E_MEDIUMFULL`.
    HRESULT SetSize(ULARGE_INTEGER size) override;
    HRESULT Commit(DWORD) override { return S_OK; }
    /// Size and mode; there is no name, whatever the flags ask for.
    HRESULT Stat(STATSTG* out, DWORD flags) override;

private:
    IUnknown* FindInterface(REFIID iid) override;
    bool resize(std::uint64_t size);

    std::vector<std::uint8_t> bytes_;
    std::uint64_t position_ = 0;
};

}  // namespace marnoth
