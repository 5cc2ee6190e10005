#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "editor/BoundEngine.h"
#include "editor/EventPlot.h"
#include "editor/EventSelection.h"
#include "editor/GrooveScroller.h"
#include "editor/KeyMapEditor.h"
#include "editor/PageControls.h"
#include "editor/PageFrame.h"
#include "editor/PageGestures.h"
#include "editor/TimeScale.h"
#include "platform/drawing/Font.h"

namespace marnoth {

/// The page on which a musician does everything: 600 by 553 pixels over one instrument.
///
/// It sees of the instrument only `IGrooveSampler`, of the window system only `PageWindow`, and keeps nothing
/// but its view: current pad and file, zoom, selections, drags, and where grains were painted. Nothing calls
/// it but its window: it polls the engine's refresh request and which pads play. The window's thread alone.
///
/// The sources go by what a user does: GrooveSamplerPropPage (life and timer), PagePaint, PadViewPage,
/// PageRefresh, PageCommands, PadStrips, PadMenu, LoopBinPane, FileCommands, FileDrops, GrainPress,
/// GrainMove, GrainRelease, GrainKeys.
class CGrooveSamplerPropPage final : public PageFrame, public CPlugInFilterCallback {
public:
    static constexpr int kTimerPeriod = 200;  ///< milliseconds

    /// `window` outlives the page. Throws `std::runtime_error`, with a sentence for the user, when it hasn't
    /// got the font.
    explicit CGrooveSamplerPropPage(PageWindow& window, SurfaceMaker makeSurface = drawInto);
    ~CGrooveSamplerPropPage() override;
    CGrooveSamplerPropPage(const CGrooveSamplerPropPage&) = delete;
    CGrooveSamplerPropPage& operator=(const CGrooveSamplerPropPage&) = delete;

    /// Lets go of the engine it has, and takes the first of `objects` that is one. Selections and the current
    /// file go with the old one.
    void bind(std::span<IUnknown* const> objects);
    /// The window is there: shows everything and begins to poll.
    void open();

    /// Makes a pad, 0 to 15, the current one, also when it is that already.
    void SelectPad(int pad);
    /// Reads everything from the engine and shows it. Only with an engine and a window.
    void RefreshAll();
    void showHelp() { window().showHelp(); }

    // The view, for whoever looks on from outside.
    int currentPad() const { return m_currentPad; }
    int currentBinFile() const { return m_currentBinFile; }
    /// Zoom, snap, and the positions of the Pad Editor's scrollers.
    TimeScale scale() const;
    bool showsKeyMap() const { return m_showKeyMap; }
    /// Positions of the Loop Bin's scrollers.
    Point binPosition() const { return {m_binHorizontal.position(), m_binVertical.position()}; }
    const CEventSelection& selection() const { return m_selection; }
    const CEventSelection& binSelection() const { return m_binSelection; }

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
    /// What a file command loads or saves; the numbers are its modes.
    enum class FileMode { loopBin = 0, pad = 1, project = 3 };
    /// What lies under a point of the pad block. `pad` is a guess unless the point is on an image.
    struct PadHit {
        int pad;
        bool onImage;
    };
    struct GrainHit {
        int pad;
        int grain;
        Point corner;  ///< left of the grain, top of its row
    };
    /// A scroll bar and the view that it scrolls.
    struct ServingScroller {
        CGrooveScroller* scroller;
        Rect served;
    };
    /// What a file load gave.
    struct LoadResult {
        HRESULT code = S_OK;
        std::int32_t bin = -1;
        std::uint32_t status = kLoaded;  ///< a `LoadStatus`, or anything else for an error

        bool isFine() const { return SUCCEEDED(code) && status == kLoaded; }
        bool isInBin() const { return isFine() || status == kLoadedFormatForced; }
    };
    /// Steps of the wheel over one knob, with nothing between them that the user did.
    struct WheelRun {
        int knob;
        int acts;  ///< what was done before it

        friend bool operator==(const WheelRun&, const WheelRun&) = default;
    };
    /// What the edits got last, for a text that can't be read. Keys and velocities by the edit's id.
    struct ShownValues {
        int transpose = 0;
        float volume = 1.0f;
        float pan = 0.5f;
        std::map<int, int> keyMap;
    };

