#include "platform/windows/PageDropTarget.h"

#include <new>

#include "platform/windows/DroppedFiles.h"

namespace marnoth {

IUnknown* PageDropTarget::FindInterface(REFIID iid) {
    return iid == IID_IDropTarget ? static_cast<IDropTarget*>(this) : nullptr;
}

/// No effect without a taker, or when memory runs out.
template <class Ask>
HRESULT PageDropTarget::answer(DWORD* effect, Ask ask) try {
    if (!effect) return E_POINTER;
    *effect = DROPEFFECT_NONE;
    if (taker_) *effect = static_cast<DWORD>(ask(*taker_));
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT PageDropTarget::DragEnter(IDataObject* data, DWORD, POINTL, DWORD* effect) {
    return answer(effect, [&](DropTaker& taker) { return taker.filesEnter(hasFiles(data)); });
}

HRESULT PageDropTarget::DragOver(DWORD, POINTL at, DWORD* effect) {
    return answer(effect, [&](DropTaker& taker) { return taker.filesOver({at.x, at.y}); });
}

HRESULT PageDropTarget::DragLeave() {
    if (taker_) taker_->filesLeave();
    return S_OK;
}

HRESULT PageDropTarget::Drop(IDataObject* data, DWORD, POINTL at, DWORD* effect) {
    return answer(effect, [&](DropTaker& taker) {
        return taker.filesDropped({at.x, at.y}, readDroppedFiles(data));
    });
}

}  // namespace marnoth
