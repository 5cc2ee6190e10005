#pragma once

#include <string>
#include <vector>

#include "shellkit/page/ChooserChain.h"
#include "shellkit/page/PageChooser.h"
#include "shells/desktop/EventLoop.h"
#include "shells/desktop/dialogs/PortalChooser.h"
#include "shells/desktop/dialogs/ProgramChooser.h"
#include "shells/desktop/settings/DesktopSettings.h"

namespace marnoth {

/// All the program's ways to let its user choose a file: the desktop's portal, else zenity or kdialog, else
/// the page's own dialog. The loop's thread.
class DesktopDialogs {
public:
    /// All outlive it. `font` is that of the page's own dialog, in which files are heard by `listener`.
    /// `demo` is the folder of the loops to begin with, UTF-8; empty without one.
    DesktopDialogs(EventLoop& loop, Font& font, FileListener& listener, std::string demo);

    ChooserChain& chooser() { return chain_; }
    /// Dialogs begin in the folders that are kept in `settings`.
    void beginWhereKept(const DesktopSettings& settings);
    /// Keeps the folders from which files were chosen last.
    void keepFolders(DesktopSettings& settings);

private:
    /// The demo's folder, and those from which files were chosen.
    std::vector<FilePlace> morePlaces() const;

    const std::string demo_;
    PortalChooser portal_;
    ProgramChooser program_;
    PageChooser page_;
    ChooserChain chain_{{&portal_, &program_, &page_}};
};

}  // namespace marnoth
