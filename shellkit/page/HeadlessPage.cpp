#include "shellkit/page/HeadlessPage.h"

#include <array>
#include <stdexcept>
#include <string>

#include "editor/texts/PageTexts.h"
#include "platform/drawing/RasterSurface.h"
#include "shellkit/page/QuestionPicture.h"

namespace marnoth {

namespace {

constexpr int kQuestionHeight = 14;  ///< of the texts of a question, pixels

}  // namespace

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

Bitmap HeadlessPage::picture() {
    window_.settle();
    Bitmap picture = page_->screen();
    if (const ShownQuestion* question = window_.openQuestion()) {
        std::string error;
        const std::unique_ptr<Font> font = window_.openFont(kFontFace, kQuestionHeight, error);
        if (!font) throw std::runtime_error(error);
        RasterSurface surface(picture);
        drawQuestion(surface, *question, layOut(*question, *font, picture.bounds()), *font);
    }
    return picture;
}

}  // namespace marnoth
