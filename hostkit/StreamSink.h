#pragma once

#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "hostkit/FilterLock.h"
#include "hostkit/SampleAllocator.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/BaseFilter.h"
#include "platform/graph/BaseInputPin.h"

namespace marnoth {

/// Takes the audio of one block: interleaved samples, zeros if it came as silence.
using BlockTaker = std::function<void(std::span<const float> samples, bool silent)>;

/// The input pin of a `StreamSink`: takes float audio and offers an allocator of the host's samples.
class StreamSinkPin : public CBaseInputPin {
public:
    StreamSinkPin(CBaseFilter& filter, CCritSec& lock);

    /// Called with every block, on the thread that delivers it.
    void setTaker(BlockTaker taker) { taker_ = std::move(taker); }
    /// How many ends of stream have come since the pin was made.
    int endsOfStream() const { return endsOfStream_; }
    /// Makes room for blocks of this length in the present connection; without one nothing is done.
    HRESULT growBlock(std::int32_t frames);
    SampleAllocator& allocator() { return *ownAllocator_; }

    /// Float, mono or stereo.
    HRESULT CheckMediaType(const AM_MEDIA_TYPE* type) override;
    HRESULT Active() override;
    HRESULT GetAllocator(IMemAllocator** out) override;
    HRESULT Receive(IMediaSample* sample) override;
    HRESULT EndOfStream() override;

private:
    HRESULT prepareZeros();

    RefPtr<SampleAllocator> ownAllocator_;
    BlockTaker taker_;
    std::vector<float> zeros_;  ///< a silent block, as long as the longest that a buffer holds
    int endsOfStream_ = 0;
};

/// A filter at the end of the graph: hands each block that it receives to its taker, and drops it without
/// one. It keeps no time, so it takes blocks as fast as they come, paused or running.
class StreamSink : private FilterLock, public Implements<CBaseFilter, IAMFilterMiscFlags> {
public:
    StreamSink();

    StreamSinkPin& pin() { return pin_; }

    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? &pin_ : nullptr; }
    /// The sink is a renderer.
    ULONG GetMiscFlags() override;

protected:
    IUnknown* FindInterface(REFIID iid) override;

private:
    StreamSinkPin pin_;
};

}  // namespace marnoth