    // PageFrame.
    bool canPaint() const override { return m_paintBlock == 0; }
    void paintPage(Surface& backBuffer) override;
    void pressed(Point at) override;
    void released(Point at) override;
    void doubleClicked(Point at) override;
    void moved(Point at) override;
    void wheelTurned(Point at, WheelAxis axis, int steps) override;
    void menuWanted(Point at) override;
    void gestureLost() override;
    void command(int id) override;
    void scrolled(Control& knob) override;
    void editReturned(int id) override { applyEdit(id); }

    // The engine.
    template <class... Parameters, class... Arguments>
    HRESULT call(HRESULT (IGrooveSampler::*operation)(Parameters...), Arguments... arguments) const {
        return m_pGrooveSampler.call(operation, arguments...);
    }
    template <class... Parameters, class Value, class... Arguments>
    Value get(HRESULT (IGrooveSampler::*operation)(Parameters...), Value preset,
              Arguments... arguments) const {
        return m_pGrooveSampler.get(operation, preset, arguments...);
    }
    bool isOn(HRESULT (IGrooveSampler::*operation)(std::int32_t, std::uint32_t*), int pad) const {
        return get(operation, std::uint32_t{0}, pad) != 0;
    }
    GrainList padGrains(int pad) const { return {m_pGrooveSampler, &IGrooveSampler::GetPadGrainList, pad}; }
    GrainList binGrains(int bin) const { return {m_pGrooveSampler, &IGrooveSampler::GetBinGrainList, bin}; }
    std::int64_t loopLength(int pad) const;
    int grainCount(int pad) const;
    KeyMapRecord keyMapEntry() const;
    /// UTF-8.
    std::string binFileName(int bin, bool wantPath) const;
    void requestRefresh() const { call(&IGrooveSampler::SetRefreshRequest, 1u); }

    // Painting.
    void paintStrip(Surface& surface);
    void paintPadBlock(Surface& surface);
    void paintBinList(Surface& surface);
    void paintPadEditor(Surface& surface);
    void updateScrollers();
    void paintPadRow(Surface& surface, const TimeScale& scale, int pad, PadPlots& ghosts);
    void paintGrains(Surface& surface, int pad, EventPlot& ghosts);
    void paintGhosts(Surface& surface, const PadPlots& ghosts) const;
    void invalidateView() { invalidate(kPadView); }
    void invalidateRow(int pad);
    void invalidatePadImages();
    void invalidateGrainPlaces();
    void invalidateTracks();

    // Showing the engine's state.
    void RefreshPadControls();
    void RefreshGrainReadouts();
    void refreshPad(int pad);
    void SyncLoopToggles(int pad);
    void showLoopToggles(int pad, bool looping, bool synced);

    // Pads and strips. `notify`: the engine is told, else only the page shows the value.
    std::optional<PadHit> HitTestPad(Point at) const;
    void ShowPadMenu(Point at, int pad);
    void padMenuCommand(int id);
    void clearPad(int pad);
    void SetPadVolumeText(int pad, float value, bool notify);
    void SetPadPanText(int pad, float value, bool notify);
    void SetGrainTransposeText(int value, bool notify);
    void SetGrainVolumeText(float value, bool notify);
    void SetGrainPanText(float value, bool notify);
    void SetLowKey(int value, bool notify);
    void SetHighKey(int value, bool notify);
    void SetRootKey(int value, bool notify);
    void SetLowVelocity(int value, bool notify);
    void SetHighVelocity(int value, bool notify);
    void showKeyMapEntry(const KeyMapRecord& entry);
    void showKey(int id, int key);
    void showVelocity(int id, int velocity);
    void applyEdit(int id);
    void applyNoteName(int id);
    void applyVelocity(int id);
    void applyGrainEdit(int id);
    void applyCombo(int id);

    // Commands of the buttons and toggles.
    void padToggleCommand(int id);
    // On the engine and on the toggles. A pad that is synced is always looping.
    void switchSynced(int pad, bool on);
    void switchLooping(int pad, bool on);
    void padPanelCommand(int id);
    /// All pads with shift held, else only `pad`.
    std::span<const int> padsMeant(const int& pad);
    void zoomCommand(int id);
    /// Ahead of the first step of a run that turns a knob: it can be undone as a whole.
    void beginWheelRun(const Control& control, int steps);
    // `steps` go down or to the right.
    void scrollView(bool sideways, int steps);
    void scrollBin(bool sideways, int steps);

