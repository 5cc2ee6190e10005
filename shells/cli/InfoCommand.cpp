#include "shells/cli/InfoCommand.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "editor/texts/RootScale.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "sample/AcidNames.h"
#include "sample/AcidWave.h"
#include "sample/NotFinite.h"
#include "seam/MusicalTime.h"
#include "shellkit/files/FaultText.h"
#include "shellkit/files/FilePlan.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/text/InstrumentText.h"
#include "shellkit/text/NoteNames.h"
#include "shellkit/text/PlainText.h"
#include "shells/cli/InfoJson.h"
#include "shells/cli/ProjectInfo.h"
#include "shells/cli/Recovery.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kMostRate = 768000;

/// A grain of the file, in beats and semitones.
struct GrainInfo {
    double startBeats = 0;
    double lengthBeats = 0;
};

/// The grains that the instrument cuts, or why it cuts none.
struct Cut {
    std::vector<GrainInfo> grains;
    std::string refusal;
};

std::vector<GrainInfo> grainsOf(IGrooveSampler& sampler, std::int32_t bin) {
    GrainListEntry* block = nullptr;
    std::int32_t count = 0;
    if (sampler.GetBinGrainList(bin, &block, &count) == E_OUTOFMEMORY) throw std::bad_alloc();
    const std::unique_ptr<GrainListEntry, decltype(&CoTaskMemFree)> list(block, &CoTaskMemFree);
    std::vector<GrainInfo> grains;
    for (std::int32_t i = 0; block && i < count; ++i)
        grains.push_back({static_cast<double>(block[i].startTicks) / kTicks16PerBeat,
                          static_cast<double>(block[i].endTicks - block[i].startTicks) / kTicks16PerBeat});
    return grains;
}

/// Loads the file into an instrument at the file's own rate, so that nothing is resampled.
Cut cutFile(const std::string& file, const WAVEFORMATEX& format) {
    const bool usual = format.nSamplesPerSec >= 1 && format.nSamplesPerSec <= kMostRate;
    HostRig rig{createInstrument};
    setLenientFiles(rig.sampler(), true);
    const std::array<int, 1> mix{0};
    if (rig.connect(usual ? format.nSamplesPerSec : 44100, 2, mix) == E_OUTOFMEMORY) throw std::bad_alloc();
    const std::filesystem::path path = std::filesystem::absolute(pathFromUtf8(file));
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    const HRESULT result =
        rig.sampler().LoadFileToBin("", toInstrument(utf8FromPath(path)).c_str(), &bin, &status);
    const LoadFault fault = FAILED(result) ? lastLoadFault(rig.sampler()) : LoadFault{};
    if (fault.kind == FaultKind::noMemory) throw std::bad_alloc();
    if (FAILED(result)) return {{}, whyNotLoaded(file, fault)};
    return {grainsOf(rig.sampler(), bin), {}};
}

std::vector<const WaveTag*> tagsOf(const CAcidWave& wave) {
    std::vector<const WaveTag*> tags;
    for (const WaveTag& tag : wave.tags) {
        if (tag.chunk.ckid == CAcidWave::kEndTag) break;
        if (!tag.label.empty()) tags.push_back(&tag);
    }
    return tags;
}

/// A tag's label without the colon that it ends with.
std::string nameOf(const WaveTag& tag) {
    std::string name(tag.label);
    if (name.ends_with(':')) name.pop_back();
    return name;
}

double secondsOf(const CAcidWave& wave) {
    return wave.format.nSamplesPerSec ? double(wave.frameCount) / wave.format.nSamplesPerSec : 0.0;
}

std::string divisionName(const CAcidWave& wave) {
    return wave.divisionExponent < kDivisionNames.size()
               ? std::string(kDivisionNames[wave.divisionExponent])
               : "division " + std::to_string(wave.divisionExponent);
}

/// By the number that the loop has once it is loaded, so that a project names it alike. Nothing without one.
std::optional<std::string> rootOf(const CAcidWave& wave) {
    if (!wave.rootNoteSet) return {};
    const std::int32_t root = (wave.rootNote + kLoopsAboveA) % kRootNotes;
    return root < 0 ? keyName(wave.rootNote) : rootName(root);
}

