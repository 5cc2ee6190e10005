#include <exception>
#include <filesystem>
#include <iostream>

#include "tools/DemoLoops.h"
#include "tools/GrooveMidi.h"
#include "tools/LoopFile.h"

namespace {

namespace tools = marnoth::tools;

void makeAll(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    tools::writeLoop(tools::drums(), tools::SampleKind::pcm16, folder / "drums.wav");
    tools::writeLoop(tools::percussion(), tools::SampleKind::pcm24, folder / "percussion.wav");
    tools::writeLoop(tools::bass(), tools::SampleKind::pcm16, folder / "bass.wav");
    tools::writeLoop(tools::chords(), tools::SampleKind::float32, folder / "chords.wav");
    tools::writeGroove(folder / "groove.mid");
}

}  // namespace

/// Makes the loops and the MIDI part of the demo in a folder.
int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "Give one folder: make_demo_loops DIR\n";
        return 2;
    }
    makeAll(argv[1]);
    return 0;
} catch (const std::exception& error) {
    std::cerr << "make_demo_loops: " << error.what() << '\n';
    return 1;
}
