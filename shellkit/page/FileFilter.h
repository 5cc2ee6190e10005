#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace marnoth {

/// Which files a dialog offers: "Wave Files (*.wav)|*.wav||" in its parts. Several patterns have semicolons
/// between them.
struct FileFilter {
    explicit FileFilter(std::string_view text);

    /// Whether a file's name, without folders, fits one of the patterns, large letters or small ones. A star
    /// at a pattern's beginning stands for anything.
    bool matches(std::string_view name) const;
    /// `file` with the first pattern's extension behind it, unless it fits one.
    std::string withExtension(std::string file) const;
    /// Of a dialog for such files: "Open: Wave Files (*.wav)".
    std::string title(bool saves) const { return (saves ? "Save: " : "Open: ") + name; }

    std::string name;                   ///< "Wave Files (*.wav)"
    std::vector<std::string> patterns;  ///< "*.wav"
};

}  // namespace marnoth
