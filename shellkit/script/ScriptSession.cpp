#include "shellkit/script/ScriptSession.h"

#include <algorithm>
#include <utility>

#include "hostkit/FileStream.h"
#include "seam/Limits.h"
#include "shellkit/files/Failure.h"
#include "shellkit/script/ScriptWords.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

/// Blocks between two looks at whether the audio files still take what comes.
constexpr std::int64_t kBlocksAtOnce = 64;

std::string describe(std::uint32_t rate, std::uint32_t channels) {
    return std::to_string(channels) + " channels at " + std::to_string(rate) + " Hz";
}

}  // namespace

ScriptSession::ScriptSession(const ScriptStage& stage, const std::filesystem::path& scriptFolder,
                             const std::filesystem::path& outputFolder)
    : folder_(std::filesystem::current_path() / scriptFolder),
      outputFolder_(outputFolder),
      files_(outputFolder),
      rig_(stage.rig),
      makePage_(stage.makePage) {
    for (int pin = 0; pin < kOutputPins; ++pin)
        rig_.setTaker(pin, [this, pin](std::span<const float> samples, bool) { files_.take(pin, samples); });
}

ScriptSession::~ScriptSession() {
    for (int pin = 0; pin < kOutputPins; ++pin) rig_.setTaker(pin, {});
}

std::filesystem::path ScriptSession::file(std::string_view word) const {
    // Not made shorter: a file is known by its path as given.
    return (folder_ / pathFromUtf8(word)).make_preferred();
}

std::filesystem::path ScriptSession::outputFile(std::string_view word) const {
    return outputFolder_ / pathFromUtf8(word);
}

HRESULT ScriptSession::connect(std::uint32_t rate, std::uint32_t channels, const std::vector<int>& pins) {
    rate_ = rate;
    channels_ = channels;
    const HRESULT result = rig_.connect(rate, channels, pins);
    files_.connected(rate, channels, SUCCEEDED(result) ? pins : std::vector<int>{});
    return result;
}

void ScriptSession::setInputSilence() {
    input_.reset();
    rig_.setInputSilence();
}

void ScriptSession::setInputZeros() {
    input_.reset();
    rig_.setInputZeros();
}

void ScriptSession::setInputFile(std::string_view word) try {
    WaveFrames wave = readWaveFrames(file(word));
    input_ = InputFormat{std::string(word), wave.rate, wave.channels};
    checkInput();
    rig_.setInputFrames(std::move(wave.samples));
} catch (const FileFailure& failure) {
    throw ScriptError(failure.what());
}

HRESULT ScriptSession::setBlock(std::int32_t frames) {
    block_ = frames;
    return rig_.setBlock(frames);
}

HRESULT ScriptSession::render(std::int64_t frames) {
    checkInput();
    files_.begin();
    // Cutting at whole blocks changes nothing in the audio.
    const std::int64_t atOnce = kBlocksAtOnce * block_;
    HRESULT result = S_OK;
    do {
        const std::int64_t now = std::min(frames, atOnce);
        result = rig_.render(now);
        files_.check();
        frames -= now;
    } while (frames > 0 && SUCCEEDED(result));
    return result;
}

HRESULT ScriptSession::saveStream(std::string_view word) {
    RefPtr<FileStream> stream;
    if (FAILED(FileStream::open(file(word), FileMode::create, &stream)))
        throw FileFailure(std::string(word) + ": it can't be created");
    const HRESULT result = rig_.save(*stream);
    if (FAILED(stream->close())) throw FileFailure(std::string(word) + ": writing failed");
    return result;
}

HRESULT ScriptSession::loadStream(std::string_view word) {
    RefPtr<FileStream> stream;
    if (FAILED(FileStream::open(file(word), FileMode::read, &stream)))
        throw ScriptError(std::string(word) + ": it can't be opened");
    return rig_.load(*stream);
}

HeadlessPage& ScriptSession::page() {
    if (!page_) throw ScriptError("there is no page: `page open` comes first");
    return *page_;
}

void ScriptSession::openPage() {
    if (page_) throw ScriptError("the page is open already");
    page_ = makePage_(rig_.sampler(), folder_);
}

void ScriptSession::closePage() {
    page();
    page_.reset();
}

std::vector<std::string> ScriptSession::takeQuestions() {
    return page_ ? page_->window().takeLog() : std::vector<std::string>{};
}

void ScriptSession::checkInput() const {
    if (!input_ || !rate_ || (input_->rate == *rate_ && input_->channels == channels_)) return;
    throw ScriptError(input_->name + " has " + describe(input_->rate, input_->channels) +
                      ", the input pin has " + describe(*rate_, channels_));
}

}  // namespace marnoth
