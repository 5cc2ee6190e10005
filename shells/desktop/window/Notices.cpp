#include "shells/desktop/window/Notices.h"

#include <algorithm>

namespace marnoth {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kShortestNews{4000};
constexpr milliseconds kShortestWarning{15000};
constexpr milliseconds kForEachByte{80};
/// While another one waits.
constexpr milliseconds kLongestInARow{4000};

}  // namespace

void Notices::add(Notice notice) {
    if (notice.text.empty() || std::ranges::find(waiting_, notice) != waiting_.end()) return;
    waiting_.push_back(std::move(notice));
}

Notice Notices::current(Time now) {
    if (!waiting_.empty() && shownSince_ && now - *shownSince_ >= timeFor(waiting_.front())) dismiss();
    if (waiting_.empty()) return {};
    if (!shownSince_) shownSince_ = now;
    return waiting_.front();
}

void Notices::dismiss() {
    if (!waiting_.empty()) waiting_.pop_front();
    shownSince_.reset();
}

milliseconds Notices::timeFor(const Notice& notice) const {
    const milliseconds reading = kForEachByte * static_cast<int>(notice.text.size());
    const milliseconds whole = std::max(notice.warns ? kShortestWarning : kShortestNews, reading);
    return waiting_.size() > 1 ? std::min(whole, kLongestInARow) : whole;
}

}  // namespace marnoth
