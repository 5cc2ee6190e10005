#pragma once

#include "dsp/MixKernels.h"

namespace marnoth::bench {

/// The loops that anyone would write for the rows of the kernel tables, one branch-free loop each, as a bound
/// for the kernels. Indexed like the tables.
MixKernel plainLoop32(int row);
MixKernel plainLoop64(int row);
MixKernel plainLoop32From24(int row);
MixKernel plainLoop64From24(int row);

}  // namespace marnoth::bench
