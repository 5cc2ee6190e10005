#include "tests/hosts/robot/FileSource.h"

#include <optional>
#include <stdexcept>

#include "tests/hosts/FileDrag.h"

namespace marnoth::robot {

namespace {

bool answered(std::optional<bool> answer) {
    if (!answer) throw std::runtime_error("files were dropped and no answer came");
    return *answer;
}

}  // namespace

bool dropFiles(unsigned long window, Point at, const std::vector<std::string>& paths) {
    std::string list;
    for (const std::string& path : paths) list += "file://" + path + "\r\n";
    test::FileDrag drag(window, list);
    drag.enter();
    if (answered(drag.over(at.x, at.y))) return answered(drag.drop());
    drag.leave();
    return false;
}

}  // namespace marnoth::robot
