#pragma once

#include <cstdint>
#include <vector>

#include "bench/Check.h"
#include "bench/StretchedLoops.h"
#include "seam/IGrooveSampler.h"
#include "seam/Limits.h"

/// Sixteen pads, each with a loop of its own, that a key holds.
namespace marnoth::bench {

inline constexpr std::uint8_t kFirstKey = 48;

/// A loop for each pad, of a pitch of its own.
inline std::vector<test::TempPath> writeLoops() {
    std::vector<test::TempPath> files;
    for (int pad = 0; pad < kPads; ++pad) {
        const double left = 0.01 * (pad + 2);
        files.push_back(writeLoop(0.05, left, left + 0.003));
    }
    return files;
}

/// From `kFirstKey` on, a key a pad.
inline void layPads(IGrooveSampler& sampler, const std::vector<test::TempPath>& files, int outputs) {
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        const char* path = files[static_cast<std::size_t>(pad)].c_str();
        check(sampler.LoadFileToPad(pad, "loop", path, &bin, &status), "LoadFileToPad");
        const KeyMapRecord key{pad, kFirstKey + pad, kFirstKey + pad, kFirstKey + pad, 0, 127};
        check(sampler.SetKeyMapEntry(&key), "SetKeyMapEntry");
        if (outputs > 1)
            check(sampler.SetPadOutput(pad, static_cast<std::uint32_t>(pad + 1)), "SetPadOutput");
    }
}

}  // namespace marnoth::bench
