#include "shells/cli/RenderOutputs.h"

#include <cmath>
#include <utility>

#include "shellkit/files/RoomCheck.h"
#include "shellkit/text/PlainText.h"

namespace marnoth {

namespace {

double factor(double decibels) {
    return std::pow(10.0, decibels / 20);
}

double decibels(double factor) {
    return 20 * std::log10(factor);
}

/// With one decimal, of which none is less than nothing.
std::string decibelText(double factor) {
    const double rounded = std::round(10 * decibels(factor)) / 10;
    return fixed(rounded == 0 ? 0 : rounded, 1);
}

/// With its sign, so that it reads as a change: "+3.0 dB".
std::string changeText(double factor) {
    const std::string text = decibelText(factor);
    return (text.starts_with('-') ? "" : "+") + text + " dB";
}

}  // namespace

RenderOutputs::RenderOutputs(const FileForm& form, std::uint32_t rate, std::uint32_t channels,
                             std::int64_t frames)
    : form_(form),
      options_{rate, channels, {form.format, form.dither, factor(form.gainDecibels), 0}, frames},
      gain_(options_.encoding.gain) {}

RenderOutput& RenderOutputs::add(int pin, std::unique_ptr<OutputFile> file) {
    WaveOptions options = options_;
    options.encoding.ditherSequence = static_cast<std::uint32_t>(pin);
    files_.push_back(std::make_unique<RenderOutput>(std::move(file), options, form_.normalize));
    return *files_.back();
}

void RenderOutputs::checkRoom() const {
    const std::int64_t spool = form_.normalize ? options_.expectedFrames * options_.channels * 4 : 0;
    std::vector<PlannedFile> planned;
    for (const auto& file : files_)
        planned.push_back({file->file().name(), file->file().folder(),
                           waveFileBytes(options_.format(), options_.expectedFrames), spool});
    marnoth::checkRoom(planned);
}

void RenderOutputs::check() const {
    for (const auto& file : files_) file->check();
}

void RenderOutputs::finish(const std::function<void(const std::string&)>& warn) {
    check();
    if (form_.normalize) normalize(warn);
    for (const auto& file : files_) file->finish();
    for (const auto& file : files_)
        if (file->clipping().samples > 0) warn(tellClipping(*file));
}

void RenderOutputs::normalize(const std::function<void(const std::string&)>& warn) {
    const double peak = mix().peak();
    if (peak > 0 && std::isfinite(peak))
        gain_ *= highestLevel(options_.encoding) / peak;
    else
        warn(mix().file().name() + ": it isn't normalized: it is " +
             (peak > 0 ? "of infinite level" : "silent"));
    for (const auto& file : files_) file->setGain(gain_);
}

std::string RenderOutputs::tellMix() const {
    std::string text;
    if (form_.format != SampleFormat::float32) text = std::to_string(8 * bytesOf(form_.format)) + " bits, ";
    if (waveFormFor(options_.format(), options_.expectedFrames) == WaveForm::rf64) text += "RF64, ";
    const double peak = mix().peak() * gain_;
    text += peak > 0 ? "peak " + decibelText(peak) + " dBFS" : "silent";
    if (form_.normalize || form_.gainDecibels != 0) text += " after " + changeText(gain_);
    return text;
}

std::string RenderOutputs::tellClipping(const RenderOutput& output) const {
    const Clipping& clipping = output.clipping();
    const double over = decibels(clipping.peak);
    // Rounded to what is certainly enough.
    const double gain = (form_.normalize ? form_.gainDecibels : decibels(gain_)) - over;
    const std::string enough = fixed(std::floor(gain * 10) / 10, 1);
    return output.file().name() + ": " + std::to_string(clipping.samples) +
           (clipping.samples == 1 ? " sample clips" : " samples clip") + ", the first at " +
           fixed(static_cast<double>(clipping.firstFrame) / options_.rate, 3) + " s, by " + fixed(over, 1) +
           " dB at most: give " + (std::isfinite(over) ? "--gain " + enough + " or " : "") +
           (form_.normalize ? "" : "--normalize or ") + "--bits 32f";
}

}  // namespace marnoth
