#include "shells/desktop/audio/DesktopAudio.h"

#include <stdexcept>
#include <utility>

#include "shells/desktop/audio/NullSystem.h"

namespace marnoth {

namespace {

constexpr std::chrono::milliseconds kClosingPatience{2000};

bool areAlike(const DesktopSettings& one, const DesktopSettings& other) {
    return one.audio == other.audio && one.midiPort == other.midiPort && one.rate == other.rate &&
           one.frames == other.frames;
}

std::string describe(const AudioChoice& choice, const AudioDriver& driver) {
    if (choice.system->name() == NullSystem::kName) return "The program plays without sound.";
    return "Plays through " + driver.name() + ", " + std::to_string(driver.rate()) +
           " frames per second, blocks of " + std::to_string(driver.frames()) + ".";
}

/// What `name` names; nothing, with a sentence in `failure`, where it names nothing.
std::vector<AudioChoice> namedChoice(const AudioSystems& systems, const std::string& name,
                                     std::string& failure) try {
    if (name.empty()) return {};
    if (auto choice = findAudio(systems, name)) return {std::move(*choice)};
    failure = "There is no audio system or device " + name + ".";
    return {};
} catch (const std::runtime_error& error) {
    failure = error.what();
    return {};
}

/// All but no sound, for which nobody needs a system.
void addBest(const AudioSystems& systems, std::vector<AudioChoice>& choices) {
    for (const auto& system : systems)
        if (system->name() != NullSystem::kName && !system->needsDevice()) choices.push_back({system, {}});
}

}  // namespace

DesktopAudio::DesktopAudio(AudioSystems systems, const DesktopSettings& settings, bool insists,
                           AudioClient& client, Tell tell, std::ostream& errors)
    : systems_(oneCallAtATime(std::move(systems))),
      settings_(settings),
      tell_(std::move(tell)),
      errors_(errors),
      switch_(std::make_shared<AudioSwitch>(client)) {
    std::string failure;
    choices_ = namedChoice(systems_, settings.audio, failure);
    if (!failure.empty()) failures_ = failure + " ";
    if (!insists) addBest(systems_, choices_);
    openAtStart(insists);
}

DesktopAudio::~DesktopAudio() {
    switch_->close();
    opening_.reset();
    closeAudio(std::move(open_), kClosingPatience);
}

void DesktopAudio::openAtStart(bool insists) {
    if (!choices_.empty()) begin(0);
    while (opening_ && opening_->wait(kPatience)) finish();
    if (opening_) failures_ += choices_[attempt_].system->name() + " doesn't answer. ";
    if (choice_ && !failures_.empty() && !settings_.audio.empty())
        tell_(failures_ + "The program plays through " + open_.driver->name() + ".");
    if (choice_) return;
    if (insists) throw std::runtime_error(failures_.substr(0, failures_.size() - 1));
    goOnWithoutSound();
    noneOpened();
}

void DesktopAudio::look(Time now) {
    now_ = now;
    if (opening_ && opening_->look()) {
        finish();
        if (!opening_ && !choice_) noneOpened();
    } else if (const std::string trouble = choice_ ? open_.driver->trouble() : ""; !trouble.empty()) {
        lose(trouble);
    } else if (!opening_ && !choice_ && now >= nextTry_ && !choices_.empty()) {
        failures_.clear();
        begin(0);
    }
    if (!choice_ || now < nextLook_) return;
    open_.driver->look();
    nextLook_ = now + kLookPeriod;
}

void DesktopAudio::begin(std::size_t attempt, OpenAudio former) try {
    attempt_ = attempt;
    const AudioChoice& choice = choices_[attempt];
    AudioWish wish{choice.device, settings_.midiPort, settings_.rate, settings_.frames};
    // Silence is no reason for another rate.
    if (choice.system->name() == NullSystem::kName && wish.rate == 0) wish.rate = rate_;
    opening_ = std::make_unique<AudioOpening>(choice.system, wish, switch_, std::move(former));
} catch (const std::runtime_error& error) {
    // There are no more threads.
    failures_ += std::string(error.what()) + ". ";
}

void DesktopAudio::finish() {
    OpenAudio audio = opening_->take();
    const std::string failure = opening_->failure();
    opening_.reset();
    if (audio.driver) return opened(std::move(audio));
    failed(failure);
}

void DesktopAudio::failed(const std::string& why) {
    // Systems may lack the same.
    if (failures_.find(why) == failures_.npos) failures_ += why + " ";
    if (open_.driver) {
        // It may have been shut out already.
        switch_->give(open_.entrance.get(), [this](AudioClient& client) {
            return client.prepare(open_.driver->rate(), open_.driver->frames());
        });
    }
    if (attempt_ + 1 < choices_.size()) begin(attempt_ + 1);
}

void DesktopAudio::opened(OpenAudio audio) {
    open_ = std::move(audio);
    choice_ = choices_[attempt_];
    rate_ = open_.driver->rate();
    open_.driver->setTransport(settings_.transport);
    former_.reset();
    if (std::exchange(isKnown_, false)) tell(open_.driver->name() + " is there again.");
    errors_ << failures_ << describe(*choice_, *open_.driver) << std::endl;
}

void DesktopAudio::noneOpened() {
    nextTry_ = now_ + kRetryPeriod;
    if (former_) {
        tell(failures_.substr(0, failures_.size() - 1));
        settings_ = std::move(former_->settings);
        choices_ = std::move(former_->choices);
        former_.reset();
        failures_.clear();
        nextTry_ = now_;
        return;
    }
    // What comes first is read where the rest has no room.
    if (!isKnown_) tell("The program plays without sound. " + failures_.substr(0, failures_.size() - 1));
    isKnown_ = true;
}

OpenAudio DesktopAudio::goOnWithoutSound() {
    OpenAudio former = std::move(open_);
    choice_.reset();
    AudioOpening opening(std::make_shared<NullSystem>(), {{}, {}, rate_ ? rate_ : settings_.rate, 0}, switch_,
                         {});
    opening.wait(kPatience);
    open_ = opening.take();
    return former;
}

void DesktopAudio::lose(const std::string& why) {
    choices_ = {*choice_};
    failures_ = why + " ";
    begin(0, goOnWithoutSound());
}

void DesktopAudio::change(const DesktopSettings& settings) {
    if (areAlike(settings, settings_)) {
        settings_ = settings;
        if (open_.driver) open_.driver->setTransport(settings_.transport);
        return;
    }
    // A device is looked for only once: its system may be busy with an attempt that waits for this thread.
    const bool isSameDevice = settings.audio == settings_.audio && !choices_.empty();
    std::string failure;
    Choices choices = isSameDevice ? choices_ : namedChoice(systems_, settings.audio, failure);
    if (choices.empty() && settings.audio.empty()) addBest(systems_, choices);
    if (choices.empty()) return tell(failure);
    if (!former_) former_ = {settings_, choices_};
    settings_ = settings;
    choices_ = std::move(choices);
    failures_.clear();
    isKnown_ = false;
    begin(0, goOnWithoutSound());
}

void DesktopAudio::tell(const std::string& sentence) {
    errors_ << sentence << std::endl;
    tell_(sentence);
}

}  // namespace marnoth
