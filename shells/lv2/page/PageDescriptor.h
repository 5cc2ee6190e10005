#pragma once

#include <lv2/ui/ui.h>

#include <cstdint>

namespace marnoth {

/// The page of both plug-ins at index 0. Null behind it.
const LV2UI_Descriptor* pageDescriptor(std::uint32_t index);

}  // namespace marnoth
