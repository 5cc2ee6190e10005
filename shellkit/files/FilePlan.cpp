#include "shellkit/files/FilePlan.h"

#include <utility>

#include "platform/files/Links.h"
#include "project/ProjectBackup.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/media/OutputFile.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

namespace fs = std::filesystem;

/// By which systems that have it name whatever standard output is.
constexpr const char* kStandardOutputFile = "/dev/stdout";

}  // namespace

void FilePlan::read(std::string what, const fs::path& file) {
    files_.emplace(identityOf(file), std::move(what));
}

void FilePlan::write(std::string what, const std::string& name, const fs::path& file) {
    check(what, name, file);
    files_.emplace(identityOf(file), std::move(what));
}

void FilePlan::check(const std::string& what, const std::string& name, const fs::path& file) const {
    if (const std::string* other = find(file))
        throw WrongUse(what + " " + name + " is the file of " + *other + ": give it another name");
}

void FilePlan::checkBeside(const std::string& what, const std::string& name, const fs::path& file) const {
    if (const std::string* other = find(file))
        throw WrongUse(what + " " + name + " needs the name " + utf8FromPath(file.filename()) +
                       " for a while, which is the file of " + *other + ": give it another name");
}

const std::string* FilePlan::find(const fs::path& file) const {
    const auto found = files_.find(identityOf(file));
    return found != files_.end() ? &found->second : nullptr;
}

void planOutput(FilePlan& plan, const std::string& what, const std::string& file) {
    if (file == kStandardOutput) return;
    const fs::path path = pathFromUtf8(file);
    plan.write(what, file, path);
    fs::path part = behindLinks(path);
    plan.checkBeside(what, file, part += ".part");
}

void planProject(FilePlan& plan, const std::string& what, const std::string& file) {
    const fs::path path = pathFromUtf8(file);
    plan.read(what, path);
    plan.read("the backup of " + what, backupOf(path));
}

void planSave(FilePlan& plan, const std::string& what, const std::string& file) {
    const fs::path path = pathFromUtf8(savedName(file));
    plan.write(what, savedName(file), path);
    plan.checkBeside(what, savedName(file), backupOf(path));
}

void checkPrinting(const FilePlan& plan) {
    std::error_code ignored;
    if (fs::is_regular_file(kStandardOutputFile, ignored) && plan.has(kStandardOutputFile))
        throw WrongUse("standard output is a file that is read or written otherwise: send it to another one");
}

}  // namespace marnoth
