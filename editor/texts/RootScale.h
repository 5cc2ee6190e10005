#pragma once

namespace marnoth {

/// Which note the number of a root note, 0 to 11, stands for. The number is the engine's and the same in
/// both.
enum class RootScale {
    fromA,    ///< 0 is A: as the instrument's interfaces have it
    ofLoops,  ///< 6 is C: a loop brings the note of its file counted from A, and three more
};

inline constexpr int kRootNotes = 12;
inline constexpr int kLoopsAboveA = 3;  ///< semitones

/// The note, 0 for A to 11, of root number 0 to 11.
constexpr int noteOfRoot(int root, RootScale scale) {
    return scale == RootScale::fromA ? root : (root + kRootNotes - kLoopsAboveA) % kRootNotes;
}

/// The number, 0 to 11, of a note, 0 for A to 11.
constexpr int rootOfNote(int note, RootScale scale) {
    return scale == RootScale::fromA ? note : (note + kLoopsAboveA) % kRootNotes;
}

}  // namespace marnoth
