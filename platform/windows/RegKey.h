#pragma once

#include <cstdint>
#include <string>

#include "platform/com/Com.h"

namespace marnoth {

/// An open key of the registry, or none. Closed when it goes.
class CRegKeyBase {
public:
    // Where paths begin.
    static constexpr std::int32_t kLocalMachine = -1;
    static constexpr std::int32_t kCurrentUser = -2;
    static constexpr std::int32_t kClassesRoot = -3;
    // What becomes of a key that can't be opened.
    static constexpr std::uint32_t kOpen = 0;
    static constexpr std::uint32_t kCreate = 1;

    /// Opens `path`, or `path\subKey` where that is given and not empty. There is no key when `hive` is none
    /// of the three, or when it can't be opened, nor created with `kCreate`. `force` has no effect.
    CRegKeyBase(const wchar_t* path, const wchar_t* subKey, std::uint32_t mode, std::int32_t hive,
                std::int32_t force);
    CRegKeyBase(const CRegKeyBase&) = delete;
    CRegKeyBase& operator=(const CRegKeyBase&) = delete;

    bool isOpen() const { return key_ != nullptr; }

    /// The value of `name`, null or empty for the key's own, if there is one of a string's type that isn't
    /// empty; else `fallback`. The last code unit, which ends what is written as it should be, is never part
    /// of the text. Nothing for a null `out`.
    void QueryString(const wchar_t* name, const wchar_t* fallback, std::wstring* out) const;

protected:
    ~CRegKeyBase();

private:
    bool readString(const wchar_t* name, std::wstring& text) const;

    HKEY key_ = nullptr;
    const std::uint32_t mode_;
};

class CRegKey : public CRegKeyBase {
public:
    using CRegKeyBase::CRegKeyBase;
    virtual ~CRegKey() = default;
};

}  // namespace marnoth
