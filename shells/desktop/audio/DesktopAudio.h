#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "shells/desktop/audio/AudioOpening.h"
#include "shells/desktop/audio/AudioSystems.h"
#include "shells/desktop/settings/DesktopSettings.h"

namespace marnoth {

/// The program's sound: through the device that is wished or the best that there is. One that can't be had,
/// or that goes, is told and tried again; until it is there the client plays on without sound, at the pace
/// of the clock. The window's thread; what may take long is done by others.
class DesktopAudio {
public:
    using Time = std::chrono::steady_clock::time_point;
    /// Takes a sentence for the user, who reads it in the window.
    using Tell = std::function<void(const std::string&)>;

    static constexpr std::chrono::seconds kRetryPeriod{3};
    static constexpr std::chrono::seconds kLookPeriod{1};  ///< at the ports of an open driver
    static constexpr std::chrono::seconds kPatience{5};    ///< at the start, with who doesn't answer

    /// `systems` are the ways to be heard, best first; `client` outlives it. Opens what `settings` name, else
    /// something that can be had, and tells; when `insists` it is `std::runtime_error` with a sentence for
    /// the user instead. What is told goes to `errors` too, and there alone how all went well.
    DesktopAudio(AudioSystems systems, const DesktopSettings& settings, bool insists, AudioClient& client,
                 Tell tell, std::ostream& errors);
    ~DesktopAudio();
    DesktopAudio(const DesktopAudio&) = delete;
    DesktopAudio& operator=(const DesktopAudio&) = delete;

    /// Often: takes up what has been opened, sees what has gone and tries what isn't there again.
    void look(Time now);

    const DesktopSettings& settings() const { return settings_; }
    /// Opens what they name in place of what is open, if that is another. When it can't be had it is told,
    /// and what was open opens again.
    void change(const DesktopSettings& settings);

    /// What plays, if only to nobody; null where not even that can be had.
    const AudioDriver* driver() const { return open_.driver.get(); }
    /// The transport of what is open, while it is followed; else null.
    SharedTransport* transport() { return open_.driver ? open_.driver->transport() : nullptr; }
    /// What is open; nothing while there is no sound for want of it.
    const std::optional<AudioChoice>& choice() const { return choice_; }
    const AudioSystems& systems() const { return systems_; }

private:
    using Choices = std::vector<AudioChoice>;
    struct Former {
        DesktopSettings settings;
        Choices choices;
    };

    void openAtStart(bool insists);
    void begin(std::size_t attempt, OpenAudio former = {});
    void finish();
    void failed(const std::string& why);
    void opened(OpenAudio audio);
    void noneOpened();
    /// What is open until now, in whose place is something that nobody hears.
    OpenAudio goOnWithoutSound();
    void lose(const std::string& why);
    void tell(const std::string& sentence);

    const AudioSystems systems_;
    DesktopSettings settings_;
    std::optional<Former> former_;  ///< to go back to when a change fails
    const Tell tell_;
    std::ostream& errors_;
    const std::shared_ptr<AudioSwitch> switch_;

    Choices choices_;  ///< what is tried, one after the other
    std::size_t attempt_ = 0;
    std::unique_ptr<AudioOpening> opening_;
    std::string failures_;  ///< of those that were tried, each with a space behind it
    bool isKnown_ = false;  ///< the user has been told that there is no sound
    OpenAudio open_;
    std::optional<AudioChoice> choice_;
    std::uint32_t rate_ = 0;  ///< of what was open last, frames per second
    Time now_{};              ///< of the last look
    Time nextTry_{};
    Time nextLook_{};
};

}  // namespace marnoth
