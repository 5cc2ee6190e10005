#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/system/FreshMemory.h"
#include "sample/Samples.h"

namespace marnoth {

/// Silence for the tails of a file, one behind the other: shares of runs that come straight from the system,
/// which has cleared them and brings them in large pages. A run goes when the last of its tails goes, so runs
/// are short: a tail that outlives its file holds less than twice `kRunBytes` beside itself.
class TailStore {
public:
    static constexpr std::int64_t kRunBytes = 4 << 20;

    /// For tails of so many values, each at least 1.
    explicit TailStore(std::vector<std::int64_t> values);

    /// The zeros of the next tail; null behind the last, and when there is no memory for its run. Throws
    /// `std::bad_alloc`.
    Samples next();

private:
    void beginRun();

    std::vector<std::int64_t> room_;  ///< values that each tail takes
    std::size_t taken_ = 0;           ///< tails
    std::size_t runEnd_ = 0;          ///< the tail that the present run ends before
    std::shared_ptr<const FreshMemory> run_;
    float* next_ = nullptr;
};

}  // namespace marnoth
