#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hostkit/CommandQueue.h"
#include "hostkit/LiveHost.h"
#include "hostkit/OwnTransport.h"
#include "shells/desktop/audio/AudioDriver.h"
#include "shells/desktop/audio/BlockTimes.h"
#include "shells/desktop/playing/MasterLevel.h"
#include "shells/desktop/playing/Metronome.h"
#include "shells/desktop/playing/Song.h"
#include "shells/desktop/playing/SongReader.h"
#include "shells/desktop/playing/TakeRecorder.h"

namespace marnoth {

/// The instrument as a program plays it: with a transport of its own, a song along with it, a metronome, the
/// level of the mix and takes of it.
///
/// Two threads call, the window's and the one that renders. What the window's thread wants is carried out at
/// the start of the next block.
class LiveInstrument final : public AudioClient {
public:
    /// `std::runtime_error` when there can be no instrument.
    LiveInstrument();

    // The window's thread.
    IGrooveSampler& sampler() { return host_.sampler(); }
    /// The instrument's state, whole; nothing when there is no memory for it. Any thread but the one that
    /// renders.
    std::optional<std::vector<std::uint8_t>> saveState();
    /// In place of all that there is. False when it is no state: then the instrument is empty.
    bool loadState(std::vector<std::uint8_t> state);
    void play() { command({Command::Kind::play}); }
    void stop() { command({Command::Kind::stop}); }
    /// 960 to the beat. Playing goes on from there.
    void locate(double tick) { command({Command::Kind::locate, tick}); }
    /// Beats per minute. Holds until a song's next change of tempo, where those are followed.
    void setTempo(double beatsPerMinute);
    /// The transport goes back to the start behind so many bars of four beats; 0 lets it go on.
    void setLoop(int bars) { command({Command::Kind::loop, static_cast<double>(bars)}); }
    void setMetronome(bool on) { metronomeIsOn_ = on; }
    /// Plays with the transport from now on; null plays none.
    void setSong(std::unique_ptr<const Song> song);
    /// It begins anew where it ends, unless a loop of bars is on; else the transport goes on behind it.
    void repeatSong(bool on) { command({Command::Kind::repeat, on ? 1.0 : 0.0}); }
    void followSongTempo(bool on) { command({Command::Kind::follow, on ? 1.0 : 0.0}); }
    /// A key of the computer or of the page: on channel 1, at once.
    void note(std::uint8_t key, bool on);
    void panic() { host_.panic(); }
    bool setKey(std::optional<std::uint32_t> key) { return host_.setKey(key); }

    bool isPlaying() const { return isPlaying_; }
    double tick() const { return tick_; }
    double tempo() const { return tempo_; }
    MasterLevel& master() { return master_; }
    TakeRecorder& recorder() { return recorder_; }
    std::uint32_t rate() const { return rate_; }
    /// How often something wasn't heard, and how many messages came.
    std::uint32_t dropouts() const { return dropouts_; }
    std::uint32_t messages() const { return messages_; }
    BlockTimes& blockTimes() { return times_; }

    // AudioClient.
    /// Another rate loads the project anew: what sounded has ended, but for the song's notes, which begin
    /// again. The same rate changes nothing.
    bool prepare(std::uint32_t rate, std::int32_t mostFrames) override;
    void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) override;
    void render(std::int32_t frames, OutputPointers outputs) override;
    void follow(const LiveTransport& told) override { told_ = told; }
    /// A take then gets all of the block, however slow its disk is.
    void freewheel() override { freewheels_ = true; }
    MusicalPlace placeOf(std::int64_t frame) override;
    void dropout() override { ++dropouts_; }

private:
    struct Command {
        enum class Kind : std::uint8_t { play, stop, locate, tempo, loop, repeat, follow, song };
        Kind kind = Kind::play;
        double value = 0.0;
        const Song* song = nullptr;
    };
    static constexpr std::int32_t kLongestPiece = 4096;  ///< frames
    using Pointers = std::array<float*, SeparateOutputs::kPointers>;

    bool connect(std::uint32_t rate);
    bool moveTo(std::uint32_t rate, IStream& project);
    void command(const Command& command) { commands_.push(command); }
    void take(const Command& command);
    /// The next piece, which begins `done` frames behind the block's start; its length.
    std::int32_t renderPiece(std::int32_t done, std::int32_t frames, OutputPointers outputs);
    Pointers outputsOfPiece(std::int32_t done, OutputPointers outputs);
    std::int32_t framesToCut(std::int32_t most) const;
    void playSong(double begin, double end);
    void followTempo(double begin, double end);
    void arrive(double tick);
    void goWith(const LiveTransport& told, std::int32_t frames);
    /// Whether another clock is so far from us that playing can't go on without a jump.
    bool strays(const LiveTransport& told, double tempo, std::int32_t frames) const;
    double tickOf(const LiveTransport& told) const;
    double withinLoop(double tick) const;
    bool followsSong() const { return followsTempo_ && !isTempoTold_; }
    double ticksPerFrame() const;
    double endOfLoop() const;

    LiveHost host_;
    std::atomic<std::uint32_t> rate_ = 0;  ///< frames per second; 0 before it was prepared
    CommandQueue<Command, 64> commands_;
    std::deque<std::unique_ptr<const Song>> songs_;  ///< the present one, and those on their way behind it
    std::uint64_t forgottenSongs_ = 0;               ///< how many before those
    std::atomic<std::uint64_t> takenSongs_ = 0;      ///< how many the thread that renders has taken up
    MasterLevel master_;
    TakeRecorder recorder_;
    std::atomic<bool> metronomeIsOn_ = false;
    std::atomic<bool> isPlaying_ = false;
    std::atomic<double> tick_ = 0.0;
    std::atomic<double> tempo_ = kDefaultLiveTempo;
    std::atomic<std::uint32_t> dropouts_ = 0;
    std::atomic<std::uint32_t> messages_ = 0;
    BlockTimes times_;

    // The thread that renders.
    OwnTransport transport_;
    SongReader song_;
    Metronome metronome_;
    std::array<float, kLongestPiece> left_{};
    std::array<float, kLongestPiece> right_{};
    double bars_ = 0.0;                    ///< of the loop; 0 for none
    double loopEnd_ = SongReader::kNever;  ///< ticks
    bool repeatsSong_ = false;
    bool followsTempo_ = true;
    std::optional<LiveTransport> told_;     ///< of a transport that is followed, for the next block
    std::optional<std::int64_t> expected_;  ///< the frame that it comes to if nobody moves it
    bool isTempoTold_ = false;              ///< and it has a tempo, which then is ours
    bool freewheels_ = false;               ///< the next block may take its time
};

}  // namespace marnoth
