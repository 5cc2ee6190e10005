#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/SeedFiles.h"
#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "support/EngineHost.h"

namespace marnoth::fuzz {

inline test::Bytes savedProject(test::EngineHost& host) {
    const RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    if (host.engine.SaveState(stream.get()) != S_OK) throw std::runtime_error("the project can't be saved");
    return stream->takeBytes();
}

inline void loadOnPad(test::EngineHost& host, std::int32_t pad, const test::WaveFile& file) {
    const test::TempPath path = file.writeTemp();
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    if (FAILED(host.engine.LoadFileToPad(pad, "loop", path.c_str(), &bin, &status)))
        throw std::runtime_error("a seed's loop can't be loaded");
}

/// Projects with nothing, one loop and two, and one behind other bytes; each small.
inline std::vector<std::pair<std::string, test::Bytes>> projectSeeds() {
    using test::WaveFile;
    std::vector<std::pair<std::string, test::Bytes>> seeds;
    seeds.emplace_back("empty.mrn", savedProject(*std::make_unique<test::EngineHost>()));
    test::EngineHost one(11025, 1);
    loadOnPad(one, 0, WaveFile().rate(11025).frames(32, tone).acid({.beats = 1}).strc(3));
    seeds.emplace_back("one.mrn", savedProject(one));
    test::EngineHost two(22050, 2);
    loadOnPad(two, 0, WaveFile().rate(22050).channels(2).frames(64, tone).acid({.beats = 1}));
    loadOnPad(two, 3, WaveFile().rate(22050).frames(40, tone).acid({.flags = 1}));
    two.engine.AddGrain(0, 2, 3, 1000000);
    two.engine.SetGrainTranspose(0, 1, 7);
    two.engine.SetGrainPan(0, 1, 0.25f);
    two.engine.SetPadSolo(3, 1);
    two.engine.SetPadChannel(3, 4);
    seeds.emplace_back("two.mrn", savedProject(two));
    test::Bytes wrapped(24, 0x20);
    const test::Bytes form = savedProject(one);
    wrapped.insert(wrapped.end(), form.begin(), form.end());
    seeds.emplace_back("wrapped.mrn", wrapped);
    return seeds;
}

}  // namespace marnoth::fuzz
