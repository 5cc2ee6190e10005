#ifndef _WIN32
#include <gtest/gtest.h>

#include <stdexcept>

#include "cli/CliRun.h"

namespace marnoth::test::play_command_test {
namespace {

/// A run of the program with a window that notes what it is to play.
struct PlayRun {
    explicit PlayRun(std::vector<std::string> arguments) {
        std::ostringstream out;
        std::ostringstream errors;
        status = runCommandLine(std::move(arguments), out, errors,
                                [this](const PlayOptions& told, const Streams&) {
                                    options = told;
                                    ++played;
                                    return 0;
                                });
        err = errors.str();
    }
    PlayOptions options;
    int played = 0;
    int status = -1;
    std::string err;
};

TEST(PlayCommand, WithoutArgumentsTheProgramPlays) {
    const PlayRun run({});
    EXPECT_EQ(run.played, 1);
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.options.files.empty());
}

TEST(PlayCommand, HandsOnWhatItIsTold) {
    const PlayRun run({"play",   "a.mrn",    "b.mid",   "--audio", "jack",    "--midi",   "keys",
                       "--rate", "48000",    "--block", "64",      "--tempo", "97.5",     "--song-tempo",
                       "no",     "--repeat", "yes",     "--scale", "2",       "--verbose"});
    EXPECT_EQ(run.options.files, (std::vector<std::string>{"a.mrn", "b.mid"}));
    EXPECT_EQ(run.options.audio, "jack");
    EXPECT_EQ(run.options.midi, "keys");
    EXPECT_EQ(run.options.rate, 48000u);
    EXPECT_EQ(run.options.block, 64);
    EXPECT_EQ(run.options.tempo, 97.5);
    EXPECT_EQ(run.options.songTempo, "no");
    EXPECT_EQ(run.options.repeat, "yes");
    EXPECT_EQ(run.options.scale, 2);
    EXPECT_TRUE(run.options.verbose);
}

TEST(PlayCommand, RefusesNumbersThatCantBe) {
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{"--scale", "9"},
                                               {"--tempo", "0"},
                                               {"--block", "0"},
                                               {"--rate", "5"},
                                               {"--rate", "fast"},
                                               {"--repeat", "often"}}) {
        const PlayRun run({"play", wrong[0], wrong[1]});
        EXPECT_EQ(run.played, 0);
        EXPECT_EQ(run.status, 2);
        EXPECT_NE(run.err.find(wrong[0]), std::string::npos) << run.err;
    }
}

TEST(PlayCommand, WithoutAWindowThereIsNoPlaying) {
    const CliRun run = marnoth({"play"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "marnoth: this program has no window\n");
}

TEST(PlayCommand, WhatTheWindowFailsOfIsTheProgramsFailure) {
    std::ostringstream out;
    std::ostringstream errors;
    const int status = runCommandLine({"play"}, out, errors, [](const PlayOptions&, const Streams&) -> int {
        throw std::runtime_error("There is no display.");
    });
    EXPECT_EQ(status, 1);
    EXPECT_EQ(errors.str(), "marnoth: There is no display.\n");
}

}  // namespace
}  // namespace marnoth::test::play_command_test
#endif
