#include <alsa/asoundlib.h>

#include <algorithm>

#include "shells/desktop/audio/MissingSystem.h"
#include "shells/desktop/audio/RtModule.h"
#include "shells/desktop/audio/rtaudio/RtAudioSystem.h"
#include "shells/desktop/audio/rtaudio/RtMidiSystem.h"

namespace {

using namespace marnoth;

void keepQuiet(const char*, int, const char*, int, const char*, ...) {}

std::shared_ptr<AudioSystem> makeSystem(RtAudio::Api api, const std::string& name) {
    std::vector<RtAudio::Api> known;
    RtAudio::getCompiledApi(known);
    if (std::ranges::count(known, api) > 0) return std::make_shared<RtAudioSystem>(api, name);
    return std::make_shared<MissingSystem>(name, "This system's RtAudio knows no " + name + ".");
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void marnothRtSystems(RtSystems& systems) {
    // ALSA tells on standard error what we tell ourselves.
    snd_lib_error_set_handler(keepQuiet);
    systems.audio.push_back(makeSystem(RtAudio::LINUX_PULSE, "PulseAudio"));
    systems.audio.push_back(makeSystem(RtAudio::LINUX_ALSA, "ALSA"));
    systems.midi = std::make_shared<RtMidiSystem>(RtMidi::LINUX_ALSA);
}
