#pragma once

#include <cstdint>

/// One frame of a mix kernel: formats, modes, gains. Internal to MixKernels.cpp.
namespace marnoth::mix {

/// A 24-bit sample as it lies in memory, lowest byte first.
struct Int24 {
    std::uint8_t bytes[3];
};
static_assert(sizeof(Int24) == 3);

enum class Mode { Add, Replace };

inline double widen(std::int16_t sample) {
    return sample;
}
inline double widen(Int24 sample) {
    return sample.bytes[0] | sample.bytes[1] << 8 | static_cast<std::int8_t>(sample.bytes[2]) * 65536;
}
inline double widen(float sample) {
    return sample;
}
inline double widen(double sample) {
    return sample;
}

template <class SourceSample, bool stereo>
struct Source {
    using Sample = SourceSample;
    static constexpr int channels = stereo ? 2 : 1;
};

template <class DestSample, bool stereo, Mode destMode>
struct Dest {
    using Sample = DestSample;
    static constexpr int channels = stereo ? 2 : 1;
    static constexpr Mode mode = destMode;

    /// The product is rounded to the destination's type before anything is added.
    template <class Product>
    static Sample over(Sample present, Product product) {
        const auto rounded = static_cast<Sample>(product);
        return mode == Mode::Add ? present + rounded : rounded;
    }
};

/// Held in f32, a gain gives the same products as in f64 if its value fits: the f64 product of two f32 values
/// is exact, so both ways round once.
template <class Gain, class Sample>
auto product(Sample sample, Gain gain) {
    if constexpr (sizeof(Gain) == sizeof(float)) {
        return sample * gain;
    } else {
        return widen(sample) * gain;
    }
}

/// A factor of exactly 1, which isn't even multiplied.
struct One {};

template <class Sample>
Sample product(Sample sample, One) {
    return sample;
}

/// Gains that stay.
template <class Value>
struct Constant {
    static constexpr bool ramped = false;
    Value leftGain;
    Value rightGain;

    Value left() const { return leftGain; }
    Value right() const { return rightGain; }
    void advance() {}
};

/// Both gains are 1.
struct Unity {
    static constexpr bool ramped = false;

    One left() const { return {}; }
    One right() const { return {}; }
    void advance() {}
};

/// Numbers of both sides, left first, that are added as one.
using Sides [[gnu::vector_size(16)]] = double;

/// Gains that run along a parabola.
struct Ramp {
    static constexpr bool ramped = true;
    Sides value;
    Sides step;
    Sides curve;

    double left() const { return value[0]; }
    double right() const { return value[1]; }
    void advance() {
        value += step;
        step += curve;
    }
};

template <class From, class To, class Gains>
[[gnu::always_inline]] inline void mixFrame(typename To::Sample* dest, const typename From::Sample* src,
                                            Gains& gains) {
    const auto left = product(src[0], gains.left());
    // Both products come before either is stored, so that they can be taken as one vector.
    const auto right = product(src[From::channels - 1], gains.right());
    if constexpr (To::channels == 2) {
        const auto mixedLeft = To::over(dest[0], left);
        const auto mixedRight = To::over(dest[1], right);
        dest[0] = mixedLeft;
        dest[1] = mixedRight;
    } else if constexpr (From::channels == 2) {
        dest[0] = To::over(dest[0], left + right);
    } else {
        dest[0] = To::over(dest[0], left);
    }
    gains.advance();
}

}  // namespace marnoth::mix
