#include "shells/desktop/Desktop.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <memory>
#include <span>
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
#include "shells/desktop/EndSignals.h"
#include "shells/desktop/EventLoop.h"
#include "shells/desktop/audio/DesktopAudio.h"
#include "shells/desktop/audio/RealTime.h"
#include "shells/desktop/dialogs/DesktopDialogs.h"
#include "shells/desktop/playing/LiveInstrument.h"
#include "shells/desktop/playing/PadKeys.h"
#include "shells/desktop/playing/Preview.h"
#include "shells/desktop/playing/SongCommands.h"
#include "shells/desktop/playing/Takes.h"
#include "shells/desktop/projects/DemoFiles.h"
#include "shells/desktop/projects/FileMenu.h"
#include "shells/desktop/projects/ProjectCommands.h"
#include "shells/desktop/projects/ProjectRecovery.h"
#include "shells/desktop/settings/SettingsFile.h"
#include "shells/desktop/settings/SettingsMenu.h"
#include "shells/desktop/settings/ToldSettings.h"
#include "shells/desktop/window/KeysHelp.h"
#include "shells/desktop/window/Notices.h"
#include "shells/desktop/window/ProgramIcon.h"
#include "shells/desktop/window/StackedPages.h"
#include "shells/desktop/window/StatusLine.h"
#include "shells/desktop/window/TransportBar.h"

namespace marnoth {

namespace {

constexpr int kQuestionHeight = 14;  ///< of the texts of a question, pixels
constexpr std::chrono::seconds kLookPeriod{1};

/// What a signal adds to in the exit status of a program that it ends.
constexpr int kEndedBySignal = 128;

std::filesystem::path programFolder() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

std::unique_ptr<Font> questionFont(FontSource& fonts) {
    std::string error;
    std::unique_ptr<Font> font = fonts.open(kFontFace, kQuestionHeight, error);
    if (!font) throw std::runtime_error(error);
    return font;
}

/// The whole program while its window is open.
class Desktop final : public TransportBarHost {
public:
    Desktop(const DesktopOptions& told, std::ostream& errors)
        : options_(told),
          questionFont_(questionFont(*fonts_)),
          questions_(*questionFont_),
          window_({.scale = atStart_.scale,
                   .width = kPageWidth,
                   .height = TransportBar::kHeight + kPageHeight + StatusLine::kHeight,
                   .title = "Marnoth",
                   .cursors = skinCursor,
                   .icon = programIcon()},
                  *fonts_, questions_, dialogs_.chooser()),
          audio_(
              audioSystems(), atStart_, !told.audio.empty(), preview_,
              [this](const std::string& what) { tell(what); }, errors),
          pages_(window_, kPageWidth, TransportBar::kHeight, kPageHeight, StatusLine::kHeight),
          bar_(pages_.upperWindow(), *this),
          page_(pages_.lowerWindow()),
          status_(pages_.footWindow()) {
        for (const std::string& trouble : settingsFile_.troubles()) {
            notices_.warn(trouble);
            errors << trouble << std::endl;
        }
        projects_.onChange([this](ProjectChange change, const std::string& path) {
            recovery_.discard();
            menu_.projectChanged(change, path);
        });
        takeSettings();
        openFiles(options_.files, errors);
        openPages();
        if (options_.files.empty() && !settingsFile_.wasThere() && !recovery_.hasFound()) menu_.openDemo();
        keepSettings();
    }

    int run() {
        auto nextLook = EventLoop::Time::clock::now();
        while (!isClosed_ && !window_.isGone() && EndSignals::came() == 0) {
            window_.dispatch();
            const auto now = EventLoop::Time::clock::now();
            lookAtAudio(now);
            if (now >= nextLook) {
                lookAtProject(now);
                keepSettings();
                nextLook = now + kLookPeriod;
            }
            loop_.wait(std::min(window_.deadline().value_or(nextLook), nextLook));
        }
        instrument_.recorder().stop();
        keepSettings();
        // The window was taken away, or the display has ended, or the session does.
        if (!isClosed_) recovery_.keepChanges();
        const int signal = EndSignals::came();
        return signal == 0 ? 0 : kEndedBySignal + signal;
    }

    /// What a player who looks for dropouts wants to know of the time that is over.
    void tellBlocks(std::ostream& out);

