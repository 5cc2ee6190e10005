#include "host/StringMap.h"

#include <algorithm>
#include <new>
#include <utility>

#include "platform/com/Unknown.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

bool lacksBuffer(const char* buffer, std::int32_t size) {
    return !buffer && size > 0;
}

}  // namespace

HRESULT copyName(std::wstring_view text, char* buffer, std::int32_t size) try {
    if (!buffer || size < 1) return S_OK;
    const auto last = static_cast<std::size_t>(size) - 1;
    const std::string name = systemFromWide(text, last);
    std::copy(name.begin(), name.end(), buffer);
    buffer[name.size()] = 0;
    buffer[last] = 0;
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

CStringMap::CStringMap(std::string_view listName, std::uint32_t maxCount, Names names)
    : m_names(std::move(names)), m_listName(wideFromSystem(listName)), m_maxCount(maxCount) {}

HRESULT CStringMap::QueryInterface(REFIID iid, void** out) {
    const bool known = iid == IID_IUnknown || iid == IID_IKvxNameList || iid == IID_IKvxNameList2;
    return AnswerQuery(known ? this : nullptr, out);
}

ULONG CStringMap::AddRef() {
    return static_cast<ULONG>(++m_references);
}

ULONG CStringMap::Release() {
    const std::int32_t left = --m_references;
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT CStringMap::GetListName(char* buffer, std::int32_t size) {
    return buffer ? copyName(m_listName, buffer, size) : E_POINTER;
}

HRESULT CStringMap::GetMaxCount(std::uint32_t* count) {
    if (!count) return E_POINTER;
    *count = m_maxCount;
    return S_OK;
}

HRESULT CStringMap::GetNameAt(std::int32_t id, char* buffer, std::int32_t size) {
    if (lacksBuffer(buffer, size)) return E_POINTER;
    if (id < 0 || static_cast<std::uint32_t>(id) >= m_maxCount) return E_INVALIDARG;
    const auto found = m_names.find(id);
    return copyName(found == m_names.end() ? std::wstring_view() : found->second, buffer, size);
}

HRESULT CStringMap::GetCount(std::uint32_t* count) {
    if (!count) return E_POINTER;
    *count = static_cast<std::uint32_t>(m_names.size());
    return S_OK;
}

HRESULT CStringMap::GetFirst(void** position) {
    if (!position) return E_POINTER;
    m_cursor = m_names.begin();
    *position = &m_cursor;
    return S_OK;
}

HRESULT CStringMap::GetNext(void** position, std::uint32_t* id, char* buffer, std::int32_t size) {
    if (!position || lacksBuffer(buffer, size)) return E_POINTER;
    if (!*position || m_cursor == m_names.end()) return S_FALSE;
    if (id) *id = static_cast<std::uint32_t>(m_cursor->first);
    if (const HRESULT hr = copyName(m_cursor->second, buffer, size); FAILED(hr)) return hr;
    ++m_cursor;
    *position = &m_cursor;
    return S_OK;
}

HRESULT CStringMap::FindName(std::int32_t id, char* buffer, std::int32_t size) {
    if (lacksBuffer(buffer, size)) return E_POINTER;
    const auto found = m_names.find(id);
    return found == m_names.end() ? S_FALSE : copyName(found->second, buffer, size);
}

}  // namespace marnoth
