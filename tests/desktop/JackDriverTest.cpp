#include <gtest/gtest.h>

#include <map>
#include <numeric>

#include "shells/desktop/audio/JackSystem.h"
#include "shells/desktop/settings/DesktopSettings.h"

namespace marnoth::test::jack_driver_test {
namespace {

using Lines = std::vector<std::string>;

/// A server of a test: what it has, and what was done with it.
struct Server {
    bool runs = true;
    std::uint32_t rate = 44100;
    std::uint32_t rateOfBlocks = 0;  ///< that it has from the first block on; 0 for the same
    jack_nframes_t frames = 256;
    jack_transport_state_t state = JackTransportStopped;
    jack_position_t position{};
    Lines speakers{"system:playback_1", "system:playback_2"};
    Lines midi{"keys:out"};

    Lines done;
    Lines ports;  ///< of the client; a handle is its place from 1 on
    std::vector<std::array<float, 1024>> buffers;
    std::vector<jack_midi_event_t> events;
    JackProcessCallback process = nullptr;
    JackBufferSizeCallback bufferSize = nullptr;
    JackSampleRateCallback sampleRate = nullptr;
    JackFreewheelCallback freewheel = nullptr;
    JackPortRegistrationCallback registration = nullptr;
    JackXRunCallback xrun = nullptr;
    JackInfoShutdownCallback shutdown = nullptr;
    JackTimebaseCallback timebase = nullptr;
    void* driver = nullptr;

