#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/WaveFile.h"

namespace marnoth::test {

/// A project file by hand, sound or broken: every number that a file can tell is a field. Knows nothing of
/// the product's own writer. All frame numbers are written as given, at the rate of the file's wave.
struct ProjectBytes {
    struct Keys {
        std::int32_t pad = 0;
        std::int32_t lowKey = 60;
        std::int32_t highKey = 60;
        std::int32_t rootKey = 60;
        std::int32_t lowVelocity = 0;
        std::int32_t highVelocity = 127;
    };
    struct Settings {
        std::int64_t lengthSamples = 0;
        std::int64_t lengthTicks = 0;
        std::uint32_t looping = 0;
        std::uint32_t synced = 0;
        std::uint32_t mute = 0;
        std::uint32_t solo = 0;
        std::uint32_t oneShot = 1;
        std::uint32_t tailOn = 0;
        std::uint32_t followKey = 0;
        std::int32_t rootNote = -1;
        std::uint32_t output = 0;
        std::int32_t midiChannel = -1;
        float volume = 1.0f;
        float pan = 0.5f;
    };
    struct Grain {
        std::int32_t binFile = 0;
        std::int32_t binGrain = 0;
        std::int64_t startTicks = 0;
        std::int64_t startSamples = 0;
        std::int64_t lengthTicks = 0;
        std::int64_t lengthSamples = 0;
        std::int64_t tailLengthSamples = 0;
        std::uint32_t tempoLocked = 0;
        double pitchRatio = 1.0;
        std::int32_t transpose = 0;
        double volume = 1.0;
        double pan = 0.5;
        std::uint32_t tailOn = 0;
        std::int64_t sampleOffset = 0;
        std::uint32_t peakOffset = 0;
        std::uint32_t peakCount = 0;
    };
    struct File {
        std::uint32_t index = 0;
        Settings settings;
        std::string name;
        std::string path;
        std::optional<std::uint32_t> nameLength;  ///< what the file claims
        std::optional<std::uint32_t> pathLength;
        std::uint16_t tag = 3;
        std::uint16_t channels = 1;
        std::uint32_t rate = 44100;
        std::optional<std::uint32_t> bytesPerSecond;
        std::uint16_t bits = 32;
        std::string waveType = "WAVE";
        std::vector<float> data;  ///< the whole `data` chunk, guard frame and all
        std::optional<std::uint32_t> dataBytes;
        std::vector<Grain> grains;
        std::optional<std::int32_t> grainCount;
    };
    struct Pad {
        Settings settings;
        std::vector<Grain> grains;
        std::optional<std::int32_t> grainCount;
    };

    std::string formType = "marn";
    std::uint32_t version = 1;
    std::uint32_t auditionEnabled = 0;
    std::optional<std::int32_t> binCount;
    std::int32_t padCount = 16;
    std::vector<Keys> keys = defaultKeys();
    std::optional<std::uint32_t> keyCount;
    std::vector<File> files;
    std::array<Pad, 16> pads;
    std::string leaveOut;           ///< a chunk that is missing, each time
    bool strangers = false;         ///< an unknown chunk of odd length stands in front of every other
    std::uint8_t undefined = 0x00;  ///< what undefined bytes hold
    std::optional<std::uint32_t> formBytes;

    static std::vector<Keys> defaultKeys() {
        constexpr std::array<std::int32_t, 16> kWhiteKeys{60, 62, 64, 65, 67, 69, 71, 72,
                                                          74, 76, 77, 79, 81, 83, 84, 86};
        std::vector<Keys> all;
        for (std::int32_t pad = 0; pad < 16; ++pad) {
            const std::int32_t key = kWhiteKeys[static_cast<std::size_t>(pad)];
            all.push_back({pad, key, key, key, 0, 127});
        }
        return all;
    }

