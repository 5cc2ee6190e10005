#include "shellkit/listening/WavePlayer.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace marnoth {

namespace {

/// By which what is left of a cut wave falls in each frame: to a thousandth in 7 ms at 48000 Hz.
constexpr float kCutFall = 0.98f;
/// Below -120 dB it is over: without an end it would become smaller and smaller, at the price of small
/// numbers.
constexpr float kInaudible = 1e-6f;

}  // namespace

WavePlayer::~WavePlayer() {
    for (Sound* const sound : {coming_.load(), going_.load(), present_}) delete sound;
}

void WavePlayer::stop() {
    if (isPlaying()) hand({});
    ended_ = last_;
}

void WavePlayer::hand(RefPtr<CWaveMem> wave) {
    delete going_.exchange(nullptr);
    auto sound = std::make_unique<Sound>();
    sound->wave = std::move(wave);
    sound->number = ++last_;
    delete coming_.exchange(sound.release());
}

void WavePlayer::prepare(std::uint32_t rate) {
    if (rate != rate_) isCut_ = true;
    rate_ = rate;
}

void WavePlayer::takeOver() {
    // Until the other thread has taken the former one away, the next one waits.
    if (going_.load() != nullptr || coming_.load() == nullptr) return;
    going_.store(std::exchange(present_, coming_.exchange(nullptr)));
    position_ = 0;
    isCut_ = false;
}

std::int64_t WavePlayer::framesLeft() const {
    return present_ && present_->wave && !isCut_ ? present_->wave->frames - position_ : 0;
}

bool WavePlayer::isSilent() const {
    return framesLeft() == 0 &&
           std::ranges::all_of(edges_, [](float edge) { return std::abs(edge) < kInaudible; });
}

void WavePlayer::add(std::int32_t frames, std::span<float* const> outputs, float level) {
    takeOver();
    if (!isSilent()) {
        const std::int64_t heard = std::min<std::int64_t>(framesLeft(), frames);
        for (std::size_t side = 0; side < edges_.size(); ++side) {
            float unused = 0;
            float* const out = side < outputs.size() ? outputs[side] : nullptr;
            for (std::int32_t i = 0; i < frames; ++i) (out ? out[i] : unused) += next(side, i, heard, level);
        }
        position_ += heard;
    }
    if (present_ && framesLeft() == 0) ended_ = std::max(ended_.load(), present_->number);
}

float WavePlayer::next(std::size_t side, std::int64_t frame, std::int64_t heard, float level) {
    if (frame >= heard) return edges_[side] *= kCutFall;
    const SourceWave wave = present_->wave->view();
    const std::int64_t at = (position_ + frame) * wave.channels;
    const float value = wave.samples[at + (wave.channels == 2 ? static_cast<std::int64_t>(side) : 0)];
    return edges_[side] = value * level;
}

}  // namespace marnoth
