#include "shells/lv2/page/PluginPage.h"

#include <array>
#include <new>
#include <stdexcept>
#include <utility>

#include "editor/PageLayout.h"
#include "editor/skin/Skin.h"
#include "editor/texts/PageTexts.h"
#include "platform/drawing/PlatformFonts.h"
#include "platform/linux/WholeScale.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/files/ProjectFiles.h"
#include "shells/lv2/page/PageKeysHelp.h"
#include "shells/lv2/page/ViewText.h"

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
    : sampler_(instance.sampler()),
      memory_(instance.pages()),
      resize_(setup.resize),
      fonts_(platformFonts()),
      questionFont_(questionFont(*fonts_)),
      preview_(instance.listening()),
      pageChooser_(*questionFont_, &preview_, [this] { return chooser_.places(); }),
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
    sampler_.QueryInterface(IID_IMarnothOptions, options_.putVoid());
    setLenientFiles(sampler_, true);
    page_.checkLoads(adviceBeforeLoad);
    page_.adviseOnLoads([this](const std::string& file) { return adviceOnLoad(sampler_, file); });
    page_.setRootScale(RootScale::ofLoops);
    window_.setPage(&page_);
    window_.onHelp([this] { window_.askMessage(kPageKeysHelp, MessageKind::note, [](PageAnswer) {}); });
    page_.open();
    bind();
    window_.show();
    tellSize();
}

PluginPage::~PluginPage() {
    try {
        keepView();
    } catch (const std::bad_alloc&) {
        // Without memory it is as it was some moments before.
    }
}

bool PluginPage::work() {
    const std::uint64_t before = edits();
    window_.dispatch();
    if (window_.isGone()) return false;
    if (edits() != before) {
        ++memory_.edited;
        ++edited_;
    }
    followOthers();
    return true;
}

void PluginPage::bind() {
    restored_ = memory_.restored();
    automated_ = memory_.automated;
    edited_ = memory_.edited;
    const std::array<IUnknown*, 1> objects{&sampler_};
    page_.bind(objects);
    if (const std::string text = memory_.view(); !text.empty()) {
        const LeftPage left = leftPageIn(text);
        page_.show(left.view);
        chooser_.folders = left.folders;
    }
    kept_ = viewText();
}

void PluginPage::followOthers() {
    if (restored_ != memory_.restored()) return bind();
    const auto now = std::chrono::steady_clock::now();
    if (now < nextLook_) return;
    nextLook_ = now + kLookPeriod;
    keepView();
    if (page_.isTyping()) return;
    const std::uint64_t automated = std::exchange(automated_, memory_.automated);
    const std::uint64_t edited = std::exchange(edited_, memory_.edited);
    if (automated != automated_ || edited != edited_) page_.readAgain();
}

void PluginPage::keepView() {
    // A page that nobody has used leaves states as they were.
    std::string text = viewText();
    if (text == kept_) return;
    kept_ = text;
    memory_.keep(std::move(text), restored_);
}

std::string PluginPage::viewText() const {
    return textOf({page_.keptView(), chooser_.folders});
}

std::uint64_t PluginPage::edits() const {
    std::uint64_t count = 0;
    if (options_) options_->GetChanges(&count);
    return count - memory_.automated;
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
