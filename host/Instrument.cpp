#include "host/Instrument.h"

#include <new>
#include <utility>

#include "platform/text/Text.h"

namespace marnoth {

namespace {

constexpr std::int32_t kAny = -1;
constexpr std::int32_t kLastBank = 16383;
constexpr std::int32_t kLastPatch = 127;
constexpr std::uint32_t kMidiNumbers = 128;
constexpr std::uint32_t kParameterNumbers = 16383;

bool isBank(std::int32_t bank) {
    return bank >= kAny && bank <= kLastBank;
}

bool isPatch(std::int32_t patch) {
    return patch >= kAny && patch <= kLastPatch;
}

std::int32_t noteKey(std::int32_t bank, std::int32_t patch) {
    return bank * 0x10000 + (patch & 0xFFFF);
}

HRESULT giveList(const RefPtr<CStringMap>& list, IKvxNameList** out) {
    *out = RefPtr<CStringMap>(list).detach();
    return S_OK;
}

HRESULT giveEntry(const std::map<std::int32_t, RefPtr<CStringMap>>& lists, std::int32_t key,
                  IKvxNameList** out) {
    const auto found = lists.find(key);
    return found == lists.end() ? E_FAIL : giveList(found->second, out);
}

}  // namespace

HRESULT CInstrument::QueryInterface(REFIID iid, void** out) {
    if (!out) return E_POINTER;
    if (iid == IID_IUnknown || iid == IID_IKvxInstrument) *out = static_cast<IKvxInstrument*>(this);
    AddRef();
    return S_OK;
}

ULONG CInstrument::AddRef() {
    return static_cast<ULONG>(++m_references);
}

ULONG CInstrument::Release() {
    const std::int32_t left = --m_references;
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT CInstrument::GetName(char* buffer, std::int32_t size) try {
    const auto bytes = static_cast<std::int64_t>(systemFromWide(m_name).size());
    if (!buffer || size < bytes + 1) return E_POINTER;
    return copyName(m_name, buffer, size);
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT CInstrument::GetBankList(std::int32_t** banks, std::uint32_t* count) {
    CAutoLock lock(m_lock);
    if (!banks || !count) return E_POINTER;
    *banks = static_cast<std::int32_t*>(CoTaskMemAlloc(sizeof(std::int32_t)));
    *count = *banks ? 1 : 0;
    if (!*banks) return E_OUTOFMEMORY;
    **banks = 0;
    return S_OK;
}

HRESULT CInstrument::QueryPatchFalse(std::int32_t bank, std::int32_t patch) {
    CAutoLock lock(m_lock);
    return isBank(bank) && isPatch(patch) ? S_FALSE : E_INVALIDARG;
}

HRESULT CInstrument::QueryPatchTrue(std::int32_t bank, std::int32_t patch) {
    CAutoLock lock(m_lock);
    return isBank(bank) && isPatch(patch) ? S_OK : E_INVALIDARG;
}

HRESULT CInstrument::GetPatchList(std::int32_t bank, IKvxNameList** out) {
    CAutoLock lock(m_lock);
    if (out) *out = nullptr;
    if (!isBank(bank)) return E_INVALIDARG;
    if (!out) return E_POINTER;
    if (const HRESULT hr = BuildPatchList(bank); FAILED(hr)) return hr;
    return giveEntry(m_patchLists, bank, out);
}

HRESULT CInstrument::GetNoteList(std::int32_t bank, std::int32_t patch, IKvxNameList** out) {
    CAutoLock lock(m_lock);
    if (out) *out = nullptr;
    if (!isBank(bank)) return E_INVALIDARG;
    if (!out) return E_POINTER;
    if (const HRESULT hr = BuildNoteList(bank, patch); FAILED(hr)) return hr;
    const HRESULT hr = giveEntry(m_noteLists, noteKey(bank, patch), out);
    return FAILED(hr) ? hr : S_FALSE;
}

HRESULT CInstrument::GetControllerList(IKvxNameList** out) {
    CAutoLock lock(m_lock);
    if (!out) return E_POINTER;
    *out = nullptr;
    if (const HRESULT hr = BuildControllerList(); FAILED(hr)) return hr;
    return giveList(m_controllers, out);
}

HRESULT CInstrument::GetRpnList(IKvxNameList** out) {
    CAutoLock lock(m_lock);
    if (!out) return E_POINTER;
    *out = nullptr;
    if (const HRESULT hr = BuildRpnList(); FAILED(hr)) return hr;
    return giveList(m_rpns, out);
}

HRESULT CInstrument::GetNrpnList(IKvxNameList** out) {
    CAutoLock lock(m_lock);
    if (!out) return E_POINTER;
    *out = nullptr;
    if (const HRESULT hr = BuildNrpnList(); FAILED(hr)) return hr;
    return giveList(m_nrpns, out);
}

HRESULT CInstrument::BuildPatchList(std::int32_t bank) {
    return makeEntry(m_patchLists, bank, L" Patches");
}

HRESULT CInstrument::BuildNoteList(std::int32_t bank, std::int32_t patch) {
    return makeEntry(m_noteLists, noteKey(bank, patch), L" Notes");
}

HRESULT CInstrument::BuildControllerList() {
    return makeList(L" Controllers", kMidiNumbers, m_controllers);
}

HRESULT CInstrument::BuildRpnList() {
    return makeList(L" RPNs", kParameterNumbers, m_rpns);
}

HRESULT CInstrument::BuildNrpnList() {
    return makeList(L" NRPNs", kParameterNumbers, m_nrpns);
}

/// Makes `list` unless it is there.
HRESULT CInstrument::makeList(std::wstring_view kind, std::uint32_t maxCount, List& list) const try {
    if (list) return S_OK;
    const std::string name = systemFromWide(m_name + std::wstring(kind));
    list = List(new CStringMap(name, maxCount));
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT CInstrument::makeEntry(Lists& lists, std::int32_t key, std::wstring_view kind) const try {
    if (lists.contains(key)) return S_OK;
    List list;
    if (const HRESULT hr = makeList(kind, kMidiNumbers, list); FAILED(hr)) return hr;
    lists.emplace(key, std::move(list));
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

}  // namespace marnoth
