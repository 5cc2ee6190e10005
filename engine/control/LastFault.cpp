#include "engine/control/LastFault.h"

#include <atomic>

namespace marnoth {
namespace {

struct Kept {
    std::uint64_t instrument = 0;
    LoadFault fault;
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

void LastFault::set(const LoadFault& fault) noexcept {
    kept() = {instrument_, fault};
}

LoadFault LastFault::get() const noexcept {
    return kept().instrument == instrument_ ? kept().fault : LoadFault{};
}

}  // namespace marnoth
