#include "shells/lv2/page/PageDescriptor.h"

/// What hosts look for in the binary of the bundle's page.
LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index) {
    return marnoth::pageDescriptor(index);
}
