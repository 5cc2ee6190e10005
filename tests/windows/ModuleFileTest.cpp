/// The files themselves: what they give out and need, and what Windows shows of them.

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "support/TestData.h"
#include "windows/Component.h"

namespace marnoth::test::module_file_test {
namespace {

std::filesystem::path programFile() {
    return testData(MARNOTH_PROGRAM);
}

/// A file's image for looking at: nothing in it is run.
class Image {
public:
    explicit Image(const std::filesystem::path& file)
        : module_(
              LoadLibraryExW(std::filesystem::absolute(file).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES)) {
        EXPECT_TRUE(module_) << file;
    }
    ~Image() { FreeLibrary(module_); }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    HMODULE get() const { return module_; }

    std::set<std::string> exports() const {
        const auto* table =
            at<IMAGE_EXPORT_DIRECTORY>(directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
        const auto* names = at<DWORD>(table->AddressOfNames);
        std::set<std::string> all;
        for (DWORD i = 0; i < table->NumberOfNames; ++i) all.insert(at<char>(names[i]));
        return all;
    }

    /// In lower case.
    std::set<std::string> neededModules() const {
        const auto* needed =
            at<IMAGE_IMPORT_DESCRIPTOR>(directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
        std::set<std::string> all;
        for (; needed->Name; ++needed) {
            std::string name = at<char>(needed->Name);
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char c) { return std::tolower(c); });
            all.insert(name);
        }
        return all;
    }

    /// The bytes of a resource; none without it.
    std::vector<BYTE> resource(int number, LPCWSTR kind) const {
        HRSRC found = FindResourceW(module_, MAKEINTRESOURCEW(number), kind);
        if (!found) return {};
        const auto* bytes = static_cast<const BYTE*>(LockResource(LoadResource(module_, found)));
        return {bytes, bytes + SizeofResource(module_, found)};
    }

private:
    template <class T>
    const T* at(DWORD offset) const {
        return reinterpret_cast<const T*>(reinterpret_cast<const BYTE*>(module_) + offset);
    }
    const IMAGE_DATA_DIRECTORY& directory(int entry) const {
        const auto* head = at<IMAGE_NT_HEADERS>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0)->e_lfanew));
        return head->OptionalHeader.DataDirectory[entry];
    }

    HMODULE module_;
};

TEST(ModuleFile, GivesOutFiveNames) {
    EXPECT_EQ(Image(Component::builtFile()).exports(),
              (std::set<std::string>{"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                     "DllUnregisterServer", "main"}));
}

TEST(ModuleFile, NeedsNothingButWindows) {
    // What every Windows has since its version 10, in its system folder.
    const std::set<std::string> windows{"advapi32.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll",
                                        "hhctrl.ocx",   "imm32.dll",    "kernel32.dll", "msvcrt.dll",
                                        "ole32.dll",    "oleaut32.dll", "shell32.dll",  "user32.dll",
                                        "version.dll",  "winmm.dll"};
    for (const auto& file : {Component::builtFile(), programFile()})
        for (const std::string& needed : Image(file).neededModules())
            EXPECT_TRUE(windows.contains(needed)) << file << " needs " << needed;
}

/// Sizes of an icon's images, in pixels.
std::set<int> sizesOfIcon(const Image& image) {
    const auto group = image.resource(1, RT_GROUP_ICON);
    constexpr std::size_t kHead = 6, kEntry = 14;
    std::set<int> sizes;
    for (std::size_t at = kHead; at + kEntry <= group.size(); at += kEntry) {
        const int number = group[at + 12] | group[at + 13] << 8;
        const auto bytes = image.resource(number, RT_ICON);
        const int told = group[at] ? group[at] : 256;
        HICON icon =
            CreateIconFromResourceEx(const_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), TRUE,
                                     0x00030000, told, told, LR_DEFAULTCOLOR);
        EXPECT_TRUE(icon) << told;
        DestroyIcon(icon);
        sizes.insert(told);
    }
    return sizes;
}

TEST(ModuleFile, HasAnIconInFourSizes) {
    for (const auto& file : {Component::builtFile(), programFile()})
        EXPECT_EQ(sizesOfIcon(Image(file)), (std::set<int>{16, 32, 48, 256})) << file;
}

/// A text of the version that a file tells.
std::wstring versionText(const std::filesystem::path& file, const std::wstring& name) {
    std::vector<BYTE> info(GetFileVersionInfoSizeW(file.c_str(), nullptr));
    EXPECT_TRUE(GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(info.size()), info.data()));
    wchar_t* text = nullptr;
    UINT units = 0;
    const std::wstring path = L"\\StringFileInfo\\040904B0\\" + name;
    if (!VerQueryValueW(info.data(), path.c_str(), reinterpret_cast<void**>(&text), &units)) return {};
    return text;
}

TEST(ModuleFile, TellsItsVersion) {
    for (const auto& file : {Component::builtFile(), programFile()}) {
        EXPECT_EQ(versionText(file, L"FileVersion"), L"" MARNOTH_VERSION);
        EXPECT_EQ(versionText(file, L"ProductName"), L"Marnoth");
        EXPECT_EQ(versionText(file, L"OriginalFilename"), file.filename().wstring());
    }
}

TEST(ModuleFile, LeavesToItsHostHowWindowsTreatsTheProcess) {
    EXPECT_TRUE(Image(Component::builtFile()).resource(1, RT_MANIFEST).empty());
    const auto manifest = Image(programFile()).resource(1, RT_MANIFEST);
    const std::string text(manifest.begin(), manifest.end());
    for (const char* told :
         {">UTF-8</activeCodePage>", ">true</longPathAware>", ">PerMonitorV2</dpiAwareness>"})
        EXPECT_NE(text.find(told), std::string::npos) << told;
}

}  // namespace
}  // namespace marnoth::test::module_file_test
