#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "platform/com/Com.h"

namespace marnoth::test {

/// A stream over bytes in memory, as a host gives one. Can be made to fail from a call on, at one call, or to
/// tell what isn't so. Lives where it is
/// declared: references are counted, and nothing deletes it.
class FaultyStream : public IStream {
public:
    FaultyStream() = default;
    explicit FaultyStream(std::vector<std::uint8_t> content) : bytes(std::move(content)) {}
    virtual ~FaultyStream() = default;

    std::vector<std::uint8_t> bytes;
    std::uint64_t position = 0;
    ULONG references = 1;
    int calls = 0;         ///< of `Read`, `Write` and `Seek`
    int failFromCall = 0;  ///< the first call that fails, from 1; 0 for none
    int failAtCall = 0;    ///< the one call that fails, as if nothing had been asked; 0 for none
    /// The most that a call carries, as `S_OK` all the same.
    ULONG mostAtOnce = std::numeric_limits<ULONG>::max();
    std::uint64_t toldPosition = 0;  ///< added to the position that is told
    /// The first byte that can be neither read nor written: what comes before it is, as far as it goes.
    std::uint64_t brokenFrom = std::numeric_limits<std::uint64_t>::max();
    bool knowsSize = true;

    HRESULT QueryInterface(REFIID iid, void** out) override {
        *out = nullptr;
        if (!(IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IStream))) return E_NOINTERFACE;
        AddRef();
        *out = static_cast<IStream*>(this);
        return S_OK;
    }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }

    HRESULT Read(void* to, ULONG count, ULONG* read) override {
        if (fails()) return E_FAIL;
        const std::uint64_t left = position < bytes.size() ? bytes.size() - position : 0;
        const auto got = static_cast<ULONG>(
            std::min({std::uint64_t{count}, left, bytesToTheBreak(), std::uint64_t{mostAtOnce}}));
        if (got > 0) std::memcpy(to, bytes.data() + position, got);
        position += got;
        if (read) *read = got;
        if (position >= brokenFrom && got < count) return STG_E_READFAULT;
        return got == count || got == mostAtOnce ? S_OK : S_FALSE;
    }
    HRESULT Write(const void* from, ULONG wanted, ULONG* written) override {
        if (fails()) return E_FAIL;
        const auto count = static_cast<ULONG>(
            std::min({std::uint64_t{wanted}, bytesToTheBreak(), std::uint64_t{mostAtOnce}}));
        if (position + count > bytes.size()) bytes.resize(position + count);
        if (count > 0) std::memcpy(bytes.data() + position, from, count);
        position += count;
        if (written) *written = count;
        return count == wanted || count == mostAtOnce ? S_OK : STG_E_MEDIUMFULL;
    }
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* now) override {
        if (fails()) return E_FAIL;
        const std::int64_t bases[] = {0, static_cast<std::int64_t>(position),
                                      static_cast<std::int64_t>(bytes.size())};
        if (origin > 2 || bases[origin] + move.QuadPart < 0) return E_INVALIDARG;
        position = static_cast<std::uint64_t>(bases[origin] + move.QuadPart);
        if (now) now->QuadPart = position + toldPosition;
        return S_OK;
    }
    HRESULT Stat(STATSTG* out, DWORD) override {
        if (!knowsSize) return E_NOTIMPL;
        *out = {};
        out->type = STGTY_STREAM;
        out->cbSize.QuadPart = bytes.size();
        return S_OK;
    }
    HRESULT SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT Commit(DWORD) override { return S_OK; }
    HRESULT Revert() override { return E_NOTIMPL; }
    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Clone(IStream**) override { return E_NOTIMPL; }

private:
    std::uint64_t bytesToTheBreak() const { return position < brokenFrom ? brokenFrom - position : 0; }
    bool fails() {
        ++calls;
        return calls == failAtCall || (failFromCall > 0 && calls >= failFromCall);
    }
};

}  // namespace marnoth::test
