#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/drawing/PageWindow.h"
#include "shells/desktop/AudioDriver.h"
#include "shells/desktop/AudioSystems.h"
#include "shells/desktop/Desktop.h"

namespace marnoth {

/// The program's audio system: the best that there is, and none at all when it goes. The window's thread.
class DesktopAudio {
public:
    /// Takes a sentence for the user.
    using Tell = std::function<void(const std::string&)>;

    /// `systems` are the ways to be heard, best first, the last one always to be had; `client` outlives it.
    /// What can't be had is told, and said on `errors`, and there is no sound; but of what was asked for by
    /// name: `std::runtime_error` with a sentence for the user.
    DesktopAudio(AudioSystems systems, const DesktopOptions& options, AudioClient& client, Tell tell,
                 std::ostream& errors);

    /// Once a second: new ports are connected, and a system that has gone is tried again.
    void look();
    /// What can be chosen, and the choice.
    std::vector<MenuItem> menu() const;
    void choose(int id);

private:
    void openNamed(const std::string& name);
    void openBest();
    std::string open(const AudioChoice& choice);
    void openNone() { open({systems_.back().get(), {}}); }

    const AudioSystems systems_;
    AudioWish wish_;
    AudioClient& client_;
    const Tell tell_;
    std::ostream& errors_;
    AudioChoice choice_;  ///< what plays, or would but for its absence
    AudioSystem* present_ = nullptr;
    std::unique_ptr<AudioDriver> driver_;
    bool isLost_ = false;  ///< a system that played is gone, and plays again when it comes back
};

}  // namespace marnoth
