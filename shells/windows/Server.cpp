/// What the system and its tools call in the module.

#include <array>
#include <new>

#include "platform/com/ModuleLock.h"
#include "platform/windows/Win32Window.h"
#include "shells/windows/ClassFactory.h"
#include "shells/windows/Registration.h"

namespace {

using namespace marnoth;

constexpr DWORD kLongestPath = 260;
constexpr HRESULT kPathIsTooLong = static_cast<HRESULT>(0x80070000 + ERROR_FILENAME_EXCED_RANGE);

HINSTANCE moduleHandle = nullptr;

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) {
        moduleHandle = module;
        DisableThreadLibraryCalls(module);
    }
    // A class of windows that stayed would call into what is no longer there, and the next module couldn't
    // make its own.
    if (reason == DLL_PROCESS_DETACH) Win32Window::unregisterClass();
    return TRUE;
}

/// `E_NOINTERFACE` unless a class factory is asked for, `CLASS_E_CLASSNOTAVAILABLE` for a class that isn't
/// served.
HRESULT WINAPI DllGetClassObject(REFCLSID id, REFIID iid, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
    for (const ServedClass& served : servedClasses()) {
        if (*served.id != id) continue;
        auto* const factory = new (std::nothrow) CClassFactory(served);
        if (!factory) return E_OUTOFMEMORY;
        *out = static_cast<IClassFactory*>(factory);
        return S_OK;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT WINAPI DllCanUnloadNow() {
    return CClassFactory::serverLocks() <= 0 && ModuleLock::count() == 0 ? S_OK : S_FALSE;
}

HRESULT WINAPI DllRegisterServer() try {
    std::array<wchar_t, kLongestPath + 1> path{};
    // What doesn't fit is cut, and would have hosts look for another file.
    const DWORD length = GetModuleFileNameW(moduleHandle, path.data(), static_cast<DWORD>(path.size()));
    return length > kLongestPath ? kPathIsTooLong : registerClasses(path.data(), servedClasses());
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT WINAPI DllUnregisterServer() try {
    return unregisterClasses(servedClasses());
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

}  // extern "C"

/// Hosts expect the name; it means nothing.
int main() {
    return 0;
}
