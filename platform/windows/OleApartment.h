#pragma once

#include "platform/com/Com.h"

namespace marnoth {

/// OLE on the thread that makes this, which is the one that ends it.
class OleApartment {
public:
    OleApartment() : isEntered_(SUCCEEDED(OleInitialize(nullptr))) {}
    ~OleApartment() {
        if (isEntered_) OleUninitialize();
    }
    OleApartment(const OleApartment&) = delete;
    OleApartment& operator=(const OleApartment&) = delete;

private:
    const bool isEntered_;  ///< not on a thread to which calls come from any other
};

}  // namespace marnoth
