#pragma once

#include <atomic>

#include "platform/graph/MediaSample.h"
#include "seam/Pzi.h"

namespace marnoth {

/// A media sample of the host: as the platform's, with `IKvxSampleSilence` while the host offers that.
///
/// A sample that offers the interface keeps to what its header says of marked samples. One that doesn't is
/// given out with its memory cleared: nobody could tell it that a block is silence, so what isn't written is.
class HostSample : public Implements<CMediaSample, IKvxSampleSilence> {
public:
    /// `silenceOffered` is the allocator's word for all its samples.
    HostSample(CMemAllocator& allocator, BYTE* memory, LONG bytes, const std::atomic<bool>& silenceOffered)
        : Implements(allocator, memory, bytes), silenceOffered_(silenceOffered) {}

    /// Of a marked sample: clears the memory and takes the mark away.
    HRESULT GetPointer(BYTE** out) override;

    // IKvxSampleSilence
    std::int32_t GetSilent() override { return silent_; }
    void SetSilent(std::int32_t silent) override { silent_ = silent; }

    /// Before the sample is given out: clears the memory of one that can't be marked.
    void prepare();

protected:
    IUnknown* FindInterface(REFIID iid) override;
    void Recycle() override;

private:
    void clearMemory();

    const std::atomic<bool>& silenceOffered_;
    std::int32_t silent_ = 0;
};

}  // namespace marnoth