void printLoop(const CAcidWave& wave, std::ostream& out) {
    if (!wave.hasAcid) {
        out << "loop      none\n";
        return;
    }
    out << "loop      " << (wave.isLoop ? "" : "one-shot, ") << wave.beats << " beats at "
        << fixed(wave.tempo, 2) << " BPM";
    if (const auto root = rootOf(wave)) out << ", root note " << *root;
    out << '\n';
    if (wave.hasStretch) out << "markers   " << wave.stretchMarkerCount << ", " << divisionName(wave) << '\n';
}

/// What its user should know of a file that is taken as it is.
std::vector<std::string> warningsOf(CAcidWave& wave, const Cut& cut) {
    std::vector<std::string> warnings;
    if (wave.damage) warnings.push_back(damageInWords(wave.damage));
    // What the instrument refuses may be of any length.
    if (const std::int64_t count = cut.refusal.empty() ? countNotFinite(wave) : 0; count > 0)
        warnings.push_back(notFiniteText(count));
    return warnings;
}

void printText(CAcidWave& wave, const Cut& cut, const std::string& file, std::ostream& out) {
    const WAVEFORMATEX& format = wave.format;
    out << "file      " << file << '\n'
        << "format    " << formatName(wave.sampleTag) << ", " << format.wBitsPerSample << " bits, "
        << format.nChannels << (format.nChannels == 1 ? " channel, " : " channels, ") << format.nSamplesPerSec
        << " Hz\n"
        << "length    " << wave.frameCount << " frames, " << fixed(secondsOf(wave), 3) << " s\n";
    for (const WaveTag* tag : tagsOf(wave))
        out << "tag       " << tag->label << ' ' << inOneLine(fromInstrument(tag->value)) << '\n';
    printLoop(wave, out);
    for (const std::string& warning : warningsOf(wave, cut)) out << "warning   " << warning << '\n';
    if (!cut.refusal.empty()) {
        out << "grains    none: " << cut.refusal << '\n';
        return;
    }
    out << "grains    " << cut.grains.size() << '\n';
    for (std::size_t i = 0; i < cut.grains.size(); ++i) {
        std::array<char, 96> line{};
        std::snprintf(line.data(), line.size(), "  %4zu    beat %9.4f, %.4f beats\n", i + 1,
                      cut.grains[i].startBeats, cut.grains[i].lengthBeats);
        out << line.data();
    }
}

Json loopJson(const CAcidWave& wave) {
    if (!wave.hasAcid) return {};
    Json loop{{"oneShot", wave.isLoop == 0}, {"beats", wave.beats}};
    loop["tempo"] = std::isfinite(wave.tempo) ? Json(wave.tempo) : Json();
    const auto root = rootOf(wave);
    loop["rootNote"] = root ? Json(*root) : Json();
    loop["markers"] = wave.hasStretch ? Json(wave.stretchMarkerCount) : Json();
    loop["division"] = divisionName(wave);
    return loop;
}

void printJson(CAcidWave& wave, const Cut& cut, const std::string& file, std::ostream& out) {
    Json info{{"file", file},
              {"format", formatName(wave.sampleTag)},
              {"bits", wave.format.wBitsPerSample},
              {"channels", wave.format.nChannels},
              {"rate", wave.format.nSamplesPerSec},
              {"frames", wave.frameCount},
              {"seconds", secondsOf(wave)}};
    info["tags"] = Json::object();
    for (const WaveTag* tag : tagsOf(wave)) info["tags"][nameOf(*tag)] = fromInstrument(tag->value);
    info["loop"] = loopJson(wave);
    info["warnings"] = warningsOf(wave, cut);
    info["refused"] = cut.refusal.empty() ? Json() : Json(cut.refusal);
    info["grains"] = Json::array();
    for (const GrainInfo& grain : cut.grains)
        info["grains"].push_back({{"startBeats", grain.startBeats}, {"lengthBeats", grain.lengthBeats}});
    out << printed(info);
}

void tellWave(const std::string& file, bool json, std::ostream& out) {
    CAcidWave wave;
    openLoopFile(wave, file);
    const Cut cut = cutFile(file, wave.format);
    (json ? printJson : printText)(wave, cut, file, out);
}

}  // namespace

void runInfo(const InfoOptions& options, const Streams& streams) {
    FilePlan files;
    planProject(files, "the file", options.file);
    checkPrinting(files);
    const auto tell = [&](const std::string& file) { tellProject(file, options.json, streams.out); };
    if (isProject(options.file))
        loadOrRecover(options.file, options.recover, streams.errors, tell);
    else
        tellWave(options.file, options.json, streams.out);
}

}  // namespace marnoth
