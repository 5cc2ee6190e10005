#include "shellkit/component/RegisteredInstrument.h"

#include <array>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "platform/com/RefPtr.h"
#include "shellkit/files/Failure.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr const char* kWhatToDo = ": run register.cmd, which lies beside Marnoth.dll";

/// Code units of the longest name of a file.
constexpr std::size_t kLongestName = 32768;

/// The file that a class is registered to live in; empty when it isn't registered.
std::filesystem::path serverOf(REFCLSID id) {
    std::array<wchar_t, 39> text{};
    StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
    const std::wstring key = std::wstring(L"CLSID\\") + text.data() + L"\\InprocServer32";
    std::vector<wchar_t> name(kLongestName);
    auto bytes = static_cast<DWORD>(name.size() * sizeof(wchar_t));
    const LSTATUS read =
        RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, name.data(), &bytes);
    return read == ERROR_SUCCESS ? name.data() : L"";
}

/// One without a folder is looked for by the system.
bool isMissing(const std::filesystem::path& file) {
    std::error_code ignored;
    return file.is_absolute() && !std::filesystem::exists(file, ignored);
}

std::string whyNotMade(REFCLSID id, HRESULT failure) {
    const std::filesystem::path file = serverOf(id);
    const std::string name = utf8FromPath(file);
    if (file.empty()) return std::string("Marnoth isn't registered as a component") + kWhatToDo;
    if (isMissing(file)) return name + ": the registered component isn't there any more" + kWhatToDo;
    if (failure == CLASS_E_CLASSNOTAVAILABLE)
        return name + ": it is registered as the component, but it is another one" + kWhatToDo;
    return name + ": the registered component can't be loaded (" + printResult(failure) + ")" + kWhatToDo;
}

}  // namespace

HRESULT createRegistered(IUnknown* outer, REFIID iid, void** out) {
    return CoCreateInstance(CLSID_Marnoth, outer, CLSCTX_INPROC_SERVER, iid, out);
}

void needRegistered(REFCLSID id) {
    RefPtr<IClassFactory> factory;
    const HRESULT found =
        CoGetClassObject(id, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.putVoid());
    if (FAILED(found)) throw FileFailure(whyNotMade(id, found));
}

}  // namespace marnoth
