#include <gtest/gtest.h>

#include <thread>

#include "hostkit/LiveRig.h"
#include "lv2/PluginHost.h"
#include "shellkit/TempFolder.h"
#include "shellkit/files/ProjectFiles.h"

namespace marnoth::test::plugin_state_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// What a host keeps of an instance: properties, and files where it offers to.
class HostState {
public:
    struct Property {
        Bytes bytes;
        LV2_URID type = 0;
        bool operator==(const Property&) const = default;
    };

    explicit HostState(bool hasFiles) {
        if (hasFiles) features_ = {&makeFeature_, &mapFeature_, &freeFeature_, nullptr};
    }

    LV2_State_Status save(PluginHost& host) {
        properties.clear();
        return interfaceOf(host).save(host.instance(), stored, this, 0, features_.data());
    }
    LV2_State_Status restore(PluginHost& host) {
        return interfaceOf(host).restore(host.instance(), retrieved, this, 0, features_.data());
    }
    std::filesystem::path file() const { return folder_ / "project.mrn"; }
    Property& of(PluginHost& host, const char* uri) { return properties[host.world.urid(uri)]; }

    std::map<LV2_URID, Property> properties;
    int freed = 0;

private:
    static HostState& of(void* handle) { return *static_cast<HostState*>(handle); }
    static const LV2_State_Interface& interfaceOf(const PluginHost& host) {
        return host.extension<LV2_State_Interface>(LV2_STATE__interface);
    }
    static LV2_State_Status stored(LV2_State_Handle handle, std::uint32_t key, const void* value,
                                   std::size_t size, std::uint32_t type, std::uint32_t) {
        const auto* bytes = static_cast<const std::uint8_t*>(value);
        of(handle).properties[key] = {Bytes(bytes, bytes + size), type};
        return LV2_STATE_SUCCESS;
    }
    static const void* retrieved(LV2_State_Handle handle, std::uint32_t key, std::size_t* size,
                                 std::uint32_t* type, std::uint32_t* flags) {
        const auto found = of(handle).properties.find(key);
        if (found == of(handle).properties.end()) return nullptr;
        *size = found->second.bytes.size();
        *type = found->second.type;
        *flags = LV2_STATE_IS_POD;
        return found->second.bytes.data();
    }
    static char* made(LV2_State_Make_Path_Handle handle, const char* path) {
        return strdup((of(handle).folder_ / path).c_str());
    }
    // Names in a state are those in its folder.
    static char* shortened(LV2_State_Map_Path_Handle, const char* path) {
        return strdup(std::filesystem::path(path).filename().c_str());
    }
    static char* whole(LV2_State_Map_Path_Handle handle, const char* path) { return made(handle, path); }
    static void gone(LV2_State_Free_Path_Handle handle, char* path) {
        ++of(handle).freed;
        std::free(path);
    }

    TempFolder folder_;
    LV2_State_Make_Path make_{this, made};
    LV2_State_Map_Path map_{this, shortened, whole};
    LV2_State_Free_Path free_{this, gone};
    LV2_Feature makeFeature_{LV2_STATE__makePath, &make_};
    LV2_Feature mapFeature_{LV2_STATE__mapPath, &map_};
    LV2_Feature freeFeature_{LV2_STATE__freePath, &free_};
    std::array<const LV2_Feature*, 4> features_{};
};

/// An instance with four loops on all pads, and a sound of its own.
struct Loaded : PluginHost {
    Loaded() {
        layPads(sampler(), padFiles(48000));
        sampler().SetPadVolume(3, 0.25f);
    }
};

float volumeOf(PluginHost& host, int pad) {
    float volume = 0;
    host.sampler().GetPadVolume(pad, &volume);
    return volume;
}

std::int32_t filesOf(PluginHost& host) {
    std::int32_t count = 0;
    host.sampler().GetBinFileCount(&count);
    return count;
}

