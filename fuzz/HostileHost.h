#pragma once

#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/state/state.h>
#include <lv2/worker/worker.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "fuzz/Check.h"
#include "fuzz/MemoryFile.h"
#include "lv2/PluginWorld.h"
#include "shells/lv2/Descriptors.h"
#include "shells/lv2/Midnam.h"
#include "shells/lv2/Names.h"
#include "shells/lv2/Plugin.h"

namespace marnoth::fuzz {

using Bytes = std::vector<std::uint8_t>;

/// The properties of a state.
struct State {
    struct Property {
        Bytes bytes;
        LV2_URID type = 0;
        bool operator==(const Property&) const = default;
    };
    std::map<LV2_URID, Property> properties;
    bool knowsPath = true;
    int refuses = 0;  ///< the property, counted from 1, that the host has no room for
};

/// An instance in a host that keeps to its side of the rules and to nothing else: every buffer is as long as
/// it says, to the byte.
class HostileHost {
public:
    HostileHost(test::PluginWorld& world, std::uint32_t index)
        : world_(world), descriptor_(*pluginDescriptor(index)), channels_(index == 0 ? 2 : 34) {
        features_ = {world.features()[0], world.features()[1], &midnamFeature_, &workerFeature_, nullptr};
        instance_ = descriptor_.instantiate(&descriptor_, 22050, "", features_.data());
        require(instance_, "an instance can be made");
        descriptor_.activate(instance_);
    }
    ~HostileHost() { descriptor_.cleanup(instance_); }
    HostileHost(const HostileHost&) = delete;
    HostileHost& operator=(const HostileHost&) = delete;

    std::uint32_t connected = ~0u;  ///< bits: the events in, out, then the first audio ports
    bool isTame = true;             ///< what it plays is audio as files bring it

    void activate() {
        descriptor_.deactivate(instance_);
        descriptor_.activate(instance_);
    }

    void setRate(LV2_URID type, std::span<const std::uint8_t> value) {
        const Bytes copy(value.begin(), value.end());
        const std::array<LV2_Options_Option, 2> wish{
            {{LV2_OPTIONS_INSTANCE, 0, world_.urid(LV2_PARAMETERS__sampleRate),
              static_cast<std::uint32_t>(copy.size()), type, copy.data()},
             {}}};
        extension<LV2_Options_Interface>(LV2_OPTIONS__interface).set(instance_, wish.data());
    }

    /// `events` are a sequence's; what comes out finds room for `room` bytes.
    void run(std::span<const std::uint8_t> events, std::uint32_t frames, std::uint32_t room) {
        Bytes in = sequenceOf(events);
        Bytes out(sizeof(LV2_Atom) + room);
        const LV2_Atom offered{room, world_.urid(LV2_ATOM__Chunk)};
        std::memcpy(out.data(), &offered, sizeof offered);
        std::vector<std::vector<float>> audio(channels_, std::vector<float>(frames, kUntouched));
        descriptor_.connect_port(instance_, kEventsIn, connected & 1 ? in.data() : nullptr);
        descriptor_.connect_port(instance_, kEventsOut, connected & 2 ? out.data() : nullptr);
        for (std::uint32_t i = 0; i < channels_; ++i)
            descriptor_.connect_port(instance_, kFirstAudioOut + i,
                                     isAudioConnected(i) ? audio[i].data() : nullptr);
        descriptor_.run(instance_, frames);
        for (std::uint32_t i = 0; i < channels_; ++i)
            if (isAudioConnected(i)) requireAudio(audio[i]);
        if (connected & 2) requireEvents(out, frames);
        work();
    }

    LV2_State_Status save(State& state, bool hasFiles) {
        state.properties.clear();
        Call call{&state, 0};
        return stateInterface().save(instance_, stored, &call, 0, hasFiles ? fileFeatures() : none());
    }
    LV2_State_Status restore(State& state, bool hasFiles) {
        Call call{&state, 0};
        knowsPath_ = state.knowsPath;
        return stateInterface().restore(instance_, retrieved, &call, 0, hasFiles ? fileFeatures() : none());
    }
    /// All that an instance keeps.
    std::map<LV2_URID, State::Property> kept() {
        State state;
        require(save(state, false) == LV2_STATE_SUCCESS, "it can be saved");
        return state.properties;
    }
    Plugin& plugin() const { return static_cast<Plugin&>(PluginInstance::of(instance_)); }
    MemoryFile& file() {
        static MemoryFile file;
        return file;
    }

    std::string names() {
        const auto& midnam = extension<MidnamInterface>(kMidnamInterfaceUri);
        char* const text = midnam.midnam(instance_);
        require(text, "there are names");
        const std::string copy = text;
        midnam.free(text);
        return copy;
    }

private:
    static constexpr float kUntouched = 12345.0f;
    struct Call {
        State* state;
        int count;
    };

    template <class T>
    const T& extension(const char* uri) const {
        return *static_cast<const T*>(descriptor_.extension_data(uri));
    }
    const LV2_State_Interface& stateInterface() const {
        return extension<LV2_State_Interface>(LV2_STATE__interface);
    }
    bool isAudioConnected(std::uint32_t channel) const { return channel > 29 || connected & 4u << channel; }

    Bytes sequenceOf(std::span<const std::uint8_t> events) const {
        Bytes in(sizeof(LV2_Atom_Sequence) + events.size());
        const LV2_Atom_Sequence head{
            {static_cast<std::uint32_t>(in.size() - sizeof(LV2_Atom)), sequenceType_}, {0, 0}};
        std::memcpy(in.data(), &head, sizeof head);
        std::copy(events.begin(), events.end(), in.begin() + sizeof head);
        return in;
    }

