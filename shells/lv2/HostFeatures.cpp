#include "shells/lv2/HostFeatures.h"

#include <cstdio>

namespace marnoth {

void HostLog::error(const std::string& sentence) const {
    if (log_) {
        log_->printf(log_->handle, error_, "marnoth: %s\n", sentence.c_str());
    } else {
        std::fprintf(stderr, "marnoth: %s\n", sentence.c_str());
    }
}

}  // namespace marnoth
