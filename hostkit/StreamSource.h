#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "hostkit/FilterLock.h"
#include "hostkit/SampleAllocator.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/BaseFilter.h"
#include "platform/graph/BaseOutputPin.h"

namespace marnoth {

/// One block on its way into the graph.
struct StreamBlock {
    std::int32_t frames = 0;
    /// Interleaved, at most `frames` frames; what is missing is zeros.
    std::span<const float> samples = {};
    /// Marks the block as silence, where samples can be marked. It has no samples then.
    bool silent = false;
    /// The block is a discontinuity that starts at this time, in units of 100 ns.
    std::optional<REFERENCE_TIME> discontinuity = {};
};

/// The output pin of a `StreamSource`: offers the source's one format and brings its own allocator.
class StreamSourcePin : public CBaseOutputPin {
public:
    StreamSourcePin(CBaseFilter& filter, CCritSec& lock);

    /// The one format that is offered. Only while not connected.
    void setFormat(const WAVEFORMATEX& format) { format_ = format; }
    /// Room for blocks of this length, from now on and in connections to come.
    HRESULT setBlock(std::int32_t frames);
    SampleAllocator& allocator() { return *allocator_; }

    HRESULT send(const StreamBlock& block);

    HRESULT CheckMediaType(const AM_MEDIA_TYPE* type) override;
    HRESULT GetMediaType(int position, CMediaType* type) override;
    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* properties) override;
    /// The source's own, whatever the other end has: its samples carry the silence flag.
    HRESULT DecideAllocator(IMemInputPin* receiver, RefPtr<IMemAllocator>* out) override;

private:
    HRESULT fill(IMediaSample& sample, const StreamBlock& block);
    std::int64_t blockBytes(std::int32_t frames) const;

    WAVEFORMATEX format_;
    std::int32_t blockFrames_ = 512;
    RefPtr<SampleAllocator> allocator_;
};

/// A filter that sends blocks of float audio downstream, on the thread of whoever calls `send`.
class StreamSource : private FilterLock, public CBaseFilter {
public:
    StreamSource();

    StreamSourcePin& pin() { return pin_; }

    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? &pin_ : nullptr; }

private:
    StreamSourcePin pin_;
};

}  // namespace marnoth
