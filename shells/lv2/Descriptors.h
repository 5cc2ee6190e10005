#pragma once

#include <lv2/core/lv2.h>

#include <cstdint>

namespace marnoth {

/// The plug-ins of the bundle: 0 the stereo one, 1 the one with an output for each pad. Null behind them.
const LV2_Descriptor* pluginDescriptor(std::uint32_t index);

}  // namespace marnoth
