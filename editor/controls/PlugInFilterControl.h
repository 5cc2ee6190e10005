#pragma once

#include <utility>

#include "editor/controls/Control.h"

namespace marnoth {

/// Gets a look at the events of the controls of a page before they do.
class CPlugInFilterCallback {
public:
    virtual ~CPlugInFilterCallback() = default;
    /// True when the event is consumed: the control doesn't see it. `result` is what the event answers then.
    virtual bool OnControlMessage(Control& control, const ControlEvent& event, int* result) = 0;
};

/// A control whose events go through a callback first; with none they go on to the control at once.
template <class Base>
class CPlugInFilterControl final : public Base {
public:
    using Base::Base;

    CPlugInFilterCallback* m_pCallback = nullptr;  ///< not owned

    bool handle(const ControlEvent& event) override {
        int result = 0;
        if (m_pCallback && m_pCallback->OnControlMessage(*this, event, &result)) return true;
        return Base::handle(event);
    }
};

}  // namespace marnoth
