#pragma once

#include "platform/com/Com.h"

namespace marnoth {

/// COM on this thread, for as long as this lives; of whatever kind the apartment is that the thread is in
/// already.
class ComApartment {
public:
    explicit ComApartment(COINIT kind) : entered_(SUCCEEDED(CoInitializeEx(nullptr, kind))) {}
    ~ComApartment() {
        if (entered_) CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

private:
    const bool entered_;
};

}  // namespace marnoth
