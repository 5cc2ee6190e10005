#pragma once

#include <string>

#include "shells/desktop/playing/LiveInstrument.h"

namespace marnoth {

/// The MIDI file that plays with the transport: which one, whether in its own tempo, and whether over and
/// over. The window's thread.
class SongCommands {
public:
    /// `instrument` outlives it.
    explicit SongCommands(LiveInstrument& instrument) : instrument_(instrument) {}

    /// In place of the one that is open. Throws `FileFailure` with the reason when the file can't be played;
    /// then that stays.
    void open(const std::string& file);
    void close();
    bool isOpen() const { return !name_.empty(); }
    /// Without folders; empty without one.
    const std::string& name() const { return name_; }

    /// Where it doesn't, the tempo is the transport bar's alone.
    void followTempo(bool on);
    bool followsTempo() const { return followsTempo_; }
    void repeat(bool on);
    bool repeats() const { return repeats_; }

private:
    LiveInstrument& instrument_;
    std::string name_;
    bool followsTempo_ = true;
    bool repeats_ = false;
};

/// Whether a file is played by the transport, by its name.
bool isSong(const std::string& file);

}  // namespace marnoth
