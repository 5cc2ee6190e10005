#pragma once

#include "platform/graph/Graph.h"

namespace marnoth {

/// An owned media type: holds its format block and its reference, and lets go of both.
///
/// Copying is an operation with a result (`Set`), since it may run out of memory; moving is free.
class CMediaType {
public:
    CMediaType() = default;
    CMediaType(CMediaType&& other) noexcept;
    CMediaType& operator=(CMediaType&& other) noexcept;
    CMediaType(const CMediaType&) = delete;
    CMediaType& operator=(const CMediaType&) = delete;
    ~CMediaType() { Reset(); }

    /// Takes a copy of `source`, which may be the record held here. `E_OUTOFMEMORY`, or `E_INVALIDARG` for a
    /// record that has bytes but no block; what was held stays then.
    HRESULT Set(const AM_MEDIA_TYPE& source);
    /// Becomes an audio type of `format` and the `format.cbSize` bytes behind it. Subtype and sample size
    /// follow from the format.
    HRESULT SetWaveFormat(const WAVEFORMATEX& format);
    /// Replaces the format block alone by a copy of `bytes` bytes at `block`.
    HRESULT SetFormatBlock(const void* block, ULONG bytes);
    /// Becomes a type of nothing: all null.
    void Reset();

    /// Writes a copy into `*out`, whose former content isn't looked at; the caller frees it with
    /// `FreeMediaType`.
    HRESULT CopyTo(AM_MEDIA_TYPE* out) const;

    const AM_MEDIA_TYPE* Get() const { return &type_; }
    /// For filling in fields. Who writes the pointers minds the ownership.
    AM_MEDIA_TYPE* Get() { return &type_; }
    const AM_MEDIA_TYPE* operator->() const { return &type_; }
    AM_MEDIA_TYPE* operator->() { return &type_; }
    const AM_MEDIA_TYPE& operator*() const { return type_; }

    /// The format block as a wave format; null when it is shorter than one.
    const WAVEFORMATEX* WaveFormat() const;

private:
    AM_MEDIA_TYPE type_{};
};

/// The wave format in `type`'s block; null when there is no block or it is shorter than a wave format. Looks
/// at nothing but the block.
const WAVEFORMATEX* WaveFormatOf(const AM_MEDIA_TYPE& type);

/// Writes a copy of `source` into `*out`, whose former content isn't looked at. On failure `*out` is all
/// null.
HRESULT CopyMediaType(AM_MEDIA_TYPE* out, const AM_MEDIA_TYPE& source);
/// Frees what `type` owns, and nulls it.
void FreeMediaType(AM_MEDIA_TYPE& type);
/// A copy in a block of the task allocator, for operations that give out a pointer; null when memory is out.
AM_MEDIA_TYPE* CreateMediaType(const AM_MEDIA_TYPE& source);
/// Frees a type that came as a pointer; null is allowed.
void DeleteMediaType(AM_MEDIA_TYPE* type);

/// True unless the major type or the format type is left open.
bool IsFullySpecified(const AM_MEDIA_TYPE& type);
/// Does `type` have everything that `wanted`, in which null identifiers leave a choice, asks for?
bool MatchesPartial(const AM_MEDIA_TYPE& type, const AM_MEDIA_TYPE& wanted);

}  // namespace marnoth
