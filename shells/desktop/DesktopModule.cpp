#include "shells/desktop/DesktopModule.h"

#include <clocale>

int marnothDesktop(const marnoth::DesktopOptions& options, std::ostream& errors) {
    // What is typed comes through the user's own input method.
    std::setlocale(LC_CTYPE, "");
    return marnoth::runDesktop(options, errors);
}

void marnothAudioSystems(marnoth::AudioSystems& systems) {
    systems = marnoth::audioSystems();
}
