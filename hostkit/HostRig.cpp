#include "hostkit/HostRig.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

#include "hostkit/EventList.h"
#include "hostkit/FloatFormat.h"
#include "hostkit/HostContext.h"
#include "hostkit/HostGraph.h"
#include "hostkit/InputFeed.h"
#include "hostkit/MakeObject.h"
#include "hostkit/StreamSink.h"
#include "hostkit/StreamSource.h"
#include "platform/com/RefPtr.h"
#include "platform/graph/MediaType.h"
#include "seam/Limits.h"

namespace marnoth {

namespace {

constexpr std::int32_t kDefaultBlock = 512;
constexpr double kReferenceUnitsPerSecond = 10'000'000.0;  // of 100 ns

template <class Interface>
RefPtr<Interface> query(IUnknown& object, REFIID iid) {
    RefPtr<Interface> found;
    if (FAILED(object.QueryInterface(iid, found.putVoid()))) {
        throw std::runtime_error("the instrument lacks an interface");
    }
    return found;
}

RefPtr<IUnknown> makeInstrument(InstrumentMaker make) {
    RefPtr<IUnknown> instrument;
    if (FAILED(make(nullptr, IID_IUnknown, instrument.putVoid()))) {
        throw std::runtime_error("the instrument can't be made");
    }
    return instrument;
}

/// The first failure of several attempts.
class FirstFailure {
public:
    void note(HRESULT result) {
        if (SUCCEEDED(first_) && FAILED(result)) first_ = result;
    }
    HRESULT result() const { return first_; }

private:
    HRESULT first_ = S_OK;
};

bool areUsable(const AttachOptions& options) {
    const bool goodKey = !options.key || *options.key < 12;
    return TempoMap::isTempo(options.tempo) && goodKey && std::isfinite(options.converterRate) &&
           options.converterRate > 0.0;
}

}  // namespace

struct HostRig::Parts {
    explicit Parts(InstrumentMaker make);
    ~Parts();
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    HRESULT connectAll(std::span<const int> pins);
    HRESULT connectPin(int pin, const AM_MEDIA_TYPE& type);
    HRESULT growBuffers(std::int32_t frames);
    HRESULT sendBlock(std::int32_t frames);

    RefPtr<IUnknown> instrument;
    RefPtr<IBaseFilter> filter = query<IBaseFilter>(*instrument, IID_IBaseFilter);
    RefPtr<IGrooveSampler> sampler = query<IGrooveSampler>(*instrument, IID_IGrooveSampler);
    RefPtr<IKvxSoftSynth2> synth = query<IKvxSoftSynth2>(*instrument, IID_IKvxSoftSynth2);
    RefPtr<IKvxNotify> notify = query<IKvxNotify>(*instrument, IID_IKvxNotify);
    RefPtr<StreamSource> source = makeObject<StreamSource>();
    std::array<RefPtr<StreamSink>, kOutputPins> sinks;
    RefPtr<HostGraph> graph = makeObject<HostGraph>();  ///< goes first: it takes the connections apart