    void run() { process(frames, driver); }
    void begin() {
        if (rateOfBlocks != 0) sampleRate(rateOfBlocks, driver);
        run();
    }
};

Server* server = nullptr;

std::size_t placeOf(jack_port_t* port) {
    return reinterpret_cast<std::uintptr_t>(port) - 1;
}

const char** listed(const Lines& names) {
    auto** const list = static_cast<const char**>(std::calloc(names.size() + 1, sizeof(char*)));
    std::ranges::transform(names, list, [](const std::string& name) { return name.c_str(); });
    return list;
}

jack_client_t* openClient(const char*, jack_options_t, jack_status_t*, ...) {
    return server->runs ? reinterpret_cast<jack_client_t*>(server) : nullptr;
}

JackLibrary library() {
    JackLibrary jack;
    jack.client_open = openClient;
    jack.client_close = [](jack_client_t*) { return server->done.push_back("closed"), 0; };
    jack.activate = [](jack_client_t*) { return server->begin(), 0; };
    jack.deactivate = [](jack_client_t*) { return server->done.push_back("deactivated"), 0; };
    jack.get_sample_rate = [](jack_client_t*) { return server->rate; };
    jack.get_buffer_size = [](jack_client_t*) { return server->frames; };
    jack.set_buffer_size = [](jack_client_t*, jack_nframes_t frames) {
        server->frames = frames;
        return 0;
    };
    jack.set_process_callback = [](jack_client_t*, JackProcessCallback callback, void* driver) {
        server->process = callback;
        server->driver = driver;
        return 0;
    };
    jack.set_buffer_size_callback = [](jack_client_t*, JackBufferSizeCallback callback, void*) {
        return server->bufferSize = callback, 0;
    };
    jack.set_sample_rate_callback = [](jack_client_t*, JackSampleRateCallback callback, void*) {
        return server->sampleRate = callback, 0;
    };
    jack.set_port_registration_callback = [](jack_client_t*, JackPortRegistrationCallback callback, void*) {
        return server->registration = callback, 0;
    };
    // Those of others are their places in the list of what sends MIDI, from 1000 on.
    jack.port_by_id = [](jack_client_t*, jack_port_id_t id) {
        return reinterpret_cast<jack_port_t*>(static_cast<std::uintptr_t>(id));
    };
    jack.set_freewheel_callback = [](jack_client_t*, JackFreewheelCallback callback, void*) {
        return server->freewheel = callback, 0;
    };
    jack.set_xrun_callback = [](jack_client_t*, JackXRunCallback callback, void*) {
        return server->xrun = callback, 0;
    };
    jack.on_info_shutdown = [](jack_client_t*, JackInfoShutdownCallback callback, void*) {
        server->shutdown = callback;
    };
    jack.port_register = [](jack_client_t*, const char* name, const char*, unsigned long, unsigned long) {
        server->ports.emplace_back(name);
        server->buffers.emplace_back().fill(9.0f);
        return reinterpret_cast<jack_port_t*>(server->ports.size());
    };
    jack.port_get_buffer = [](jack_port_t* port, jack_nframes_t) -> void* {
        return server->buffers[placeOf(port)].data();
    };
    jack.port_name = [](const jack_port_t* port) {
        constexpr std::uintptr_t kOthers = 1000;
        const auto id = reinterpret_cast<std::uintptr_t>(port);
        if (id >= kOthers) return server->midi[id - kOthers].c_str();
        return server->ports[placeOf(const_cast<jack_port_t*>(port))].c_str();
    };
    jack.get_ports = [](jack_client_t*, const char*, const char* type, unsigned long) {
        return listed(type == std::string(JACK_DEFAULT_MIDI_TYPE) ? server->midi : server->speakers);
    };
    jack.connect = [](jack_client_t*, const char* from, const char* to) {
        server->done.push_back(std::string(from) + " > " + to);
        return 0;
    };
    jack.free = std::free;
    jack.set_error_function = [](void (*)(const char*)) {};
    jack.midi_get_event_count = [](void*) { return static_cast<std::uint32_t>(server->events.size()); };
    jack.midi_event_get = [](jack_midi_event_t* event, void*, std::uint32_t place) {
        *event = server->events[place];
        return 0;
    };
    jack.transport_query = [](const jack_client_t*, jack_position_t* position) {
        *position = server->position;
        return server->state;
    };
    jack.transport_start = [](jack_client_t*) { server->done.push_back("start"); };
    jack.transport_stop = [](jack_client_t*) { server->done.push_back("stop"); };
    jack.transport_locate = [](jack_client_t*, jack_nframes_t frame) {
        server->done.push_back("locate " + std::to_string(frame));
        return 0;
    };
    jack.set_timebase_callback = [](jack_client_t*, int, JackTimebaseCallback callback, void*) {
        return server->timebase = callback, 0;
    };
    jack.release_timebase = [](jack_client_t*) { return server->timebase = nullptr, 0; };
    return jack;
}

class Player final : public AudioClient {
public:
    bool prepare(std::uint32_t rate, std::int32_t) override {
        this->rate = rate;
        return true;
    }
    void midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t) override {
        heard.push_back(std::to_string(frame) + ": " + std::to_string(status) + " " + std::to_string(data1));
    }
    void render(std::int32_t frames, OutputPointers outputs) override {
        blocks.push_back(frames);
        for (float* const output : outputs) output[0] = 1.0f;
    }
    void follow(const LiveTransport& transport) override { told.push_back(transport); }
    MusicalPlace placeOf(std::int64_t frame) override { return {static_cast<double>(frame), 90.0}; }
    void freewheel() override { ++freewheeled; }
    void dropout() override { ++dropouts; }

    std::uint32_t rate = 0;
    int dropouts = 0;
    int freewheeled = 0;
    Lines heard;
    std::vector<std::int32_t> blocks;
    std::vector<LiveTransport> told;
};

class JackDriverTest : public testing::Test {
protected:
    JackDriverTest() { server = &here; }
    AudioDriver& open(const AudioWish& wish = {}) {
        driver = system.open(wish, player);
        return *driver;
    }

