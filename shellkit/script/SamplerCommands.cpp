#include <array>
#include <cstdint>
#include <memory>
#include <tuple>

#include "shellkit/script/ScriptCommand.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/script/ScriptWords.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

/// Bytes of a name that the instrument gives out, with the terminator.
constexpr std::size_t kNameBytes = 260;
/// An argument of this name is a file; any other text is text.
constexpr std::string_view kFileArgument = "FILE";

/// Gives out a command's words one after the other, as what an operation takes.
class ArgumentReader {
public:
    ArgumentReader(const ScriptSession& session, std::string_view form, Arguments words)
        : session_(session), form_(form), words_(words) {}

    template <class T>
    T number() {
        const std::string name = argumentName(form_, next_);
        if constexpr (std::same_as<T, float>)
            return readFloat(words_[next_++], name.c_str());
        else
            return readNumber<T>(words_[next_++], name.c_str());
    }

    std::string text() {
        const bool isFile = argumentName(form_, next_) == kFileArgument;
        const std::string& word = words_[next_++];
        return toInstrument(isFile ? utf8FromPath(session_.file(word)) : word);
    }

private:
    const ScriptSession& session_;
    std::string_view form_;
    Arguments words_;
    std::size_t next_ = 0;
};

std::string printNumber(float value) {
    return printReal(value);
}
template <std::integral T>
std::string printNumber(T value) {
    return std::to_string(value);
}

/// One argument of an operation during a call: what goes in comes from the words, what comes out is printed.
template <class T>
struct Slot {
    explicit Slot(ArgumentReader& words) : value(words.number<T>()) {}
    T argument() { return value; }
    std::string print() const { return {}; }
    T value;
};

template <class T>
struct Slot<T*> {
    explicit Slot(ArgumentReader&) {}
    T* argument() { return &value; }
    std::string print() const { return " " + printNumber(value); }
    T value{};
};

template <>
struct Slot<const char*> {
    explicit Slot(ArgumentReader& words) : value(words.text()) {}
    const char* argument() { return value.c_str(); }
    std::string print() const { return {}; }
    std::string value;
};

/// A command that is an operation of the control surface and nothing else.
template <class... T>
ScriptCommand operation(std::string_view name, std::string_view form, HRESULT (IGrooveSampler::*call)(T...)) {
    return {name, form, [form, call](ScriptSession& session, Arguments words) {
                ArgumentReader reader(session, form, words);
                std::tuple<Slot<T>...> slots{Slot<T>(reader)...};
                return std::apply(
                    [&](auto&... slot) {
                        std::string text =
                            resultOf([&] { return (session.rig().sampler().*call)(slot.argument()...); });
                        return (text + ... + slot.print());
                    },
                    slots);
            }};
}

std::string printGrain(const GrainListEntry& entry) {
    return std::to_string(entry.startTicks) + ":" + std::to_string(entry.endTicks) + ":" +
           std::to_string(entry.transpose) + ":" + printReal(entry.volume) + ":" +
           std::to_string(entry.plotLength) + ":" + std::to_string(entry.channels) + ":" +
           std::to_string(entry.extra);
}

using GrainList = HRESULT (IGrooveSampler::*)(std::int32_t, GrainListEntry**, std::int32_t*);

ScriptCommand grainList(std::string_view name, std::string_view form, GrainList call) {
    return {name, form, [form, call](ScriptSession& session, Arguments words) {
                const auto index = ArgumentReader(session, form, words).number<std::int32_t>();
                GrainListEntry* list = nullptr;
                std::int32_t count = 0;
                std::string text =
                    resultOf([&] { return (session.rig().sampler().*call)(index, &list, &count); });
                text += " " + std::to_string(count);
                for (std::int32_t i = 0; list && i < count; ++i) text += " " + printGrain(list[i]);
                CoTaskMemFree(list);
                return text;
            }};
}

std::string getBinFileName(ScriptSession& session, Arguments words) {
    ArgumentReader reader(session, "BIN WANTPATH", words);
    const auto bin = reader.number<std::int32_t>();
    const auto wantPath = reader.number<std::uint32_t>();
    std::array<char, kNameBytes> name{};
    const std::string result =
        resultOf([&] { return session.rig().sampler().GetBinFileName(bin, wantPath, name.data()); });
    return result + " " + inQuotes(fromInstrument(name.data()));
}

std::string getKeyMapEntry(ScriptSession& session, Arguments words) {
    KeyMapRecord entry{};
    entry.pad = ArgumentReader(session, "PAD", words).number<std::int32_t>();
    std::string text = resultOf([&] { return session.rig().sampler().GetKeyMapEntry(&entry); });
    for (const std::int32_t value :
         {entry.pad, entry.lowKey, entry.highKey, entry.rootKey, entry.lowVelocity, entry.highVelocity})
        text += " " + std::to_string(value);
    return text;
}

constexpr std::string_view kKeyMapForm = "PAD LOW HIGH ROOT LOWVEL HIGHVEL";

std::string setKeyMapEntry(ScriptSession& session, Arguments words) {
    ArgumentReader reader(session, kKeyMapForm, words);
    KeyMapRecord entry{};
    for (std::int32_t* field :
         {&entry.pad, &entry.lowKey, &entry.highKey, &entry.rootKey, &entry.lowVelocity, &entry.highVelocity})
        *field = reader.number<std::int32_t>();
    return resultOf([&] { return session.rig().sampler().SetKeyMapEntry(&entry); });
}

std::string saveProject(ScriptSession& session, Arguments words) {
    const std::string path = ArgumentReader(session, kFileArgument, words).text();
    return resultOf([&] { return session.rig().sampler().SaveProject(0, path.c_str()); });
}

}  // namespace

