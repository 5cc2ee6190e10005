#include "shellkit/files/ProjectFiles.h"

#include <filesystem>
#include <new>
#include <stdexcept>

#include "platform/text/Text.h"
#include "project/ProjectBackup.h"
#include "project/ProjectFile.h"
#include "project/ProjectName.h"
#include "project/ProjectReader.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/FaultText.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

/// As the instrument opens it.
LoadFault open(RiffStream& stream, const std::string& file) {
    return openProject(stream, wideFromSystem(toInstrument(file)));
}

bool standsAtWave(RiffStream& stream) {
    const std::int64_t begin = stream.position();
    ChunkInfo first;
    const bool isWave =
        stream.descend(first) == kRiffOk && first.ckid == kRiffId && first.fccType == fourCC("WAVE");
    stream.seek(begin);
    return isWave;
}

bool holdsProject(RiffStream& stream) {
    ChunkInfo form;
    form.fccType = fourCC("marn");
    return stream.descend(form, nullptr, RiffFind::riff) == kRiffOk;
}

/// Throws for the name of a project that the instrument doesn't get whole.
void checkName(const std::string& file) {
    if (!isSayable(file)) throw FileFailure(file + ": " + kNotSayable);
    const auto characters = static_cast<std::int64_t>(wideFromUtf8(file).size());
    constexpr auto kMost = static_cast<std::int64_t>(kLongestProjectPath);
    if (characters > kMost)
        throw FileFailure(file + ": " +
                          inWords(badValue(FaultQuantity::pathCharacters, characters, 1, kMost)));
}

/// Calls a load that raises an exception for some damaged files.
HRESULT load(IGrooveSampler& sampler, const std::string& file) {
    try {
        return sampler.LoadProject(toInstrument(file).c_str());
    } catch (const std::invalid_argument&) {
        return E_FAIL;
    }
}

/// `reason`, which is that of `fault`, and where what was saved before is: in `backup`, unless that is empty.
std::string withBackup(const std::string& reason, const std::string& file, const LoadFault& fault,
                       const std::string& backup) {
    if (backup.empty()) return reason;
    const bool isTold = fault.kind == FaultKind::neverFinished || isSavedWhole(pathFromUtf8(file));
    return reason + (isTold ? "" : ": a save of it was cut off") + "; what was saved before is in " + backup;
}

std::string whyNotSaved(const std::string& name) {
    std::error_code ignored;
    const std::filesystem::path backup = backupOf(pathFromUtf8(name));
    const bool isThere = std::filesystem::exists(backup, ignored);
    return isThere ? "saving failed; what was there before is in " + utf8FromPath(backup) : "saving failed";
}

/// What is wrong with the project in `file`, whether the instrument's code page has its name or not.
LoadFault faultOf(const std::string& file) try {
    RiffStream stream;
    Project project;
    LoadFault fault = openProject(stream, wideFromPath(pathFromUtf8(file)));
    if (!fault) fault = readProject(stream, project);
    return fault ? fault : grainBelowZero(project);
} catch (const std::bad_alloc&) {
    return {.kind = FaultKind::noMemory};
}

LoadAdvice adviceOn(const std::string& file, const LoadFault& fault, const std::string& reason) {
    LoadAdvice advice{{}, backupNextTo(file)};
    const auto nameOf = [](const std::string& path) { return utf8FromPath(pathFromUtf8(path).filename()); };
    advice.text = nameOf(file) + " isn't loaded: " +
                  withBackup(reason, file, fault, advice.instead.empty() ? "" : nameOf(advice.instead)) + ".";
    if (!advice.instead.empty()) advice.text += "  Load that?";
    return advice;
}

}  // namespace

ProjectFailure::ProjectFailure(const std::string& file, const LoadFault& fault)
    : FileFailure(file + ": " + withBackup(whyNotLoaded(file, fault), file, fault, backupNextTo(file))),
      backup(backupNextTo(file)) {}

std::string backupNextTo(const std::string& file) {
    const std::filesystem::path path = backupOf(pathFromUtf8(file));
    return isSavedWhole(path) ? utf8FromPath(path) : std::string();
}

bool isProject(const std::string& file) {
    RiffStream stream;
    if (open(stream, file)) return hasProjectExtension(file);
    if (standsAtWave(stream)) return false;
    return holdsProject(stream) || hasProjectExtension(file);
}

Project readProjectFile(const std::string& file) {
    checkName(file);
    RiffStream stream;
    Project project;
    LoadFault fault = open(stream, file);
    if (!fault) fault = readProject(stream, project);
    if (!fault) fault = grainBelowZero(project);
    if (fault) throw ProjectFailure(file, fault);
    return project;
}

void loadProjectFile(IGrooveSampler& sampler, const std::string& file) {
    checkName(file);
    if (FAILED(load(sampler, file))) throw ProjectFailure(file, lastLoadFault(sampler));
}

LoadAdvice adviceOnLoad(IGrooveSampler& sampler, const std::string& file) {
    const LoadFault fault = lastLoadFault(sampler);
    return adviceOn(file, fault, whyNotLoaded(file, fault));
}

std::optional<LoadAdvice> adviceBeforeLoad(const std::string& file) {
    const LoadFault fault = faultOf(file);
    return fault ? std::optional(adviceOn(file, fault, inWords(fault))) : std::nullopt;
}

void saveProjectFile(IGrooveSampler& sampler, const std::string& file) {
    const std::string name = savedName(file);
    if (FAILED(sampler.SaveProject(0, toInstrument(name).c_str())))
        throw FileFailure(name + ": " + whyNotSaved(name));
}

std::string savedName(const std::string& file) {
    return withProjectExtension(file);
}

void checkSavePlace(const std::string& file) {
    const std::string name = savedName(file);
    std::error_code ignored;
    checkName(name);
    if (!std::filesystem::is_directory(std::filesystem::absolute(pathFromUtf8(file)).parent_path(), ignored))
        throw FileFailure(name + ": its folder doesn't exist");
    if (std::filesystem::is_directory(pathFromUtf8(name), ignored))
        throw FileFailure(name + ": a folder has that name");
}

}  // namespace marnoth