    // Files.
    /// Asks for a file and does with it what `mode` says. `then` follows, also when the user cancels.
    void RunFileCommand(FileMode mode, bool save, std::function<void()> then);
    /// Into the Loop Bin, or onto the current pad as well.
    LoadResult loadFile(FileMode mode, const std::string& path);
    void loadChosenFile(FileMode mode, const std::string& path, const std::function<void()>& then);
    void runProjectFile(const std::string& path, bool save, const std::function<void()>& then);
    void reportLoad(const LoadResult& result, const std::function<void()>& then);
    void projectCommand(bool save);
    void clearProject();
    std::optional<int> padOfDrop(Point at) const;
    // What the last load gave, which is the first one that failed.
    LoadResult loadDropped(Point at, std::span<const std::string> paths);
    LoadResult dropIntoBin(std::span<const std::string> paths);
    LoadResult dropOntoPad(int pad, std::span<const std::string> paths);

    // The Loop Bin.
    bool HitTestBinRow(Point at, int* index) const;
    bool pressBinRow(Point at);
    void releaseBinFile(Point at);
    void loadToBinCommand();
    void deleteBinFile();
    void removeCurrentFile();
    void playCommand();
    void stopAuditions();

    // Grains.
    std::optional<GrainHit> HitTestGrain(Point at) const;
    bool HitTestStrip(Point at);
    bool HitTestViewTab(Point at);
    void pressByPlace(Point at);
    bool pressPadBlock(Point at);
    bool pressLengthMarker(Point at);
    bool pressGrain(Point at);
    bool pressScroller(Point at);
    void pressElsewhere(Point at);
    void makeSourceCurrent(int pad, int grain);
    void clearSelections();
    /// Where a drag has the left edge of what was grabbed at `grabX`, snapped.
    std::int64_t snappedTick(int x, int grabX) const;
    void dragGrain(Point at);
    void dragLength(Point at);
    void dragKeyMap(Point at);
    void hoverGrains(Point at);
    void hoverOver(const GrainHit& hit);
    /// The strip shows what a grain of it would replace.
    void showReplaced(const GrainHit& hit);
    /// False when none is dragged.
    bool dragScrollers(Point at);
    std::array<ServingScroller, 4> scrollers();
    void invalidateDrag();
    void finishGesture(Point at);
    /// Whatever is held is let go, without effect.
    void dropGesture();
    void releaseGrains(Point at);
    void moveSelection(int padsDown, std::int64_t delta);
    void releaseLength(Point at);
    void releasePress(Point at);
    void releaseBinGrain(Point at);
    void endReplacing();
    void replaceGrain(const GrainHit& hit);
    void addBinGrains(Point at, int row, bool onLabel);
    const EventPlotInfo& plotted(int pad, int grain) const;

    // Keys.
    /// False when the key means nothing now.
    bool keyPressed(int key);
    bool isDragOpen() const;
    bool arrow(int key);
    EventSelectionInfo neighbour(int key, const EventSelectionInfo& from) const;
    void scrollToGrain(int key, const EventSelectionInfo& grain);
    bool deleteSelection();
    bool undoOrRedo();
    bool transposeSelection(int semitones);

    BoundEngine m_pGrooveSampler;
    std::unique_ptr<Font> m_smallFont;
    std::unique_ptr<Font> m_largeFont;
    PageControls m_controls;
    ShownValues m_shown;
    bool m_isOpen = false;
    int m_paintBlock = 0;  ///< above zero while a drop loads: nothing is painted

    int m_currentPad = 0;
    int m_hoverPad = 0;         ///< the row lit during a drag; below 0 that of the current pad
    int m_currentBinFile = -1;  ///< -1 for none
    TimeScale m_timeScale;      ///< zoom and snap; the scrollers have the positions
    bool m_showKeyMap = false;  ///< the strip shows the key map, else the current file
    CGrooveScroller m_padHorizontal;
    CGrooveScroller m_padVertical;
    CGrooveScroller m_binVertical;
    CGrooveScroller m_binHorizontal;
    CKeyMapEditor m_keyMapEditor;

    std::optional<WheelRun> m_wheelRun;
    bool m_mouseDown = false;
    int m_heldPad = -1;  ///< the pad whose image is held down; -1 for none
    bool m_draggingBinFile = false;
    bool m_draggingBinGrain = false;
    bool m_draggingKeyMap = false;
    GrainDrag m_grainDrag;
    LengthDrag m_lengthDrag;
    GrainHover m_grainHover;
    CEventSelection m_selection;
    CEventSelection m_binSelection;  ///< grains of the strip
    PadPlots m_padPlot;
    EventPlot m_binPlot;
};

}  // namespace marnoth
