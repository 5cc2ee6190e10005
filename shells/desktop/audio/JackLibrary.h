#pragma once

#include <jack/jack.h>
#include <jack/midiport.h>
#include <jack/transport.h>

#include <memory>

namespace marnoth {

/// The functions of JACK's library that are used, found when the program runs: it starts where there is none.
struct JackLibrary {
    decltype(&jack_client_open) client_open = nullptr;
    decltype(&jack_client_close) client_close = nullptr;
    decltype(&jack_activate) activate = nullptr;
    decltype(&jack_deactivate) deactivate = nullptr;
    decltype(&jack_get_sample_rate) get_sample_rate = nullptr;
    decltype(&jack_get_buffer_size) get_buffer_size = nullptr;
    decltype(&jack_set_process_callback) set_process_callback = nullptr;
    decltype(&jack_set_buffer_size_callback) set_buffer_size_callback = nullptr;
    decltype(&jack_set_xrun_callback) set_xrun_callback = nullptr;
    decltype(&jack_on_info_shutdown) on_info_shutdown = nullptr;
    decltype(&jack_port_register) port_register = nullptr;
    decltype(&jack_port_get_buffer) port_get_buffer = nullptr;
    decltype(&jack_port_name) port_name = nullptr;
    decltype(&jack_port_by_name) port_by_name = nullptr;
    decltype(&jack_port_connected_to) port_connected_to = nullptr;
    decltype(&jack_get_ports) get_ports = nullptr;
    decltype(&jack_connect) connect = nullptr;
    decltype(&jack_free) free = nullptr;
    decltype(&jack_set_error_function) set_error_function = nullptr;
    decltype(&jack_midi_get_event_count) midi_get_event_count = nullptr;
    decltype(&jack_midi_event_get) midi_event_get = nullptr;
    decltype(&jack_set_sample_rate_callback) set_sample_rate_callback = nullptr;
    decltype(&jack_set_port_registration_callback) set_port_registration_callback = nullptr;
    decltype(&jack_port_by_id) port_by_id = nullptr;
    decltype(&jack_set_freewheel_callback) set_freewheel_callback = nullptr;
    decltype(&jack_set_buffer_size) set_buffer_size = nullptr;
    decltype(&jack_transport_query) transport_query = nullptr;
    decltype(&jack_transport_start) transport_start = nullptr;
    decltype(&jack_transport_stop) transport_stop = nullptr;
    decltype(&jack_transport_locate) transport_locate = nullptr;
    decltype(&jack_set_timebase_callback) set_timebase_callback = nullptr;
    decltype(&jack_release_timebase) release_timebase = nullptr;

    /// Null where there is no library, or one that lacks something. It stays loaded to the end of the
    /// program.
    static const JackLibrary* find();
};

}  // namespace marnoth
