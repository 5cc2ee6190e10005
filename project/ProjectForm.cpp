#include "project/ProjectForm.h"

#include <algorithm>
#include <optional>

#include "project/ProjectScale.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr int kMostChannels = 2;

std::uint32_t nearestRate(std::uint32_t rate) {
    return std::clamp(rate, kLowestProjectRate, kHighestProjectRate);
}

bool fits(const WAVEFORMATEX& format) {
    return format.nChannels <= kMostChannels && format.nSamplesPerSec == nearestRate(format.nSamplesPerSec);
}

WAVEFORMATEX fittingFormat(WAVEFORMATEX format, std::uint32_t rate) {
    format.nChannels = static_cast<WORD>(std::min<int>(format.nChannels, kMostChannels));
    format.nSamplesPerSec = rate;
    format.nBlockAlign = static_cast<WORD>(format.nChannels * sizeof(float));
    format.nAvgBytesPerSec = format.nBlockAlign * rate;
    return format;
}

/// The first two channels, at the wave's own rate. Without samples when there is no memory for them.
RefPtr<CWaveMem> copyOf(const CWaveMem& wave) {
    RefPtr<CWaveMem> copy = CWaveMem::make();
    if (FAILED(copy->Create(wave.frames, fittingFormat(wave.format, wave.format.nSamplesPerSec))))
        return copy;
    const int channels = copy->format.nChannels;
    const float* from = wave.samples.get();
    float* to = copy->samples.get();
    for (std::int64_t i = 0; i < wave.frames; ++i, from += wave.format.nChannels) {
        to = std::copy_n(from, channels, to);
    }
    copy->writeGuardFrame();
    return copy;
}

HRESULT fitWave(RefPtr<CWaveMem>& wave) {
    if (!wave || !wave->samples || wave->format.nChannels == 0 || wave->format.nSamplesPerSec == 0) {
        return E_FAIL;
    }
    if (fits(wave->format)) return S_OK;
    const RefPtr<CWaveMem> copy = copyOf(*wave);
    if (!copy->samples) return E_OUTOFMEMORY;
    const WAVEFORMATEX format = fittingFormat(wave->format, nearestRate(wave->format.nSamplesPerSec));
    if (const HRESULT result = copy->Resample(format); FAILED(result)) return result;
    copy->format = format;
    wave = copy;
    return S_OK;
}

/// What the rate of every file is multiplied by.
using Ratios = std::vector<double>;

/// Of the file that a grain was cut from; none when there is no such file.
std::optional<double> ratioOf(const GrainSettings& grain, const Ratios& ratios) {
    const auto file = static_cast<std::size_t>(grain.binFile);
    return grain.binFile >= 0 && file < ratios.size() ? std::optional(ratios[file]) : std::nullopt;
}

/// A pad's loop is scaled as the file of its first grain is, or as the first file.
double ratioOf(const ProjectPad& pad, const Ratios& ratios) {
    for (const GrainSettings& grain : pad.grains) {
        if (const auto ratio = ratioOf(grain, ratios)) return *ratio;
    }
    return ratios.empty() ? 1.0 : ratios.front();
}

void scale(ProjectFile& file, double ratio) {
    file.settings = scaledTrack(file.settings, ratio);
    for (GrainSettings& grain : file.grains) grain = scaledGrain(grain, ratio);
}

void scale(ProjectPad& pad, const Ratios& ratios) {
    pad.settings = scaledTrack(pad.settings, ratioOf(pad, ratios));
    for (GrainSettings& grain : pad.grains) grain = scaledGrain(grain, ratioOf(grain, ratios).value_or(1.0));
}

HRESULT fitWaves(Project& project) {
    Ratios ratios;
    for (ProjectFile& file : project.files) {
        const RefPtr<CWaveMem> before = file.wave;
        if (const HRESULT result = fitWave(file.wave); FAILED(result)) return result;
        ratios.push_back(static_cast<double>(file.wave->format.nSamplesPerSec) /
                         before->format.nSamplesPerSec);
        scale(file, ratios.back());
    }
    for (ProjectPad& pad : project.pads) scale(pad, ratios);
    return S_OK;
}

void holdLength(TrackSettings& settings) {
    settings.lengthSamples = std::clamp<std::int64_t>(settings.lengthSamples, 0, kLongestProjectTrack);
}

void holdKeys(KeyMapRecord& keys) {
    keys.lowKey = std::max(keys.lowKey, 0);
    keys.highKey = std::min(keys.highKey, kHighestKey);
    keys.lowVelocity = std::max(keys.lowVelocity, 0);
    keys.highVelocity = std::min(keys.highVelocity, kHighestVelocity);
}

}  // namespace

HRESULT fitToForm(Project& project) {
    if (const HRESULT result = fitWaves(project); FAILED(result)) return result;
    for (ProjectFile& file : project.files) holdLength(file.settings);
    for (ProjectPad& pad : project.pads) holdLength(pad.settings);
    for (KeyMapRecord& keys : project.keys) holdKeys(keys);
    return S_OK;
}

}  // namespace marnoth
