#pragma once

#ifdef _WIN32

#include <gtest/gtest.h>
// The order matters: the rest needs the system's header.
#include <oleauto.h>
#include <windows.h>

#include <filesystem>
#include <initializer_list>
#include <string>

#include "platform/com/RefPtr.h"
#include "support/TempPath.h"

namespace marnoth::test {

/// A type library of one interface, registered on this machine for the scope: version 1.0, neutral locale.
/// The interface derives from `IDispatch` and has operations without arguments, numbered from 1 in the order
/// of their slots.
class TypeLibrary {
public:
    TypeLibrary(REFGUID library, REFIID iid, std::initializer_list<const wchar_t*> operations)
        : library_(library) {
        write(iid, operations);
        RefPtr<ITypeLib> made;
        check(LoadTypeLib(file_.wide().c_str(), made.put()));
        if (made) check(RegisterTypeLib(made.get(), file_.wide().data(), nullptr));
    }
    ~TypeLibrary() { check(UnRegisterTypeLib(library_, 1, 0, 0, SYS_WIN64)); }
    TypeLibrary(const TypeLibrary&) = delete;
    TypeLibrary& operator=(const TypeLibrary&) = delete;

private:
    static void check(HRESULT hr) { EXPECT_EQ(hr, S_OK); }

    void write(REFIID iid, std::initializer_list<const wchar_t*> operations) {
        RefPtr<ICreateTypeLib2> made;
        check(CreateTypeLib2(SYS_WIN64, file_.wide().c_str(), made.put()));
        if (!made) return;
        std::wstring name = L"TestLibrary";
        check(made->SetName(name.data()));
        check(made->SetGuid(library_));
        check(made->SetVersion(1, 0));
        check(made->SetLcid(0));
        addInterface(*made, iid, operations);
        check(made->SaveAllChanges());
    }

    void addInterface(ICreateTypeLib2& made, REFIID iid, std::initializer_list<const wchar_t*> operations) {
        std::wstring name = L"ITestInterface";
        RefPtr<ICreateTypeInfo> info;
        check(made.CreateTypeInfo(name.data(), TKIND_INTERFACE, info.put()));
        if (!info) return;
        check(info->SetGuid(iid));
        check(info->SetTypeFlags(TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDISPATCHABLE));
        deriveFromDispatch(*info);
        UINT index = 0;
        for (const wchar_t* operation : operations) addOperation(*info, index++, operation);
        check(info->LayOut());
    }

    static void deriveFromDispatch(ICreateTypeInfo& info) {
        constexpr GUID kStandardOle{0x00020430, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
        RefPtr<ITypeLib> standard;
        RefPtr<ITypeInfo> dispatch;
        check(LoadRegTypeLib(kStandardOle, 2, 0, 0, standard.put()));
        if (standard) check(standard->GetTypeInfoOfGuid(IID_IDispatch, dispatch.put()));
        HREFTYPE reference = 0;
        if (dispatch) check(info.AddRefTypeInfo(dispatch.get(), &reference));
        check(info.AddImplType(0, reference));
    }

    static void addOperation(ICreateTypeInfo& info, UINT index, std::wstring name) {
        FUNCDESC operation{};
        operation.memid = static_cast<MEMBERID>(index + 1);
        operation.funckind = FUNC_PUREVIRTUAL;
        operation.invkind = INVOKE_FUNC;
        operation.callconv = CC_STDCALL;
        operation.elemdescFunc.tdesc.vt = VT_HRESULT;
        check(info.AddFuncDesc(index, &operation));
        LPOLESTR names[] = {name.data()};
        check(info.SetFuncAndParamNames(index, names, 1));
    }

    const GUID library_;
    const TempPath file_{".tlb"};
};

}  // namespace marnoth::test

#endif
