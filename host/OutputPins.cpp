#include <algorithm>
#include <atomic>
#include <new>
#include <string>

#include "host/Filter.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

constexpr std::size_t kLongestPinName = 256;
/// Failed blocks whose samples find room without asking for memory. There are about as many samples to a pin.
constexpr std::size_t kFailedBlocks = 8;
constexpr std::uint32_t kNoPinId = 0xFFFFFFFF;

/// Ids are never used again and shared by all instruments of the process.
std::uint32_t nextPinId() {
    static std::atomic<std::uint32_t> next = 1;
    return next++;
}

std::wstring pinName(const char* name, std::int32_t number) {
    std::wstring wide = name ? wideFromSystem(name) : L"Output " + std::to_wstring(number);
    wide.resize(std::min(wide.size(), kLongestPinName));
    return wide;
}

}  // namespace

int CFilter::GetPinCount() {
    return m_outputPinCount + 1;
}

CBasePin* CFilter::GetPin(int index) {
    if (index == 0) return &m_inputPin;
    if (index < 0 || static_cast<std::size_t>(index) > m_outputPins.size()) return nullptr;
    return m_outputPins[static_cast<std::size_t>(index) - 1].get();
}

HRESULT CFilter::AddOutputPin(const char* name, std::uint32_t* id) try {
    CAutoLock lock(pzi());
    const std::int32_t count = m_outputPinCount + 1;
    if (const HRESULT hr = askForPinSet(count); FAILED(hr)) return hr;
    RefPtr<CFilterOutputPin> pin(new CFilterOutputPin(*this, pinName(name, count), nextPinId()));
    const std::uint32_t newId = pin->id();
    // A block must find room for every pin without asking for memory.
    m_spareBuffers.buffers.reserve(m_outputPins.size() + 1);
    m_spareBuffers.outlets.reserve(m_outputPins.size() + 1);
    m_spareBuffers.pieces.reserve(m_outputPins.size() + 1);
    m_abandonedSamples.reserve(kFailedBlocks * (m_outputPins.size() + 1));
    changePins([&](OutputPins& pins) {
        pins.push_back(std::move(pin));
        m_outputPinCount = count;
    });
    if (id) *id = newId;
    NotifyPinSetChanged(count);
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT CFilter::RemoveOutputPin(std::uint32_t id) {
    CAutoLock lock(pzi());
    if (m_outputPins.empty()) return E_FAIL;
    const auto hasId = [id](const auto& pin) { return pin->id() == id; };
    const auto found = std::find_if(m_outputPins.begin(), m_outputPins.end(), hasId);
    const RefPtr<CFilterOutputPin> pin = found != m_outputPins.end() ? *found : m_outputPins.back();
    if (const HRESULT hr = askForPinSet(m_outputPinCount - 1); FAILED(hr)) return hr;
    if (pin->IsConnected()) return E_UNEXPECTED;
    // The host may have changed the set when it was asked.
    changePins([&](OutputPins& pins) {
        std::erase_if(pins, hasId);
        --m_outputPinCount;
    });
    return NotifyPinSetChanged(m_outputPinCount);
}

HRESULT CFilter::RemoveAllOutputPins() {
    CAutoLock lock(pzi());
    if (const HRESULT hr = askForPinSet(0); FAILED(hr)) return hr;
    while (!m_outputPins.empty()) {
        if (m_outputPins.front()->IsConnected()) return E_UNEXPECTED;
        changePins([first = m_outputPins.front()](OutputPins& pins) { pins.erase(pins.begin()); });
    }
    {
        const CAutoLock look(LookLock());
        m_outputPinCount = 0;
    }
    NotifyPinSetChanged(0);
    return S_OK;
}

/// At the filter's end: a pin that stays connected would outlive the filter that it points to.
void CFilter::disconnectLeftOverPins() {
    for (const auto& pin : m_outputPins) {
        if (const RefPtr<IPin> peer(pin->GetConnected()); peer) peer->Disconnect();
        pin->Disconnect();
    }
    m_outputPins.clear();
}

IPin* CFilter::FindOutputPin(std::uint32_t id) {
    CAutoLock lock(pzi());
    for (const auto& pin : m_outputPins)
        if (pin->id() == id) return pin.get();
    return nullptr;
}

std::int32_t CFilter::GetOutputPinCount() {
    CAutoLock lock(pzi());
    return m_outputPinCount;
}

std::uint32_t CFilter::GetPinId(std::int32_t index) {
    CAutoLock lock(pzi());
    const bool exists = index >= 0 && static_cast<std::size_t>(index) < m_outputPins.size();
    return exists ? m_outputPins[static_cast<std::size_t>(index)]->id() : kNoPinId;
}

/// May the set of output pins change to `count`? An attached host without a say in it allows nothing.
HRESULT CFilter::askForPinSet(std::int32_t count) {
    if (!isAttached()) return S_OK;
    const RefPtr<IKvxPinHost> host(pinHost());
    return host ? host->OnPinSetChange(kPinSetAsking, this, count) : E_FAIL;
}

HRESULT CFilter::NotifyPinSetChanged(std::int32_t count) {
    const RefPtr<IKvxPinHost> host(pinHost());
    if (isAttached() && !host) return E_FAIL;
    NotifyEvent(EC_GRAPH_CHANGED, 0, 0);
    if (!isAttached()) return S_OK;
    const HRESULT hr = host->OnPinSetChange(kPinSetChanged, this, count);
    return FAILED(hr) ? hr : S_OK;
}

}  // namespace marnoth
