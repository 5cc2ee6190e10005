#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "seam/IGrooveSampler.h"

namespace marnoth::test {

/// A grain as the page reads it. Times in 16.16 ticks.
struct ModelGrain {
    std::int64_t start = 0;
    std::int64_t end = 0;
    bool tail = false;
    int transpose = 0;
    float volume = 1.0f;
    float pan = 0.5f;
    int file = 0;  ///< where it was cut from
    int source = 0;
    int width = 20;  ///< pixels in the strip; those of a file only
};

struct ModelPad {
    bool mute = false, solo = false, synced = false, looping = false;
    bool oneShot = false, tail = false, followKey = false, playing = false;
    float volume = 1.0f;
    float pan = 0.5f;
    std::uint32_t output = 0;
    int channel = -1;
    int rootNote = -1;
    int lowKey = 60, highKey = 60, rootKey = 60, lowVelocity = 0, highVelocity = 127;
    std::int64_t loopLength = 0;
    std::vector<ModelGrain> grains;
};

struct ModelFile {
    std::string name;
    std::string path;
    std::vector<ModelGrain> grains;
};

/// A call as it is written down: its name and its arguments, numbers with up to nine digits.
template <class... Arguments>
std::string callText(const std::string& name, const Arguments&... arguments) {
    std::ostringstream text;
    text.precision(9);
    text << name;
    ((text << ' ' << arguments), ...);
    return text.str();
}

/// An engine that plays nothing: writes down every call in its order as a line of text, such as "SetPadMute 3
/// 1", "MoveGrain 0 2 4 -1 1" or "LoadFileToBin beat.wav /loops/beat.wav" (arguments in, none out; a key map
/// record as its six values), and answers from a model that tests set up. Setters of values write the model;
/// whatever changes grains or files is only written down, but for loading and removing files. Outlives
/// whoever holds it: references are counted and end nothing.
class RecordingSampler final : public IGrooveSampler {
public:
    std::array<ModelPad, 16> pads;
    std::vector<ModelFile> files;
    bool auditionEnabled = false;
    std::uint32_t refreshRequest = 0;
    std::uint32_t loadStatus = 0;            ///< of the next file loads
    std::map<std::string, HRESULT> results;  ///< of operations that shall not give `S_OK`, by name
    std::vector<std::string> throwing;       ///< operations that raise the invalid-argument exception
    /// Hears each call after it was written down and before it is carried out.
    std::function<void(const std::string&)> onCall = [](const std::string&) {};
    ULONG references = 0;

    /// All calls since the last take.
    std::vector<std::string> take() { return std::exchange(calls_, {}); }
    /// The same without those that only read.
    std::vector<std::string> takeChanges() {
        std::vector<std::string> calls = take();
        std::erase_if(calls, [](const std::string& call) { return call.starts_with("Get"); });
        return calls;
    }

