#include "shells/desktop/playing/LiveInstrument.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <new>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "host/CreateInstance.h"
#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "seam/MusicalTime.h"
#include "shells/desktop/playing/Bars.h"

namespace marnoth {

namespace {

constexpr std::uint8_t kNoteOn = 0x90;
constexpr std::uint8_t kNoteOff = 0x80;
constexpr std::uint8_t kPlainVelocity = 100;

constexpr std::array<int, kOutputPins> allOutputs() {
    std::array<int, kOutputPins> outputs{};
    std::iota(outputs.begin(), outputs.end(), 0);
    return outputs;
}

std::uint8_t statusOf(std::uint8_t kind, std::uint8_t channel) {
    return static_cast<std::uint8_t>(kind | channel);
}

}  // namespace

LiveInstrument::LiveInstrument() : host_(createInstrument) {}

void LiveInstrument::setTempo(double beatsPerMinute) {
    tempo_ = beatsPerMinute;
    command({Command::Kind::tempo, beatsPerMinute});
}

void LiveInstrument::setSong(std::unique_ptr<const Song> song) {
    // Those before the one that was taken up last aren't read any more.
    for (; forgottenSongs_ + 1 < takenSongs_; ++forgottenSongs_) songs_.pop_front();
    songs_.push_back(std::move(song));
    if (!commands_.push({Command::Kind::song, 0.0, songs_.back().get()})) songs_.pop_back();
}

void LiveInstrument::note(std::uint8_t key, bool on) {
    host_.send(on ? kNoteOn : kNoteOff, key, on ? kPlainVelocity : std::uint8_t{0});
}

bool LiveInstrument::prepare(std::uint32_t rate, std::int32_t) try {
    // Blocks of any length come in pieces: what plays isn't touched by another length of theirs.
    if (rate_ == rate) return true;
    if (rate_ == 0) return connect(rate);
    const RefPtr<MemoryStream> project = makeObject<MemoryStream>();
    if (FAILED(host_.save(*project))) return false;
    const std::uint32_t before = rate_;
    if (moveTo(rate, *project)) return true;
    // Nothing may be lost: at its former rate there was room for it a moment ago.
    moveTo(before, *project);
    return false;
} catch (const std::bad_alloc&) {
    return false;
}

bool LiveInstrument::connect(std::uint32_t rate) {
    static constexpr auto kAll = allOutputs();
    if (FAILED(host_.connect({rate, kLongestPiece, kAll}))) return false;
    rate_ = rate;
    metronome_.setRate(rate);
    master_.setRate(rate);
    // Its frames were those of another rate.
    transport_.locate(transport_.tick());
    return true;
}

bool LiveInstrument::moveTo(std::uint32_t rate, IStream& project) {
    if (!connect(rate)) return false;
    project.Seek({}, STREAM_SEEK_SET, nullptr);
    if (FAILED(host_.load(project))) return false;
    song_.forEachSounding([this](const Song::Note& note) {
        host_.addMessage(0, statusOf(kNoteOn, note.channel), note.key, note.velocity);
    });
    return true;
}

std::optional<std::vector<std::uint8_t>> LiveInstrument::saveState() try {
    const RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    return SUCCEEDED(host_.save(*stream)) ? std::optional(stream->takeBytes()) : std::nullopt;
} catch (const std::bad_alloc&) {
    return {};
}

bool LiveInstrument::loadState(std::vector<std::uint8_t> state) {
    const RefPtr<MemoryStream> stream = makeObject<MemoryStream>(std::move(state));
    try {
        return SUCCEEDED(host_.load(*stream));
    } catch (const std::invalid_argument&) {
        // A project that names a grain that can't be.
        return false;
    }
}

void LiveInstrument::midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    ++messages_;
    host_.addMessage(frame, status, data1, data2);
}

