#include "shellkit/media/RenderOutput.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace marnoth {

RenderOutput::RenderOutput(std::unique_ptr<OutputFile> file, const WaveOptions& options, bool gainComesLater)
    : writer_(std::move(file), options) {
    if (gainComesLater) spool_ = std::make_unique<FloatSpool>(writer_.output().makeSpool());
}

void RenderOutput::take(std::span<const float> samples) noexcept {
    if (failure_) return;
    for (const float sample : samples) peak_ = std::max(peak_, std::abs(sample));
    try {
        if (!spool_)
            writer_.write(samples);
        else if (!spool_->write(samples))
            writer_.output().fail("writing its temporary file failed");
    } catch (...) {
        failure_ = std::current_exception();
    }
}

void RenderOutput::check() const {
    if (failure_) std::rethrow_exception(failure_);
}

void RenderOutput::finish() {
    if (spool_ && !spool_->passOn([this](std::span<const float> samples) { writer_.write(samples); }))
        writer_.output().fail("its temporary file can't be read again");
    spool_.reset();
    writer_.finish();
}

}  // namespace marnoth
