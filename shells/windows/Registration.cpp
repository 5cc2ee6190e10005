#include "shells/windows/Registration.h"

#include <array>
#include <cwchar>
#include <string>
#include <string_view>

#include "platform/com/RefPtr.h"
#include "seam/ClassIds.h"

namespace marnoth {

namespace {

constexpr std::wstring_view kClasses = L"CLSID\\";
constexpr std::wstring_view kSoftSynths = L"KvxSoftSynths\\";
constexpr HRESULT kFileIsMissing = static_cast<HRESULT>(0x80070002);
constexpr DWORD kLongestKeyName = 256;

HRESULT resultOf(LSTATUS code) {
    return code == ERROR_SUCCESS ? S_OK : static_cast<HRESULT>(0x80070000 + static_cast<ULONG>(code));
}

std::wstring keyOf(std::wstring_view folder, REFCLSID id) {
    std::array<wchar_t, 39> text{};
    StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
    return std::wstring(folder).append(text.data());
}

/// A key beneath `HKEY_CLASSES_ROOT` or another one, open for a scope.
class Key {
public:
    Key() = default;
    ~Key() {
        if (key_) RegCloseKey(key_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    LSTATUS create(HKEY root, const std::wstring& path) {
        return RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key_, nullptr);
    }
    LSTATUS open(HKEY root, const std::wstring& path) {
        return RegOpenKeyExW(root, path.c_str(), 0, KEY_READ | KEY_WRITE, &key_);
    }
    LSTATUS set(const wchar_t* name, const wchar_t* text) const {
        const auto bytes = static_cast<DWORD>((std::wcslen(text) + 1) * sizeof(wchar_t));
        return RegSetValueExW(key_, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), bytes);
    }
    HKEY get() const { return key_; }

private:
    HKEY key_ = nullptr;
};

LSTATUS removeKey(HKEY root, const std::wstring& path);

/// Each removal moves the rest up, so it is the first one over and over.
LSTATUS removeChildren(HKEY key) {
    for (;;) {
        std::array<wchar_t, kLongestKeyName + 1> name{};
        auto length = static_cast<DWORD>(name.size());
        const LSTATUS found = RegEnumKeyExW(key, 0, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (found == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
        if (found != ERROR_SUCCESS) return found;
        if (const LSTATUS gone = removeKey(key, name.data()); gone != ERROR_SUCCESS) return gone;
    }
}

LSTATUS removeKey(HKEY root, const std::wstring& path) {
    {
        Key key;
        if (const LSTATUS opened = key.open(root, path); opened != ERROR_SUCCESS) return opened;
        if (const LSTATUS emptied = removeChildren(key.get()); emptied != ERROR_SUCCESS) return emptied;
    }
    return RegDeleteKeyW(root, path.c_str());
}

LSTATUS enterClass(const ServedClass& served, const wchar_t* module) {
    Key key, server;
    LSTATUS code = key.create(HKEY_CLASSES_ROOT, keyOf(kClasses, *served.id));
    if (code == ERROR_SUCCESS) code = key.set(nullptr, served.name);
    if (code == ERROR_SUCCESS) code = server.create(key.get(), L"InprocServer32");
    if (code == ERROR_SUCCESS) code = server.set(nullptr, module);
    if (code == ERROR_SUCCESS) code = server.set(L"ThreadingModel", L"Both");
    return code;
}

/// The system's list of filters, in its present form or the first one.
class FilterMapper {
public:
    HRESULT find() {
        const HRESULT hr = CoCreateInstance(CLSID_FilterMapper2, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_IFilterMapper2, second_.putVoid());
        if (SUCCEEDED(hr)) return hr;
        return CoCreateInstance(CLSID_FilterMapper, nullptr, CLSCTX_INPROC_SERVER, IID_IFilterMapper,
                                first_.putVoid());
    }

    HRESULT remove(const ServedClass& served) {
        const HRESULT hr = second_ ? second_->UnregisterFilter(nullptr, nullptr, *served.id)
                                   : first_->UnregisterFilter(*served.id);
        return hr == kFileIsMissing ? S_OK : hr;
    }

    HRESULT enter(const ServedClass& served) {
        if (const HRESULT hr = remove(served); FAILED(hr)) return hr;
        const HRESULT hr = second_ ? enterSecond(served) : enterFirst(served);
        return hr == kFileIsMissing ? S_OK : hr;
    }

private:
    HRESULT enterSecond(const ServedClass& served) {
        REGFILTER2 filter{};
        filter.dwVersion = 1;
        filter.dwMerit = served.filter->merit;
        filter.cPins = static_cast<ULONG>(served.filter->pins.size());
        filter.rgPins = served.filter->pins.data();
        return second_->RegisterFilter(*served.id, served.name, nullptr, nullptr, nullptr, &filter);
    }

    HRESULT enterFirst(const ServedClass& served) {
        HRESULT hr = first_->RegisterFilter(*served.id, served.name, served.filter->merit);
        for (const REGFILTERPINS& pin : served.filter->pins)
            if (SUCCEEDED(hr)) hr = enterPin(*served.id, pin);
        return hr;
    }

    HRESULT enterPin(REFCLSID id, const REGFILTERPINS& pin) {
        HRESULT hr = first_->RegisterPin(id, pin.strName, pin.bRendered, pin.bOutput, pin.bZero, pin.bMany,
                                         *pin.clsConnectsToFilter, pin.strConnectsToPin);
        for (UINT i = 0; i < pin.nMediaTypes && SUCCEEDED(hr); ++i)
            hr = first_->RegisterPinType(id, pin.strName, *pin.lpMediaType[i].clsMajorType,
                                         *pin.lpMediaType[i].clsMinorType);
        return hr;
    }

    RefPtr<IFilterMapper2> second_;
    RefPtr<IFilterMapper> first_;
};

/// COM for a scope, in whatever kind of apartment the thread is.
class ComScope {
public:
    ComScope() : begun_(SUCCEEDED(CoInitialize(nullptr))) {}
    ~ComScope() {
        CoFreeUnusedLibraries();
        if (begun_) CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    const bool begun_;
};

/// `operation` for the filters among the classes, until one fails.
HRESULT forEachFilter(std::span<const ServedClass> classes,
                      HRESULT (FilterMapper::*operation)(const ServedClass&)) {
    const ComScope com;
    FilterMapper mapper;
    HRESULT hr = mapper.find();
    for (const ServedClass& served : classes)
        if (served.filter && SUCCEEDED(hr)) hr = (mapper.*operation)(served);
    return hr;
}

void enterTypeLibrary(const wchar_t* module) {
    RefPtr<ITypeLib> library;
    if (SUCCEEDED(LoadTypeLib(module, library.put())))
        RegisterTypeLib(library.get(), const_cast<LPOLESTR>(module), nullptr);
}

void enterSoftSynths(std::span<const ServedClass> classes) {
    for (const ServedClass& served : classes) {
        if (!served.filter) continue;
        Key key;
        if (key.create(HKEY_CLASSES_ROOT, keyOf(kSoftSynths, *served.id)) != ERROR_SUCCESS) return;
        key.set(L"Description", served.name);
    }
}

}  // namespace

HRESULT registerClasses(const wchar_t* module, std::span<const ServedClass> classes) {
    for (const ServedClass& served : classes)
        if (const LSTATUS code = enterClass(served, module); code != ERROR_SUCCESS) return resultOf(code);
    const HRESULT hr = forEachFilter(classes, &FilterMapper::enter);
    if (FAILED(hr)) return hr;
    enterTypeLibrary(module);
    enterSoftSynths(classes);
    return hr;
}

HRESULT unregisterClasses(std::span<const ServedClass> classes) {
    if (const HRESULT hr = forEachFilter(classes, &FilterMapper::remove); FAILED(hr)) return hr;
    for (const ServedClass& served : classes) {
        const LSTATUS code = removeKey(HKEY_CLASSES_ROOT, keyOf(kClasses, *served.id));
        if (code != ERROR_SUCCESS && code != ERROR_FILE_NOT_FOUND) return resultOf(code);
    }
    UnRegisterTypeLib(LIBID_Marnoth, 1, 0, 0, SYS_WIN32);
    for (const ServedClass& served : classes) removeKey(HKEY_CLASSES_ROOT, keyOf(kSoftSynths, *served.id));
    return S_OK;
}

}  // namespace marnoth
