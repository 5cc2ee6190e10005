#include "shells/cli/LoopRates.h"

#include "sample/AcidWave.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/files/ProjectFiles.h"

namespace marnoth {

void LoopRates::addLoop(const std::string& file) {
    CAcidWave wave;
    openLoopFile(wave, file);
    add(wave.format.nSamplesPerSec);
}

void LoopRates::addProject(const std::string& file) {
    for (const ProjectFile& loop : readProjectFile(file).files) add(loop.wave->format.nSamplesPerSec);
}

void LoopRates::add(std::uint32_t rate) {
    if (rate >= kLowest && rate <= kHighest) ++files_[rate];
}

std::uint32_t LoopRates::chosen() const {
    std::uint32_t best = kUsual;
    int most = 0;
    for (const auto& [rate, count] : files_) {
        if (count < most) continue;
        best = rate;
        most = count;
    }
    return best;
}

std::string LoopRates::tellDifference() const {
    if (files_.size() < 2) return {};
    std::string rates;
    for (const auto& [rate, count] : files_)
        rates += (rates.empty() ? "" : ", ") + std::to_string(count) + " of " + std::to_string(rate);
    return "the loops differ in frames per second (" + rates + "): this is rendered with " +
           std::to_string(chosen()) + "; --rate sets another";
}

}  // namespace marnoth
