#include "sample/FileType.h"

#include <algorithm>
#include <string_view>

namespace marnoth {
namespace {

using Bytes = std::span<const std::byte>;

bool holds(Bytes bytes, std::size_t offset, std::string_view text) {
    const auto* from = reinterpret_cast<const char*>(bytes.data());
    return std::string_view(from, bytes.size()).substr(std::min(offset, bytes.size())).starts_with(text);
}

bool isAiff(Bytes bytes) {
    return holds(bytes, 0, "FORM") && (holds(bytes, 8, "AIFF") || holds(bytes, 8, "AIFC"));
}

/// The header of a frame of MPEG audio, layer III: eleven bits that are set, a version, the layer, a bit rate
/// and a sample rate that there are.
bool isMp3Frame(Bytes bytes) {
    if (bytes.size() < 4) return false;
    const auto bits = [&](std::size_t at, int shift, int count) {
        return std::to_integer<int>(bytes[at]) >> shift & ((1 << count) - 1);
    };
    constexpr int kReservedVersion = 1;
    constexpr int kLayer3 = 1;
    return bits(0, 0, 8) == 0xFF && bits(1, 5, 3) == 7 && bits(1, 3, 2) != kReservedVersion &&
           bits(1, 1, 2) == kLayer3 && bits(2, 4, 4) != 15 && bits(2, 2, 2) != 3;
}

}  // namespace

FileType fileType(Bytes bytes) {
    if (holds(bytes, 0, "RF64") || holds(bytes, 0, "BW64")) return FileType::rf64;
    // An identifier of 16 bytes takes the place of a form's four.
    if (holds(bytes, 0, "riff\x2E\x91\xCF\x11")) return FileType::w64;
    if (holds(bytes, 0, "fLaC")) return FileType::flac;
    if (isAiff(bytes)) return FileType::aiff;
    if (holds(bytes, 0, "OggS")) return FileType::ogg;
    if (holds(bytes, 0, "ID3") || isMp3Frame(bytes)) return FileType::mp3;
    return FileType::unknown;
}

}  // namespace marnoth
