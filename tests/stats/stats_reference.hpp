// What the functions of image statistics give, written out pixel by pixel from their documentation.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "lumcv/lumcv.h"
#include "stats/stats_exports.hpp"

namespace lumcv::test::stats {

/// The channel of interest of two sources, row after row, and the mask. Elements of all types are exact as Lum32f.
struct Sample
{
    Element element;
    int width;
    int height;
    std::vector<Lum32f> first;
    std::vector<Lum32f> second;
    std::vector<Lum8u> mask;
};

/// What a call has returned and written; a result that it does not have keeps the value below.
struct Outcome
{
    LumStatus status = 12345;
    Lum64f value = -12345.0;  ///< a mean or a norm
    Lum64f stdDev = -12346.0;
    Lum32f minVal = -12347.0f;
    Lum32f maxVal = -12348.0f;
    LumiPoint minIndex = {-12349, -12350};
    LumiPoint maxIndex = {-12351, -12352};
};

inline std::uint64_t bitsOf(Lum64f value)
{
    return std::bit_cast<std::uint64_t>(value);
}

/// Calls f(i, x) for each pixel that takes part, row after row: its index and its column.
template <class F>
void forEachChosen(const Sample& s, bool masked, F f)
{
    std::size_t i = 0;
    for (int y = 0; y < s.height; ++y) {
        for (int x = 0; x < s.width; ++x, ++i) {
            if (!masked || s.mask[i] != 0) {
                f(i, static_cast<std::size_t>(x));
            }
        }
    }
}

/// The upper half of the lanes is added to the lower half until one is left.
template <class T, std::size_t lanes>
T folded(std::array<T, lanes> sums)
{
    for (std::size_t half = lanes / 2; half > 0; half /= 2) {
        for (std::size_t i = 0; i < half; ++i) {
            sums[i] = sums[i] + sums[i + half];
        }
    }
    return sums[0];
}

// Means.

inline constexpr std::size_t kMeanLanes = 16;

struct Moments
{
    Lum64f sum = 0;
    Lum64f sumOfSquares = 0;
    std::uint64_t count = 0;
};

inline Moments momentsOf(const Sample& s, bool masked)
{
    Moments result;
    if (s.element == Element::F32) {
        std::array<Lum64f, kMeanLanes> sums{};
        std::array<Lum64f, kMeanLanes> squares{};
        forEachChosen(s, masked, [&](std::size_t i, std::size_t x) {
            const Lum64f pixel = s.first[i];
            sums[x % kMeanLanes] += pixel;
            squares[x % kMeanLanes] += pixel * pixel;
            ++result.count;
        });
        result.sum = folded(sums);
        result.sumOfSquares = folded(squares);
    } else {
        std::uint64_t sum = 0;
        std::uint64_t squares = 0;
        forEachChosen(s, masked, [&](std::size_t i, std::size_t) {
            const auto pixel = static_cast<std::uint64_t>(s.first[i]);
            sum += pixel;
            squares += pixel * pixel;
            ++result.count;
        });
        result.sum = static_cast<Lum64f>(sum);
        result.sumOfSquares = static_cast<Lum64f>(squares);
    }
    return result;
}

inline Lum64f meanOf(const Sample& s, bool masked)
{
    const Moments m = momentsOf(s, masked);
    return m.count == 0 ? 0.0 : m.sum / static_cast<Lum64f>(m.count);
}

/// Whether the one-pass deviation has lost too much to cancellation.
inline bool needsSecondPass(Lum64f mean, Lum64f stdDev)
{
    return mean * mean * 0.05 > stdDev * stdDev;
}

inline Lum64f deviationFrom(Lum64f mean, const Sample& s, bool masked, Lum64f count)
{
    const auto rounded = static_cast<Lum32f>(mean);
    std::array<Lum64f, kMeanLanes> squares{};
    forEachChosen(s, masked, [&](std::size_t i, std::size_t x) {
        const Lum32f difference = s.first[i] - rounded;
        squares[x % kMeanLanes] += static_cast<Lum64f>(difference) * static_cast<Lum64f>(difference);
    });
    return std::sqrt(folded(squares) / count);
}

struct MeanAndDeviation
{
    Lum64f mean = 0;
    Lum64f stdDev = 0;
    bool repaired = false;
};

inline MeanAndDeviation meanAndDeviationOf(const Sample& s, bool masked)
{
    const Moments m = momentsOf(s, masked);
    if (m.count == 0) {
        return {};
    }
    const auto count = static_cast<Lum64f>(m.count);
    const Lum64f scale = 1.0 / count;
    MeanAndDeviation result;
    result.mean = m.sum * scale;
    result.stdDev = std::sqrt(std::fabs(m.sumOfSquares * scale - result.mean * result.mean));
    if (s.element == Element::F32 && needsSecondPass(result.mean, result.stdDev)) {
        result.stdDev = deviationFrom(result.mean, s, masked, count);
        result.repaired = true;
    }
    return result;
}

// Norms.

inline constexpr std::size_t kNormLanes = 8;

/// Whose norm: the first source's, the second's, or their difference's.
enum class Subject
{
    First,
    Second,
    Difference
};

inline Lum32f subjectAt(const Sample& s, Subject subject, std::size_t i)
{
    return subject == Subject::First ? s.first[i] : subject == Subject::Second ? s.second[i] : s.first[i] - s.second[i];
}

/// The largest magnitude of the pixels that take part and are numbers; of integers and of floats.
inline Lum64f largestMagnitude(const Sample& s, Subject subject)
{
    Lum32f largest = 0;
    forEachChosen(s, true, [&](std::size_t i, std::size_t) {
        const Lum32f magnitude = std::fabs(subjectAt(s, subject, i));
        if (magnitude > largest) {
            largest = magnitude;
        }
    });
    return largest;
}

/// The exact sum of magnitudes or squares of 8u and 16u pixels.
inline Lum64f exactSum(const Sample& s, Subject subject, Sense sense)
{
    std::uint64_t sum = 0;
    forEachChosen(s, true, [&](std::size_t i, std::size_t) {
        const auto magnitude = static_cast<std::uint64_t>(std::fabs(subjectAt(s, subject, i)));
        sum += sense == Sense::L1 ? magnitude : magnitude * magnitude;
    });
    return static_cast<Lum64f>(sum);
}

/// The sum of magnitudes or squares of 32f pixels, in lanes of type Lane. A pixel outside the mask is multiplied by 0.
template <class Lane>
Lum64f laneSum(const Sample& s, Subject subject, Sense sense)
{
    Lum64f total = 0;
    std::size_t i = 0;
    for (int y = 0; y < s.height; ++y) {
        std::array<Lane, kNormLanes> lanes{};
        for (int x = 0; x < s.width; ++x, ++i) {
            const Lum32f factor = s.mask[i] != 0 ? 1.0f : 0.0f;
            const Lum32f masked = subjectAt(s, subject, i) * factor;
            const auto wide = static_cast<Lane>(masked);
            lanes[static_cast<std::size_t>(x) % kNormLanes] += sense == Sense::L1 ? std::fabs(wide) : wide * wide;
        }
        total += static_cast<Lum64f>(folded(lanes));
    }
    return total;
}

/// What a norm is made of: the maximum, the sum of magnitudes, or the sum of squares without its root.
inline Lum64f measureOf(const Export& e, const Sample& s, Subject subject)
{
    if (e.sense == Sense::Inf) {
        return largestMagnitude(s, subject);
    }
    if (s.element != Element::F32) {
        return exactSum(s, subject, e.sense);
    }
    const bool singleLanes = e.operation == Operation::Norm && e.sense == Sense::L2 && e.ofInterest;
    return singleLanes ? laneSum<Lum32f>(s, subject, e.sense) : laneSum<Lum64f>(s, subject, e.sense);
}

/// The not-a-number of a norm, whatever it comes from.
inline constexpr std::uint64_t kNotANumberBits = 0xFFF8000000000000;

inline Outcome normOf(const Export& e, const Sample& s)
{
    constexpr Lum64f infinity = std::numeric_limits<Lum64f>::infinity();
    const auto finished = [&e](Lum64f measure) { return e.sense == Sense::L2 ? std::sqrt(measure) : measure; };
    Outcome result;
    result.status = lumOk;
    if (e.operation != Operation::NormRel) {
        result.value = finished(measureOf(e, s, e.twoSources() ? Subject::Difference : Subject::First));
    } else {
        const Lum64f numerator = measureOf(e, s, Subject::Difference);
        const Lum64f denominator = measureOf(e, s, Subject::Second);
        if (denominator != 0) {
            result.value = finished(numerator / denominator);
        } else {
            result.status = lumWrnZeroDivisor;
            result.value = numerator > 0    ? infinity
                           : numerator == 0 ? std::bit_cast<Lum64f>(kNotANumberBits)
                                            : -infinity;
        }
    }
    if (std::isnan(result.value)) {
        result.value = std::bit_cast<Lum64f>(kNotANumberBits);
    }
    return result;
}

// Extrema.

inline Outcome extremaOf(const Sample& s, bool masked)
{
    Outcome result;
    result.status = lumOk;
    result.minVal = std::numeric_limits<Lum32f>::infinity();
    result.maxVal = -result.minVal;
    result.minIndex = result.maxIndex = {-1, 0};
    bool anyChosen = false;
    bool anyNumber = false;
    forEachChosen(s, masked, [&](std::size_t i, std::size_t x) {
        anyChosen = true;
        const Lum32f pixel = s.first[i];
        if (std::isnan(pixel)) {
            return;
        }
        const LumiPoint place = {static_cast<Lum32s>(x), static_cast<Lum32s>(i / static_cast<std::size_t>(s.width))};
        if (!anyNumber || pixel < result.minVal) {
            result.minVal = pixel;
            result.minIndex = place;
        }
        if (!anyNumber || pixel > result.maxVal) {
            result.maxVal = pixel;
            result.maxIndex = place;
        }
        anyNumber = true;
    });
    if (!anyChosen) {
        result.status = lumWrnEmptyMask;
        result.minVal = result.maxVal = 0;
        result.minIndex = result.maxIndex = {0, 0};
    }
    result.minVal += 0.0f;  // a negative zero becomes a positive one
    result.maxVal += 0.0f;
    return result;
}

/// What a call with all results wanted gives.
inline Outcome expectedOf(const Export& e, const Sample& s)
{
    if (e.isNorm()) {
        return normOf(e, s);
    }
    if (e.operation == Operation::MinMaxIndx) {
        return extremaOf(s, e.masked);
    }
    Outcome result;
    result.status = lumOk;
    if (e.operation == Operation::Mean) {
        result.value = meanOf(s, e.masked);
    } else {
        const MeanAndDeviation both = meanAndDeviationOf(s, e.masked);
        result.value = both.mean;
        result.stdDev = both.stdDev;
    }
    return result;
}

}  // namespace lumcv::test::stats
