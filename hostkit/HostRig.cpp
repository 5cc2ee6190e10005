#include "hostkit/HostRig.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "hostkit/EventList.h"
#include "hostkit/InputFeed.h"
#include "hostkit/InstrumentGraph.h"
#include "hostkit/MakeObject.h"
#include "hostkit/TempoMap.h"
#include "platform/com/Guarded.h"

namespace marnoth {

namespace {

constexpr std::int32_t kDefaultBlock = 512;
constexpr double kReferenceUnitsPerSecond = 10'000'000.0;  // of 100 ns

bool areUsable(const AttachOptions& options) {
    const bool goodKey = !options.key || *options.key < 12 || *options.key == kNoProjectKey;
    return TempoMap::isTempo(options.tempo) && goodKey && std::isfinite(options.converterRate) &&
           options.converterRate > 0.0;
}

}  // namespace

struct HostRig::Parts {
    Parts(InstrumentMaker make, GraphMaker makeGraph) : instrument(make, makeGraph) {}

    HRESULT attach(const AttachOptions& options);
    HRESULT sendBlock(std::int32_t frames);

    InstrumentGraph instrument;
    RefPtr<TempoMap> tempoMap;  ///< null while no host is attached
    std::int32_t block = kDefaultBlock;
    InputFeed feed;
    std::optional<REFERENCE_TIME> discontinuity;
};

HRESULT HostRig::Parts::sendBlock(std::int32_t frames) {
    StreamBlock next;
    next.frames = frames;
    next.samples = feed.take(static_cast<std::size_t>(frames) * instrument.channels());
    next.silent = feed.isSilence();
    next.discontinuity = std::exchange(discontinuity, std::nullopt);
    return instrument.send(next);
}

HostRig::HostRig(InstrumentMaker make, GraphMaker makeGraph)
    : parts_(std::make_unique<Parts>(make, makeGraph)) {}

HostRig::~HostRig() = default;

HRESULT HostRig::connect(std::uint32_t rate, std::uint32_t channels, std::span<const int> pins) {
    return parts_->instrument.connect(rate, channels, pins);
}

void HostRig::setTaker(int pin, AudioTaker taker) {
    if (pin < 0 || pin >= kOutputPins) throw std::invalid_argument("no such output pin");
    parts_->instrument.sink(pin).setTaker(std::move(taker));
}

HRESULT HostRig::attach(const AttachOptions& options) {
    if (!areUsable(options)) return E_INVALIDARG;
    return guarded([&] { return parts_->attach(options); });
}

HRESULT HostRig::Parts::attach(const AttachOptions& options) {
    RefPtr<TempoMap> made = makeObject<TempoMap>(options.tempo);
    HostContext::Services services;
    services.tempoMap = RefPtr<TempoService>(made.get());
    if (options.converter) {
        services.timeConverter = makeObject<TimeConverter>(services.tempoMap, options.converterRate);
    }
    if (options.key) services.key = makeObject<KeyService>(*options.key);
    services.pins = makeObject<PinService>();

    const HRESULT hr = instrument.attach(services);
    if (SUCCEEDED(hr)) tempoMap = std::move(made);
    return hr;
}

HRESULT HostRig::detach() {
    parts_->tempoMap.reset();
    return parts_->instrument.detach();
}

bool HostRig::addTempo(std::int32_t tick, double beatsPerMinute) {
    return parts_->tempoMap && parts_->tempoMap->addChange(tick, beatsPerMinute);
}

HRESULT HostRig::setBlock(std::int32_t frames) {
    if (frames < 1) return E_INVALIDARG;
    const HRESULT hr = parts_->instrument.growBuffers(frames);
    if (SUCCEEDED(hr)) parts_->block = frames;
    return hr;
}

void HostRig::setSilenceFlag(bool offered) {
    parts_->instrument.setSilenceFlag(offered);
}

void HostRig::setInputSilence() {
    parts_->feed.setSilence();
}

void HostRig::setInputZeros() {
    parts_->feed.setFrames({});
}

void HostRig::setInputFrames(std::vector<float> interleaved) {
    parts_->feed.setFrames(std::move(interleaved));
}

void HostRig::setDiscontinuity(double seconds) {
    parts_->discontinuity = roundedToInt64(seconds * kReferenceUnitsPerSecond);
}

HRESULT HostRig::pause() {
    return parts_->instrument.graph().pause();
}

HRESULT HostRig::run() {
    return parts_->instrument.graph().run();
}

HRESULT HostRig::stop() {
    return parts_->instrument.graph().stop();
}

HRESULT HostRig::render(std::int64_t frames) {
    if (frames < 0) return E_INVALIDARG;
    HRESULT hr = parts_->instrument.graph().state() == State_Running ? S_OK : run();
    while (frames > 0 && SUCCEEDED(hr)) {
        const auto next = static_cast<std::int32_t>(std::min<std::int64_t>(frames, parts_->block));
        hr = parts_->sendBlock(next);
        frames -= next;
    }
    return hr;
}

HRESULT HostRig::queueEvents(std::uint32_t port, std::span<const SynthEvent> events) {
    return guarded([&] {
        return parts_->instrument.synth().QueueEvents(0, 0, port, makeObject<EventList>(events).get());
    });
}

HRESULT HostRig::queueRawInput(std::uint32_t port, std::span<const RawMidiEvent> events) {
    return guarded([&] {
        return parts_->instrument.synth().QueueRawInput(port, makeObject<RawEventList>(events).get());
    });
}

HRESULT HostRig::save(IStream& stream) {
    return parts_->instrument.save(stream);
}

HRESULT HostRig::load(IStream& stream) {
    return parts_->instrument.load(stream);
}

IGrooveSampler& HostRig::sampler() {
    return parts_->instrument.sampler();
}

IKvxSoftSynth2& HostRig::synth() {
    return parts_->instrument.synth();
}

IKvxNotify& HostRig::notify() {
    return parts_->instrument.notify();
}

std::uint32_t HostRig::rate() const {
    return parts_->instrument.rate();
}

std::uint32_t HostRig::channels() const {
    return parts_->instrument.channels();
}

}  // namespace marnoth
