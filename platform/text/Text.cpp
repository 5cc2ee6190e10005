#include "platform/text/Text.h"

#include <algorithm>
#include <array>

#ifdef _WIN32
#include "platform/com/Com.h"
#endif

namespace marnoth {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLastCharacter = 0x10FFFF;

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}
bool isHighSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool isLowSurrogate(char32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

/// One character of UTF-8 and the bytes it takes; 0 bytes for what isn't one.
struct Utf8Character {
    char32_t value = 0;
    std::size_t bytes = 0;
};

/// The bytes that the form of `lead` takes, 0 for a byte that begins no character.
std::size_t lengthByLead(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

/// Reads the character at the front of `text`, which isn't empty.
Utf8Character readUtf8(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t bytes = lengthByLead(lead);
    if (bytes == 1) return {lead, 1};
    if (bytes == 0 || bytes > text.size()) return {};
    char32_t value = lead & (0x7Fu >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return {};
        value = value << 6 | (next & 0x3Fu);
    }
    constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    if (value < kSmallest[bytes] || value > kLastCharacter || isSurrogate(value)) return {};
    return {value, bytes};
}

void appendUtf8(std::string& out, char32_t c) {
    const auto tail = [&](int shift) { out.push_back(static_cast<char>(0x80 | (c >> shift & 0x3F))); };
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | c >> 12));
        tail(6);
        tail(0);
    } else {
        out.push_back(static_cast<char>(0xF0 | c >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

void appendWide(std::wstring& out, char32_t c) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (c >= 0x10000) {
            out.push_back(static_cast<wchar_t>(0xD7C0 + (c >> 10)));
            out.push_back(static_cast<wchar_t>(0xDC00 + (c & 0x3FF)));
            return;
        }
    }
    out.push_back(static_cast<wchar_t>(c));
}

char32_t unitAt(std::wstring_view text, std::size_t i) {
    if constexpr (sizeof(wchar_t) == 2) return static_cast<char16_t>(text[i]);
    return static_cast<char32_t>(text[i]);
}

/// Reads the character at `*i` and moves `*i` behind it.
char32_t readWide(std::wstring_view text, std::size_t* i) {
    const char32_t c = unitAt(text, (*i)++);
    if (isHighSurrogate(c) && *i < text.size() && isLowSurrogate(unitAt(text, *i))) {
        const char32_t low = unitAt(text, (*i)++);
        return 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
    }
    return isSurrogate(c) || c > kLastCharacter ? kReplacement : c;
}

/// The beginning of valid UTF-8 that fits, at a border between characters.
std::string_view cutUtf8(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) return text;
    std::size_t end = maxBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
}

}  // namespace

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t bytes = readUtf8(text).bytes;
        if (bytes == 0) return false;
        text.remove_prefix(bytes);
    }
    return true;
}

std::wstring wideFromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    while (!text.empty()) appendWide(out, takeUtf8(text));
    return out;
}

char32_t takeUtf8(std::string_view& text) {
    const Utf8Character c = readUtf8(text);
    text.remove_prefix(std::max<std::size_t>(c.bytes, 1));
    return c.bytes ? c.value : kReplacement;
}

std::string utf8FromWide(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) appendUtf8(out, readWide(text, &i));
    return out;
}

std::string systemFromWide(std::wstring_view text, std::size_t maxBytes) {
    const std::string all = systemFromWide(text);
    return std::string(cutSystem(all, maxBytes));
}

std::string storedFromWide(std::wstring_view text, std::size_t maxBytes) {
    std::string stored = systemFromWide(text, maxBytes);
    if (text.starts_with(wideFromStored(stored))) return stored;
    return std::string(cutUtf8(utf8FromWide(text), maxBytes));
}

std::wstring wideFromStored(std::string_view text) {
    return isUtf8(text) ? wideFromUtf8(text) : wideFromSystem(text);
}

namespace {

/// Bytes 0x80 to 0x9F of Windows-1252, after the mapping table that the Unicode Consortium publishes
/// (CP1252.TXT). The five bytes that it leaves undefined stand for the control characters of the same value,
/// as Windows reads them.
constexpr std::array<char16_t, 32> kWindows1252{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::wstring wideFromWindows1252(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        out.push_back(byte >= 0x80 && byte < 0xA0 ? static_cast<wchar_t>(kWindows1252[byte - 0x80u]) : byte);
    }
    return out;
}

std::wstring wideFromUtf8OrWindows1252(std::string_view text) {
    return isUtf8(text) ? wideFromUtf8(text) : wideFromWindows1252(text);
}

/// Text that isn't UTF-8 is read with one byte a character.
std::string_view cutUtf8OrWindows1252(std::string_view text, std::size_t maxBytes) {
    return isUtf8(text) ? cutUtf8(text, maxBytes) : text.substr(0, maxBytes);
}

}  // namespace

#ifdef _WIN32

std::wstring wideFromSystem(std::string_view text) {
    if (text.empty()) return {};
    if (GetACP() == CP_UTF8) return wideFromUtf8OrWindows1252(text);
    const int bytes = static_cast<int>(text.size());
    std::wstring out(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0)),
                     L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, out.data(), static_cast<int>(out.size()));
    return out;
}

std::string systemFromWide(std::wstring_view text) {
    if (text.empty()) return {};
    if (GetACP() == CP_UTF8) return utf8FromWide(text);
    const int units = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_ACP, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), units, out.data(), bytes, nullptr, nullptr);
    return out;
}

std::string_view cutSystem(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) return text;
    if (GetACP() == CP_UTF8) return cutUtf8OrWindows1252(text, maxBytes);
    // In a code page of one or two bytes only a walk from the front tells where characters begin.
    std::size_t end = 0;
    while (end < maxBytes) {
        const std::size_t bytes =
            IsDBCSLeadByte(static_cast<BYTE>(text[end])) && end + 1 < text.size() ? 2 : 1;
        if (end + bytes > maxBytes) break;
        end += bytes;
    }
    return text.substr(0, end);
}

std::filesystem::path pathFromWide(std::wstring_view name) {
    return std::filesystem::path(name);
}

std::wstring wideFromPath(const std::filesystem::path& path) {
    return path.native();
}

#else

std::wstring wideFromSystem(std::string_view text) {
    return wideFromUtf8OrWindows1252(text);
}

std::string systemFromWide(std::wstring_view text) {
    return utf8FromWide(text);
}

std::string_view cutSystem(std::string_view text, std::size_t maxBytes) {
    return cutUtf8OrWindows1252(text, maxBytes);
}

std::filesystem::path pathFromWide(std::wstring_view name) {
    return std::filesystem::path(utf8FromWide(name));
}

std::wstring wideFromPath(const std::filesystem::path& path) {
    return wideFromSystem(path.native());
}

#endif

}  // namespace marnoth