TEST(PluginState, IsTheProjectAsAFileWhereTheHostMakesRoomForFiles) {
    Loaded host;
    HostState state(true);
    ASSERT_EQ(state.save(host), LV2_STATE_SUCCESS);
    EXPECT_EQ(state.of(host, kProjectUri).type, host.world.urid(LV2_ATOM__Path));
    EXPECT_STREQ(reinterpret_cast<const char*>(state.of(host, kProjectUri).bytes.data()), "project.mrn");
    EXPECT_EQ(readProjectFile(state.file().string()).files.size(), 4u) << "it opens everywhere else too";
    PluginHost other(1);
    ASSERT_EQ(state.restore(other), LV2_STATE_SUCCESS) << other.world.log;
    EXPECT_EQ(filesOf(other), 4);
    EXPECT_EQ(volumeOf(other, 3), 0.25f);
    EXPECT_EQ(state.freed, 3) << "what the host gives goes back to it";
}

TEST(PluginState, IsAChunkElsewhere) {
    Loaded host;
    HostState state(false);
    ASSERT_EQ(state.save(host), LV2_STATE_SUCCESS);
    EXPECT_EQ(state.of(host, kProjectUri).type, host.world.urid(LV2_ATOM__Chunk));
    PluginHost other;
    ASSERT_EQ(state.restore(other), LV2_STATE_SUCCESS) << other.world.log;
    EXPECT_EQ(filesOf(other), 4);
    EXPECT_EQ(volumeOf(other, 3), 0.25f);
}

TEST(PluginState, OfWhatHasntChangedIsTheSameBytes) {
    Loaded host;
    HostState state(false);
    state.save(host);
    const auto first = state.properties;
    host.midi(0, 0x90, 48, 100);
    host.block(1000);
    state.save(host);
    EXPECT_EQ(state.properties, first);
    PluginHost other;
    state.restore(other);
    // Numbers of names are each host's own.
    EXPECT_EQ(state.save(other), LV2_STATE_SUCCESS);
    EXPECT_EQ(state.of(other, kProjectUri).bytes, first.at(host.world.urid(kProjectUri)).bytes);
}

/// A state that is damaged in some way leaves the instrument as it is, and the log says why.
void expectRefused(PluginHost& host, HostState& state, const std::string& why) {
    host.world.log.clear();
    EXPECT_NE(state.restore(host), LV2_STATE_SUCCESS) << why;
    EXPECT_NE(host.world.log.find(why), std::string::npos) << host.world.log;
    EXPECT_EQ(std::count(host.world.log.begin(), host.world.log.end(), '\n'), 1);
    EXPECT_EQ(filesOf(host), 4);
    EXPECT_EQ(volumeOf(host, 3), 0.25f);
}

TEST(PluginState, ThatIsDamagedOrNewerIsRefusedWithALineInTheLog) {
    Loaded host;
    HostState state(false);
    state.save(host);
    const auto good = state.properties;
    const auto damaged = [&](auto damage, const std::string& why) {
        state.properties = good;
        damage();
        expectRefused(host, state, why);
    };
    damaged([&] { state.of(host, kProjectUri).bytes.resize(1000); }, "cut short");
    damaged([&] { state.of(host, kProjectUri).bytes.clear(); }, "isn't restored: ");
    damaged([&] { state.of(host, kProjectUri).bytes[0] = 'x'; }, "a project");
    damaged([&] { ++state.of(host, kStateVersionUri).bytes[0]; }, "it is of version 2");
    damaged([&] { state.properties.erase(host.world.urid(kStateVersionUri)); }, "it has no version");
    damaged([&] { state.properties.erase(host.world.urid(kProjectUri)); }, "it has no project");
    damaged([&] { state.of(host, kProjectUri).type = host.world.urid(LV2_ATOM__Int); }, "neither a file");
}

TEST(PluginState, WhoseFileIsGoneOrNoFileIsRefused) {
    Loaded host;
    HostState state(true);
    state.save(host);
    std::filesystem::remove(state.file());
    expectRefused(host, state, "can't be opened");
    std::filesystem::create_directory(state.file());
    expectRefused(host, state, "can't be opened");
}

