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

bool isPlotted(const CGrooveEvent& grain) {
    return grain.sample && grain.sample->peaks && plotLengthOf(grain) > 0;
}

GrainListEntry describe(const CGrooveEvent& grain, TailFlags tails) {
    GrainListEntry entry{};
    entry.startTicks = grain.startTicks;
    entry.endTicks = grain.GetEnd(kTicks16, 0);
    entry.transpose = grain.transpose;
    entry.volume = static_cast<float>(grain.volume);
    entry.extra = tails == TailFlags::told ? grain.tailOn : 0;
    if (!grain.sample) return entry;
    entry.channels = grain.sample->format.nChannels;
    if (grain.sample->peaks) entry.plotLength = plotLengthOf(grain);
    return entry;
}

}  // namespace

HRESULT listGrains(const GrainList& grains, TailFlags tails, GrainListEntry** list, std::int32_t* count) try {
    const auto size = static_cast<std::size_t>(grains.size());
    if (size == 0) return S_OK;
    PeakTables tables;
    grains.forEach([&](const CGrooveEvent& grain) {
        if (isPlotted(grain)) tables.place(*grain.sample);
    });
    const std::size_t entryBytes = size * sizeof(GrainListEntry);
    if (tables.values() > (std::numeric_limits<std::size_t>::max() - entryBytes) / sizeof(float))
        return E_OUTOFMEMORY;
    auto* const entries =
        static_cast<GrainListEntry*>(CoTaskMemAlloc(entryBytes + tables.values() * sizeof(float)));
    if (!entries) return E_OUTOFMEMORY;
    float* const peaks = reinterpret_cast<float*>(entries + size);
    tables.copyTo(peaks);
    GrainListEntry* entry = entries;
    grains.forEach([&](const CGrooveEvent& grain) {
        *entry = describe(grain, tails);
        if (isPlotted(grain)) {
            const CWaveMem& wave = *grain.sample;
            entry->plotData = peaks + tables.place(wave) + grain.peakOffset * valuesPerEntry(wave);
        }
        ++entry;
    });
    *list = entries;
    *count = grains.size();
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

}  // namespace marnoth
