#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "shells/desktop/playing/Song.h"

namespace marnoth {

/// Reads a song along with the transport: which notes begin and end in a stretch of ticks. The thread that
/// renders; nothing allocates. A note that finds no room among those that sound isn't begun.
class SongReader {
public:
    static constexpr std::size_t kMostSounding = 256;
    static constexpr double kNever = std::numeric_limits<double>::infinity();

    /// Another song, or none: it outlives its use here. What of the former sounds is to be ended by whoever
    /// changes it.
    void setSong(const Song* song) {
        song_ = song;
        locate(0.0);
    }
    const Song* song() const { return song_; }
    /// Goes on from here. The notes that sounded have ended.
    void locate(double tick);

    /// Calls `on(note, tick)` and `off(note, tick)` for what begins and ends at or behind the place where the
    /// last call ended, and before `end`; of one tick ends come first.
    template <class On, class Off>
    void read(double end, On on, Off off) {
        if (!song_) return;
        for (;;) {
            const std::size_t ending = firstEnd();
            const double nextEnd = ending < count_ ? sounding_[ending].end : kNever;
            const double nextStart = next_ < song_->notes.size() ? song_->notes[next_].start : kNever;
            if (nextEnd >= end && nextStart >= end) return;
            if (nextEnd <= nextStart) {
                off(sounding_[ending], nextEnd);
                sounding_[ending] = sounding_[--count_];
            } else {
                const Song::Note& note = song_->notes[next_++];
                if (count_ == kMostSounding) continue;
                sounding_[count_++] = note;
                on(note, nextStart);
            }
        }
    }
    /// Calls `each(note)` for those that have begun and not ended.
    template <class Each>
    void forEachSounding(Each each) const {
        for (std::size_t i = 0; i < count_; ++i) each(sounding_[i]);
    }
    /// The first change of tempo behind `tick`; `kNever` without one.
    double nextTempoChange(double tick) const;
    /// The song's tempo at a tick; `otherwise` without a song.
    double tempoAt(double tick, double otherwise) const;

    /// Where its tempos come to in so many seconds from the start; at the tempo `otherwise` without a song.
    double tickAt(double seconds, double otherwise) const;

private:
    std::size_t firstEnd() const;

    const Song* song_ = nullptr;
    std::size_t next_ = 0;
    std::array<Song::Note, kMostSounding> sounding_{};
    std::size_t count_ = 0;
};

}  // namespace marnoth
