#pragma once

#include <lv2/state/state.h>

#include <mutex>

#include "hostkit/LiveHost.h"
#include "shells/lv2/HostFeatures.h"
#include "shells/lv2/PageMemory.h"
#include "shells/lv2/Urids.h"

namespace marnoth {

/// What a plug-in keeps in its host's sessions and presets: a version word and the project, which is a file
/// of its own where the host makes room for files, and a chunk otherwise; restoring takes either. With them
/// how the page was left, once somebody has used it.
///
/// Any of the host's threads but the one that renders, also while that renders. What is wrong is told in the
/// host's log; `host`, `pages`, `urids` and `log` outlive this.
class PluginState {
public:
    PluginState(LiveHost& host, PageMemory& pages, const Urids& urids, const HostLog& log)
        : host_(host), pages_(pages), urids_(urids), log_(log) {}

    LV2_State_Status save(LV2_State_Store_Function store, LV2_State_Handle handle,
                          const LV2_Feature* const* features);
    /// A state that is damaged, or of a version that isn't known here, leaves everything as it is. So does
    /// one without a project, of which nothing is said: a host's own defaults are none.
    LV2_State_Status restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                             const LV2_Feature* const* features);

private:
    /// A property as the host has it.
    struct Stored {
        const void* value = nullptr;
        std::size_t bytes = 0;
        LV2_URID type = 0;
    };

    static Stored retrieved(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle, LV2_URID key);
    LV2_State_Status saveFile(LV2_State_Store_Function store, LV2_State_Handle handle,
                              const LV2_State_Make_Path& makePath, const LV2_State_Map_Path& mapPath,
                              const LV2_Feature* const* features);
    LV2_State_Status saveChunk(LV2_State_Store_Function store, LV2_State_Handle handle);
    LV2_State_Status saveView(LV2_State_Store_Function store, LV2_State_Handle handle);
    LV2_State_Status load(const Stored& project, const LV2_Feature* const* features);
    LV2_State_Status load(IStream& project);
    LV2_State_Status refuse(const std::string& why) const;

    LiveHost& host_;
    PageMemory& pages_;
    const Urids& urids_;
    const HostLog& log_;
    std::mutex one_;  ///< saves and restores come one at a time
};

}  // namespace marnoth
