#pragma once

#include <memory>
#include <string>

#include "engine/model/GrooveTrack.h"
#include "platform/com/Com.h"
#include "platform/com/RefPtr.h"
#include "sample/WaveMem.h"
#include "seam/LoadFault.h"

namespace marnoth {

class CAcidWave;

/// A file of the Loop Bin: its audio as one sample, and the grains that it is cut into. A value that costs
/// little to copy.
struct BinFile {
    /// What a file is called.
    struct Names {
        std::wstring name;  ///< for display
        std::wstring path;  ///< identity of the file
    };

    CGrooveTrack track;
    RefPtr<CWaveMem> sample;
    std::shared_ptr<const Names> names = unnamed();

    /// Reads a whole file as float into `sample`, at the rate of `format`, with its peak table; sets the loop
    /// length in frames of the file. `sampleRate` is the host's, here as below.
    LoadFault ReadSamples(CAcidWave& wave, const WAVEFORMATEX& format, std::int32_t sampleRate);
    /// Becomes the Loop Bin entry of a file: reads it at the rate of `format` and cuts it into grains.
    /// `badValue` of beats, seconds or the rate when the file breaks a limit. After a fault it is empty.
    LoadFault LoadFromWave(CAcidWave& wave, const std::wstring& name, const std::wstring& path,
                           std::int32_t binIndex, const WAVEFORMATEX& format, std::int32_t sampleRate);

private:
    /// Names of a file that has none, shared by all of them.
    static const std::shared_ptr<const Names>& unnamed();
    LoadFault readAndCut(CAcidWave& wave, std::int32_t binIndex, const WAVEFORMATEX& format,
                         std::int32_t sampleRate);
};

}  // namespace marnoth