std::vector<ScriptCommand> samplerCommands() {
    using I = IGrooveSampler;
    return {
        operation("PushUndoState", "", &I::PushUndoState),
        operation("Undo", "", &I::Undo),
        operation("Redo", "", &I::Redo),
        operation("ClearProject", "", &I::ClearProject),
        operation("LoadPadFromBin", "PAD BIN", &I::LoadPadFromBin),
        {"SaveProject", kFileArgument, saveProject},
        operation("LoadProject", kFileArgument, &I::LoadProject),
        operation("RemoveBinFile", "BIN", &I::RemoveBinFile),
        operation("CommitGrainEdits", "", &I::CommitGrainEdits),
        operation("DeleteGrain", "PAD GRAIN MARKONLY", &I::DeleteGrain),
        operation("ReplaceGrain", "PAD GRAIN BIN BINGRAIN", &I::ReplaceGrain),
        operation("AddGrain", "BIN BINGRAIN PAD TIME", &I::AddGrain),
        operation("GetGrainSource", "PAD GRAIN", &I::GetGrainSource),
        operation("LoadFileToBin", "TITLE FILE", &I::LoadFileToBin),
        operation("LoadFileToPad", "PAD TITLE FILE", &I::LoadFileToPad),
        operation("AuditionPad", "PAD GRAIN", &I::AuditionPad),
        operation("StopPad", "PAD", &I::StopPad),
        operation("AuditionBinFile", "BIN GRAIN", &I::AuditionBinFile),
        operation("StopBinAudition", "BIN", &I::StopBinAudition),
        operation("MoveGrain", "PAD GRAIN TOPAD TIME MARKONLY", &I::MoveGrain),
        operation("CopyGrain", "PAD GRAIN TOPAD TIME", &I::CopyGrain),
        operation("GetBinFileCount", "", &I::GetBinFileCount),
        {"GetBinFileName", "BIN WANTPATH", getBinFileName},
        operation("GetPadLooping", "PAD", &I::GetPadLooping),
        operation("SetPadLooping", "PAD VALUE", &I::SetPadLooping),
        operation("GetPadSynced", "PAD", &I::GetPadSynced),
        operation("SetPadSynced", "PAD VALUE", &I::SetPadSynced),
        operation("GetPadPlayMode", "PAD", &I::GetPadPlayMode),
        operation("SetPadPlayMode", "PAD VALUE", &I::SetPadPlayMode),
        grainList("GetPadGrainList", "PAD", &I::GetPadGrainList),
        grainList("GetBinGrainList", "BIN", &I::GetBinGrainList),
        operation("GetPadMute", "PAD", &I::GetPadMute),
        operation("SetPadMute", "PAD VALUE", &I::SetPadMute),
        operation("GetLoopLength", "KIND INDEX", &I::GetLoopLength),
        operation("SetLoopLength", "KIND INDEX VALUE", &I::SetLoopLength),
        operation("GetPadPlaying", "PAD", &I::GetPadPlaying),
        operation("GetBinPlaying", "BIN", &I::GetBinPlaying),
        {"GetKeyMapEntry", "PAD", getKeyMapEntry},
        {"SetKeyMapEntry", kKeyMapForm, setKeyMapEntry},
        operation("GetAuditionEnabled", "", &I::GetAuditionEnabled),
        operation("SetAuditionEnabled", "VALUE", &I::SetAuditionEnabled),
        operation("GetRefreshRequest", "", &I::GetRefreshRequest),
        operation("SetRefreshRequest", "VALUE", &I::SetRefreshRequest),
        operation("GetPadVolume", "PAD", &I::GetPadVolume),
        operation("SetPadVolume", "PAD VALUE", &I::SetPadVolume),
        operation("GetPadPan", "PAD", &I::GetPadPan),
        operation("SetPadPan", "PAD VALUE", &I::SetPadPan),
        operation("GetPadTail", "PAD", &I::GetPadTail),
        operation("SetPadTail", "PAD VALUE", &I::SetPadTail),
        operation("GetGrainTranspose", "PAD GRAIN", &I::GetGrainTranspose),
        operation("SetGrainTranspose", "PAD GRAIN SEMITONES", &I::SetGrainTranspose),
        operation("GetGrainCount", "KIND INDEX", &I::GetGrainCount),
        operation("GetPadEndTime", "PAD", &I::GetPadEndTime),
        operation("GetPadFollowKey", "PAD", &I::GetPadFollowKey),
        operation("SetPadFollowKey", "PAD VALUE", &I::SetPadFollowKey),
        operation("GetGrainVolume", "PAD GRAIN", &I::GetGrainVolume),
        operation("SetGrainVolume", "PAD GRAIN VALUE", &I::SetGrainVolume),
        operation("GetGrainPan", "PAD GRAIN", &I::GetGrainPan),
        operation("SetGrainPan", "PAD GRAIN VALUE", &I::SetGrainPan),
        operation("GetPadOutput", "PAD", &I::GetPadOutput),
        operation("SetPadOutput", "PAD OUTPUT", &I::SetPadOutput),
        operation("GetPadSolo", "PAD", &I::GetPadSolo),
        operation("SetPadSolo", "PAD VALUE", &I::SetPadSolo),
        operation("GetPadRootNote", "PAD", &I::GetPadRootNote),
        operation("SetPadRootNote", "PAD NOTE", &I::SetPadRootNote),
        operation("GetPadChannel", "PAD", &I::GetPadChannel),
        operation("SetPadChannel", "PAD CHANNEL", &I::SetPadChannel),
        operation("GetPadOneShot", "PAD", &I::GetPadOneShot),
        operation("SetPadOneShot", "PAD VALUE", &I::SetPadOneShot),
    };
}

}  // namespace marnoth
