#pragma once

#include <atomic>
#include <cstdint>

#include "platform/com/RefPtr.h"
#include "seam/IGrooveSampler.h"
#include "seam/IMarnothOptions.h"

namespace marnoth {

/// Knows when others than the host, the page first of all, have changed what a state keeps: then the host is
/// to know that its session has changed.
class StateChanges {
public:
    /// `sampler` outlives this.
    explicit StateChanges(IGrooveSampler& sampler) {
        sampler.QueryInterface(IID_IMarnothOptions, options_.putVoid());
        seen_ = count();
    }

    /// As long as it lives, whatever changes is what the host wanted. Any thread, one at a time.
    class OfHost {
    public:
        explicit OfHost(StateChanges& changes) : changes_(changes) { ++changes_.epoch_; }
        ~OfHost() { ++changes_.epoch_; }
        OfHost(const OfHost&) = delete;
        OfHost& operator=(const OfHost&) = delete;

    private:
        StateChanges& changes_;
    };

    /// The thread that renders, between blocks: whether something has changed since the last time beside the
    /// `automated` changes that this thread has ever made for the host.
    bool byOthers(std::uint64_t automated);

private:
    std::uint64_t count() const;

    RefPtr<IMarnothOptions> options_;
    std::atomic<std::uint64_t> epoch_ = 0;  ///< odd while the host changes all
    // The thread that renders.
    std::uint64_t seen_ = 0;  ///< changes that weren't automated
    std::uint64_t seenEpoch_ = 0;
};

}  // namespace marnoth
