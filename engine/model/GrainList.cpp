#include "engine/model/GrainList.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

namespace marnoth {
namespace {

using Part = RefPtr<const GrainPart>;

constexpr std::size_t kMostParts = 16;

class SingleGrain : public GrainPart {
public:
    explicit SingleGrain(CGrooveEvent placed)
        : GrainPart(0, 1, GrainReach::of(placed)), grain(std::move(placed)) {}

    const CGrooveEvent grain;
};

std::int32_t sizeOf(std::span<const Part> parts) {
    std::int32_t size = 0;
    for (const Part& part : parts) size += part->size;
    return size;
}

GrainReach reachOf(std::span<const Part> parts) {
    GrainReach reach;
    for (const Part& part : parts) reach.add(part->reach);
    return reach;
}

class PartGroup : public GrainPart {
public:
    /// Takes parts of one level, at least one.
    explicit PartGroup(std::span<Part> parts)
        : GrainPart(parts.front()->level + 1, sizeOf(parts), reachOf(parts)), count(parts.size()) {
        std::transform(parts.begin(), parts.end(), reaches.begin(),
                       [](const Part& part) { return part->reach; });
        std::move(parts.begin(), parts.end(), inner.begin());
    }

    const std::size_t count;
    std::array<Part, kMostParts> inner;
    std::array<GrainReach, kMostParts> reaches;
};

Part group(std::span<Part> parts) {
    return Part(new PartGroup(parts));
}

/// The parts of a group while they are changed: one more than a group may have.
class LooseParts {
public:
    explicit LooseParts(const GrainPart& from) {
        for (const Part& part : from) parts_[count_++] = part;
    }

