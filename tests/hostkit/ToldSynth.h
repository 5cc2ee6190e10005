#pragma once

#include <string>
#include <vector>

#include "host/CreateInstance.h"
#include "platform/com/RefPtr.h"
#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth::test {

/// An instrument that writes down what the host's sequencer tells it, and can refuse live messages. All else
/// is the real one's.
class ToldSynth : public Implements<CUnknown, IKvxSoftSynth2> {
public:
    /// An `InstrumentMaker`. The one that was made last is `last`, as long as somebody holds it.
    static HRESULT make(IUnknown*, REFIID iid, void** out) {
        const auto synth = RefPtr<ToldSynth>::adopt(new ToldSynth);
        last = synth.get();
        return synth->QueryInterface(iid, out);
    }
    static inline ToldSynth* last = nullptr;

    std::vector<std::string> told;
    HRESULT messages = S_OK;  ///< what comes of live messages

    HRESULT AttachHost(IUnknown* context) override { return synth_->AttachHost(context); }
    HRESULT DetachHost() override { return synth_->DetachHost(); }
    HRESULT StartPlayback(std::int32_t ticks) override {
        told.push_back("start " + std::to_string(ticks));
        return synth_->StartPlayback(ticks);
    }
    HRESULT LoopPlayback(std::int32_t restart, std::int32_t stop) override {
        return synth_->LoopPlayback(restart, stop);
    }
    HRESULT StopPlayback() override {
        told.push_back("stop");
        return synth_->StopPlayback();
    }
    HRESULT QueueEvents(std::uint32_t a, std::uint32_t b, std::uint32_t port, IKvxEventList* list) override {
        return synth_->QueueEvents(a, b, port, list);
    }
    HRESULT QueueRawInput(std::uint32_t port, IKvxRawEventList* list) override {
        std::int32_t count = 0;
        list->GetCount(&count);
        // An empty list is counted under the instrument's lock, and that is all.
        if (count > 0) told.push_back("messages " + std::to_string(count));
        return count > 0 && FAILED(messages) ? messages : synth_->QueueRawInput(port, list);
    }
    HRESULT GetBankList(std::int32_t** banks, std::uint32_t* count) override {
        return synth_->GetBankList(banks, count);
    }
    HRESULT QueryPatchFalse(std::uint32_t bank, std::uint32_t patch) override {
        return synth_->QueryPatchFalse(bank, patch);
    }
    HRESULT QueryPatchTrue(std::uint32_t bank, std::uint32_t patch) override {
        return synth_->QueryPatchTrue(bank, patch);
    }
    HRESULT GetPatchList(std::uint32_t bank, IKvxNameList** list) override {
        return synth_->GetPatchList(bank, list);
    }
    HRESULT GetNoteList(std::uint32_t bank, std::uint32_t patch, IKvxNameList** list) override {
        return synth_->GetNoteList(bank, patch, list);
    }
    HRESULT GetControllerList(IKvxNameList** list) override { return synth_->GetControllerList(list); }
    HRESULT GetRpnList(IKvxNameList** list) override { return synth_->GetRpnList(list); }
    HRESULT GetNrpnList(IKvxNameList** list) override { return synth_->GetNrpnList(list); }
    HRESULT GetInstrument(std::uint32_t unused, IKvxInstrument** out) override {
        return synth_->GetInstrument(unused, out);
    }

private:
    ToldSynth() : Implements(nullptr) {
        createInstrument(nullptr, IID_IUnknown, real_.putVoid());
        real_->QueryInterface(IID_IKvxSoftSynth2, synth_.putVoid());
    }
    IUnknown* FindInterface(REFIID iid) override {
        if (iid == IID_IKvxSoftSynth2) return static_cast<IKvxSoftSynth2*>(this);
        // The real instrument lives as long as this object: what it answers needs no reference here.
        RefPtr<IUnknown> found;
        real_->QueryInterface(iid, found.putVoid());
        return found.get();
    }

    RefPtr<IUnknown> real_;
    RefPtr<IKvxSoftSynth2> synth_;
};

}  // namespace marnoth::test
