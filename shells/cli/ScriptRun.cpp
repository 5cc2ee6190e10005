#include "shells/cli/ScriptRun.h"

#include "host/CreateInstance.h"
#include "shellkit/files/FilePlan.h"
#include "shellkit/script/ScriptRunner.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

int runScriptFile(const std::string& scriptName, const std::filesystem::path& outputFolder,
                  std::ostream& transcript, std::ostream& errors) {
    FilePlan files;
    files.read("the script", pathFromUtf8(scriptName));
    checkPrinting(files);
    HostRig rig{createInstrument};
    const PageMaker makePage = [](IUnknown& instrument, const std::filesystem::path& folder) {
        return std::make_unique<HeadlessPage>(instrument, folder);
    };
    return runScript({rig, makePage}, scriptName, outputFolder, transcript, errors);
}

}  // namespace marnoth
