#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "host/StringMap.h"
#include "platform/com/RefPtr.h"
#include "platform/system/CritSec.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// The names that the instrument offers to a host. It has no patches: there is one bank, and every list has
/// a name and no entries. Lists are made when they are first asked for and stay; a host may hold them longer.
///
/// Everything but the name and the reference count runs under a lock of its own. Begins without a reference;
/// the count is plain, so one thread at a time takes and gives references. The last `Release` deletes it.
class CInstrument : public IKvxInstrument {
public:
    explicit CInstrument(std::wstring_view name) : m_name(name) {}
    CInstrument(const CInstrument&) = delete;
    CInstrument& operator=(const CInstrument&) = delete;

    /// Hosts rely on `S_OK` and a reference for any interface; `*out` is left alone for those that aren't
    /// there.
    HRESULT QueryInterface(REFIID iid, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT GetName(char* buffer, std::int32_t size) override;
    HRESULT GetBankList(std::int32_t** banks, std::uint32_t* count) override;
    HRESULT QueryPatchFalse(std::int32_t bank, std::int32_t patch) override;
    HRESULT QueryPatchTrue(std::int32_t bank, std::int32_t patch) override;
    HRESULT GetPatchList(std::int32_t bank, IKvxNameList** out) override;
    HRESULT GetNoteList(std::int32_t bank, std::int32_t patch, IKvxNameList** out) override;
    HRESULT GetControllerList(IKvxNameList** out) override;
    HRESULT GetRpnList(IKvxNameList** out) override;
    HRESULT GetNrpnList(IKvxNameList** out) override;

protected:
    virtual ~CInstrument() = default;

    // How lists come to be, each unless it is there already. Under the lock.

    virtual HRESULT BuildPatchList(std::int32_t bank);
    virtual HRESULT BuildNoteList(std::int32_t bank, std::int32_t patch);
    virtual HRESULT BuildControllerList();
    virtual HRESULT BuildRpnList();
    virtual HRESULT BuildNrpnList();

private:
    using List = RefPtr<CStringMap>;
    using Lists = std::map<std::int32_t, List>;

    HRESULT makeList(std::wstring_view kind, std::uint32_t maxCount, List& list) const;
    HRESULT makeEntry(Lists& lists, std::int32_t key, std::wstring_view kind) const;

    [[no_unique_address]] ModuleLock m_module;
    CCritSec m_lock;
    std::int32_t m_references = 0;
    const std::wstring m_name;
    List m_controllers;
    List m_rpns;
    List m_nrpns;
    Lists m_patchLists;  ///< by bank
    Lists m_noteLists;   ///< by bank * 65536 + the low 16 bits of the patch
};

}  // namespace marnoth
