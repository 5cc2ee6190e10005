#include "shells/lv2/NoteNames.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <stdexcept>

#include "platform/text/Text.h"
#include "seam/Limits.h"
#include "shells/lv2/HostFeatures.h"

namespace marnoth {

namespace {

constexpr double kLooksPerSecond = 10;

/// Of the file that a pad's first grain is from. Others edit meanwhile: what has just gone has none.
std::string loopOf(IGrooveSampler& sampler, std::int32_t pad) try {
    std::array<char, 260> title{};
    std::int32_t bin = -1;
    std::int32_t grain = 0;
    if (FAILED(sampler.GetGrainSource(pad, 0, &bin, &grain))) return {};
    sampler.GetBinFileName(bin, 0, title.data());
    return title.data();
} catch (const std::invalid_argument&) {
    return {};
}

bool answersNotes(const KeyMapRecord& entry) {
    return entry.lowVelocity <= entry.highVelocity && entry.highVelocity > 0;
}

/// As lists show it: without the ending of a file.
std::string_view shortTitle(std::string_view title) {
    constexpr std::size_t kEnding = 4;
    const bool hasEnding = title.size() > kEnding && title[title.size() - kEnding] == '.';
    return hasEnding ? title.substr(0, title.size() - kEnding) : title;
}

/// Neither what a document can't hold nor what nobody can read.
bool isShown(char32_t character) {
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
    return !isControl && character != 0xFFFE && character != 0xFFFF;
}

std::string escaped(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t character = takeUtf8(text);
        switch (character) {
            case U'&':
                out += "&amp;";
                break;
            case U'<':
                out += "&lt;";
                break;
            case U'>':
                out += "&gt;";
                break;
            case U'"':
                out += "&quot;";
                break;
            case U'\uFFFD':
                out += "\xEF\xBF\xBD";
                break;
            default:
                if (isShown(character)) out += before.substr(0, before.size() - text.size());
        }
    }
    return out;
}

std::string nameOn(const NamedPad& pad, std::int32_t key) {
    std::string name = std::to_string(pad.pad + 1);
    if (!pad.loop.empty()) name += ' ' + pad.loop;
    const std::int64_t semitones = std::int64_t{key} - pad.rootKey;
    if (semitones != 0) name += (semitones > 0 ? " +" : " ") + std::to_string(semitones);
    return name;
}

bool answers(const NamedPad& pad, std::int32_t channel) {
    return pad.channel < 0 || pad.channel == channel;
}

/// All names of a key; `channel` -1 is one that no pad has for itself.
std::string nameOf(std::span<const NamedPad> pads, std::int32_t channel, std::int32_t key) {
    std::string names;
    for (const NamedPad& pad : pads) {
        if (!answers(pad, channel) || key < pad.lowKey || key > pad.highKey) continue;
        names += (names.empty() ? "" : ", ") + nameOn(pad, key);
    }
    return names;
}

/// Channels that no pad has for itself share their names.
class NameSets {
public:
    explicit NameSets(std::span<const NamedPad> pads) : pads_(pads) {
        for (const NamedPad& pad : pads)
            if (pad.channel >= 0 && pad.channel < kMidiChannels)
                own_[static_cast<std::size_t>(pad.channel)] = true;
    }

    std::string assignments() const {
        std::string out;
        for (std::int32_t channel = 0; channel < kMidiChannels; ++channel)
            out += "<ChannelNameSetAssign Channel=\"" + std::to_string(channel + 1) + "\" NameSet=\"" +
                   nameOfSet(setOf(channel)) + "\"/>\n";
        return out;
    }
    /// Calls `take(set)` with each channel that has names of its own, and with -1.
    template <class Take>
    void forEach(Take take) const {
        take(-1);
        for (std::int32_t channel = 0; channel < kMidiChannels; ++channel)
            if (setOf(channel) == channel) take(channel);
    }
    std::string channelSet(std::int32_t set) const {
        std::string out = "<ChannelNameSet Name=\"" + nameOfSet(set) + "\">\n<AvailableForChannels>\n";
        for (std::int32_t channel = 0; channel < kMidiChannels; ++channel)
            out += "<AvailableChannel Channel=\"" + std::to_string(channel + 1) + "\" Available=\"" +
                   (setOf(channel) == set ? "true" : "false") + "\"/>\n";
        return out + "</AvailableForChannels>\n<UsesNoteNameList Name=\"" + nameOfSet(set) +
               "\"/>\n</ChannelNameSet>\n";
    }
    std::string noteList(std::int32_t set) const {
        std::string out = "<NoteNameList Name=\"" + nameOfSet(set) + "\">\n";
        for (std::int32_t key = 0; key <= kHighestKey; ++key) {
            const std::string name = nameOf(pads_, set, key);
            if (!name.empty())
                out += "<Note Number=\"" + std::to_string(key) + "\" Name=\"" + escaped(name) + "\"/>\n";
        }
        return out + "</NoteNameList>\n";
    }

private:
    std::int32_t setOf(std::int32_t channel) const {
        return own_[static_cast<std::size_t>(channel)] ? channel : -1;
    }
    static std::string nameOfSet(std::int32_t set) {
        return set < 0 ? "Pads" : "Pads of channel " + std::to_string(set + 1);
    }