    // IUnknown and IDispatch.
    HRESULT QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid != IID_IGrooveSampler && iid != IID_IUnknown) return E_NOINTERFACE;
        *object = static_cast<IGrooveSampler*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }
    HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

    HRESULT PushUndoState() override { return log("PushUndoState"); }
    HRESULT Undo() override { return log("Undo"); }
    HRESULT Redo() override { return log("Redo"); }
    HRESULT ClearProject() override { return log("ClearProject"); }
    HRESULT LoadPadFromBin(std::int32_t pad, std::int32_t bin) override {
        return log("LoadPadFromBin", pad, bin);
    }
    HRESULT SaveProject(std::uint32_t unused, const char* path) override {
        return log("SaveProject", unused, path);
    }
    HRESULT LoadProject(const char* path) override { return log("LoadProject", path); }
    HRESULT RemoveBinFile(std::int32_t bin) override {
        if (isFile(bin)) files.erase(files.begin() + bin);
        return log("RemoveBinFile", bin);
    }
    HRESULT CommitGrainEdits() override { return log("CommitGrainEdits"); }
    HRESULT DeleteGrain(std::int32_t pad, std::int32_t grain, std::uint32_t markOnly) override {
        return log("DeleteGrain", pad, grain, markOnly);
    }
    HRESULT ReplaceGrain(std::int32_t pad, std::int32_t grain, std::int32_t bin,
                         std::int32_t binGrain) override {
        return log("ReplaceGrain", pad, grain, bin, binGrain);
    }
    HRESULT AddGrain(std::int32_t bin, std::int32_t binGrain, std::int32_t pad, std::int64_t time) override {
        return log("AddGrain", bin, binGrain, pad, time);
    }
    HRESULT GetGrainSource(std::int32_t pad, std::int32_t grain, std::int32_t* bin,
                           std::int32_t* binGrain) override {
        const HRESULT result = log("GetGrainSource", pad, grain);
        *bin = grainOf(pad, grain).file;
        *binGrain = grainOf(pad, grain).source;
        return result;
    }
    HRESULT LoadFileToBin(const char* title, const char* path, std::int32_t* bin,
                          std::uint32_t* status) override {
        return load(log("LoadFileToBin", title, path), title, path, bin, status);
    }
    HRESULT LoadFileToPad(std::int32_t pad, const char* title, const char* path, std::int32_t* bin,
                          std::uint32_t* status) override {
        return load(log("LoadFileToPad", pad, title, path), title, path, bin, status);
    }
    HRESULT AuditionPad(std::int32_t pad, std::int32_t grain) override {
        return log("AuditionPad", pad, grain);
    }
    HRESULT StopPad(std::int32_t pad) override { return log("StopPad", pad); }
    HRESULT AuditionBinFile(std::int32_t bin, std::int32_t grain) override {
        return log("AuditionBinFile", bin, grain);
    }
    HRESULT StopBinAudition(std::int32_t bin) override { return log("StopBinAudition", bin); }
    HRESULT MoveGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                      std::int32_t* newIndex, std::uint32_t markOnly) override {
        *newIndex = -1;
        return log("MoveGrain", pad, grain, toPad, time, markOnly);
    }
    HRESULT CopyGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                      std::int32_t* newIndex) override {
        *newIndex = -1;
        return log("CopyGrain", pad, grain, toPad, time);
    }
    HRESULT GetBinFileCount(std::int32_t* count) override {
        *count = static_cast<std::int32_t>(files.size());
        return log("GetBinFileCount");
    }
    HRESULT GetBinFileName(std::int32_t bin, std::uint32_t wantPath, char* text) override {
        if (isFile(bin)) {
            const ModelFile& file = files[static_cast<std::size_t>(bin)];
            const std::string shown = (wantPath ? file.path : file.name).substr(0, 259);
            std::memcpy(text, shown.c_str(), shown.size() + 1);
        }
        return log("GetBinFileName", bin, wantPath);
    }
    HRESULT GetPadLooping(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadLooping", pad, value, at(pad).looping);
    }
    HRESULT SetPadLooping(std::int32_t pad, std::uint32_t value) override {
        return write("SetPadLooping", pad, at(pad).looping, value);
    }
    HRESULT GetPadSynced(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadSynced", pad, value, at(pad).synced);
    }
    HRESULT SetPadSynced(std::int32_t pad, std::uint32_t value) override {
        return write("SetPadSynced", pad, at(pad).synced, value);
    }
    HRESULT GetPadPlayMode(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadPlayMode", pad, value, at(pad).oneShot);
    }
    HRESULT SetPadPlayMode(std::int32_t pad, std::uint32_t value) override {
        return write("SetPadPlayMode", pad, at(pad).oneShot, value);
    }
    HRESULT GetPadGrainList(std::int32_t pad, GrainListEntry** list, std::int32_t* count) override {
        give(at(pad).grains, list, count);
        return log("GetPadGrainList", pad);
    }
    HRESULT GetBinGrainList(std::int32_t bin, GrainListEntry** list, std::int32_t* count) override {
        give(isFile(bin) ? files[static_cast<std::size_t>(bin)].grains : std::vector<ModelGrain>(), list,
             count);
        return log("GetBinGrainList", bin);
    }
    HRESULT GetPadMute(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadMute", pad, value, at(pad).mute);
    }
    HRESULT SetPadMute(std::int32_t pad, std::uint32_t value) override {
        return write("SetPadMute", pad, at(pad).mute, value);
    }
    HRESULT GetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t* ticks16) override {
        *ticks16 = at(static_cast<int>(index)).loopLength;
        return log("GetLoopLength", kind, index);
    }
    HRESULT SetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t ticks16) override {
        at(static_cast<int>(index)).loopLength = ticks16;
        return log("SetLoopLength", kind, index, ticks16);
    }
    HRESULT GetPadPlaying(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadPlaying", pad, value, at(pad).playing);
    }
    HRESULT GetBinPlaying(std::int32_t bin, std::uint32_t* value) override {
        *value = 0;
        return log("GetBinPlaying", bin);
    }
    HRESULT GetKeyMapEntry(KeyMapRecord* entry) override {
        const ModelPad& pad = at(entry->pad);
        *entry = {entry->pad, pad.lowKey, pad.highKey, pad.rootKey, pad.lowVelocity, pad.highVelocity};
        return log("GetKeyMapEntry", entry->pad);
    }
    HRESULT SetKeyMapEntry(const KeyMapRecord* e) override {
        ModelPad& pad = at(e->pad);
        pad.lowKey = e->lowKey;
        pad.highKey = e->highKey;
        pad.rootKey = e->rootKey;
        pad.lowVelocity = e->lowVelocity;
        pad.highVelocity = e->highVelocity;
        return log("SetKeyMapEntry", e->pad, e->lowKey, e->highKey, e->rootKey, e->lowVelocity,
                   e->highVelocity);
    }
    HRESULT GetAuditionEnabled(std::uint32_t* value) override {
        *value = auditionEnabled ? 1 : 0;
        return log("GetAuditionEnabled");
    }
    HRESULT SetAuditionEnabled(std::uint32_t value) override {
        auditionEnabled = value != 0;
        return log("SetAuditionEnabled", value);
    }
    HRESULT GetRefreshRequest(std::uint32_t* value) override {
        *value = std::exchange(refreshRequest, 0u);
        return log("GetRefreshRequest");
    }
    HRESULT SetRefreshRequest(std::uint32_t value) override {
        refreshRequest = value;
        return log("SetRefreshRequest", value);
    }
    HRESULT GetPadVolume(std::int32_t pad, float* value) override {
        return read("GetPadVolume", pad, value, at(pad).volume);
    }
    HRESULT SetPadVolume(std::int32_t pad, float value) override {
        return write("SetPadVolume", pad, at(pad).volume, value);
    }
    HRESULT GetPadPan(std::int32_t pad, float* value) override {
        return read("GetPadPan", pad, value, at(pad).pan);
    }
    HRESULT SetPadPan(std::int32_t pad, float value) override {
        return write("SetPadPan", pad, at(pad).pan, value);
    }
    HRESULT GetPadTail(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadTail", pad, value, at(pad).tail);
    }
    HRESULT SetPadTail(std::int32_t pad, std::uint32_t value) override {
        return write("SetPadTail", pad, at(pad).tail, value);
    }
    HRESULT GetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t* semitones) override {
        *semitones = grainOf(pad, grain).transpose;
        return log("GetGrainTranspose", pad, grain);
    }
    HRESULT SetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t semitones) override {
        grainOf(pad, grain).transpose = semitones;
        return log("SetGrainTranspose", pad, grain, semitones);
    }
    HRESULT GetGrainCount(std::uint32_t kind, std::uint32_t index, std::int32_t* count) override {
        *count = static_cast<std::int32_t>(kind == kPadLoop ? at(static_cast<int>(index)).grains.size()
                                                            : files.at(index).grains.size());
        return log("GetGrainCount", kind, index);
    }
    HRESULT GetPadEndTime(std::int32_t pad, std::int64_t* ticks16) override {
        *ticks16 = at(pad).grains.empty() ? 0 : at(pad).grains.back().end;
        return log("GetPadEndTime", pad);
    }
    HRESULT GetPadFollowKey(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadFollowKey", pad, value, at(pad).followKey);
    }
    HRESULT SetPadFollowKey(std::int32_t pad, std::uint32_t value) override {
        return write("SetPadFollowKey", pad, at(pad).followKey, value);
    }
    HRESULT GetGrainVolume(std::int32_t pad, std::int32_t grain, float* value) override {
        *value = grainOf(pad, grain).volume;
        return log("GetGrainVolume", pad, grain);
    }
    HRESULT SetGrainVolume(std::int32_t pad, std::int32_t grain, float value) override {
        grainOf(pad, grain).volume = value;
        return log("SetGrainVolume", pad, grain, value);
    }
    HRESULT GetGrainPan(std::int32_t pad, std::int32_t grain, float* value) override {
        *value = grainOf(pad, grain).pan;
        return log("GetGrainPan", pad, grain);
    }
    HRESULT SetGrainPan(std::int32_t pad, std::int32_t grain, float value) override {
        grainOf(pad, grain).pan = value;
        return log("SetGrainPan", pad, grain, value);
    }
    HRESULT GetPadOutput(std::int32_t pad, std::uint32_t* output) override {
        return read("GetPadOutput", pad, output, at(pad).output);
    }
    HRESULT SetPadOutput(std::int32_t pad, std::uint32_t output) override {
        return write("SetPadOutput", pad, at(pad).output, output);
    }
    HRESULT GetPadSolo(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadSolo", pad, value, at(pad).solo);
    }
    HRESULT SetPadSolo(std::int32_t pad, std::uint32_t value) override {
        return write("SetPadSolo", pad, at(pad).solo, value);
    }
    HRESULT GetPadRootNote(std::int32_t pad, std::int32_t* note) override {
        return read("GetPadRootNote", pad, note, at(pad).rootNote);
    }
    HRESULT SetPadRootNote(std::int32_t pad, std::int32_t note) override {
        return write("SetPadRootNote", pad, at(pad).rootNote, note);
    }
    HRESULT GetPadChannel(std::int32_t pad, std::int32_t* channel) override {
        return read("GetPadChannel", pad, channel, at(pad).channel);
    }
    HRESULT SetPadChannel(std::int32_t pad, std::int32_t channel) override {
        return write("SetPadChannel", pad, at(pad).channel, channel);
    }
    HRESULT GetPadOneShot(std::int32_t pad, std::uint32_t* value) override {
        return read("GetPadOneShot", pad, value, at(pad).oneShot);
    }
    HRESULT SetPadOneShot(std::int32_t pad, std::uint32_t value) override {
        return write("SetPadOneShot", pad, at(pad).oneShot, value);
    }

