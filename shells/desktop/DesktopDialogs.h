#pragma once

#include <string>
#include <vector>

#include "shellkit/page/ChooserChain.h"
#include "shellkit/page/PageChooser.h"
#include "shells/desktop/EventLoop.h"
#include "shells/desktop/PortalChooser.h"
#include "shells/desktop/ProgramChooser.h"

namespace marnoth {

/// All the program's ways to let its user choose a file: the desktop's portal, else zenity or kdialog, else
/// the page's own dialog. The loop's thread.
class DesktopDialogs {
public:
    /// All outlive it. `font` is that of the page's own dialog, in which files are heard by `listener`.
    DesktopDialogs(EventLoop& loop, Font& font, FileListener& listener);

    FileChooser& chooser() { return chain_; }

private:
    /// Folders from which files were chosen.
    std::vector<FilePlace> chosenFrom() const;

    PortalChooser portal_;
    ProgramChooser program_;
    PageChooser page_;
    ChooserChain chain_{{&portal_, &program_, &page_}};
};

}  // namespace marnoth
