#pragma once

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/urid/urid.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace marnoth::test {

/// Numbers for names, and a log whose lines are kept.
class PluginWorld {
public:
    LV2_URID urid(const std::string& uri) { return urids_.try_emplace(uri, urids_.size() + 1).first->second; }
    const LV2_Feature* const* features() const { return features_.data(); }
    /// With those that a test adds.
    const LV2_Feature* const* featuresAnd(const std::vector<const LV2_Feature*>& more) {
        features_.insert(features_.begin(), more.begin(), more.end());
        return features_.data();
    }
    LV2_URID_Map* map() { return &map_; }
    LV2_URID_Unmap* unmap() { return &unmap_; }

    std::string log;

private:
    static LV2_URID mapped(LV2_URID_Map_Handle handle, const char* uri) {
        return static_cast<PluginWorld*>(handle)->urid(uri);
    }
    static const char* unmapped(LV2_URID_Unmap_Handle handle, LV2_URID urid) {
        for (const auto& [uri, number] : static_cast<PluginWorld*>(handle)->urids_)
            if (number == urid) return uri.c_str();
        return nullptr;
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
    LV2_URID_Unmap unmap_{this, unmapped};
    LV2_Log_Log log_{this, logged, vlogged};
    LV2_Feature mapFeature_{LV2_URID__map, &map_};
    LV2_Feature logFeature_{LV2_LOG__log, &log_};
    std::vector<const LV2_Feature*> features_{&mapFeature_, &logFeature_, nullptr};
};

}  // namespace marnoth::test
