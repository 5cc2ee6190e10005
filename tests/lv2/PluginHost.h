#pragma once

#include <gtest/gtest.h>
#include <lv2/atom/forge.h>
#include <lv2/log/log.h>
#include <lv2/midi/midi.h>
#include <lv2/state/state.h>
#include <lv2/time/time.h>
#include <lv2/urid/urid.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "shells/lv2/Descriptors.h"
#include "shells/lv2/Names.h"
#include "shells/lv2/Plugin.h"

namespace marnoth::test {

/// Numbers for names, and a log whose lines are kept.
class PluginWorld {
public:
    LV2_URID urid(const std::string& uri) { return urids_.try_emplace(uri, urids_.size() + 1).first->second; }
    const LV2_Feature* const* features() const { return features_.data(); }
    LV2_URID_Map* map() { return &map_; }

    std::string log;

private:
    static LV2_URID mapped(LV2_URID_Map_Handle handle, const char* uri) {
        return static_cast<PluginWorld*>(handle)->urid(uri);
    }
    static int vlogged(LV2_Log_Handle handle, LV2_URID, const char* format, va_list arguments) {
        std::array<char, 1000> line{};
        const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
        static_cast<PluginWorld*>(handle)->log += line.data();
        return length;
    }
    static int logged(LV2_Log_Handle handle, LV2_URID type, const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        const int length = vlogged(handle, type, format, arguments);
        va_end(arguments);
        return length;
    }

    std::map<std::string, LV2_URID> urids_;
    LV2_URID_Map map_{this, mapped};
    LV2_Log_Log log_{this, logged, vlogged};
    LV2_Feature mapFeature_{LV2_URID__map, &map_};
    LV2_Feature logFeature_{LV2_LOG__log, &log_};
    std::array<const LV2_Feature*, 3> features_{&mapFeature_, &logFeature_, nullptr};
};

/// An instance in a host that calls it as hosts do. What it plays is kept.
class PluginHost {
public:
    static constexpr double kRate = 48000;
    static constexpr std::size_t kRoom = 65536;

    explicit PluginHost(std::uint32_t index = 0, double rate = kRate)
        : descriptor_(pluginDescriptor(index)),
          outputs_(index == 0 ? 2 : 34),
          instance_(descriptor_->instantiate(descriptor_, rate, "", world.features())) {
        EXPECT_NE(instance_, nullptr);
        lv2_atom_forge_init(&forge_, world.map());
        descriptor_->connect_port(instance_, kFreeWheeling, &freeWheeling_);
        descriptor_->activate(instance_);
        audio.resize(outputs_);
        isConnected.assign(outputs_, true);
        clear();
    }
    ~PluginHost() { descriptor_->cleanup(instance_); }
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    Plugin& plugin() { return *static_cast<Plugin*>(instance_); }
    IGrooveSampler& sampler() { return plugin().sampler(); }
    const LV2_Descriptor& descriptor() const { return *descriptor_; }
    LV2_Handle instance() const { return instance_; }
    template <class T>
    const T& extension(const char* uri) const {
        return *static_cast<const T*>(descriptor_->extension_data(uri));
    }
    void activateAnew() {
        descriptor_->deactivate(instance_);
        descriptor_->activate(instance_);
    }

    // Events of the block to come, by rising frames.
    void midi(std::int64_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
        const std::array<std::uint8_t, 3> bytes{status, data1, data2};
        lv2_atom_forge_frame_time(&forge_, frame);
        lv2_atom_forge_atom(&forge_, bytes.size(), world.urid(LV2_MIDI__MidiEvent));
        lv2_atom_forge_write(&forge_, bytes.data(), bytes.size());
    }
    void position(std::int64_t frame, std::int64_t hostFrame, float speed, float tempo) {
        LV2_Atom_Forge_Frame object;
        lv2_atom_forge_frame_time(&forge_, frame);
        lv2_atom_forge_object(&forge_, &object, 0, world.urid(LV2_TIME__Position));
        lv2_atom_forge_key(&forge_, world.urid(LV2_TIME__frame));
        lv2_atom_forge_long(&forge_, hostFrame);
        lv2_atom_forge_key(&forge_, world.urid(LV2_TIME__speed));
        lv2_atom_forge_float(&forge_, speed);
        lv2_atom_forge_key(&forge_, world.urid(LV2_TIME__beatsPerMinute));
        lv2_atom_forge_float(&forge_, tempo);
        lv2_atom_forge_pop(&forge_, &object);
    }
    /// The events as they lie in the buffer.
    std::span<std::uint8_t> eventBytes() { return {reinterpret_cast<std::uint8_t*>(in_.data()), kRoom}; }

    void block(std::int32_t frames) {
        prepare(frames);
        descriptor_->run(instance_, static_cast<std::uint32_t>(frames));
        clear();
    }
    /// All of a block but running it and taking its events away.
    void prepare(std::int32_t frames) {
        lv2_atom_forge_pop(&forge_, &sequence_);
        auto* out = reinterpret_cast<LV2_Atom_Sequence*>(out_.data());
        out->atom = {kRoom - sizeof(LV2_Atom), world.urid(LV2_ATOM__Chunk)};
        descriptor_->connect_port(instance_, kEventsIn, in_.data());
        descriptor_->connect_port(instance_, kEventsOut, out_.data());
        for (std::uint32_t i = 0; i < outputs_; ++i) {
            const std::size_t begin = audio[i].size();
            audio[i].resize(begin + static_cast<std::size_t>(frames), 9.0f);
            descriptor_->connect_port(instance_, kFirstAudioOut + i,
                                      isConnected[i] ? audio[i].data() + begin : nullptr);
        }
    }
    void clear() {
        lv2_atom_forge_set_buffer(&forge_, eventBytes().data(), kRoom);
        lv2_atom_forge_sequence_head(&forge_, &sequence_, 0);
    }
    const LV2_Atom_Sequence& eventsOut() const {
        return *reinterpret_cast<const LV2_Atom_Sequence*>(out_.data());
    }

    PluginWorld world;
    std::vector<std::vector<float>> audio;  ///< by port, from the mix's left on
    std::vector<bool> isConnected;

private:
    const LV2_Descriptor* descriptor_;
    std::size_t outputs_;
    LV2_Handle instance_;
    float freeWheeling_ = 0;
    LV2_Atom_Forge forge_{};
    LV2_Atom_Forge_Frame sequence_{};
    std::vector<std::uint64_t> in_ = std::vector<std::uint64_t>(kRoom / 8);
    std::vector<std::uint64_t> out_ = std::vector<std::uint64_t>(kRoom / 8);
};

}  // namespace marnoth::test
