#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <vector>

#include "fuzz/Exercise.h"
#include "fuzz/MemoryFile.h"
#include "support/FaultyStream.h"

namespace marnoth::fuzz {
namespace {

/// How an input is read, by its choices.
struct Way {
    explicit Way(std::uint8_t choice)
        : fromFile(choice & 4), knowsSize(choice & 8), channels(choice & 16 ? 1 : 2) {
        constexpr std::array<std::uint32_t, 4> kRates{11025, 22050, 44100, 96000};
        rate = kRates[choice & 3];
    }
    bool fromFile;
    bool knowsSize;
    std::uint16_t channels;
    std::uint32_t rate;
};

/// The code of the load; a failure also where the invalid-argument exception came out.
HRESULT load(CGrooveSampler& engine, std::span<const std::uint8_t> bytes, const Way& way) try {
    if (way.fromFile) {
        static MemoryFile file;
        file.fill(bytes);
        return engine.LoadProject(file.name());
    }
    test::FaultyStream stream({bytes.begin(), bytes.end()});
    stream.knowsSize = way.knowsSize;
    const HRESULT result = engine.LoadState(&stream);
    require(stream.references == 1, "the stream is let go");
    return result;
} catch (const std::invalid_argument&) {
    return E_INVALIDARG;
}

void requireEmpty(IGrooveSampler& engine) {
    std::int32_t count = -1;
    engine.GetBinFileCount(&count);
    require(count == 0, "a failed load leaves no file");
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        engine.GetGrainCount(kPadLoop, static_cast<std::uint32_t>(pad), &count);
        require(count == 0, "a failed load leaves no grain");
        KeyMapRecord key{};
        key.pad = pad;
        engine.GetKeyMapEntry(&key);
        require(key.lowKey == key.highKey && key.lowKey == key.rootKey && key.lowVelocity == 0 &&
                    key.highVelocity == 127,
                "a failed load leaves the default key map");
    }
}

test::FaultyStream saved(CGrooveSampler& engine) {
    test::FaultyStream stream;
    require(engine.SaveState(&stream) == S_OK, "what was loaded can be saved");
    require(stream.position == stream.bytes.size(), "the stream stands behind the form");
    stream.position = 0;
    return stream;
}

test::FaultyStream loadedAndSaved(test::FaultyStream stream, const Way& way) {
    test::EngineHost host(way.rate, way.channels);
    require(host.engine.LoadState(&stream) == S_OK, "what was saved can be loaded");
    return saved(host.engine);
}

/// A saved project without its key map: where a map lacks a pad or has one twice, each save leaves out some
/// of its entries.
std::vector<std::uint8_t> withoutKeys(const std::vector<std::uint8_t>& form) {
    constexpr std::size_t kBegin = 12, kKeys = 36;
    std::uint32_t keyBytes;
    std::memcpy(&keyBytes, form.data() + kKeys + 4, 4);
    std::vector<std::uint8_t> rest(form.begin() + kBegin, form.begin() + kKeys);
    rest.insert(rest.end(), form.begin() + static_cast<std::ptrdiff_t>(kKeys + 8 + keyBytes), form.end());
    return rest;
}

/// What was loaded is saved, and goes through three more engines: the third changes nothing more. (The first
/// rounds up the storage of waves whose rate the load has changed. The second counts that as frames where the
/// track is shorter than its wave, since the form doesn't tell how long the wave is.)
void requireRoundTrip(test::EngineHost& host, const Way& way) {
    const test::FaultyStream twice = loadedAndSaved(loadedAndSaved(saved(host.engine), way), way);
    const test::FaultyStream again = loadedAndSaved(twice, way);
    require(withoutKeys(twice.bytes) == withoutKeys(again.bytes), "what was loaded is what was saved");
}

}  // namespace
}  // namespace marnoth::fuzz

/// The project reader, from a file and from a host's stream, into an engine that is then played and saved.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace marnoth;
    using namespace marnoth::fuzz;
    const Way way(choices(data, size));
    test::EngineHost host(way.rate, way.channels);
    if (FAILED(load(host.engine, {data, size}, way))) {
        requireEmpty(host.engine);
        host.block(64);
        return 0;
    }
    requireRoundTrip(host, way);
    readLists(host.engine);
    playEverything(host);
    return 0;
}
