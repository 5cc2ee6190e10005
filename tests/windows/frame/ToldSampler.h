#pragma once

#include <functional>
#include <string>
#include <utility>

#include "editor/RecordingSampler.h"

namespace marnoth::test {

/// An engine between a page and the one that does the work: what changes something is told first, as the line
/// of text that a recording one would write, and everything is handed on. Outlives whoever holds it.
class ToldSampler final : public IGrooveSampler {
public:
    /// `engine` outlives it.
    ToldSampler(IGrooveSampler& engine, std::function<void(const std::string&)> hear)
        : engine_(engine), hear_(std::move(hear)) {}

    HRESULT QueryInterface(REFIID iid, void** object) override {
        if (!object) return E_POINTER;
        const bool isOwn = iid == IID_IGrooveSampler || iid == IID_IUnknown;
        *object = isOwn ? static_cast<IGrooveSampler*>(this) : nullptr;
        return isOwn ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return 1; }
    HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

    HRESULT PushUndoState() override {
        tell("PushUndoState");
        return engine_.PushUndoState();
    }
    HRESULT Undo() override {
        tell("Undo");
        return engine_.Undo();
    }
    HRESULT Redo() override {
        tell("Redo");
        return engine_.Redo();
    }
    HRESULT ClearProject() override {
        tell("ClearProject");
        return engine_.ClearProject();
    }
    HRESULT LoadPadFromBin(std::int32_t pad, std::int32_t bin) override {
        tell("LoadPadFromBin", pad, bin);
        return engine_.LoadPadFromBin(pad, bin);
    }
    HRESULT SaveProject(std::uint32_t unused, const char* path) override {
        tell("SaveProject", unused, path);
        return engine_.SaveProject(unused, path);
    }
    HRESULT LoadProject(const char* path) override {
        tell("LoadProject", path);
        return engine_.LoadProject(path);
    }
    HRESULT RemoveBinFile(std::int32_t bin) override {
        tell("RemoveBinFile", bin);
        return engine_.RemoveBinFile(bin);
    }
    HRESULT CommitGrainEdits() override {
        tell("CommitGrainEdits");
        return engine_.CommitGrainEdits();
    }
    HRESULT DeleteGrain(std::int32_t pad, std::int32_t grain, std::uint32_t markOnly) override {
        tell("DeleteGrain", pad, grain, markOnly);
        return engine_.DeleteGrain(pad, grain, markOnly);
    }
    HRESULT ReplaceGrain(std::int32_t pad, std::int32_t grain, std::int32_t bin,
                         std::int32_t binGrain) override {
        tell("ReplaceGrain", pad, grain, bin, binGrain);
        return engine_.ReplaceGrain(pad, grain, bin, binGrain);
    }
    HRESULT AddGrain(std::int32_t bin, std::int32_t binGrain, std::int32_t pad, std::int64_t time) override {
        tell("AddGrain", bin, binGrain, pad, time);
        return engine_.AddGrain(bin, binGrain, pad, time);
    }
    HRESULT GetGrainSource(std::int32_t pad, std::int32_t grain, std::int32_t* bin,
                           std::int32_t* binGrain) override {
        return engine_.GetGrainSource(pad, grain, bin, binGrain);
    }
    HRESULT LoadFileToBin(const char* title, const char* path, std::int32_t* bin,
                          std::uint32_t* status) override {
        tell("LoadFileToBin", title, path);
        return engine_.LoadFileToBin(title, path, bin, status);
    }
    HRESULT LoadFileToPad(std::int32_t pad, const char* title, const char* path, std::int32_t* bin,
                          std::uint32_t* status) override {
        tell("LoadFileToPad", pad, title, path);
        return engine_.LoadFileToPad(pad, title, path, bin, status);
    }
    HRESULT AuditionPad(std::int32_t pad, std::int32_t grain) override {
        tell("AuditionPad", pad, grain);
        return engine_.AuditionPad(pad, grain);
    }
    HRESULT StopPad(std::int32_t pad) override {
        tell("StopPad", pad);
        return engine_.StopPad(pad);
    }
    HRESULT AuditionBinFile(std::int32_t bin, std::int32_t grain) override {
        tell("AuditionBinFile", bin, grain);
        return engine_.AuditionBinFile(bin, grain);
    }
    HRESULT StopBinAudition(std::int32_t bin) override {
        tell("StopBinAudition", bin);
        return engine_.StopBinAudition(bin);
    }
    HRESULT MoveGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                      std::int32_t* newIndex, std::uint32_t markOnly) override {
        tell("MoveGrain", pad, grain, toPad, time, markOnly);
        return engine_.MoveGrain(pad, grain, toPad, time, newIndex, markOnly);
    }
    HRESULT CopyGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                      std::int32_t* newIndex) override {
        tell("CopyGrain", pad, grain, toPad, time);
        return engine_.CopyGrain(pad, grain, toPad, time, newIndex);
    }
    HRESULT GetBinFileCount(std::int32_t* count) override { return engine_.GetBinFileCount(count); }
    HRESULT GetBinFileName(std::int32_t bin, std::uint32_t wantPath, char* text) override {
        return engine_.GetBinFileName(bin, wantPath, text);
    }
    HRESULT GetPadLooping(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadLooping(pad, value);
    }
    HRESULT SetPadLooping(std::int32_t pad, std::uint32_t value) override {
        tell("SetPadLooping", pad, value);
        return engine_.SetPadLooping(pad, value);
    }
    HRESULT GetPadSynced(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadSynced(pad, value);
    }
    HRESULT SetPadSynced(std::int32_t pad, std::uint32_t value) override {
        tell("SetPadSynced", pad, value);
        return engine_.SetPadSynced(pad, value);
    }
    HRESULT GetPadPlayMode(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadPlayMode(pad, value);
    }
    HRESULT SetPadPlayMode(std::int32_t pad, std::uint32_t value) override {
        tell("SetPadPlayMode", pad, value);
        return engine_.SetPadPlayMode(pad, value);
    }
    HRESULT GetPadGrainList(std::int32_t pad, GrainListEntry** list, std::int32_t* count) override {
        return engine_.GetPadGrainList(pad, list, count);
    }
    HRESULT GetBinGrainList(std::int32_t bin, GrainListEntry** list, std::int32_t* count) override {
        return engine_.GetBinGrainList(bin, list, count);
    }
    HRESULT GetPadMute(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadMute(pad, value);
    }
    HRESULT SetPadMute(std::int32_t pad, std::uint32_t value) override {
        tell("SetPadMute", pad, value);
        return engine_.SetPadMute(pad, value);
    }
    HRESULT GetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t* ticks16) override {
        return engine_.GetLoopLength(kind, index, ticks16);
    }
    HRESULT SetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t ticks16) override {
        tell("SetLoopLength", kind, index, ticks16);
        return engine_.SetLoopLength(kind, index, ticks16);
    }
    HRESULT GetPadPlaying(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadPlaying(pad, value);
    }
    HRESULT GetBinPlaying(std::int32_t bin, std::uint32_t* value) override {
        return engine_.GetBinPlaying(bin, value);
    }
    HRESULT GetKeyMapEntry(KeyMapRecord* entry) override { return engine_.GetKeyMapEntry(entry); }
    HRESULT SetKeyMapEntry(const KeyMapRecord* entry) override {
        tell("SetKeyMapEntry", entry->pad, entry->lowKey, entry->highKey, entry->rootKey, entry->lowVelocity,
             entry->highVelocity);
        return engine_.SetKeyMapEntry(entry);
    }
    HRESULT GetAuditionEnabled(std::uint32_t* value) override { return engine_.GetAuditionEnabled(value); }
    HRESULT SetAuditionEnabled(std::uint32_t value) override {
        tell("SetAuditionEnabled", value);
        return engine_.SetAuditionEnabled(value);
    }
    HRESULT GetRefreshRequest(std::uint32_t* value) override { return engine_.GetRefreshRequest(value); }
    HRESULT SetRefreshRequest(std::uint32_t value) override {
        tell("SetRefreshRequest", value);
        return engine_.SetRefreshRequest(value);
    }
    HRESULT GetPadVolume(std::int32_t pad, float* value) override { return engine_.GetPadVolume(pad, value); }
    HRESULT SetPadVolume(std::int32_t pad, float value) override {
        tell("SetPadVolume", pad, value);
        return engine_.SetPadVolume(pad, value);
    }
    HRESULT GetPadPan(std::int32_t pad, float* value) override { return engine_.GetPadPan(pad, value); }
    HRESULT SetPadPan(std::int32_t pad, float value) override {
        tell("SetPadPan", pad, value);
        return engine_.SetPadPan(pad, value);
    }
    HRESULT GetPadTail(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadTail(pad, value);
    }
    HRESULT SetPadTail(std::int32_t pad, std::uint32_t value) override {
        tell("SetPadTail", pad, value);
        return engine_.SetPadTail(pad, value);
    }
    HRESULT GetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t* semitones) override {
        return engine_.GetGrainTranspose(pad, grain, semitones);
    }
    HRESULT SetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t semitones) override {
        tell("SetGrainTranspose", pad, grain, semitones);
        return engine_.SetGrainTranspose(pad, grain, semitones);
    }
    HRESULT GetGrainCount(std::uint32_t kind, std::uint32_t index, std::int32_t* count) override {
        return engine_.GetGrainCount(kind, index, count);
    }
    HRESULT GetPadEndTime(std::int32_t pad, std::int64_t* ticks16) override {
        return engine_.GetPadEndTime(pad, ticks16);
    }
    HRESULT GetPadFollowKey(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadFollowKey(pad, value);
    }
    HRESULT SetPadFollowKey(std::int32_t pad, std::uint32_t value) override {
        tell("SetPadFollowKey", pad, value);
        return engine_.SetPadFollowKey(pad, value);
    }
    HRESULT GetGrainVolume(std::int32_t pad, std::int32_t grain, float* value) override {
        return engine_.GetGrainVolume(pad, grain, value);
    }
    HRESULT SetGrainVolume(std::int32_t pad, std::int32_t grain, float value) override {
        tell("SetGrainVolume", pad, grain, value);
        return engine_.SetGrainVolume(pad, grain, value);
    }
    HRESULT GetGrainPan(std::int32_t pad, std::int32_t grain, float* value) override {
        return engine_.GetGrainPan(pad, grain, value);
    }
    HRESULT SetGrainPan(std::int32_t pad, std::int32_t grain, float value) override {
        tell("SetGrainPan", pad, grain, value);
        return engine_.SetGrainPan(pad, grain, value);
    }
    HRESULT GetPadOutput(std::int32_t pad, std::uint32_t* output) override {
        return engine_.GetPadOutput(pad, output);
    }
    HRESULT SetPadOutput(std::int32_t pad, std::uint32_t output) override {
        tell("SetPadOutput", pad, output);
        return engine_.SetPadOutput(pad, output);
    }
    HRESULT GetPadSolo(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadSolo(pad, value);
    }
    HRESULT SetPadSolo(std::int32_t pad, std::uint32_t value) override {
        tell("SetPadSolo", pad, value);
        return engine_.SetPadSolo(pad, value);
    }
    HRESULT GetPadRootNote(std::int32_t pad, std::int32_t* note) override {
        return engine_.GetPadRootNote(pad, note);
    }
    HRESULT SetPadRootNote(std::int32_t pad, std::int32_t note) override {
        tell("SetPadRootNote", pad, note);
        return engine_.SetPadRootNote(pad, note);
    }
    HRESULT GetPadChannel(std::int32_t pad, std::int32_t* channel) override {
        return engine_.GetPadChannel(pad, channel);
    }
    HRESULT SetPadChannel(std::int32_t pad, std::int32_t channel) override {
        tell("SetPadChannel", pad, channel);
        return engine_.SetPadChannel(pad, channel);
    }
    HRESULT GetPadOneShot(std::int32_t pad, std::uint32_t* value) override {
        return engine_.GetPadOneShot(pad, value);
    }
    HRESULT SetPadOneShot(std::int32_t pad, std::uint32_t value) override {
        tell("SetPadOneShot", pad, value);
        return engine_.SetPadOneShot(pad, value);
    }

private:
    template <class... Arguments>
    void tell(const char* name, const Arguments&... arguments) {
        hear_(callText(name, arguments...));
    }

    IGrooveSampler& engine_;
    std::function<void(const std::string&)> hear_;
};

}  // namespace marnoth::test