void LiveInstrument::take(const Command& command) {
    switch (command.kind) {
        case Command::Kind::play:
            if (!transport_.playing()) arrive(transport_.tick());
            transport_.play();
            break;
        case Command::Kind::stop:
            transport_.stop();
            break;
        case Command::Kind::locate:
            arrive(command.value);
            break;
        case Command::Kind::tempo:
            transport_.setTempo(command.value);
            break;
        case Command::Kind::loop:
            bars_ = command.value;
            loopEnd_ = endOfLoop();
            break;
        case Command::Kind::repeat:
            repeatsSong_ = command.value != 0.0;
            loopEnd_ = endOfLoop();
            break;
        case Command::Kind::follow:
            followsTempo_ = command.value != 0.0;
            break;
        case Command::Kind::song:
            // What the song before has switched on would sound on.
            if (song_.song()) host_.panic();
            song_.setSong(command.song);
            loopEnd_ = endOfLoop();
            ++takenSongs_;
            arrive(transport_.tick());
            break;
    }
}

/// The transport stands or plays on from `tick`, and all that goes with it.
void LiveInstrument::arrive(double tick) {
    transport_.locate(tick);
    song_.locate(tick);
    if (followsSong()) transport_.setTempo(song_.tempoAt(tick, transport_.tempo()));
}

double LiveInstrument::withinLoop(double tick) const {
    return tick >= loopEnd_ ? std::fmod(tick, loopEnd_) : tick;
}

double LiveInstrument::tickOf(const LiveTransport& told) const {
    if (told.tick) return withinLoop(*told.tick);
    const double seconds = static_cast<double>(told.frame) / rate_;
    const double tempo = transport_.tempo();
    return withinLoop(followsSong() ? song_.tickAt(seconds, tempo) : seconds * tempo * kTicksPerBeat / 60.0);
}

bool LiveInstrument::strays(const LiveTransport& told, double tempo, std::int32_t frames) const {
    if (!told.tick) return false;
    // Beats are rounded; a tempo may have changed anywhere in the block before.
    constexpr double kRounding = 2.0;
    const double change = std::abs(transport_.tempo() - tempo) * kTicksPerBeat / 60.0;
    return std::abs(tickOf(told) - transport_.tick()) > kRounding + change * frames / rate_;
}

/// Another clock's transport is ours for this block.
void LiveInstrument::goWith(const LiveTransport& told, std::int32_t frames) {
    const double tempo = transport_.tempo();
    isTempoTold_ = told.tempo.has_value();
    if (told.tempo) transport_.setTempo(*told.tempo);
    const bool starts = told.playing && !transport_.playing();
    if (starts || expected_ != told.frame || (told.playing && strays(told, tempo, frames)))
        arrive(tickOf(told));
    else if (told.playing && told.tick && transport_.tempo() != tempo)
        transport_.goOnAt(tickOf(told));
    if (told.playing)
        transport_.play();
    else
        transport_.stop();
    expected_ = told.playing ? told.frame + frames : told.frame;
}

MusicalPlace LiveInstrument::placeOf(std::int64_t frame) {
    if (expected_ == frame) return {transport_.tick(), transport_.tempo()};
    const double tick = tickOf({.frame = frame, .tick = {}, .tempo = {}});
    return {tick, followsSong() ? song_.tempoAt(tick, transport_.tempo()) : transport_.tempo()};
}

double LiveInstrument::ticksPerFrame() const {
    return transport_.playing() ? transport_.tempo() * kTicksPerBeat / 60.0 / rate_ : 0.0;
}

double LiveInstrument::endOfLoop() const {
    if (bars_ > 0.0) return bars_ * kBeatsOfBar * kTicksPerBeat;
    return repeatsSong_ && song_.song() && song_.song()->end > 0 ? song_.song()->end : SongReader::kNever;
}

