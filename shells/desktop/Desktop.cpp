#include "shells/desktop/Desktop.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/texts/PageTexts.h"
#include "platform/drawing/PlatformFonts.h"
#include "platform/linux/X11Window.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/files/Need.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/page/QuestionBox.h"
#include "shells/desktop/DialogPrograms.h"
#include "shells/desktop/EventLoop.h"
#include "shells/desktop/JackDriver.h"
#include "shells/desktop/LiveInstrument.h"
#include "shells/desktop/NullDriver.h"
#include "shells/desktop/ProgramChooser.h"

namespace marnoth {

namespace {

constexpr int kQuestionHeight = 14;  ///< of the texts of a question, pixels

std::unique_ptr<AudioDriver> openAudio(const DesktopOptions& options, AudioClient& client,
                                       std::ostream& errors) {
    if (options.audio == "null") return std::make_unique<NullDriver>(options.wish, client);
    try {
        return std::make_unique<JackDriver>(options.wish, client);
    } catch (const std::runtime_error& error) {
        if (options.audio == "jack") throw;
        errors << error.what() << " The program plays without sound." << std::endl;
    }
    return std::make_unique<NullDriver>(options.wish, client);
}

void loadFiles(IGrooveSampler& sampler, const std::vector<std::string>& files) {
    setLenientFiles(sampler, true);
    for (const std::string& file : files) {
        if (isProject(file)) {
            loadProjectFile(sampler, file);
        } else {
            std::int32_t bin = 0;
            loadLoopFile(sampler, bin, file);
        }
    }
}

/// The page in its window, with all that both stand on.
class OpenPage {
public:
    OpenPage(const DesktopOptions& options, IGrooveSampler& sampler, EventLoop& loop)
        : files_(loop, findDialogProgram(searchPath())),
          questionFont_(opened(*fonts_)),
          questions_(*questionFont_),
          window_({.scale = options.scale, .width = kPageWidth, .height = kPageHeight, .title = "Marnoth"},
                  *fonts_, questions_, files_),
          page_(window_) {
        window_.setPage(&page_);
        window_.onClose([this] { isClosed_ = true; });
        page_.setRootScale(RootScale::ofLoops);
        page_.adviseOnLoads([&sampler](const std::string& file) { return adviceOnLoad(sampler, file); });
        const std::array<IUnknown*, 1> objects{&sampler};
        page_.bind(objects);
        page_.open();
        window_.show();
        loop.watch(window_.descriptor(), [] {});
    }

    X11Window& window() { return window_; }
    bool isClosed() const { return isClosed_ || window_.isGone(); }

private:
    static std::string searchPath() {
        const char* const path = std::getenv("PATH");
        return path ? path : "";
    }
    static std::unique_ptr<Font> opened(FontSource& fonts) {
        std::string error;
        std::unique_ptr<Font> font = fonts.open(kFontFace, kQuestionHeight, error);
        if (!font) throw std::runtime_error(error);
        return font;
    }

    std::unique_ptr<FontSource> fonts_ = platformFonts();
    ProgramChooser files_;
    std::unique_ptr<Font> questionFont_;
    QuestionBox questions_;
    X11Window window_;
    CGrooveSamplerPropPage page_;
    bool isClosed_ = false;
};

}  // namespace

int runDesktop(const DesktopOptions& options, std::ostream& errors) {
    LiveInstrument instrument;
    const std::unique_ptr<AudioDriver> audio = openAudio(options, instrument, errors);
    IGrooveSampler& sampler = instrument.host().sampler();
    loadFiles(sampler, options.files);
    EventLoop loop;
    OpenPage page(options, sampler, loop);
    while (!page.isClosed()) {
        page.window().dispatch();
        loop.wait(page.window().deadline());
    }
    return 0;
}

}  // namespace marnoth
