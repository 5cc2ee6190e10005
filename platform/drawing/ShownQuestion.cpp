#include "platform/drawing/ShownQuestion.h"

namespace marnoth {

ShownQuestion shownMessage(std::string_view text, MessageKind kind) {
    using Buttons = std::vector<std::string>;
    return {std::string(text), kind == MessageKind::note ? Buttons{"OK"} : Buttons{"Yes", "No"}, {}, {}};
}

}  // namespace marnoth
