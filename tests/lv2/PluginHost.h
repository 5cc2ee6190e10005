#pragma once

#include <gtest/gtest.h>
#include <lv2/state/state.h>

#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "lv2/EventBuffer.h"
#include "lv2/PluginWorld.h"
#include "shells/lv2/Descriptors.h"
#include "shells/lv2/Names.h"
#include "shells/lv2/Plugin.h"

namespace marnoth::test {

/// An instance in a host that calls it as hosts do. What it plays is kept.
class PluginHost {
public:
    static constexpr double kRate = 48000;

    explicit PluginHost(std::uint32_t index = 0, double rate = kRate,
                        const std::vector<const LV2_Feature*>& more = {})
        : descriptor_(pluginDescriptor(index)),
          outputs_(index == 0 ? 2 : 34),
          instance_(descriptor_->instantiate(descriptor_, rate, "", world.featuresAnd(more))) {
        EXPECT_NE(instance_, nullptr);
        descriptor_->connect_port(instance_, kFreeWheeling, &freeWheeling_);
        descriptor_->activate(instance_);
        audio.resize(outputs_);
        isConnected.assign(outputs_, true);
    }
    ~PluginHost() { descriptor_->cleanup(instance_); }
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    Plugin& plugin() { return static_cast<Plugin&>(PluginInstance::of(instance_)); }
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
        in_.midi(frame, status, data1, data2);
    }
    void position(std::int64_t frame, std::int64_t hostFrame, float speed, float tempo) {
        in_.position(frame, hostFrame, speed, tempo);
    }
    EventBuffer& events() { return in_; }
    /// The events as they lie in the buffer.
    std::span<std::uint8_t> eventBytes() { return in_.bytes(); }

    void block(std::int32_t frames) {
        prepare(frames);
        descriptor_->run(instance_, static_cast<std::uint32_t>(frames));
        clear();
    }
    /// All of a block but running it and taking its events away.
    void prepare(std::int32_t frames) {
        in_.end();
        out_.offer();
        descriptor_->connect_port(instance_, kEventsIn, in_.data());
        descriptor_->connect_port(instance_, kEventsOut, out_.data());
        for (std::uint32_t i = 0; i < outputs_; ++i) {
            const std::size_t begin = audio[i].size();
            audio[i].resize(begin + static_cast<std::size_t>(frames), 9.0f);
            descriptor_->connect_port(instance_, kFirstAudioOut + i,
                                      isConnected[i] ? audio[i].data() + begin : nullptr);
        }
    }
    void clear() { in_.begin(); }
    const LV2_Atom_Sequence& eventsOut() const { return out_.sequence(); }

    PluginWorld world;
    std::vector<std::vector<float>> audio;  ///< by port, from the mix's left on
    std::vector<bool> isConnected;

private:
    const LV2_Descriptor* descriptor_;
    std::size_t outputs_;
    LV2_Handle instance_;
    float freeWheeling_ = 0;
    EventBuffer in_{world};
    EventBuffer out_{world};
};

}  // namespace marnoth::test