    RefPtr<TempoMap> tempoMap;  ///< null while no host is attached
    std::uint32_t rate = 44100;
    std::uint32_t channels = 2;
    std::int32_t block = kDefaultBlock;
    InputFeed feed;
    std::optional<REFERENCE_TIME> discontinuity;
};

HostRig::Parts::Parts(InstrumentMaker make) : instrument(makeInstrument(make)) {
    graph->AddFilter(source.get(), L"Source");
    graph->AddFilter(filter.get(), L"Instrument");
    for (int pin = 0; pin < kOutputPins; ++pin) {
        sinks[pin] = makeObject<StreamSink>();
        graph->AddFilter(sinks[pin].get(), (L"Sink " + std::to_wstring(pin)).c_str());
    }
}

HostRig::Parts::~Parts() {
    graph->stop();
    graph->disconnectAll();
    if (tempoMap) synth->DetachHost();
}

HRESULT HostRig::Parts::connectAll(std::span<const int> pins) {
    source->pin().setFormat(floatFormat(rate, channels));
    CMediaType type;
    const HRESULT made = type.SetWaveFormat(floatFormat(rate, channels));
    if (FAILED(made)) return made;
    FirstFailure failure;
    const std::vector<RefPtr<IPin>> all = pinsOf(*filter);
    failure.note(all.empty() ? VFW_E_NOT_FOUND
                             : graph->ConnectDirect(&source->pin(), all.front().get(), type.Get()));
    for (int pin : pins) failure.note(connectPin(pin, *type));
    return failure.result();
}

HRESULT HostRig::Parts::connectPin(int pin, const AM_MEDIA_TYPE& type) {
    // The instrument's input stands before its outputs.
    const std::vector<RefPtr<IPin>> all = pinsOf(*filter);
    if (pin < 0 || pin >= kOutputPins || pin + 1 >= static_cast<int>(all.size())) return E_INVALIDARG;
    return graph->ConnectDirect(all[pin + 1].get(), &sinks[pin]->pin(), &type);
}

HRESULT HostRig::Parts::growBuffers(std::int32_t frames) {
    FirstFailure failure;
    failure.note(source->pin().setBlock(frames));
    if (FAILED(failure.result())) return failure.result();
    for (const RefPtr<StreamSink>& sink : sinks) failure.note(sink->pin().growBlock(frames));
    return failure.result();
}

HRESULT HostRig::Parts::sendBlock(std::int32_t frames) {
    StreamBlock next;
    next.frames = frames;
    next.samples = feed.take(static_cast<std::size_t>(frames) * channels);
    next.silent = feed.isSilence();
    next.discontinuity = std::exchange(discontinuity, std::nullopt);
    return source->pin().send(next);
}

HostRig::HostRig(InstrumentMaker make) : parts_(std::make_unique<Parts>(make)) {}

HostRig::~HostRig() = default;

HRESULT HostRig::connect(std::uint32_t rate, std::uint32_t channels, std::span<const int> pins) {
    if (rate == 0 || channels == 0) return E_INVALIDARG;
    FirstFailure failure;
    failure.note(parts_->graph->stop());
    failure.note(parts_->graph->disconnectAll());
    if (FAILED(failure.result())) return failure.result();
    parts_->rate = rate;
    parts_->channels = channels;
    return parts_->connectAll(pins);
}

void HostRig::setTaker(int pin, AudioTaker taker) {
    if (pin < 0 || pin >= kOutputPins) throw std::invalid_argument("no such output pin");
    parts_->sinks[pin]->pin().setTaker(std::move(taker));
}

HRESULT HostRig::attach(const AttachOptions& options) {
    if (!areUsable(options)) return E_INVALIDARG;
    HostContext::Services services;
    services.tempoMap = makeObject<TempoMap>(options.tempo);
    if (options.converter) {
        services.timeConverter = makeObject<TimeConverter>(services.tempoMap, options.converterRate);
    }
    if (options.key) services.key = makeObject<KeyService>(*options.key);
    services.pins = makeObject<PinService>();

    RefPtr<HostContext> context = makeObject<HostContext>(services);
    const HRESULT hr = parts_->synth->AttachHost(context->Inner());
    if (FAILED(hr)) return hr;
    // The instrument has taken the reference over.
    context.detach();
    parts_->tempoMap = services.tempoMap;
    return hr;
}

HRESULT HostRig::detach() {
    parts_->tempoMap.reset();
    return parts_->synth->DetachHost();
}

bool HostRig::addTempo(std::int32_t tick, double beatsPerMinute) {
    return parts_->tempoMap && parts_->tempoMap->addChange(tick, beatsPerMinute);
}

HRESULT HostRig::setBlock(std::int32_t frames) {
    if (frames < 1) return E_INVALIDARG;
    const HRESULT hr = parts_->growBuffers(frames);
    if (SUCCEEDED(hr)) parts_->block = frames;
    return hr;
}

void HostRig::setSilenceFlag(bool offered) {
    parts_->source->pin().allocator().setSilenceOffered(offered);
    for (const RefPtr<StreamSink>& sink : parts_->sinks) sink->pin().allocator().setSilenceOffered(offered);
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
    return parts_->graph->pause();
}

HRESULT HostRig::run() {
    return parts_->graph->run();
}

HRESULT HostRig::stop() {
    return parts_->graph->stop();
}

HRESULT HostRig::render(std::int64_t frames) {
    if (frames < 0) return E_INVALIDARG;
    HRESULT hr = parts_->graph->state() == State_Running ? S_OK : run();
    while (frames > 0 && SUCCEEDED(hr)) {
        const auto next = static_cast<std::int32_t>(std::min<std::int64_t>(frames, parts_->block));
        hr = parts_->sendBlock(next);
        frames -= next;
    }
    return hr;
}

HRESULT HostRig::queueEvents(std::uint32_t port, std::span<const SynthEvent> events) {
    return parts_->synth->QueueEvents(0, 0, port, makeObject<EventList>(events).get());
}

HRESULT HostRig::queueRawInput(std::uint32_t port, std::span<const RawMidiEvent> events) {
    return parts_->synth->QueueRawInput(port, makeObject<RawEventList>(events).get());
}

HRESULT HostRig::save(IStream& stream) {
    return query<IPersistStream>(*parts_->instrument, IID_IPersistStream)->Save(&stream, 1);
}

HRESULT HostRig::load(IStream& stream) {
    return query<IPersistStream>(*parts_->instrument, IID_IPersistStream)->Load(&stream);
}

IGrooveSampler& HostRig::sampler() {
    return *parts_->sampler;
}

IKvxSoftSynth2& HostRig::synth() {
    return *parts_->synth;
}

IKvxNotify& HostRig::notify() {
    return *parts_->notify;
}

std::uint32_t HostRig::rate() const {
    return parts_->rate;
}

std::uint32_t HostRig::channels() const {
    return parts_->channels;
}

}  // namespace marnoth
