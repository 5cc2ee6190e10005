/// The instrument before renderers of the system's, which keep the first block of a paused graph.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <tuple>

#include "windows/Registered.h"
#include "windows/SystemRig.h"

namespace marnoth::test::renderer_test {
namespace {

struct Kind {
    const char* name;
    CLSID id;
};

class Renderers : public Registered<testing::TestWithParam<std::tuple<Kind, COINIT>>> {
protected:
    const CLSID id = std::get<0>(GetParam()).id;

    void SetUp() override {
        const ComApartment apartment(COINIT_MULTITHREADED);
        if (makeRenderer(id)) return;
        ASSERT_EQ(std::getenv("ALSA_CONFIG_PATH"), nullptr) << "a sound card that plays nothing isn't found";
        GTEST_SKIP() << "this system has no sound card";
    }

    /// Tells a story in an apartment of the kind: on a rig whose mix goes to the renderer.
    template <class Story>
    void tell(Story story) const {
        inApartment(std::get<1>(GetParam()), [&] {
            SystemRig rig;
            const RefPtr<IBaseFilter> renderer = rig.render(L"Mix Output", id);
            story(rig, *renderer);
        });
    }

    /// Runs the graph for some blocks and pauses it with one inside, around which `story` happens.
    template <class Story>
    void tellWithABlockInside(Story story) const {
        tell([&](SystemRig& rig, IBaseFilter& renderer) {
            playSome(rig);
            ASSERT_GE(rig.control->Pause(), S_OK);
            SentBlock block(rig);
            rig.waitFor(State_Paused);
            story(rig, renderer, block);
            answerOf([&] { return rig.control->Stop(); });
            block.result();
        });
    }

    static void expectUnconnected(IPin& pin) {
        RefPtr<IPin> peer;
        EXPECT_EQ(pin.ConnectedTo(peer.put()), VFW_E_NOT_CONNECTED);
    }

    static void playSome(SystemRig& rig) {
        ASSERT_GE(rig.control->Run(), S_OK);
        for (int block = 0; block < 20; ++block) ASSERT_EQ(rig.send(), S_OK);
        rig.waitFor(State_Running);
    }
};

TEST_P(Renderers, KeepTheFirstBlockUntilTheGraphRuns) {
    tell([](SystemRig& rig, IBaseFilter&) {
        ASSERT_GE(rig.control->Pause(), S_OK);
        SentBlock first(rig);
        rig.waitFor(State_Paused);
        EXPECT_TRUE(first.isOnItsWay());
        EXPECT_GE(answerOf([&] { return rig.control->Run(); }), S_OK);
        EXPECT_EQ(first.result(), S_OK);
        rig.waitFor(State_Running);
        for (int block = 0; block < 20; ++block) EXPECT_EQ(rig.send(), S_OK);
        EXPECT_EQ(rig.control->Stop(), S_OK);
    });
}

TEST_P(Renderers, KeepNoCallOfAPageWaiting) {
    tellWithABlockInside([](SystemRig& rig, IBaseFilter&, SentBlock& block) {
        float volume = 0;
        EXPECT_EQ(answerOf([&] { return rig.host.sampler().SetPadVolume(3, 0.5f); }), S_OK);
        EXPECT_EQ(answerOf([&] { return rig.host.sampler().GetPadVolume(3, &volume); }), S_OK);
        EXPECT_EQ(volume, 0.5f);
        EXPECT_EQ(answerOf([&] { return rig.host.synth().StartPlayback(0); }), S_OK);
        EXPECT_TRUE(block.isOnItsWay());
    });
}

TEST_P(Renderers, LetAFlushThroughAndKeepTheBlockBehindIt) {
    tellWithABlockInside([](SystemRig& rig, IBaseFilter&, SentBlock& block) {
        const RefPtr<IPin> input = rig.pin(L"Input");
        EXPECT_TRUE(block.isOnItsWay());
        EXPECT_EQ(answerOf([&] { return input->BeginFlush(); }), S_OK);
        block.result();
        EXPECT_EQ(answerOf([&] { return input->EndFlush(); }), S_OK);
        SentBlock next(rig);
        rig.waitFor(State_Paused);
        EXPECT_TRUE(next.isOnItsWay());
        EXPECT_EQ(answerOf([&] { return rig.control->Stop(); }), S_OK);
        next.result();
    });
}

TEST_P(Renderers, LetAStopThrough) {
    tellWithABlockInside([](SystemRig& rig, IBaseFilter&, SentBlock& block) {
        EXPECT_TRUE(block.isOnItsWay());
        EXPECT_EQ(answerOf([&] { return rig.control->Stop(); }), S_OK);
        block.result();
        rig.waitFor(State_Stopped);
        EXPECT_LT(rig.send(), S_OK) << "nothing flows in a stopped graph";
    });
}

TEST_P(Renderers, AreTakenOutWhileConnectedAndTheBlocksGoOn) {
    tell([&](SystemRig& rig, IBaseFilter& renderer) {
        const ULONG others = otherReferences(renderer);
        playSome(rig);
        EXPECT_EQ(rig.control->Stop(), S_OK);
        EXPECT_EQ(rig.graph->RemoveFilter(&renderer), S_OK);
        EXPECT_LT(otherReferences(renderer), others);
        expectUnconnected(*rig.pin(L"Mix Output"));
        playSome(rig);
        EXPECT_EQ(rig.control->Stop(), S_OK);
        // And another one in its place.
        rig.render(L"Mix Output", id);
        playSome(rig);
        EXPECT_EQ(rig.control->Stop(), S_OK);
    });
}

TEST_P(Renderers, StayWhereTheInstrumentIsTakenOut) {
    tell([](SystemRig& rig, IBaseFilter& renderer) {
        playSome(rig);
        EXPECT_EQ(rig.control->Stop(), S_OK);
        const RefPtr<IPin> input = rig.pin(L"Input");
        EXPECT_EQ(rig.graph->RemoveFilter(rig.filter.get()), S_OK);
        expectUnconnected(*input);
        expectUnconnected(*pinOf(renderer));
        EXPECT_EQ(rig.graph->AddFilter(rig.filter.get(), L"Again"), S_OK);
    });
}

TEST_P(Renderers, ArentKeptByTheInstrumentNorTheInstrumentByThem) {
    inApartment(std::get<1>(GetParam()), [&] {
        RefPtr<IBaseFilter> renderer, instrument;
        {
            SystemRig rig;
            renderer = rig.render(L"Mix Output", id);
            instrument = rig.filter;
            playSome(rig);
            // Everything goes while it plays.
        }
        EXPECT_EQ(otherReferences(*renderer), 0u);
        EXPECT_EQ(otherReferences(*instrument), 0u);
    });
}

constexpr Kind kNull{"null", kNullRenderer};
const Kind kSound{"sound", CLSID_DSoundRender};

INSTANTIATE_TEST_SUITE_P(Of, Renderers,
                         testing::Combine(testing::Values(kNull, kSound),
                                          testing::Values(COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED)),
                         [](const auto& test) {
                             return std::string(std::get<0>(test.param).name) + "_" +
                                    nameOf(std::get<1>(test.param));
                         });

}  // namespace
}  // namespace marnoth::test::renderer_test
