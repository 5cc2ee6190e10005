#include "shellkit/listening/FilePreview.h"

#include <new>

#include "sample/ReadWave.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/FaultText.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

/// Throws `FileFailure`.
RefPtr<CWaveMem> readWhole(const std::string& file, std::uint32_t rate) {
    CAcidWave opened;
    openLoopFile(opened, file);
    if (opened.format.nSamplesPerSec == 0 ||
        opened.frameCount / static_cast<double>(opened.format.nSamplesPerSec) > FilePreview::kLongestSeconds)
        throw FileFailure("Files of more than five minutes can't be listened to here.");
    RefPtr<CWaveMem> wave;
    if (const LoadFault fault = readSamples(opened, rate, wave))
        throw FileFailure(utf8FromPath(pathFromUtf8(file).filename()) + ": " + whyNotLoaded(file, fault));
    return wave;
}

}  // namespace

std::string FilePreview::play(const std::string& file) {
    const std::uint32_t rate = player_.rate();
    if (rate == 0) return "There is no sound to listen by.";
    try {
        player_.play(readWhole(file, rate));
        return {};
    } catch (const FileFailure& failure) {
        return failure.what();
    } catch (const std::bad_alloc&) {
        return "There is no memory for the file.";
    }
}

}  // namespace marnoth
