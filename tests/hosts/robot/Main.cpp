#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/hosts/robot/EditingRobot.h"

namespace {

using namespace marnoth::robot;

/// How often memory is looked at. At the first time fonts, pictures and threads are there.
constexpr int kRests = 5;

int run(int argc, char** argv) {
    if (argc < 8)
        throw std::runtime_error(
            "editing_robot SECONDS SEED MOST_GROWTH NEXT_CHOICE PROJECT RESULT FILE ...");
    const std::chrono::seconds time(std::atoi(argv[1]));
    RobotSetup setup;
    setup.seed = static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10));
    const long mostGrowth = std::atol(argv[3]);
    setup.nextChoice = argv[4];
    setup.project = argv[5];
    setup.result = argv[6];
    setup.files.assign(argv + 7, argv + argc);
    std::printf("seed %u\n", setup.seed);
    UserHands hands("marnoth", std::chrono::seconds(30));
    EditingRobot robot(hands, setup);
    std::vector<long> memory;
    while (memory.size() < kRests) {
        robot.work(time / kRests);
        memory.push_back(robot.rest());
    }
    const long growth = memory.back() - memory.front();
    robot.finish();
    std::printf("memory grew by %ld KiB\n", growth);
    if (growth > mostGrowth)
        throw std::runtime_error("that is more than " + std::to_string(mostGrowth) + " KiB");
    return 0;
}

}  // namespace

/// A user who tries everything, for a while: SECONDS of gestures by SEED in the program's window. MOST_GROWTH
/// is in KiB; the other words are what `RobotSetup` tells.
int main(int argc, char** argv) try { return run(argc, argv); } catch (const std::exception& error) {
    std::printf("the robot stops: %s\n", error.what());
    return 1;
}
