#include "shells/desktop/audio/JackLibrary.h"

#include <dlfcn.h>

namespace marnoth {

namespace {

template <class Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool findAll(void* library, JackLibrary& jack) {
    return find(library, "jack_client_open", jack.client_open) &&
           find(library, "jack_client_close", jack.client_close) &&
           find(library, "jack_activate", jack.activate) &&
           find(library, "jack_deactivate", jack.deactivate) &&
           find(library, "jack_get_sample_rate", jack.get_sample_rate) &&
           find(library, "jack_get_buffer_size", jack.get_buffer_size) &&
           find(library, "jack_set_process_callback", jack.set_process_callback) &&
           find(library, "jack_set_buffer_size_callback", jack.set_buffer_size_callback) &&
           find(library, "jack_set_xrun_callback", jack.set_xrun_callback) &&
           find(library, "jack_on_info_shutdown", jack.on_info_shutdown) &&
           find(library, "jack_port_register", jack.port_register) &&
           find(library, "jack_port_get_buffer", jack.port_get_buffer) &&
           find(library, "jack_port_name", jack.port_name) &&
           find(library, "jack_port_by_name", jack.port_by_name) &&
           find(library, "jack_port_connected_to", jack.port_connected_to) &&
           find(library, "jack_get_ports", jack.get_ports) && find(library, "jack_connect", jack.connect) &&
           find(library, "jack_free", jack.free) &&
           find(library, "jack_set_error_function", jack.set_error_function) &&
           find(library, "jack_midi_get_event_count", jack.midi_get_event_count) &&
           find(library, "jack_midi_event_get", jack.midi_event_get) &&
           find(library, "jack_set_sample_rate_callback", jack.set_sample_rate_callback) &&
           find(library, "jack_set_port_registration_callback", jack.set_port_registration_callback) &&
           find(library, "jack_port_by_id", jack.port_by_id) &&
           find(library, "jack_set_freewheel_callback", jack.set_freewheel_callback) &&
           find(library, "jack_set_buffer_size", jack.set_buffer_size) &&
           find(library, "jack_transport_query", jack.transport_query) &&
           find(library, "jack_transport_start", jack.transport_start) &&
           find(library, "jack_transport_stop", jack.transport_stop) &&
           find(library, "jack_transport_locate", jack.transport_locate) &&
           find(library, "jack_set_timebase_callback", jack.set_timebase_callback) &&
           find(library, "jack_release_timebase", jack.release_timebase);
}

}  // namespace

const JackLibrary* JackLibrary::find() {
    static JackLibrary jack;
    static const bool isThere = [] {
        void* const library = dlopen("libjack.so.0", RTLD_NOW | RTLD_LOCAL);
        return library && findAll(library, jack);
    }();
    return isThere ? &jack : nullptr;
}

}  // namespace marnoth
