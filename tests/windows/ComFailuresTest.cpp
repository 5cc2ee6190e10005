/// `script --com` where there is no component to play, or not the right one.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "cli/CliRun.h"
#include "hostkit/MakeObject.h"
#include "platform/com/Unknown.h"
#include "seam/ClassIds.h"
#include "shellkit/component/ComApartment.h"
#include "shellkit/component/RegisteredInstrument.h"
#include "shellkit/files/Failure.h"
#include "windows/Component.h"
#include "windows/RegistryView.h"

namespace marnoth::test::com_failures_test {
namespace {

namespace fs = std::filesystem;

constexpr CLSID kForeign{0x0F1E2D3C, 0x1111, 0x2222, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr CLSID kNullRenderer{0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};

std::wstring classKey() {
    return L"CLSID\\" + idText(CLSID_Marnoth);
}

void setDefault(const std::wstring& key, const std::wstring& text) {
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    ASSERT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, text.c_str(), bytes),
              ERROR_SUCCESS);
}

/// Nothing of the component in the registry, before and behind a test.
class ComFailures : public testing::Test {
protected:
    ComFailures() { unregister(); }
    ~ComFailures() override { unregister(); }

    static void unregister() { EXPECT_EQ(Component().unregisterServer(), S_OK); }

    /// What the program says, in its one line.
    static std::string toldBy(const std::vector<std::string>& more = {"--com"}) {
        const TempFolder folder;
        writeText(folder / "test.mrs", "GetBinFileCount\n");
        std::vector<std::string> words{"script", folder.name("test.mrs"), "--out", folder.name("out")};
        words.insert(words.end(), more.begin(), more.end());
        const CliRun run = marnoth(words);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_FALSE(fs::exists(folder / "out"));
        return run.err;
    }
    static void expectTold(const std::string& what) {
        const std::string told = toldBy();
        EXPECT_NE(told.find(what), std::string::npos) << told;
        EXPECT_NE(told.find("run register.cmd"), std::string::npos) << told;
    }
};

TEST_F(ComFailures, NoComponentIsRegistered) {
    expectTold("Marnoth isn't registered as a component");
}

TEST_F(ComFailures, TheFileOfARegisteredSoftSynthIsMissing) {
    const TempFolder folder;
    fs::copy_file(Component::builtFile(), folder / "Marnoth.dll");
    EXPECT_EQ(Component(folder / "Marnoth.dll").registerServer(), S_OK);
    fs::remove(folder / "Marnoth.dll");
    EXPECT_TRUE(isThere(L"KvxSoftSynths\\" + idText(CLSID_Marnoth)));
    expectTold(folder.name("Marnoth.dll") + ": the registered component isn't there any more");
}

TEST_F(ComFailures, TheRegisteredFileIsNoModule) {
    const TempFolder folder;
    writeText(folder / "Marnoth.dll", "no module");
    setDefault(classKey() + L"\\InprocServer32", wideFromPath(folder / "Marnoth.dll"));
    expectTold(folder.name("Marnoth.dll") + ": the registered component can't be loaded");
}

TEST_F(ComFailures, TheRegisteredFileHoldsOtherClasses) {
    setDefault(classKey() + L"\\InprocServer32", L"quartz.dll");
    expectTold("quartz.dll: it is registered as the component, but it is another one");
}

TEST_F(ComFailures, TheRegisteredClassIsNoInstrument) {
    EXPECT_EQ(Component().registerServer(), S_OK);
    setDefault(classKey() + L"\\TreatAs", idText(kNullRenderer));
    EXPECT_EQ(toldBy(), "marnoth: the instrument has no IGrooveSampler\n");
}

/// A maker of nothing, in place of a class of the system's.
class NothingMade : public Implements<CUnknown, IClassFactory> {
public:
    NothingMade() : Implements(nullptr) {}

    HRESULT CreateInstance(IUnknown*, REFIID, void**) override { return ++asked, E_FAIL; }
    HRESULT LockServer(BOOL) override { return S_OK; }

    int asked = 0;

private:
    IUnknown* FindInterface(REFIID iid) override {
        return iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
    }
};

TEST_F(ComFailures, TheSystemHasNoGraph) {
    const ComApartment apartment(COINIT_MULTITHREADED);
    EXPECT_EQ(Component().registerServer(), S_OK);
    const auto maker = makeObject<NothingMade>();
    DWORD cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(CLSID_FilterGraph, static_cast<IClassFactory*>(maker.get()),
                                    CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
              S_OK);
    EXPECT_EQ(toldBy(), "marnoth: the system's filter graph can't be made\n");
    EXPECT_EQ(maker->asked, 1);
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
}

TEST_F(ComFailures, ClassesThatNobodyHasArentThere) {
    const ComApartment apartment(COINIT_MULTITHREADED);
    EXPECT_EQ(Component().registerServer(), S_OK);
    EXPECT_NO_THROW(needRegistered(CLSID_Marnoth));
    for (const CLSID& id : {kForeign, CLSID{}}) EXPECT_THROW(needRegistered(id), FileFailure);
    void* out = &out;
    EXPECT_EQ(createRegistered(nullptr, kForeign, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

}  // namespace
}  // namespace marnoth::test::com_failures_test
