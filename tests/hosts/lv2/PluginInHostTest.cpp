#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <barrier>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <random>
#include <thread>

#include "hosts/lv2/LilvHost.h"
#include "shellkit/TempFolder.h"
#include "shellkit/media/WaveFrames.h"
#include "shellkit/midi/MidiFile.h"

namespace marnoth::test {
namespace {

constexpr std::uint32_t kRate = 48000;
constexpr float kTempo = 120;
constexpr std::int64_t kFramesOfTick = 25;
constexpr std::int64_t kMostGrowth = 1 << 20;
const std::string kStereo = "urn:marnoth:instrument";
const std::string kMulti = "urn:marnoth:instrument-multi";

std::string given(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// The demo's groove with each pad on an output of its own, and what the program renders of it.
class Groove {
public:
    Groove() {
        const std::string demo = given("MARNOTH_DEMO");
        const std::string render = given("MARNOTH_PROGRAM") +
                                   " render --quiet --rate 48000 --tempo 120 --beats 24 --project " + demo +
                                   "/groove.mrn --midi " + demo + "/groove.mid";
        std::string settings;
        for (int pad = 1; pad <= kPads; ++pad)
            settings += " --pad " + std::to_string(pad) + "=,output=" + std::to_string(pad);
        run(render + settings + " --save " + project().string() + " --out " + name("stereo"));
        run(render + " --stems " + folder_.name("stems") + " --out " + name("mix"));
        for (const SynthEvent& note : readMidi(demo + "/groove.mid").notes) {
            const std::int64_t begin = note.time * kFramesOfTick;
            const std::int64_t end = begin + note.duration * kFramesOfTick;
            messages.push_back({begin, 0x90, note.note, note.velocity});
            messages.push_back({end, 0x80, note.note, 0});
        }
        std::ranges::stable_sort(messages, {}, &Message::frame);
    }

    struct Message {
        std::int64_t frame;
        std::uint8_t status;
        std::uint8_t key;
        std::uint8_t velocity;
    };
    static constexpr int kPads = 4;

    std::filesystem::path project() const { return folder_ / "routed.mrn"; }
    /// What two outputs hold, the mix alone.
    std::vector<float> stereo() const { return readWaveFrames(name("stereo")).samples; }
    /// Of all outputs, 0 the mix.
    std::vector<float> output(int number) const {
        return readWaveFrames(number ? name("stems/pad0" + std::to_string(number)) : name("mix")).samples;
    }

    std::vector<Message> messages;

private:
    static void run(const std::string& command) { ASSERT_EQ(std::system(command.c_str()), 0) << command; }
    std::string name(const std::string& wave) const { return folder_.name(wave + ".wav"); }

    TempFolder folder_;
};

/// What all tests need of the machine, made once.
struct Studio {
    Plugins plugins;
    Groove groove;
    static const Studio& get() {
        static const Studio studio;
        return studio;
    }
};

/// An instance with the groove's project.
class Player {
public:
    explicit Player(const std::string& uri, double rate = kRate)
        : host(Studio::get().plugins, uri, rate), messages_(Studio::get().groove.messages) {}
    void restoreGroove(const std::string& uri) {
        const TempFolder folder;
        writeText(folder / "state.ttl",
                  "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
                  "@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n"
                  "@prefix state: <http://lv2plug.in/ns/ext/state#> .\n"
                  "<> a pset:Preset ; lv2:appliesTo <" +
                      uri +
                      "> ; state:state [\n"
                      "  <urn:marnoth:stateVersion> 1 ; <urn:marnoth:project> <file://" +
                      Studio::get().groove.project().string() + "> ] .\n");
        const LilvStateOwner state(lilv_state_new_from_file(Studio::get().plugins.get(), host.world.map(),
                                                            nullptr, (folder / "state.ttl").c_str()));
        ASSERT_TRUE(state);
        host.restore(*state);
        EXPECT_EQ(host.world.log, "");
    }

    /// Plays on to a frame; `next` gives the lengths of the blocks.
    template <class Next>
    void playTo(std::int64_t end, Next next) {
        while (done_ < end) {
            const std::int64_t frames = std::min<std::int64_t>(next(), end - done_);
            host.position(done_, kTempo);
            for (; message_ < messages_.size() && messages_[message_].frame < done_ + frames; ++message_) {
                const Groove::Message& message = messages_[message_];
                host.midi(message.frame - done_, message.status, message.key, message.velocity);
            }
            host.block(static_cast<std::uint32_t>(frames));
            done_ += frames;
        }
    }

    LilvHost host;

private:
    const std::vector<Groove::Message>& messages_;
    std::size_t message_ = 0;
    std::int64_t done_ = 0;
};

void expectSame(const Player& player, std::size_t output, const std::vector<float>& rendered,
                std::size_t frames) {
    ASSERT_GE(rendered.size(), 2 * frames);
    float loudest = 0;
    for (std::size_t i = 0; i < 2 * frames; ++i) {
        ASSERT_EQ(player.host.audio[2 * output + i % 2][i / 2], rendered[i])
            << "output " << output << ", frame " << i / 2;
        loudest = std::max(loudest, std::abs(rendered[i]));
    }
    EXPECT_GT(loudest, 0.05f) << "output " << output;
}

using Blocks = std::function<std::int64_t()>;

TEST(PluginInHost, PlaysWhatTheProgramRendersInBlocksOfAnyLength) {
    std::mt19937 random(1);
    const std::vector<float> rendered = Studio::get().groove.stereo();
    const std::vector<std::pair<std::int64_t, Blocks>> cuts{
        {30'000, [] { return 1; }},
        {200'000, [] { return 64; }},
        {576'000, [] { return 272; }},
        {576'000, [] { return 8192; }},
        {576'000, [&] { return 1 + random() % 8192; }},
        {300'000, [&] { return 1 + random() % 63; }},
    };
    for (const auto& [frames, next] : cuts) {
        Player player(kStereo);
        player.restoreGroove(kStereo);
        player.host.activate();
        player.playTo(frames, next);
        expectSame(player, 0, rendered, static_cast<std::size_t>(frames));
    }
}

TEST(PluginInHost, WithAllItsOutputsItPlaysTheMixAndEachPad) {
    constexpr std::int64_t kFrames = 400'000;
    Player player(kMulti);
    player.restoreGroove(kMulti);
    ASSERT_EQ(player.host.audio.size(), 34u);
    // A host may leave out pads, here the third and all that are empty.
    for (std::size_t port = 6; port < 34; ++port) player.host.isConnected[port] = port / 2 == 4;
    player.host.activate();
    std::mt19937 random(2);
    player.playTo(kFrames, [&] { return 1 + random() % 3000; });
    for (const int output : {0, 1, 2, 4})
        expectSame(player, static_cast<std::size_t>(output), Studio::get().groove.output(output), kFrames);
}

TEST(PluginInHost, IsSavedWhileItPlaysAndOpenedAgain) {
    const Studio& studio = Studio::get();
    const TempFolder folder;
    Player player(kStereo);
    player.restoreGroove(kStereo);
    player.host.activate();
    const std::vector<float> rendered = studio.groove.stereo();
    std::vector<LilvStateOwner> states;
    for (const std::string name : {"first", "second"}) {
        player.playTo(48000 * static_cast<std::int64_t>(states.size() + 1), [] { return 500; });
        states.push_back(player.host.state(folder / name));
        ASSERT_TRUE(states.back());
        ASSERT_EQ(lilv_state_save(studio.plugins.get(), player.host.world.map(), player.host.world.unmap(),
                                  states.back().get(), nullptr, folder.name(name).c_str(), "state.ttl"),
                  0);
    }
    player.playTo(150'000, [] { return 500; });
    expectSame(player, 0, rendered, 150'000);
    EXPECT_EQ(readText(folder / "first/state.ttl"), readText(folder / "second/state.ttl"));
    EXPECT_EQ(readText(folder / "first/project.mrn"), readText(folder / "second/project.mrn"));
    EXPECT_GT(readText(folder / "first/project.mrn").size(), 1'000'000u);

    Player opened(kStereo);
    const LilvStateOwner state(lilv_state_new_from_file(studio.plugins.get(), opened.host.world.map(),
                                                        nullptr, folder.name("first/state.ttl").c_str()));
    ASSERT_TRUE(state);
    opened.host.restore(*state);
    opened.host.activate();
    opened.playTo(150'000, [] { return 500; });
    expectSame(opened, 0, rendered, 150'000);
}

TEST(PluginInHost, IsSavedWithoutFilesToo) {
    const Studio& studio = Studio::get();
    Player player(kStereo);
    player.restoreGroove(kStereo);
    const LilvStateOwner state = player.host.state({});
    ASSERT_TRUE(state);
    char* const text =
        lilv_state_to_string(studio.plugins.get(), player.host.world.map(), player.host.world.unmap(),
                             state.get(), "urn:marnoth:test", nullptr);
    ASSERT_NE(text, nullptr);
    Player opened(kStereo);
    const LilvStateOwner read(
        lilv_state_new_from_string(studio.plugins.get(), opened.host.world.map(), text));
    std::free(text);
    ASSERT_TRUE(read);
    opened.host.restore(*read);
    opened.host.activate();
    opened.playTo(50'000, [] { return 500; });
    expectSame(opened, 0, studio.groove.stereo(), 50'000);
}

TEST(PluginInHost, ItsPresetsAreTheDemo) {
    const Studio& studio = Studio::get();
    for (const auto& [uri, preset] :
         {std::pair(kStereo, "urn:marnoth:groove"), std::pair(kMulti, "urn:marnoth:groove-multi")}) {
        const LilvNodeOwner node = studio.plugins.uri(preset);
        lilv_world_load_resource(studio.plugins.get(), node.get());
        Player player(uri);
        const LilvStateOwner state(
            lilv_state_new_from_world(studio.plugins.get(), player.host.world.map(), node.get()));
        ASSERT_TRUE(state);
        EXPECT_STREQ(lilv_state_get_label(state.get()), "Groove");
        player.host.restore(*state);
        EXPECT_EQ(player.host.world.log, "");
        player.host.activate();
        player.playTo(50'000, [] { return 500; });
        float loudest = 0;
        for (const float sample : player.host.audio[0]) loudest = std::max(loudest, std::abs(sample));
        EXPECT_GT(loudest, 0.05f) << preset;
    }
}

TEST(PluginInHost, NamesTheKeysThatPlayTheGroove) {
    Player player(kMulti);
    player.restoreGroove(kMulti);
    const std::string names = player.host.noteNames();
    for (const char* note : {"Number=\"60\" Name=\"1 drums\"", "Number=\"62\" Name=\"2 percussion\"",
                             "Number=\"64\" Name=\"3 bass\"", "Number=\"65\" Name=\"4 chords\""})
        EXPECT_NE(names.find(note), names.npos) << note << " in " << names;
    if (const std::string file = given("MARNOTH_NAMES"); !file.empty()) writeText(file, names);
}

TEST(PluginInHost, ThirtyTwoOnSeveralThreadsEachPlayAsOneAlone) {
    static constexpr int kThreads = 4;
    static constexpr std::int64_t kBlock = 256, kBlocks = 300;
    const Groove& groove = Studio::get().groove;
    std::vector<std::unique_ptr<Player>> players;
    for (int i = 0; i < 32; ++i) {
        players.push_back(std::make_unique<Player>(i % 2 ? kMulti : kStereo));
        players.back()->restoreGroove(i % 2 ? kMulti : kStereo);
        players.back()->host.activate();
    }
    // In each cycle an instance is another thread's, and a cycle begins when all have ended the last one.
    std::barrier cycle(kThreads);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (int block = 0; block < kBlocks; ++block) {
                for (int i = (thread + block) % kThreads; i < 32; i += kThreads)
                    players[static_cast<std::size_t>(i)]->playTo(kBlock * (block + 1), [] { return kBlock; });
                cycle.arrive_and_wait();
            }
        });
    threads.clear();
    const std::vector<float> stereo = groove.stereo();
    const std::vector<float> mix = groove.output(0), fourth = groove.output(4);
    for (std::size_t i = 0; i < players.size(); ++i) {
        expectSame(*players[i], 0, i % 2 ? mix : stereo, kBlock * kBlocks);
        if (i % 2) expectSame(*players[i], 4, fourth, kBlock * kBlocks);
    }
}

/// Bytes that this process has asked for and not given back. What lies in memory differs by megabytes from
/// run to run.
std::int64_t bytesInUse() {
    const struct mallinfo2 memory = mallinfo2();
    return static_cast<std::int64_t>(memory.uordblks + memory.hblkhd);
}

/// Hundreds, or as many as MARNOTH_ROUNDS says.
TEST(PluginInHost, InstancesComeAndGoAndLeaveNothing) {
    const std::string wished = given("MARNOTH_ROUNDS");
    const int rounds = wished.empty() ? 500 : std::stoi(wished);
    std::int64_t begin = 0;
    for (int i = 0; i < rounds; ++i) {
        if (i == rounds / 10) begin = bytesInUse();
        const std::string& uri = i % 2 ? kMulti : kStereo;
        Player player(uri, 44100 + i % 100);
        if (i % 10 == 0) player.restoreGroove(uri);
        player.host.activate();
        player.host.midi(0, 0x90, 60, 100);
        player.host.block(64);
    }
    const std::int64_t growth = bytesInUse() - begin;
    std::cout << rounds << " instances, " << growth << " bytes more than after the first tenth\n";
    EXPECT_LT(growth, kMostGrowth);
}

}  // namespace
}  // namespace marnoth::test
