#include "shells/desktop/Desktop.h"

#include <array>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <iomanip>
#include <iterator>
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
#include "shells/desktop/OpenProject.h"
#include "shells/desktop/PadKeys.h"
#include "shells/desktop/ProgramChooser.h"
#include "shells/desktop/ProgramIcon.h"
#include "shells/desktop/RecoveryFile.h"
#include "shells/desktop/StackedPages.h"
#include "shells/desktop/Takes.h"
#include "shells/desktop/TransportBar.h"

namespace marnoth {

namespace {

constexpr int kQuestionHeight = 14;  ///< of the texts of a question, pixels
constexpr std::chrono::seconds kLookPeriod{1};
constexpr std::chrono::seconds kCopyPeriod{60};  ///< of the open project, for after a crash

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
              audioSystems(), options, instrument_, [this](const std::string& what) { tell(what); }, errors),
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
            if (now >= nextLook) {
                audio_.look();
                lookAtProject(now);
                nextLook = now + kLookPeriod;
            }
            loop_.wait(std::min(window_.deadline().value_or(nextLook), nextLook));
        }
        instrument_.recorder().stop();
        if (!isClosed_ && project_.hasChanged()) keepForNextTime();
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
    std::vector<MenuItem> settings() override { return audio_.menu(); }
    void chooseSetting(int id) override { audio_.choose(id); }

private:
    void openFiles(const std::vector<std::string>& files);
    void openPages();
    void useKey(int key, Modifiers held, bool down);
    void lookAtProject(EventLoop::Time now);
    void offerRecovery();
    void keepForNextTime();
    void recover();
    void close();
    void saveAndClose();
    /// A sentence for the user, as soon as no question is open; none when it is empty.
    void tell(std::string sentence) {
        if (!sentence.empty()) notices_.push_back(std::move(sentence));
    }
    void showNotice();

    std::deque<std::string> notices_;
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
    OpenProject project_{instrument_.sampler()};
    RecoveryFile recovery_{stateFolder()};
    EventLoop::Time nextCopy_ = EventLoop::Time::clock::now() + kCopyPeriod;
    std::uint64_t copied_ = 0;  ///< the count of changes at the last copy
    std::string title_;
    bool closesWhenSaved_ = false;
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
            project_.holds(file);
        } else if (pad < kPads) {
            loadLoopFile(sampler, pad++, file);
        }
    }
    // What was asked for by name can be asked for again: nothing is lost with it.
    if (project_.path().empty()) project_.holds({});
}

void Desktop::openPages() {
    window_.setPage(&pages_);
    pages_.setUpper(&bar_);
    pages_.setLower(&page_);
    window_.onClose([this] { close(); });
    window_.onUnusedKey([this](int key, Modifiers held, bool down) { useKey(key, held, down); });
    IGrooveSampler& sampler = instrument_.sampler();
    page_.setRootScale(RootScale::ofLoops);
    page_.checkLoads(adviceBeforeLoad);
    page_.tellOfProjects([this](const std::string& path) {
        project_.holds(path);
        recovery_.discard();
        if (closesWhenSaved_) isClosed_ = true;
    });
    page_.adviseOnLoads([&sampler](const std::string& file) { return adviceOnLoad(sampler, file); });
    const std::array<IUnknown*, 1> objects{&sampler};
    page_.bind(objects);
    page_.open();
    bar_.open();
    window_.show();
    loop_.watch(window_.descriptor(), [] {});
    offerRecovery();
}

void Desktop::showNotice() {
    if (notices_.empty() || window_.isAsking()) return;
    window_.askMessage(notices_.front(), MessageKind::note, [](PageAnswer) {});
    notices_.pop_front();
}

void Desktop::offerRecovery() {
    if (!recovery_.found()) return;
    window_.askMessage("Marnoth was ended in the middle of its work. Open the project as it was then?",
                       MessageKind::yesNo, [this](PageAnswer answer) {
                           if (answer == PageAnswer::yes) recover();
                           if (answer == PageAnswer::no) recovery_.settle();
                       });
}

/// The window was taken away, or the display has ended.
void Desktop::keepForNextTime() {
    recovery_.discard();
    if (recovery_.write([this] { return instrument_.saveState(); })) recovery_.keep();
}

void Desktop::recover() {
    std::ifstream file(*recovery_.found(), std::ios::binary);
    std::vector<std::uint8_t> state{std::istreambuf_iterator<char>(file), {}};
    if (!instrument_.loadState(std::move(state)))
        return tell("It can't be read. It is kept as " + utf8FromPath(recovery_.putAside()) + ".");
    recovery_.settle();
    page_.RefreshAll();
}

/// The title follows the project, and a copy of it the changes.
void Desktop::lookAtProject(EventLoop::Time now) {
    if (std::string title = project_.title(); title != title_) {
        title_ = std::move(title);
        window_.setTitle(title_);
    }
    // Who leaves the dialog without a file goes on playing.
    closesWhenSaved_ = closesWhenSaved_ && window_.isAsking();
    const std::uint64_t changes = project_.changes();
    if (now < nextCopy_ || changes == copied_ || !project_.hasChanged()) return;
    if (!recovery_.write([this] { return instrument_.saveState(); })) return;
    copied_ = changes;
    nextCopy_ = now + kCopyPeriod;
}

void Desktop::close() {
    // What is open is to be answered first.
    if (window_.isAsking()) return;
    if (!project_.hasChanged()) {
        isClosed_ = true;
        return;
    }
    window_.askMessage(
        "Save the changes to " + project_.name() + " before the window closes? Escape goes back to it.",
        MessageKind::yesNo, [this](PageAnswer answer) {
            if (answer == PageAnswer::yes) saveAndClose();
            if (answer == PageAnswer::no) isClosed_ = true;
        });
}

void Desktop::saveAndClose() {
    if (project_.path().empty()) {
        closesWhenSaved_ = true;
        return page_.saveProject();
    }
    try {
        saveProjectFile(instrument_.sampler(), project_.path());
        isClosed_ = true;
    } catch (const FileFailure& failure) {
        tell(failure.what());
    }
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
