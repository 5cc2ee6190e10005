#include "shells/desktop/audio/JackLibrary.h"

#include <dlfcn.h>

#include "shells/desktop/LibraryFunctions.h"

namespace marnoth {

namespace {

bool findAll(void* library, JackLibrary& jack) {
    return findFunction(library, "jack_client_open", jack.client_open) &&
           findFunction(library, "jack_client_close", jack.client_close) &&
           findFunction(library, "jack_activate", jack.activate) &&
           findFunction(library, "jack_deactivate", jack.deactivate) &&
           findFunction(library, "jack_get_sample_rate", jack.get_sample_rate) &&
           findFunction(library, "jack_get_buffer_size", jack.get_buffer_size) &&
           findFunction(library, "jack_set_process_callback", jack.set_process_callback) &&
           findFunction(library, "jack_set_buffer_size_callback", jack.set_buffer_size_callback) &&
           findFunction(library, "jack_set_xrun_callback", jack.set_xrun_callback) &&
           findFunction(library, "jack_on_info_shutdown", jack.on_info_shutdown) &&
           findFunction(library, "jack_port_register", jack.port_register) &&
           findFunction(library, "jack_port_get_buffer", jack.port_get_buffer) &&
           findFunction(library, "jack_port_name", jack.port_name) &&
           findFunction(library, "jack_port_by_name", jack.port_by_name) &&
           findFunction(library, "jack_port_connected_to", jack.port_connected_to) &&
           findFunction(library, "jack_get_ports", jack.get_ports) &&
           findFunction(library, "jack_connect", jack.connect) &&
           findFunction(library, "jack_free", jack.free) &&
           findFunction(library, "jack_set_error_function", jack.set_error_function) &&
           findFunction(library, "jack_midi_get_event_count", jack.midi_get_event_count) &&
           findFunction(library, "jack_midi_event_get", jack.midi_event_get) &&
           findFunction(library, "jack_set_sample_rate_callback", jack.set_sample_rate_callback) &&
           findFunction(library, "jack_set_port_registration_callback",
                        jack.set_port_registration_callback) &&
           findFunction(library, "jack_port_by_id", jack.port_by_id) &&
           findFunction(library, "jack_set_freewheel_callback", jack.set_freewheel_callback) &&
           findFunction(library, "jack_set_buffer_size", jack.set_buffer_size) &&
           findFunction(library, "jack_transport_query", jack.transport_query) &&
           findFunction(library, "jack_transport_start", jack.transport_start) &&
           findFunction(library, "jack_transport_stop", jack.transport_stop) &&
           findFunction(library, "jack_transport_locate", jack.transport_locate) &&
           findFunction(library, "jack_set_timebase_callback", jack.set_timebase_callback) &&
           findFunction(library, "jack_release_timebase", jack.release_timebase);
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
