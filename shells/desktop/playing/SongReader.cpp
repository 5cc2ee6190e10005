#include "shells/desktop/playing/SongReader.h"

#include <algorithm>

#include "seam/MusicalTime.h"

namespace marnoth {

void SongReader::locate(double tick) {
    count_ = 0;
    next_ = 0;
    if (!song_) return;
    const auto first =
        std::ranges::partition_point(song_->notes, [&](const Song::Note& note) { return note.start < tick; });
    next_ = static_cast<std::size_t>(first - song_->notes.begin());
}

std::size_t SongReader::firstEnd() const {
    std::size_t first = count_;
    for (std::size_t i = 0; i < count_; ++i)
        if (first == count_ || sounding_[i].end < sounding_[first].end) first = i;
    return first;
}

double SongReader::nextTempoChange(double tick) const {
    if (!song_) return kNever;
    const auto next = std::ranges::partition_point(
        song_->tempos, [&](const Song::Tempo& tempo) { return tempo.tick <= tick; });
    return next == song_->tempos.end() ? kNever : next->tick;
}

double SongReader::tempoAt(double tick, double otherwise) const {
    if (!song_ || song_->tempos.empty()) return otherwise;
    const auto next = std::ranges::partition_point(
        song_->tempos, [&](const Song::Tempo& tempo) { return tempo.tick <= tick; });
    return next == song_->tempos.begin() ? song_->tempos.front().beatsPerMinute
                                         : std::prev(next)->beatsPerMinute;
}

double SongReader::tickAt(double seconds, double otherwise) const {
    double tick = 0.0;
    for (;;) {
        const double ticksPerSecond = tempoAt(tick, otherwise) * kTicksPerBeat / 60.0;
        const double change = nextTempoChange(tick);
        const double left = (change - tick) / ticksPerSecond;
        if (left >= seconds) return tick + seconds * ticksPerSecond;
        seconds -= left;
        tick = change;
    }
}

}  // namespace marnoth
