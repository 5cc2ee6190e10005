#include "shellkit/files/FaultText.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "platform/bytes/RiffStream.h"
#include "platform/com/RefPtr.h"
#include "seam/IMarnothFaults.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

std::string text(std::int64_t value) {
    return std::to_string(value);
}

std::string text(const FaultNumber& number) {
    const auto* real = std::get_if<double>(&number);
    return real ? printReal(*real) : text(std::get<std::int64_t>(number));
}

/// A chunk's id, which is one that a reader looks for.
std::string quoted(std::uint32_t chunk) {
    std::string id;
    for (int i = 0; i < 4; ++i) id += static_cast<char>(chunk >> 8 * i);
    return "\"" + id + "\"";
}

bool isOfPad(const FaultPlace& place) {
    return place.chunk == fourCC("pdtr") || place.chunk == fourCC("pevt");
}

/// "file 3" or "pad 16", as a user counts.
std::string ownerOf(const FaultPlace& place) {
    return (isOfPad(place) ? "pad " : "file ") + text(place.owner + 1);
}

std::string partOf(const FaultPlace& place) {
    if (place.owner >= 0) return ownerOf(place) + " of it is";
    const bool isWave = place.chunk == fourCC("fmt ") || place.chunk == fourCC("data");
    return isWave ? "its format or its audio data is" : "its " + quoted(place.chunk) + " chunk is";
}

std::string cutShort(const LoadFault& fault) {
    const bool isKnown = fault.value != FaultNumber(std::int64_t{0});
    return "it is cut short" + (isKnown ? ": " + text(fault.value) + " bytes are missing" : "") +
           (fault.place.owner >= 0 ? ", from " + ownerOf(fault.place) + " on" : "");
}

std::string cannotRead(const FaultPlace& place) {
    return "it can't be read" + (place.owner >= 0 ? ", from " + ownerOf(place) + " on" : "");
}

const char* nameOf(FileType type) {
    switch (type) {
        case FileType::unknown:
            break;
        case FileType::rf64:
            return "RF64";
        case FileType::w64:
            return "W64";
        case FileType::flac:
            return "FLAC";
        case FileType::aiff:
            return "AIFF";
        case FileType::ogg:
            return "Ogg";
        case FileType::mp3:
            return "MP3";
    }
    return "audio";
}

/// What codes the samples; nothing for PCM, float and what isn't known.
const char* codecOf(std::uint16_t formatTag) {
    switch (formatTag) {
        case 0x0002:
        case 0x0011:
            return "ADPCM";
        case 0x0006:
            return "A-law";
        case 0x0007:
            return "mu-law";
        case 0x0055:
            return "MP3-coded";
        default:
            return nullptr;
    }
}

/// The kind of WAV files whose samples aren't taken.
std::string kindOf(const LoadFault& fault) {
    if (const char* codec = codecOf(fault.formatTag)) return std::string(codec) + " WAV files";
    const std::string depth = text(fault.bits) + "-bit ";
    switch (fault.formatTag) {
        case WAVE_FORMAT_PCM:
            return depth + (fault.bits == 32 ? "integer WAV files" : "WAV files");
        case WAVE_FORMAT_IEEE_FLOAT:
            return depth + "WAV files";
        default:
            return depth + "WAV files of format tag " + text(fault.formatTag);
    }
}

std::string formatNotTaken(const LoadFault& fault) {
    const bool isFine = fault.bits > 16 && !codecOf(fault.formatTag);
    return kindOf(fault) + " aren't read; save it with " +
           (isFine ? "24 bits, or with 32 bits of float" : "16 bits or more");
}

/// What a value in a project is called.
struct QuantityName {
    FaultQuantity quantity;
    const char* name;
};

constexpr std::array<QuantityName, 19> kNames{{
    {FaultQuantity::channels, "channels"},
    {FaultQuantity::rate, "sample rate"},
    {FaultQuantity::keyRecords, "records of the key map"},
    {FaultQuantity::pad, "pad"},
    {FaultQuantity::lowKey, "lowest key"},
    {FaultQuantity::highKey, "highest key"},
    {FaultQuantity::lowVelocity, "lowest velocity"},
    {FaultQuantity::highVelocity, "highest velocity"},
    {FaultQuantity::fileIndex, "place in the Loop Bin"},
    {FaultQuantity::textBytes, "bytes of a name"},
    {FaultQuantity::midiChannel, "MIDI channel"},
    {FaultQuantity::loopFrames, "length in frames"},
    {FaultQuantity::volume, "volume"},
    {FaultQuantity::pan, "pan"},
    {FaultQuantity::pitch, "pitch"},
    {FaultQuantity::grains, "number of grains"},
    {FaultQuantity::binFile, "file of the Loop Bin"},
    {FaultQuantity::binGrain, "grain of the Loop Bin"},
    {FaultQuantity::tailFrames, "frames of all tails"},
}};

std::string nameOf(FaultQuantity quantity) {
    const auto found = std::find_if(kNames.begin(), kNames.end(),
                                    [=](const QuantityName& row) { return row.quantity == quantity; });
    return found != kNames.end() ? found->name : "value";
}

