#include "platform/drawing/ShownQuestion.h"

namespace marnoth {

ShownQuestion shownMessage(std::string_view text, MessageKind kind) {
    std::vector<std::string> buttons{"OK"};
    if (kind != MessageKind::note) buttons = {"Yes", "No"};
    if (kind == MessageKind::yesNoCancel) buttons.emplace_back("Cancel");
    return {std::string(text), buttons, {}, {}};
}

}  // namespace marnoth
