#include "shells/desktop/playing/TakeRecorder.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "shellkit/files/Failure.h"
#include "shellkit/media/WaveWriter.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::uint16_t kStereo = 2;
/// Of a write, samples: what a disk that is full has no room for whole is lost.
constexpr std::size_t kPiece = std::size_t{1} << 16;

}  // namespace

class TakeRecorder::File {
public:
    File(const std::string& file, std::uint32_t rate) : writer_(pathFromUtf8(file), options(rate)) {}
    void write(std::span<const float> interleaved) { writer_.write(interleaved); }
    void finish() { writer_.finish(); }

private:
    static WaveOptions options(std::uint32_t rate) {
        WaveOptions options;
        options.channels = kStereo;
        options.rate = rate;
        return options;
    }

    WaveWriter writer_;
};

void TakeRecorder::start(const std::string& file, std::uint32_t rate) {
    stop();
    auto output = std::make_unique<File>(file, rate);
    read_ = written_.load();
    ends_ = failed_ = lost_ = false;
    failure_.clear();
    thread_ = std::thread([this, output = std::move(output)] { write(*output); });
    recording_ = true;
}

std::string TakeRecorder::stop() {
    recording_ = false;
    if (!thread_.joinable()) return {};
    ends_ = true;
    thread_.join();
    if (!failure_.empty()) return failure_;
    return lost_ ? "The disk was too slow: parts of the take are missing." : std::string();
}

bool TakeRecorder::hasRoom(std::size_t frames) const {
    const std::size_t waiting =
        written_.load(std::memory_order_relaxed) - read_.load(std::memory_order_acquire);
    return waiting + 2 * frames <= kRoom;
}

void TakeRecorder::awaitRoom(std::size_t frames) const {
    constexpr std::chrono::seconds kPatience{2};
    constexpr std::chrono::milliseconds kRest{1};
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (recording_ && !failed_ && !hasRoom(frames) && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(kRest);
}

void TakeRecorder::take(std::span<const float> left, std::span<const float> right) {
    if (!recording_ || failed_) return;
    if (!hasRoom(left.size())) {
        lost_ = true;
        return;
    }
    const std::size_t from = written_.load(std::memory_order_relaxed);
    for (std::size_t frame = 0; frame < left.size(); ++frame) {
        ring_[(from + 2 * frame) % kRoom] = left[frame];
        ring_[(from + 2 * frame + 1) % kRoom] = right[frame];
    }
    written_.store(from + 2 * left.size(), std::memory_order_release);
}

bool TakeRecorder::drain(File& file) {
    const std::size_t from = read_.load(std::memory_order_relaxed);
    const std::size_t to = written_.load(std::memory_order_acquire);
    if (from == to) return false;
    const std::size_t begin = from % kRoom;
    const std::size_t count = std::min({to - from, kRoom - begin, kPiece});
    file.write({ring_.data() + begin, count});
    read_.store(from + count, std::memory_order_release);
    return true;
}

void TakeRecorder::write(File& file) try {
    constexpr std::chrono::milliseconds kRest{50};
    while (!ends_) {
        if (!drain(file)) std::this_thread::sleep_for(kRest);
    }
    while (drain(file)) {
    }
    file.finish();
} catch (const FileFailure& failure) {
    failure_ = failure.what();
    failed_ = true;
    try {
        // What is written already needs no more room.
        file.finish();
        failure_ += "; the take up to there is kept";
    } catch (const FileFailure&) {
        failure_ += "; the take is lost";
    }
}

}  // namespace marnoth
