#include "shells/desktop/dialogs/PortalChooser.h"

#include <poll.h>

#include <string_view>
#include <utility>

#include "shells/desktop/dialogs/PortalMessages.h"

namespace marnoth {

void PortalChooser::ask(const FileQuestion& question, AskingWindow& window,
                        std::function<void(FileAnswer)> then) {
    cancel();
    bus_ = BusLibrary::find();
    if (!bus_ || !begin(question, window.id())) {
        end();
        return then({.wasAsked = false, .file = {}});
    }
    then_ = std::move(then);
    patience_ = loop_.after(kPatience, [this] {
        fail();
        process();
    });
    loop_.watch(descriptor_, [this] { process(); });
    process();
}

void PortalChooser::cancel() {
    then_ = {};
    if (connection_ && !request_.empty())
        if (const BusMessage close = closeDialogMessage(*bus_, connection_, request_))
            bus_->call_async(connection_, nullptr, close.get(), nullptr, nullptr, 0);
    end();
}

bool PortalChooser::begin(const FileQuestion& question, unsigned long window) {
    if (bus_->open_user(&connection_) < 0) return false;
    descriptor_ = bus_->get_fd(connection_);
    return descriptor_ >= 0 && listen() && call(question, window);
}

bool PortalChooser::listen() {
    const std::string responses = std::string("type='signal',sender='") + kPortalName +
                                  "',interface='org.freedesktop.portal.Request',member='Response'";
    const std::string owners =
        std::string(
            "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
            "member='NameOwnerChanged',arg0='") +
        kPortalName + "'";
    return bus_->add_match_async(connection_, nullptr, responses.c_str(), taken<&PortalChooser::responded>,
                                 nullptr, this) >= 0 &&
           bus_->add_match_async(connection_, nullptr, owners.c_str(), taken<&PortalChooser::ownerChanged>,
                                 nullptr, this) >= 0;
}

bool PortalChooser::call(const FileQuestion& question, unsigned long window) {
    const BusMessage message = openDialogMessage(*bus_, connection_, question, window);
    return message && bus_->call_async(connection_, nullptr, message.get(), taken<&PortalChooser::understood>,
                                       this, 0) >= 0;
}

void PortalChooser::process() {
    int more = 1;
    while (more > 0 && !answer_) more = bus_->process(connection_, nullptr);
    if (more < 0) fail();
    if (!answer_) {
        loop_.watchWriting(descriptor_, (bus_->get_events(connection_) & POLLOUT) != 0);
        return;
    }
    FileAnswer answer = *std::exchange(answer_, {});
    const auto then = std::exchange(then_, {});
    end();
    if (then) then(std::move(answer));
}

void PortalChooser::end() {
    loop_.stop(std::exchange(patience_, 0));
    if (descriptor_ >= 0) loop_.forget(std::exchange(descriptor_, -1));
    request_.clear();
    answer_.reset();
    if (!connection_) return;
    // Nothing is waited for: what isn't sent by now is of no use to anybody.
    bus_->close(connection_);
    bus_->unref(std::exchange(connection_, nullptr));
}

void PortalChooser::understood(sd_bus_message* reply) {
    loop_.stop(std::exchange(patience_, 0));
    const char* request = nullptr;
    if (bus_->message_is_method_error(reply, nullptr) || bus_->message_read(reply, "o", &request) <= 0)
        return fail();
    request_ = request;
}

void PortalChooser::responded(sd_bus_message* signal) {
    const char* const path = bus_->message_get_path(signal);
    if (path && request_ == path) answer_ = answerOfResponse(*bus_, signal);
}

void PortalChooser::ownerChanged(sd_bus_message* signal) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* now = nullptr;
    if (bus_->message_read(signal, "sss", &name, &before, &now) <= 0) return;
    // The portal has gone, and its dialog with it.
    if (std::string_view(name) == kPortalName && std::string_view(now).empty()) fail();
}

}  // namespace marnoth
