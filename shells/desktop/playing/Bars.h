#pragma once

namespace marnoth {

/// Beats of a bar, as the program's loop, metronome and position count them.
inline constexpr int kBeatsOfBar = 4;

}  // namespace marnoth
