#include "hostkit/LiveCommands.h"

namespace marnoth {

bool LiveCommands::push(const LiveCommand& command) {
    if (queue_.push(command)) return true;
    return command.kind == LiveCommand::Kind::message && pushLate(command.message);
}

bool LiveCommands::pushLate(const LiveMessage& message) {
    if (message.kind == LiveMessage::Kind::noteOff) {
        ++late_[message.channel * kKeys + message.key];
    } else if (message.kind == LiveMessage::Kind::soundOff) {
        lateSoundOff_ = true;
    } else {
        return false;
    }
    hasLate_ = true;
    return true;
}

LiveCommand LiveCommands::soundOff() {
    LiveCommand command;
    command.message.kind = LiveMessage::Kind::soundOff;
    return command;
}

LiveCommand LiveCommands::noteOffOf(std::size_t index) {
    LiveCommand command;
    command.message.channel = static_cast<std::uint8_t>(index / kKeys);
    command.message.key = static_cast<std::uint8_t>(index % kKeys);
    return command;
}

}  // namespace marnoth
