#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "engine/model/GrainReach.h"
#include "engine/model/GrooveEvent.h"
#include "platform/com/RefPtr.h"

namespace marnoth {

/// A part of a grain list: a grain, or up to sixteen smaller parts. Never changed once it is made, so that
/// any number of lists on any threads share it; counted, and gone with the last list that holds it.
class GrainPart {
public:
    GrainPart(const GrainPart&) = delete;
    GrainPart& operator=(const GrainPart&) = delete;

    void AddRef() const { references_.fetch_add(1, std::memory_order_relaxed); }
    void Release() const;

    bool isGrain() const { return level == 0; }
    /// Of a part that is one.
    const CGrooveEvent& grain() const;
    /// The parts of a part that isn't a grain, in order.
    const RefPtr<const GrainPart>* begin() const;
    const RefPtr<const GrainPart>* end() const;
    /// The reach of each of them, side by side: whoever passes over most of them touches nothing else.
    const GrainReach* reaches() const;

    const std::int32_t level;  ///< 0 a grain; each part is one below the part that holds it
    const std::int32_t size;   ///< grains
    const GrainReach reach;

protected:
    GrainPart(std::int32_t partLevel, std::int32_t grains, const GrainReach& grainReach)
        : level(partLevel), size(grains), reach(grainReach) {}
    ~GrainPart() = default;

private:
    mutable std::atomic<std::uint32_t> references_ = 0;
};

/// The grains of a track in their order: a value that costs a pointer to copy. A list that is changed shares
/// with its former copies all but the few parts on the way to the change, so an edit of one grain of
/// thousands costs next to nothing, and what a block or undo holds stays as it was.
///
/// One thread at a time for one list; lists that share parts may be used on different threads. Changes may
/// throw `std::bad_alloc` and then leave the list as it was. Indices must be good.
class GrainList {
public:
    GrainList() = default;
    explicit GrainList(std::vector<RefPtr<const GrainPart>> grains);

    /// A grain as lists hold it.
    static RefPtr<const GrainPart> part(CGrooveEvent grain);

    std::int32_t size() const { return root_ ? root_->size : 0; }
    const CGrooveEvent& operator[](std::int32_t index) const;
    /// The whole list as one part; null when it is empty.
    const GrainPart* root() const { return root_.get(); }

    /// Puts a grain in front of the one at `index`; at the size, behind all.
    void insert(std::int32_t index, CGrooveEvent grain);
    void replace(std::int32_t index, CGrooveEvent grain);
    void remove(std::int32_t index);
    void clear() { root_.reset(); }

    /// The first grain that doesn't start before `ticks16`; the size when there is none.
    std::int32_t firstFrom(std::int64_t ticks16) const;
    /// All grains, to be put in another order or left out.
    std::vector<RefPtr<const GrainPart>> parts() const;
    /// Calls `visit(const CGrooveEvent&)` for each grain in order.
    template <class Visit>
    void forEach(Visit visit) const {
        if (root_) visitGrains(*root_, visit);
    }

    /// The very same grains, not only equal ones.
    friend bool operator==(const GrainList& a, const GrainList& b) { return a.root_ == b.root_; }

private:
    template <class Visit>
    static void visitGrains(const GrainPart& part, Visit& visit) {
        if (part.isGrain()) {
            visit(part.grain());
        } else {
            for (const auto& inner : part) visitGrains(*inner, visit);
        }
    }

    RefPtr<const GrainPart> root_;
};

}  // namespace marnoth
