#pragma once

#include "hostkit/HostSample.h"
#include "platform/graph/MemAllocator.h"

namespace marnoth {

/// Allocates the host's media samples, on either side of the instrument.
class SampleAllocator : public CMemAllocator {
public:
    explicit SampleAllocator(bool silenceOffered) : silenceOffered_(silenceOffered) {}

    /// Whether the samples offer `IKvxSampleSilence` from the next block on. Any thread.
    void setSilenceOffered(bool offered) { silenceOffered_ = offered; }

    /// Makes every buffer hold at least `bytes` bytes. Works while committed, as long as no sample is out
    /// (`VFW_E_BUFFERS_OUTSTANDING`): between blocks nothing of the stream is lost. After a failure
    /// the buffers have their former size.
    HRESULT growBuffers(LONG bytes);

    /// Never waits: the host sends block after block on one thread, and nobody else would bring a sample
    /// back.
    HRESULT GetBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end, DWORD flags) override;
    HRESULT Commit() override;
    HRESULT Decommit() override;

protected:
    std::unique_ptr<CMediaSample> MakeSample(BYTE* memory, LONG bytes) override;

private:
    HRESULT resize(ALLOCATOR_PROPERTIES properties, bool commit);

    std::atomic<bool> silenceOffered_;
    bool committed_ = false;
};

}  // namespace marnoth
