#pragma once

#include <systemd/sd-bus.h>

namespace marnoth {

/// The functions of systemd's library that talk to the user's bus, found when the program runs: it starts
/// where there is none.
struct BusLibrary {
    decltype(&sd_bus_open_user) open_user = nullptr;
    decltype(&sd_bus_close) close = nullptr;
    decltype(&sd_bus_unref) unref = nullptr;
    decltype(&sd_bus_get_fd) get_fd = nullptr;
    decltype(&sd_bus_get_events) get_events = nullptr;
    decltype(&sd_bus_process) process = nullptr;
    decltype(&sd_bus_add_match_async) add_match_async = nullptr;
    decltype(&sd_bus_call_async) call_async = nullptr;
    decltype(&sd_bus_message_new_method_call) message_new_method_call = nullptr;
    decltype(&sd_bus_message_unref) message_unref = nullptr;
    decltype(&sd_bus_message_append) message_append = nullptr;
    decltype(&sd_bus_message_append_array) message_append_array = nullptr;
    decltype(&sd_bus_message_open_container) message_open_container = nullptr;
    decltype(&sd_bus_message_close_container) message_close_container = nullptr;
    decltype(&sd_bus_message_read) message_read = nullptr;
    decltype(&sd_bus_message_enter_container) message_enter_container = nullptr;
    decltype(&sd_bus_message_exit_container) message_exit_container = nullptr;
    decltype(&sd_bus_message_skip) message_skip = nullptr;
    decltype(&sd_bus_message_is_method_error) message_is_method_error = nullptr;
    decltype(&sd_bus_message_get_path) message_get_path = nullptr;

    /// Null where there is no library, or one that lacks something. It stays loaded to the end of the
    /// program.
    static const BusLibrary* find();
};

}  // namespace marnoth
