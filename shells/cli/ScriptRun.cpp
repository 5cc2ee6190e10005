#include "shells/cli/ScriptRun.h"

#include "host/CreateInstance.h"
#include "shellkit/script/ScriptRunner.h"

namespace marnoth {

int runScriptFile(const std::string& scriptName, const std::filesystem::path& outputFolder,
                  std::ostream& transcript, std::ostream& errors) {
    HostRig rig{createInstrument};
    const PageMaker makePage = [](IUnknown& instrument, const std::filesystem::path& folder) {
        return std::make_unique<HeadlessPage>(instrument, folder);
    };
    return runScript({rig, makePage}, scriptName, outputFolder, transcript, errors);
}

}  // namespace marnoth
