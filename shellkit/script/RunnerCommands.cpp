#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "hostkit/InstrumentOptions.h"
#include "seam/Limits.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/script/ScriptCommand.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/script/ScriptWords.h"

namespace marnoth {

namespace {

/// The largest block, in frames. Buffers of 18 pins are as long.
constexpr std::int64_t kMostBlockFrames = 1 << 20;
/// Beyond it the bytes per second of stereo floats don't fit into the format's record.
constexpr std::int64_t kHighestRate = 0xFFFFFFFFLL / 8;
constexpr double kDefaultRate = 44100.0;
// Far beyond any music, and so that times in samples and in ticks stay within 64 bits.
constexpr double kLowestConverterRate = 1e-3;
constexpr double kHighestConverterRate = 1e9;
constexpr double kSlowestTempo = 1e-3;
constexpr double kFastestTempo = 1e6;
constexpr double kMostSeconds = 1e9;
constexpr std::int64_t kHighestKey = 11;

std::string done() {
    return printResult(S_OK);
}

double readBetween(std::string_view word, const char* name, double lowest, double highest) {
    const double value = readReal(word, name);
    if (value < lowest || value > highest)
        throw ScriptError(std::string(name) + " must lie within " + printReal(lowest) + " to " +
                          printReal(highest));
    return value;
}

double readTempo(std::string_view word) {
    return readBetween(word, "BPM", kSlowestTempo, kFastestTempo);
}

/// A word that must be the first of two, or the second.
bool readSwitch(const std::string& word, const char* yes, const char* no) {
    if (word == yes) return true;
    if (word == no) return false;
    throw ScriptError("\"" + word + "\" is neither " + yes + " nor " + no);
}

std::vector<int> readPins(Arguments words) {
    std::vector<int> pins;
    for (const std::string& word : words) {
        if (word == "all") {
            for (int pin = 0; pin < kOutputPins; ++pin) pins.push_back(pin);
        } else {
            pins.push_back(word == "mix" ? 0
                                         : static_cast<int>(readInteger(word, "PIN", 1, kOutputPins - 1)));
        }
    }
    return pins;
}

std::string connect(ScriptSession& session, Arguments words) {
    const auto rate = static_cast<std::uint32_t>(readInteger(words[0], "RATE", 1, kHighestRate));
    const auto channels = static_cast<std::uint32_t>(readInteger(words[1], "CHANNELS", 1, 2));
    return printResult(session.connect(rate, channels, readPins(words.subspan(2))));
}

void readAttachOption(const std::string& word, AttachOptions& options) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const std::string value = equals == word.npos ? "" : word.substr(equals + 1);
    if (name == "key")
        options.key = static_cast<std::uint32_t>(readInteger(value, "key", 0, kHighestKey));
    else if (name == "rate")
        options.converterRate = readBetween(value, "rate", kLowestConverterRate, kHighestConverterRate);
    else if (word == "converter=off")
        options.converter = false;
    else
        throw ScriptError("\"" + word + "\" is none of key=K, converter=off and rate=R");
}

std::string attach(ScriptSession& session, Arguments words) {
    AttachOptions options;
    options.tempo = readTempo(words[0]);
    options.converterRate = session.rate() ? static_cast<double>(*session.rate()) : kDefaultRate;
    for (const std::string& word : words.subspan(1)) readAttachOption(word, options);
    return printResult(session.rig().attach(options));
}

std::string tempo(ScriptSession& session, Arguments words) {
    const auto tick = readNumber<std::int32_t>(words[0], "TICK");
    const double beatsPerMinute = readTempo(words[1]);
    if (!session.rig().addTempo(tick, beatsPerMinute))
        throw ScriptError("a tempo needs `attach` before it and a TICK above those before it");
    return done();
}

std::string detach(ScriptSession& session, Arguments) {
    return printResult(session.rig().detach());
}

std::string input(ScriptSession& session, Arguments words) {
    if (words[0] == "silence")
        session.setInputSilence();
    else if (words[0] == "zeros")
        session.setInputZeros();
    else
        session.setInputFile(words[0]);
    return done();
}

std::string silenceFlag(ScriptSession& session, Arguments words) {
    session.rig().setSilenceFlag(readSwitch(words[0], "on", "off"));
    return done();
}

std::string lenient(ScriptSession& session, Arguments words) {
    return printResult(setLenientFiles(session.rig().sampler(), readSwitch(words[0], "on", "off")));
}

std::string steady(ScriptSession& session, Arguments words) {
    return printResult(setSteady(session.rig().sampler(), readSwitch(words[0], "on", "off")));
}

std::string block(ScriptSession& session, Arguments words) {
    const auto frames = readInteger(words[0], "FRAMES", 1, kMostBlockFrames);
    return printResult(session.setBlock(static_cast<std::int32_t>(frames)));
}

std::string pause(ScriptSession& session, Arguments) {
    return printResult(session.rig().pause());
}

std::string run(ScriptSession& session, Arguments) {
    return printResult(session.rig().run());
}

std::string stop(ScriptSession& session, Arguments) {
    return printResult(session.rig().stop());
}

std::string discontinuity(ScriptSession& session, Arguments words) {
    session.rig().setDiscontinuity(readBetween(words[0], "SECONDS", -kMostSeconds, kMostSeconds));
    return done();
}

std::string render(ScriptSession& session, Arguments words) {
    const auto frames = readInteger(words[0], "FRAMES", 0, std::numeric_limits<std::int64_t>::max());
    return printResult(session.render(frames));
}

std::string saveStream(ScriptSession& session, Arguments words) {
    return resultOf([&] { return session.saveStream(words[0]); });
}

std::string loadStream(ScriptSession& session, Arguments words) {
    return resultOf([&] { return session.loadStream(words[0]); });
}

}  // namespace

std::vector<ScriptCommand> runnerCommands() {
    return {
        {"connect", "RATE CHANNELS PIN ...", connect},
        {"attach", "BPM [key=K] [converter=off] [rate=R]", attach},
        {"tempo", "TICK BPM", tempo},
        {"detach", "", detach},
        {"input", "silence|zeros|FILE", input},
        {"silence-flag", "on|off", silenceFlag},
        {"block", "FRAMES", block},
        {"lenient", "on|off", lenient},
        {"steady", "on|off", steady},
        {"pause", "", pause},
        {"run", "", run},
        {"stop", "", stop},
        {"discontinuity", "SECONDS", discontinuity},
        {"render", "FRAMES", render},
        {"save-stream", "FILE", saveStream},
        {"load-stream", "FILE", loadStream},
    };
}

}  // namespace marnoth
