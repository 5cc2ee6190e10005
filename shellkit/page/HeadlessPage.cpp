#include "shellkit/page/HeadlessPage.h"

#include <array>

namespace marnoth {

HeadlessPage::HeadlessPage(IUnknown& instrument, const std::filesystem::path& folder) {
    window_.setFolder(folder);
    window_.setFonts(*fonts_);
    page_ = std::make_unique<CGrooveSamplerPropPage>(window_);
    window_.setPage(page_.get());
    const std::array<IUnknown*, 1> objects{&instrument};
    page_->bind(objects);
    page_->open();
    window_.settle();
}

const Bitmap& HeadlessPage::picture() {
    window_.settle();
    return page_->screen();
}

}  // namespace marnoth
