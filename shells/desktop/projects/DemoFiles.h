#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace marnoth {

/// A project and a MIDI file to begin with. Full paths, UTF-8.
struct DemoFiles {
    std::string project;
    std::string song;
    std::string folder;  ///< its loops lie there too
};

/// The demo, seen from the folder of the program: installed, or in a build tree. Nothing where either file is
/// missing.
std::optional<DemoFiles> findDemo(const std::filesystem::path& programFolder);

}  // namespace marnoth
