#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "host/CreateInstance.h"
#include "hostkit/HostGraph.h"
#include "hostkit/HostRig.h"
#include "hostkit/MakeObject.h"
#include "hostkit/PlayingRig.h"
#include "hostkit/StreamSource.h"
#include "platform/graph/Graph.h"

namespace marnoth::test::host_rig_test {
namespace {

constexpr std::array<int, 1> kMix{0};

TEST(HostRig, RenderingBeforeAConnectionIsRefused) {
    HostRig rig{createInstrument};
    EXPECT_EQ(rig.render(512), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(rig.connect(44100, 2, kMix), S_OK);
    EXPECT_EQ(rig.render(512), S_OK);
}

/// Counts what is asked of it.
struct AskedGraph : HostGraph {
    static inline int filters = 0, connections = 0, runs = 0;

    HRESULT add(IBaseFilter& filter, LPCWSTR name) override {
        return ++filters, HostGraph::add(filter, name);
    }
    HRESULT connect(IPin& output, IPin& input, const AM_MEDIA_TYPE& type) override {
        return ++connections, HostGraph::connect(output, input, type);
    }
    HRESULT run() override { return ++runs, HostGraph::run(); }

    static RefPtr<AudioGraph> make() { return RefPtr<AudioGraph>::adopt(new AskedGraph); }
};

TEST(HostRig, PlaysInTheGraphThatItIsGiven) {
    HostRig rig(createInstrument, AskedGraph::make);
    EXPECT_EQ(AskedGraph::filters, 19) << "source, instrument and seventeen sinks";
    EXPECT_EQ(rig.connect(44100, 2, kMix), S_OK);
    EXPECT_EQ(AskedGraph::connections, 2);
    EXPECT_EQ(rig.render(512), S_OK);
    EXPECT_EQ(AskedGraph::runs, 1);
}

TEST(HostRig, IsntMadeWithoutAGraphOrAnInstrument) {
    EXPECT_THROW(HostRig(createInstrument, []() -> RefPtr<AudioGraph> { throw std::runtime_error("none"); }),
                 std::runtime_error);
    const InstrumentMaker noMaker = [](IUnknown*, REFIID, void**) -> HRESULT { return E_FAIL; };
    EXPECT_THROW(HostRig{noMaker}, std::runtime_error);
}

TEST(HostRig, TellsWhichInterfaceAnInstrumentLacks) {
    const InstrumentMaker source = [](IUnknown*, REFIID iid, void** out) -> HRESULT {
        return makeObject<StreamSource>()->QueryInterface(iid, out);
    };
    try {
        const HostRig rig(source);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the instrument has no IGrooveSampler");
    }
}

TEST(HostRig, TheInputAloneCanBeConnected) {
    HostRig rig{createInstrument};
    EXPECT_EQ(rig.connect(44100, 2, {}), S_OK);
    EXPECT_EQ(rig.render(1000), S_OK);
}

TEST(HostRig, GivesTheFirstFailingConnection) {
    HostRig rig{createInstrument};
    const std::array<int, 3> twice{0, 0, 1};
    EXPECT_EQ(rig.connect(44100, 2, twice), VFW_E_ALREADY_CONNECTED);
    const std::array<int, 1> none{17};
    EXPECT_EQ(rig.connect(44100, 2, none), E_INVALIDARG);
    EXPECT_EQ(rig.connect(0, 2, kMix), E_INVALIDARG);
    EXPECT_TRUE(FAILED(rig.connect(44100, 3, kMix)));
    EXPECT_EQ(rig.render(512), VFW_E_NOT_CONNECTED);
}

TEST(HostRig, TheConnectionsBehindAFailingOneAreMade) {
    HostRig rig{createInstrument};
    int blocks = 0;
    rig.setTaker(1, [&](std::span<const float>, bool) { ++blocks; });
    const std::array<int, 3> twice{0, 0, 1};
    EXPECT_EQ(rig.connect(44100, 2, twice), VFW_E_ALREADY_CONNECTED);
    EXPECT_EQ(rig.render(512), S_OK);
    EXPECT_EQ(blocks, 1);
}

TEST(HostRig, ConnectsAnewWithAnotherFormat) {
    HostRig rig{createInstrument};
    std::size_t samples = 0;
    rig.setTaker(0, [&](std::span<const float> block, bool) { samples += block.size(); });
    ASSERT_EQ(rig.connect(44100, 2, kMix), S_OK);
    EXPECT_EQ(rig.render(1000), S_OK);
    EXPECT_EQ(samples, 2000u);
    ASSERT_EQ(rig.connect(48000, 1, kMix), S_OK);
    EXPECT_EQ(rig.rate(), 48000u);
    EXPECT_EQ(rig.channels(), 1u);
    EXPECT_EQ(rig.render(1000), S_OK);
    EXPECT_EQ(samples, 3000u);
}

TEST(HostRig, SendsBlocksTheLastOneShorter) {
    HostRig rig{createInstrument};
    std::vector<std::size_t> lengths;
    rig.setTaker(0, [&](std::span<const float> block, bool) { lengths.push_back(block.size() / 2); });
    ASSERT_EQ(rig.connect(44100, 2, kMix), S_OK);
    EXPECT_EQ(rig.render(1100), S_OK);
    EXPECT_EQ(lengths, (std::vector<std::size_t>{512, 512, 76}));
    lengths.clear();
    EXPECT_EQ(rig.render(0), S_OK);
    EXPECT_TRUE(lengths.empty());
    EXPECT_EQ(rig.render(-1), E_INVALIDARG);
}

TEST(HostRig, BlocksCanGrowBeforeAndAfterConnectingAndWhileRunning) {
    HostRig rig{createInstrument};
    std::vector<std::size_t> lengths;
    rig.setTaker(0, [&](std::span<const float> block, bool) { lengths.push_back(block.size() / 2); });
    EXPECT_EQ(rig.setBlock(1000), S_OK);
    ASSERT_EQ(rig.connect(44100, 2, kMix), S_OK);
    EXPECT_EQ(rig.setBlock(2000), S_OK);
    EXPECT_EQ(rig.render(2000), S_OK);
    EXPECT_EQ(rig.setBlock(3000), S_OK);
    EXPECT_EQ(rig.render(3000), S_OK);
    EXPECT_EQ(rig.setBlock(1500), S_OK);
    EXPECT_EQ(rig.render(3000), S_OK);
    EXPECT_EQ(lengths, (std::vector<std::size_t>{2000, 3000, 1500, 1500}));
    EXPECT_EQ(rig.setBlock(0), E_INVALIDARG);
    EXPECT_EQ(rig.setBlock(std::numeric_limits<std::int32_t>::max()), E_OUTOFMEMORY);
    EXPECT_EQ(rig.render(1500), S_OK);
    EXPECT_EQ(lengths.back(), 1500u);
}

TEST(HostRig, GoesFromStateToState) {
    HostRig rig{createInstrument};
    ASSERT_EQ(rig.connect(44100, 2, kMix), S_OK);
    EXPECT_EQ(rig.pause(), S_OK);
    EXPECT_EQ(rig.run(), S_OK);
    EXPECT_EQ(rig.render(512), S_OK);
    EXPECT_EQ(rig.pause(), S_OK);
    EXPECT_EQ(rig.stop(), S_OK);
    EXPECT_EQ(rig.stop(), S_OK);
    EXPECT_EQ(rig.render(512), S_OK) << "rendering runs the graph again";
}

TEST(HostRig, AttachesOnceAtATime) {
    HostRig rig{createInstrument};
    EXPECT_FALSE(rig.addTempo(960, 60.0));
    EXPECT_EQ(rig.queueEvents(0, {}), E_UNEXPECTED);
    EXPECT_EQ(rig.attach({}), S_OK);
    EXPECT_EQ(rig.queueEvents(0, {}), S_OK);
    EXPECT_TRUE(rig.addTempo(960, 60.0));
    EXPECT_EQ(rig.attach({.tempo = 90.0, .key = {}}), E_UNEXPECTED);
    EXPECT_FALSE(rig.addTempo(960, 90.0)) << "the refused host has taken nothing over";
    EXPECT_EQ(rig.detach(), S_OK);
    EXPECT_FALSE(rig.addTempo(1920, 60.0));
    EXPECT_EQ(rig.attach({.tempo = 90.0, .key = 11}), S_OK);
    EXPECT_TRUE(rig.addTempo(960, 60.0));
}

TEST(HostRig, RefusesServicesThatCannotBe) {
    HostRig rig{createInstrument};
    EXPECT_EQ(rig.attach({.tempo = 0.0, .key = {}}), E_INVALIDARG);
    EXPECT_EQ(rig.attach({.key = 12}), E_INVALIDARG);
    EXPECT_EQ(rig.attach({.key = {}, .converterRate = 0.0}), E_INVALIDARG);
    EXPECT_EQ(rig.attach({}), S_OK);
}

TEST(HostRig, WithoutSoundEveryPinDeliversMarkedSilence) {
    PlayingRig it({0, 3});
    it.render(1024);
    EXPECT_EQ(it.audio[3], std::vector<float>(2048, 0.0f));
    EXPECT_EQ(it.silentBlocks[3], 2);
    EXPECT_EQ(it.audio[0], std::vector<float>(2048, 0.0f));
    EXPECT_EQ(it.blocks[0], 2);
    EXPECT_EQ(it.blocks[5], 0) << "a pin that isn't connected delivers nothing";
}

TEST(HostRig, InputReachesTheMixThroughTheOtherPins) {
    PlayingRig it({0, 1});
    it.rig.setInputFrames({0.5f, -0.25f, 1.0f, 0.125f});
    it.render(4);
    EXPECT_EQ(it.audio[1], (std::vector<float>{0.5f, -0.25f, 1.0f, 0.125f, 0, 0, 0, 0}));
    EXPECT_EQ(it.audio[0], it.audio[1]);
}

TEST(HostRig, InputGoesOnWhereTheLastRenderEnded) {
    PlayingRig it({0, 1}, 1);
    it.rig.setInputFrames({0.5f, -0.25f, 1.0f, 0.125f});
    it.render(1);
    it.render(2);
    it.rig.setInputSilence();
    it.render(1);
    EXPECT_EQ(it.audio[1], (std::vector<float>{0.5f, -0.25f, 1.0f, 0.0f}));
    EXPECT_EQ(it.silentBlocks[1], 1);
}

}  // namespace
}  // namespace marnoth::test::host_rig_test
