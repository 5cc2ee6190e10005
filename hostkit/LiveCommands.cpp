#include "hostkit/LiveCommands.h"

namespace marnoth {

bool LiveCommands::push(const LiveCommand& command) {
    if (queue_.push(command)) return true;
    return command.kind == LiveCommand::Kind::message && pushLate(command.message);
}

bool LiveCommands::pushLate(const LiveMessage& message) {
    if (message.kind == LiveMessage::Kind::noteOff) {
        const int word = message.channel * kWordsPerChannel + message.key / kKeysPerWord;
        late_[static_cast<std::size_t>(word)].fetch_or(std::uint64_t{1} << message.key % kKeysPerWord);
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

LiveCommand LiveCommands::noteOffOf(int word, int bit) {
    LiveCommand command;
    command.message.channel = static_cast<std::uint8_t>(word / kWordsPerChannel);
    command.message.key = static_cast<std::uint8_t>(word % kWordsPerChannel * kKeysPerWord + bit);
    return command;
}

}  // namespace marnoth
