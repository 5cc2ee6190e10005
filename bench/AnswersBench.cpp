#include <future>
#include <stdexcept>
#include <vector>

#include "bench/Check.h"
#include "bench/ComponentBench.h"
#include "hostkit/HostGraph.h"
#include "hostkit/InstrumentGraph.h"
#include "shellkit/component/RegisteredInstrument.h"
#include "shellkit/component/SystemGraph.h"

namespace marnoth::bench {
namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::int32_t kBlock = 512;
constexpr double kBound = 100000;  // us
constexpr CLSID kNullRenderer{0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};

template <class Interface>
RefPtr<Interface> query(IUnknown& object, REFIID iid) {
    RefPtr<Interface> found;
    check(object.QueryInterface(iid, found.putVoid()), "QueryInterface");
    return found;
}

RefPtr<IGraphBuilder> graphOf(IBaseFilter& filter) {
    FILTER_INFO info{};
    check(filter.QueryFilterInfo(&info), "QueryFilterInfo");
    return query<IGraphBuilder>(*RefPtr<IFilterGraph>::adopt(info.pGraph), IID_IGraphBuilder);
}

/// Times of a page call, a flush and a stop.
struct Answers {
    std::vector<double> page, flush, stop;
};

/// The component in the system's graph, before the system's renderer of nothing.
class Rendered {
public:
    Rendered() {
        check(host_.connect(kRate, 2, {}), "connect");
        check(CoCreateInstance(kNullRenderer, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter,
                               renderer_.putVoid()),
              "the null renderer");
        check(graph_->AddFilter(renderer_.get(), L"Renderer"), "AddFilter");
        // Its input stands before its outputs, of which the mix is the first.
        const std::vector<RefPtr<IPin>> pins = pinsOf(*filter_);
        input_ = pins.at(0);
        check(graph_->Connect(pins.at(1).get(), pinsOf(*renderer_).at(0).get()), "Connect");
    }

    /// Asks in a paused graph; with a block that the renderer keeps, flush and stop last until that is back.
    void ask(bool withBlock, Answers& answers) {
        if (FAILED(control_->Pause())) throw std::runtime_error("Pause");
        std::future<HRESULT> block = withBlock ? send() : std::future<HRESULT>();
        answers.page.push_back(timed([&] { check(host_.sampler().SetPadVolume(3, 0.5f), "SetPadVolume"); }));
        answers.flush.push_back(timed([&] {
            check(input_->BeginFlush(), "BeginFlush");
            if (withBlock) block.get();
            check(input_->EndFlush(), "EndFlush");
        }));
        if (withBlock) block = send();
        answers.stop.push_back(timed([&] {
            check(control_->Stop(), "Stop");
            if (withBlock) block.get();
        }));
    }

private:
    /// Comes back when the renderer has the block.
    std::future<HRESULT> send() {
        auto sent = std::async(std::launch::async, [this] { return host_.send({.frames = kBlock}); });
        OAFilterState state = State_Stopped;
        check(control_->GetState(10000, &state), "GetState");
        return sent;
    }

    InstrumentGraph host_{createRegistered, makeSystemGraph};
    RefPtr<IBaseFilter> filter_ = query<IBaseFilter>(host_.sampler(), IID_IBaseFilter);
    RefPtr<IGraphBuilder> graph_ = graphOf(*filter_);
    RefPtr<IMediaControl> control_ = query<IMediaControl>(*graph_, IID_IMediaControl);
    RefPtr<IBaseFilter> renderer_;
    RefPtr<IPin> input_;
};

}  // namespace

void benchAnswers() {
    Rendered it;
    Answers free, kept;
    for (int i = 0; i < 100; ++i) {
        it.ask(false, free);
        it.ask(true, kept);
    }
    print("paused, no block inside: page call, worst", Times(free.page).worst());
    print("the same: flush, worst", Times(free.flush).worst());
    print("the same: stop, worst", Times(free.stop).worst());
    print("a renderer keeps a block: page call, worst", Times(kept.page).worst(), kBound);
    print("the same: flush, worst", Times(kept.flush).worst(), kBound);
    print("the same: stop, worst", Times(kept.stop).worst(), kBound);
}

}  // namespace marnoth::bench
