#include "shells/cli/PadSettings.h"

#include <charconv>
#include <cmath>

#include "editor/ValueRanges.h"
#include "editor/texts/RootScale.h"
#include "editor/texts/TextForms.h"
#include "seam/Limits.h"
#include "seam/MusicalTime.h"
#include "shellkit/files/Failure.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/NoteNames.h"

namespace marnoth {

namespace {

constexpr double kSoftestDecibels = -75;
constexpr double kLoudestDecibels = 6;
constexpr double kShortestBeats = 0.01;
constexpr double kLongestBeats = 1000;
constexpr std::int32_t kNone = -1;

template <class T>
std::optional<T> readWhole(std::string_view text, T lowest, T highest) {
    if (text.starts_with('+')) text.remove_prefix(1);
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc{} && end == text.data() + text.size();
    return whole && value >= lowest && value <= highest ? std::optional(value) : std::nullopt;
}

std::optional<float> readVolume(std::string_view text) {
    if (text == "-inf") return 0.0f;
    const auto decibels = readWhole(text, kSoftestDecibels, kLoudestDecibels);
    return decibels ? std::optional(static_cast<float>(std::pow(10.0, *decibels / 20))) : std::nullopt;
}

std::optional<std::int64_t> readLength(std::string_view text) {
    const auto beats = readWhole(text, kShortestBeats, kLongestBeats);
    return beats ? std::optional(std::llround(*beats * kTicks16PerBeat)) : std::nullopt;
}

std::optional<float> readPan(std::string_view text) {
    if (text == "C" || text == "c") return 0.5f;
    const char side = text.empty() ? ' ' : static_cast<char>(text.back() & ~0x20);
    const bool hasSide = side == 'L' || side == 'R';
    if (hasSide) text.remove_suffix(1);
    const auto percent = readWhole(text, hasSide ? 0 : -100, 100);
    if (!percent) return {};
    return static_cast<float>((100 + (side == 'L' ? -*percent : *percent)) * 0.005);
}

std::optional<std::int32_t> readTranspose(std::string_view text) {
    return readWhole<std::int32_t>(text, -kMostSemitones, kMostSemitones);
}

std::optional<std::uint32_t> readOutput(std::string_view text) {
    return text == "mix" ? 0 : readWhole<std::uint32_t>(text, 1, kChannelPins);
}

std::optional<std::int32_t> readRoot(std::string_view text) {
    if (text == "none") return kNone;
    const auto note = keyNamed(text);
    return note ? std::optional(rootOfNote(static_cast<int>(*note), RootScale::ofLoops)) : std::nullopt;
}

std::optional<std::uint32_t> readFlag(std::string_view text) {
    return text == "on" ? std::optional(1u) : text == "off" ? std::optional(0u) : std::nullopt;
}

std::optional<std::uint32_t> readMode(std::string_view text) {
    return text == "one-shot" ? std::optional(1u) : text == "gate" ? std::optional(0u) : std::nullopt;
}

std::optional<std::int32_t> readChannel(std::string_view text) {
    if (text == "any") return kNone;
    const auto channel = readWhole<std::int32_t>(text, 1, kMidiChannels);
    return channel ? std::optional(*channel - 1) : std::nullopt;
}

/// A number of MIDI, or a name as `info` tells it: "C5" is 60.
std::optional<std::int32_t> readNote(std::string_view text) {
    if (const auto number = readWhole<std::int32_t>(text, 0, kHighestKey)) return number;
    for (std::int32_t note = 0; note <= kHighestKey; ++note)
        if (noteName(note) == text) return note;
    return {};
}

std::optional<std::int32_t> readVelocity(std::string_view text) {
    return readWhole<std::int32_t>(text, 0, kHighestVelocity);
}

/// "LOW-HIGH", or one value.
template <class Read>
std::optional<ValueRange> readRange(std::string_view text, Read read) {
    const std::size_t dash = text.find('-');
    const auto low = read(text.substr(0, dash));
    const auto high = dash == text.npos ? low : read(text.substr(dash + 1));
    if (!low || !high || *low > *high) return {};
    return ValueRange{*low, *high};
}

std::optional<ValueRange> readNotes(std::string_view text) {
    return readRange(text, readNote);
}

std::optional<ValueRange> readVelocities(std::string_view text) {
    return readRange(text, readVelocity);
}

/// A word whose value `read` makes a `field` of.
template <class T>
PadSettingWord word(std::string name, std::string values, std::string meaning,
                    std::optional<T> PadSettings::*field, std::optional<T> (*read)(std::string_view)) {
    const auto put = [=](PadSettings& settings, std::string_view value) {
        settings.*field = read(value);
        return (settings.*field).has_value();
    };
    return {std::move(name), std::move(values), std::move(meaning), put};
}

void require(HRESULT result) {
    if (FAILED(result)) throw FileFailure("setting a pad failed with code " + printResult(result));
}

/// The settings of one pad on their way to the instrument.
class PadChange {
public:
    PadChange(IGrooveSampler& sampler, std::int32_t pad) : sampler_(sampler), pad_(pad) {}

