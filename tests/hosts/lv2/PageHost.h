#pragma once

#include <dlfcn.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>

#include <functional>
#include <thread>

#include "hosts/lv2/LilvHost.h"
#include "hosts/x11/OtherProgram.h"
#include "platform/drawing/Geometry.h"

namespace marnoth::test {

/// The page's binary as the bundle names it, loaded as hosts do it.
inline const LV2UI_Descriptor& pageOf(const Plugins& plugins, const std::string& plugin) {
    const std::unique_ptr<LilvUIs, Freeing<lilv_uis_free>> pages(lilv_plugin_get_uis(plugins.find(plugin)));
    const LilvUI* const page = lilv_uis_get(pages.get(), lilv_uis_begin(pages.get()));
    if (!page) throw std::runtime_error(plugin + " has no page");
    char* const file = lilv_file_uri_parse(lilv_node_as_uri(lilv_ui_get_binary_uri(page)), nullptr);
    void* const binary = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    lilv_free(file);
    if (!binary) throw std::runtime_error(dlerror());
    const auto descriptors = reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(binary, "lv2ui_descriptor"));
    return *descriptors(0);
}

/// A page in a window of a host's, at the screen's corner.
class PageHost {
public:
    struct Offer {
        bool instance = true;
        bool window = true;
        float scaleFactor = 0;  ///< 0 for none
    };

    PageHost(const LV2UI_Descriptor& descriptor, LilvHost& plugin, const Offer& offer)
        : descriptor_(descriptor), world_(plugin.world) {
        user.show();
        for (const LV2_Feature* const* known = world_.features(); *known; ++known)
            features_.push_back(*known);
        features_.insert(features_.end(), {&resizeFeature_, &optionsFeature_});
        instance_.data = plugin.handle();
        parent_.data = reinterpret_cast<void*>(user.window());
        if (offer.instance) features_.push_back(&instance_);
        if (offer.window) features_.push_back(&parent_);
        features_.push_back(nullptr);
        const std::array<LV2_Options_Option, 2> options = scaleOption(offer.scaleFactor);
        if (offer.scaleFactor > 0) optionsFeature_.data = const_cast<LV2_Options_Option*>(options.data());
        LV2UI_Widget widget = nullptr;
        page_ = descriptor.instantiate(&descriptor, "urn:marnoth:instrument", "", nullptr, nullptr, &widget,
                                       features_.data());
        optionsFeature_.data = nullptr;
        window = reinterpret_cast<::Window>(widget);
    }
    ~PageHost() { close(); }
    PageHost(const PageHost&) = delete;
    PageHost& operator=(const PageHost&) = delete;

    bool isOpen() const { return page_ != nullptr; }
    void close() {
        if (page_) descriptor_.cleanup(page_);
        page_ = nullptr;
    }
    /// What idling answers.
    int idle() const {
        return static_cast<const LV2UI_Idle_Interface*>(descriptor_.extension_data(LV2_UI__idleInterface))
            ->idle(page_);
    }
    void setScaleFactor(float factor) {
        const auto options = scaleOption(factor);
        static_cast<const LV2_Options_Interface*>(descriptor_.extension_data(LV2_OPTIONS__interface))
            ->set(page_, options.data());
    }
    void click(int x, int y) {
        user.move(x, y);
        user.button(1);
    }
    /// What of the page is seen; white where it isn't shown.
    unsigned long pixel(int x, int y) const {
        XImage* const image = XGetImage(user.display(), user.window(), x, y, 1, 1, AllPlanes, ZPixmap);
        const unsigned long pixel = image ? XGetPixel(image, 0, 0) & 0xFFFFFF : 0;
        if (image) XDestroyImage(image);
        return pixel;
    }
    Point size() const {
        XWindowAttributes now{};
        XGetWindowAttributes(user.display(), window, &now);
        return {now.width, now.height};
    }

    OtherProgram user;  ///< its window is the host's
    ::Window window = 0;
    Point asked;  ///< the size that the page has asked for last

private:
    static int resized(LV2UI_Feature_Handle handle, int width, int height) {
        static_cast<PageHost*>(handle)->asked = {width, height};
        return 0;
    }
    std::array<LV2_Options_Option, 2> scaleOption(const float& factor) const {
        LV2_Options_Option option{};
        option.key = world_.urid(LV2_UI__scaleFactor);
        option.size = sizeof factor;
        option.type = world_.urid("http://lv2plug.in/ns/ext/atom#Float");
        option.value = &factor;
        return {option, LV2_Options_Option{}};
    }

    const LV2UI_Descriptor& descriptor_;
    PluginWorld& world_;
    LV2UI_Resize resize_{this, resized};
    LV2_Feature resizeFeature_{LV2_UI__resize, &resize_};
    LV2_Feature optionsFeature_{LV2_OPTIONS__options, nullptr};
    LV2_Feature instance_{LV2_INSTANCE_ACCESS_URI, nullptr};
    LV2_Feature parent_{LV2_UI__parent, nullptr};
    std::vector<const LV2_Feature*> features_;
    LV2UI_Handle page_ = nullptr;
};

}  // namespace marnoth::test
