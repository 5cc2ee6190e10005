#include "editor/GrooveSamplerPropPage.h"

#include <stdexcept>
#include <utility>

#include "editor/PageLayout.h"
#include "editor/skin/Skin.h"
#include "editor/texts/PageTexts.h"
#include "platform/drawing/RasterSurface.h"
#include "seam/Limits.h"

namespace marnoth {

namespace {

constexpr int kBackground = 201;
constexpr int kSmallHeight = 12;
constexpr int kLargeHeight = 14;

std::unique_ptr<Font> openFont(PageWindow& window, int height) {
    std::string error;
    std::unique_ptr<Font> font = window.openFont(kFontFace, height, error);
    if (!font) throw std::runtime_error(error);
    return font;
}

}  // namespace

CGrooveSamplerPropPage::CGrooveSamplerPropPage(PageWindow& window, SurfaceMaker makeSurface)
    : PageFrame(window, skinBitmap(kBackground), std::move(makeSurface)),
      m_smallFont(openFont(window, kSmallHeight)),
      m_largeFont(openFont(window, kLargeHeight)),
      m_controls(*this, *this, *m_smallFont),
      m_bin(*this, m_controls, *m_largeFont),
      m_pads(*this),
      m_strips(*this, m_controls),
      m_padPanel(*this, m_controls),
      m_strip(*this, *m_smallFont),
      m_editor(*this, m_controls, *m_smallFont, *m_largeFont),
      m_grainPanel(*this, m_controls),
      m_files(
          *this, m_controls, [this] { takeKeyboard(); }, [this](bool on) { poll(on); }),
      m_menu(*this, *this, m_strips, m_files),
      m_keys(*this, m_editor, m_grainPanel),
      m_gestures(*this, window, {m_bin, m_pads, m_padPanel, m_strip, m_editor}) {
    for (Control* control : m_controls.all()) add(*control);
}

CGrooveSamplerPropPage::~CGrooveSamplerPropPage() {
    if (!m_isOpen) return;
    guarded([&] { m_gestures.drop(); });
    releaseMouse();
    poll(false);
}

std::unique_ptr<Surface> CGrooveSamplerPropPage::drawInto(Bitmap& bitmap) {
    return std::make_unique<RasterSurface>(bitmap);
}

void CGrooveSamplerPropPage::bind(std::span<IUnknown* const> objects) {
    questions().cancel();
    m_wheelRun.end();
    carryOut([&] { takeMouseAway(); });
    // What is being typed, or chosen from a list, was meant for the engine that goes: none hears of it.
    m_pGrooveSampler.bind({});
    if (isTyping()) focusLost();
    m_pGrooveSampler.bind(objects);
    if (!m_pGrooveSampler || !m_isOpen) return;
    m_view.clearSelections();
    m_view.currentBinFile = -1;
    RefreshAll();
}

void CGrooveSamplerPropPage::open() {
    m_isOpen = true;
    invalidate(screen().bounds());
    RefreshAll();
    poll(true);
}

KeptView CGrooveSamplerPropPage::keptView() const {
    const TimeScale scale = m_editor.scale();
    return {.currentPad = m_view.currentPad,
            .currentBinFile = m_view.currentBinFile,
            .selection = {m_view.selection.begin(), m_view.selection.end()},
            .binSelection = {m_view.binSelection.begin(), m_view.binSelection.end()},
            .pixelsPerBeat = scale.pixelsPerBeat,
            .rowHeight = scale.rowHeight,
            .snapIndex = scale.snapIndex,
            .editorPosition = {scale.horizontal, scale.vertical},
            .binPosition = m_bin.position(),
            .showsKeyMap = m_strip.showsKeyMap()};
}

void CGrooveSamplerPropPage::show(const KeptView& view) {
    if (!m_isOpen || !m_pGrooveSampler) return;
    m_view.show(view, m_pGrooveSampler);
    m_strip.showKeyMap(view.showsKeyMap);
    m_editor.show(view);
    m_bin.scrollTo(view.binPosition);
    invalidate(screen().bounds());
    RefreshAll();
}

void CGrooveSamplerPropPage::setRootScale(RootScale scale) {
    m_padPanel.setRootScale(scale);
    if (m_isOpen) RefreshPadControls();
}

void CGrooveSamplerPropPage::timer() {
    carryOut([&] {
        const auto wanted = m_pGrooveSampler.get(&IGrooveSampler::GetRefreshRequest, std::uint32_t{0});
        m_pads.invalidateImages();
        if (wanted != 1) return;
        // A slow refresh must not pile up periods.
        poll(false);
        RefreshAll();
        poll(true);
    });
}

void CGrooveSamplerPropPage::SelectPad(int pad) {
    m_pads.invalidateRing(m_view.currentPad);
    m_view.currentPad = pad;
    m_pads.invalidateRing(m_view.currentPad);
    RefreshPadControls();
    RefreshGrainReadouts();
    invalidateGrainPlaces();
}

void CGrooveSamplerPropPage::RefreshAll() {
    if (!m_isOpen || !m_pGrooveSampler) return;
    m_bin.showAudition();
    m_padPanel.showToggles();
    RefreshPadControls();
    RefreshGrainReadouts();
    m_pads.invalidateImages();
    for (int pad = 0; pad < kPads; ++pad) m_strips.refresh(pad);
    invalidateGrainPlaces();
    m_editor.invalidateTracks();
    m_bin.invalidateTracks();
}

void CGrooveSamplerPropPage::RefreshPadControls() {
    if (!m_pGrooveSampler) return;
    m_padPanel.refresh();
    m_strips.showLevels(m_view.currentPad);
    m_editor.showSnap();
}

void CGrooveSamplerPropPage::RefreshGrainReadouts() {
    if (m_pGrooveSampler) m_grainPanel.refresh();
}

void CGrooveSamplerPropPage::invalidateGrainPlaces() {
    for (const Rect& area : kGrainPlaces) invalidate(area);
}

void CGrooveSamplerPropPage::paintPage(Surface& backBuffer) {
    if (RectVisible(kStripPanel)) m_strip.paint(backBuffer);
    if (RectVisible(kPadBlock)) m_pads.paint(backBuffer);
    if (RectVisible(kBinList)) m_bin.paint(backBuffer);
    if (RectVisible(kPadView)) m_editor.paint(backBuffer, m_gestures.picture(held()));
}

void CGrooveSamplerPropPage::pressed(Point at) {
    captureForPage();
    m_gestures.press(at, held());
}

void CGrooveSamplerPropPage::released(Point at) {
    releaseMouse();
    if (m_gestures.release(at, held())) takeKeyboard();
}

void CGrooveSamplerPropPage::wheelTurned(Point at, WheelAxis axis, int steps) {
    if (m_gestures.isButtonDown() || m_bin.wheel(at, axis, steps, held())) return;
    if (m_editor.wheel(at, axis, steps, held())) m_gestures.hover(at);
}

void CGrooveSamplerPropPage::menuWanted(Point at) {
    const auto hit = m_pads.HitTestPad(at);
    if (!hit) return;
    SelectPad(hit->pad);
    m_menu.ShowPadMenu(at, hit->pad);
}

void CGrooveSamplerPropPage::gestureLost() {
    m_gestures.drop();
    invalidateGrainPlaces();
}

void CGrooveSamplerPropPage::command(int id) {
    // Each pane knows its own: no two have the same.
    if (m_bin.command(id) || m_files.command(id) || m_strips.command(id, held())) return;
    if (m_padPanel.command(id, held()) || m_editor.command(id) || m_menu.command(id)) return;
    if (id == kHelpCommand) showHelp();
}

void CGrooveSamplerPropPage::scrolled(Control& knob) {
    if (!m_strips.knobTurned(knob.id())) m_grainPanel.knobTurned(knob.id());
}

void CGrooveSamplerPropPage::applyEdit(int id) {
    if (!m_padPanel.applyEdit(id)) m_grainPanel.applyEdit(id);
}

void CGrooveSamplerPropPage::applyCombo(int id) {
    if (!m_padPanel.applyCombo(id)) m_editor.applyCombo(id);
}

bool CGrooveSamplerPropPage::OnControlMessage(Control& control, const ControlEvent& event, int* result) {
    switch (event.kind) {
        case ControlEventKind::wheel:
            beginWheelRun(control, event.steps);
            return false;
        case ControlEventKind::mouseMove:
            if (m_gestures.dragsBinFile()) window().setCursor(PageCursor::dragCopy);
            return false;
        case ControlEventKind::leftUp:
            if (m_gestures.dragsBinFile())
                released({control.place().left + event.at.x, control.place().top + event.at.y});
            return false;
        case ControlEventKind::keyDown:
            *result = 0;
            if (keyPressed(event.key)) actOnKey();
            return true;
        case ControlEventKind::keyUp:
        case ControlEventKind::character:
            *result = 0;
            return true;
        case ControlEventKind::queryKeys:
            *result = kAllKeys;
            return true;
        default:
            return false;
    }
}

bool CGrooveSamplerPropPage::keyPressed(int key) {
    if (key == kKeyF1) {
        showHelp();
        return true;
    }
    return m_keys.press(key, held(), m_gestures.isDragOpen());
}

void CGrooveSamplerPropPage::beginWheelRun(const Control& control, int steps) {
    const auto* const knob = dynamic_cast<const CBitmapKnobCtrl*>(&control);
    if (!knob || !knob->turnsBy(steps)) return;
    if (GrainPanel::hasKnob(knob->id()) && m_view.selection.size() != 1) return;
    if (m_wheelRun.begins(knob->id(), acts())) m_pGrooveSampler.call(&IGrooveSampler::PushUndoState);
}

DropEffect CGrooveSamplerPropPage::dragEnter(bool hasFiles) {
    return hasFiles && !questions().isOpen() ? DropEffect::copy : DropEffect::none;
}

DropEffect CGrooveSamplerPropPage::dragOver(Point) {
    return questions().isOpen() ? DropEffect::none : DropEffect::copy;
}

DropEffect CGrooveSamplerPropPage::drop(Point at, std::optional<std::span<const std::string>> paths) {
    if (!paths || questions().isOpen()) return DropEffect::none;
    carryOut([&] {
        // Nothing is painted while files load, nor behind the message that ends a drop.
        ++m_paintBlock;
        m_wheelRun.end();
        LoadResult result;
        guarded([&] { result = loadDropped(at, *paths); });
        const auto end = [this] {
            m_pGrooveSampler.requestRefresh();
            --m_paintBlock;
            window().requestPaint();
        };
        if (result.isFine()) return end();
        m_files.report(result, end);
    });
    return DropEffect::copy;
}

LoadResult CGrooveSamplerPropPage::loadDropped(Point at, std::span<const std::string> paths) {
    int row = -1;
    if (m_bin.HitTestBinRow(at, &row)) return m_files.loadIntoBin(paths);
    if (const auto hit = m_pads.HitTestPad(at)) return m_files.loadOntoPad(hit->pad, paths);
    if (const auto hit = m_editor.HitTestRow(at)) return m_files.loadOntoPad(hit->pad, paths);
    return {};
}

}  // namespace marnoth
