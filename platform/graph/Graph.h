#pragma once

/// The names of the audio graph: filters, pins, media types, samples and their allocators. On Windows those
/// of the system's headers, elsewhere declarations of our own with the same shapes and the same order of
/// operations.

#include "platform/com/Com.h"

#ifdef _WIN32

#include <strmif.h>
// The order matters: the rest needs strmif.h.
#include <control.h>
#include <evcode.h>
#include <uuids.h>
#include <vfwmsgs.h>

#else

#include "platform/graph/GraphCodes.h"
#include "platform/graph/GraphInterfaces.h"

#endif
