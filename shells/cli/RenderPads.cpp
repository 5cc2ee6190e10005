#include "shells/cli/RenderPads.h"

#include "seam/Limits.h"
#include "shellkit/files/Need.h"

namespace marnoth {

namespace {

constexpr std::int32_t kMiddleC = 60;

void need(HRESULT result) {
    marnoth::need(result, "setting up a pad");
}

}  // namespace

std::vector<int> RenderPads::loaded() const {
    std::vector<int> pads;
    for (int pad = 0; pad < kPads; ++pad) {
        std::int32_t grains = 0;
        need(sampler_.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad), &grains));
        if (grains > 0) pads.push_back(pad);
    }
    return pads;
}

std::vector<PadAnswers> RenderPads::answers() const {
    std::vector<PadAnswers> all;
    for (const int pad : loaded()) {
        // A pad without an entry leaves the record as it is: one that no key fits.
        PadAnswers own{{pad, 0, -1, 0, 0, kHighestVelocity}, kAnyChannel};
        need(sampler_.GetKeyMapEntry(&own.keys));
        need(sampler_.GetPadChannel(pad, &own.channel));
        all.push_back(own);
    }
    return all;
}

bool RenderPads::isSynced(int pad) const {
    std::uint32_t synced = 0;
    need(sampler_.GetPadSynced(pad, &synced));
    return synced != 0;
}

bool RenderPads::isLooping(int pad) const {
    std::uint32_t looping = 0;
    need(sampler_.GetPadLooping(pad, &looping));
    return looping != 0;
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
        Own own{0, kAnyChannel, {pad, 0, 0, 0, kHighestVelocity, 0}};
        need(sampler_.GetPadOneShot(pad, &own.oneShot));
        need(sampler_.GetPadChannel(pad, &own.channel));
        need(sampler_.GetKeyMapEntry(&own.keys));
        held_[static_cast<std::size_t>(pad)] = own;
        const std::int32_t note = heldNote(pad);
        const KeyMapRecord keys{pad, note, note, note, 0, kHighestVelocity};
        need(sampler_.SetPadOneShot(pad, 0));
        need(sampler_.SetPadChannel(pad, kAnyChannel));
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

void RenderPads::restore() {
    for (int pad = 0; pad < kPads; ++pad) restore(pad);
}

}  // namespace marnoth
