#include "editor/BoundEngine.h"

#include <array>
#include <stdexcept>

#include "platform/text/Text.h"

namespace marnoth {

namespace {

constexpr std::size_t kNameSize = 260;  ///< bytes of a name or a path, with its terminator

}  // namespace

void BoundEngine::bind(std::span<IUnknown* const> objects) {
    engine_.reset();
    for (IUnknown* object : objects)
        if (object && SUCCEEDED(object->QueryInterface(IID_IGrooveSampler, engine_.putVoid()))) return;
}

std::int64_t BoundEngine::loopLength(int pad) const {
    return get(&IGrooveSampler::GetLoopLength, std::int64_t{0}, kPadLoop, pad);
}

int BoundEngine::grainCount(int pad) const {
    return get(&IGrooveSampler::GetGrainCount, std::int32_t{0}, kPadLoop, pad);
}

KeyMapRecord BoundEngine::keyMapEntry(int pad) const {
    return get(&IGrooveSampler::GetKeyMapEntry, KeyMapRecord{pad, 0, 0, 0, 0, 0});
}

FetchedGrains BoundEngine::padGrains(int pad) const {
    return {*this, &IGrooveSampler::GetPadGrainList, pad};
}

FetchedGrains BoundEngine::binGrains(int bin) const {
    return {*this, &IGrooveSampler::GetBinGrainList, bin};
}

int BoundEngine::binFileCount() const {
    return get(&IGrooveSampler::GetBinFileCount, std::int32_t{0});
}

std::string BoundEngine::binFileName(int bin, bool wantPath) const {
    std::array<char, kNameSize> text{};
    call(&IGrooveSampler::GetBinFileName, bin, wantPath ? 1 : 0, text.data());
    text.back() = '\0';
    return utf8FromWide(wideFromSystem(text.data()));
}

std::int64_t FetchedGrains::startOf(int grain) const {
    const auto index = static_cast<std::size_t>(grain);
    if (grain < 0 || index >= entries().size()) throw std::invalid_argument("no such grain");
    return entries()[index].startTicks;
}

}  // namespace marnoth
