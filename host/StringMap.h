#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "platform/com/ModuleLock.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// One list of names for a host to show.
///
/// Begins without a reference; the count is plain and there is no lock, so whoever hands a list out sees to
/// it that one thread at a time has it. The last `Release` deletes it.
class CStringMap : public IKvxNameList2 {
public:
    using Names = std::map<std::int32_t, std::wstring>;

    /// `listName` is in the system's code page.
    CStringMap(std::string_view listName, std::uint32_t maxCount, Names names = {});
    CStringMap(const CStringMap&) = delete;
    CStringMap& operator=(const CStringMap&) = delete;

    HRESULT QueryInterface(REFIID iid, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT GetListName(char* buffer, std::int32_t size) override;
    HRESULT GetMaxCount(std::uint32_t* count) override;
    HRESULT GetNameAt(std::int32_t id, char* buffer, std::int32_t size) override;
    HRESULT GetCount(std::uint32_t* count) override;
    HRESULT GetFirst(void** position) override;
    HRESULT GetNext(void** position, std::uint32_t* id, char* buffer, std::int32_t size) override;
    HRESULT FindName(std::int32_t id, char* buffer, std::int32_t size) override;

protected:
    virtual ~CStringMap() = default;

private:
    [[no_unique_address]] ModuleLock m_module;
    std::int32_t m_references = 0;
    const Names m_names;
    Names::const_iterator m_cursor = m_names.end();
    const std::wstring m_listName;
    const std::uint32_t m_maxCount;
};

/// Copies `text` in the system's code page to `buffer`, which is there when `size` is above 0. What doesn't
/// fit is left out, by whole characters, and the last of the `size` bytes is always zero.
HRESULT copyName(std::wstring_view text, char* buffer, std::int32_t size);

}  // namespace marnoth
