#include "shells/cli/RenderPads.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <stdexcept>

#include "platform/text/Text.h"
#include "project/ProjectName.h"
#include "seam/Limits.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/LoadFailure.h"
#include "shellkit/files/OpenProject.h"
#include "shellkit/files/ProjectFailure.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::int32_t kOmni = -1;
constexpr std::int32_t kMiddleC = 60;
constexpr std::size_t kLongestName = 259;  ///< characters of a project's name, with its folders

void need(HRESULT result) {
    if (FAILED(result)) throw FileFailure("setting up a pad failed with code " + printResult(result));
}

/// Calls a load that raises an exception for some damaged files.
template <class Load>
HRESULT resultOf(Load load) {
    try {
        return load();
    } catch (const std::invalid_argument&) {
        return E_FAIL;
    }
}

std::filesystem::path folderOf(const std::string& file) {
    return std::filesystem::absolute(pathFromUtf8(file)).parent_path();
}

/// Throws for the name of a project that the instrument doesn't get whole.
void checkName(const std::string& file) {
    if (!isSayable(file)) throw FileFailure(file + ": " + kNotSayable);
    if (wideFromUtf8(file).size() > kLongestName)
        throw FileFailure(file + ": its name is longer than " + std::to_string(kLongestName) + " characters");
}

std::string whyNotSaved(const std::string& name) {
    std::error_code ignored;
    const bool hasBackup = std::filesystem::exists(pathFromUtf8(name + ".bak"), ignored);
    return hasBackup ? "saving failed; what was there before is in " + name + ".bak" : "saving failed";
}

}  // namespace

void RenderPads::loadProject(const std::string& file) {
    checkName(file);
    const HRESULT result = resultOf([&] { return sampler_.LoadProject(toInstrument(file).c_str()); });
    if (FAILED(result)) throw FileFailure(file + ": " + whyProjectNotRead(file, result));
}

void RenderPads::loadFile(const PadFile& pad) {
    const std::filesystem::path path = std::filesystem::absolute(pathFromUtf8(pad.file));
    const std::string title = toInstrument(utf8FromPath(path.filename()));
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    const HRESULT result = sampler_.LoadFileToPad(pad.pad, title.c_str(),
                                                  toInstrument(utf8FromPath(path)).c_str(), &bin, &status);
    if (FAILED(result)) throw FileFailure(pad.file + ": " + whyNotLoaded(pad.file, result));
    if (status == kBinFull) throw FileFailure(pad.file + ": the instrument holds no more files");
}

std::vector<int> RenderPads::loaded() const {
    std::vector<int> pads;
    for (int pad = 0; pad < kPads; ++pad) {
        std::int32_t grains = 0;
        need(sampler_.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad), &grains));
        if (grains > 0) pads.push_back(pad);
    }
    return pads;
}

void RenderPads::gate() {
    for (const int pad : loaded()) need(sampler_.SetPadOneShot(pad, 0));
}

std::uint8_t RenderPads::heldNote(int pad) {
    return static_cast<std::uint8_t>(kMiddleC + pad);
}

void RenderPads::hold() {
    // Pads that aren't loaded make no sound, whatever they answer.
    for (const int pad : loaded()) {
        // A pad without an entry leaves the record as it is: one that no velocity fits.
        Own own{0, kOmni, {pad, 0, 0, 0, kHighestVelocity, 0}};
        need(sampler_.GetPadOneShot(pad, &own.oneShot));
        need(sampler_.GetPadChannel(pad, &own.channel));
        need(sampler_.GetKeyMapEntry(&own.keys));
        held_[static_cast<std::size_t>(pad)] = own;
        const std::int32_t note = heldNote(pad);
        const KeyMapRecord keys{pad, note, note, note, 0, kHighestVelocity};
        need(sampler_.SetPadOneShot(pad, 0));
        need(sampler_.SetPadChannel(pad, kOmni));
        need(sampler_.SetKeyMapEntry(&keys));
    }
}

void RenderPads::routeToOwnOutputs() {
    for (const int pad : loaded()) {
        std::uint32_t output = 0;
        need(sampler_.GetPadOutput(pad, &output));
        outputs_[static_cast<std::size_t>(pad)] = output;
        need(sampler_.SetPadOutput(pad, static_cast<std::uint32_t>(pad + 1)));
    }
}

void RenderPads::restore(int pad) {
    const auto index = static_cast<std::size_t>(pad);
    if (outputs_[index]) need(sampler_.SetPadOutput(pad, *outputs_[index]));
    if (!held_[index]) return;
    need(sampler_.SetPadOneShot(pad, held_[index]->oneShot));
    need(sampler_.SetPadChannel(pad, held_[index]->channel));
    need(sampler_.SetKeyMapEntry(&held_[index]->keys));
}

void RenderPads::save(const std::string& file) {
    for (int pad = 0; pad < kPads; ++pad) restore(pad);
    const std::string name = savedName(file);
    if (FAILED(sampler_.SaveProject(0, toInstrument(name).c_str())))
        throw FileFailure(name + ": " + whyNotSaved(name));
}

void checkSavePlace(const std::string& file) {
    const std::string name = savedName(file);
    std::error_code ignored;
    checkName(name);
    if (!std::filesystem::is_directory(folderOf(file), ignored))
        throw FileFailure(name + ": its folder doesn't exist");
    if (std::filesystem::is_directory(pathFromUtf8(name), ignored))
        throw FileFailure(name + ": a folder has that name");
}

std::string savedName(const std::string& file) {
    return withProjectExtension(file);
}

PadFile readPadFile(std::string_view text) {
    const std::size_t equals = text.find('=');
    int pad = 0;
    const char* end = text.data() + std::min(equals, text.size());
    const auto [stop, error] = std::from_chars(text.data(), end, pad);
    const bool isNumber = error == std::errc{} && stop == end;
    if (equals == text.npos || !isNumber || pad < 1 || pad > kPads || equals + 1 == text.size())
        throw WrongUse("--pad \"" + std::string(text) + "\": write N=FILE.wav with a pad N from 1 to 16");
    return {pad - 1, std::string(text.substr(equals + 1))};
}

}  // namespace marnoth
