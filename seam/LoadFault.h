#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/com/Com.h"

namespace marnoth {

/// What is wrong with a file, or a stream, that isn't loaded. Beside each stands what of a `LoadFault` tells
/// more.
enum class FaultKind : std::uint8_t {
    none,  ///< nothing is wrong
    noMemory,
    noSuchFile,
    notAFile,  ///< a folder or a device
    cannotOpen,
    cannotRead,      ///< the medium fails; `place`
    emptyFile,       ///< it holds no byte
    notAWave,        ///< it doesn't begin as a RIFF form of waves
    otherFileType,   ///< the same of a file whose `type` is known
    notAProject,     ///< no RIFF form of a project where one is looked for
    neverFinished,   ///< a project whose saving broke off
    cutShort,        ///< `value` bytes are missing at its end, 0 where nobody knows how many
    lengthUnknown,   ///< `place`: the chunk doesn't say how long it is
    chunkMissing,    ///< `place`
    chunkDamaged,    ///< `place`: the chunk is too small for what it must hold
    badValue,        ///< `place`; `quantity` is `value`, which lies outside of `least` to `most`
    formatNotTaken,  ///< samples of `formatTag` and `bits`, which aren't converted
    noGrains,        ///< a loop that can't be cut: its first grain runs past its end
};

/// Audio files that aren't read, told by their first bytes.
enum class FileType : std::uint8_t { unknown, rf64, w64, flac, aiff, ogg, mp3 };

/// What a `badValue` measures. All but the real ones are integers.
enum class FaultQuantity : std::uint8_t {
    none,
    pathCharacters,
    // Of a wave file.
    channels,
    rate,        ///< Hz
    blockBytes,  ///< of a frame, as the format says
    frames,
    markers,
    beats,
    loopSeconds,  ///< real; of a loop
    shotSeconds,  ///< real; of any other file
    // Of a project.
    version,
    files,
    pads,
    keyRecords,
    pad,  ///< of a key map record
    lowKey,
    highKey,
    lowVelocity,
    highVelocity,
    fileIndex,
    textBytes,
    midiChannel,
    loopFrames,
    volume,      ///< real
    pan,         ///< real
    pitch,       ///< real
    grains,      ///< how many a list claims
    binFile,     ///< of a grain
    binGrain,    ///< of a grain
    tailFrames,  ///< of all grains together
};

/// Where it is wrong. Numbers count from 0; -1 stands for none.
struct FaultPlace {
    std::uint32_t chunk = 0;   ///< its id; 0 for the file as a whole
    std::int32_t owner = -1;   ///< of the chunks of a project that there are several of: which file or pad
    std::int32_t record = -1;  ///< in the chunk: which grain or key map record

    bool operator==(const FaultPlace&) const = default;
};

using FaultNumber = std::variant<std::int64_t, double>;

/// Why a load failed: what is wrong, with which value, and where. A plain value without words: interfaces
/// turn it into their result codes, shells into a sentence.
struct LoadFault {
    FaultKind kind = FaultKind::none;
    FaultQuantity quantity = FaultQuantity::none;
    FileType type = FileType::unknown;
    std::uint16_t formatTag = 0;  ///< of the samples: an extensible format's is that of its sub-format
    std::uint16_t bits = 0;       ///< of a sample
    FaultPlace place = {};
    FaultNumber value = std::int64_t{0};
    FaultNumber least = std::int64_t{0};
    FaultNumber most = std::int64_t{0};

    explicit operator bool() const { return kind != FaultKind::none; }
    bool operator==(const LoadFault&) const = default;
};

inline LoadFault badValue(FaultQuantity quantity, std::int64_t value, std::int64_t least, std::int64_t most,
                          FaultPlace place = {}) {
    return {.kind = FaultKind::badValue,
            .quantity = quantity,
            .place = place,
            .value = value,
            .least = least,
            .most = most};
}

inline LoadFault badReal(FaultQuantity quantity, double value, double least, double most,
                         FaultPlace place = {}) {
    return {.kind = FaultKind::badValue,
            .quantity = quantity,
            .place = place,
            .value = value,
            .least = least,
            .most = most};
}

/// As the code of an operation on files and streams, which tell memory from the rest and no more.
inline HRESULT codeOf(const LoadFault& fault) {
    if (!fault) return S_OK;
    return fault.kind == FaultKind::noMemory ? E_OUTOFMEMORY : E_FAIL;
}

/// Why a file couldn't be opened for reading by the first `mostCharacters` of its name: a name that is
/// longer, `noSuchFile`, `notAFile` or `cannotOpen`.
LoadFault whyNotOpened(const std::wstring& name, std::size_t mostCharacters);

}  // namespace marnoth
