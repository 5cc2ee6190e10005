#include "platform/com/PersistStream.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "platform/graph/Graph.h"

namespace marnoth {

namespace {

constexpr std::size_t kWordUnits = 12;
constexpr ULONG kWordBytes = 24;

HRESULT writeVersion(IStream* stream, int version) {
    std::array<char, kWordUnits + 1> digits{};
    std::snprintf(digits.data(), digits.size(), "%011d ", version);
    std::array<BYTE, kWordBytes> word{};
    for (std::size_t i = 0; i < kWordUnits; ++i) word[2 * i] = static_cast<BYTE>(digits[i]);
    ULONG written = 0;
    const HRESULT hr = stream->Write(word.data(), kWordBytes, &written);
    if (FAILED(hr)) return hr;
    return written == kWordBytes ? S_OK : E_FAIL;
}

HRESULT readUnit(IStream* stream, std::uint16_t* unit) {
    std::array<BYTE, 2> bytes{};
    ULONG read = 0;
    const HRESULT hr = stream->Read(bytes.data(), 2, &read);
    if (FAILED(hr)) return hr;
    if (read != 2) return VFW_E_INVALID_FILE_FORMAT;
    *unit = static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
    return S_OK;
}

bool endsNumber(std::uint16_t unit) {
    return unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n' || unit == 0;
}

int nearestInt(std::int64_t number) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
}

/// Reads up to the end of the number and no further.
HRESULT readVersion(IStream* stream, int* version) {
    bool negative = false;
    std::int64_t number = 0;
    int digits = 0;
    for (std::size_t i = 0; i < kWordUnits; ++i) {
        std::uint16_t unit = 0;
        const HRESULT hr = readUnit(stream, &unit);
        if (FAILED(hr)) return hr;
        if (i == 0 && unit == '-') {
            negative = true;
        } else if (unit >= '0' && unit <= '9') {
            number = number * 10 + (unit - '0');  // at most eleven digits come before an end
            ++digits;
        } else if (endsNumber(unit) && digits > 0) {
            *version = nearestInt(negative ? -number : number);
            return S_OK;
        } else {
            return VFW_E_INVALID_FILE_FORMAT;
        }
    }
    return VFW_E_INVALID_FILE_FORMAT;
}

}  // namespace

HRESULT CPersistStream::Load(IStream* stream) {
    if (!stream) return E_POINTER;
    const HRESULT hr = readVersion(stream, &loadedVersion_);
    return FAILED(hr) ? hr : ReadFromStream(stream);
}

HRESULT CPersistStream::Save(IStream* stream, BOOL clearDirty) {
    if (!stream) return E_POINTER;
    HRESULT hr = writeVersion(stream, PersistVersion());
    if (SUCCEEDED(hr)) hr = WriteToStream(stream);
    if (SUCCEEDED(hr)) dirty_ = !clearDirty;
    return hr;
}

HRESULT CPersistStream::GetSizeMax(ULARGE_INTEGER* bytes) {
    if (!bytes) return E_POINTER;
    bytes->QuadPart = kWordBytes + static_cast<ULONGLONG>(SizeMax());
    return S_OK;
}

}  // namespace marnoth