    std::span<const NamedPad> pads_;
    std::array<bool, kMidiChannels> own_{};
};

/// No two instances in a process have the same.
std::string newModel() {
    static std::atomic<unsigned> made{0};
    return "Marnoth " + std::to_string(++made);
}

}  // namespace

std::vector<NamedPad> namedPads(IGrooveSampler& sampler) {
    std::vector<NamedPad> pads;
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        KeyMapRecord entry{
            .pad = pad, .lowKey = 0, .highKey = -1, .rootKey = 0, .lowVelocity = 0, .highVelocity = 0};
        std::int32_t grains = 0;
        std::int32_t channel = -1;
        sampler.GetKeyMapEntry(&entry);
        sampler.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad), &grains);
        sampler.GetPadChannel(pad, &channel);
        if (grains > 0 && answersNotes(entry))
            pads.push_back({pad, entry.lowKey, entry.highKey, entry.rootKey, channel,
                            std::string(shortTitle(loopOf(sampler, pad)))});
    }
    return pads;
}

std::string noteNameDocument(const std::string& model, std::span<const NamedPad> pads) {
    const NameSets sets(pads);
    std::string out =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE MIDINameDocument PUBLIC \"-//MIDI Manufacturers Association//DTD MIDINameDocument "
        "1.0//EN\" "
        "\"http://www.midi.org/dtds/MIDINameDocument10.dtd\">\n"
        "<MIDINameDocument>\n<Author/>\n<MasterDeviceNames>\n<Manufacturer>Marnoth</Manufacturer>\n<Model>" +
        escaped(model) + "</Model>\n<CustomDeviceMode Name=\"Default\">\n<ChannelNameSetAssignments>\n" +
        sets.assignments() + "</ChannelNameSetAssignments>\n</CustomDeviceMode>\n";
    sets.forEach([&](std::int32_t set) { out += sets.channelSet(set); });
    sets.forEach([&](std::int32_t set) { out += sets.noteList(set); });
    return out + "</MasterDeviceNames>\n</MIDINameDocument>\n";
}

NoteNames::NoteNames(IGrooveSampler& sampler, const LV2_Feature* const* features)
    : sampler_(sampler),
      model_(newModel()),
      host_(featureOf<MidnamHost>(features, kMidnamUpdateUri)),
      worker_(featureOf<LV2_Worker_Schedule>(features, LV2_WORKER__schedule)) {
    sampler.QueryInterface(IID_IMarnothOptions, options_.putVoid());
}

void NoteNames::advance(std::uint32_t frames, double rate) {
    if (!host_ || !worker_) return;
    framesSinceAsked_ += frames;
    if (framesSinceAsked_ * kLooksPerSecond < rate) return;
    framesSinceAsked_ = 0;
    std::uint64_t changes = 0;
    if (!options_ || FAILED(options_->GetChanges(&changes)) || asked_ == changes) return;
    constexpr std::uint8_t kNothing = 0;
    if (worker_->schedule_work(worker_->handle, sizeof kNothing, &kNothing) == LV2_WORKER_SUCCESS)
        asked_ = changes;
}

bool NoteNames::look() {
    std::vector<NamedPad> present = namedPads(sampler_);
    if (present == told_) return false;
    told_ = std::move(present);
    return true;
}

}  // namespace marnoth
