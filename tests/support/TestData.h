#pragma once

#include <cstdlib>
#include <filesystem>

namespace marnoth::test {

/// A file or folder that tests read, which was at `built` when they were built. Where they have been carried
/// elsewhere it has the same name in the folder that MARNOTH_TEST_DATA tells.
inline std::filesystem::path testData(const std::filesystem::path& built) {
#ifdef _WIN32
    const auto* const folder = _wgetenv(L"MARNOTH_TEST_DATA");
#else
    const auto* const folder = std::getenv("MARNOTH_TEST_DATA");
#endif
    return folder ? std::filesystem::path(folder) / built.filename() : built;
}

}  // namespace marnoth::test
