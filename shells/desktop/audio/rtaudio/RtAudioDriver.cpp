#include "shells/desktop/audio/rtaudio/RtAudioDriver.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace marnoth {

namespace {

constexpr unsigned kUsualFrames = 256;
constexpr std::uint32_t kUsualRate = 48000;
/// Blocks on their way to be heard.
constexpr unsigned kBuffers = 4;
/// Of the thread that renders, where the system allows it: below the system's own.
constexpr int kPriority = 65;

/// RtAudio could ask for it, and would tell on standard error.
void askForPriority() {
    const sched_param parameters{kPriority};
    // Where the system doesn't allow it the thread is one like others.
    pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters);
}

/// RtAudio tells of errors on the thread that it renders on, but not of which stream.
thread_local StreamHealth* threadsStream = nullptr;

void noteError(RtAudioError::Type type, const std::string& /*text*/) {
    if (!threadsStream) return;
    if (type == RtAudioError::WARNING || type == RtAudioError::DEBUG_WARNING)
        threadsStream->warn();
    else
        threadsStream->fail();
}

bool canPlayAt(const AudioDevice& device, std::uint32_t rate) {
    return device.rates.empty() || std::ranges::count(device.rates, rate) > 0;
}

std::uint32_t rateFor(const AudioDevice& device, std::uint32_t wish) {
    if (wish != 0 && !canPlayAt(device, wish))
        throw std::runtime_error(device.name + " can't play at " + std::to_string(wish) +
                                 " frames a second.");
    for (const std::uint32_t rate : {wish, device.rate, kUsualRate})
        if (rate != 0 && canPlayAt(device, rate)) return rate;
    return device.rates.back();
}

}  // namespace

RtAudioDriver::RtAudioDriver(std::unique_ptr<RtAudio> audio, unsigned number,
                             std::shared_ptr<const AudioDevice> device, const AudioWish& wish,
                             AudioClient& client)
    : audio_(std::move(audio)),
      client_(client),
      device_(std::move(device)),
      rate_(rateFor(*device_, wish.rate)),
      frames_(wish.frames > 0 ? static_cast<unsigned>(wish.frames) : kUsualFrames) {
    try {
        openStream(number);
    } catch (const RtAudioError&) {
        // ALSA's own devices are for one program at a time.
        const bool isShared = audio_->getCurrentApi() != RtAudio::LINUX_ALSA;
        throw std::runtime_error(name() + " can't be opened" +
                                 (isShared ? "." : ": another program may hold it."));
    }
    const bool isReady = client_.prepare(rate_, frames());
    if (isReady) audio_->startStream();
    if (isReady && audio_->isStreamRunning()) return;
    close();
    throw std::runtime_error(isReady ? name() + " doesn't start." : "The instrument can't be started.");
}

void RtAudioDriver::openStream(unsigned number) {
    RtAudio::StreamParameters output;
    output.deviceId = number;
    output.nChannels = 2;
    RtAudio::StreamOptions options;
    options.flags = RTAUDIO_NONINTERLEAVED;
    options.numberOfBuffers = kBuffers;
    options.streamName = "Marnoth";
    audio_->openStream(
        &output, nullptr, RTAUDIO_FLOAT32, rate_, &frames_,
        [](void* samples, void*, unsigned frames, double, RtAudioStreamStatus status, void* self) {
            return static_cast<RtAudioDriver*>(self)->play(static_cast<float*>(samples), frames,
                                                           (status & RTAUDIO_OUTPUT_UNDERFLOW) != 0);
        },
        this, &options, noteError);
}

RtAudioDriver::~RtAudioDriver() {
    close();
}

void RtAudioDriver::close() try {
    if (audio_->isStreamRunning()) audio_->abortStream();
    if (audio_->isStreamOpen()) audio_->closeStream();
} catch (const RtAudioError&) {
    // What can't be closed any more is closed.
}

int RtAudioDriver::play(float* output, unsigned frames, bool isUnderrun) {
    constexpr int kGoOn = 0;
    constexpr int kEnd = 2;
    if (threadsStream != &health_) askForPriority();
    threadsStream = &health_;
    const StreamHealth::Block state = health_.block(isUnderrun);
    if (state == StreamHealth::Block::lost) {
        std::fill_n(output, std::size_t{2} * frames, 0.0f);
        return kEnd;
    }
    if (state == StreamHealth::Block::dropped) client_.dropout();
    const std::array<float*, 2> mix{output, output + frames};
    client_.render(static_cast<std::int32_t>(frames), mix);
    return kGoOn;
}

std::string RtAudioDriver::trouble() const {
    return health_.isLost() ? name() + " has gone." : std::string();
}

}  // namespace marnoth
