#include "hostkit/LiveHost.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <utility>

#include "hostkit/InstrumentGraph.h"
#include "hostkit/InstrumentOptions.h"
#include "hostkit/LiveCommands.h"
#include "hostkit/LivePieces.h"
#include "hostkit/MakeObject.h"
#include "hostkit/OwnTransport.h"
#include "hostkit/StreamPosition.h"
#include "hostkit/TransportFollower.h"
#include "hostkit/UnderLock.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kKeys = 12;
constexpr std::uint32_t kChannels = 2;

bool areUsable(const LiveSetup& setup) {
    const bool goodRate = setup.rate >= 1 && setup.rate <= kHighestStreamRate;
    const auto isOutput = [](int output) { return output >= 0 && output < kOutputPins; };
    return goodRate && setup.mostFrames >= 1 &&
           std::all_of(setup.outputs.begin(), setup.outputs.end(), isOutput);
}

}  // namespace

struct LiveHost::Parts {
    explicit Parts(InstrumentMaker make);

    HRESULT connect(const LiveSetup& setup);
    HRESULT process(std::int32_t frames, const LiveTransport* told, OutputPointers pointers);
    void takeCommands();
    void take(const LiveCommand& command);
    void follow(LiveTransport transport);
    HRESULT render(std::int32_t frames);
    HRESULT renderPiece(std::int32_t frame, std::int32_t frames);
    void stopSound();
    void startAnew();

    InstrumentGraph instrument;
    RefPtr<LiveTempoMap> tempoMap = makeObject<LiveTempoMap>(kDefaultLiveTempo);
    RefPtr<TimeConverter> converter =
        makeObject<TimeConverter>(RefPtr<TempoService>(tempoMap.get()), 44100.0);
    RefPtr<KeyService> key = makeObject<KeyService>(kNoProjectKey);
    RefPtr<RawEventBatch> batch = makeObject<RawEventBatch>();
    RefPtr<UnderLock> lock = makeObject<UnderLock>();  ///< for changes of the tempo map
    LiveCommands commands;
    OwnTransport own;
    TransportFollower follower{tempoMap};
    LivePieces pieces;
    SeparateOutputs outputs;
    std::int32_t mostFrames = 0;
    bool connected = false;
    bool moved = false;  ///< the next piece isn't where the last one ended
    std::atomic<std::uint32_t> nextKey = kNoProjectKey;
    std::atomic<bool> playing = false;
    std::atomic<double> tick = 0.0;
};

LiveHost::Parts::Parts(InstrumentMaker make) : instrument(make) {
    HostContext::Services services;
    services.tempoMap = RefPtr<TempoService>(tempoMap.get());
    services.timeConverter = converter;
    services.key = key;
    services.pins = makeObject<PinService>();
    if (FAILED(instrument.attach(services))) throw std::runtime_error("the instrument can't be attached");
    if (FAILED(setSteady(instrument.sampler(), true)))
        throw std::runtime_error("the instrument has no steady mode");
    // What isn't delivered is silence here anyway, and sixteen idle pads cost as good as nothing.
    if (FAILED(setSparse(instrument.sampler(), true)))
        throw std::runtime_error("the instrument has no sparse outputs");
    for (int pin = 0; pin < kOutputPins; ++pin)
        instrument.sink(pin).setTaker(
            [this, pin](std::span<const float> samples, bool silent) { outputs.take(pin, samples, silent); });
}

HRESULT LiveHost::Parts::connect(const LiveSetup& setup) {
    if (!areUsable(setup)) return E_INVALIDARG;
    connected = false;
    mostFrames = setup.mostFrames;
    converter->setRate(setup.rate);
    HRESULT hr = instrument.growBuffers(mostFrames);
    if (SUCCEEDED(hr)) hr = instrument.connect(setup.rate, kChannels, setup.outputs);
    if (SUCCEEDED(hr)) hr = instrument.graph().run();
    connected = SUCCEEDED(hr);
    startAnew();
    return hr;
}

/// Nothing sounds, not even as it fades out, the stream stands at its start, and the transport goes on from
/// where it was.
void LiveHost::Parts::startAnew() {
    setSteady(instrument.sampler(), false);
    instrument.synth().StopPlayback();
    setSteady(instrument.sampler(), true);
    pieces.forgetSounding();
    lock->run(instrument.synth(), [this] { follower.restart(instrument.rate()); });
    own.locate(own.tick());
    moved = true;
}

HRESULT LiveHost::Parts::process(std::int32_t frames, const LiveTransport* told, OutputPointers pointers) {
    if (frames < 0) return E_INVALIDARG;
    outputs.begin(pointers, frames);
    if (!connected) return VFW_E_NOT_CONNECTED;
    if (frames == 0) return S_OK;
    takeCommands();
    key->setKey(nextKey);
    follow(told ? *told : own.next(instrument.rate()));
    const HRESULT hr = render(frames);
    pieces.advance(frames);
    follower.advance(frames);
    playing = follower.playing();
    if (playing) tick = follower.tick();
    if (!told) own.advance(frames, tick);
    if (!playing) tick = own.tick();
    if (FAILED(hr)) startAnew();
    return hr;
}

