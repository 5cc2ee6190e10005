#include "shells/desktop/DesktopAudio.h"

#include <stdexcept>

#include "shells/desktop/JackDriver.h"
#include "shells/desktop/NullDriver.h"

namespace marnoth {

namespace {

constexpr const char* kJack = "jack";
constexpr const char* kNull = "null";

enum Choice { kUseJack = 1, kUseNull };

}  // namespace

DesktopAudio::DesktopAudio(const DesktopOptions& options, AudioClient& client, std::ostream& errors)
    : options_(options), client_(client) {
    const std::string failure = open(options.audio == kNull ? kNull : kJack);
    if (failure.empty()) return;
    if (options.audio == kJack) throw std::runtime_error(failure);
    errors << failure << " The program plays without sound." << std::endl;
    open(kNull);
}

std::string DesktopAudio::open(const std::string& kind) try {
    // Of two no more than one renders.
    driver_.reset();
    if (kind == kJack)
        driver_ = std::make_unique<JackDriver>(options_.wish, client_);
    else
        driver_ = std::make_unique<NullDriver>(options_.wish, client_);
    return {};
} catch (const std::runtime_error& error) {
    return error.what();
}

void DesktopAudio::look() {
    if (!driver_->trouble().empty()) {
        isLost_ = true;
        open(kNull);
    }
    if (isLost_ && open(kJack).empty()) isLost_ = false;
    if (!driver_) open(kNull);
    driver_->look();
}

std::vector<MenuItem> DesktopAudio::menu() const {
    const bool playsJack = driver_->name() == "JACK";
    return {{kUseJack, "JACK", playsJack}, {kUseNull, "No sound", !playsJack}};
}

std::string DesktopAudio::choose(int id) {
    isLost_ = false;
    std::string failure = open(id == kUseJack ? kJack : kNull);
    if (!driver_) open(kNull);
    return failure;
}

}  // namespace marnoth
