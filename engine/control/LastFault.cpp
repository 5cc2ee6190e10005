#include "engine/control/LastFault.h"

#include <atomic>

namespace marnoth {
namespace {

struct Kept {
    std::uint64_t instrument = 0;
    LoadOutcome outcome;
};

Kept& kept() noexcept {
    thread_local Kept ofThisThread;
    return ofThisThread;
}

// An address would come again when one instrument goes and another comes.
std::uint64_t nextNumber() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

}  // namespace

LastFault::LastFault() : instrument_(nextNumber()) {}

void LastFault::set(const LoadOutcome& outcome) noexcept {
    kept() = {instrument_, outcome};
}

LoadOutcome LastFault::get() const noexcept {
    return kept().instrument == instrument_ ? kept().outcome : LoadOutcome{};
}

}  // namespace marnoth
