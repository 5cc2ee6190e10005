#pragma once

namespace marnoth {

/// Clicks of the wheel over one knob, with nothing between them that the user did: one undo state takes all
/// of them back.
class WheelRun {
public:
    /// `acts` counts what the user has done otherwise. True when it isn't the run of before.
    bool begins(int knob, int acts) {
        if (knob == knob_ && acts == acts_) return false;
        knob_ = knob;
        acts_ = acts;
        return true;
    }
    void end() { knob_ = -1; }

private:
    int knob_ = -1;  ///< its id; -1 for none
    int acts_ = 0;
};

}  // namespace marnoth
