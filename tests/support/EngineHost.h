#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/GrooveSampler.h"
#include "platform/system/Overflow.h"
#include "seam/Pzi.h"
#include "support/FloatFormat.h"

namespace marnoth::test {

/// A shell for the engine under test: one constant tempo from sample 0 on, and settable answers for the rest.
/// Pin 0, the mix, exists from the start; ids are given out as the instrument's shell does, from 1 upwards
/// and never twice in a process.
class FakeSynthContext : public CPziSynthContext {
public:
    double tempo = 120.0;                                    ///< beats per minute
    std::int32_t rate = 44100;                               ///< frames per second
    std::int32_t running = 0;                                ///< of the transport
    std::uint32_t key = static_cast<std::uint32_t>(kNoKey);  ///< 0 to 11 counted from A
    std::vector<std::uint32_t> pinIds{nextId()};
    std::vector<std::string> pinNames{"Mix Output"};

    HRESULT AddOutputPin(const char* name, std::uint32_t* id) override {
        pinIds.push_back(nextId());
        pinNames.emplace_back(name ? name : "");
        if (id) *id = pinIds.back();
        return S_OK;
    }
    HRESULT RemoveOutputPin(std::uint32_t) override { return E_NOTIMPL; }
    HRESULT RemoveAllOutputPins() override { return E_NOTIMPL; }
    IPin* FindOutputPin(std::uint32_t) override { return nullptr; }
    std::int32_t GetOutputPinCount() override { return static_cast<std::int32_t>(pinIds.size()); }
    std::uint32_t GetPinId(std::int32_t index) override {
        return index >= 0 && index < GetOutputPinCount() ? pinIds[static_cast<std::size_t>(index)] : kNoPin;
    }
    std::int64_t WholeTicksToSamples(std::int32_t ticks) override {
        return static_cast<std::int64_t>(ticks / 960.0 * 60.0 / tempo * rate);
    }
    std::int32_t SamplesToWholeTicks(std::int64_t samples) override {
        return static_cast<std::int32_t>(static_cast<double>(samples) / rate * tempo / 60.0 * 960.0);
    }
    std::int64_t TicksToSamples(std::int64_t ticks16) override {
        return truncatedToInt64(static_cast<double>(ticks16) / kTicks16PerBeat * 60.0 / tempo * rate + 0.5);
    }
    std::int64_t SamplesToTicks(std::int64_t samples) override {
        return truncatedToInt64(tempo * (static_cast<double>(samples) / rate) / 60.0 * kTicks16PerBeat + 0.5);
    }
    std::uint32_t GetKeyAtTime(std::int64_t) override { return key; }
    std::int32_t IsTransportRunning() override { return running; }
    std::int32_t GetSampleRate() override { return rate; }
    double GetTempo() override { return tempo; }
    void SetTempo(double beatsPerMinute) override { tempo = beatsPerMinute; }

private:
    static std::uint32_t nextId() {
        static std::uint32_t next = 1;
        return next++;
    }
};

/// The engine as an object: what the object that carries it adds, in its plainest form. Owned by the test,
/// so references aren't counted.
class EngineUnderTest : public CGrooveSampler {
public:
    explicit EngineUnderTest(CPziSynthContext& context) : CGrooveSampler(&context) {}

    HRESULT QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
};

/// An engine with its pins, connected in one float format, and driven block by block with silence at its
/// input.
struct EngineHost {
    explicit EngineHost(std::uint32_t rate = 44100, std::uint16_t channels = 2) : engine(context) {
        engine.RegisterOutputs();
        connect(rate, channels);
    }

    void connect(std::uint32_t rate, std::uint16_t channels) {
        context.rate = static_cast<std::int32_t>(rate);
        engine.inputFormat = engine.outputFormat = floatFormat(rate, channels);
        engine.CheckFormat();
    }

    /// Renders one block on all seventeen pins and gives the result of `ProcessBlock`. `audio[0]` is the mix
    /// and `audio[n]` channel n; a silent pin holds zeros.
    HRESULT block(std::int32_t frames) {
        const std::size_t values = static_cast<std::size_t>(frames) * engine.inputFormat.nChannels;
        std::vector<PinBuffer> pins(context.pinIds.size());
        audio.resize(pins.size());
        for (std::size_t i = 0; i < pins.size(); ++i) {
            audio[i].assign(values, 0.0f);
            pins[i] = {frames, context.pinIds[i], nullptr, audio[i].data(), 1};
        }
        PinBuffer input{frames, 0, nullptr, nullptr, 1};
        CAutoLock lock(engine);
        const HRESULT result = engine.ProcessBlock(position, &input, pins.data(),
                                                   static_cast<std::int32_t>(pins.size()), 0, &notes);
        position += frames;
        return result;
    }

    /// Renders `frames` frames in blocks, the last one shorter, and gives what one pin put out.
    std::vector<float> render(std::int64_t frames, std::int32_t blockFrames = 512, std::size_t pin = 0) {
        std::vector<float> all;
        for (; frames > 0; frames -= blockFrames) {
            block(static_cast<std::int32_t>(frames < blockFrames ? frames : blockFrames));
            all.insert(all.end(), audio[pin].begin(), audio[pin].end());
        }
        return all;
    }

    FakeSynthContext context;
    EngineUnderTest engine;
    NoteQueue notes;
    std::int64_t position = 0;  ///< samples, as the graph counts
    std::vector<std::vector<float>> audio;
};

}  // namespace marnoth::test
