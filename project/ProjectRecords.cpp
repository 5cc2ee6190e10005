#include "project/ProjectRecords.h"

#include <bit>
#include <type_traits>

namespace marnoth {
namespace {

template <class T>
using BitsOf = std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint32_t>;

/// Puts fields one behind the other, lowest byte first.
template <std::size_t size>
class Packer {
public:
    template <class T>
    Packer& put(T value) {
        const auto bits = std::bit_cast<BitsOf<T>>(value);
        for (std::size_t i = 0; i < sizeof bits; ++i) bytes_[at_++] = static_cast<std::byte>(bits >> 8 * i);
        return *this;
    }
    /// Zeros in place of what carries nothing.
    Packer& skip(std::size_t count) {
        at_ += count;
        return *this;
    }
    const std::array<std::byte, size>& bytes() const { return bytes_; }

private:
    std::array<std::byte, size> bytes_{};
    std::size_t at_ = 0;
};

/// The way back.
template <std::size_t size>
class Unpacker {
public:
    explicit Unpacker(const std::array<std::byte, size>& bytes) : bytes_(bytes) {}

    template <class T>
    Unpacker& get(T& value) {
        BitsOf<T> bits = 0;
        for (std::size_t i = 0; i < sizeof bits; ++i) {
            bits |= std::to_integer<BitsOf<T>>(bytes_[at_++]) << 8 * i;
        }
        value = std::bit_cast<T>(bits);
        return *this;
    }
    Unpacker& skip(std::size_t count) {
        at_ += count;
        return *this;
    }

private:
    const std::array<std::byte, size>& bytes_;
    std::size_t at_ = 0;
};

/// The place of a pointer in a key map record, and the alignment around it.
constexpr std::size_t kTrackPlaceBytes = 4 + 8;

}  // namespace

std::array<std::byte, kTrackRecordBytes> encode(const TrackSettings& record) {
    return Packer<kTrackRecordBytes>()
        .put(record.lengthSamples)
        .put(record.lengthTicks)
        .put(record.looping)
        .put(record.synced)
        .put(record.mute)
        .put(record.solo)
        .put(record.oneShot)
        .put(record.tailOn)
        .put(record.followKey)
        .put(record.rootNote)
        .put(record.output)
        .put(record.midiChannel)
        .put(record.volume)
        .put(record.pan)
        .bytes();
}

std::array<std::byte, kGrainRecordBytes> encode(const GrainSettings& record) {
    return Packer<kGrainRecordBytes>()
        .put(record.binFile)
        .put(record.binGrain)
        .put(record.startTicks)
        .put(record.startSamples)
        .put(record.lengthTicks)
        .put(record.lengthSamples)
        .put(record.tailLengthSamples)
        .put(record.tempoLocked)
        .skip(4)
        .put(record.pitchRatio)
        .put(record.transpose)
        .skip(4)
        .put(record.volume)
        .put(record.pan)
        .put(record.tailOn)
        .skip(4)
        .put(record.sampleOffset)
        .put(record.peakOffset)
        .put(record.peakCount)
        .bytes();
}

std::array<std::byte, kKeyRecordBytes> encode(const KeyMapRecord& record) {
    return Packer<kKeyRecordBytes>()
        .put(record.pad)
        .skip(kTrackPlaceBytes)
        .put(record.lowKey)
        .put(record.highKey)
        .put(record.rootKey)
        .put(record.lowVelocity)
        .put(record.highVelocity)
        .bytes();
}

TrackSettings decodeTrack(const std::array<std::byte, kTrackRecordBytes>& bytes) {
    TrackSettings record;
    Unpacker(bytes)
        .get(record.lengthSamples)
        .get(record.lengthTicks)
        .get(record.looping)
        .get(record.synced)
        .get(record.mute)
        .get(record.solo)
        .get(record.oneShot)
        .get(record.tailOn)
        .get(record.followKey)
        .get(record.rootNote)
        .get(record.output)
        .get(record.midiChannel)
        .get(record.volume)
        .get(record.pan);
    return record;
}

GrainSettings decodeGrain(const std::array<std::byte, kGrainRecordBytes>& bytes) {
    GrainSettings record;
    Unpacker(bytes)
        .get(record.binFile)
        .get(record.binGrain)
        .get(record.startTicks)
        .get(record.startSamples)
        .get(record.lengthTicks)
        .get(record.lengthSamples)
        .get(record.tailLengthSamples)
        .get(record.tempoLocked)
        .skip(4)
        .get(record.pitchRatio)
        .get(record.transpose)
        .skip(4)
        .get(record.volume)
        .get(record.pan)
        .get(record.tailOn)
        .skip(4)
        .get(record.sampleOffset)
        .get(record.peakOffset)
        .get(record.peakCount);
    return record;
}

KeyMapRecord decodeKeys(const std::array<std::byte, kKeyRecordBytes>& bytes) {
    KeyMapRecord record{};
    Unpacker(bytes)
        .get(record.pad)
        .skip(kTrackPlaceBytes)
        .get(record.lowKey)
        .get(record.highKey)
        .get(record.rootKey)
        .get(record.lowVelocity)
        .get(record.highVelocity);
    return record;
}

}  // namespace marnoth
