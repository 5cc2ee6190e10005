#include "shells/desktop/playing/Preview.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "sample/ReadWave.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/FaultText.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

/// By which what is left of a cut sound falls in each frame: to a thousandth in 7 ms at 48000 Hz.
constexpr float kCutFall = 0.98f;

/// Throws `FileFailure`.
RefPtr<CWaveMem> readWhole(const std::string& file, std::uint32_t rate) {
    CAcidWave opened;
    openLoopFile(opened, file);
    if (opened.format.nSamplesPerSec == 0 ||
        opened.frameCount / static_cast<double>(opened.format.nSamplesPerSec) > Preview::kLongestSeconds)
        throw FileFailure("Files of more than five minutes can't be listened to here.");
    RefPtr<CWaveMem> wave;
    if (const LoadFault fault = readSamples(opened, rate, wave))
        throw FileFailure(utf8FromPath(pathFromUtf8(file).filename()) + ": " + whyNotLoaded(file, fault));
    return wave;
}

}  // namespace

Preview::~Preview() {
    for (Sound* const sound : {coming_.load(), going_.load(), present_}) delete sound;
}

std::string Preview::play(const std::string& file) {
    if (rate_ == 0) return "There is no sound to listen by.";
    try {
        hand(readWhole(file, rate_));
        return {};
    } catch (const FileFailure& failure) {
        return failure.what();
    } catch (const std::bad_alloc&) {
        return "There is no memory for the file.";
    }
}

void Preview::stop() {
    if (isPlaying()) hand({});
    ended_ = last_;
}

void Preview::hand(RefPtr<CWaveMem> wave) {
    delete going_.exchange(nullptr);
    auto sound = std::make_unique<Sound>();
    sound->wave = std::move(wave);
    sound->number = ++last_;
    delete coming_.exchange(sound.release());
}

bool Preview::prepare(std::uint32_t rate, std::int32_t mostFrames) {
    // What was read for another rate would sound otherwise.
    if (rate != rate_) isCut_ = true;
    rate_ = rate;
    return instrument_.prepare(rate, mostFrames);
}

void Preview::takeOver() {
    // Until the window's thread has taken the former one away, the next one waits.
    if (going_.load() != nullptr || coming_.load() == nullptr) return;
    going_.store(std::exchange(present_, coming_.exchange(nullptr)));
    position_ = 0;
    isCut_ = false;
}

std::int64_t Preview::framesLeft() const {
    return present_ && present_->wave && !isCut_ ? present_->wave->frames - position_ : 0;
}

void Preview::render(std::int32_t frames, OutputPointers outputs) {
    instrument_.render(frames, outputs);
    takeOver();
    const std::int64_t heard = std::min<std::int64_t>(framesLeft(), frames);
    for (std::size_t side = 0; side < edges_.size(); ++side) {
        float unused = 0;
        float* const out = side < outputs.size() ? outputs[side] : nullptr;
        for (std::int32_t i = 0; i < frames; ++i) (out ? out[i] : unused) += next(side, i, heard);
    }
    position_ += heard;
    if (present_ && framesLeft() == 0) ended_ = std::max(ended_.load(), present_->number);
}

float Preview::next(std::size_t side, std::int64_t frame, std::int64_t heard) {
    if (frame >= heard) return edges_[side] *= kCutFall;
    const SourceWave wave = present_->wave->view();
    const std::int64_t at = (position_ + frame) * wave.channels;
    const float value = wave.samples[at + (wave.channels == 2 ? static_cast<std::int64_t>(side) : 0)];
    return edges_[side] = value * level_.get();
}

}  // namespace marnoth