    /// The bytes, and where the audio lies in them: first and one behind the last.
    struct Built {
        Bytes bytes;
        std::vector<std::pair<std::size_t, std::size_t>> audio;
    };
    Built build() const {
        Built built;
        Bytes& out = built.bytes;
        append(out, std::string("RIFF"));
        append(out, std::uint32_t{0});
        append(out, formType);
        addHeader(out);
        addKeys(out);
        for (const File& file : files) addFile(built, file);
        for (std::uint32_t pad = 0; pad < pads.size(); ++pad) addPad(out, pad);
        const auto size = formBytes.value_or(static_cast<std::uint32_t>(out.size() - 8));
        std::memcpy(out.data() + 4, &size, 4);
        return built;
    }
    Bytes bytes() const { return build().bytes; }
    TempPath writeTemp(const char* extension = ".mrn") const {
        TempPath path(extension);
        WaveFile::writeBytes(path.path(), bytes());
        return path;
    }

private:
    void addChunk(Bytes& out, const std::string& id, const Bytes& body,
                  std::optional<std::uint32_t> claim = {}) const {
        if (strangers) {
            append(out, std::string("strg"));
            append(out, std::uint32_t{3});
            append(out, std::uint32_t{0x00ABCDEF});
        }
        if (id == leaveOut) return;
        append(out, id);
        append(out, claim.value_or(static_cast<std::uint32_t>(body.size())));
        out.insert(out.end(), body.begin(), body.end());
        if (body.size() % 2) out.push_back(0);
    }
    void addUndefined(Bytes& out) const { out.insert(out.end(), 4, undefined); }

