#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr float kAudible = 1e-6f;
/// In which the round before fades out.
constexpr double kSecondsOfFade = 0.05;

struct Take {
    int rate = 0;
    std::vector<float> samples;  ///< stereo, from the first frame on that is heard
};

Take readTake(const std::string& name) {
    SF_INFO info{};
    SNDFILE* const file = sf_open(name.c_str(), SFM_READ, &info);
    if (!file || info.channels != 2) throw std::runtime_error(name + " is no stereo recording");
    Take take{info.samplerate, std::vector<float>(static_cast<std::size_t>(info.frames) * 2)};
    sf_readf_float(file, take.samples.data(), info.frames);
    sf_close(file);
    const auto first =
        std::ranges::find_if(take.samples, [](float sample) { return std::abs(sample) > kAudible; });
    take.samples.erase(take.samples.begin(), first - (first - take.samples.begin()) % 2);
    return take;
}

int compare(const char* one, const char* other, double seconds, double tolerance, int rounds) {
    const Take a = readTake(one);
    const Take b = readTake(other);
    const auto round = static_cast<std::size_t>(std::llround(seconds * a.rate)) * 2;
    const std::size_t count = round * static_cast<std::size_t>(rounds);
    if (count == 0 || a.rate != b.rate || a.samples.size() < count || b.samples.size() < round) {
        std::cerr << "there are " << a.samples.size() / 2 << " and " << b.samples.size() / 2
                  << " audible frames, at " << a.rate << " and " << b.rate << "\n";
        return 1;
    }
    const auto fade = static_cast<std::size_t>(kSecondsOfFade * a.rate) * 2;
    double most = 0;
    std::size_t where = 0;
    bool isAlike = true;
    for (std::size_t i = 0; i < count; ++i) {
        if (i >= round && i % round < fade) continue;
        const double difference = std::abs(static_cast<double>(a.samples[i]) - b.samples[i % round]);
        isAlike = isAlike && difference <= tolerance;  // what is no number isn't
        if (difference <= most) continue;
        most = difference;
        where = i / 2;
    }
    std::cout << "largest difference in " << count / 2 << " frames: " << most << " at " << where << "\n";
    return isAlike ? 0 : 1;
}

}  // namespace

/// Compares stereo recordings from where each begins to be heard:
///     compare_takes A.wav B.wav SECONDS TOLERANCE [ROUNDS]
/// With ROUNDS the first goes round what the second plays once, in so many seconds.
int main(int argc, char** argv) try {
    if (argc < 5 || argc > 6)
        throw std::runtime_error("compare_takes A.wav B.wav SECONDS TOLERANCE [ROUNDS]");
    return compare(argv[1], argv[2], std::atof(argv[3]), std::atof(argv[4]),
                   argc > 5 ? std::atoi(argv[5]) : 1);
} catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 2;
}
