#include <gtest/gtest.h>

#include <sstream>
#include <thread>

#include "shellkit/TempFolder.h"
#include "shellkit/files/Failure.h"
#include "shellkit/media/OutputFile.h"
#include "shellkit/media/WaveWriter.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace marnoth::test::output_file_test {
namespace {

namespace fs = std::filesystem;

/// Writes "front" and then a mark at its beginning, as sizes are written.
void write(OutputFile& output) {
    const auto bytes = output.takeBytes();
    EXPECT_TRUE(bytes->write("_ront", 5) && bytes->seek(0) && bytes->write("f", 1) && bytes->close());
}

std::string failureOf(const fs::path& path) {
    try {
        OutputFile output(path);
        return {};
    } catch (const FileFailure& failure) {
        return failure.what();
    }
}

TEST(OutputFile, TakesItsNameWhenItIsFinished) {
    const TempFolder folder;
    writeText(folder / "a", "former");
    OutputFile output(folder / "a");
    write(output);
    EXPECT_EQ(readText(folder / "a"), "former");
    EXPECT_TRUE(fs::exists(folder / "a.part"));
    output.finish();
    EXPECT_EQ(readText(folder / "a"), "front");
    EXPECT_FALSE(fs::exists(folder / "a.part"));
}

TEST(OutputFile, APartOfAnotherRunIsLeftAloneAndNamed) {
    const TempFolder folder;
    OutputFile first(folder / "a");
    EXPECT_NE(failureOf(folder / "a").find("a: a.part is in the way"), std::string::npos);
    write(first);
    first.finish();
    EXPECT_EQ(readText(folder / "a"), "front");
    writeText(folder / "b.part", "of a run that was killed");
    EXPECT_NE(failureOf(folder / "b").find("b.part is in the way"), std::string::npos);
    EXPECT_EQ(readText(folder / "b.part"), "of a run that was killed");
}

TEST(OutputFile, AFolderIsRefusedBeforeAnythingIsWritten) {
    const TempFolder folder;
    fs::create_directory(folder / "a");
    EXPECT_EQ(failureOf(folder / "a"), folder.name("a") + ": a folder has that name");
}

TEST(OutputFile, AStreamGetsEverythingFromFrontToBackWhenItIsFinished) {
    std::ostringstream stream;
    OutputFile output(stream);
    write(output);
    EXPECT_EQ(stream.str(), "");
    output.finish();
    EXPECT_EQ(stream.str(), "front");
    EXPECT_EQ(output.name(), "standard output");
}

TEST(OutputFile, AWaveInAStreamHasItsSizesAtTheFront) {
    const TempFolder folder;
    std::ostringstream stream;
    for (const bool toFile : {true, false}) {
        WaveWriter writer(
            toFile ? std::make_unique<OutputFile>(folder / "a.wav") : std::make_unique<OutputFile>(stream),
            WaveOptions{.rate = 44100, .channels = 2});
        writer.write(std::vector<float>(100000, 0.5f));
        writer.finish();
    }
    EXPECT_EQ(stream.str().size(), 8u + 4 + 26 + 12 + 8 + 400000);
    EXPECT_TRUE(stream.str() == readText(folder / "a.wav"));
}

#ifndef _WIN32

TEST(OutputFile, BehindALinkItIsTheLinksTarget) {
    const TempFolder folder;
    fs::create_directory(folder / "sub");
    writeText(folder / "sub" / "real", "former");
    fs::create_symlink("sub/real", folder / "link");
    fs::create_symlink("sub/none", folder / "dangling");
    for (const char* name : {"link", "dangling"}) {
        OutputFile output(folder / name);
        write(output);
        output.finish();
        EXPECT_TRUE(fs::is_symlink(folder / name));
        EXPECT_EQ(readText(folder / name), "front");
    }
    EXPECT_EQ(readText(folder / "sub" / "real"), "front");
    EXPECT_EQ(readText(folder / "sub" / "none"), "front");
}

TEST(OutputFile, APipeIsWrittenToAndStaysOne) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::string got;
    std::thread reader([&] { got = readText(folder / "pipe"); });
    {
        OutputFile output(folder / "pipe");
        write(output);
        output.finish();
    }
    reader.join();
    EXPECT_EQ(got, "front");
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
}

TEST(OutputFile, ADeviceThatTakesNothingFails) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full disk here";
    OutputFile output(fs::path("/dev/full"));
    write(output);
    EXPECT_THROW(output.finish(), FileFailure);
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

#endif

}  // namespace
}  // namespace marnoth::test::output_file_test
