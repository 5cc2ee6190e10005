#include "editor/GrooveSamplerPropPage.h"

#include <stdexcept>
#include <utility>

#include "editor/PageLayout.h"
#include "editor/PageTexts.h"
#include "editor/Skin.h"
#include "platform/drawing/RasterSurface.h"

namespace marnoth {

namespace {

constexpr int kBackground = 201;
constexpr int kSmallHeight = 12;
constexpr int kLargeHeight = 14;
constexpr int kOctavesShown = 6;

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
      m_controls(*this, *this, *m_smallFont) {
    for (Control* control : m_controls.all()) add(*control);
    m_timeScale.view = kPadView;
    m_timeScale.plot = kPadPlot;
    m_keyMapEditor.setUp(kKeyMapRect, kOctavesShown);
    m_padHorizontal.setUp({100, 537, 553, 545}, CGrooveScroller::kHorizontal, kPadPlot.width(), 800);
    m_padVertical.setUp({585, 350, 593, 504}, CGrooveScroller::kVertical, kPadPlot.height(), 800);
    m_binVertical.setUp({124, 69, 132, 218}, CGrooveScroller::kVertical, kBinList.height(), 400);
    m_binHorizontal.setUp({14, 220, 119, 228}, CGrooveScroller::kHorizontal, kBinList.width(), 200);
}

CGrooveSamplerPropPage::~CGrooveSamplerPropPage() {
    if (!m_isOpen) return;
    guarded([&] { dropGesture(); });
    releaseMouse();
    window().setTimer(0);
}

std::unique_ptr<Surface> CGrooveSamplerPropPage::drawInto(Bitmap& bitmap) {
    return std::make_unique<RasterSurface>(bitmap);
}

void CGrooveSamplerPropPage::bind(std::span<IUnknown* const> objects) {
    m_pGrooveSampler.bind(objects);
    if (!m_pGrooveSampler || !m_isOpen) return;
    clearSelections();
    m_currentBinFile = -1;
    RefreshAll();
}

void CGrooveSamplerPropPage::open() {
    m_isOpen = true;
    invalidate(screen().bounds());
    RefreshAll();
    window().setTimer(kTimerPeriod);
}

void CGrooveSamplerPropPage::timer() {
    carryOut([&] {
        const auto wanted = get(&IGrooveSampler::GetRefreshRequest, std::uint32_t{0});
        invalidatePadImages();
        if (wanted != 1) return;
        // A slow refresh must not pile up periods.
        window().setTimer(0);
        RefreshAll();
        window().setTimer(kTimerPeriod);
    });
}

TimeScale CGrooveSamplerPropPage::scale() const {
    TimeScale scale = m_timeScale;
    scale.horizontal = m_padHorizontal.position();
    scale.vertical = m_padVertical.position();
    return scale;
}

bool CGrooveSamplerPropPage::OnControlMessage(Control& control, const ControlEvent& event, int* result) {
    switch (event.kind) {
        case ControlEventKind::wheel:
            beginWheelRun(control, event.steps);
            return false;
        case ControlEventKind::mouseMove:
            if (m_draggingBinFile) window().setCursor(PageCursor::dragCopy);
            return false;
        case ControlEventKind::leftUp:
            if (m_draggingBinFile)
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

}  // namespace marnoth