    // TransportBarHost.
    State look() override;
    void play() override;
    void stop() override;
    void toStart() override;
    void record(bool on) override;
    void setTempo(double beatsPerMinute) override { instrument_.setTempo(beatsPerMinute); }
    void setLoop(int bars) override { instrument_.setLoop(bars); }
    void setMetronome(bool on) override {
        instrument_.setMetronome(on);
        settings_.metronome = on;
    }
    void setLevel(float gain) override {
        instrument_.master().set(gain);
        settings_.level = gain;
    }
    void setKey(std::optional<int> key) override {
        instrument_.setKey(key ? std::optional(static_cast<std::uint32_t>(*key)) : std::nullopt);
    }
    void panic() override { instrument_.panic(); }
    std::vector<MenuItem> files() override { return menu_.items(); }
    void chooseFile(int id) override { menu_.choose(id); }
    std::vector<MenuItem> settings() override { return settingsMenu_.all(); }
    std::vector<MenuItem> chooseSetting(int id) override { return settingsMenu_.choose(id); }

private:
    void takeSettings();
    void keepSettings();
    void openFile(const std::string& file, std::int32_t& pad);
    void openFiles(const std::vector<std::string>& files, std::ostream& errors);
    void openPages();
    void useKey(int key, Modifiers held, bool down);
    void lookAtAudio(EventLoop::Time now);
    void lookAtProject(EventLoop::Time now);
    void close();
    /// A sentence for the user; none when it is empty.
    void tell(std::string sentence) { notices_.tell(std::move(sentence)); }
    std::string sound() const;
    void showStatus();
    void endTake();

