#pragma once

#include <lv2/core/lv2.h>

#include "shellkit/listening/WavePlayer.h"
#include "shells/lv2/PageMemory.h"

namespace marnoth {

struct IGrooveSampler;

/// What an instance is to its page, which is in another binary and gets the instance's handle from the host.
/// The two binaries have nothing else in common: they are built together.
class PluginInstance {
public:
    static PluginInstance& of(LV2_Handle handle) { return *static_cast<PluginInstance*>(handle); }
    LV2_Handle handle() { return this; }

    virtual IGrooveSampler& sampler() = 0;
    virtual PageMemory& pages() = 0;
    /// Plays what a page's user listens to in the mix; for the host's thread for windows.
    virtual WavePlayer& listening() = 0;

protected:
    ~PluginInstance() = default;
};

}  // namespace marnoth
