#pragma once

#include <atomic>

#include "platform/com/Unknown.h"
#include "platform/graph/Graph.h"
#include "platform/graph/MediaType.h"

namespace marnoth {

class CMemAllocator;

/// A media sample of a `CMemAllocator`: a piece of the allocator's memory with a length, times and flags.
///
/// Belongs to its allocator. Its references say whether it is in use: when the last goes, it returns to the
/// allocator instead of being deleted. A kind of sample with further interfaces derives by
/// `Implements<CMediaSample, IMore>`, overrides `FindInterface`, and is made by `CMemAllocator::MakeSample`.
/// Whoever holds the sample uses it from one thread at a time; the count is safe on any.
class CMediaSample : public IMediaSample {
public:
    /// `memory` has `bytes` bytes and lives as long as the sample does.
    CMediaSample(CMemAllocator& allocator, BYTE* memory, LONG bytes)
        : allocator_(allocator), memory_(memory), size_(bytes), length_(bytes) {}
    CMediaSample(const CMediaSample&) = delete;
    CMediaSample& operator=(const CMediaSample&) = delete;
    virtual ~CMediaSample() = default;

    HRESULT QueryInterface(REFIID iid, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT GetPointer(BYTE** out) override;
    LONG GetSize() override;
    /// `VFW_S_NO_STOP_TIME` when there is only a start (the end is given 1 behind it),
    /// `VFW_E_SAMPLE_TIME_NOT_SET` without any.
    HRESULT GetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) override;
    /// Null for both takes the times away, null for the end alone leaves it open.
    HRESULT SetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) override;
    HRESULT IsSyncPoint() override;
    HRESULT SetSyncPoint(BOOL isSyncPoint) override;
    HRESULT IsPreroll() override;
    HRESULT SetPreroll(BOOL isPreroll) override;
    LONG GetActualDataLength() override;
    /// `VFW_E_BUFFER_OVERFLOW` above the size.
    HRESULT SetActualDataLength(LONG bytes) override;
    /// `S_FALSE` and null while the type is that of the connection.
    HRESULT GetMediaType(AM_MEDIA_TYPE** out) override;
    /// Null says again that the type is that of the connection.
    HRESULT SetMediaType(AM_MEDIA_TYPE* type) override;
    HRESULT IsDiscontinuity() override;
    HRESULT SetDiscontinuity(BOOL isDiscontinuity) override;
    HRESULT GetMediaTime(LONGLONG* start, LONGLONG* end) override;
    HRESULT SetMediaTime(LONGLONG* start, LONGLONG* end) override;

protected:
    /// As in `CUnknown`.
    virtual IUnknown* FindInterface(REFIID iid);
    /// Forgets what the last user set, before the sample is given out anew. Doesn't touch the memory. Whoever
    /// overrides it calls it too.
    virtual void Recycle();

private:
    friend class CMemAllocator;

    CMemAllocator& allocator_;
    BYTE* const memory_;
    const LONG size_;
    std::atomic<ULONG> count_{0};
    // The allocator's, under its lock.
    CMediaSample* nextFree_ = nullptr;
    bool isOut_ = false;

    LONG length_;
    bool hasStart_ = false;
    bool hasEnd_ = false;
    bool hasMediaTime_ = false;
    bool hasType_ = false;
    bool syncPoint_ = false;
    bool preroll_ = false;
    bool discontinuity_ = false;
    REFERENCE_TIME start_ = 0;
    REFERENCE_TIME end_ = 0;
    LONGLONG mediaStart_ = 0;
    LONGLONG mediaEnd_ = 0;
    CMediaType type_;
};

}  // namespace marnoth
