// Stands in for a desktop's portal on the user's bus:
//   portal_stand_in ANSWER
// where ANSWER is what its user does with each dialog of files: a file's address (file://...), "cancel",
// "fail" (the dialog breaks), "stay" (it stays open until it is closed), "ignore" (the call is never
// answered), "refuse" or "die". Each call is told on the standard output: the method, the parent, the folder
// and the patterns; and each dialog that is closed from outside.

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr const char* kRequest = "org.freedesktop.portal.Request";
constexpr std::uint64_t kUserTakes = 400'000;  ///< microseconds

std::string behaviour;
std::string request;  ///< the open dialog's path
std::string client;

void check(int result, const char* what) {
    if (result >= 0) return;
    std::fprintf(stderr, "portal_stand_in: %s: %d\n", what, result);
    std::exit(1);
}

/// Of the options, those that are told.
void tellOptions(sd_bus_message* call) {
    check(sd_bus_message_enter_container(call, 'a', "{sv}"), "options");
    while (sd_bus_message_enter_container(call, 'e', "sv") > 0) {
        const char* name = nullptr;
        check(sd_bus_message_read(call, "s", &name), "the name of an option");
        if (std::string_view(name) == "current_folder") {
            const void* bytes = nullptr;
            std::size_t count = 0;
            check(sd_bus_message_enter_container(call, 'v', "ay"), "a folder");
            check(sd_bus_message_read_array(call, 'y', &bytes, &count), "a folder's bytes");
            check(sd_bus_message_exit_container(call), "a folder's end");
            std::printf(" folder=%s", static_cast<const char*>(bytes));
        } else if (std::string_view(name) == "filters") {
            const char* filter = nullptr;
            std::uint32_t kind = 0;
            const char* pattern = nullptr;
            check(sd_bus_message_enter_container(call, 'v', "a(sa(us))"), "filters");
            check(sd_bus_message_enter_container(call, 'a', "(sa(us))"), "filters");
            while (sd_bus_message_enter_container(call, 'r', "sa(us)") > 0) {
                check(sd_bus_message_read(call, "s", &filter), "a filter's name");
                check(sd_bus_message_enter_container(call, 'a', "(us)"), "patterns");
                while (sd_bus_message_read(call, "(us)", &kind, &pattern) > 0)
                    std::printf(" pattern=%s", pattern);
                check(sd_bus_message_exit_container(call), "patterns' end");
                check(sd_bus_message_exit_container(call), "a filter's end");
            }
            check(sd_bus_message_exit_container(call), "filters' end");
            check(sd_bus_message_exit_container(call), "filters' end");
        } else {
            check(sd_bus_message_skip(call, "v"), "an option");
        }
        check(sd_bus_message_exit_container(call), "an option's end");
    }
}

void respond(sd_bus* bus, std::uint32_t outcome) {
    sd_bus_message* signal = nullptr;
    check(sd_bus_message_new_signal(bus, &signal, request.c_str(), kRequest, "Response"), "a response");
    check(sd_bus_message_append(signal, "u", outcome), "its outcome");
    if (outcome == 0) {
        check(sd_bus_message_append(signal, "a{sv}", 2, "current_filter", "(sa(us))", "x", 0, "uris", "as", 1,
                                    behaviour.c_str()),
              "its file");
    } else {
        check(sd_bus_message_append(signal, "a{sv}", 0), "its end");
    }
    check(sd_bus_send_to(bus, signal, client.c_str(), nullptr), "sending it");
    sd_bus_message_unref(signal);
    request.clear();
}

int userActs(sd_event_source*, std::uint64_t, void* bus) {
    if (behaviour == "die") std::exit(0);
    if (behaviour != "stay" && !request.empty())
        respond(static_cast<sd_bus*>(bus), behaviour == "cancel" ? 1 : behaviour == "fail" ? 2 : 0);
    return 0;
}

int closed(sd_bus_message* call, void*, sd_bus_error*) {
    std::printf("closed\n");
    return sd_bus_reply_method_return(call, "");
}

const sd_bus_vtable kRequestTable[] = {SD_BUS_VTABLE_START(0),
                                       SD_BUS_METHOD("Close", "", "", closed, SD_BUS_VTABLE_UNPRIVILEGED),
                                       SD_BUS_VTABLE_END};

int asked(sd_bus_message* call, void*, sd_bus_error* error) {
    sd_bus* const bus = sd_bus_message_get_bus(call);
    const char* parent = nullptr;
    const char* title = nullptr;
    check(sd_bus_message_read(call, "ss", &parent, &title), "a call");
    std::printf("%s %s", sd_bus_message_get_member(call), parent);
    tellOptions(call);
    std::printf("\n");
    if (behaviour == "ignore") return 1;
    if (behaviour == "refuse") return sd_bus_error_set(error, SD_BUS_ERROR_FAILED, "no dialog can be shown");
    client = sd_bus_message_get_sender(call);
    std::string sender = client.substr(1);
    std::ranges::replace(sender, '.', '_');
    request = "/org/freedesktop/portal/desktop/request/" + sender + "/marnoth";
    check(sd_bus_add_object_vtable(bus, nullptr, request.c_str(), kRequest, kRequestTable, nullptr),
          "a request");
    check(sd_event_add_time_relative(sd_bus_get_event(bus), nullptr, CLOCK_MONOTONIC, kUserTakes, 0, userActs,
                                     bus),
          "a timer");
    return sd_bus_reply_method_return(call, "o", request.c_str());
}

const sd_bus_vtable kChooserTable[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("OpenFile", "ssa{sv}", "o", asked, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("SaveFile", "ssa{sv}", "o", asked, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};

}  // namespace

int main(int count, char** words) {
    if (count != 2) return 2;
    behaviour = words[1];
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    sd_bus* bus = nullptr;
    sd_event* events = nullptr;
    check(sd_event_default(&events), "events");
    check(sd_bus_open_user(&bus), "the bus");
    check(sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/portal/desktop",
                                   "org.freedesktop.portal.FileChooser", kChooserTable, nullptr),
          "the interface");
    check(sd_bus_request_name(bus, "org.freedesktop.portal.Desktop", 0), "the name");
    check(sd_bus_attach_event(bus, events, 0), "the bus among the events");
    std::printf("ready\n");
    return sd_event_loop(events) < 0;
}
