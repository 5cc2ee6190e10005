#include "hostkit/InstrumentGraph.h"

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "hostkit/FloatFormat.h"
#include "hostkit/HostGraph.h"
#include "hostkit/MakeObject.h"
#include "platform/com/Guarded.h"
#include "platform/graph/MediaType.h"

namespace marnoth {

namespace {

void need(HRESULT result, const char* failure) {
    if (result == E_OUTOFMEMORY) throw std::bad_alloc();
    if (FAILED(result)) throw std::runtime_error(failure);
}

template <class Interface>
RefPtr<Interface> query(IUnknown& object, REFIID iid, const char* failure) {
    RefPtr<Interface> found;
    need(object.QueryInterface(iid, found.putVoid()), failure);
    return found;
}

RefPtr<IUnknown> makeInstrument(InstrumentMaker make) {
    RefPtr<IUnknown> instrument;
    need(make(nullptr, IID_IUnknown, instrument.putVoid()), "the instrument can't be made");
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

}  // namespace

InstrumentGraph::InstrumentGraph(InstrumentMaker make, GraphMaker makeGraph)
    : instrument_(makeInstrument(make)),
      filter_(query<IBaseFilter>(*instrument_, IID_IBaseFilter, "the instrument has no IBaseFilter")),
      sampler_(
          query<IGrooveSampler>(*instrument_, IID_IGrooveSampler, "the instrument has no IGrooveSampler")),
      synth_(query<IKvxSoftSynth2>(*instrument_, IID_IKvxSoftSynth2, "the instrument has no IKvxSoftSynth2")),
      notify_(query<IKvxNotify>(*instrument_, IID_IKvxNotify, "the instrument has no IKvxNotify")),
      source_(makeObject<StreamSource>()),
      graph_(makeGraph()) {
    add(*source_, L"Source");
    add(*filter_, L"Instrument");
    for (std::size_t pin = 0; pin < sinks_.size(); ++pin) {
        sinks_[pin] = makeObject<StreamSink>();
        add(*sinks_[pin], (L"Sink " + std::to_wstring(pin)).c_str());
    }
}

void InstrumentGraph::add(IBaseFilter& filter, LPCWSTR name) {
    need(graph_->add(filter, name), "the graph can't be built");
}

InstrumentGraph::~InstrumentGraph() {
    graph_->stop();
    graph_->disconnectAll();
    if (attached_) synth_->DetachHost();
}

HRESULT InstrumentGraph::connect(std::uint32_t rate, std::uint32_t channels, std::span<const int> pins) {
    if (rate == 0 || channels == 0) return E_INVALIDARG;
    FirstFailure failure;
    failure.note(graph_->stop());
    failure.note(graph_->disconnectAll());
    if (FAILED(failure.result())) return failure.result();
    rate_ = rate;
    channels_ = channels;
    return guarded([&] { return connectAll(pins); });
}

HRESULT InstrumentGraph::connectAll(std::span<const int> pins) {
    source_->pin().setFormat(floatFormat(rate_, channels_));
    CMediaType type;
    const HRESULT made = type.SetWaveFormat(floatFormat(rate_, channels_));
    if (FAILED(made)) return made;
    FirstFailure failure;
    const std::vector<RefPtr<IPin>> all = pinsOf(*filter_);
    failure.note(all.empty() ? VFW_E_NOT_FOUND : graph_->connect(source_->pin(), *all.front(), *type));
    for (int pin : pins) failure.note(connectPin(pin, *type));
    return failure.result();
}

HRESULT InstrumentGraph::connectPin(int pin, const AM_MEDIA_TYPE& type) {
    // The instrument's input stands before its outputs.
    const std::vector<RefPtr<IPin>> all = pinsOf(*filter_);
    if (pin < 0 || pin >= kOutputPins || pin + 1 >= static_cast<int>(all.size())) return E_INVALIDARG;
    return graph_->connect(*all[pin + 1], sink(pin), type);
}

HRESULT InstrumentGraph::growBuffers(std::int32_t frames) {
    FirstFailure failure;
    failure.note(source_->pin().setBlock(frames));
    if (FAILED(failure.result())) return failure.result();
    for (const RefPtr<StreamSink>& sink : sinks_) failure.note(sink->pin().growBlock(frames));
    return failure.result();
}

void InstrumentGraph::setSilenceFlag(bool offered) {
    source_->pin().allocator().setSilenceOffered(offered);
    for (const RefPtr<StreamSink>& sink : sinks_) sink->pin().allocator().setSilenceOffered(offered);
}

HRESULT InstrumentGraph::attach(const HostContext::Services& services) {
    RefPtr<HostContext> context = makeObject<HostContext>(services);
    const HRESULT hr = synth_->AttachHost(context->Inner());
    if (FAILED(hr)) return hr;
    // The instrument has taken the reference over.
    context.detach();
    attached_ = true;
    return hr;
}

HRESULT InstrumentGraph::detach() {
    attached_ = false;
    return synth_->DetachHost();
}

HRESULT InstrumentGraph::save(IStream& stream) {
    RefPtr<IPersistStream> state;
    const HRESULT hr = instrument_->QueryInterface(IID_IPersistStream, state.putVoid());
    return FAILED(hr) ? hr : state->Save(&stream, 1);
}

HRESULT InstrumentGraph::load(IStream& stream) {
    RefPtr<IPersistStream> state;
    const HRESULT hr = instrument_->QueryInterface(IID_IPersistStream, state.putVoid());
    return FAILED(hr) ? hr : state->Load(&stream);
}

}  // namespace marnoth
