#include "shells/desktop/Desktop.h"

#include <array>
#include <cstdlib>
#include <iomanip>
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
#include "shellkit/text/InstrumentText.h"
#include "shells/desktop/DesktopAudio.h"
#include "shells/desktop/DialogPrograms.h"
#include "shells/desktop/EventLoop.h"
#include "shells/desktop/LiveInstrument.h"
#include "shells/desktop/Notices.h"
#include "shells/desktop/PadKeys.h"
#include "shells/desktop/ProgramChooser.h"
#include "shells/desktop/ProgramIcon.h"
#include "shells/desktop/ProjectCommands.h"
#include "shells/desktop/ProjectRecovery.h"
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

DesktopSettings settingsOf(const DesktopOptions& options) {
    DesktopSettings settings;
    settings.audio = options.audio;
    settings.midiPort = options.wish.midiPort;
    settings.rate = options.wish.rate;
    settings.frames = options.wish.frames;
    settings.scale = options.scale;
    return settings;
}

std::string searchPath() {
    const char* const path = std::getenv("PATH");
    return path ? path : "";
}

/// The whole program while its window is open.
class Desktop final : public TransportBarHost {
public:
    Desktop(const DesktopOptions& options, std::ostream& errors)
        : chooser_(loop_, findDialogProgram(searchPath()), [this](const std::string& why) { tell(why); }),
          questionFont_(questionFont(*fonts_)),
          questions_(*questionFont_),
          window_({.scale = options.scale,
                   .width = kPageWidth,
                   .height = TransportBar::kHeight + kPageHeight,
                   .title = "Marnoth",
                   .cursors = skinCursor,
                   .icon = programIcon()},
                  *fonts_, questions_, chooser_),
          audio_(
              audioSystems(), settingsOf(options), !options.audio.empty(), instrument_,
              [this](const std::string& what) { tell(what); }, errors),
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
            showNotice();
            const auto now = EventLoop::Time::clock::now();
            lookAtAudio(now);
            if (now >= nextLook) {
                lookAtProject(now);
                nextLook = now + kLookPeriod;
            }
            loop_.wait(std::min(window_.deadline().value_or(nextLook), nextLook));
        }
        instrument_.recorder().stop();
        // The window was taken away, or the display has ended.
        if (!isClosed_) recovery_.keepChanges();
        return 0;
    }

    /// What a player who looks for dropouts wants to know of the time that is over.
    void tellBlocks(std::ostream& out);

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
    std::vector<MenuItem> settings() override;
    void chooseSetting(int id) override;

private:
    void openFiles(const std::vector<std::string>& files);
    void openPages();
    void useKey(int key, Modifiers held, bool down);
    void lookAtAudio(EventLoop::Time now);
    void lookAtProject(EventLoop::Time now);
    void close();
    /// A sentence for the user; none when it is empty.
    void tell(std::string sentence) { notices_.tell(std::move(sentence)); }
    void showNotice();

    Notices notices_;
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
    ProjectCommands projects_{instrument_.sampler(), window_, page_, notices_};
    ProjectRecovery recovery_{instrument_, projects_.project(), window_, notices_};
    std::string title_;
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
            projects_.project().holds(file);
        } else if (pad < kPads) {
            loadLoopFile(sampler, pad++, file);
        }
    }
    // What was asked for by name can be asked for again: nothing is lost with it.
    if (projects_.project().path().empty()) projects_.project().holds({});
}

void Desktop::openPages() {
    window_.setPage(&pages_);
    pages_.setUpper(&bar_);
    pages_.setLower(&page_);
    window_.onClose([this] { close(); });
    window_.onUnusedKey([this](int key, Modifiers held, bool down) { useKey(key, held, down); });
    page_.setRootScale(RootScale::ofLoops);
    projects_.onSettled([this] { recovery_.discard(); });
    const std::array<IUnknown*, 1> objects{&instrument_.sampler()};
    page_.bind(objects);
    page_.open();
    bar_.open();
    window_.show();
    loop_.watch(window_.descriptor(), [] {});
    recovery_.offer([this] { page_.RefreshAll(); });
}

void Desktop::showNotice() {
    if (window_.isAsking()) return;
    const std::string notice = notices_.current(EventLoop::Time::clock::now());
    if (notice.empty()) return;
    notices_.dismiss();
    window_.askMessage(notice, MessageKind::note, [](PageAnswer) {});
}

/// At another rate the project has been loaded anew, which changes nothing of it.
void Desktop::lookAtAudio(EventLoop::Time now) {
    OpenProject& project = projects_.project();
    const std::uint32_t rate = instrument_.rate();
    const bool hadChanged = project.hasChanged();
    audio_.look(now);
    if (instrument_.rate() == rate) return;
    if (!hadChanged) project.holds(project.path());
    page_.RefreshAll();
    if (!instrument_.recorder().isRecording()) return;
    tell("The device plays at another rate now: the take ends here.");
    tell(instrument_.recorder().stop());
}

/// The title follows the project, and a copy of it the changes.
void Desktop::lookAtProject(EventLoop::Time now) {
    if (std::string title = projects_.project().title(); title != title_) {
        title_ = std::move(title);
        window_.setTitle(title_);
    }
    recovery_.look(now);
}

void Desktop::close() {
    // What is open is to be answered first.
    if (!window_.isAsking()) projects_.leave([this] { isClosed_ = true; });
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
    state.load = instrument_.blockTimes().takeRecent();
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

std::vector<MenuItem> Desktop::settings() {
    std::vector<MenuItem> items;
    for (const auto& system : audio_.systems())
        items.push_back({static_cast<int>(items.size()) + 1, system->name(),
                         audio_.choice() && system == audio_.choice()->system});
    return items;
}

void Desktop::chooseSetting(int id) {
    DesktopSettings settings = audio_.settings();
    settings.audio = audio_.systems().at(static_cast<std::size_t>(id) - 1)->name();
    audio_.change(settings);
}

void Desktop::tellBlocks(std::ostream& out) {
    const BlockTimes& times = instrument_.blockTimes();
    constexpr double kPercent = 100.0;
    out << std::fixed << std::setprecision(1) << "Blocks: " << times.blocks() << ", of their time "
        << times.mean() * kPercent << " % in the mean and " << static_cast<double>(times.worst()) * kPercent
        << " % at the worst; late: " << times.late() << "; dropouts: " << instrument_.dropouts() << std::endl;
}

}  // namespace

int runDesktop(const DesktopOptions& options, std::ostream& errors) {
    Desktop desktop(options, errors);
    const int status = desktop.run();
    if (options.verbose) desktop.tellBlocks(errors);
    return status;
}

}  // namespace marnoth
