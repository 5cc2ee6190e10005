#include "platform/graph/MemAllocator.h"

#include <algorithm>
#include <bit>
#include <new>

namespace marnoth {

/// Where the buffers lie in the one piece of memory, in bytes. Every buffer is aligned, and its prefix lies
/// before it.
struct CMemAllocator::Layout {
    explicit Layout(const ALLOCATOR_PROPERTIES& p)
        : alignment(static_cast<std::uint64_t>(std::max<LONG>(p.cbAlign, 1))),
          first(roundUp(static_cast<std::uint64_t>(p.cbPrefix))),
          stride(roundUp(first + static_cast<std::uint64_t>(p.cbBuffer))),
          total(stride * static_cast<std::uint64_t>(p.cBuffers)) {}

    std::uint64_t roundUp(std::uint64_t bytes) const { return (bytes + alignment - 1) & ~(alignment - 1); }

    std::uint64_t alignment;
    std::uint64_t first;   ///< offset of the first buffer
    std::uint64_t stride;  ///< from one buffer to the next
    std::uint64_t total;   ///< below 2^63: three factors and terms below 2^31
};

void CMemAllocator::FreeMemory::operator()(BYTE* memory) const {
    ::operator delete (memory, std::align_val_t{alignment});
}

CMemAllocator::~CMemAllocator() {
    FreeAll();
}

IUnknown* CMemAllocator::FindInterface(REFIID iid) {
    return iid == IID_IMemAllocator ? static_cast<IMemAllocator*>(this) : nullptr;
}

HRESULT CMemAllocator::SetProperties(ALLOCATOR_PROPERTIES* request, ALLOCATOR_PROPERTIES* actual) {
    if (!request || !actual) return E_POINTER;
    if (request->cBuffers < 0 || request->cbBuffer < 0 || request->cbPrefix < 0) return E_INVALIDARG;
    if (request->cbAlign < 1 || !std::has_single_bit(static_cast<ULONG>(request->cbAlign)))
        return VFW_E_BADALIGN;
    std::lock_guard hold(mutex_);
    if (committed_) return VFW_E_ALREADY_COMMITTED;
    if (samplesOut_) return VFW_E_BUFFERS_OUTSTANDING;
    properties_ = *request;
    *actual = properties_;
    return S_OK;
}

HRESULT CMemAllocator::GetProperties(ALLOCATOR_PROPERTIES* out) {
    if (!out) return E_POINTER;
    std::lock_guard hold(mutex_);
    *out = properties_;
    return S_OK;
}

HRESULT CMemAllocator::Commit() {
    std::lock_guard hold(mutex_);
    if (committed_) return S_OK;
    if (properties_.cBuffers == 0 || properties_.cbBuffer == 0) return VFW_E_SIZENOTSET;
    // Samples that are still out after a decommit keep everything in place: it is simply used again.
    if (samples_.empty()) {
        const HRESULT hr = MakeSamples();
        if (FAILED(hr)) {
            FreeAll();
            return hr;
        }
    }
    committed_ = true;
    return S_OK;
}

HRESULT CMemAllocator::MakeSamples() {
    const Layout layout(properties_);
    const std::uint64_t alignment = std::max<std::uint64_t>(layout.alignment, alignof(std::max_align_t));
    void* memory = ::operator new (layout.total, std::align_val_t{alignment}, std::nothrow);
    if (!memory) return E_OUTOFMEMORY;
    memory_ = {static_cast<BYTE*>(memory), FreeMemory{alignment}};
    try {
        samples_.reserve(static_cast<std::size_t>(properties_.cBuffers));
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    for (LONG i = 0; i < properties_.cBuffers; ++i) {
        BYTE* buffer = memory_.get() + layout.first + layout.stride * static_cast<std::uint64_t>(i);
        auto sample = MakeSample(buffer, properties_.cbBuffer);
        if (!sample) return E_OUTOFMEMORY;
        sample->nextFree_ = firstFree_;
        firstFree_ = sample.get();
        samples_.push_back(std::move(sample));
    }
    return S_OK;
}

std::unique_ptr<CMediaSample> CMemAllocator::MakeSample(BYTE* memory, LONG bytes) {
    return std::unique_ptr<CMediaSample>(new (std::nothrow) CMediaSample(*this, memory, bytes));
}

void CMemAllocator::FreeAll() {
    firstFree_ = nullptr;
    samples_.clear();
    memory_.reset();
}

HRESULT CMemAllocator::Decommit() {
    std::lock_guard hold(mutex_);
    committed_ = false;
    sampleIsBack_.notify_all();
    if (samplesOut_ == 0) FreeAll();
    return S_OK;
}

HRESULT CMemAllocator::GetBuffer(IMediaSample** out, REFERENCE_TIME*, REFERENCE_TIME*, DWORD flags) {
    if (!out) return E_POINTER;
    *out = nullptr;
    std::unique_lock hold(mutex_);
    while (committed_ && !firstFree_) {
        if (flags & AM_GBF_NOWAIT) return VFW_E_TIMEOUT;
        sampleIsBack_.wait(hold);
    }
    if (!committed_) return VFW_E_NOT_COMMITTED;
    CMediaSample* sample = firstFree_;
    firstFree_ = sample->nextFree_;
    ++samplesOut_;
    sample->isOut_ = true;
    // The sample's hold on its allocator; given back when the sample is.
    AddRef();
    sample->AddRef();
    *out = sample;
    return S_OK;
}

CMediaSample* CMemAllocator::Find(IMediaSample* sample) {
    for (const auto& own : samples_) {
        if (own.get() == sample) return own.get();
    }
    return nullptr;
}

HRESULT CMemAllocator::TakeBack(IMediaSample* sample) {
    std::lock_guard hold(mutex_);
    CMediaSample* own = Find(sample);
    if (!own) return E_INVALIDARG;
    if (own->count_ != 0 || !own->isOut_) return E_UNEXPECTED;
    own->Recycle();
    own->isOut_ = false;
    own->nextFree_ = firstFree_;
    firstFree_ = own;
    --samplesOut_;
    if (committed_) {
        sampleIsBack_.notify_one();
    } else if (samplesOut_ == 0) {
        FreeAll();
    }
    return S_OK;
}

HRESULT CMemAllocator::ReleaseBuffer(IMediaSample* sample) {
    if (!sample) return E_POINTER;
    const HRESULT hr = TakeBack(sample);
    // Behind this call the allocator may be gone.
    if (SUCCEEDED(hr)) Release();
    return hr;
}

}  // namespace marnoth
