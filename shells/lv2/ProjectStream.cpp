#include "shells/lv2/ProjectStream.h"

#include <algorithm>
#include <array>

namespace marnoth {

namespace {

/// Version 0 as hosts' streams have it: eleven digits and a blank in UTF-16.
constexpr std::array<BYTE, 24> kWord{'0', 0, '0', 0, '0', 0, '0', 0, '0', 0, '0', 0,
                                     '0', 0, '0', 0, '0', 0, '0', 0, '0', 0, ' ', 0};
constexpr LONGLONG kWordBytes = kWord.size();

/// How many of `count` bytes at a position are the word's.
ULONG countInWord(LONGLONG position, ULONG count) {
    return static_cast<ULONG>(std::clamp<LONGLONG>(kWordBytes - position, 0, count));
}

}  // namespace

IUnknown* ProjectStream::FindInterface(REFIID iid) {
    const bool known = IsEqualIID(iid, IID_IStream) || IsEqualIID(iid, IID_ISequentialStream);
    return known ? static_cast<IStream*>(this) : nullptr;
}

HRESULT ProjectStream::Read(void* bytes, ULONG count, ULONG* read) {
    const ULONG fromWord = countInWord(position_, count);
    auto* to = static_cast<BYTE*>(bytes);
    std::copy_n(kWord.begin() + std::min(position_, kWordBytes), fromWord, to);
    ULONG rest = 0;
    HRESULT hr = S_OK;
    if (count > fromWord) hr = project_->Read(to + fromWord, count - fromWord, &rest);
    position_ += fromWord + rest;
    if (read) *read = fromWord + rest;
    return hr;
}

HRESULT ProjectStream::Write(const void* bytes, ULONG count, ULONG* written) {
    const ULONG toWord = countInWord(position_, count);
    ULONG rest = 0;
    HRESULT hr = S_OK;
    if (count > toWord) hr = project_->Write(static_cast<const BYTE*>(bytes) + toWord, count - toWord, &rest);
    position_ += toWord + rest;
    if (written) *written = toWord + rest;
    return hr;
}

HRESULT ProjectStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
    constexpr LONGLONG kFarthest = LONGLONG{1} << 62;
    if (origin > STREAM_SEEK_CUR || move.QuadPart > kFarthest) return STG_E_INVALIDFUNCTION;
    const LONGLONG target = move.QuadPart + (origin == STREAM_SEEK_CUR ? position_ : 0);
    if (target < 0 || target > kFarthest) return STG_E_INVALIDFUNCTION;
    LARGE_INTEGER inProject;
    inProject.QuadPart = std::max<LONGLONG>(target - kWordBytes, 0);
    const HRESULT hr = project_->Seek(inProject, STREAM_SEEK_SET, nullptr);
    if (FAILED(hr)) return hr;
    position_ = target;
    if (position) position->QuadPart = static_cast<ULONGLONG>(target);
    return S_OK;
}

HRESULT ProjectStream::Stat(STATSTG* out, DWORD flags) {
    const HRESULT hr = project_->Stat(out, flags);
    if (SUCCEEDED(hr)) out->cbSize.QuadPart += kWordBytes;
    return hr;
}

}  // namespace marnoth
