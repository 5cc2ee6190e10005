#pragma once

#include <gtest/gtest.h>
#include <lilv/lilv.h>
#include <lv2/state/state.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "lv2/EventBuffer.h"
#include "lv2/PluginWorld.h"
#include "shells/lv2/Midnam.h"

namespace marnoth::test {

template <auto freeIt>
struct Freeing {
    template <class T>
    void operator()(T* it) const {
        freeIt(it);
    }
};
using LilvNodeOwner = std::unique_ptr<LilvNode, Freeing<lilv_node_free>>;
using LilvStateOwner = std::unique_ptr<LilvState, Freeing<lilv_state_free>>;

/// All plug-ins of the folders in LV2_PATH.
class Plugins {
public:
    Plugins() { lilv_world_load_all(world_.get()); }

    LilvWorld* get() const { return world_.get(); }
    LilvNodeOwner uri(const std::string& text) const {
        return LilvNodeOwner(lilv_new_uri(world_.get(), text.c_str()));
    }
    const LilvPlugin* find(const std::string& text) const {
        return lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world_.get()), uri(text).get());
    }

private:
    std::unique_ptr<LilvWorld, Freeing<lilv_world_free>> world_{lilv_world_new()};
};

/// An instance as an offline host has it: it asks the bundle what each port is, and connects it so.
class LilvHost {
public:
    LilvHost(const Plugins& plugins, const std::string& uri, double rate)
        : plugin_(plugins.find(uri)), instance_(lilv_plugin_instantiate(plugin_, rate, world.features())) {
        if (!instance_) throw std::runtime_error(uri + " can't be made");
        const auto audioPort = plugins.uri(LILV_URI_AUDIO_PORT);
        const auto atomPort = plugins.uri("http://lv2plug.in/ns/ext/atom#AtomPort");
        const auto inputPort = plugins.uri(LILV_URI_INPUT_PORT);
        for (std::uint32_t i = 0; i < lilv_plugin_get_num_ports(plugin_); ++i) {
            const LilvPort* const port = lilv_plugin_get_port_by_index(plugin_, i);
            const bool isInput = lilv_port_is_a(plugin_, port, inputPort.get());
            if (lilv_port_is_a(plugin_, port, audioPort.get())) {
                audioPorts_.push_back(i);
            } else if (lilv_port_is_a(plugin_, port, atomPort.get())) {
                lilv_instance_connect_port(instance_.get(), i, isInput ? in_.data() : out_.data());
            } else {
                lilv_instance_connect_port(instance_.get(), i, &control_);
            }
        }
        audio.resize(audioPorts_.size());
        isConnected.assign(audioPorts_.size(), true);
    }

    LV2_Handle handle() const { return lilv_instance_get_handle(instance_.get()); }
    void activate() { lilv_instance_activate(instance_.get()); }

    /// A position at the start of the block to come, which is at a frame of the timeline.
    void position(std::int64_t frame, float tempo) { in_.position(0, frame, 1, tempo); }
    void midi(std::int64_t frame, std::uint8_t status, std::uint8_t key, std::uint8_t velocity) {
        in_.midi(frame, status, key, velocity);
    }
    void automate(const std::string& property, float value) { in_.set(0, world.urid(property), value); }
    void block(std::uint32_t frames) {
        in_.end();
        out_.offer();
        for (std::size_t i = 0; i < audio.size(); ++i) {
            const std::size_t begin = audio[i].size();
            audio[i].resize(begin + frames, 9.0f);
            lilv_instance_connect_port(instance_.get(), audioPorts_[i],
                                       isConnected[i] ? audio[i].data() + begin : nullptr);
        }
        lilv_instance_run(instance_.get(), frames);
        in_.begin();
    }

    /// Into a folder, or without files where that is empty.
    LilvStateOwner state(const std::filesystem::path& folder) {
        const std::string scratch = (folder / "scratch").string();
        const std::string whole = folder.string();
        const bool hasFiles = !folder.empty();
        const auto folderOr = [hasFiles](const std::string& name) {
            return hasFiles ? name.c_str() : nullptr;
        };
        return LilvStateOwner(lilv_state_new_from_instance(
            plugin_, instance_.get(), world.map(), folderOr(scratch), folderOr(whole), folderOr(whole),
            folderOr(whole), nullptr, nullptr, LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE, world.features()));
    }
    void restore(const LilvState& state) {
        lilv_state_restore(&state, instance_.get(), nullptr, nullptr, 0, world.features());
    }

    /// The document of note names that hosts ask for.
    std::string noteNames() const {
        const auto* midnam = static_cast<const MidnamInterface*>(
            lilv_instance_get_extension_data(instance_.get(), kMidnamInterfaceUri));
        if (!midnam) throw std::runtime_error("there are no note names");
        char* const text = midnam->midnam(lilv_instance_get_handle(instance_.get()));
        const std::string copy = text ? text : "";
        midnam->free(text);
        return copy;
    }

    PluginWorld world;
    std::vector<std::vector<float>> audio;  ///< by audio port, in their order
    std::vector<bool> isConnected;

private:
    const LilvPlugin* plugin_;
    EventBuffer in_{world};
    EventBuffer out_{world};
    float control_ = 0;
    std::vector<std::uint32_t> audioPorts_;
    std::unique_ptr<LilvInstance, Freeing<lilv_instance_free>> instance_;
};

}  // namespace marnoth::test
