#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>

#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "shellkit/files/Need.h"

namespace {

using namespace marnoth;

/// The loops are named as they are in this folder, so that the project tells nothing of where it was made.
void makeProject() {
    constexpr std::array kLoops{"drums.wav", "percussion.wav", "bass.wav", "chords.wav"};
    constexpr std::array kMix{0};
    constexpr std::uint32_t kRate = 48000;  // that of most of the loops
    HostRig rig(createInstrument);
    need(rig.connect(kRate, 2, kMix), "connecting the instrument");
    for (std::int32_t pad = 0; const char* loop : kLoops) {
        std::int32_t bin = -1;
        std::uint32_t status = kLoaded;
        need(rig.sampler().LoadFileToPad(pad++, loop, loop, &bin, &status), loop);
    }
    need(rig.sampler().SaveProject(0, "groove.mrn"), "saving the project");
}

}  // namespace

/// Makes the project of the demo in the folder that holds its loops.
int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "Give the folder of the loops: make_demo_project DIR\n";
        return 2;
    }
    std::filesystem::current_path(argv[1]);
    makeProject();
    return 0;
} catch (const std::exception& error) {
    std::cerr << "make_demo_project: " << error.what() << '\n';
    return 1;
}
