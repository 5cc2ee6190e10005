#include "shells/desktop/Notices.h"

#include <algorithm>
#include <utility>

namespace marnoth {

namespace {

constexpr std::chrono::milliseconds kShortest{4000};
constexpr std::chrono::milliseconds kForEachByte{80};
/// While another one waits.
constexpr std::chrono::milliseconds kInARow{3000};

}  // namespace

void Notices::tell(std::string sentence) {
    if (sentence.empty() || std::ranges::find(waiting_, sentence) != waiting_.end()) return;
    waiting_.push_back(std::move(sentence));
}

const std::string& Notices::current(Time now) {
    if (!waiting_.empty() && shownSince_ && now - *shownSince_ >= timeFor(waiting_.front())) dismiss();
    if (waiting_.empty()) return none_;
    if (!shownSince_) shownSince_ = now;
    return waiting_.front();
}

void Notices::dismiss() {
    if (!waiting_.empty()) waiting_.pop_front();
    shownSince_.reset();
}

std::chrono::milliseconds Notices::timeFor(const std::string& sentence) const {
    const auto whole = std::max(kShortest, kForEachByte * static_cast<int>(sentence.size()));
    return waiting_.size() > 1 ? std::min(whole, kInARow) : whole;
}

}  // namespace marnoth
