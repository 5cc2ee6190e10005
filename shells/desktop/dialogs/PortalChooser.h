#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/drawing/FileChooser.h"
#include "shells/desktop/EventLoop.h"
#include "shells/desktop/dialogs/BusLibrary.h"

namespace marnoth {

/// Asks for files by the desktop's own dialog, over the user's bus (freedesktop.org, "XDG Desktop Portal",
/// the interfaces FileChooser and Request). Each question has a connection of its own, which is gone when it
/// is answered. The loop's thread.
class PortalChooser final : public FileChooser {
public:
    /// How long the portal may take to say that it has understood.
    static constexpr std::chrono::seconds kPatience{5};

    /// `loop` outlives it.
    explicit PortalChooser(EventLoop& loop) : loop_(loop) {}
    ~PortalChooser() override { cancel(); }

    void ask(const FileQuestion& question, AskingWindow& window,
             std::function<void(FileAnswer)> then) override;
    void cancel() override;

private:
    bool begin(const FileQuestion& question, unsigned long window);
    bool listen();
    bool call(const FileQuestion& question, unsigned long window);
    /// Takes what has come.
    void process();
    void end();
    void fail() { answer_ = FileAnswer{.wasAsked = false, .file = {}}; }
    void understood(sd_bus_message* reply);
    void responded(sd_bus_message* signal);
    void ownerChanged(sd_bus_message* signal);
    template <void (PortalChooser::*kTake)(sd_bus_message*)>
    static int taken(sd_bus_message* message, void* self, sd_bus_error*) {
        (static_cast<PortalChooser*>(self)->*kTake)(message);
        return 0;
    }

    EventLoop& loop_;
    const BusLibrary* bus_ = nullptr;
    sd_bus* connection_ = nullptr;  ///< while a question is open
    int descriptor_ = -1;
    int patience_ = 0;                  ///< the timer
    std::string request_;               ///< the portal's name for the question, once it has one
    std::optional<FileAnswer> answer_;  ///< what has come
    std::function<void(FileAnswer)> then_;
};

}  // namespace marnoth
