#include "engine/model/GrooveTrack.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "platform/system/Overflow.h"
#include "project/ProjectRecords.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

std::unique_ptr<CGrooveEvent> copyOf(const CGrooveEvent& grain) {
    return std::make_unique<CGrooveEvent>(grain);
}

std::int64_t wholeBeats(std::int64_t ticks16) {
    const std::int64_t beats = ticks16 / kTicks16PerBeat + (ticks16 % kTicks16PerBeat > 0);
    return times(beats, kTicks16PerBeat);
}

}  // namespace

CGrooveTrack::CGrooveTrack(CPziSynthContext* synthContext) {
    context = synthContext;
}

CGrooveTrack::CGrooveTrack(const CGrooveTrack& other) : TrackFields(other) {
    grains_.reserve(other.grains_.size());
    for (const auto& grain : other.grains_) append(copyOf(*grain));
}

CGrooveEvent& CGrooveTrack::GetAt(std::int32_t index) const {
    if (index < 0 || index >= GetSize()) throw std::invalid_argument("no such grain");
    return *grains_[static_cast<std::size_t>(index)];
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

void CGrooveTrack::RecomputeTempo() {
    if (lengthSamples < 1) {
        tempo = kDefaultTrackTempo;
        return;
    }
    const double beats = static_cast<double>(lengthTicks) / kTicks16PerBeat;
    const double seconds = static_cast<double>(lengthSamples) / context->GetSampleRate();
    tempo = beats / seconds * 60.0;
}

void CGrooveTrack::SetRootNote(std::int32_t note) {
    if (note >= -1 && note <= 127) rootNote = note;
}

void CGrooveTrack::SetTail(std::uint32_t on) {
    tailOn = on;
    for (const auto& grain : grains_) grain->tailOn = on;
}

void CGrooveTrack::SetBinIndex(std::int32_t index) {
    for (const auto& grain : grains_) grain->binFile = index;
}

void CGrooveTrack::forgetLength() {
    lengthTicks = lengthSamples = 0;
    tempo = kDefaultTrackTempo;
}

void CGrooveTrack::forgetLengthWhenEmpty() {
    if (grains_.empty()) forgetLength();
}

void CGrooveTrack::ClearGrains() {
    std::vector<std::unique_ptr<CGrooveEvent>>().swap(grains_);
    forgetLength();
}

HRESULT CGrooveTrack::CopyGrainsFrom(const CGrooveTrack& other) {
    try {
        grains_.reserve(grains_.size() + other.grains_.size());
        for (const auto& grain : other.grains_) append(copyOf(*grain));
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    return S_OK;
}

void CGrooveTrack::TakeLengthsFrom(const CGrooveTrack& other) {
    lengthTicks = other.lengthTicks;
    lengthSamples = other.lengthSamples;
    RecomputeTempo();
}

void CGrooveTrack::PlayAlone(const CGrooveEvent& grain) {
    auto copy = copyOf(grain);
    copy->startTicks = copy->startSamples = 0;
    ClearGrains();
    lengthTicks = copy->lengthTicks;
    lengthSamples = copy->lengthSamples;
    append(std::move(copy));
}

std::int32_t CGrooveTrack::InsertGrainSorted(std::unique_ptr<CGrooveEvent> grain, std::int64_t startTicks,
                                             bool growLength) {
    grain->SetStart(startTicks, kTicks16);
    const auto place = std::find_if(grains_.begin(), grains_.end(), [&](const auto& other) {
        return other->startTicks >= grain->startTicks;
    });
    const auto index = static_cast<std::int32_t>(place - grains_.begin());
    settle(**grains_.insert(place, std::move(grain)), growLength);
    return index;
}

std::int32_t CGrooveTrack::AppendGrain(std::unique_ptr<CGrooveEvent> grain, std::int64_t startTicks,
                                       bool growLength) {
    grain->SetStart(startTicks, kTicks16);
    append(std::move(grain));
    settle(*grains_.back(), growLength);
    return GetSize() - 1;
}

void CGrooveTrack::settle(CGrooveEvent& grain, bool growLength) {
    grain.tailOn = tailOn;
    if (growLength) growToBeat();
    grain.startSamples = 0;
    if (lengthTicks < 1) return;
    const double place = static_cast<double>(grain.startTicks) / static_cast<double>(lengthTicks);
    grain.startSamples = roundHalfUp(place * static_cast<double>(lengthSamples));
}

void CGrooveTrack::growToBeat() {
    const std::int64_t lastEnd = grains_.back()->GetEnd(kTicks16, 0);
    lengthTicks = std::max(lengthTicks, wholeBeats(std::max(lengthTicks, lastEnd)));
    lengthSamples = roundHalfUp(context->GetSampleRate() * (static_cast<double>(lengthTicks) / tempo) *
                                kSecondsPerTick16AtOneBpm);
}

void CGrooveTrack::FromRecord(const TrackRecord& record) {
    lengthSamples = std::max<std::int64_t>(record.lengthSamples, 0);
    lengthTicks = std::max<std::int64_t>(record.lengthTicks, 0);
    looping = record.looping;
    synced = record.synced;
    mute = record.mute;
    solo = record.solo;
    oneShot = record.oneShot;
    tailOn = record.tailOn;
    followKey = record.followKey;
    rootNote = -1;
    SetRootNote(record.rootNote);
    output = record.output <= std::uint32_t{kChannelPins} ? record.output : 0;
    midiChannel = record.midiChannel;
    volume = record.volume;
    pan = record.pan;
    RecomputeTempo();
}

void CGrooveTrack::SwapPad(CGrooveTrack& other) noexcept {
    TrackFields& own = *this;
    std::swap(own, static_cast<TrackFields&>(other));
    std::swap(phaseOwner, other.phaseOwner);
    std::swap(phaseOrigin, other.phaseOrigin);
    grains_.swap(other.grains_);
}

std::vector<std::unique_ptr<CGrooveEvent>> CGrooveTrack::TakeGrains() noexcept {
    forgetLength();
    return std::exchange(grains_, {});
}

void CGrooveTrack::RemoveGrain(std::int32_t index) {
    GetAt(index);
    grains_.erase(grains_.begin() + index);
    forgetLengthWhenEmpty();
}

void CGrooveTrack::MarkGrainDeleted(std::int32_t index) {
    if (index < GetSize()) GetAt(index).deleted = 1;
}

void CGrooveTrack::PurgeAndSort() {
    std::erase_if(grains_, [](const auto& grain) { return grain->deleted != 0; });
    forgetLengthWhenEmpty();
    // A Shell sort, because the order that grains of equal start end up in is part of what is saved and
    // drawn.
    for (std::size_t gap = grains_.size() / 2; gap > 0; gap /= 2) {
        for (std::size_t i = gap; i < grains_.size(); ++i) {
            for (std::size_t at = i; at >= gap; at -= gap) {
                if (grains_[at]->startTicks >= grains_[at - gap]->startTicks) break;
                std::swap(grains_[at], grains_[at - gap]);
            }
        }
    }
}

}  // namespace marnoth