private:
    template <class... Arguments>
    HRESULT log(const std::string& name, const Arguments&... arguments) {
        const std::string call = callText(name, arguments...);
        calls_.push_back(call);
        onCall(call);
        for (const std::string& operation : throwing)
            if (operation == name) throw std::invalid_argument(name);
        const auto result = results.find(name);
        return result == results.end() ? S_OK : result->second;
    }
    template <class Value, class Field>
    HRESULT read(const std::string& name, std::int32_t pad, Value* value, const Field& field) {
        *value = static_cast<Value>(field);
        return log(name, pad);
    }
    template <class Value, class Field>
    HRESULT write(const std::string& name, std::int32_t pad, Field& field, Value value) {
        field = static_cast<Field>(value);
        return log(name, pad, value);
    }
    HRESULT load(HRESULT result, const char* title, const char* path, std::int32_t* bin,
                 std::uint32_t* status) {
        *status = loadStatus;
        if (FAILED(result) || (loadStatus != kLoaded && loadStatus != kLoadedFormatForced)) return result;
        *bin = static_cast<std::int32_t>(files.size());
        files.push_back({title, path, {}});
        return result;
    }
    static void give(const std::vector<ModelGrain>& grains, GrainListEntry** list, std::int32_t* count) {
        // One column of peaks for all: nothing the tests of the page's calls look at.
        static const std::array<float, 1024> peaks{};
        *count = static_cast<std::int32_t>(grains.size());
        *list = nullptr;
        if (grains.empty()) return;
        auto* entries = static_cast<GrainListEntry*>(CoTaskMemAlloc(grains.size() * sizeof(GrainListEntry)));
        *list = entries;
        for (const ModelGrain& grain : grains)
            *entries++ = {grain.start, grain.end, grain.transpose,     grain.volume, peaks.data(),
                          grain.width, 1,         grain.tail ? 1u : 0u};
    }
    ModelPad& at(int pad) { return pads.at(static_cast<std::size_t>(pad)); }
    ModelGrain& grainOf(int pad, int grain) {
        auto& grains = at(pad).grains;
        if (grain < 0 || grain >= static_cast<int>(grains.size()))
            throw std::invalid_argument("no such grain");
        return grains[static_cast<std::size_t>(grain)];
    }
    bool isFile(int bin) const { return bin >= 0 && bin < static_cast<int>(files.size()); }

    std::vector<std::string> calls_;
};

}  // namespace marnoth::test
