#include "shells/desktop/DesktopAudio.h"

#include <stdexcept>
#include <utility>

namespace marnoth {

DesktopAudio::DesktopAudio(AudioSystems systems, const DesktopOptions& options, AudioClient& client,
                           Tell tell, std::ostream& errors)
    : systems_(std::move(systems)),
      wish_(options.wish),
      client_(client),
      tell_(std::move(tell)),
      errors_(errors) {
    if (options.audio.empty())
        openBest();
    else
        openNamed(options.audio);
}

void DesktopAudio::openNamed(const std::string& name) {
    const auto choice = findAudio(systems_, name);
    if (!choice) throw std::runtime_error("There is no audio system or device " + name + ".");
    choice_ = *choice;
    if (const std::string failure = open(choice_); !failure.empty()) throw std::runtime_error(failure);
}

void DesktopAudio::openBest() {
    std::string failures;
    for (const auto& system : systems_) {
        if (system->needsDevice()) continue;
        choice_ = {system.get(), {}};
        const std::string failure = open(choice_);
        if (failure.empty()) break;
        failures += failure + " ";
    }
    if (choice_.system != systems_.back().get()) return;
    const std::string sentence = failures + "The program plays without sound.";
    errors_ << sentence << std::endl;
    tell_(sentence);
}

std::string DesktopAudio::open(const AudioChoice& choice) try {
    // Of two no more than one renders.
    driver_.reset();
    AudioWish wish = wish_;
    wish.device = choice.device;
    driver_ = choice.system->open(wish, client_);
    present_ = choice.system;
    return {};
} catch (const std::runtime_error& error) {
    return error.what();
}

void DesktopAudio::look() {
    if (const std::string trouble = driver_->trouble(); !trouble.empty()) {
        isLost_ = true;
        tell_(trouble + " The program plays on without sound.");
        openNone();
    }
    if (isLost_ && open(choice_).empty()) isLost_ = false;
    if (!driver_) openNone();
    driver_->look();
}

std::vector<MenuItem> DesktopAudio::menu() const {
    std::vector<MenuItem> items;
    int id = 0;
    for (const auto& system : systems_) {
        ++id;
        if (!system->needsDevice()) items.push_back({id, system->name(), system.get() == present_});
    }
    return items;
}

void DesktopAudio::choose(int id) {
    isLost_ = false;
    choice_ = {systems_.at(static_cast<std::size_t>(id) - 1).get(), {}};
    tell_(open(choice_));
    if (!driver_) openNone();
}

}  // namespace marnoth