    Part& operator[](std::size_t at) { return parts_[at]; }
    std::size_t size() const { return count_; }
    void insert(std::size_t at, Part part) {
        std::move_backward(parts_.begin() + at, parts_.begin() + count_, parts_.begin() + count_ + 1);
        parts_[at] = std::move(part);
        ++count_;
    }
    void erase(std::size_t at) {
        std::move(parts_.begin() + at + 1, parts_.begin() + count_, parts_.begin() + at);
        parts_[--count_].reset();
    }
    std::span<Part> from(std::size_t first, std::size_t last) {
        return std::span<Part>(parts_).subspan(first, last - first);
    }
    std::span<Part> all() { return from(0, count_); }

private:
    std::array<Part, kMostParts + 1> parts_;
    std::size_t count_ = 0;
};

/// Where a grain stands within a group.
struct Place {
    std::size_t part;
    std::int32_t index;  ///< within that part
};

/// The last part takes what lies behind it.
Place placeOf(const GrainPart& group, std::int32_t index) {
    Place place{0, index};
    for (const Part* part = group.begin(); part + 1 < group.end() && place.index >= (*part)->size; ++part) {
        place.index -= (*part)->size;
        ++place.part;
    }
    return place;
}

/// One part, or two where one would have been too large.
struct OneOrTwo {
    Part first;
    Part second;
};

/// Lists are filled from front to back as a rule: what is added at the end leaves full groups behind it.
OneOrTwo regroup(LooseParts& parts, bool atEnd) {
    if (parts.size() <= kMostParts) return {group(parts.all()), nullptr};
    const std::size_t half = atEnd ? kMostParts : (kMostParts + 1) / 2;
    return {group(parts.from(0, half)), group(parts.from(half, parts.size()))};
}

OneOrTwo withInserted(const GrainPart& into, std::int32_t index, const Part& grain) {
    LooseParts parts(into);
    const Place place = placeOf(into, index);
    const bool atEnd = index == into.size;
    if (into.level == 1) {
        parts.insert(atEnd ? parts.size() : place.part, grain);
        return regroup(parts, atEnd);
    }
    OneOrTwo inner = withInserted(*parts[place.part], place.index, grain);
    parts[place.part] = std::move(inner.first);
    if (inner.second) parts.insert(place.part + 1, std::move(inner.second));
    return regroup(parts, atEnd);
}

Part withReplaced(const GrainPart& in, std::int32_t index, const Part& grain) {
    if (in.isGrain()) return grain;
    LooseParts parts(in);
    const Place place = placeOf(in, index);
    parts[place.part] = withReplaced(*parts[place.part], place.index, grain);
    return group(parts.all());
}

std::size_t partsIn(const GrainPart& part) {
    return static_cast<std::size_t>(part.end() - part.begin());
}

/// Joins the group at `at` with the next when one can hold both, so that removals leave no thin groups.
void joinWithNext(LooseParts& parts, std::size_t at) {
    if (at + 1 >= parts.size() || parts[at]->isGrain()) return;
    LooseParts joined(*parts[at]);
    if (joined.size() + partsIn(*parts[at + 1]) > kMostParts) return;
    for (const Part& part : *parts[at + 1]) joined.insert(joined.size(), part);
    parts[at] = group(joined.all());
    parts.erase(at + 1);
}

/// Null when nothing is left.
Part withRemoved(const GrainPart& from, std::int32_t index) {
    if (from.isGrain()) return nullptr;
    LooseParts parts(from);
    const Place place = placeOf(from, index);
    if (Part left = withRemoved(*parts[place.part], place.index)) {
        parts[place.part] = std::move(left);
        joinWithNext(parts, place.part);
        if (place.part > 0) joinWithNext(parts, place.part - 1);
    } else {
        parts.erase(place.part);
    }
    return parts.size() > 0 ? group(parts.all()) : nullptr;
}

}  // namespace

void GrainPart::Release() const {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    if (isGrain()) {
        delete static_cast<const SingleGrain*>(this);
    } else {
        delete static_cast<const PartGroup*>(this);
    }
}

const CGrooveEvent& GrainPart::grain() const {
    return static_cast<const SingleGrain*>(this)->grain;
}

const Part* GrainPart::begin() const {
    return static_cast<const PartGroup*>(this)->inner.data();
}

const Part* GrainPart::end() const {
    return begin() + static_cast<const PartGroup*>(this)->count;
}

const GrainReach* GrainPart::reaches() const {
    return static_cast<const PartGroup*>(this)->reaches.data();
}

Part GrainList::part(CGrooveEvent grain) {
    return Part(new SingleGrain(std::move(grain)));
}

GrainList::GrainList(std::vector<Part> grains) {
    if (grains.empty()) return;
    std::vector<Part> level = std::move(grains);
    do {
        std::vector<Part> above;
        for (std::size_t at = 0; at < level.size(); at += kMostParts) {
            const std::size_t count = std::min(kMostParts, level.size() - at);
            above.push_back(group(std::span<Part>(level).subspan(at, count)));
        }
        level = std::move(above);
    } while (level.size() > 1);
    root_ = std::move(level.front());
}

const CGrooveEvent& GrainList::operator[](std::int32_t index) const {
    const GrainPart* part = root_.get();
    while (!part->isGrain()) {
        const Place place = placeOf(*part, index);
        part = (part->begin() + place.part)->get();
        index = place.index;
    }
    return part->grain();
}

void GrainList::insert(std::int32_t index, CGrooveEvent grain) {
    Part single = part(std::move(grain));
    if (!root_) {
        root_ = group({&single, 1});
        return;
    }
    OneOrTwo grown = withInserted(*root_, index, single);
    if (grown.second) {
        std::array<Part, 2> both{std::move(grown.first), std::move(grown.second)};
        root_ = group(both);
    } else {
        root_ = std::move(grown.first);
    }
}

void GrainList::replace(std::int32_t index, CGrooveEvent grain) {
    root_ = withReplaced(*root_, index, part(std::move(grain)));
}

void GrainList::remove(std::int32_t index) {
    Part left = withRemoved(*root_, index);
    while (left && left->level > 1 && partsIn(*left) == 1) left = *left->begin();
    root_ = std::move(left);
}

std::int32_t GrainList::firstFrom(std::int64_t ticks16) const {
    if (!root_ || root_->reach.ticks.lastStart < ticks16) return size();
    std::int32_t index = 0;
    const GrainPart* part = root_.get();
    while (!part->isGrain()) {
        const Part* inner = part->begin();
        for (; (*inner)->reach.ticks.lastStart < ticks16; ++inner) index += (*inner)->size;
        part = inner->get();
    }
    return index;
}

std::vector<Part> GrainList::parts() const {
    std::vector<Part> all;
    all.reserve(static_cast<std::size_t>(size()));
    const auto collect = [&](const GrainPart& part, const auto& self) -> void {
        for (const Part& inner : part) {
            if (inner->isGrain()) {
                all.push_back(inner);
            } else {
                self(*inner, self);
            }
        }
    };
    if (root_) collect(*root_, collect);
    return all;
}

}  // namespace marnoth
