#pragma once

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/graph/MediaSample.h"

namespace marnoth {

/// The standard allocator: a fixed number of samples over one piece of memory.
///
/// `Commit` makes everything; `GetBuffer` and `ReleaseBuffer` allocate and free nothing, except that the last
/// sample to come back after a `Decommit` takes the memory with it. A sample in use holds a reference to its
/// allocator. All operations are safe on any thread; its lock is held for a few instructions, and `GetBuffer`
/// waits outside it.
class CMemAllocator : public Implements<CUnknown, IMemAllocator> {
public:
    /// Begins with one reference, the maker's.
    explicit CMemAllocator(IUnknown* outer = nullptr) : Implements(outer) {}
    ~CMemAllocator() override;

    /// Refused while committed (`VFW_E_ALREADY_COMMITTED`) or samples are out (`VFW_E_BUFFERS_OUTSTANDING`),
    /// for an alignment that isn't a power of two (`VFW_E_BADALIGN`), for negative numbers (`E_INVALIDARG`).
    HRESULT SetProperties(ALLOCATOR_PROPERTIES* request, ALLOCATOR_PROPERTIES* actual) override;
    HRESULT GetProperties(ALLOCATOR_PROPERTIES* out) override;
    /// `VFW_E_SIZENOTSET` while the count or the size of buffers is 0; `E_OUTOFMEMORY`.
    HRESULT Commit() override;
    /// Gives out no more samples, and frees whoever waits for one. The memory goes when all samples are back.
    HRESULT Decommit() override;
    /// Gives out a sample as if new, with one reference. Waits until one is back, or gives `VFW_E_TIMEOUT`
    /// with `AM_GBF_NOWAIT`; `VFW_E_NOT_COMMITTED` when not committed or no longer. The times are not looked
    /// at.
    HRESULT GetBuffer(IMediaSample** out, REFERENCE_TIME* start, REFERENCE_TIME* end, DWORD flags) override;
    /// Takes back a sample that nobody holds; samples call this themselves. `E_INVALIDARG` for a sample of
    /// another allocator, `E_UNEXPECTED` for one that is held or is back already.
    HRESULT ReleaseBuffer(IMediaSample* sample) override;

protected:
    /// Makes one sample over `memory`; the allocator owns it. Null when memory is out.
    virtual std::unique_ptr<CMediaSample> MakeSample(BYTE* memory, LONG bytes);

    IUnknown* FindInterface(REFIID iid) override;

private:
    struct FreeMemory {
        std::size_t alignment;
        void operator()(BYTE* memory) const;
    };
    struct Layout;

    HRESULT MakeSamples();
    HRESULT TakeBack(IMediaSample* sample);
    CMediaSample* Find(IMediaSample* sample);
    void FreeAll();

    std::mutex mutex_;
    std::condition_variable sampleIsBack_;
    ALLOCATOR_PROPERTIES properties_{0, 0, 1, 0};
    bool committed_ = false;
    std::unique_ptr<BYTE, FreeMemory> memory_;
    std::vector<std::unique_ptr<CMediaSample>> samples_;
    CMediaSample* firstFree_ = nullptr;
    std::size_t samplesOut_ = 0;
};

}  // namespace marnoth
