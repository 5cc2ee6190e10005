#include "shells/lv2/page/PageDescriptor.h"

#include <lv2/atom/atom.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <bit>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>

#include "shells/lv2/HostFeatures.h"
#include "shells/lv2/Names.h"
#include "shells/lv2/page/PluginPage.h"

namespace marnoth {

namespace {

/// The host's numbers for the names that it and the page speak by; 0 where it has none.
struct PageUrids {
    explicit PageUrids(const LV2_Feature* const* features) {
        const auto* map = featureOf<LV2_URID_Map>(features, LV2_URID__map);
        if (!map) return;
        atomFloat = map->map(map->handle, LV2_ATOM__Float);
        logError = map->map(map->handle, LV2_LOG__Error);
        scaleFactor = map->map(map->handle, LV2_UI__scaleFactor);
    }

    LV2_URID atomFloat = 0;
    LV2_URID logError = 0;
    LV2_URID scaleFactor = 0;
};

/// A page as its host has it.
struct ShownPage {
    ShownPage(PluginInstance& instance, const PluginPage::Setup& setup, const PageUrids& known,
              const HostLog& hostLog)
        : urids(known), log(hostLog), page(instance, setup) {}

    const PageUrids urids;
    const HostLog log;
    PluginPage page;
};

ShownPage& pageOf(LV2UI_Handle handle) {
    return *static_cast<ShownPage*>(handle);
}

/// The factor that an option tells; nothing where it tells something else.
std::optional<double> scaleFactorIn(const LV2_Options_Option& option, const PageUrids& urids) {
    float factor = 0;
    const bool isFactor = urids.scaleFactor != 0 && option.key == urids.scaleFactor &&
                          option.type == urids.atomFloat && option.size == sizeof factor && option.value;
    if (!isFactor) return {};
    std::memcpy(&factor, option.value, sizeof factor);
    return factor > 0 ? std::optional(static_cast<double>(factor)) : std::nullopt;
}

double toldScaleFactor(const LV2_Feature* const* features, const PageUrids& urids) {
    const auto* option = featureOf<LV2_Options_Option>(features, LV2_OPTIONS__options);
    for (; option && option->key != 0; ++option)
        if (const auto factor = scaleFactorIn(*option, urids)) return *factor;
    return 0;
}

PluginInstance& instanceFrom(const LV2_Feature* const* features) {
    void* const instance = featureOf<void>(features, LV2_INSTANCE_ACCESS_URI);
    if (!instance)
        throw std::runtime_error(
            "The page needs a host that gives it the plug-in's instance (instance-access).");
    return PluginInstance::of(instance);
}

unsigned long parentFrom(const LV2_Feature* const* features) {
    void* const parent = featureOf<void>(features, LV2_UI__parent);
    if (!parent) throw std::runtime_error("The page needs a window of the host's to be in (ui:parent).");
    return std::bit_cast<unsigned long>(parent);
}

/// Null where the host or the machine lacks something; the log says what.
LV2UI_Handle instantiate(const LV2UI_Descriptor*, const char*, const char*, LV2UI_Write_Function,
                         LV2UI_Controller, LV2UI_Widget* widget, const LV2_Feature* const* features) {
    const PageUrids urids(features);
    const HostLog log(features, urids.logError);
    try {
        PluginInstance& instance = instanceFrom(features);
        const PluginPage::Setup setup{.parent = parentFrom(features),
                                      .scaleFactor = toldScaleFactor(features, urids),
                                      .resize = featureOf<LV2UI_Resize>(features, LV2_UI__resize)};
        auto shown = std::make_unique<ShownPage>(instance, setup, urids, log);
        *widget = std::bit_cast<LV2UI_Widget>(shown->page.window());
        return shown.release();
    } catch (const std::exception& error) {
        log.error(error.what());
        return nullptr;
    }
}

void cleanup(LV2UI_Handle handle) {
    delete &pageOf(handle);
}

/// What a host tells of ports the page sees in the instrument.
void portEvent(LV2UI_Handle, std::uint32_t, std::uint32_t, std::uint32_t, const void*) {}

/// Not 0 when there is no window any more.
int idle(LV2UI_Handle handle) try {
    return pageOf(handle).page.work() ? 0 : 1;
} catch (const std::exception& error) {
    pageOf(handle).log.error(error.what());
    return 0;
}

std::uint32_t getOptions(LV2UI_Handle, LV2_Options_Option*) {
    return LV2_OPTIONS_ERR_BAD_KEY;
}

std::uint32_t setOptions(LV2UI_Handle handle, const LV2_Options_Option* options) {
    std::uint32_t status = LV2_OPTIONS_SUCCESS;
    for (; options->key != 0; ++options) {
        if (const auto factor = scaleFactorIn(*options, pageOf(handle).urids)) {
            pageOf(handle).page.setScaleFactor(*factor);
        } else {
            status |= LV2_OPTIONS_ERR_BAD_KEY;
        }
    }
    return status;
}

const void* extensionData(const char* uri) {
    static constexpr LV2UI_Idle_Interface kIdle{idle};
    static constexpr LV2_Options_Interface kOptions{getOptions, setOptions};
    if (std::strcmp(uri, LV2_UI__idleInterface) == 0) return &kIdle;
    if (std::strcmp(uri, LV2_OPTIONS__interface) == 0) return &kOptions;
    return nullptr;
}

}  // namespace

const LV2UI_Descriptor* pageDescriptor(std::uint32_t index) {
    static constexpr LV2UI_Descriptor kPage{kPageUri, instantiate, cleanup, portEvent, extensionData};
    return index == 0 ? &kPage : nullptr;
}

}  // namespace marnoth
