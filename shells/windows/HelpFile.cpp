#include "shells/windows/HelpFile.h"

#include <string>

#include "platform/windows/RegKey.h"

namespace marnoth {

std::filesystem::path installedHelpFile() {
    const CRegKey installed(L"Software\\Harnwell Music Software\\Shared Pzi", L"", CRegKey::kOpen,
                            CRegKey::kLocalMachine, 1);
    std::wstring folder;
    installed.QueryString(L"InstallDirectory", L"", &folder);
    return folder + L"\\Marnoth\\Marnoth.chm";
}

}  // namespace marnoth
