#include "shells/lv2/Descriptors.h"

/// What hosts look for in the bundle's binary.
LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(uint32_t index) {
    return marnoth::pluginDescriptor(index);
}