    template <class T>
    void set(HRESULT (IGrooveSampler::*setter)(std::int32_t, T), const std::optional<T>& value) {
        if (value) require((sampler_.*setter)(pad_, *value));
    }

    void transposeGrains(std::int32_t semitones) {
        std::int32_t grains = 0;
        require(sampler_.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad_), &grains));
        for (std::int32_t grain = 0; grain < grains; ++grain)
            require(sampler_.SetGrainTranspose(pad_, grain, semitones));
    }

    void setKeys(const PadSettings& settings) {
        KeyMapRecord keys{pad_, 0, kHighestKey, 0, 0, kHighestVelocity};
        require(sampler_.GetKeyMapEntry(&keys));
        if (settings.notes) {
            keys.lowKey = keys.rootKey = settings.notes->low;
            keys.highKey = settings.notes->high;
        }
        keys.rootKey = settings.center.value_or(keys.rootKey);
        if (settings.velocities) {
            keys.lowVelocity = settings.velocities->low;
            keys.highVelocity = settings.velocities->high;
        }
        require(sampler_.SetKeyMapEntry(&keys));
    }

private:
    IGrooveSampler& sampler_;
    std::int32_t pad_;
};

}  // namespace

const std::vector<PadSettingWord>& padSettingWords() {
    using S = PadSettings;
    constexpr const char* kSwitch = "on or off";
    static const std::vector<PadSettingWord> words{
        word("volume", "decibels from -75 to 6, or -inf", "level", &S::volume, readVolume),
        word("pan", "C, 0L to 100L, 0R to 100R, or -100 to 100", "place from left to right", &S::pan,
             readPan),
        word("transpose", "semitones from -24 to 24", "pitch, with no change of time", &S::transpose,
             readTranspose),
        word("output", "mix or 1 to 16", "the output that it goes to", &S::output, readOutput),
        word("mode", "one-shot or gate", "what a note's end does", &S::oneShot, readMode),
        word("sync", kSwitch, "follows the tempo", &S::synced, readFlag),
        word("loop", kSwitch, "goes round until it is stopped", &S::looping, readFlag),
        word("length", "beats from 0.01 to 1000", "of a round of its loop", &S::length, readLength),
        word("tail", kSwitch, "lets what follows a grain in its file ring on", &S::tail, readFlag),
        word("mute", kSwitch, "is silent", &S::mute, readFlag),
        word("solo", kSwitch, "is heard alone, with others that are", &S::solo, readFlag),
        word("root", "a note from A to G#, or none", "the loop's own key, from which it follows --key",
             &S::root, readRoot),
        word("follow-key", kSwitch, "follows --key; on with root", &S::followKey, readFlag),
        word("notes", "a note such as 60 or C5, or two such as C5-B5", "what plays it", &S::notes, readNotes),
        word("center", "a note such as 60 or C5", "the note that plays it untransposed; else the lowest",
             &S::center, readNote),
        word("velocities", "two numbers from 0 to 127 such as 64-127", "how hard those are", &S::velocities,
             readVelocities),
        word("channel", "any or 1 to 16", "the MIDI channel of those", &S::channel, readChannel),
    };
    return words;
}

void applySettings(IGrooveSampler& sampler, std::int32_t pad, const PadSettings& settings) {
    using I = IGrooveSampler;
    PadChange change(sampler, pad);
    change.set(&I::SetPadVolume, settings.volume);
    change.set(&I::SetPadPan, settings.pan);
    change.set(&I::SetPadOutput, settings.output);
    change.set(&I::SetPadRootNote, settings.root);
    if (settings.root) require(sampler.SetPadFollowKey(pad, *settings.root == kNone ? 0 : 1));
    change.set(&I::SetPadFollowKey, settings.followKey);
    change.set(&I::SetPadMute, settings.mute);
    change.set(&I::SetPadSolo, settings.solo);
    change.set(&I::SetPadOneShot, settings.oneShot);
    change.set(&I::SetPadSynced, settings.synced);
    change.set(&I::SetPadLooping, settings.looping);
    change.set(&I::SetPadTail, settings.tail);
    if (settings.length)
        require(sampler.SetLoopLength(kPadLoop, static_cast<std::uint32_t>(pad), *settings.length));
    change.set(&I::SetPadChannel, settings.channel);
    if (settings.transpose) change.transposeGrains(*settings.transpose);
    if (settings.notes || settings.center || settings.velocities) change.setKeys(settings);
}

}  // namespace marnoth
