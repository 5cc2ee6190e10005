#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/drawing/PageWindow.h"
#include "shells/desktop/AudioDriver.h"
#include "shells/desktop/Desktop.h"

namespace marnoth {

/// The program's audio system: the best that there is, and another when it goes. The window's thread.
class DesktopAudio {
public:
    /// `client` outlives it. What can't be had is said on `errors`; then there is no sound, but for one that
    /// was asked for by name: `std::runtime_error` with a sentence for the user.
    DesktopAudio(const DesktopOptions& options, AudioClient& client, std::ostream& errors);

    /// Once a second: new ports are connected, and a system that has gone is tried again.
    void look();
    /// What can be chosen, and the choice; that answers with a sentence for the user when it can't be.
    std::vector<MenuItem> menu() const;
    std::string choose(int id);

private:
    std::string open(const std::string& kind);

    const DesktopOptions options_;
    AudioClient& client_;
    std::unique_ptr<AudioDriver> driver_;
    bool isLost_ = false;  ///< a system that played is gone, and plays again when it comes back
};

}  // namespace marnoth
