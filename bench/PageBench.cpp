#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "bench/Bounds.h"
#include "bench/Check.h"
#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/PageRig.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "platform/drawing/HeadlessWindow.h"
#include "platform/drawing/PlatformFonts.h"
#include "platform/drawing/RasterSurface.h"
#include "seam/Limits.h"
#include "seam/MusicalTime.h"
#include "support/WaveFile.h"

/// The editor page on an instrument whose sixteen pads have 256 grains each, beside a copy of its pixels: a
/// tick of the timer, a refresh of everything, and a move of the mouse while a grain is dragged, each with
/// its paint.
namespace marnoth::bench {
namespace {

constexpr int kGrainsOfPad = 256;
constexpr std::int64_t kQuarterBeat = kTicks16PerBeat / 4;
constexpr int kCalls = 5;

/// Two bars in sixteenths.
test::TempPath writeLoop() {
    return test::WaveFile()
        .rate(44100)
        .channels(2)
        .frames(4 * 44100, [](std::int64_t i, int) { return static_cast<double>(i % 100) / 100 - 0.5; })
        .acid({.beats = 8, .tempo = 120})
        .writeTemp();
}

void fillPads(IGrooveSampler& sampler) {
    const test::TempPath loop = writeLoop();
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    check(sampler.LoadFileToBin("loop", loop.c_str(), &bin, &status), "LoadFileToBin");
    std::int32_t ofFile = 0;
    check(sampler.GetGrainCount(kBinLoop, 0, &ofFile), "GetGrainCount");
    for (int pad = 0; pad < kPads; ++pad)
        for (int grain = 0; grain < kGrainsOfPad; ++grain)
            check(sampler.AddGrain(bin, grain % ofFile, pad, grain * kQuarterBeat), "AddGrain");
}

/// The page on an engine.
class Desk {
public:
    explicit Desk(IUnknown& engine, PageFrame::SurfaceMaker surfaces = CGrooveSamplerPropPage::drawInto)
        : fonts(platformFonts()) {
        window.setFonts(*fonts);
        page = std::make_unique<CGrooveSamplerPropPage>(window, std::move(surfaces));
        IUnknown* const object = &engine;
        page->bind({&object, 1});
        window.setPage(page.get());
        page->open();
        window.settle();
        // As much in view as can be: the work is at its largest.
        for (int i = 0; i < 3; ++i) click({561, 541});
    }

    void click(Point at) {
        window.press(at);
        window.release(at);
    }
    void refresh() {
        page->RefreshAll();
        window.settle();
    }
    void grabGrain() { window.press({kPadPlot.left + 12, kPadPlot.top + 5}); }
    /// To the right and back.
    void drag() {
        right = !right;
        window.move({kPadPlot.left + (right ? 200 : 100), kPadPlot.top + (right ? 65 : 45)});
    }

    HeadlessWindow window;
    std::unique_ptr<FontSource> fonts;
    std::unique_ptr<CGrooveSamplerPropPage> page;
    bool right = false;
};

/// Draws, and counts what it draws.
class CountingSurface final : public Surface {
public:
    CountingSurface(Bitmap& target, std::size_t& drawn) : surface_(target), drawn_(drawn) {}

    void SelectPen(const Pen& pen) override { surface_.SelectPen(pen); }
    void SelectBrush(std::optional<Color> brush) override { surface_.SelectBrush(brush); }
    void SelectFont(Font* font) override { surface_.SelectFont(font); }
    void SetTextColor(Color color) override { surface_.SetTextColor(color); }
    void SetGroundColor(Color color) override { surface_.SetGroundColor(color); }
    void SelectClipRgn(std::optional<Rect> clip) override { surface_.SelectClipRgn(clip); }
    void Rectangle(const Rect& rect) override { counted().Rectangle(rect); }
    void RoundRect(const Rect& rect, int width, int height) override {
        counted().RoundRect(rect, width, height);
    }
    void Polygon(std::span<const Point> points) override { counted().Polygon(points); }
    void Ellipse(const Rect& rect) override { counted().Ellipse(rect); }
    void MoveTo(Point point) override { surface_.MoveTo(point); }
    void LineTo(Point point) override { counted().LineTo(point); }
    void TextOut(Point at, std::string_view text) override { counted().TextOut(at, text); }
    void BitBlt(const Rect& dest, const Bitmap& source, Point from) override {
        counted().BitBlt(dest, source, from);
    }

private:
    Surface& counted() {
        ++drawn_;
        return surface_;
    }

    RasterSurface surface_;
    std::size_t& drawn_;
};

/// What a piece of work calls and draws, found by doing it once on an engine that only writes down.
class Count {
public:
    Count() {
        for (test::ModelPad& pad : engine.pads) {
            for (int grain = 0; grain < kGrainsOfPad; ++grain)
                pad.grains.push_back({grain * kQuarterBeat, (grain + 1) * kQuarterBeat});
            pad.loopLength = kGrainsOfPad * kQuarterBeat;
        }
        engine.files.push_back({"loop", "/loop", std::vector<test::ModelGrain>(8)});
    }

    void report(benchmark::State& state, void (*prepare)(Desk&), void (*work)(Desk&)) {
        std::size_t drawn = 0;
        Desk desk(engine, [&](Bitmap& bitmap) { return std::make_unique<CountingSurface>(bitmap, drawn); });
        prepare(desk);
        engine.take();
        drawn = 0;
        work(desk);
        state.counters["engine_calls"] = static_cast<double>(engine.take().size());
        state.counters["drawn"] = static_cast<double>(drawn);
    }

private:
    test::RecordingSampler engine;
};

void measure(benchmark::State& state, void (*prepare)(Desk&), void (*work)(Desk&)) {
    HostRig rig{createInstrument};
    check(rig.connect(44100, 2, std::array{0}), "connect");
    fillPads(rig.sampler());
    Desk desk(rig.sampler());
    prepare(desk);
    Bitmap copy = desk.page->screen();
    BestTime page, pixels;
    for (auto _ : state) {
        state.SetIterationTime(page.turn(kCalls, [&] { work(desk); }));
        pixels.turn(kCalls, [&] { copy = desk.page->screen(); });
    }
    state.counters["ms"] = page.nanoseconds() / 1e6;
    state.counters["x_copy"] = page.nanoseconds() / pixels.nanoseconds();
    Count().report(state, prepare, work);
}

void prepareNothing(Desk&) {}

void tick(benchmark::State& state) {
    measure(state, prepareNothing, [](Desk& desk) { desk.window.tick(); });
}

void refresh(benchmark::State& state) {
    measure(state, prepareNothing, [](Desk& desk) { desk.refresh(); });
}

void dragMove(benchmark::State& state) {
    measure(
        state, [](Desk& desk) { desk.grabGrain(); }, [](Desk& desk) { desk.drag(); });
}

BENCHMARK(tick)->Name("Page/Tick")->UseManualTime()->Iterations(40);
BENCHMARK(refresh)->Name("Page/Refresh")->UseManualTime()->Iterations(40);
BENCHMARK(dragMove)->Name("Page/DragMove")->UseManualTime()->Iterations(40);

}  // namespace
}  // namespace marnoth::bench
