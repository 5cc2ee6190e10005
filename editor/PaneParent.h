#pragma once

#include "editor/PageQuestions.h"
#include "platform/drawing/Geometry.h"

namespace marnoth {

class BoundEngine;
struct PageView;

/// What a pane asks of the page that it stands on, and all that it knows of it. The page outlives its panes.
class PaneParent {
public:
    virtual ~PaneParent() = default;

    /// What the page is bound to at the moment.
    virtual const BoundEngine& engine() const = 0;
    virtual PageView& view() = 0;

    /// The page has to draw this area again.
    virtual void invalidate(const Rect& area) = 0;
    /// While the page draws: whether any of `area` is out of date.
    virtual bool RectVisible(const Rect& area) const = 0;

    /// Makes a pad, 0 to 15, the current one, also when it is that already, and shows its settings.
    virtual void SelectPad(int pad) = 0;
    /// The selection has changed: shows the settings of its first grain.
    virtual void RefreshGrainReadouts() = 0;
    /// Shows what the engine says of a pad's looping.
    virtual void SyncLoopToggles(int pad) = 0;

    /// Questions to the user. Whoever has the mouse loses it to one that opens.
    virtual PageQuestions& questions() = 0;
};

}  // namespace marnoth
