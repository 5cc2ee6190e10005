#pragma once

#include <lv2/core/lv2.h>

namespace marnoth {

/// By which a host reads the names of an instance's notes, as Ardour knows it: a document of MIDI names for
/// each instance, told apart by the model that it names.
inline constexpr const char* kMidnamInterfaceUri = "http://ardour.org/lv2/midnam#interface";
inline constexpr const char* kMidnamUpdateUri = "http://ardour.org/lv2/midnam#update";

/// What the plug-in gives. Texts are the host's until it frees them by `free`; null where there is none.
struct MidnamInterface {
    char* (*midnam)(LV2_Handle instance);
    char* (*model)(LV2_Handle instance);
    void (*free)(char* text);
};

/// What the host gives: `update` asks it to read the names anew, and is called while the instance runs.
struct MidnamHost {
    void* handle;
    void (*update)(void* handle);
};

}  // namespace marnoth
