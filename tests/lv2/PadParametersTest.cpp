#include <gtest/gtest.h>
#include <lv2/patch/patch.h>

#include <cmath>
#include <random>

#include "hostkit/LiveRig.h"
#include "lv2/PluginHost.h"
#include "support/RealTimeGuard.h"

namespace marnoth::test::pad_parameters_test {
namespace {

using Values = std::map<std::string, float>;

std::string uriOf(int pad, const std::string& name) {
    return "urn:marnoth:pad" + std::to_string(pad) + ":" + name;
}

/// What an instance has told in the last block.
Values toldBy(PluginHost& host) {
    const Urids& urids = host.plugin().urids();
    Values values;
    forEachEvent(host.eventsOut(), urids, [&](std::int64_t, const AtomView& event) {
        if (objectType(event, urids) == urids.stateChanged) return;
        ASSERT_EQ(objectType(event, urids), host.world.urid(LV2_PATCH__Set));
        const auto property = propertyOf(event, urids.patchProperty);
        const auto value = propertyOf(event, urids.patchValue);
        ASSERT_TRUE(property && value);
        values[host.world.unmap()->unmap(&host.world, uridIn(*property, urids))] =
            static_cast<float>(numberIn(*value, urids).value());
    });
    return values;
}

/// A mixer that is automated.
class Automated : public PluginHost {
public:
    explicit Automated(std::uint32_t index = 0) : PluginHost(index) {
        layPads(sampler(), padFiles(48000));
        block(0);
    }
    void set(std::int64_t frame, const std::string& uri, float value) {
        events().set(frame, world.urid(uri), value);
    }
    float volume(int pad) {
        float value = -1;
        sampler().GetPadVolume(pad - 1, &value);
        return value;
    }
    float pan(int pad) {
        float value = -1;
        sampler().GetPadPan(pad - 1, &value);
        return value;
    }
    std::uint32_t isOn(HRESULT (IGrooveSampler::*get)(std::int32_t, std::uint32_t*), int pad) {
        std::uint32_t value = 99;
        (sampler().*get)(pad - 1, &value);
        return value;
    }
};

TEST(PadParameters, AreTheInstrumentsWithoutAnUndoState) {
    Automated host;
    host.set(0, uriOf(3, "level"), -6.0f);
    host.set(0, uriOf(16, "pan"), -0.5f);
    host.set(0, uriOf(1, "mute"), 1.0f);
    host.set(0, uriOf(2, "solo"), 1.0f);
    host.block(64);
    EXPECT_NEAR(host.volume(3), 0.501187f, 1e-6);
    EXPECT_EQ(host.pan(16), 0.25f);
    EXPECT_EQ(host.isOn(&IGrooveSampler::GetPadMute, 1), 1u);
    EXPECT_EQ(host.isOn(&IGrooveSampler::GetPadSolo, 2), 1u);
    EXPECT_EQ(host.sampler().Undo(), S_FALSE);
    EXPECT_EQ(host.plugin().pages().automated, 4u) << "a page reads it";
}

TEST(PadParameters, AreHeldToTheirRangesAndWhatIsNoNumberChangesNothing) {
    Automated host;
    for (const auto& [told, volume] : {std::pair(-75.0f, 0.0f), {-1e30f, 0.0f}, {0.0f, 1.0f}}) {
        host.set(0, uriOf(1, "level"), told);
        host.block(1);
        EXPECT_EQ(host.volume(1), volume);
    }
    host.set(0, uriOf(1, "level"), 1e30f);
    host.set(0, uriOf(1, "pan"), 7.0f);
    host.block(1);
    EXPECT_NEAR(host.volume(1), 1.99526f, 1e-5) << "6 dB";
    EXPECT_EQ(host.pan(1), 1.0f);
    host.set(0, uriOf(1, "pan"), std::nanf(""));
    host.set(0, "urn:somebody:else", 0.25f);
    host.block(1);
    EXPECT_EQ(host.pan(1), 1.0f);
}

TEST(PadParameters, ThatThePageChangesAreToldOnceAndNoEchoComes) {
    Automated host;
    EXPECT_EQ(toldBy(host), Values{}) << "everything is as a host takes it to be";
    host.sampler().SetPadVolume(4, 0.5f);
    host.sampler().SetPadMute(5, 7);
    host.block(64);
    const Values expected{{uriOf(5, "level"), 20 * std::log10(0.5f)}, {uriOf(6, "mute"), 1.0f}};
    EXPECT_EQ(toldBy(host), expected);
    host.set(0, uriOf(7, "level"), -20.0f);
    host.block(64);
    EXPECT_EQ(toldBy(host), Values{}) << "the host knows what it has set";
}

TEST(PadParameters, ThatAHostSetsAsItWasToldThemLeaveTheLastDigit) {
    Automated host;
    const float odd = 0.7071068f;
    host.sampler().SetPadVolume(0, odd);
    host.sampler().SetPadPan(0, 0.1f);
    host.sampler().SetPadVolume(1, 2.0f);
    host.block(64);
    for (const auto& [uri, value] : toldBy(host)) host.set(0, uri, value);
    host.block(64);
    EXPECT_EQ(host.volume(1), odd);
    EXPECT_EQ(host.pan(1), 0.1f);
    EXPECT_EQ(host.volume(2), 2.0f);
}

TEST(PadParameters, ThatAHostSetsWithEachBlockToTheSameAreSetOnce) {
    Automated host;
    for (int step = 1; step <= 150; ++step) {
        host.set(0, uriOf(1, "level"), -0.5f * static_cast<float>(step));
        host.block(64);
        const std::uint64_t changes = host.plugin().pages().automated;
        host.set(0, uriOf(1, "level"), -0.5f * static_cast<float>(step));
        host.block(64);
        EXPECT_EQ(host.plugin().pages().automated, changes) << step;
        EXPECT_EQ(changes, static_cast<std::uint64_t>(step));
    }
    host.sampler().SetPadVolume(0, 1.0f);
    host.set(0, uriOf(1, "level"), -75.0f);
    host.block(64);
    EXPECT_EQ(host.volume(1), 0.0f) << "what others have changed is set again";
}

TEST(PadParameters, AreToldWhenTheHostAsks) {
    Automated host;
    host.events().get(0, 0);
    host.block(64);
    EXPECT_EQ(toldBy(host).size(), 64u);
    host.events().get(0, host.world.urid(uriOf(9, "pan")));
    host.block(64);
    EXPECT_EQ(toldBy(host), (Values{{uriOf(9, "pan"), 0.0f}}));
    host.block(64);
    EXPECT_EQ(toldBy(host), Values{});
}

TEST(PadParameters, GlideFromTheirFrameHoweverBlocksLie) {
    const auto played = [](int frames) {
        Automated host;
        host.midi(0, 0x90, 50, 100);
        host.midi(0, 0x90, 54, 100);
        for (int done = 0; done < 12000; done += frames) {
            for (int step = 0; step < 100; ++step) {
                const int frame = 1000 + 97 * step;
                if (frame < done || frame >= done + frames) continue;
                host.set(frame - done, uriOf(3, "level"), -0.4f * static_cast<float>(step));
                host.set(frame - done, uriOf(7, "pan"), std::sin(0.1f * static_cast<float>(step)));
            }
            host.block(frames);
        }
        return host.audio;
    };
    const auto expected = played(12000);
    EXPECT_GT(*std::max_element(expected[0].begin(), expected[0].end()), 0.05f);
    for (const int frames : {1, 60, 750}) EXPECT_EQ(played(frames), expected) << frames;
}

TEST(PadParameters, ALevelThatIsSetMidwayIsThereAfterTwentyMilliseconds) {
    Automated loud;
    Automated quiet;
    for (Automated* host : {&loud, &quiet}) host->midi(0, 0x90, 50, 100);
    quiet.set(500, uriOf(3, "level"), -75.0f);
    for (Automated* host : {&loud, &quiet}) host->block(4000);
    for (std::size_t i = 0; i <= 500; ++i) ASSERT_EQ(quiet.audio[0][i], loud.audio[0][i]) << i;
    // 960 frames: half of it has gone in the middle.
    EXPECT_NEAR(quiet.audio[0][980], loud.audio[0][980] / 2, 1e-4);
    for (std::size_t i = 1460; i < 4000; ++i) ASSERT_EQ(quiet.audio[0][i], 0.0f) << i;
}

TEST(PadParameters, ControllersSetThePadsThatAnswerTheirChannel) {
    Automated host;
    host.sampler().SetPadChannel(1, 4);
    host.sampler().SetPadChannel(2, 5);
    host.midi(0, 0xB4, 7, 64);
    host.midi(0, 0xB4, 10, 0);
    host.block(64);
    const float part = 64.0f / 127.0f;
    EXPECT_NEAR(host.volume(1), part * part, 1e-6) << "it answers all channels";
    EXPECT_NEAR(host.volume(2), part * part, 1e-6);
    EXPECT_EQ(host.volume(3), 1.0f);
    EXPECT_EQ(host.pan(2), 0.0f);
    EXPECT_EQ(host.pan(3), 0.5f);
    EXPECT_EQ(toldBy(host).size(), 30u) << "two of each of fifteen pads";
    for (const auto& [value, pan] : {std::pair(64, 0.5f), {127, 1.0f}}) {
        host.midi(0, 0xB5, 10, static_cast<std::uint8_t>(value));
        host.midi(0, 0xB5, 7, 127);
        host.block(64);
        EXPECT_EQ(host.pan(3), pan);
        EXPECT_EQ(host.volume(3), 1.0f);
    }
}

TEST(PadParameters, TakeNoMemory) {
    Automated host(1);
    std::mt19937 random(11);
    for (int i = 0; i < 100; ++i) {
        for (int k = 0; k < 20; ++k) {
            const int pad = 1 + static_cast<int>(random() % 16);
            const std::array<const char*, 4> names{"level", "pan", "mute", "solo"};
            host.set(5 * k, uriOf(pad, names[random() % 4]), static_cast<float>(random() % 100) / 30 - 2);
        }
        host.midi(110, 0x90, 50, 100);
        host.midi(120, 0xB0, static_cast<std::uint8_t>(random() % 2 ? 7 : 10), 100);
        host.sampler().SetPadVolume(3, static_cast<float>(i) / 100);
        host.prepare(256);
        RealTimeGuard guard;
        host.descriptor().run(host.instance(), 256);
        const auto offences = guard.finish();
        host.clear();
        ASSERT_EQ(offences.allocations, 0) << i;
        ASSERT_EQ(offences.frees, 0) << i;
    }
}

}  // namespace
}  // namespace marnoth::test::pad_parameters_test
