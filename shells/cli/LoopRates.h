#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace marnoth {

/// The rates of the files that a render plays, and which of them it takes where its user names none.
class LoopRates {
public:
    static constexpr std::uint32_t kUsual = 44100;  ///< frames per second, where there is no file to go by
    static constexpr std::uint32_t kLowest = 1000;  ///< of a render; files beyond these don't count
    static constexpr std::uint32_t kHighest = 768000;

    void addLoop(const std::string& file);
    void addProject(const std::string& file);

    /// That of most files, so that the fewest are converted; of two that are as many the higher one.
    std::uint32_t chosen() const;
    /// What differs, in a sentence; empty when all have one rate.
    std::string tellDifference() const;

private:
    void add(std::uint32_t rate);

    std::map<std::uint32_t, int> files_;  ///< how many there are of each
};

}  // namespace marnoth
