#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "platform/drawing/PageWindow.h"
#include "shells/desktop/EventLoop.h"
#include "shells/desktop/playing/LiveInstrument.h"
#include "shells/desktop/projects/OpenProject.h"
#include "shells/desktop/projects/RecoveryFile.h"
#include "shells/desktop/window/Notices.h"

namespace marnoth {

/// Loses nothing in a crash: copies the open project every minute in which it has changed, for the first time
/// soon after the start, offers what a program that didn't end well has left, and keeps a copy where the user
/// couldn't be asked. A copy changes neither the project's path nor its files nor its title. The window's
/// thread.
class ProjectRecovery {
public:
    /// All outlive it. `folder` is where copies go.
    ProjectRecovery(LiveInstrument& instrument, OpenProject& project, PageWindow& window, Notices& notices,
                    const std::filesystem::path& folder);

    bool hasFound() const { return file_.found().has_value(); }
    /// Asks about what was found, and opens it, if there is any; `opened` follows that.
    void offer(std::function<void()> opened);
    /// Once in a while: a copy when it is time for one.
    void look(EventLoop::Time now);
    /// The project is safe elsewhere, or nobody wants it.
    void discard() { file_.discard(); }
    /// The program ends without an answer: changes are found by the next one.
    void keepChanges();

private:
    void recover(const std::function<void()>& opened);

    LiveInstrument& instrument_;
    OpenProject& project_;
    PageWindow& window_;
    Notices& notices_;
    RecoveryFile file_;
    EventLoop::Time nextCopy_;
    std::uint64_t copied_ = 0;  ///< the count of changes at the last copy
};

/// Whether an instrument can load all of a state.
bool isWholeState(const std::vector<std::uint8_t>& state);

}  // namespace marnoth
