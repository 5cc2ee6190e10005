#include "shells/cli/ScriptRun.h"

#include "host/CreateInstance.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/FilePlan.h"
#include "shellkit/script/ScriptRunner.h"
#include "shellkit/text/InstrumentText.h"

#ifdef _WIN32
#include "shellkit/component/ComApartment.h"
#include "shellkit/component/RegisteredInstrument.h"
#include "shellkit/component/SystemGraph.h"
#endif

namespace marnoth {

namespace {

int runIn(HostRig& rig, const std::string& scriptName, const std::filesystem::path& outputFolder,
          std::ostream& transcript, std::ostream& errors) {
    const PageMaker makePage = [](IUnknown& instrument, const std::filesystem::path& folder) {
        return std::make_unique<HeadlessPage>(instrument, folder);
    };
    return runScript({rig, makePage}, scriptName, outputFolder, transcript, errors);
}

}  // namespace

int runScriptFile(const std::string& scriptName, const std::filesystem::path& outputFolder,
                  std::ostream& transcript, std::ostream& errors, Playing what) {
    FilePlan files;
    files.read("the script", pathFromUtf8(scriptName));
    checkPrinting(files);
    if (what == Playing::component) {
#ifdef _WIN32
        const ComApartment apartment(COINIT_MULTITHREADED);
        needRegistered();
        HostRig rig(createRegistered, makeSystemGraph);
        return runIn(rig, scriptName, outputFolder, transcript, errors);
#else
        throw FileFailure("components are there on Windows alone");
#endif
    }
    HostRig rig(createInstrument);
    return runIn(rig, scriptName, outputFolder, transcript, errors);
}

}  // namespace marnoth
