#pragma once

#include <filesystem>
#include <utility>

#include "platform/com/Com.h"

namespace marnoth {

/// The system's viewer of help, for one file. Its library is looked for when help is first wanted, in the
/// registry and then by name, and never again where that fails: then help does nothing. Once found the
/// library stays in the process: the viewer's windows outlive ours.
class HelpViewer {
public:
    /// A bare name is that of a file beside this module; empty for no help at all.
    explicit HelpViewer(std::filesystem::path file) : file_(std::move(file)) {}

    /// Shows the file's first page; `window` asks for it.
    void show(HWND window);

private:
    using Viewer = HWND(HWND window, const wchar_t* file, UINT command, DWORD_PTR data);

    static Viewer* find();

    std::filesystem::path file_;
    Viewer* viewer_ = nullptr;
    bool sought_ = false;
};

}  // namespace marnoth
