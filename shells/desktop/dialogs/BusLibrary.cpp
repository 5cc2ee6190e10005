#include "shells/desktop/dialogs/BusLibrary.h"

#include <dlfcn.h>

namespace marnoth {

namespace {

template <class Function>
bool findIn(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool findBus(void* library, BusLibrary& bus) {
    return findIn(library, "sd_bus_open_user", bus.open_user) && findIn(library, "sd_bus_close", bus.close) &&
           findIn(library, "sd_bus_unref", bus.unref) && findIn(library, "sd_bus_get_fd", bus.get_fd) &&
           findIn(library, "sd_bus_get_events", bus.get_events) &&
           findIn(library, "sd_bus_process", bus.process) &&
           findIn(library, "sd_bus_add_match_async", bus.add_match_async) &&
           findIn(library, "sd_bus_call_async", bus.call_async);
}

bool findMessages(void* library, BusLibrary& bus) {
    return findIn(library, "sd_bus_message_new_method_call", bus.message_new_method_call) &&
           findIn(library, "sd_bus_message_unref", bus.message_unref) &&
           findIn(library, "sd_bus_message_append", bus.message_append) &&
           findIn(library, "sd_bus_message_append_array", bus.message_append_array) &&
           findIn(library, "sd_bus_message_open_container", bus.message_open_container) &&
           findIn(library, "sd_bus_message_close_container", bus.message_close_container) &&
           findIn(library, "sd_bus_message_read", bus.message_read) &&
           findIn(library, "sd_bus_message_enter_container", bus.message_enter_container) &&
           findIn(library, "sd_bus_message_exit_container", bus.message_exit_container) &&
           findIn(library, "sd_bus_message_skip", bus.message_skip) &&
           findIn(library, "sd_bus_message_is_method_error", bus.message_is_method_error) &&
           findIn(library, "sd_bus_message_get_path", bus.message_get_path);
}

}  // namespace

const BusLibrary* BusLibrary::find() {
    static BusLibrary bus;
    static const bool isThere = [] {
        void* const library = dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
        return library && findBus(library, bus) && findMessages(library, bus);
    }();
    return isThere ? &bus : nullptr;
}

}  // namespace marnoth
