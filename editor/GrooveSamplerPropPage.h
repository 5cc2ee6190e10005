#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "editor/BoundEngine.h"
#include "editor/KeptView.h"
#include "editor/PageFrame.h"
#include "editor/PageView.h"
#include "editor/PaneParent.h"
#include "editor/controls/PageControls.h"
#include "editor/files/FileCommands.h"
#include "editor/gestures/MouseGestures.h"
#include "editor/gestures/WheelRun.h"
#include "editor/loopbin/LoopBinPane.h"
#include "editor/padeditor/GrainKeys.h"
#include "editor/padeditor/GrainPanel.h"
#include "editor/padeditor/PadEditorPane.h"
#include "editor/pads/PadBlock.h"
#include "editor/pads/PadMenu.h"
#include "editor/pads/PadPanel.h"
#include "editor/pads/PadStrips.h"
#include "editor/strip/StripPane.h"
#include "platform/drawing/Font.h"

namespace marnoth {

/// The page on which a musician does everything: 600 by 553 pixels over one instrument.
///
/// It sees of the instrument only `IGrooveSampler`, of the window system only `PageWindow`, and keeps nothing
/// but its view. It is made of panes, which know it as `PaneParent`: here they are put together, events and
/// commands find theirs, and the engine's refresh request is polled, on which everything is read again.
/// Nothing calls it but its window. The window's thread alone.
class CGrooveSamplerPropPage final : public PageFrame, public PaneParent, public CPlugInFilterCallback {
public:
    static constexpr int kTimerPeriod = 200;  ///< milliseconds

    /// `window` outlives the page. Throws `std::runtime_error`, with a sentence for the user, when it hasn't
    /// got the font.
    explicit CGrooveSamplerPropPage(PageWindow& window, SurfaceMaker makeSurface = drawInto);
    ~CGrooveSamplerPropPage() override;

    /// Lets go of the engine it has, and takes the first of `objects` that is one. Selections and the current
    /// file go with the old one.
    void bind(std::span<IUnknown* const> objects);
    /// The window is there: shows everything and begins to poll.
    void open();
    /// For a shell in a window: what it has to say of projects that aren't loaded.
    void adviseOnLoads(LoadAdvisor advisor) { m_files.adviseOnLoads(std::move(advisor)); }
    /// And what it has to say of them before they are.
    void checkLoads(LoadCheck check) { m_files.checkLoads(std::move(check)); }
    /// And whether the project that there is may go for another.
    void guardLoads(LoadGuard guard) { m_files.guardLoads(std::move(guard)); }
    /// For a shell that shows which project is open: hears of each that is loaded or saved here.
    void tellOfProjects(ProjectListener listener) { m_files.tellOfProjects(std::move(listener)); }
    /// Loads it as the page's own button does, and empties all as that does, once the user has chosen.
    void openProject(const std::string& path) {
        carryOut([&] { m_files.openProject(path); });
    }
    void emptyProject() {
        carryOut([this] { m_files.emptyProject(); });
    }

    /// How root notes are named and set; `fromA` at first. Shells whose hosts give the project's key by the
    /// scale of loops name roots by it too.
    void setRootScale(RootScale scale);
    /// Reads everything from the engine and shows it. Only with an engine and a window.
    void RefreshAll();
    /// The same for a shell that knows of changes made elsewhere; a grain that is selected may be gone.
    void readAgain() {
        carryOut([this] { RefreshAll(); });
    }
    void showHelp() { window().showHelp(); }

    // What panes ask of the page.
    const BoundEngine& engine() const override { return m_pGrooveSampler; }
    PageView& view() override { return m_view; }
    void invalidate(const Rect& area) override { PageFrame::invalidate(area); }
    bool RectVisible(const Rect& area) const override { return PageFrame::RectVisible(area); }
    void SelectPad(int pad) override;
    void RefreshGrainReadouts() override;
    void SyncLoopToggles(int pad) override { m_strips.SyncLoopToggles(pad); }
    PageQuestions& questions() override { return PageFrame::questions(); }

    /// How the user has left the page, and shows it so. Values that can't be are held to their ranges. Only
    /// with an engine and a window.
    KeptView keptView() const;
    void show(const KeptView& view);

    // The view, for scripts and tests.
    int currentPad() const { return m_view.currentPad; }
    int currentBinFile() const { return m_view.currentBinFile; }
    /// Zoom, snap, and the positions of the Pad Editor's scrollers.
    TimeScale scale() const { return m_editor.scale(); }
    bool showsKeyMap() const { return m_strip.showsKeyMap(); }
    /// Positions of the Loop Bin's scrollers.
    Point binPosition() const { return m_bin.position(); }
    const CEventSelection& selection() const { return m_view.selection; }
    const CEventSelection& binSelection() const { return m_view.binSelection; }

    // Events from outside the frame.
    void timer() override;
    DropEffect dragEnter(bool hasFiles) override;
    DropEffect dragOver(Point at) override;
    void dragLeave() override {}
    DropEffect drop(Point at, std::optional<std::span<const std::string>> paths) override;
    /// A grain that is gone takes no value, and the keyboard goes on to where it was going.
    void editLeft(int id) override {
        guarded([&] { applyEdit(id); });
    }
    void comboLeft(int id) override { applyCombo(id); }
    void comboClosed(int id) override { applyCombo(id); }
    bool OnControlMessage(Control& control, const ControlEvent& event, int* result) override;

    static std::unique_ptr<Surface> drawInto(Bitmap& bitmap);

private:
    // PageFrame.
    bool canPaint() const override { return m_paintBlock == 0; }
    void paintPage(Surface& backBuffer) override;
    void pressed(Point at) override;
    void released(Point at) override;
    void doubleClicked(Point at) override { m_gestures.doubleClick(at); }
    void moved(Point at) override { m_gestures.move(at, held()); }
    void wheelTurned(Point at, WheelAxis axis, int steps) override;
    void menuWanted(Point at) override;
    void gestureLost() override;
    void command(int id) override;
    void scrolled(Control& knob) override;
    void editReturned(int id) override { applyEdit(id); }

    void RefreshPadControls();
    void invalidateGrainPlaces();
    void applyEdit(int id);
    void applyCombo(int id);
    bool keyPressed(int key);
    /// Ahead of the first step of a run that turns a knob: it can be undone as a whole.
    void beginWheelRun(const Control& control, int steps);
    LoadResult loadDropped(Point at, std::span<const std::string> paths);
    /// The keyboard is where keys reach the page.
    void takeKeyboard() { focus(&m_controls.toggle(kBinPlay)); }
    void poll(bool on) { window().setTimer(on ? kTimerPeriod : 0); }

    BoundEngine m_pGrooveSampler;
    PageView m_view;
    std::unique_ptr<Font> m_smallFont;
    std::unique_ptr<Font> m_largeFont;
    PageControls m_controls;
    bool m_isOpen = false;
    int m_paintBlock = 0;  ///< above zero while a drop loads: nothing is painted

    LoopBinPane m_bin;
    PadBlock m_pads;
    PadStrips m_strips;
    PadPanel m_padPanel;
    StripPane m_strip;
    PadEditorPane m_editor;
    GrainPanel m_grainPanel;
    FileCommands m_files;
    PadMenu m_menu;
    GrainKeys m_keys;
    MouseGestures m_gestures;
    WheelRun m_wheelRun;
};

}  // namespace marnoth
