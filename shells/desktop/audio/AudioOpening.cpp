#include "shells/desktop/audio/AudioOpening.h"

#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace marnoth {

/// What both threads know.
struct AudioOpening::Shared {
    struct Preparation {
        std::uint32_t rate = 0;
        std::int32_t mostFrames = 0;
    };

    std::mutex mutex;
    std::condition_variable changed;
    std::optional<Preparation> asked;
    std::optional<bool> answer;
    bool isOver = false;
    bool isLeft = false;  ///< nobody answers any more
    OpenAudio result;
    std::string failure;
    std::shared_ptr<AudioSwitch> audioSwitch;
    const void* entrance = nullptr;  ///< as the switch knows it
};

/// What a driver renders through. It asks the window's thread to prepare the client.
class AudioOpening::Entrance final : public AudioClient {
public:
    explicit Entrance(std::shared_ptr<Shared> shared)
        : shared_(std::move(shared)), switch_(shared_->audioSwitch) {}

    bool prepare(std::uint32_t rate, std::int32_t mostFrames) override {
        std::unique_lock lock(shared_->mutex);
        shared_->asked = {rate, mostFrames};
        shared_->answer.reset();
        shared_->changed.notify_all();
        shared_->changed.wait(lock, [this] { return shared_->answer || shared_->isLeft || shared_->isOver; });
        return shared_->answer.value_or(false);
    }
    void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) override {
        switch_->midi(this, frame, status, data1, data2);
    }
    void render(std::int32_t frames, OutputPointers outputs) override {
        switch_->render(this, frames, outputs);
    }
    void follow(const LiveTransport& told) override { switch_->follow(this, told); }
    void freewheel() override { switch_->freewheel(this); }
    MusicalPlace placeOf(std::int64_t frame) override { return switch_->placeOf(this, frame); }
    void dropout() override { switch_->dropout(this); }

private:
    const std::shared_ptr<Shared> shared_;
    const std::shared_ptr<AudioSwitch> switch_;
};

namespace {

/// What a thread of its own needs: it may outlive who started it.
struct Attempt {
    std::shared_ptr<AudioSystem> system;
    AudioWish wish;
    OpenAudio former;
    OpenAudio opened;
    std::string failure;

    void run() try {
        former = OpenAudio();
        opened.driver = system->open(wish, *opened.entrance);
    } catch (const std::exception& error) {
        failure = error.what();
    }
};

}  // namespace

AudioOpening::AudioOpening(std::shared_ptr<AudioSystem> system, const AudioWish& wish,
                           std::shared_ptr<AudioSwitch> audioSwitch, OpenAudio former)
    : shared_(std::make_shared<Shared>()) {
    shared_->audioSwitch = std::move(audioSwitch);
    auto entrance = std::make_shared<Entrance>(shared_);
    shared_->entrance = entrance.get();
    Attempt attempt{std::move(system), wish, std::move(former), OpenAudio(std::move(entrance)), {}};
    std::thread([shared = shared_, attempt = std::move(attempt)]() mutable {
        attempt.run();
        const std::lock_guard lock(shared->mutex);
        if (!shared->isLeft) shared->result = std::move(attempt.opened);
        shared->failure = std::move(attempt.failure);
        shared->isOver = true;
        shared->changed.notify_all();
    }).detach();
}

AudioOpening::~AudioOpening() {
    OpenAudio unused;
    const std::lock_guard lock(shared_->mutex);
    shared_->isLeft = true;
    unused = std::move(shared_->result);
    shared_->changed.notify_all();
}

bool AudioOpening::look() {
    std::unique_lock lock(shared_->mutex);
    const auto asked = std::exchange(shared_->asked, std::nullopt);
    if (!asked) return shared_->isOver;
    // The client may take its time.
    lock.unlock();
    const bool answer = shared_->audioSwitch->give(shared_->entrance, [&](AudioClient& client) {
        return client.prepare(asked->rate, asked->mostFrames);
    });
    lock.lock();
    shared_->answer = answer;
    shared_->changed.notify_all();
    return shared_->isOver;
}

bool AudioOpening::wait(std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!look()) {
        std::unique_lock lock(shared_->mutex);
        if (!shared_->changed.wait_until(lock, end, [this] { return shared_->asked || shared_->isOver; }))
            return false;
    }
    return true;
}

OpenAudio AudioOpening::take() {
    const std::lock_guard lock(shared_->mutex);
    return std::move(shared_->result);
}

std::string AudioOpening::failure() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->failure;
}

void closeAudio(OpenAudio audio, std::chrono::milliseconds patience) {
    std::packaged_task<void()> close([audio = std::move(audio)]() mutable { audio = OpenAudio(); });
    const std::future<void> isClosed = close.get_future();
    std::thread(std::move(close)).detach();
    isClosed.wait_for(patience);
}

}  // namespace marnoth
