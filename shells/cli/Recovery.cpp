#include "shells/cli/Recovery.h"

#include <ostream>

#include "shellkit/files/ProjectFiles.h"
#include "shellkit/text/PlainText.h"

namespace marnoth {

void loadOrRecover(const std::string& file, bool recover, std::ostream& errors,
                   const std::function<void(const std::string& file)>& load) try {
    load(file);
} catch (const ProjectFailure& failure) {
    if (failure.backup.empty()) throw;
    if (!recover) throw FileFailure(failure.what() + std::string(": --recover takes that"));
    load(failure.backup);
    errors << "marnoth: " << inOneLine(failure.what()) << ", which is taken" << std::endl;
}

}  // namespace marnoth
