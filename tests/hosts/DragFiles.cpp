// Drags files onto a window as a file manager does (freedesktop.org, "Drag-and-Drop Protocol for the X Window
// System", version 5):
//   drag_files [--leave-first] WINDOW X Y LIST
// over the window's pixel X, Y, with what the file LIST holds as the list of addresses (text/uri-list). With
// --leave-first the drag goes out of the window once and comes in again. Tells what came back: "refused" or
// "accepted", then "done" or "not done", or "no answer".

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "tests/hosts/FileDrag.h"

namespace {

std::string contentsOf(const char* file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void tell(std::optional<bool> answer, const char* yes, const char* no) {
    std::puts(!answer ? "no answer" : *answer ? yes : no);
    if (!answer) std::exit(1);
}

}  // namespace

int main(int count, char** words) {
    const bool leavesFirst = count > 1 && std::string_view(words[1]) == "--leave-first";
    if (leavesFirst) ++words, --count;
    if (count != 5) return 2;
    marnoth::test::FileDrag drag(std::strtoul(words[1], nullptr, 0), contentsOf(words[4]));
    const auto [x, y] = drag.onScreen(std::atoi(words[2]), std::atoi(words[3]));
    if (leavesFirst) {
        drag.enter();
        tell(drag.over(x, y), "accepted", "refused");
        drag.leave();
    }
    drag.enter();
    const auto wanted = drag.over(x, y);
    tell(wanted, "accepted", "refused");
    if (!*wanted) {
        drag.leave();
        return 0;
    }
    tell(drag.drop(), "done", "not done");
}
