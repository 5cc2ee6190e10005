#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "platform/com/ModuleLock.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/BaseInputPin.h"
#include "platform/graph/BaseOutputPin.h"

namespace marnoth {

class CFilter;

/// The instrument's one input pin. The audio that arrives here is the instrument's only clock.
///
/// A part of the filter, whose reference count it shares. It must be connected before any output pin can be.
class CFilterInputPin final : public CBaseInputPin {
public:
    explicit CFilterInputPin(CFilter& filter);

    /// Takes what the engine takes, as long as every connected output pin's type goes with it.
    HRESULT CheckMediaType(const AM_MEDIA_TYPE* type) override;
    HRESULT SetMediaType(const AM_MEDIA_TYPE* type) override;
    /// Asks the graph to reconnect the output pins that no longer go with the input.
    HRESULT CompleteConnect(IPin* peer) override;

    /// One sample received is one block rendered and delivered.
    HRESULT Receive(IMediaSample* sample) override;
    HRESULT EndOfStream() override;
    // Handed to the connected output pins; the engine hears nothing of them.
    HRESULT BeginFlush() override;
    HRESULT EndFlush() override;
    HRESULT NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) override;

private:
    CFilter& filter_;
    bool checkingType_ = false;  ///< a reconnection may come back here during the test
};

/// One output pin of the instrument. It lives on the heap and has a reference count of its own: the filter
/// holds one reference. After the filter has gone, `Release` is all that may be called.
class CFilterOutputPin final : public CBaseOutputPin {
public:
    /// Begins without a reference. `id` is unique in the process.
    CFilterOutputPin(CFilter& filter, std::wstring_view name, std::uint32_t id);

    std::uint32_t id() const { return id_; }

    /// `IMediaSeeking` and `IMediaPosition` come from a part that is made when first asked for, and that
    /// hands everything to the pin upstream of the input pin.
    HRESULT QueryInterface(REFIID iid, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // All refuse until the input pin is connected: `VFW_E_NOT_CONNECTED`.
    HRESULT CheckMediaType(const AM_MEDIA_TYPE* type) override;
    HRESULT SetMediaType(const AM_MEDIA_TYPE* type) override;
    /// What the source of the input pin offers.
    HRESULT EnumMediaTypes(IEnumMediaTypes** out) override;
    /// The input's format, into the format block that `type` brings; `E_FAIL` without one. Before the input
    /// is connected there are no types, which is no failure.
    HRESULT GetMediaType(int position, CMediaType* type) override;
    /// The buffers follow the input's, whatever was asked for; twice the size from mono to stereo.
    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* properties) override;

private:
    IUnknown* keptPassThru() const;
    /// Without a reference: the pin's own holds as long as the pin.
    HRESULT findPassThru(IUnknown** out);

    CFilter& filter_;
    const std::uint32_t id_;
    RefPtr<IUnknown> passThru_;  ///< its inner identity; null until asked for, then kept
    std::atomic<ULONG> references_ = 0;
    bool checkingType_ = false;
    [[no_unique_address]] ModuleLock module_;
};

}  // namespace marnoth
