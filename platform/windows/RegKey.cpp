#include "platform/windows/RegKey.h"

#include <vector>

namespace marnoth {

namespace {

HKEY hiveOf(std::int32_t hive) {
    switch (hive) {
        case CRegKeyBase::kLocalMachine:
            return HKEY_LOCAL_MACHINE;
        case CRegKeyBase::kCurrentUser:
            return HKEY_CURRENT_USER;
        case CRegKeyBase::kClassesRoot:
            return HKEY_CLASSES_ROOT;
        default:
            return nullptr;
    }
}

}  // namespace

CRegKeyBase::CRegKeyBase(const wchar_t* path, const wchar_t* subKey, std::uint32_t mode, std::int32_t hive,
                         std::int32_t)
    : mode_(mode) {
    HKEY const root = hiveOf(hive);
    if (!root || !path) return;
    std::wstring name = path;
    if (subKey && *subKey) name.append(L"\\").append(subKey);
    if (RegOpenKeyExW(root, name.c_str(), 0, KEY_READ, &key_) == ERROR_SUCCESS) return;
    key_ = nullptr;
    if (mode_ != kCreate) return;
    if (RegCreateKeyExW(root, name.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key_, nullptr) !=
        ERROR_SUCCESS)
        key_ = nullptr;
}

CRegKeyBase::~CRegKeyBase() {
    if (key_) RegCloseKey(key_);
}

void CRegKeyBase::QueryString(const wchar_t* name, const wchar_t* fallback, std::wstring* out) const {
    if (!out) return;
    if (!key_ || !readString(name, *out)) *out = fallback ? fallback : L"";
}

bool CRegKeyBase::readString(const wchar_t* name, std::wstring& text) const {
    DWORD type = 0;
    DWORD bytes = 0;
    std::vector<wchar_t> units;
    LSTATUS result = ERROR_MORE_DATA;
    // Between the two questions the value may grow.
    for (int tries = 0; tries < 8 && result == ERROR_MORE_DATA; ++tries) {
        units.resize(bytes / sizeof(wchar_t) + 2);
        bytes = static_cast<DWORD>(units.size() * sizeof(wchar_t));
        result = RegQueryValueExW(key_, name, nullptr, &type, reinterpret_cast<BYTE*>(units.data()), &bytes);
    }
    if (result != ERROR_SUCCESS || type != REG_SZ || bytes == 0) return false;
    const std::size_t count = bytes / sizeof(wchar_t);
    units.resize(count ? count : 1);
    units.back() = L'\0';
    text = units.data();
    return true;
}

}  // namespace marnoth