    void requireAudio(const std::vector<float>& audio) const {
        for (const float sample : audio) {
            require(sample != kUntouched, "every frame is written");
            require(!isTame || std::isfinite(sample), "audio is made of numbers");
        }
    }
    void requireEvents(const Bytes& out, std::uint32_t frames) const {
        LV2_Atom_Sequence head;
        if (out.size() < sizeof head) return;
        std::memcpy(&head, out.data(), sizeof head);
        require(head.atom.type == sequenceType_, "what comes out is a sequence");
        require(sizeof(LV2_Atom) + head.atom.size <= out.size(), "it finds room");
        std::size_t at = sizeof head;
        const std::size_t end = sizeof(LV2_Atom) + head.atom.size;
        while (at < end) at = requireEvent(out, at, end, frames);
    }
    /// Where the next one is.
    std::size_t requireEvent(const Bytes& out, std::size_t at, std::size_t end, std::uint32_t frames) const {
        LV2_Atom_Event event;
        require(end - at >= sizeof event, "an event has its header");
        std::memcpy(&event, out.data() + at, sizeof event);
        require(event.time.frames >= 0 && event.time.frames <= std::max<std::int64_t>(frames, 1) - 1,
                "an event is in its block");
        require(event.body.size <= end - at - sizeof event, "an event is whole");
        requireNews({out.data() + at + sizeof event, event.body.size}, event.body.type);
        return at + sizeof event + (event.body.size + 7) / 8 * 8;
    }
    void requireNews(std::span<const std::uint8_t> body, LV2_URID type) const {
        const Urids& urids = plugin().urids();
        const AtomView object{type, body};
        if (objectType(object, urids) == urids.stateChanged) return;
        require(objectType(object, urids) == urids.patchSet, "it is news that a host knows");
        const auto property = propertyOf(object, urids.patchProperty);
        const auto value = propertyOf(object, urids.patchValue);
        require(property && uridIn(*property, urids) != 0, "it says of what");
        require(value && std::isfinite(numberIn(*value, urids).value_or(NAN)), "its value is a number");
    }

    void work() {
        const auto& worker = extension<LV2_Worker_Interface>(LV2_WORKER__interface);
        for (; asked_ > 0; --asked_) worker.work(instance_, responded, this, 0, nullptr);
        for (; answers_ > 0; --answers_) worker.work_response(instance_, 0, nullptr);
    }
    static LV2_Worker_Status scheduled(LV2_Worker_Schedule_Handle handle, std::uint32_t, const void*) {
        ++static_cast<HostileHost*>(handle)->asked_;
        return LV2_WORKER_SUCCESS;
    }
    static LV2_Worker_Status responded(LV2_Worker_Respond_Handle handle, std::uint32_t, const void*) {
        ++static_cast<HostileHost*>(handle)->answers_;
        return LV2_WORKER_SUCCESS;
    }

    static LV2_State_Status stored(LV2_State_Handle handle, std::uint32_t key, const void* value,
                                   std::size_t size, std::uint32_t type, std::uint32_t) {
        Call& call = *static_cast<Call*>(handle);
        if (++call.count == call.state->refuses) return LV2_STATE_ERR_NO_SPACE;
        const auto* bytes = static_cast<const std::uint8_t*>(value);
        call.state->properties[key] = {Bytes(bytes, bytes + size), type};
        return LV2_STATE_SUCCESS;
    }
    static const void* retrieved(LV2_State_Handle handle, std::uint32_t key, std::size_t* size,
                                 std::uint32_t* type, std::uint32_t* flags) {
        State& state = *static_cast<Call*>(handle)->state;
        const auto found = state.properties.find(key);
        if (found == state.properties.end()) return nullptr;
        *size = found->second.bytes.size();
        *type = found->second.type;
        *flags = LV2_STATE_IS_POD;
        static const std::uint8_t nothing = 0;
        return found->second.bytes.empty() ? &nothing : found->second.bytes.data();
    }
    /// Whatever the path, it is the one file.
    static char* path(void* handle, const char*) {
        HostileHost& host = *static_cast<HostileHost*>(handle);
        return host.knowsPath_ ? strdup(host.file().name()) : nullptr;
    }
    static const LV2_Feature* const* none() {
        static constexpr std::array<const LV2_Feature*, 1> kNone{};
        return kNone.data();
    }
    const LV2_Feature* const* fileFeatures() const { return fileFeatures_.data(); }

    test::PluginWorld& world_;
    const LV2_Descriptor& descriptor_;
    const std::uint32_t channels_;
    const LV2_URID sequenceType_ = world_.urid(LV2_ATOM__Sequence);
    LV2_Handle instance_ = nullptr;
    int asked_ = 0;
    int answers_ = 0;
    bool knowsPath_ = true;
    MidnamHost midnam_{this, [](void*) {}};
    LV2_Worker_Schedule schedule_{this, scheduled};
    LV2_Feature midnamFeature_{kMidnamUpdateUri, &midnam_};
    LV2_Feature workerFeature_{LV2_WORKER__schedule, &schedule_};
    std::array<const LV2_Feature*, 5> features_{};
    LV2_State_Make_Path make_{this, path};
    LV2_State_Map_Path map_{this, path, path};
    LV2_Feature makeFeature_{LV2_STATE__makePath, &make_};
    LV2_Feature mapFeature_{LV2_STATE__mapPath, &map_};
    std::array<const LV2_Feature*, 3> fileFeatures_{&makeFeature_, &mapFeature_, nullptr};
};

}  // namespace marnoth::fuzz