    EndSignals signals_;
    Notices notices_;
    SettingsFile settingsFile_{settingsFolder()};
    DesktopSettings settings_ = settingsFile_.read();
    const DesktopOptions options_;
    const DesktopSettings atStart_ = withTold(settings_, options_);
    LiveInstrument instrument_;
    EventLoop loop_;
    std::unique_ptr<FontSource> fonts_ = platformFonts();
    std::unique_ptr<Font> questionFont_;
    Preview preview_{instrument_, instrument_.master()};
    const std::optional<DemoFiles> demo_ = findDemo(programFolder());
    DesktopDialogs dialogs_{loop_, *questionFont_, preview_.listener(),
                            demo_ ? demo_->folder : std::string()};
    QuestionBox questions_;
    X11Window window_;
    DesktopAudio audio_;
    SettingsMenu settingsMenu_{audio_, [this](int scale) { window_.setScale(scale); }};
    StackedPages pages_;
    TransportBar bar_;
    CGrooveSamplerPropPage page_;
    StatusLine status_;
    PadKeys padKeys_;
    ProjectCommands projects_{instrument_.sampler(), window_, page_, notices_};
    ProjectRecovery recovery_{instrument_, projects_.project(), window_, notices_, stateFolder()};
    SongCommands song_{instrument_};
    FileMenu menu_{window_, projects_, song_, settings_, notices_, demo_};
    std::string title_;
    std::string take_;  ///< the file of the last one
    bool isClosed_ = false;
};

/// What is kept holds from the start, but for what is told.
void Desktop::takeSettings() {
    dialogs_.beginWhereKept(settings_);
    bar_.setUp(settings_.metronome, settings_.level, settings_.loopBars);
    instrument_.setMetronome(settings_.metronome);
    instrument_.master().set(settings_.level);
    song_.repeat(options_.repeatsSong.value_or(settings_.songRepeats));
    song_.followTempo(options_.songTempo.value_or(settings_.songTempo && options_.tempo <= 0));
    if (options_.tempo > 0) instrument_.setTempo(options_.tempo);
}

void Desktop::keepSettings() {
    settings_.loopBars = bar_.loopBars();
    dialogs_.keepFolders(settings_);
    keepChanges(settings_, atStart_, audio_.settings());
    notices_.warn(settingsFile_.write(settings_));
}

/// A loop goes to the next pad.
void Desktop::openFile(const std::string& file, std::int32_t& pad) {
    if (isSong(file)) {
        song_.open(file);
        menu_.remember(file);
    } else if (isProject(file)) {
        loadProjectFile(instrument_.sampler(), file);
        projects_.opened(file);
    } else if (pad < kPads) {
        loadLoopFile(instrument_.sampler(), pad++, file);
    }
}

/// What can't be opened is told; the rest is.
void Desktop::openFiles(const std::vector<std::string>& files, std::ostream& errors) {
    setLenientFiles(instrument_.sampler(), true);
    std::int32_t pad = 0;
    for (const std::string& file : files) {
        try {
            openFile(file, pad);
        } catch (const FileFailure& failure) {
            // A double click has no terminal to be told in.
            errors << "marnoth: " << failure.what() << "." << std::endl;
            notices_.warn(failure.what() + std::string("."));
        }
    }
    // What was asked for by name can be asked for again: nothing is lost with it.
    projects_.project().settle();
    if (options_.repeatsSong) song_.repeat(*options_.repeatsSong);
}

void Desktop::openPages() {
    window_.setPage(&pages_);
    pages_.setUpper(&bar_);
    pages_.setLower(&page_);
    pages_.setFoot(&status_);
    pages_.takeFiles([this](std::span<const std::string> paths) { return menu_.take(paths); });
    status_.onPressed([this] { notices_.dismiss(); });
    window_.onClose([this] { close(); });
    window_.onUnusedKey([this](int key, Modifiers held, bool down) { useKey(key, held, down); });
    page_.setRootScale(RootScale::ofLoops);
    window_.onHelp([this] { window_.askMessage(kKeysHelp, MessageKind::note, [](PageAnswer) {}); });
    const std::array<IUnknown*, 1> objects{&instrument_.sampler()};
    page_.bind(objects);
    page_.open();
    bar_.open();
    window_.show();
    loop_.watch(window_.descriptor(), [] {});
    loop_.watch(signals_.descriptor(), [] {});
    recovery_.offer([this] { page_.RefreshAll(); });
}

/// "JACK, 48000 Hz".
std::string Desktop::sound() const {
    const AudioDriver* const driver = audio_.driver();
    return driver ? driver->name() + ", " + std::to_string(driver->rate()) + " Hz" : std::string();
}

void Desktop::showStatus() {
    status_.show(notices_.current(EventLoop::Time::clock::now()), song_.name(), sound());
}

/// At another rate the project has been loaded anew, which changes nothing of it.
void Desktop::lookAtAudio(EventLoop::Time now) {
    OpenProject& project = projects_.project();
    const std::uint32_t rate = instrument_.rate();
    const bool hadChanged = project.hasChanged();
    audio_.look(now);
    if (instrument_.rate() == rate) return;
    if (!hadChanged) project.settle();
    page_.RefreshAll();
    if (!instrument_.recorder().isRecording()) return;
    notices_.warn("The device plays at another rate now: the take ends here.");
    endTake();
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
    if (down && menu_.useKey(key, held)) return;
    if (down && key == kKeyF1) return window_.showHelp();
    if (down && key == kKeySpace && !held.control) return instrument_.isPlaying() ? stop() : play();
    const auto note = down && !held.control && !held.shift ? padKeys_.press(key, instrument_.sampler())
                                                           : padKeys_.release(key);
    if (note) instrument_.note(note->key, note->on);
}

TransportBarHost::State Desktop::look() {
    if (instrument_.recorder().hasFailed()) endTake();
    showStatus();
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

void Desktop::record(bool on) try {
    if (!on) return endTake();
    take_ = newTakeName();
    instrument_.recorder().start(take_, instrument_.rate());
} catch (const FileFailure& failure) {
    notices_.warn("Nothing is recorded. " + std::string(failure.what()) + ".");
}

void Desktop::endTake() {
    // One that couldn't begin has been told.
    if (!instrument_.recorder().isRecording() && !instrument_.recorder().hasFailed()) return;
    if (const std::string failure = instrument_.recorder().stop(); !failure.empty())
        return notices_.warn(failure);
    tell("The take is in " + shortName(take_) + ".");
}

void Desktop::play() {
    if (SharedTransport* const shared = audio_.transport()) return shared->play();
    instrument_.play();
}

void Desktop::stop() {
    if (SharedTransport* const shared = audio_.transport()) return shared->stop();
    instrument_.stop();
}

void Desktop::toStart() {
    if (SharedTransport* const shared = audio_.transport()) return shared->locate(0);
    instrument_.locate(0.0);
}

void Desktop::tellBlocks(std::ostream& out) {
    const BlockTimes& times = instrument_.blockTimes();
    constexpr double kPercent = 100.0;
    out << std::fixed << std::setprecision(1) << "Blocks: " << times.blocks() << ", of their time "
        << times.mean() * kPercent << " % in the mean and " << static_cast<double>(times.worst()) * kPercent
        << " % at the worst; beyond a quarter: " << times.beyondQuarter() << "; late: " << times.late()
        << "; dropouts: " << instrument_.dropouts() << std::endl;
}

}  // namespace

int runDesktop(const DesktopOptions& options, std::ostream& errors) {
    if (const std::string missing = missingRights(takeRealTimeRights()); !missing.empty())
        errors << missing << std::endl;
    Desktop desktop(options, errors);
    const int status = desktop.run();
    if (options.verbose) desktop.tellBlocks(errors);
    return status;
}

}  // namespace marnoth
