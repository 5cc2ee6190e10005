#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/drawing/FileChooser.h"
#include "shells/desktop/dialogs/BusLibrary.h"

namespace marnoth {

inline constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
inline constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";

struct BusMessageFreed {
    const BusLibrary* bus;
    void operator()(sd_bus_message* message) const { bus->message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, BusMessageFreed>;

/// The call that opens a dialog before the X11 window `window`; null when it can't be made.
BusMessage openDialogMessage(const BusLibrary& bus, sd_bus* connection, const FileQuestion& question,
                             unsigned long window);

/// The call that closes the dialog of `request`; null when it can't be made.
BusMessage closeDialogMessage(const BusLibrary& bus, sd_bus* connection, const std::string& request);

/// What the portal says in the end.
FileAnswer answerOfResponse(const BusLibrary& bus, sd_bus_message* response);

}  // namespace marnoth
