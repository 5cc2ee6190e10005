#pragma once

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace marnoth {

/// What a host gives under a name, null where it doesn't. `features` ends with a null; it may be null itself.
template <class T>
T* featureOf(const LV2_Feature* const* features, const char* uri) {
    for (; features && *features; ++features)
        if (std::strcmp((*features)->URI, uri) == 0) return static_cast<T*>((*features)->data);
    return nullptr;
}

/// The host's log, or the process's where it has none. Any thread but the one that renders.
class HostLog {
public:
    HostLog(const LV2_Feature* const* features, LV2_URID error)
        : log_(featureOf<LV2_Log_Log>(features, LV2_LOG__log)), error_(error) {}

    /// A sentence for the user, of one line.
    void error(const std::string& sentence) const {
        if (log_) {
            log_->printf(log_->handle, error_, "marnoth: %s\n", sentence.c_str());
        } else {
            std::fprintf(stderr, "marnoth: %s\n", sentence.c_str());
        }
    }

private:
    const LV2_Log_Log* log_;
    LV2_URID error_;
};

}  // namespace marnoth
