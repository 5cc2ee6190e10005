#include "shells/cli/RenderCommand.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <ostream>
#include <set>

#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "hostkit/InstrumentOptions.h"
#include "sample/AcidWave.h"
#include "seam/Limits.h"
#include "seam/MusicalTime.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/FaultText.h"
#include "shellkit/files/FilePlan.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/files/Need.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/midi/MidiFile.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/InstrumentText.h"
#include "shellkit/text/NoteNames.h"
#include "shellkit/text/PlainText.h"
#include "shells/cli/LoopRates.h"
#include "shells/cli/Progress.h"
#include "shells/cli/Recovery.h"
#include "shells/cli/RenderPads.h"
#include "shells/cli/TwoTurns.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kChannels = 2;
constexpr double kDefaultBeats = 16.0;
constexpr int kFadeMilliseconds = 20;
constexpr std::uint8_t kHeldVelocity = 100;

std::string padName(int pad) {
    const std::string number = std::to_string(pad + 1);
    return (number.size() < 2 ? "pad0" : "pad") + number + ".wav";
}

bool hasLoopData(const std::string& file) {
    CAcidWave wave;
    openLoopFile(wave, file);
    return wave.hasAcid != 0;
}

/// One offline render: the instrument in its host, what it plays, and where the audio goes.
class OfflineRender {
public:
    OfflineRender(const RenderOptions& options, const Streams& streams)
        : options_(options), streams_(streams), report_(streams.reportBeside(options.out)) {}

    void run() {
        checkPlaces();
        chooseRate();
        readMusic();
        connect();
        attach();
        setUp();
        openOutputs();
        queue();
        const double took = render();
        outputs_->finish([this](const std::string& text) { warn(text); });
        tell(took);
        if (!options_.save.empty()) save();
    }

private:
    /// What would fail at the end fails at the beginning.
    void checkPlaces() {
        planInputs();
        planOutput(files_, "--out", options_.out);
        if (!options_.save.empty()) planSave(files_, "--save", options_.save);
        for (const PadFile& file : options_.pads) planStem(file.pad);
        checkPrinting(files_);
        if (!options_.save.empty()) checkSavePlace(options_.save);
    }

    void planInputs() {
        if (!options_.project.empty()) planProject(files_, "--project", options_.project);
        if (!options_.midi.empty()) files_.read("--midi", pathFromUtf8(options_.midi));
        for (const PadFile& file : options_.pads)
            if (!file.file.empty())
                files_.read("--pad " + std::to_string(file.pad + 1), pathFromUtf8(file.file));
    }

    void planStem(int pad) {
        if (options_.stems.empty() || !planned_.insert(pad).second) return;
        planOutput(files_, "the stem", utf8FromPath(stemOf(pad)));
    }

    std::filesystem::path stemOf(int pad) const { return pathFromUtf8(options_.stems) / padName(pad); }

    void chooseRate() {
        if (options_.rate) {
            rate_ = *options_.rate;
            return;
        }
        LoopRates rates;
        std::ostream silent(nullptr);
        if (!options_.project.empty())
            loadOrRecover(options_.project, options_.recover, silent,
                          [&](const std::string& file) { rates.addProject(file); });
        for (const PadFile& file : options_.pads)
            if (!file.file.empty()) rates.addLoop(file.file);
        rate_ = rates.chosen();
        if (const std::string text = rates.tellDifference(); !text.empty()) note(text);
    }

    /// Fixes tempo, length and, with a MIDI file, the notes.
    void readMusic() {
        double ticks = kDefaultBeats * kTicksPerBeat;
        if (!options_.midi.empty()) {
            part_ = readMidi(options_.midi);
            ticks = part_.endTicks;
        }
        if (options_.tempo) part_.tempo = TempoTrack(*options_.tempo);
        if (options_.beats) ticks = *options_.beats * kTicksPerBeat;
        if (options_.loop) ticks = std::max(1.0, std::round(ticks));
        const double frames = part_.tempo.seconds(ticks) * rate_ + 0.5;
        music_ = std::max<std::int64_t>(1, static_cast<std::int64_t>(frames));
        ticks_ = ticks;
        // Where nobody asked for a length, what sounds at the end of the notes has the time to fade out.
        const bool fades = !options_.midi.empty() && !options_.beats && !options_.loop;
        frames_ = music_ + (fades ? std::int64_t{rate_} * kFadeMilliseconds / 1000 : 0);
        if (options_.loop) takeTwoTurns();
    }

