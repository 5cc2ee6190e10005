#include "shellkit/page/HeadlessPage.h"

#include <array>

namespace marnoth {

HeadlessPage::HeadlessPage(IUnknown& instrument, const std::filesystem::path& folder) {
    window_.setFolder(folder);
    window_.setPage(&page_);
    const std::array<IUnknown*, 1> objects{&instrument};
    page_.bind(objects);
    page_.open();
    window_.settle();
}

const Bitmap& HeadlessPage::picture() {
    window_.settle();
    return page_.screen();
}

}  // namespace marnoth
