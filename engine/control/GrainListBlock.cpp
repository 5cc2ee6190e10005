#include "engine/control/GrainListBlock.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <vector>

namespace marnoth {
namespace {

/// Entries of a wave's peak table: one more than it has points, since a grain's offset and its count are
/// rounded apart and may reach that far together.
std::int64_t entriesOf(const CWaveMem& wave) {
    return std::int64_t{wave.peakPoints} + 1;
}

/// Values of one entry: the minimum and the maximum of each channel.
std::size_t valuesPerEntry(const CWaveMem& wave) {
    return std::size_t{2} * wave.format.nChannels;
}

/// The grain's entries of the peak table; a project may have told anything.
std::int32_t plotLengthOf(const CGrooveEvent& grain) {
    const std::int64_t left = std::max<std::int64_t>(entriesOf(*grain.sample) - grain.peakOffset, 0);
    return static_cast<std::int32_t>(std::min<std::int64_t>(grain.peakCount, left));
}

/// The peak tables of a list, one behind the other.
class PeakTables {
public:
    /// Makes room for the table of `wave`, once. Gives where it begins, in values.
    std::size_t place(const CWaveMem& wave) {
        // Neighbours are cut from the same file as a rule.
        if (last_ < tables_.size() && tables_[last_].wave == &wave) return tables_[last_].first;
        const auto known = std::find_if(tables_.begin(), tables_.end(),
                                        [&](const Table& table) { return table.wave == &wave; });
        last_ = static_cast<std::size_t>(known - tables_.begin());
        if (known != tables_.end()) return known->first;
        const std::size_t count = static_cast<std::size_t>(entriesOf(wave)) * valuesPerEntry(wave);
        tables_.push_back({&wave, values_, count});
        values_ += count;
        return tables_.back().first;
    }
    std::size_t values() const { return values_; }
    void copyTo(float* to) const {
        for (const Table& table : tables_)
            std::copy_n(table.wave->peaks.get(), table.count, to + table.first);
    }

private:
    struct Table {
        const CWaveMem* wave;
        std::size_t first;
        std::size_t count;
    };

    std::vector<Table> tables_;
    std::size_t values_ = 0;
    std::size_t last_ = 0;
};

/// The entries of a list before its block is made: as long as that isn't there, they tell by number where
/// their peaks lie.
class Listing {
public:
    explicit Listing(std::int32_t grains) { entries_.reserve(static_cast<std::size_t>(grains)); }

    void add(const CGrooveEvent& grain, TailFlags tails) {
        Entry& entry = entries_.emplace_back();
        GrainListEntry& told = entry.told;
        told.startTicks = grain.startTicks;
        told.endTicks = grain.GetEnd(kTicks16, 0);
        told.transpose = grain.transpose;
        told.volume = static_cast<float>(grain.volume);
        told.extra = tails == TailFlags::told ? grain.tailOn : 0;
        if (grain.sample) addPlot(entry, grain);
    }

    /// Null without memory.
    GrainListEntry* makeBlock() const {
        const std::size_t entryBytes = entries_.size() * sizeof(GrainListEntry);
        if (tables_.values() > (std::numeric_limits<std::size_t>::max() - entryBytes) / sizeof(float))
            return nullptr;
        auto* const block =
            static_cast<GrainListEntry*>(CoTaskMemAlloc(entryBytes + tables_.values() * sizeof(float)));
        if (!block) return nullptr;
        float* const peaks = reinterpret_cast<float*>(block + entries_.size());
        tables_.copyTo(peaks);
        std::transform(entries_.begin(), entries_.end(), block, [=](const Entry& entry) {
            GrainListEntry told = entry.told;
            if (told.plotLength > 0) told.plotData = peaks + entry.firstPeak;
            return told;
        });
        return block;
    }

private:
    struct Entry {
        GrainListEntry told{};
        std::size_t firstPeak = 0;  ///< in values
    };

    void addPlot(Entry& entry, const CGrooveEvent& grain) {
        const CWaveMem& wave = *grain.sample;
        entry.told.channels = wave.format.nChannels;
        if (!wave.peaks) return;
        entry.told.plotLength = plotLengthOf(grain);
        if (entry.told.plotLength > 0)
            entry.firstPeak = tables_.place(wave) + grain.peakOffset * valuesPerEntry(wave);
    }

    std::vector<Entry> entries_;
    PeakTables tables_;
};

}  // namespace

HRESULT listGrains(const GrainList& grains, TailFlags tails, GrainListEntry** list, std::int32_t* count) try {
    if (grains.size() == 0) return S_OK;
    Listing listing(grains.size());
    grains.forEach([&](const CGrooveEvent& grain) { listing.add(grain, tails); });
    *list = listing.makeBlock();
    if (!*list) return E_OUTOFMEMORY;
    *count = grains.size();
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

}  // namespace marnoth
