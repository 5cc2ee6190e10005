#include <gtest/gtest.h>

#include <sstream>

#include "shells/desktop/playing/MusicFolder.h"

namespace marnoth {
namespace {

std::string folderIn(const std::string& lines) {
    std::istringstream stream(lines);
    return musicFolderIn(stream, "/home/me").value_or("none").string();
}

TEST(MusicFolder, IsCalledAsTheDesktopCallsIt) {
    EXPECT_EQ(folderIn("# comment\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\nXDG_MUSIC_DIR=\"$HOME/Musik\"\n"),
              "/home/me/Musik");
    EXPECT_EQ(folderIn("XDG_MUSIC_DIR=\"/media/big/a \\\"b\\\"\"\n"), "/media/big/a \"b\"");
}

TEST(MusicFolder, IsntTakenFromWhatNamesNone) {
    for (const char* const lines : {"", "XDG_MUSIC_DIR=\"$HOME/\"\n", "XDG_MUSIC_DIR=\"Musik\"\n",
                                    "#XDG_MUSIC_DIR=\"$HOME/Musik\"\n", "XDG_MUSIC_DIR=\"", "XDG_MUSIC_DIR="})
        EXPECT_EQ(folderIn(lines), "none") << lines;
}

}  // namespace
}  // namespace marnoth
