#include "shells/windows/ClassTable.h"

#include <array>

#include "host/CreateInstance.h"
#include "seam/ClassIds.h"
#include "shells/windows/PropertyPage.h"

namespace marnoth {

namespace {

/// Below every renderer and source that a graph looks for by itself.
constexpr DWORD kMerit = 0x200000;

const CLSID kNone{};
const REGPINTYPES kAnyType{&kNone, &kNone};

REGFILTERPINS pin(const wchar_t* name, BOOL isOutput, const wchar_t* peer) {
    REGFILTERPINS told{};
    told.strName = const_cast<LPWSTR>(name);
    told.bOutput = isOutput;
    told.clsConnectsToFilter = &kNone;
    told.strConnectsToPin = const_cast<LPWSTR>(peer);
    told.nMediaTypes = 1;
    told.lpMediaType = &kAnyType;
    return told;
}

}  // namespace

std::span<const ServedClass> servedClasses() {
    static const std::array pins{pin(L"Input", FALSE, L"Output"), pin(L"Output", TRUE, L"Input")};
    static const FilterSetup filter{kMerit, pins};
    static const std::array classes{
        ServedClass{L"Marnoth", &CLSID_Marnoth, createInstrument, &filter},
        ServedClass{L"Marnoth Properties", &CLSID_MarnothProperties, createPropertyPage, nullptr}};
    return classes;
}

}  // namespace marnoth