/// Of what a value is, with a blank ahead; nothing for the project as a whole.
std::string whoseValue(const FaultPlace& place) {
    std::string whose;
    if (place.record >= 0)
        whose +=
            (place.chunk == fourCC("keym") ? " of key map record " : " of grain ") + text(place.record + 1);
    if (place.owner >= 0) whose += " of " + ownerOf(place);
    return whose;
}

std::string damagedValue(const LoadFault& fault) {
    return "it is damaged: a value in it is none that a project has (" + nameOf(fault.quantity) +
           whoseValue(fault.place) + ": " + text(fault.value) + ")";
}

/// Of a number that a wave file has and a project's files have too.
std::string badFormat(const LoadFault& fault) {
    if (fault.place.owner >= 0) return damagedValue(fault);
    if (fault.quantity == FaultQuantity::rate) return "its sample rate is " + text(fault.value) + " Hz";
    return "it has " + text(fault.value) + " channels; the instrument takes " + text(fault.least) + " to " +
           text(fault.most);
}

std::string wrongBlock(const LoadFault& fault) {
    const bool isKnown = fault.least == fault.most;
    return "its format is damaged: it says that a frame has " + text(fault.value) + " bytes" +
           (isKnown ? ", where its channels and bits make " + text(fault.most) : "");
}

LoadFault askedOf(IUnknown& instrument, HRESULT (IMarnothFaults::*question)(LoadFault*)) {
    RefPtr<IMarnothFaults> faults;
    LoadFault fault;
    if (SUCCEEDED(instrument.QueryInterface(IID_IMarnothFaults, faults.putVoid())))
        (faults.get()->*question)(&fault);
    return fault;
}

std::string badValueText(const LoadFault& fault) {
    const std::string value = text(fault.value);
    const std::string most = text(fault.most);
    switch (fault.quantity) {
        case FaultQuantity::pathCharacters:
            return "its path is too long: " + value + " characters; the instrument takes " + most +
                   "; move it into a folder with a shorter path";
        case FaultQuantity::channels:
        case FaultQuantity::rate:
            return badFormat(fault);
        case FaultQuantity::blockBytes:
            return wrongBlock(fault);
        case FaultQuantity::frames:
            return "it holds no audio";
        case FaultQuantity::markers:
            return "it has " + value + " stretch markers; a file may have " + most;
        case FaultQuantity::beats:
            return "it has " + value + " beats; a loop may have " + most;
        case FaultQuantity::loopSeconds:
            return "it is too long: " + value + " seconds; a loop may have " + most + " seconds";
        case FaultQuantity::shotSeconds:
            return "it is too long: " + value + " seconds; a file without loop data may have " + most +
                   " seconds";
        case FaultQuantity::version:
            return "it is of version " + value + "; this program reads version " + most;
        case FaultQuantity::files:
            return "it claims " + value + " files; a project has up to " + most;
        case FaultQuantity::pads:
            return "it claims " + value + " pads; a project has " + most;
        default:
            return damagedValue(fault);
    }
}

}  // namespace

std::string inWords(const LoadFault& fault) {
    switch (fault.kind) {
        case FaultKind::none:
            return "the instrument doesn't take it";
        case FaultKind::noMemory:
            return "there isn't enough memory for it";
        case FaultKind::noSuchFile:
            return "there is no such file";
        case FaultKind::notAFile:
            return "it isn't a file";
        case FaultKind::cannotOpen:
            return "it can't be opened";
        case FaultKind::cannotRead:
            return cannotRead(fault.place);
        case FaultKind::emptyFile:
            return "it is empty";
        case FaultKind::otherFileType:
            return std::string(nameOf(fault.type)) + " files aren't read; save it as a plain WAV file";
        case FaultKind::notAWave:
            return "it isn't a WAV file";
        case FaultKind::notAProject:
            return "it isn't a project";
        case FaultKind::neverFinished:
            return "its saving was never finished";
        case FaultKind::cutShort:
            return cutShort(fault);
        case FaultKind::lengthUnknown:
            return "it doesn't say how long it is";
        case FaultKind::chunkMissing:
        case FaultKind::chunkDamaged:
            return partOf(fault.place) + " missing or damaged";
        case FaultKind::badValue:
            return badValueText(fault);
        case FaultKind::formatNotTaken:
            return formatNotTaken(fault);
        case FaultKind::noGrains:
            return "it holds no audio that can be cut into grains";
    }
    return {};
}

std::string whyNotLoaded(const std::string& file, const LoadFault& fault) {
    std::error_code ignored;
    const bool isNameAtFault = !isSayable(file) && std::filesystem::exists(pathFromUtf8(file), ignored);
    return isNameAtFault ? kNotSayable : inWords(fault);
}

LoadFault lastLoadFault(IUnknown& instrument) {
    return askedOf(instrument, &IMarnothFaults::GetLoadFault);
}

LoadFault lastLoadDamage(IUnknown& instrument) {
    return askedOf(instrument, &IMarnothFaults::GetLoadDamage);
}

std::string damageInWords(const LoadFault& damage) {
    return inWords(damage) + "; what is there is taken";
}

std::string notFiniteText(std::int64_t count) {
    return text(count) + (count == 1 ? " sample is not a number" : " samples are not numbers") +
           " (NaN or infinite)";
}

bool isSayable(const std::string& name) {
    return fromInstrument(toInstrument(name)) == name;
}

}  // namespace marnoth
