/// Files dropped onto the page from outside.

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"

namespace marnoth {

namespace {

/// Above zero as long as it lives.
class Held {
public:
    explicit Held(int& counter) : counter_(counter) { ++counter_; }
    ~Held() { --counter_; }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

private:
    int& counter_;
};

}  // namespace

DropEffect CGrooveSamplerPropPage::dragEnter(bool hasFiles) {
    return hasFiles ? DropEffect::copy : DropEffect::none;
}

DropEffect CGrooveSamplerPropPage::drop(Point at, std::optional<std::span<const std::string>> paths) {
    if (!paths) return DropEffect::none;
    carryOut([&] {
        // Nothing is painted behind the messages of a drop.
        const Held unpainted(m_paintBlock);
        int row = -1;
        if (HitTestBinRow(at, &row))
            dropIntoBin(*paths);
        else if (const auto pad = padOfDrop(at))
            dropOntoPad(*pad, *paths);
        requestRefresh();
    });
    window().requestPaint();
    return DropEffect::copy;
}

std::optional<int> CGrooveSamplerPropPage::padOfDrop(Point at) const {
    if (const auto hit = HitTestPad(at)) return hit->pad;
    int row = -1;
    bool onLabel = false;
    if (!scale().HitTestRow(at, &row, &onLabel)) return {};
    return row;
}

void CGrooveSamplerPropPage::dropIntoBin(std::span<const std::string> paths) {
    clearSelections();
    for (const std::string& path : paths)
        if (!takeDropped(loadFile(FileMode::loopBin, path))) return;
}

void CGrooveSamplerPropPage::dropOntoPad(int pad, std::span<const std::string> paths) {
    clearSelections();
    for (const std::string& path : paths) {
        SelectPad(pad);
        call(&IGrooveSampler::PushUndoState);
        const LoadResult result = loadFile(FileMode::pad, path);
        if (!result.isFine()) call(&IGrooveSampler::Undo);
        if (!takeDropped(result)) return;
    }
}

bool CGrooveSamplerPropPage::takeDropped(const LoadResult& result) {
    if (result.isInBin()) m_currentBinFile = result.bin;
    if (!result.isFine()) reportLoad(result);
    return result.isFine();
}

}  // namespace marnoth
