#include "platform/windows/OpenQuestion.h"

#include <utility>

namespace marnoth {

OpenQuestion::OpenQuestion(Innermost& innermost, Kind kind, HWND owner)
    : innermost_(innermost), outer_(std::exchange(innermost, this)) {
    if (kind == Kind::dialog) dialog_.emplace(owner);
}

void OpenQuestion::takeBack() {
    takenBack_ = true;
    if (dialog_)
        dialog_->end();
    else
        EndMenu();
    if (outer_) outer_->takeBack();
}

}  // namespace marnoth