    void addHeader(Bytes& out) const {
        Bytes body;
        append(body, version);
        append(body, auditionEnabled);
        append(body, binCount.value_or(static_cast<std::int32_t>(files.size())));
        append(body, padCount);
        addChunk(out, "comn", body);
    }
    void addKeys(Bytes& out) const {
        Bytes body;
        append(body, keyCount.value_or(static_cast<std::uint32_t>(keys.size())));
        for (const Keys& entry : keys) {
            append(body, entry.pad);
            addUndefined(body);
            append(body, std::uint64_t{0});
            append(body, entry.lowKey);
            append(body, entry.highKey);
            append(body, entry.rootKey);
            append(body, entry.lowVelocity);
            append(body, entry.highVelocity);
            addUndefined(body);
        }
        addChunk(out, "keym", body);
    }
    static void add(Bytes& out, const Settings& settings) {
        append(out, settings.lengthSamples);
        append(out, settings.lengthTicks);
        append(out, settings.looping);
        append(out, settings.synced);
        append(out, settings.mute);
        append(out, settings.solo);
        append(out, settings.oneShot);
        append(out, settings.tailOn);
        append(out, settings.followKey);
        append(out, settings.rootNote);
        append(out, settings.output);
        append(out, settings.midiChannel);
        append(out, settings.volume);
        append(out, settings.pan);
    }
    void addGrains(Bytes& out, const std::string& id, std::uint32_t index, const std::vector<Grain>& grains,
                   std::optional<std::int32_t> count) const {
        Bytes body;
        append(body, index);
        append(body, count.value_or(static_cast<std::int32_t>(grains.size())));
        for (std::uint32_t i = 0; i < grains.size(); ++i) {
            const Grain& grain = grains[i];
            append(body, i);
            append(body, grain.binFile);
            append(body, grain.binGrain);
            append(body, grain.startTicks);
            append(body, grain.startSamples);
            append(body, grain.lengthTicks);
            append(body, grain.lengthSamples);
            append(body, grain.tailLengthSamples);
            append(body, grain.tempoLocked);
            addUndefined(body);
            append(body, grain.pitchRatio);
            append(body, grain.transpose);
            addUndefined(body);
            append(body, grain.volume);
            append(body, grain.pan);
            append(body, grain.tailOn);
            addUndefined(body);
            append(body, grain.sampleOffset);
            append(body, grain.peakOffset);
            append(body, grain.peakCount);
        }
        addChunk(out, id, body);
    }
    Bytes formatBody(const File& file) const {
        const auto align = static_cast<std::uint16_t>(file.channels * file.bits / 8);
        Bytes body;
        append(body, file.tag);
        append(body, file.channels);
        append(body, file.rate);
        append(body, file.bytesPerSecond.value_or(file.rate * align));
        append(body, align);
        append(body, file.bits);
        append(body, std::uint16_t{0});
        return body;
    }
    void addFile(Built& built, const File& file) const {
        Bytes settings;
        append(settings, file.index);
        add(settings, file.settings);
        append(settings, file.nameLength.value_or(static_cast<std::uint32_t>(file.name.size())));
        append(settings, file.name);
        append(settings, file.pathLength.value_or(static_cast<std::uint32_t>(file.path.size())));
        append(settings, file.path);
        addChunk(built.bytes, "lbtr", settings);
        addWave(built, file);
        addGrains(built.bytes, "lbte", file.index, file.grains, file.grainCount);
    }
    void addWave(Built& built, const File& file) const {
        Bytes body;
        append(body, file.waveType);
        addChunk(body, "fmt ", formatBody(file));
        Bytes audio(file.data.size() * sizeof(float));
        if (!audio.empty()) std::memcpy(audio.data(), file.data.data(), audio.size());
        addChunk(body, "data", audio, file.dataBytes);
        addChunk(built.bytes, "RIFF", body);
        const std::size_t end = built.bytes.size();
        built.audio.emplace_back(end - audio.size(), end);
    }
    void addPad(Bytes& out, std::uint32_t pad) const {
        Bytes settings;
        append(settings, pad);
        add(settings, pads[pad].settings);
        addChunk(out, "pdtr", settings);
        addGrains(out, "pevt", pad, pads[pad].grains, pads[pad].grainCount);
    }
};

/// A file of `frames` frames with the samples that `value` gives, its guard frame behind them, and `cuts`
/// equal grains that fill it: a loop of `beats` beats.
inline ProjectBytes::File projectFile(std::int64_t frames, std::int32_t cuts = 1, std::int32_t index = 0,
                                      std::uint16_t channels = 1, std::uint32_t rate = 44100) {
    constexpr std::int64_t kTicksPerBeat = 62914560;
    ProjectBytes::File file;
    file.index = static_cast<std::uint32_t>(index);
    file.settings.lengthSamples = frames;
    file.settings.lengthTicks = cuts * kTicksPerBeat;
    file.settings.looping = file.settings.synced = 1;
    file.name = "file " + std::to_string(index);
    file.path = "C:\\loops\\file " + std::to_string(index) + ".wav";
    file.channels = channels;
    file.rate = rate;
    for (std::int64_t i = 0; i <= frames; ++i) {
        for (int c = 0; c < channels; ++c) {
            const auto at = static_cast<double>(std::min(i, frames - 1));
            file.data.push_back(static_cast<float>(0.5 * std::sin(0.05 * at + c)));
        }
    }
    for (std::int32_t cut = 0; cut < cuts; ++cut) {
        ProjectBytes::Grain grain;
        grain.binFile = index;
        grain.binGrain = cut;
        grain.startTicks = cut * kTicksPerBeat;
        grain.lengthTicks = kTicksPerBeat;
        grain.startSamples = grain.sampleOffset = frames * cut / cuts;
        grain.lengthSamples = frames * (cut + 1) / cuts - grain.startSamples;
        grain.tempoLocked = 1;
        grain.peakOffset = static_cast<std::uint32_t>(544 * cut / cuts);
        grain.peakCount = static_cast<std::uint32_t>(544 / cuts);
        file.grains.push_back(grain);
    }
    return file;
}

/// A pad that plays a file as it is.
inline ProjectBytes::Pad padOf(const ProjectBytes::File& file) {
    ProjectBytes::Pad pad;
    pad.settings = file.settings;
    pad.grains = file.grains;
    return pad;
}

}  // namespace marnoth::test
