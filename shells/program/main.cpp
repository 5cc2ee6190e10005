#include <iostream>

#include "platform/files/Leftover.h"
#include "shells/cli/CommandLine.h"
#include "shells/cli/Console.h"
#ifndef _WIN32
#include "shells/program/DesktopLoader.h"
#endif

namespace {

using namespace marnoth;

#ifdef _WIN32
constexpr std::nullptr_t kPlay = nullptr;
#else
int kPlay(const PlayOptions& told, const Streams& streams) {
    DesktopOptions options;
    options.files = told.files;
    options.audio = told.audio;
    options.tempo = told.tempo;
    options.scale = told.scale;
    options.verbose = told.verbose;
    options.wish = {{}, told.midi, told.rate, told.block};
    return playOnDesktop(options, streams.errors);
}
#endif

}  // namespace

int main(int argc, char** argv) {
    prepareConsole();
    removeLeftoversOnSignals();
    return runCommandLine(consoleArguments(argc, argv), std::cout, std::cerr, kPlay);
}
