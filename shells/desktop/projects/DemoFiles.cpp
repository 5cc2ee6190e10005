#include "shells/desktop/projects/DemoFiles.h"

#include <system_error>

#include "shellkit/text/InstrumentText.h"

namespace marnoth {

std::optional<DemoFiles> findDemo(const std::filesystem::path& programFolder) {
    std::error_code error;
    for (const char* const place : {"../share/marnoth/demo", "../desktop/demo"}) {
        const std::filesystem::path folder = std::filesystem::canonical(programFolder / place, error);
        if (error) continue;
        const std::filesystem::path project = folder / "groove.mrn";
        const std::filesystem::path song = folder / "groove.mid";
        if (std::filesystem::exists(project, error) && std::filesystem::exists(song, error))
            return DemoFiles{utf8FromPath(project), utf8FromPath(song), utf8FromPath(folder)};
    }
    return {};
}

}  // namespace marnoth