    Server here;
    const JackLibrary jack = library();
    JackSystem system{&jack};
    Player player;
    std::unique_ptr<AudioDriver> driver;
};

TEST_F(JackDriverTest, TheMixGoesToTheSpeakersAndAllThatSendsMidiToThePort) {
    open();
    EXPECT_EQ(here.done,
              (Lines{"mix left > system:playback_1", "mix right > system:playback_2", "keys:out > midi"}));
    EXPECT_EQ(here.ports.size(), 35u);
    EXPECT_EQ(here.ports[33], "pad 16 right");
    here.done.clear();
    here.midi.push_back("wheel:out");
    driver->look();
    EXPECT_EQ(here.done, Lines{"wheel:out > midi"}) << "what comes later, and only that";
    here.midi.pop_back();
    driver->look();
    here.midi.emplace_back("wheel:out");
    here.done.clear();
    driver->look();
    EXPECT_EQ(here.done, Lines{"wheel:out > midi"}) << "and what was gone for a while";
    here.registration(1000, 0, here.driver);
    here.registration(1000, 1, here.driver);
    here.done.clear();
    driver->look();
    EXPECT_EQ(here.done, Lines{"keys:out > midi"}) << "and what was gone for a moment between two looks";
    const Lines speakers = std::exchange(here.speakers, {});
    driver->look();
    here.speakers = speakers;
    here.done.clear();
    driver->look();
    EXPECT_EQ(here.done.size(), 2u) << "speakers too";
}

TEST_F(JackDriverTest, ABlockHasItsMessagesAndGoesIntoThePorts) {
    open();
    std::array<jack_midi_data_t, 3> note{0x93, 60, 100};
    here.events = {{17, 3, note.data()}, {18, 4, note.data()}, {19, 2, note.data()}};
    here.run();
    EXPECT_EQ(player.heard, (Lines{"17: 147 60", "19: 147 60"}));
    EXPECT_EQ(player.blocks, std::vector<std::int32_t>{256});
    EXPECT_EQ(here.buffers[33][0], 1.0f);
    EXPECT_TRUE(player.told.empty()) << "the transport is the program's own";
}

TEST_F(JackDriverTest, AnotherLengthOfBlocksIsFollowedAndAskedForOnlyWhenWished) {
    open();
    EXPECT_EQ(here.frames, 256u);
    here.bufferSize(512, here.driver);
    EXPECT_EQ(driver->frames(), 512);
    driver.reset();
    open({.device = {}, .midiPort = {}, .rate = 0, .frames = 64});
    EXPECT_EQ(here.frames, 64u);
    EXPECT_EQ(driver->frames(), 64);
}

TEST_F(JackDriverTest, AtAnotherRateItIsSilentUntilItIsOpenedAnew) {
    open();
    here.sampleRate(44100, here.driver);
    EXPECT_EQ(driver->trouble(), "");
    here.sampleRate(48000, here.driver);
    here.run();
    EXPECT_EQ(driver->trouble(), "JACK plays at another rate now.");
    EXPECT_TRUE(player.blocks.empty());
    EXPECT_EQ(here.buffers[0][255], 0.0f);
    driver.reset();
    here.rate = 48000;
    open();
    EXPECT_EQ(player.rate, 48000u);
    EXPECT_EQ(driver->trouble(), "");
}

TEST_F(JackDriverTest, AServerThatHasAnotherRateThanItSaidBeforePlaysAtItsOwn) {
    here.rateOfBlocks = 48000;
    open();
    EXPECT_EQ(player.rate, 48000u);
    EXPECT_EQ(driver->rate(), 48000u);
    EXPECT_EQ(driver->trouble(), "") << "or it would be opened anew for ever";
    EXPECT_TRUE(player.blocks.empty()) << "none before its player knows the rate";
    here.run();
    EXPECT_EQ(player.blocks.size(), 1u);
    driver.reset();
    EXPECT_NO_THROW(open({.device = {}, .midiPort = {}, .rate = 48000, .frames = 0}));
    driver.reset();
    here.done.clear();
    EXPECT_THROW(open({.device = {}, .midiPort = {}, .rate = 44100, .frames = 0}), std::runtime_error);
    EXPECT_EQ(here.done, (Lines{"deactivated", "closed"}));
}

TEST_F(JackDriverTest, DropoutsCountButWhileItFreewheels) {
    open();
    here.xrun(here.driver);
    here.freewheel(1, here.driver);
    here.xrun(here.driver);
    here.freewheel(0, here.driver);
    here.xrun(here.driver);
    EXPECT_EQ(player.dropouts, 2);
}

TEST_F(JackDriverTest, EachBlockOfAServerThatFreewheelsIsToldAsOne) {
    open();
    here.run();
    here.freewheel(1, here.driver);
    here.run();
    here.run();
    here.freewheel(0, here.driver);
    here.run();
    EXPECT_EQ(player.freewheeled, 2);
}

TEST_F(JackDriverTest, AServerThatEndsIsSaid) {
    open();
    here.shutdown(JackServerError, "", here.driver);
    EXPECT_EQ(driver->trouble(), "The JACK server has ended.");
    driver.reset();
    here.runs = false;
    EXPECT_THROW(open(), std::runtime_error);
    EXPECT_EQ(system.missing(), "No JACK server runs.");
    EXPECT_TRUE(system.devices().empty());
}

TEST_F(JackDriverTest, ItsDevicesAreTheClientsThatHaveSpeakers) {
    here.speakers = {"system:playback_1", "system:playback_2", "USB Audio:front left"};
    const std::vector<AudioDevice> devices = system.devices();
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(devices[0].name, "system");
    EXPECT_TRUE(devices[0].isDefault);
    EXPECT_EQ(devices[1].name, "USB Audio");
    EXPECT_EQ(devices[1].rates, std::vector<std::uint32_t>{44100});
    here.done.clear();
    open({.device = "USB Audio", .midiPort = "none", .rate = 0, .frames = 0});
    EXPECT_EQ(here.done, Lines{"mix left > USB Audio:front left"});
}

TEST_F(JackDriverTest, ItsTransportIsFollowedAndMovedWhenThatIsAskedFor) {
    open();
    EXPECT_EQ(driver->transport(), nullptr);
    driver->setTransport(TransportRole::follows);
    here.state = JackTransportRolling;
    here.position.frame = 5000;
    here.run();
    ASSERT_EQ(player.told.size(), 1u);
    EXPECT_TRUE(player.told[0].playing);
    EXPECT_EQ(player.told[0].frame, 5000);
    here.done.clear();
    ASSERT_NE(driver->transport(), nullptr);
    driver->transport()->play();
    driver->transport()->stop();
    driver->transport()->locate(-5);
    driver->transport()->locate(std::int64_t{1} << 40);
    EXPECT_EQ(here.done, (Lines{"start", "stop", "locate 0", "locate 4294967295"}));
    driver->setTransport(TransportRole::own);
    EXPECT_EQ(driver->transport(), nullptr);
}

TEST_F(JackDriverTest, WhoLeadsSaysTheBeatsAndDoesntFollowItsOwn) {
    open();
    driver->setTransport(TransportRole::leads);
    ASSERT_NE(here.timebase, nullptr);
    jack_position_t& position = here.position;
    position.frame = 960;
    position.frame_rate = 44100;
    here.timebase(JackTransportRolling, 256, &position, 0, here.driver);
    EXPECT_EQ(position.beat, 2) << "the player has a tick for each frame";
    EXPECT_EQ(double{position.beats_per_minute}, 90.0) << "a copy, since the record is packed";
    here.run();
    ASSERT_EQ(player.told.size(), 1u);
    EXPECT_FALSE(player.told[0].tempo);
    driver->setTransport(TransportRole::follows);
    EXPECT_EQ(here.timebase, nullptr);
    here.run();
    EXPECT_EQ(player.told[1].tempo, 90.0);
}

}  // namespace
}  // namespace marnoth::test::jack_driver_test