/// The frames up to the loop's end or the next change of tempo, whichever is nearer; at least 1.
std::int32_t LiveInstrument::framesToCut(std::int32_t most) const {
    const double step = ticksPerFrame();
    if (step <= 0.0) return most;
    const double tick = transport_.tick();
    double cut = loopEnd_ > tick ? loopEnd_ : SongReader::kNever;
    if (followsSong()) cut = std::min(cut, song_.nextTempoChange(tick));
    // A hair less, for a cut that falls on a frame is that frame.
    constexpr double kHair = 1e-6;
    const double frames = std::ceil((cut - tick) / step - kHair);
    return static_cast<std::int32_t>(std::clamp(frames, 1.0, static_cast<double>(most)));
}

/// Hands the song's notes on, to the frames that they are nearest to.
void LiveInstrument::playSong(double begin, double end) {
    const double step = ticksPerFrame();
    const auto frameOf = [&](double tick) {
        return static_cast<std::int32_t>(std::max(0.0, std::round((tick - begin) / step)));
    };
    song_.read(
        end,
        [&](const Song::Note& note, double tick) {
            host_.addMessage(frameOf(tick), statusOf(kNoteOn, note.channel), note.key, note.velocity);
        },
        [&](const Song::Note& note, double tick) {
            host_.addMessage(frameOf(tick), statusOf(kNoteOff, note.channel), note.key, 0);
        });
}

/// Where a piece goes, and room of our own for a mix that nobody takes.
LiveInstrument::Pointers LiveInstrument::outputsOfPiece(std::int32_t done, OutputPointers outputs) {
    Pointers piece{};
    std::ranges::transform(outputs.first(std::min(outputs.size(), piece.size())), piece.begin(),
                           [done](float* output) { return output ? output + done : output; });
    if (!piece[0]) piece[0] = left_.data();
    if (!piece[1]) piece[1] = right_.data();
    return piece;
}

std::int32_t LiveInstrument::renderPiece(std::int32_t done, std::int32_t frames, OutputPointers outputs) {
    const std::int32_t length = framesToCut(std::min(frames - done, kLongestPiece));
    const double begin = transport_.tick();
    const double step = ticksPerFrame();
    const double end = begin + step * length;
    if (step > 0.0) playSong(begin, end);
    const Pointers piece = outputsOfPiece(done, outputs);
    host_.process(length, transport_.next(rate_), piece);
    transport_.advance(length, host_.isPlaying() ? host_.tick() : begin);
    const auto count = static_cast<std::size_t>(length);
    const std::span left(piece[0], count);
    const std::span right(piece[1], count);
    master_.apply(left, right);
    if (freewheels_) recorder_.awaitRoom(left.size());
    recorder_.take(left, right);
    metronome_.add(left, right, begin, step, metronomeIsOn_);
    if (step > 0.0 && end >= loopEnd_ - step / 2 && begin < loopEnd_) arrive(0.0);
    if (step > 0.0) followTempo(begin, end + step / 2);
    return length;
}

/// A change of the song's tempo that a stretch of ticks has come to.
void LiveInstrument::followTempo(double begin, double end) {
    const double change = song_.nextTempoChange(begin);
    if (followsSong() && change <= end) transport_.setTempo(song_.tempoAt(change, transport_.tempo()));
}

void LiveInstrument::render(std::int32_t frames, OutputPointers outputs) {
    using Clock = std::chrono::steady_clock;
    if (rate_ == 0 || frames <= 0) return;
    const auto begin = Clock::now();
    while (const std::optional<Command> next = commands_.pop()) take(*next);
    if (const auto told = std::exchange(told_, std::nullopt)) {
        goWith(*told, frames);
    } else {
        expected_.reset();
        isTempoTold_ = false;
    }
    for (std::int32_t done = 0; done < frames;) done += renderPiece(done, frames, outputs);
    isPlaying_ = transport_.playing();
    tick_ = transport_.tick();
    tempo_ = transport_.tempo();
    if (std::exchange(freewheels_, false)) return;
    const std::chrono::duration<float> took = Clock::now() - begin;
    times_.note(took.count() * static_cast<float>(rate_) / static_cast<float>(frames));
}

}  // namespace marnoth
