#include "shells/lv2/Descriptors.h"

#include <lv2/options/options.h>
#include <lv2/state/state.h>
#include <lv2/worker/worker.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <numeric>

#include "shells/lv2/Names.h"
#include "shells/lv2/Plugin.h"

namespace marnoth {

namespace {

constexpr std::array<int, kOutputPins> allOutputs() {
    std::array<int, kOutputPins> outputs{};
    std::iota(outputs.begin(), outputs.end(), 0);
    return outputs;
}

constexpr auto kAllOutputs = allOutputs();

Plugin& pluginOf(LV2_Handle instance) {
    return static_cast<Plugin&>(PluginInstance::of(instance));
}

/// Null where the host or the machine lacks something; the log says what.
LV2_Handle instantiate(const LV2_Descriptor* descriptor, double rate, const char*,
                       const LV2_Feature* const* features) try {
    const auto* map = featureOf<LV2_URID_Map>(features, LV2_URID__map);
    if (!map) return nullptr;
    const bool isMulti = std::strcmp(descriptor->URI, kMultiUri) == 0;
    const std::span outputs(kAllOutputs);
    return (new Plugin(rate, isMulti ? outputs : outputs.first(1), *map, features))->handle();
} catch (const std::exception& error) {
    HostLog(features, 0).error(error.what());
    return nullptr;
}

void connectPort(LV2_Handle instance, std::uint32_t port, void* data) {
    pluginOf(instance).connect(port, data);
}

void activate(LV2_Handle instance) {
    pluginOf(instance).activate();
}

void run(LV2_Handle instance, std::uint32_t frames) {
    pluginOf(instance).run(frames);
}

void deactivate(LV2_Handle) {}

void cleanup(LV2_Handle instance) {
    delete &pluginOf(instance);
}

LV2_State_Status save(LV2_Handle instance, LV2_State_Store_Function store, LV2_State_Handle handle,
                      std::uint32_t, const LV2_Feature* const* features) {
    return pluginOf(instance).save(store, handle, features);
}

LV2_State_Status restore(LV2_Handle instance, LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                         std::uint32_t, const LV2_Feature* const* features) {
    return pluginOf(instance).restore(retrieve, handle, features);
}

/// The rate is the one option; a host sets it while the plug-in isn't active.
std::uint32_t getOptions(LV2_Handle, LV2_Options_Option*) {
    return LV2_OPTIONS_ERR_BAD_KEY;
}

std::uint32_t setOption(Plugin& plugin, const LV2_Options_Option& option) {
    const Urids& urids = plugin.urids();
    if (option.context != LV2_OPTIONS_INSTANCE) return LV2_OPTIONS_ERR_BAD_SUBJECT;
    if (option.key != urids.sampleRate) return LV2_OPTIONS_ERR_BAD_KEY;
    const auto rate =
        numberIn({option.type, {static_cast<const std::uint8_t*>(option.value), option.size}}, urids);
    if (!rate) return LV2_OPTIONS_ERR_BAD_VALUE;
    plugin.setRate(*rate);
    return LV2_OPTIONS_SUCCESS;
}

std::uint32_t setOptions(LV2_Handle instance, const LV2_Options_Option* options) {
    std::uint32_t status = LV2_OPTIONS_SUCCESS;
    for (; options->key != 0; ++options) status |= setOption(pluginOf(instance), *options);
    return status;
}

/// Null where there is no room for it.
char* textForHost(const std::string& text) {
    return strdup(text.c_str());
}

char* noteNames(LV2_Handle instance) try {
    return textForHost(pluginOf(instance).noteNames().document());
} catch (const std::exception&) {
    return nullptr;
}

char* noteNameModel(LV2_Handle instance) {
    return textForHost(pluginOf(instance).noteNames().model());
}

void freeText(char* text) {
    std::free(text);
}

LV2_Worker_Status work(LV2_Handle instance, LV2_Worker_Respond_Function respond,
                       LV2_Worker_Respond_Handle handle, std::uint32_t size, const void* data) try {
    return pluginOf(instance).noteNames().look() ? respond(handle, size, data) : LV2_WORKER_SUCCESS;
} catch (const std::exception&) {
    return LV2_WORKER_ERR_UNKNOWN;
}

LV2_Worker_Status workDone(LV2_Handle instance, std::uint32_t, const void*) {
    pluginOf(instance).noteNames().tell();
    return LV2_WORKER_SUCCESS;
}

const void* extensionData(const char* uri) {
    static constexpr LV2_State_Interface kState{save, restore};
    static constexpr LV2_Options_Interface kOptions{getOptions, setOptions};
    static constexpr MidnamInterface kMidnam{noteNames, noteNameModel, freeText};
    static constexpr LV2_Worker_Interface kWorker{work, workDone, nullptr};
    if (std::strcmp(uri, LV2_STATE__interface) == 0) return &kState;
    if (std::strcmp(uri, LV2_OPTIONS__interface) == 0) return &kOptions;
    if (std::strcmp(uri, kMidnamInterfaceUri) == 0) return &kMidnam;
    if (std::strcmp(uri, LV2_WORKER__interface) == 0) return &kWorker;
    return nullptr;
}

constexpr LV2_Descriptor descriptorOf(const char* uri) {
    return {uri, instantiate, connectPort, activate, run, deactivate, cleanup, extensionData};
}

}  // namespace

const LV2_Descriptor* pluginDescriptor(std::uint32_t index) {
    static constexpr std::array kPlugins{descriptorOf(kStereoUri), descriptorOf(kMultiUri)};
    return index < kPlugins.size() ? &kPlugins[index] : nullptr;
}

}  // namespace marnoth