void LiveHost::Parts::takeCommands() {
    commands.takeAll([this](const LiveCommand& command) { take(command); });
}

void LiveHost::Parts::take(const LiveCommand& command) {
    switch (command.kind) {
        case LiveCommand::Kind::message:
            pieces.add(command.message);
            break;
        case LiveCommand::Kind::play:
            own.play();
            break;
        case LiveCommand::Kind::stop:
            own.stop();
            break;
        case LiveCommand::Kind::locate:
            own.locate(command.value);
            break;
        case LiveCommand::Kind::tempo:
            own.setTempo(command.value);
            break;
    }
}

void LiveHost::Parts::follow(LiveTransport transport) {
    using Change = TransportFollower::Change;
    if (!transport.tempo) transport.tempo = own.tempo();
    // What sounds fades out by the time that it sounded in, which is over with the change.
    if (follower.endsSound(transport)) instrument.synth().StopPlayback();
    Change change{};
    lock->run(instrument.synth(), [&] { change = follower.follow(transport); });
    if (change == Change::started) instrument.synth().StartPlayback(roundedToInt32(follower.tick()));
    if (change == Change::started || change == Change::stopped) pieces.forgetSounding();
    if (change == Change::started || change == Change::moved) moved = true;
}

HRESULT LiveHost::Parts::render(std::int32_t frames) {
    HRESULT hr = S_OK;
    for (std::int32_t frame = 0; frame < frames && SUCCEEDED(hr);) {
        const LivePiece piece = pieces.next(frame, *batch);
        const std::int32_t length = std::min({piece.end - frame, frames - frame, mostFrames});
        if (!batch->events().empty()) hr = instrument.synth().QueueRawInput(0, batch.get());
        if (piece.stopsSound) stopSound();
        if (SUCCEEDED(hr)) hr = renderPiece(frame, length);
        frame += length;
    }
    return hr;
}

void LiveHost::Parts::stopSound() {
    instrument.sampler().StopPad(-1);
    instrument.sampler().StopBinAudition(-1);
}

HRESULT LiveHost::Parts::renderPiece(std::int32_t frame, std::int32_t frames) {
    outputs.moveTo(frame);
    StreamBlock block;
    block.frames = frames;
    block.silent = true;
    if (std::exchange(moved, false)) block.discontinuity = streamTimeOf(follower.frame(), instrument.rate());
    return instrument.send(block);
}

LiveHost::LiveHost(InstrumentMaker make) : parts_(std::make_unique<Parts>(make)) {}

LiveHost::~LiveHost() = default;

HRESULT LiveHost::connect(const LiveSetup& setup) {
    return parts_->connect(setup);
}

HRESULT LiveHost::save(IStream& stream) {
    return parts_->instrument.save(stream);
}

HRESULT LiveHost::load(IStream& stream) {
    const HRESULT hr = parts_->instrument.load(stream);
    // A load from a stream leaves it as it was whether any pad is solo; setting a pad's solo finds it out.
    std::uint32_t solo = 0;
    sampler().GetPadSolo(0, &solo);
    sampler().SetPadSolo(0, solo);
    return hr;
}

IGrooveSampler& LiveHost::sampler() {
    return parts_->instrument.sampler();
}

bool LiveHost::addMessage(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    const auto message = readLiveMessage(frame, status, data1, data2);
    return !message || parts_->pieces.add(*message);
}

HRESULT LiveHost::process(std::int32_t frames, const LiveTransport& transport, OutputPointers outputs) {
    return parts_->process(frames, &transport, outputs);
}

HRESULT LiveHost::process(std::int32_t frames, OutputPointers outputs) {
    return parts_->process(frames, nullptr, outputs);
}

bool LiveHost::send(std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    const auto message = readLiveMessage(0, status, data1, data2);
    return !message || parts_->commands.push({LiveCommand::Kind::message, *message});
}

bool LiveHost::play() {
    return parts_->commands.push({LiveCommand::Kind::play});
}

bool LiveHost::stop() {
    return parts_->commands.push({LiveCommand::Kind::stop});
}

bool LiveHost::locate(double tick) {
    return parts_->commands.push({LiveCommand::Kind::locate, {}, tick});
}

bool LiveHost::setTempo(double beatsPerMinute) {
    return parts_->commands.push({LiveCommand::Kind::tempo, {}, beatsPerMinute});
}

void LiveHost::panic() {
    parts_->commands.push({LiveCommand::Kind::message, {.kind = LiveMessage::Kind::soundOff}});
}

bool LiveHost::setKey(std::optional<std::uint32_t> key) {
    if (key && *key >= kKeys) return false;
    parts_->nextKey = key ? keyOfLoops(*key) : kNoProjectKey;
    return true;
}

bool LiveHost::isPlaying() const {
    return parts_->playing;
}

double LiveHost::tick() const {
    return parts_->tick;
}

}  // namespace marnoth
