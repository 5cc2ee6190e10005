#include "shells/lv2/Plugin.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "host/CreateInstance.h"
#include "hostkit/LiveRate.h"

namespace marnoth {

namespace {

/// Longer blocks come in pieces of this length, which nobody hears.
constexpr std::int32_t kMostFrames = 1024;

std::uint32_t wholeRate(double rate) {
    constexpr double kMost = std::numeric_limits<std::uint32_t>::max();
    return rate >= 1.0 && rate <= kMost ? static_cast<std::uint32_t>(std::llround(rate)) : 0;
}

}  // namespace

Plugin::Plugin(double rate, std::span<const int> outputs, const LV2_URID_Map& map,
               const LV2_Feature* const* features)
    : urids_(map), log_(features, urids_.logError), host_(createInstrument), outputs_(outputs), rate_(rate) {
    // Hosts restore a state before they activate, and it is loaded at the rate of the connection.
    if (!prepare()) throw std::runtime_error("the instrument can't be connected at this rate");
}

void Plugin::connect(std::uint32_t port, void* data) {
    if (port == kEventsIn) eventsIn_ = static_cast<const LV2_Atom_Sequence*>(data);
    if (port == kEventsOut) eventsOut_ = static_cast<LV2_Atom_Sequence*>(data);
    const std::size_t audio = std::size_t{port} - kFirstAudioOut;
    if (port >= kFirstAudioOut && audio < 2 * outputs_.size()) audio_[audio] = static_cast<float*>(data);
}

bool Plugin::prepare() {
    const std::uint32_t rate = wholeRate(rate_);
    if (FAILED(connectWithProject(host_, {rate, kMostFrames, outputs_}, connectedRate_))) return false;
    connectedRate_ = rate;
    position_.setRate(rate);
    return true;
}

void Plugin::activate() {
    if (!prepare()) log_.error("the instrument can't be connected anew");
}

void Plugin::run(std::uint32_t frames) {
    done_ = 0;
    const auto count = static_cast<std::int32_t>(std::min<std::uint32_t>(frames, INT32_MAX));
    takeEvents(count);
    renderTo(count);
    writeEvents();
}

void Plugin::takeEvents(std::int32_t frames) {
    if (!eventsIn_) return;
    forEachEvent(*eventsIn_, urids_, [&](std::int64_t frame, const AtomView& event) {
        // One at or behind the end would wait for a block that it isn't meant for.
        const std::int64_t last = std::max(done_, frames - 1);
        take(static_cast<std::int32_t>(std::clamp<std::int64_t>(frame, done_, last)), event);
    });
}

void Plugin::take(std::int32_t frame, const AtomView& event) {
    if (event.type == urids_.midiEvent && !event.body.empty()) {
        const auto byte = [&](std::size_t at) {
            return at < event.body.size() ? event.body[at] : std::uint8_t{0};
        };
        host_.addMessage(frame - done_, byte(0), byte(1), byte(2));
    }
    if (objectType(event, urids_) != urids_.timePosition) return;
    renderTo(frame);
    position_.take(positionIn(event, urids_));
}

void Plugin::renderTo(std::int32_t frame) {
    std::array<float*, SeparateOutputs::kPointers> piece{};
    std::ranges::transform(audio_, piece.begin(),
                           [this](float* output) { return output ? output + done_ : nullptr; });
    host_.process(frame - done_, position_.next(), piece);
    position_.advance(frame - done_);
    done_ = frame;
}

void Plugin::writeEvents() {
    if (!eventsOut_ || eventsOut_->atom.size < sizeof(LV2_Atom_Sequence_Body)) return;
    eventsOut_->atom = {sizeof(LV2_Atom_Sequence_Body), urids_.atomSequence};
    eventsOut_->body = {};
}

}  // namespace marnoth
