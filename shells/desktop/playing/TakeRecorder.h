#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace marnoth {

/// Writes what is heard into a WAV file of 32-bit floats while it plays. The thread that renders only puts
/// samples into a ring; a thread of its own writes. What stands in the file is whole at any end of it but a
/// crash; a disk that fills up ends the take with what there is.
class TakeRecorder {
public:
    TakeRecorder() = default;
    ~TakeRecorder() { stop(); }
    TakeRecorder(const TakeRecorder&) = delete;
    TakeRecorder& operator=(const TakeRecorder&) = delete;

    // The window's thread.
    /// Throws `FileFailure` when the file can't be made. A take that is under way ends first.
    void start(const std::string& file, std::uint32_t rate);
    /// Ends the take and gives what went wrong with it, a sentence; empty when it is whole.
    std::string stop();
    bool isRecording() const { return recording_; }
    /// The take has ended by itself: `stop` says why.
    bool hasFailed() const { return failed_; }

    // The thread that renders.
    /// Waits until the ring has room for so many frames, though not for ever for a disk that hangs. Only for
    /// blocks that nobody hears, which may come faster than a disk takes them.
    void awaitRoom(std::size_t frames) const;
    /// Both are as long; beyond the ring's room they are lost, and `stop` says so.
    void take(std::span<const float> left, std::span<const float> right);

private:
    class File;

    void write(File& file);
    bool drain(File& file);
    bool hasRoom(std::size_t frames) const;

    /// Some five seconds at 48000 Hz.
    static constexpr std::size_t kRoom = std::size_t{1} << 19;

    std::vector<float> ring_ = std::vector<float>(kRoom);  ///< interleaved
    std::atomic<std::size_t> written_ = 0;                 ///< by the thread that renders, samples
    std::atomic<std::size_t> read_ = 0;
    std::atomic<bool> recording_ = false;
    std::atomic<bool> ends_ = false;
    std::atomic<bool> failed_ = false;
    std::atomic<bool> lost_ = false;
    std::string failure_;  ///< of the thread that writes, once it has been joined
    std::thread thread_;
};

}  // namespace marnoth
