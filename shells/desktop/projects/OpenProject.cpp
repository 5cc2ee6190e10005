#include "shells/desktop/projects/OpenProject.h"

#include <utility>

#include "platform/com/RefPtr.h"
#include "seam/IMarnothOptions.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

void OpenProject::holds(std::string path) {
    path_ = std::move(path);
    copy_ = "Untitled";
    unchanged_ = changes();
}

void OpenProject::holdsCopy(std::string name) {
    holds({});
    copy_ = std::move(name);
}

void OpenProject::recovered() {
    path_.clear();
    copy_ = "Recovered";
    unchanged_.reset();
}

std::uint64_t OpenProject::changes() const {
    RefPtr<IMarnothOptions> options;
    std::uint64_t count = 0;
    if (SUCCEEDED(sampler_.QueryInterface(IID_IMarnothOptions, options.putVoid())))
        options->GetChanges(&count);
    return count;
}

std::string OpenProject::name() const {
    return path_.empty() ? copy_ : utf8FromPath(pathFromUtf8(path_).filename());
}

std::string OpenProject::title() const {
    return name() + (hasChanged() ? " * - Marnoth" : " - Marnoth");
}

}  // namespace marnoth
