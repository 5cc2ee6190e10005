#include "shells/desktop/dialogs/BusLibrary.h"

#include <dlfcn.h>

#include "shells/desktop/LibraryFunctions.h"

namespace marnoth {

namespace {

bool findBus(void* library, BusLibrary& bus) {
    return findFunction(library, "sd_bus_open_user", bus.open_user) &&
           findFunction(library, "sd_bus_close", bus.close) &&
           findFunction(library, "sd_bus_unref", bus.unref) &&
           findFunction(library, "sd_bus_get_fd", bus.get_fd) &&
           findFunction(library, "sd_bus_get_events", bus.get_events) &&
           findFunction(library, "sd_bus_process", bus.process) &&
           findFunction(library, "sd_bus_add_match_async", bus.add_match_async) &&
           findFunction(library, "sd_bus_call_async", bus.call_async);
}

bool findMessages(void* library, BusLibrary& bus) {
    return findFunction(library, "sd_bus_message_new_method_call", bus.message_new_method_call) &&
           findFunction(library, "sd_bus_message_unref", bus.message_unref) &&
           findFunction(library, "sd_bus_message_append", bus.message_append) &&
           findFunction(library, "sd_bus_message_append_array", bus.message_append_array) &&
           findFunction(library, "sd_bus_message_open_container", bus.message_open_container) &&
           findFunction(library, "sd_bus_message_close_container", bus.message_close_container) &&
           findFunction(library, "sd_bus_message_read", bus.message_read) &&
           findFunction(library, "sd_bus_message_enter_container", bus.message_enter_container) &&
           findFunction(library, "sd_bus_message_exit_container", bus.message_exit_container) &&
           findFunction(library, "sd_bus_message_skip", bus.message_skip) &&
           findFunction(library, "sd_bus_message_is_method_error", bus.message_is_method_error) &&
           findFunction(library, "sd_bus_message_get_path", bus.message_get_path);
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
