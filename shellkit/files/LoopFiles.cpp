#include "shellkit/files/LoopFiles.h"

#include <filesystem>

#include "platform/com/RefPtr.h"
#include "seam/IMarnothOptions.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/FaultText.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

std::filesystem::path fullPath(const std::string& file) {
    return std::filesystem::absolute(pathFromUtf8(file));
}

}  // namespace

void openLoopFile(CAcidWave& wave, const std::string& file) {
    wave.lenient = true;
    if (FAILED(wave.Open(toInstrument(utf8FromPath(fullPath(file))).c_str())))
        throw FileFailure(file + ": " + whyNotLoaded(file, wave.fault));
}

LoadFault loadLoopFile(IGrooveSampler& sampler, std::int32_t pad, const std::string& file) {
    const std::filesystem::path path = fullPath(file);
    const std::string title = toInstrument(utf8FromPath(path.filename()));
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    const HRESULT result =
        sampler.LoadFileToPad(pad, title.c_str(), toInstrument(utf8FromPath(path)).c_str(), &bin, &status);
    if (FAILED(result)) throw FileFailure(file + ": " + whyNotLoaded(file, lastLoadFault(sampler)));
    if (status == kBinFull) throw FileFailure(file + ": the instrument holds no more files");
    return lastLoadDamage(sampler);
}

HRESULT setLenientFiles(IUnknown& instrument, bool on) {
    RefPtr<IMarnothOptions> options;
    const HRESULT result = instrument.QueryInterface(IID_IMarnothOptions, options.putVoid());
    return FAILED(result) ? result : options->SetLenientFiles(on ? 1 : 0);
}

}  // namespace marnoth
