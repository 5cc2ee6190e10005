#pragma once

#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"
#include "platform/graph/MediaType.h"
#include "support/TestObject.h"

namespace marnoth::test {

/// A pin of a graph around the instrument: says who it is, and nothing else.
template <class... Interfaces>
class FakePin : public TestObject<Interfaces...> {
public:
    explicit FakePin(PIN_DIRECTION direction) : direction_(direction) {}

    RefPtr<IPin> peer;
    CMediaType type;

    HRESULT Connect(IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* agreed) override {
        peer = RefPtr<IPin>(connector);
        return type.Set(*agreed);
    }
    HRESULT Disconnect() override {
        const bool was = static_cast<bool>(peer);
        peer.reset();
        type.Reset();
        return was ? S_OK : S_FALSE;
    }
    HRESULT ConnectedTo(IPin** out) override {
        *out = RefPtr<IPin>(peer).detach();
        return *out ? S_OK : VFW_E_NOT_CONNECTED;
    }
    HRESULT ConnectionMediaType(AM_MEDIA_TYPE* out) override { return type.CopyTo(out); }
    HRESULT QueryPinInfo(PIN_INFO*) override { return E_NOTIMPL; }
    HRESULT QueryDirection(PIN_DIRECTION* out) override { return *out = direction_, S_OK; }
    HRESULT QueryId(LPWSTR*) override { return E_NOTIMPL; }
    HRESULT QueryAccept(const AM_MEDIA_TYPE*) override { return S_OK; }
    HRESULT EnumMediaTypes(IEnumMediaTypes** out) override { return *out = nullptr, E_NOTIMPL; }
    HRESULT QueryInternalConnections(IPin**, ULONG*) override { return E_NOTIMPL; }
    HRESULT EndOfStream() override { return E_UNEXPECTED; }
    HRESULT BeginFlush() override { return E_UNEXPECTED; }
    HRESULT EndFlush() override { return E_UNEXPECTED; }
    HRESULT NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return E_UNEXPECTED; }

protected:
    void* find(REFIID iid) override {
        return iid == IID_IUnknown || iid == IID_IPin ? static_cast<IPin*>(this) : nullptr;
    }

private:
    PIN_DIRECTION direction_;
};

}  // namespace marnoth::test
