#include "shells/desktop/playing/SongCommands.h"

#include <algorithm>
#include <memory>

#include "shells/desktop/playing/Song.h"

namespace marnoth {

void SongCommands::open(const std::string& file) {
    auto song = std::make_unique<const Song>(readSong(file));
    name_ = song->name;
    instrument_.setSong(std::move(song));
}

void SongCommands::close() {
    if (!isOpen()) return;
    name_.clear();
    instrument_.setSong(nullptr);
}

void SongCommands::followTempo(bool on) {
    followsTempo_ = on;
    instrument_.followSongTempo(on);
}

void SongCommands::repeat(bool on) {
    repeats_ = on;
    instrument_.repeatSong(on);
}

bool isSong(const std::string& file) {
    std::string ending = file.substr(std::min(file.rfind('.'), file.size()));
    std::ranges::transform(ending, ending.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return ending == ".mid" || ending == ".midi" || ending == ".smf";
}

}  // namespace marnoth
