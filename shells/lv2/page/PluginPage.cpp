#include "shells/lv2/page/PluginPage.h"

#include <array>
#include <stdexcept>

#include "editor/PageLayout.h"
#include "editor/skin/Skin.h"
#include "editor/texts/PageTexts.h"
#include "platform/drawing/PlatformFonts.h"
#include "platform/linux/WholeScale.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/files/ProjectFiles.h"
#include "shells/lv2/page/PageKeysHelp.h"

namespace marnoth {

namespace {

constexpr int kQuestionHeight = 14;  ///< of the texts of a question, pixels
constexpr std::chrono::milliseconds kLookPeriod{CGrooveSamplerPropPage::kTimerPeriod};

std::unique_ptr<Font> questionFont(FontSource& fonts) {
    std::string error;
    std::unique_ptr<Font> font = fonts.open(kFontFace, kQuestionHeight, error);
    if (!font) throw std::runtime_error(error);
    return font;
}

}  // namespace

PluginPage::PluginPage(PluginInstance& instance, const Setup& setup)
    : memory_(instance.pages()),
      resize_(setup.resize),
      fonts_(platformFonts()),
      questionFont_(questionFont(*fonts_)),
      pageChooser_(*questionFont_, nullptr, [this] { return chooser_.places(); }),
      questions_(*questionFont_),
      window_({.parent = setup.parent,
               .scale = setup.scaleFactor > 0 ? wholeScale(setup.scaleFactor) : 0,
               .width = kPageWidth,
               .height = kPageHeight,
               .title = "Marnoth",
               .cursors = skinCursor,
               .icon = {}},
              *fonts_, questions_, chooser_),
      page_(window_) {
    IGrooveSampler& sampler = instance.sampler();
    sampler.QueryInterface(IID_IMarnothOptions, options_.putVoid());
    setLenientFiles(sampler, true);
    page_.checkLoads(adviceBeforeLoad);
    page_.adviseOnLoads([&sampler](const std::string& file) { return adviceOnLoad(sampler, file); });
    page_.setRootScale(RootScale::ofLoops);
    const std::array<IUnknown*, 1> objects{&sampler};
    page_.bind(objects);
    window_.setPage(&page_);
    window_.onHelp([this] { window_.askMessage(kPageKeysHelp, MessageKind::note, [](PageAnswer) {}); });
    page_.open();
    seen_ = changes();
    window_.show();
    tellSize();
    ++memory_.open;
}

PluginPage::~PluginPage() {
    --memory_.open;
}

bool PluginPage::work() {
    window_.dispatch();
    if (window_.isGone()) return false;
    followOthers();
    return true;
}

void PluginPage::followOthers() {
    const auto now = std::chrono::steady_clock::now();
    if (memory_.open < 2 || now < nextLook_) return;
    nextLook_ = now + kLookPeriod;
    const std::uint64_t present = changes();
    if (std::exchange(seen_, present) != present) page_.RefreshAll();
}

std::uint64_t PluginPage::changes() const {
    std::uint64_t count = 0;
    if (options_) options_->GetChanges(&count);
    return count;
}

void PluginPage::setScaleFactor(double factor) {
    window_.setScale(wholeScale(factor));
    tellSize();
}

void PluginPage::tellSize() const {
    const int scale = window_.scale();
    if (resize_) resize_->ui_resize(resize_->handle, kPageWidth * scale, kPageHeight * scale);
}

}  // namespace marnoth
