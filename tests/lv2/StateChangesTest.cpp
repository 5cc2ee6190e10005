#include <gtest/gtest.h>

#include <thread>

#include "hostkit/LiveRig.h"
#include "lv2/PluginHost.h"

namespace marnoth::test::state_changes_test {
namespace {

/// An instance with loops, whose host has heard of them.
class Listening : public PluginHost {
public:
    Listening() {
        layPads(sampler(), padFiles(48000));
        block(64);
    }
    /// How often the host is told in a block that its session has changed.
    int told(std::int32_t frames = 64) {
        block(frames);
        const LV2_URID changed = world.urid(LV2_STATE__StateChanged);
        int count = 0;
        forEachEvent(eventsOut(), plugin().urids(), [&](std::int64_t, const AtomView& event) {
            if (objectType(event, plugin().urids()) == changed) ++count;
        });
        return count;
    }
    void automate(float level) { events().set(0, world.urid("urn:marnoth:pad3:level"), level); }
};

struct Saved {
    std::map<LV2_URID, std::pair<std::vector<char>, LV2_URID>> properties;

    static LV2_State_Status store(LV2_State_Handle handle, std::uint32_t key, const void* value,
                                  std::size_t size, std::uint32_t type, std::uint32_t) {
        const auto* bytes = static_cast<const char*>(value);
        static_cast<Saved*>(handle)->properties[key] = {{bytes, bytes + size}, type};
        return LV2_STATE_SUCCESS;
    }
    static const void* retrieve(LV2_State_Handle handle, std::uint32_t key, std::size_t* size,
                                std::uint32_t* type, std::uint32_t*) {
        auto& properties = static_cast<Saved*>(handle)->properties;
        const auto found = properties.find(key);
        if (found == properties.end()) return nullptr;
        *size = found->second.first.size();
        *type = found->second.second;
        return found->second.first.data();
    }
};

TEST(StateChanges, ThatThePageMakesAreToldOnceABlock) {
    Listening host;
    EXPECT_EQ(host.told(), 0);
    host.sampler().SetPadRootNote(2, 5);
    host.sampler().SetPadVolume(2, 0.5f);
    EXPECT_EQ(host.told(), 1);
    EXPECT_EQ(host.told(), 0);
    host.sampler().ClearProject();
    EXPECT_EQ(host.told(), 1);
}

TEST(StateChanges, OfTheHostsOwnAreNotTold) {
    Listening host;
    host.automate(-20);
    host.midi(0, 0xB0, 7, 33);
    EXPECT_EQ(host.told(), 0) << "automation";
    host.plugin().setRate(44100);
    host.activateAnew();
    EXPECT_EQ(host.told(), 0) << "another rate";
    Saved saved;
    ASSERT_EQ(host.plugin().save(Saved::store, &saved, nullptr), LV2_STATE_SUCCESS);
    EXPECT_EQ(host.told(), 0) << "a save";
    ASSERT_EQ(host.plugin().restore(Saved::retrieve, &saved, nullptr), LV2_STATE_SUCCESS);
    EXPECT_EQ(host.told(), 0) << "a state";
    host.sampler().SetPadTail(1, 1);
    EXPECT_EQ(host.told(), 1) << "and then the page";
}

TEST(StateChanges, AmongAutomationAreTold) {
    Listening host;
    host.automate(-20);
    host.sampler().SetPadTail(1, 1);
    EXPECT_EQ(host.told(), 1);
    host.automate(-21);
    EXPECT_EQ(host.told(), 0);
}

TEST(StateChanges, ThatFindNoRoomAreToldLater) {
    Listening host;
    host.sampler().SetPadTail(1, 1);
    host.prepare(64);
    LV2_Atom_Sequence small{{sizeof(LV2_Atom_Sequence_Body), 0}, {}};
    host.descriptor().connect_port(host.instance(), kEventsOut, &small);
    host.descriptor().run(host.instance(), 64);
    host.clear();
    EXPECT_EQ(small.atom.size, sizeof(LV2_Atom_Sequence_Body));
    EXPECT_EQ(host.told(), 1);
}

TEST(StateChanges, WhileAStateIsRestoredAreTheHosts) {
    Listening host;
    Saved saved;
    host.plugin().save(Saved::store, &saved, nullptr);
    std::atomic<bool> isDone = false;
    std::thread thread([&] {
        for (int i = 0; i < 20; ++i) host.plugin().restore(Saved::retrieve, &saved, nullptr);
        isDone = true;
    });
    int told = 0;
    while (!isDone) {
        host.audio.assign(2, {});
        told += host.told();
    }
    thread.join();
    EXPECT_EQ(told + host.told(), 0);
}

}  // namespace
}  // namespace marnoth::test::state_changes_test
