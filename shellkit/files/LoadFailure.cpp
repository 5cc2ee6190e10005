#include "shellkit/files/LoadFailure.h"

#include <filesystem>

#include "sample/AcidWave.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kMostBeats = 64;
constexpr double kMostLoopSeconds = 128.0;
constexpr double kMostOtherSeconds = 30.0;

std::string seconds(double value) {
    return printReal(value) + " seconds";
}

/// For a file that can be read, but broke a limit of the instrument.
std::string brokenLimit(const CAcidWave& wave) {
    const double length =
        wave.format.nSamplesPerSec ? double(wave.frameCount) / wave.format.nSamplesPerSec : 0.0;
    const bool isLoop = wave.hasAcid && wave.isLoop && wave.GetSegmentCount() > 0;
    if (isLoop && wave.beats > kMostBeats)
        return "it has " + std::to_string(wave.beats) + " beats; a loop may have " +
               std::to_string(kMostBeats);
    if (isLoop && length > kMostLoopSeconds)
        return "it is too long: " + seconds(length) + "; a loop may have " + seconds(kMostLoopSeconds);
    if (!isLoop && length > kMostOtherSeconds)
        return "it is too long: " + seconds(length) + "; a file without loop data may have " +
               seconds(kMostOtherSeconds);
    return "it holds no audio that can be cut into grains";
}

}  // namespace

bool isSayable(const std::string& name) {
    return fromInstrument(toInstrument(name)) == name;
}

std::string whyNotOpened(const std::string& file, std::uint32_t riffError) {
    std::error_code ignored;
    const std::filesystem::path path = pathFromUtf8(file);
    if (!std::filesystem::exists(path, ignored)) return "there is no such file";
    if (!std::filesystem::is_regular_file(path, ignored)) return "it isn't a file";
    switch (riffError) {
        case kRiffCannotOpen:
            return isSayable(file) ? "it can't be opened" : kNotSayable;
        case kRiffCannotRead:
            return "it is cut short";
        case kRiffInvalidFile:
            return "it isn't a WAV file";
        default:
            return "its format or its audio data is missing or damaged";
    }
}

std::string whyNotLoaded(const std::string& file, HRESULT result) {
    if (result == E_OUTOFMEMORY) return "there isn't enough memory for it";
    CAcidWave wave;
    if (FAILED(wave.Open(toInstrument(file).c_str()))) return whyNotOpened(file, wave.lastError);
    if (result == E_UNEXPECTED) return brokenLimit(wave);
    if (wave.format.nChannels < 1 || wave.format.nChannels > 2)
        return "it has " + std::to_string(wave.format.nChannels) +
               " channels; the instrument takes mono and stereo";
    return "the instrument doesn't take its format (tag " + std::to_string(wave.format.wFormatTag) + ", " +
           std::to_string(wave.format.wBitsPerSample) + " bits)";
}

}  // namespace marnoth