    void takeTwoTurns() {
        if (2 * ticks_ > std::numeric_limits<std::int32_t>::max())
            throw WrongUse("--loop: there are too many beats to play them twice");
        part_ = twoTurns(part_, static_cast<std::int32_t>(ticks_));
        before_ = music_;
    }

    void connect() {
        std::vector<int> pins{0};
        // Which pads a project holds turns out later, and it is loaded at the rate of the connection.
        if (!options_.stems.empty())
            for (int pad = 0; pad < kPads; ++pad) pins.push_back(pad + 1);
        need(rig_.setBlock(options_.block), "setting the block");
        need(rig_.connect(rate_, kChannels, pins), "connecting the instrument");
    }

    void attach() {
        const auto& tempo = part_.tempo.changes();
        AttachOptions host;
        host.tempo = tempo.front().beatsPerMinute;
        host.key = options_.key ? keyOfLoops(*options_.key) : kNoProjectKey;
        host.converterRate = rate_;
        need(rig_.attach(host), "attaching the host");
        for (std::size_t i = 1; i < tempo.size(); ++i) rig_.addTempo(tempo[i].tick, tempo[i].beatsPerMinute);
    }

    void setUp() {
        if (!options_.project.empty())
            loadOrRecover(options_.project, options_.recover, streams_.errors,
                          [this](const std::string& file) { loadProjectFile(rig_.sampler(), file); });
        setLenientFiles(rig_.sampler(), true);
        need(setSteady(rig_.sampler(), true), "the steady mode");
        for (const PadFile& file : options_.pads)
            if (!file.file.empty()) load(file);
        loaded_ = pads_.loaded();
        // Which pads a project fills is known now.
        for (const int pad : loaded_) planStem(pad);
        if (options_.gate) pads_.gate();
        for (const PadFile& file : options_.pads) applySettings(rig_.sampler(), file.pad, file.settings);
        tellPlainFiles();
        if (!options_.midi.empty()) tellUnansweredNotes();
        // A held pad has to sound for as long as its note does, which is beyond the end.
        if (options_.midi.empty()) pads_.hold();
        if (!options_.stems.empty()) pads_.routeToOwnOutputs();
    }

    void load(const PadFile& file) {
        const LoadFault damage = loadLoopFile(rig_.sampler(), file.pad, file.file);
        if (damage) warn(file.file + ": " + damageInWords(damage));
    }

    /// Files without loop data among loops, or where somebody asked for a tempo.
    void tellPlainFiles() {
        const auto isSynced = [&](int pad) { return pads_.isSynced(pad); };
        const bool hasTempo = options_.tempo || !options_.midi.empty();
        if (!hasTempo && std::none_of(loaded_.begin(), loaded_.end(), isSynced)) return;
        std::string files;
        for (const PadFile& file : options_.pads)
            if (!file.file.empty() && !isSynced(file.pad) && !hasLoopData(file.file))
                files += (files.empty() ? "" : ", ") + file.file;
        if (files.empty()) return;
        const std::string when =
            options_.midi.empty() ? "plays once from beat 0" : "plays once from its note on";
        note(files + ": without loop data a file doesn't follow the tempo: it " + when +
             ", at its own speed. To loop in time it needs the beats that an audio editor writes into it as "
             "ACID data");
    }

    void tellUnansweredNotes() {
        const auto isHeard = [&](const SynthEvent& event) { return event.time < ticks_; };
        std::vector<SynthEvent> notes;
        std::copy_if(part_.notes.begin(), part_.notes.end(), std::back_inserter(notes), isHeard);
        for (const std::string& sentence : tellUnanswered(notes, pads_.answers()))
            warn(options_.midi + ": " + sentence);
    }

    void note(const std::string& text) {
        if (streams_.quiet) return;
        streams_.errors << "marnoth: note: " << inOneLine(text) << std::endl;
    }

    void warn(const std::string& text) {
        streams_.errors << "marnoth: warning: " << inOneLine(text) << std::endl;
    }

