#pragma once

#include <lv2/state/state.h>

#include <mutex>

#include "hostkit/LiveHost.h"
#include "shells/lv2/HostFeatures.h"
#include "shells/lv2/Urids.h"

namespace marnoth {

/// What a plug-in keeps in its host's sessions and presets: a version word and the project, which is a file
/// of its own where the host makes room for files, and a chunk otherwise. Restoring takes either.
///
/// Any of the host's threads but the one that renders, also while that renders. What is wrong is told in the
/// host's log; `host`, `urids` and `log` outlive this.
class PluginState {
public:
    PluginState(LiveHost& host, const Urids& urids, const HostLog& log)
        : host_(host), urids_(urids), log_(log) {}

    LV2_State_Status save(LV2_State_Store_Function store, LV2_State_Handle handle,
                          const LV2_Feature* const* features);
    /// A state that is damaged, or of a version that isn't known here, leaves everything as it is. So does
    /// one without a project, of which nothing is said: a host's own defaults are none.
    LV2_State_Status restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                             const LV2_Feature* const* features);

private:
    LV2_State_Status saveFile(LV2_State_Store_Function store, LV2_State_Handle handle,
                              const LV2_State_Make_Path& makePath, const LV2_State_Map_Path& mapPath,
                              const LV2_Feature* const* features);
    LV2_State_Status saveChunk(LV2_State_Store_Function store, LV2_State_Handle handle);
    LV2_State_Status load(IStream& project);
    LV2_State_Status refuse(const std::string& why) const;

    LiveHost& host_;
    const Urids& urids_;
    const HostLog& log_;
    std::mutex one_;  ///< saves and restores come one at a time
};

}  // namespace marnoth
