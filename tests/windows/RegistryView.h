#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "platform/com/Com.h"

namespace marnoth::test {

/// A key beneath `HKEY_CLASSES_ROOT`, or another one, open to be read for a scope; null where there is none.
class ReadKey {
public:
    explicit ReadKey(const std::wstring& path, HKEY root = HKEY_CLASSES_ROOT) {
        if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key_) != ERROR_SUCCESS) key_ = nullptr;
    }
    ~ReadKey() {
        if (key_) RegCloseKey(key_);
    }
    ReadKey(const ReadKey&) = delete;
    ReadKey& operator=(const ReadKey&) = delete;

    explicit operator bool() const { return key_ != nullptr; }
    HKEY get() const { return key_; }

private:
    HKEY key_ = nullptr;
};

inline bool isThere(const std::wstring& path) {
    return static_cast<bool>(ReadKey(path));
}

inline void makeKey(const std::wstring& path) {
    HKEY made = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_CLASSES_ROOT, path.c_str(), &made), ERROR_SUCCESS);
    RegCloseKey(made);
}

inline std::wstring idText(REFCLSID id) {
    wchar_t text[40]{};
    StringFromGUID2(id, text, 40);
    return text;
}

/// Texts by the names of values, each behind the path of its key.
using Values = std::map<std::wstring, std::wstring>;

/// What isn't a string is told by its type.
inline void collectValues(const ReadKey& key, const std::wstring& path, Values& values) {
    wchar_t name[300]{};
    BYTE bytes[4096]{};
    DWORD nameUnits = 300, type = 0, size = sizeof bytes;
    for (DWORD i = 0;
         RegEnumValueW(key.get(), i, name, &nameUnits, nullptr, &type, bytes, &size) == ERROR_SUCCESS;
         ++i, nameUnits = 300, size = sizeof bytes) {
        values[path + L"|" + name] =
            type == REG_SZ ? reinterpret_cast<const wchar_t*>(bytes) : L"type " + std::to_wstring(type);
    }
    for (DWORD i = 0; RegEnumKeyW(key.get(), i, name, 300) == ERROR_SUCCESS; ++i)
        collectValues(ReadKey(name, key.get()), path + L"\\" + name, values);
}

/// All values beneath a key of `HKEY_CLASSES_ROOT`; empty without the key.
inline Values valuesBeneath(const std::wstring& path) {
    Values values;
    if (const ReadKey key(path); key) collectValues(key, L"", values);
    return values;
}

/// The names of the keys right beneath one, behind its path.
inline std::set<std::wstring> keysBeneath(const std::wstring& path) {
    std::set<std::wstring> names;
    const ReadKey key(path);
    wchar_t name[300]{};
    for (DWORD i = 0; key && RegEnumKeyW(key.get(), i, name, 300) == ERROR_SUCCESS; ++i)
        names.insert(path + L"\\" + name);
    return names;
}

}  // namespace marnoth::test
