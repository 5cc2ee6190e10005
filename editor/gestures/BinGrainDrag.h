#pragma once

#include <optional>

#include "editor/PaneParent.h"
#include "editor/gestures/Gesture.h"

namespace marnoth {

class PadEditorPane;
class StripPane;
struct GrainHit;

/// Grains of the strip, dragged into the Pad Editor: onto a grain, which the first of them replaces, or into
/// a row.
class BinGrainDrag final : public Gesture {
public:
    BinGrainDrag(PaneParent& page, StripPane& strip, PadEditorPane& editor)
        : page_(page), strip_(strip), editor_(editor) {}

    /// Selects the grain and plays it.
    bool press(Point at, Modifiers held) override;
    void release(Point at, Modifiers held) override;
    void drop() override;

    /// The strip shows the source of a grain that would be replaced, and that grain is played.
    void showReplaced(const GrainHit& hit);

private:
    /// What the strip showed before it showed a grain that would be replaced.
    struct Shown {
        int file;
        int grain;
    };

    void endReplacing();
    void replaceGrain(const GrainHit& hit);
    void addGrains(Point at, int row, bool onLabel);

    PaneParent& page_;
    StripPane& strip_;
    PadEditorPane& editor_;
    std::optional<Shown> before_;
};

}  // namespace marnoth
