#include "engine/model/GrooveTrack.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

using Part = RefPtr<const GrainPart>;

std::int64_t wholeBeats(std::int64_t ticks16) {
    const std::int64_t beats = ticks16 / kTicks16PerBeat + (ticks16 % kTicks16PerBeat > 0);
    return times(beats, kTicks16PerBeat);
}

/// A Shell sort, because the order that grains of equal start end up in is part of what is saved and drawn.
void sortByStart(std::vector<Part>& grains) {
    const auto startOf = [&](std::size_t at) { return grains[at]->reach.ticks.firstStart; };
    for (std::size_t gap = grains.size() / 2; gap > 0; gap /= 2) {
        for (std::size_t i = gap; i < grains.size(); ++i) {
            for (std::size_t at = i; at >= gap && startOf(at) < startOf(at - gap); at -= gap)
                std::swap(grains[at], grains[at - gap]);
        }
    }
}

bool isSorted(const std::vector<Part>& grains) {
    return std::is_sorted(grains.begin(), grains.end(), [](const Part& a, const Part& b) {
        return a->reach.ticks.firstStart < b->reach.ticks.firstStart;
    });
}

}  // namespace

const CGrooveEvent& CGrooveTrack::GetAt(std::int32_t index) const {
    if (index < 0 || index >= GetSize()) throw std::invalid_argument("no such grain");
    return grains_[index];
}

std::int64_t CGrooveTrack::GetLength(std::uint32_t kind) const {
    if (kind == kTicks16) return lengthTicks;
    return kind == kSamples ? lengthSamples : 0;
}

void CGrooveTrack::SetLength(std::int64_t value, std::uint32_t kind) {
    if (value < 0) return;
    if (kind == kTicks16) lengthTicks = value;
    if (kind == kSamples) lengthSamples = value;
}

void CGrooveTrack::RecomputeTempo(std::int32_t sampleRate) {
    if (lengthSamples < 1) {
        tempo = kDefaultTrackTempo;
        return;
    }
    const double beats = static_cast<double>(lengthTicks) / kTicks16PerBeat;
    const double seconds = static_cast<double>(lengthSamples) / sampleRate;
    tempo = beats / seconds * 60.0;
}

void CGrooveTrack::SetTail(std::uint32_t on) {
    tailOn = on;
    ChangeAll([on](CGrooveEvent& grain) { return std::exchange(grain.tailOn, on) != on; });
}

void CGrooveTrack::SetBinIndex(std::int32_t index) {
    ChangeAll([index](CGrooveEvent& grain) { return std::exchange(grain.binFile, index) != index; });
}

void CGrooveTrack::forgetLength() {
    lengthTicks = lengthSamples = 0;
    tempo = kDefaultTrackTempo;
}

void CGrooveTrack::forgetLengthWhenEmpty() {
    if (GetSize() == 0) forgetLength();
}

void CGrooveTrack::ClearGrains() {
    grains_.clear();
    forgetLength();
}

void CGrooveTrack::CopyGrainsFrom(const CGrooveTrack& other) {
    if (GetSize() == 0) {
        grains_ = other.grains_;
        return;
    }
    std::vector<Part> all = grains_.parts();
    const std::vector<Part> more = other.grains_.parts();
    all.insert(all.end(), more.begin(), more.end());
    grains_ = GrainList(all);
}

void CGrooveTrack::TakeOver(const CGrooveTrack& source, std::int32_t sampleRate) {
    takeOver(source);
    RecomputeTempo(sampleRate);
}

void CGrooveTrack::LayOn(const CGrooveTrack& file, std::int32_t sampleRate) {
    grains_ = file.grains_;
    TakeOver(file, sampleRate);
    looping = synced;
}

void CGrooveTrack::PlayAlone(const CGrooveEvent& grain) {
    CGrooveEvent alone = grain;
    alone.startTicks = alone.startSamples = 0;
    lengthTicks = alone.lengthTicks;
    lengthSamples = alone.lengthSamples;
    tempo = kDefaultTrackTempo;
    grains_ = GrainList({GrainList::part(std::move(alone))});
}

std::int32_t CGrooveTrack::InsertGrainSorted(CGrooveEvent grain, std::int64_t startTicks, bool growLength,
                                             std::int32_t sampleRate) {
    grain.SetStart(startTicks, kTicks16);
    const std::int32_t index = grains_.firstFrom(grain.startTicks);
    place(index, std::move(grain), growLength, sampleRate);
    return index;
}

std::int32_t CGrooveTrack::AppendGrain(CGrooveEvent grain, std::int64_t startTicks, bool growLength,
                                       std::int32_t sampleRate) {
    grain.SetStart(startTicks, kTicks16);
    place(GetSize(), std::move(grain), growLength, sampleRate);
    return GetSize() - 1;
}

void CGrooveTrack::place(std::int32_t index, CGrooveEvent grain, bool growLength, std::int32_t sampleRate) {
    grain.tailOn = tailOn;
    if (growLength) {
        const bool isLast = index == GetSize();
        growToBeat((isLast ? grain : GetAt(GetSize() - 1)).GetEnd(kTicks16, 0), sampleRate);
    }
    grain.startSamples = 0;
    if (lengthTicks >= 1) {
        const double share = static_cast<double>(grain.startTicks) / static_cast<double>(lengthTicks);
        grain.startSamples = roundHalfUp(share * static_cast<double>(lengthSamples));
    }
    grains_.insert(index, std::move(grain));
}

void CGrooveTrack::growToBeat(std::int64_t lastEnd, std::int32_t sampleRate) {
    lengthTicks = std::max(lengthTicks, wholeBeats(std::max(lengthTicks, lastEnd)));
    lengthSamples =
        roundHalfUp(sampleRate * (static_cast<double>(lengthTicks) / tempo) * kSecondsPerTick16AtOneBpm);
}

void CGrooveTrack::RemoveGrain(std::int32_t index) {
    GetAt(index);
    grains_.remove(index);
    forgetLengthWhenEmpty();
}

void CGrooveTrack::RemoveGrainsOf(std::int32_t binFile) {
    std::vector<Part> left = grains_.parts();
    if (std::erase_if(left, [&](const Part& part) { return part->grain().binFile == binFile; }) == 0) return;
    grains_ = GrainList(std::move(left));
    forgetLengthWhenEmpty();
}

void CGrooveTrack::MarkGrainDeleted(std::int32_t index) {
    if (index < GetSize()) ChangeAt(index, [](CGrooveEvent& grain) { grain.deleted = 1; });
}

void CGrooveTrack::PurgeAndSort() {
    std::vector<Part> left = grains_.parts();
    std::erase_if(left, [](const Part& part) { return part->grain().deleted != 0; });
    if (static_cast<std::int32_t>(left.size()) == GetSize() && isSorted(left)) {
        forgetLengthWhenEmpty();
        return;
    }
    sortByStart(left);
    grains_ = GrainList(left);
    forgetLengthWhenEmpty();
}

}  // namespace marnoth
