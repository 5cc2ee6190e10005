/// Files dropped onto the page from outside.

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"

namespace marnoth {

DropEffect CGrooveSamplerPropPage::dragEnter(bool hasFiles) {
    return hasFiles && !isAsking() ? DropEffect::copy : DropEffect::none;
}

DropEffect CGrooveSamplerPropPage::dragOver(Point) {
    return isAsking() ? DropEffect::none : DropEffect::copy;
}

DropEffect CGrooveSamplerPropPage::drop(Point at, std::optional<std::span<const std::string>> paths) {
    if (!paths || isAsking()) return DropEffect::none;
    carryOut([&] {
        // Nothing is painted while files load, nor behind the message that ends a drop.
        ++m_paintBlock;
        m_wheelRun.reset();
        LoadResult result;
        guarded([&] { result = loadDropped(at, *paths); });
        const auto end = [this] {
            requestRefresh();
            --m_paintBlock;
            window().requestPaint();
        };
        if (result.isFine()) return end();
        reportLoad(result, end);
    });
    return DropEffect::copy;
}

CGrooveSamplerPropPage::LoadResult CGrooveSamplerPropPage::loadDropped(Point at,
                                                                       std::span<const std::string> paths) {
    int row = -1;
    if (HitTestBinRow(at, &row)) return dropIntoBin(paths);
    if (const auto pad = padOfDrop(at)) return dropOntoPad(*pad, paths);
    return {};
}

std::optional<int> CGrooveSamplerPropPage::padOfDrop(Point at) const {
    if (const auto hit = HitTestPad(at)) return hit->pad;
    int row = -1;
    bool onLabel = false;
    if (!scale().HitTestRow(at, &row, &onLabel)) return {};
    return row;
}

CGrooveSamplerPropPage::LoadResult CGrooveSamplerPropPage::dropIntoBin(std::span<const std::string> paths) {
    clearSelections();
    LoadResult result;
    for (const std::string& path : paths) {
        result = loadFile(FileMode::loopBin, path);
        if (result.isInBin()) m_currentBinFile = result.bin;
        if (!result.isFine()) break;
    }
    return result;
}

CGrooveSamplerPropPage::LoadResult CGrooveSamplerPropPage::dropOntoPad(int pad,
                                                                       std::span<const std::string> paths) {
    clearSelections();
    LoadResult result;
    for (const std::string& path : paths) {
        SelectPad(pad);
        call(&IGrooveSampler::PushUndoState);
        result = loadFile(FileMode::pad, path);
        if (result.isInBin()) m_currentBinFile = result.bin;
        if (result.isFine()) continue;
        call(&IGrooveSampler::Undo);
        break;
    }
    return result;
}

}  // namespace marnoth
