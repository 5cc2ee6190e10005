#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/com/Unknown.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// Who hears of files that are dragged over a window. Points are those of the screen.
class DropTaker {
public:
    virtual DropEffect filesEnter(bool hasFiles) = 0;
    virtual DropEffect filesOver(POINT at) = 0;
    virtual void filesLeave() = 0;
    /// Full paths; nothing when what was dropped isn't files.
    virtual DropEffect filesDropped(POINT at, const std::optional<std::vector<std::wstring>>& paths) = 0;

protected:
    ~DropTaker() = default;
};

/// What the system calls while something is dragged over a window. It keeps the module as long as somebody
/// keeps it; `taker` is asked until `forget`. The window's thread.
class PageDropTarget final : public Implements<CUnknown, IDropTarget> {
public:
    explicit PageDropTarget(DropTaker& taker) : Implements(nullptr), taker_(&taker) {}

    /// The window goes: nothing has an effect any more.
    void forget() { taker_ = nullptr; }

    HRESULT DragEnter(IDataObject* data, DWORD keys, POINTL at, DWORD* effect) override;
    HRESULT DragOver(DWORD keys, POINTL at, DWORD* effect) override;
    HRESULT DragLeave() override;
    HRESULT Drop(IDataObject* data, DWORD keys, POINTL at, DWORD* effect) override;

private:
    IUnknown* FindInterface(REFIID iid) override;
    template <class Ask>
    HRESULT answer(DWORD* effect, Ask ask);

    DropTaker* taker_;
};

}  // namespace marnoth
