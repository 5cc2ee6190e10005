#include "project/TrackSettings.h"

#include <algorithm>

#include "seam/Limits.h"

namespace marnoth {

void TrackSettings::SetRootNote(std::int32_t note) {
    if (note >= -1 && note <= kHighestKey) rootNote = note;
}

TrackSettings TrackSettings::sanitized() const {
    TrackSettings mended = *this;
    mended.lengthSamples = std::max<std::int64_t>(lengthSamples, 0);
    mended.lengthTicks = std::max<std::int64_t>(lengthTicks, 0);
    mended.rootNote = -1;
    mended.SetRootNote(rootNote);
    if (output > std::uint32_t{kChannelPins}) mended.output = 0;
    return mended;
}

void TrackSettings::takeOver(const TrackSettings& source) {
    lengthTicks = source.lengthTicks;
    lengthSamples = source.lengthSamples;
    looping = source.looping;
    synced = source.synced;
    followKey = source.followKey;
    SetRootNote(source.rootNote);
}

}  // namespace marnoth
