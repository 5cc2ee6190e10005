#pragma once

#include <memory>
#include <utility>

namespace marnoth {

/// Gives back what samples lie in: an array of their own, or their share of a run.
struct SamplesRelease {
    SamplesRelease() = default;
    SamplesRelease(std::default_delete<float[]>) {}
    explicit SamplesRelease(std::shared_ptr<const void> sharedRun) : run(std::move(sharedRun)) {}

    void operator()(float* samples) const {
        if (!run) delete[] samples;
    }

    std::shared_ptr<const void> run;
};

/// The values of a wave.
using Samples = std::unique_ptr<float[], SamplesRelease>;

}  // namespace marnoth