    void openOutputs() {
        outputs_.emplace(options_.form, rate_, kChannels, frames_);
        // The mix may go into the folder of the stems.
        if (!options_.stems.empty()) openStems(pathFromUtf8(options_.stems));
        open(0, openOutput(options_.out, streams_.out));
        outputs_->checkRoom();
    }

    void openStems(const std::filesystem::path& folder) {
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        if (error) throw FileFailure(options_.stems + ": the folder can't be made");
        for (const int pad : loaded_) open(pad + 1, std::make_unique<OutputFile>(stemOf(pad)));
    }

    void open(int pin, std::unique_ptr<OutputFile> file) {
        RenderOutput& output = outputs_->add(pin, std::move(file));
        rig_.setTaker(pin, [this, &output](std::span<const float> samples, bool) {
            if (rendered_ >= before_) output.take(samples);
        });
    }

    void queue() {
        if (options_.midi.empty())
            for (const int pad : loaded_) hold(pad);
        need(rig_.synth().StartPlayback(0), "starting the transport");
        need(rig_.queueEvents(0, part_.notes), "queueing the notes");
    }

    /// What plays once does so in each turn.
    void hold(int pad) {
        part_.notes.push_back(heldNote(pad));
        if (!options_.loop || pads_.isLooping(pad)) return;
        part_.notes.push_back(heldNote(pad));
        part_.notes.back().time = static_cast<std::int32_t>(ticks_);
    }

    static SynthEvent heldNote(int pad) {
        SynthEvent note;
        note.type = SynthEventType::note;
        note.note = RenderPads::heldNote(pad);
        note.velocity = kHeldVelocity;
        note.duration = kDurationOpen;
        return note;
    }

    /// Renders everything; gives the seconds that it took.
    double render() {
        const auto begin = std::chrono::steady_clock::now();
        Progress progress(!streams_.quiet);
        renderTo(before_, progress);
        renderTo(before_ + music_, progress);
        if (frames_ > music_) need(rig_.synth().StopPlayback(), "stopping the transport");
        renderTo(before_ + frames_, progress);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    }

    /// Up to a frame, about a second at a time.
    void renderTo(std::int64_t end, Progress& progress) {
        while (rendered_ < end) {
            const std::int64_t now = std::min<std::int64_t>(rate_, end - rendered_);
            need(rig_.render(now), "rendering");
            outputs_->check();
            rendered_ += now;
            progress.show(static_cast<double>(rendered_) / static_cast<double>(before_ + frames_));
        }
    }

    void tell(double took) const {
        const double length = static_cast<double>(frames_) / rate_;
        report_ << outputs_->mix().file().name() << ": " << fixed(length, 3) << " s, " << outputs_->tellMix()
                << ", " << fixed(length / std::max(took, 1e-6), 0) << " times real time" << std::endl;
    }

    void save() {
        pads_.restore();
        saveProjectFile(rig_.sampler(), options_.save);
        const std::string name = savedName(options_.save);
        const auto bytes = static_cast<double>(std::filesystem::file_size(pathFromUtf8(name)));
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), ": the project, %.1f MB", bytes / 1e6);
        report_ << name << text.data() << std::endl;
    }

    const RenderOptions& options_;
    const Streams& streams_;
    std::ostream& report_;
    FilePlan files_;
    std::set<int> planned_;  ///< pads whose stems are in it
    MidiPart part_;
    double ticks_ = 0;
    std::int64_t music_ = 0;   ///< frames up to the end of the notes
    std::int64_t frames_ = 0;  ///< of the files
    std::int64_t before_ = 0;  ///< that are rendered before the files begin
    std::int64_t rendered_ = 0;
    std::uint32_t rate_ = LoopRates::kUsual;
    std::optional<RenderOutputs> outputs_;
    std::vector<int> loaded_;        ///< pads that have grains
    HostRig rig_{createInstrument};  // destroyed before the outputs that its pins write to
    RenderPads pads_{rig_.sampler()};
};

}  // namespace

std::uint32_t readKey(std::string_view name) {
    const auto key = keyNamed(name);
    if (!key) throw WrongUse("--key \"" + std::string(name) + "\": write a note name such as A, C# or Bb");
    return *key;
}

void runRender(const RenderOptions& options, const Streams& streams) {
    OfflineRender(options, streams).run();
}

}  // namespace marnoth
