#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/com/RefPtr.h"
#include "platform/graph/Graph.h"
#include "support/TestData.h"

namespace marnoth::test {

/// The component, loaded by its path. What it gave out has to go before it.
class Component {
public:
    static std::filesystem::path builtFile() {
        return std::filesystem::absolute(testData(MARNOTH_COMPONENT));
    }

    explicit Component(const std::filesystem::path& file = builtFile())
        : module_(LoadLibraryW(file.c_str())) {
        EXPECT_TRUE(module_) << GetLastError();
    }
    ~Component() { FreeLibrary(module_); }
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    std::filesystem::path path() const {
        wchar_t text[1024]{};
        GetModuleFileNameW(module_, text, 1024);
        return text;
    }

    HRESULT getClassObject(REFCLSID id, REFIID iid, void** out) const {
        return call<HRESULT(REFCLSID, REFIID, void**)>("DllGetClassObject")(id, iid, out);
    }
    HRESULT canUnloadNow() const { return call<HRESULT()>("DllCanUnloadNow")(); }
    HRESULT registerServer() const { return call<HRESULT()>("DllRegisterServer")(); }
    HRESULT unregisterServer() const { return call<HRESULT()>("DllUnregisterServer")(); }
    int callMain() const { return call<int()>("main")(); }

    RefPtr<IClassFactory> factory(REFCLSID id) const {
        RefPtr<IClassFactory> made;
        EXPECT_EQ(getClassObject(id, IID_IClassFactory, made.putVoid()), S_OK);
        return made;
    }
    template <class Interface>
    RefPtr<Interface> make(REFCLSID id, REFIID iid) const {
        RefPtr<Interface> made;
        EXPECT_EQ(factory(id)->CreateInstance(nullptr, iid, made.putVoid()), S_OK);
        return made;
    }

private:
    template <class Function>
    Function* call(const char* name) const {
        auto* const found = reinterpret_cast<void*>(GetProcAddress(module_, name));
        EXPECT_TRUE(found) << name;
        return reinterpret_cast<Function*>(found);
    }

    HMODULE module_;
};

}  // namespace marnoth::test
