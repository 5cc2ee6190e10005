#pragma once

#include <optional>

#include "host/Filter.h"

namespace marnoth {

/// The silence flag of a sample; null for one that can't be marked.
RefPtr<IKvxSampleSilence> silenceOf(IMediaSample& sample);

/// Gives back the sample that a descriptor holds, if there is one.
void releaseSample(PinBuffer& buffer);

/// What the samples of a block carry down besides audio.
struct CFilter::SampleFlags {
    bool sync = false;
    bool discontinuity = false;
    bool preroll = false;
    std::optional<REFERENCE_TIME> time;  ///< of the first frame, where it is stamped
};

/// The storage for a block's descriptors, taken from the filter for a scope. A pin that comes or goes while
/// the block is under way doesn't touch it.
class CFilter::BlockScope {
public:
    explicit BlockScope(CFilter& filter);
    ~BlockScope();
    BlockScope(const BlockScope&) = delete;
    BlockScope& operator=(const BlockScope&) = delete;

    BlockBuffers block;

private:
    void keepSamples();
    void keep(RefPtr<IMediaSample> sample);

    CFilter& filter_;
};

/// Brings the buffers of a block one by one, as the engine opens them.
class CFilter::LateBuffers final : public BufferSource {
public:
    LateBuffers(CFilter& filter, BlockBuffers& block, const SampleFlags& flags)
        : filter_(filter), block_(block), flags_(flags) {}

    /// Makes a descriptor for every outlet, for a block as long as `input`.
    void describe(const PinBuffer& input);
    void bring(PinBuffer& buffer) override;
    /// `S_OK`, or why a buffer didn't come.
    HRESULT result() const { return failure_; }

private:
    CFilter& filter_;
    BlockBuffers& block_;
    const SampleFlags& flags_;
    LONG bytes_ = 0;
    HRESULT failure_ = S_OK;
};

}  // namespace marnoth
