#include "shells/desktop/settings/DesktopSettings.h"

#include <algorithm>

#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// What isn't between both, no number among it, gives way to the usual.
template <class Value>
void keepWithin(Value& value, Value lowest, Value highest, Value usual) {
    if (!(value >= lowest && value <= highest)) value = usual;
}

void keepName(std::string& text) {
    const auto isControl = [](char letter) { return static_cast<unsigned char>(letter) < ' '; };
    if (text.size() > DesktopSettings::kLongestName || !isUtf8(text) || std::ranges::any_of(text, isControl))
        text.clear();
}

}  // namespace

DesktopSettings usable(DesktopSettings settings) {
    const DesktopSettings usual;
    keepName(settings.audio);
    keepName(settings.midiPort);
    if (settings.rate != 0)
        keepWithin(settings.rate, DesktopSettings::kLowestRate, DesktopSettings::kHighestRate, usual.rate);
    keepWithin(settings.frames, 0, DesktopSettings::kMostFrames, usual.frames);
    keepWithin(settings.scale, 0, DesktopSettings::kLargestScale, usual.scale);
    keepWithin(settings.transport, TransportRole::own, TransportRole::leads, usual.transport);
    keepWithin(settings.level, 0.0f, DesktopSettings::kHighestLevel, usual.level);
    keepWithin(settings.loopBars, 1, DesktopSettings::kMostLoopBars, usual.loopBars);
    for (std::string& file : settings.recent) keepName(file);
    keepName(settings.loopFolder);
    keepName(settings.projectFolder);
    std::erase(settings.recent, "");
    settings.recent.resize(std::min(settings.recent.size(), DesktopSettings::kMostRecent));
    return settings;
}

}  // namespace marnoth
