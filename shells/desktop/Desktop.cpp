#include "shells/desktop/Desktop.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/skin/Skin.h"
#include "editor/texts/PageTexts.h"
#include "platform/drawing/PlatformFonts.h"
#include "platform/linux/X11Window.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/page/QuestionBox.h"
#include "shells/desktop/DesktopAudio.h"
#include "shells/desktop/DialogPrograms.h"
#include "shells/desktop/EventLoop.h"
#include "shells/desktop/LiveInstrument.h"
#include "shells/desktop/PadKeys.h"
#include "shells/desktop/ProgramChooser.h"
#include "shells/desktop/StackedPages.h"
#include "shells/desktop/Takes.h"
#include "shells/desktop/TransportBar.h"

namespace marnoth {

namespace {

constexpr int kQuestionHeight = 14;  ///< of the texts of a question, pixels
constexpr std::chrono::seconds kLookPeriod{1};

bool isSong(const std::string& file) {
    return file.ends_with(".mid") || file.ends_with(".midi") || file.ends_with(".MID");
}

std::unique_ptr<Font> questionFont(FontSource& fonts) {
    std::string error;
    std::unique_ptr<Font> font = fonts.open(kFontFace, kQuestionHeight, error);
    if (!font) throw std::runtime_error(error);
    return font;
}

std::string searchPath() {
    const char* const path = std::getenv("PATH");
    return path ? path : "";
}

/// The whole program while its window is open.
class Desktop final : public TransportBarHost {
public:
    Desktop(const DesktopOptions& options, std::ostream& errors)
        : chooser_(loop_, findDialogProgram(searchPath())),
          questionFont_(questionFont(*fonts_)),
          questions_(*questionFont_),
          window_({.scale = options.scale,
                   .width = kPageWidth,
                   .height = TransportBar::kHeight + kPageHeight,
                   .title = "Marnoth",
                   .cursors = skinCursor},
                  *fonts_, questions_, chooser_),
          audio_(options, instrument_, errors),
          pages_(window_, kPageWidth, TransportBar::kHeight, kPageHeight),
          bar_(pages_.upperWindow(), *this),
          page_(pages_.lowerWindow()) {
        openFiles(options.files);
        if (options.tempo > 0) {
            instrument_.followSongTempo(false);
            instrument_.setTempo(options.tempo);
        }
        openPages();
    }

    int run() {
        auto nextLook = EventLoop::Time::clock::now();
        while (!isClosed_ && !window_.isGone()) {
            window_.dispatch();
            const auto now = EventLoop::Time::clock::now();
            if (now >= nextLook) {
                audio_.look();
                nextLook = now + kLookPeriod;
            }
            loop_.wait(std::min(window_.deadline().value_or(nextLook), nextLook));
        }
        instrument_.recorder().stop();
        return 0;
    }

    // TransportBarHost.
    State look() override;
    void play() override { instrument_.play(); }
    void stop() override { instrument_.stop(); }
    void toStart() override { instrument_.locate(0.0); }
    void record(bool on) override;
    void setTempo(double beatsPerMinute) override { instrument_.setTempo(beatsPerMinute); }
    void setLoop(int bars) override { instrument_.setLoop(bars); }
    void setMetronome(bool on) override { instrument_.setMetronome(on); }
    void setLevel(float gain) override { instrument_.master().set(gain); }
    void setKey(std::optional<int> key) override {
        instrument_.setKey(key ? std::optional(static_cast<std::uint32_t>(*key)) : std::nullopt);
    }
    void panic() override { instrument_.panic(); }
    std::vector<MenuItem> settings() override { return audio_.menu(); }
    void chooseSetting(int id) override { tell(audio_.choose(id)); }

private:
    void openFiles(const std::vector<std::string>& files);
    void openPages();
    void useKey(int key, Modifiers held, bool down);
    /// A sentence for the user; none when it is empty.
    void tell(const std::string& sentence) {
        if (!sentence.empty()) window_.askMessage(sentence, MessageKind::note, [](PageAnswer) {});
    }

    LiveInstrument instrument_;
    EventLoop loop_;
    std::unique_ptr<FontSource> fonts_ = platformFonts();
    ProgramChooser chooser_;
    std::unique_ptr<Font> questionFont_;
    QuestionBox questions_;
    X11Window window_;
    DesktopAudio audio_;
    StackedPages pages_;
    TransportBar bar_;
    CGrooveSamplerPropPage page_;
    PadKeys padKeys_;
    bool isClosed_ = false;
};

void Desktop::openFiles(const std::vector<std::string>& files) {
    IGrooveSampler& sampler = instrument_.sampler();
    setLenientFiles(sampler, true);
    std::int32_t pad = 0;
    for (const std::string& file : files) {
        if (isSong(file)) {
            instrument_.setSong(std::make_unique<const Song>(readSong(file)));
        } else if (isProject(file)) {
            loadProjectFile(sampler, file);
        } else if (pad < kPads) {
            loadLoopFile(sampler, pad++, file);
        }
    }
}

void Desktop::openPages() {
    window_.setPage(&pages_);
    pages_.setUpper(&bar_);
    pages_.setLower(&page_);
    window_.onClose([this] { isClosed_ = true; });
    window_.onUnusedKey([this](int key, Modifiers held, bool down) { useKey(key, held, down); });
    IGrooveSampler& sampler = instrument_.sampler();
    page_.setRootScale(RootScale::ofLoops);
    page_.checkLoads(adviceBeforeLoad);
    page_.adviseOnLoads([&sampler](const std::string& file) { return adviceOnLoad(sampler, file); });
    const std::array<IUnknown*, 1> objects{&sampler};
    page_.bind(objects);
    page_.open();
    bar_.open();
    window_.show();
    loop_.watch(window_.descriptor(), [] {});
}

void Desktop::useKey(int key, Modifiers held, bool down) {
    if (down && key == kKeySpace && !held.control) return instrument_.isPlaying() ? stop() : play();
    const auto note = down && !held.control && !held.shift ? padKeys_.press(key, instrument_.sampler())
                                                           : padKeys_.release(key);
    if (note) instrument_.note(note->key, note->on);
}

TransportBarHost::State Desktop::look() {
    if (instrument_.recorder().hasFailed()) tell(instrument_.recorder().stop());
    State state;
    state.playing = instrument_.isPlaying();
    state.recording = instrument_.recorder().isRecording();
    state.tick = instrument_.tick();
    state.tempo = instrument_.tempo();
    state.peakLeft = instrument_.master().takePeak(0);
    state.peakRight = instrument_.master().takePeak(1);
    state.load = instrument_.takeLoad();
    state.messages = instrument_.messages();
    state.dropouts = instrument_.dropouts();
    return state;
}

void Desktop::record(bool on) {
    if (!on) return tell(instrument_.recorder().stop());
    try {
        instrument_.recorder().start(newTakeName(), instrument_.rate());
    } catch (const FileFailure& failure) {
        tell(failure.what());
    }
}

}  // namespace

int runDesktop(const DesktopOptions& options, std::ostream& errors) {
    Desktop desktop(options, errors);
    return desktop.run();
}

}  // namespace marnoth
