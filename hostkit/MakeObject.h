#pragma once

#include <utility>

#include "platform/com/RefPtr.h"

namespace marnoth {

/// Makes an object that begins with its maker's reference, and takes that over.
template <class T, class... Arguments>
RefPtr<T> makeObject(Arguments&&... arguments) {
    return RefPtr<T>::adopt(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace marnoth