TEST(PluginState, WithNothingInItIsNone) {
    Loaded host;
    HostState state(false);
    EXPECT_EQ(state.restore(host), LV2_STATE_ERR_NO_PROPERTY);
    EXPECT_EQ(host.world.log, "");
    EXPECT_EQ(filesOf(host), 4);
}

TEST(PluginState, HoldsHowThePageWasLeft) {
    Loaded host;
    PageMemory& pages = host.plugin().pages();
    HostState state(false);
    state.save(host);
    EXPECT_EQ(state.properties.size(), 2u) << "nobody has used a page";
    pages.keep("pad 3\n", 0);
    state.save(host);
    const auto first = state.properties;
    state.save(host);
    EXPECT_EQ(state.properties, first);
    PluginHost other;
    ASSERT_EQ(state.restore(other), LV2_STATE_SUCCESS) << other.world.log;
    EXPECT_EQ(other.plugin().pages().view(), "pad 3\n");
    EXPECT_EQ(other.plugin().pages().restored(), 1u);
    pages.keep("pad 5\n", 0);
    other.plugin().pages().keep("pad 5\n", 0);
    EXPECT_EQ(other.plugin().pages().view(), "pad 3\n") << "a page that hasn't shown it yet leaves it";
}

TEST(PluginState, WithoutAViewOrWithAnOddOneIsRestoredAllTheSame) {
    Loaded host;
    HostState state(false);
    state.save(host);
    PluginHost other;
    other.plugin().pages().keep("pad 3\n", 0);
    ASSERT_EQ(state.restore(other), LV2_STATE_SUCCESS) << other.world.log;
    EXPECT_EQ(other.plugin().pages().view(), "") << "what it told of is gone with the project";
    state.of(host, kViewUri) = {{'p', 'a', 'd', ' ', '1'}, host.world.urid(LV2_ATOM__Int)};
    ASSERT_EQ(state.restore(other), LV2_STATE_SUCCESS) << other.world.log;
    EXPECT_EQ(other.plugin().pages().view(), "");
    state.of(host, kViewUri).type = host.world.urid(LV2_ATOM__String);
    ASSERT_EQ(state.restore(other), LV2_STATE_SUCCESS) << other.world.log;
    EXPECT_EQ(other.plugin().pages().view(), "pad 1") << "without the zero at its end";
}

TEST(PluginState, ThatCantBeWrittenIsTold) {
    Loaded host;
    HostState state(true);
    std::filesystem::create_directory(state.file());
    EXPECT_NE(state.save(host), LV2_STATE_SUCCESS);
    EXPECT_NE(host.world.log.find("can't be written"), std::string::npos) << host.world.log;
}

TEST(PluginState, BringsSolosBackAndLeavesNoneBehind) {
    Loaded host;
    host.sampler().SetPadSolo(3, 1);
    HostState state(false);
    state.save(host);
    const auto peak = [](PluginHost& played, std::uint8_t key) {
        played.midi(0, 0x90, key, 100);
        played.block(2000);
        const auto end = played.audio[0].end();
        return *std::max_element(end - 2000, end);
    };
    PluginHost other;
    ASSERT_EQ(state.restore(other), LV2_STATE_SUCCESS);
    EXPECT_EQ(peak(other, 48), 0.0f) << "another pad is solo";
    host.sampler().SetPadSolo(3, 0);
    state.save(host);
    ASSERT_EQ(state.restore(other), LV2_STATE_SUCCESS);
    EXPECT_GT(peak(other, 49), 0.05f);
}

TEST(PluginState, IsSavedAndRestoredWhileItPlays) {
    Loaded host;
    HostState state(false);
    state.save(host);
    std::thread thread([&] {
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(state.restore(host), LV2_STATE_SUCCESS);
            EXPECT_EQ(state.save(host), LV2_STATE_SUCCESS);
        }
    });
    for (int i = 0; i < 200; ++i) {
        host.midi(0, i % 2 ? 0x80 : 0x90, static_cast<std::uint8_t>(48 + i / 2 % 16), 100);
        host.block(64);
    }
    thread.join();
    EXPECT_EQ(filesOf(host), 4);
}

}  // namespace
}  // namespace marnoth::test::plugin_state_test
