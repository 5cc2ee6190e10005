#include "shellkit/files/FilePlan.h"

#include <algorithm>
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
    files_.push_back({std::move(what), file});
}

void FilePlan::write(std::string what, const std::string& name, const fs::path& file) {
    check(what, name, file);
    files_.push_back({std::move(what), file});
}

void FilePlan::check(const std::string& what, const std::string& name, const fs::path& file) const {
    if (const File* other = find(file))
        throw WrongUse(what + " " + name + " is the file of " + other->what + ": give it another name");
}

void FilePlan::checkBeside(const std::string& what, const std::string& name, const fs::path& file) const {
    if (const File* other = find(file))
        throw WrongUse(what + " " + name + " needs the name " + utf8FromPath(file.filename()) +
                       " for a while, which is the file of " + other->what + ": give it another name");
}

const FilePlan::File* FilePlan::find(const fs::path& file) const {
    const auto found = std::find_if(files_.begin(), files_.end(),
                                    [&](const File& it) { return isSamePlace(it.path, file); });
    return found != files_.end() ? &*found : nullptr;
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
