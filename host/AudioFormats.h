#pragma once

#include "platform/graph/Graph.h"
#include "seam/Pzi.h"

namespace marnoth {

/// The tests of media types that all connections share. They look at nothing but the records.

/// Audio in an uncompressed format of one or two channels: 16-bit integer or 32-bit float. What the engine
/// makes of it is another question. `VFW_E_TYPE_NOT_ACCEPTED`; `E_POINTER` for null.
HRESULT CheckAudioMediaType(const AM_MEDIA_TYPE* type);

/// Can `pzi` make `output` out of `input`? Both must pass for themselves and have the same rate.
HRESULT CheckTransform(CPzi& pzi, const AM_MEDIA_TYPE* input, const AM_MEDIA_TYPE* output);

/// `CheckAudioMediaType`, then the engine's own test for the direction.
HRESULT CheckInputType(CPzi& pzi, const AM_MEDIA_TYPE* type);
HRESULT CheckOutputType(CPzi& pzi, const AM_MEDIA_TYPE* type);

/// Tests `type` and, only if everything passes, takes its format over as the engine's input or output format,
/// with the frame size that its channels and bits make: what a record says of that isn't tested, but buffers
/// are measured by it. Under the lock of `pzi`.
HRESULT SetFormat(CPzi& pzi, PIN_DIRECTION direction, const AM_MEDIA_TYPE* type);

/// The format in the block of a type that has passed `CheckAudioMediaType`.
WAVEFORMATEX FormatOf(const AM_MEDIA_TYPE& type);

}  // namespace marnoth
