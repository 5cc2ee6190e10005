#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "shellkit/script/ScriptCommand.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/script/ScriptWords.h"

namespace marnoth {

namespace {

/// The parts of a word that colons separate; exactly `count` of them.
std::vector<std::string> eventParts(const std::string& word, std::size_t count, const char* form) {
    std::vector<std::string> parts(1);
    for (const char c : word) {
        if (c == ':')
            parts.emplace_back();
        else
            parts.back() += c;
    }
    if (parts.size() != count) throw ScriptError("\"" + word + "\" isn't an event: " + form);
    return parts;
}

SynthEvent readNote(const std::string& word) {
    const auto parts = eventParts(word, 5, "TIME:CHANNEL:NOTE:VELOCITY:DURATION");
    SynthEvent event;
    event.type = SynthEventType::note;
    event.time = readNumber<std::int32_t>(parts[0], "TIME");
    event.channel = readNumber<std::uint8_t>(parts[1], "CHANNEL");
    event.note = readNumber<std::uint8_t>(parts[2], "NOTE");
    event.velocity = readNumber<std::uint8_t>(parts[3], "VELOCITY");
    event.duration = parts[4] == "open" ? kDurationOpen : readNumber<std::uint32_t>(parts[4], "DURATION");
    return event;
}

RawMidiEvent readRaw(const std::string& word) {
    const auto parts = eventParts(word, 4, "TIME:STATUS:DATA1:DATA2");
    RawMidiEvent event;
    event.time = readNumber<std::uint32_t>(parts[0], "TIME");
    event.status = readNumber<std::uint8_t>(parts[1], "STATUS");
    event.data1 = readNumber<std::uint8_t>(parts[2], "DATA1");
    event.data2 = readNumber<std::uint8_t>(parts[3], "DATA2");
    return event;
}

template <class Event>
std::vector<Event> readAll(Arguments words, Event (*read)(const std::string&)) {
    std::vector<Event> events;
    for (const std::string& word : words) events.push_back(read(word));
    return events;
}

std::string startPlayback(ScriptSession& session, Arguments words) {
    return printResult(session.rig().synth().StartPlayback(readNumber<std::int32_t>(words[0], "TICKS")));
}

std::string loopPlayback(ScriptSession& session, Arguments words) {
    const auto restart = readNumber<std::int32_t>(words[0], "RESTART");
    const auto stop = readNumber<std::int32_t>(words[1], "STOP");
    return printResult(session.rig().synth().LoopPlayback(restart, stop));
}

std::string stopPlayback(ScriptSession& session, Arguments) {
    return printResult(session.rig().synth().StopPlayback());
}

std::string queueEvents(ScriptSession& session, Arguments words) {
    const auto port = readNumber<std::uint32_t>(words[0], "PORT");
    return printResult(session.rig().queueEvents(port, readAll(words.subspan(1), readNote)));
}

std::string queueRawInput(ScriptSession& session, Arguments words) {
    const auto port = readNumber<std::uint32_t>(words[0], "PORT");
    return printResult(session.rig().queueRawInput(port, readAll(words.subspan(1), readRaw)));
}

std::string notify(ScriptSession& session, Arguments words) {
    SynthNotification record;
    record.kind = readNumber<std::uint32_t>(words[0], "KIND");
    record.port = readNumber<std::int32_t>(words[1], "PORT");
    record.value = readNumber<std::uint8_t>(words[2], "VALUE");
    record.mask = readNumber<std::uint8_t>(words[3], "MASK");
    return printResult(session.rig().notify().Notify(&record));
}

}  // namespace

std::vector<ScriptCommand> synthCommands() {
    return {
        {"StartPlayback", "TICKS", startPlayback},
        {"LoopPlayback", "RESTART STOP", loopPlayback},
        {"StopPlayback", "", stopPlayback},
        {"QueueEvents", "PORT EVENT ...", queueEvents},
        {"QueueRawInput", "PORT EVENT ...", queueRawInput},
        {"Notify", "KIND PORT VALUE MASK", notify},
    };
}

}  // namespace marnoth
