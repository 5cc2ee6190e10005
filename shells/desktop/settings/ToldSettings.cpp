#include "shells/desktop/settings/ToldSettings.h"

namespace marnoth {

DesktopSettings withTold(DesktopSettings kept, const DesktopOptions& told) {
    if (!told.audio.empty()) kept.audio = told.audio;
    if (!told.wish.midiPort.empty()) kept.midiPort = told.wish.midiPort;
    if (told.wish.rate != 0) kept.rate = told.wish.rate;
    if (told.wish.frames != 0) kept.frames = told.wish.frames;
    if (told.scale != 0) kept.scale = told.scale;
    return kept;
}

void keepChanges(DesktopSettings& kept, const DesktopSettings& atStart, const DesktopSettings& now) {
    const auto keep = [&](auto member) {
        if (now.*member != atStart.*member) kept.*member = now.*member;
    };
    keep(&DesktopSettings::audio);
    keep(&DesktopSettings::midiPort);
    keep(&DesktopSettings::rate);
    keep(&DesktopSettings::frames);
    keep(&DesktopSettings::transport);
    keep(&DesktopSettings::scale);
}

}  // namespace marnoth
