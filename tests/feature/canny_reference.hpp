// Canny edges written out plainly: magnitudes and directions of one pixel at a time, suppression over the whole image,
// then a flood from the strong pixels. Magnitudes are held in double precision, which keeps integers and floats as they
// are.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "filter/extended_image.hpp"
#include "lumcv/feature.h"
#include "support/image.hpp"

namespace lumcv::test::canny {

struct Gradient
{
    double magnitude = 0;  // 0 where the pixel is no candidate
    int direction = 4;
};

// The candidates of a ROI; outside of it there are none.
class Gradients
{
  public:
    explicit Gradients(LumiSize size)
        : size_(size), pixels_(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height))
    {
    }
    LumiSize size() const
    {
        return size_;
    }
    Gradient& at(int row, int column)
    {
        return pixels_[static_cast<std::size_t>(row) * static_cast<std::size_t>(size_.width) +
                       static_cast<std::size_t>(column)];
    }
    Gradient get(int row, int column) const
    {
        const bool inside = row >= 0 && row < size_.height && column >= 0 && column < size_.width;
        return inside ? const_cast<Gradients*>(this)->at(row, column) : Gradient{};
    }

  private:
    LumiSize size_;
    std::vector<Gradient> pixels_;
};

inline bool survives(const Gradients& gradients, int row, int column)
{
    constexpr int rowOfFirst[] = {0, 0, -1, -1, -1};
    constexpr int columnOfFirst[] = {0, -1, 1, 0, -1};
    const Gradient pixel = gradients.get(row, column);
    if (pixel.magnitude == 0) {
        return false;
    }
    const int code = pixel.direction;
    const double first = gradients.get(row + rowOfFirst[code], column + columnOfFirst[code]).magnitude;
    const double second = gradients.get(row - rowOfFirst[code], column - columnOfFirst[code]).magnitude;
    if (pixel.magnitude > first && pixel.magnitude > second) {
        return true;
    }
    return (code == 1 || code == 3) && pixel.magnitude > first && pixel.magnitude == second;
}

enum class Mark : std::uint8_t
{
    None,
    Weak,
    Edge
};

// Row by row; a high threshold that is not a number leaves no pixel strong.
inline std::vector<Lum8u> edges(const Gradients& gradients, double highThreshold)
{
    const LumiSize size = gradients.size();
    const auto index = [&](int row, int column) {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(size.width) + static_cast<std::size_t>(column);
    };
    std::vector<Mark> marks(index(size.height, 0), Mark::None);
    std::vector<std::pair<int, int>> open;
    for (int row = 0; row < size.height; ++row) {
        for (int column = 0; column < size.width; ++column) {
            if (!survives(gradients, row, column)) {
                continue;
            }
            const bool strong = gradients.get(row, column).magnitude > highThreshold;
            marks[index(row, column)] = strong ? Mark::Edge : Mark::Weak;
            if (strong) {
                open.emplace_back(row, column);
            }
        }
    }
    while (!open.empty()) {
        const auto [row, column] = open.back();
        open.pop_back();
        for (int y = row - 1; y <= row + 1; ++y) {
            for (int x = column - 1; x <= column + 1; ++x) {
                const bool inside = y >= 0 && y < size.height && x >= 0 && x < size.width;
                if (inside && marks[index(y, x)] == Mark::Weak) {
                    marks[index(y, x)] = Mark::Edge;
                    open.emplace_back(y, x);
                }
            }
        }
    }
    std::vector<Lum8u> result;
    result.reserve(marks.size());
    for (const Mark mark : marks) {
        result.push_back(mark == Mark::Edge ? Lum8u{255} : Lum8u{0});
    }
    return result;
}

inline int diagonalOf(bool dxNegative, bool dyNegative)
{
    return dxNegative != dyNegative ? 2 : 4;
}

inline int floatDirection(Lum32f dx, Lum32f dy)
{
    const Lum32f ax = std::fabs(dx);
    const Lum32f ay = std::fabs(dy);
    if (ay > ax * std::bit_cast<Lum32f>(0x401A827Au)) {
        return 3;
    }
    if (ax * std::bit_cast<Lum32f>(0x3ED413CDu) > ay) {
        return 1;
    }
    return diagonalOf(std::signbit(dx), std::signbit(dy));
}

inline int wordDirection(int dx, int dy)
{
    const Lum32f ax = static_cast<Lum32f>(std::abs(dx));
    const Lum32f ay = static_cast<Lum32f>(std::abs(dy));
    if (ay > static_cast<Lum32f>(static_cast<double>(ax) * 2.414213562373095)) {
        return 3;
    }
    if (static_cast<Lum32f>(static_cast<double>(ax) * 0.41421356237309503) > ay) {
        return 1;
    }
    return diagonalOf(dx < 0, dy < 0);
}

// Towards zero, into 32 bits; one that does not fit, or is no number, exceeds every magnitude.
inline double integerThreshold(Lum32f threshold)
{
    return threshold < 2147483648.0f ? std::trunc(static_cast<double>(threshold)) : 2147483647.0;
}

inline Gradient planeGradient(Lum16s dx, Lum16s dy, LumiNorm norm, double low)
{
    const std::int64_t x = dx;
    const std::int64_t y = dy;
    std::int64_t magnitude = norm == lumNormL2 ? x * x + y * y : std::abs(x) + std::abs(y);
    if (magnitude > 2147483647) {
        magnitude -= std::int64_t{1} << 32;  // as 32 bits hold it
    }
    const auto m = static_cast<double>(magnitude);
    return m > low ? Gradient{m, wordDirection(dx, dy)} : Gradient{};
}

inline Gradient planeGradient(Lum32f dx, Lum32f dy, LumiNorm norm, double low)
{
    const Lum32f squareX = dx * dx;
    const Lum32f squareY = dy * dy;
    const Lum32f m = norm == lumNormL2 ? squareX + squareY : std::fabs(dx) + std::fabs(dy);
    return static_cast<double>(m) > low ? Gradient{static_cast<double>(m), floatDirection(dx, dy)} : Gradient{};
}

template <class T>
double planeThreshold(Lum32f threshold, LumiNorm norm)
{
    const Lum32f used = norm == lumNormL2 ? threshold * threshold : threshold;
    return std::is_same_v<T, Lum16s> ? integerThreshold(used) : static_cast<double>(used);
}

// Of planes of the same size that offer row(y).
template <class T, class Plane>
std::vector<Lum8u> planeEdges(const Plane& dx, const Plane& dy, LumiSize size, Lum32f lowThreshold,
                              Lum32f highThreshold, LumiNorm norm)
{
    const double low = planeThreshold<T>(lowThreshold, norm);
    Gradients gradients(size);
    for (int row = 0; row < size.height; ++row) {
        const T* const xs = dx.row(row);
        const T* const ys = dy.row(row);
        for (int column = 0; column < size.width; ++column) {
            gradients.at(row, column) = planeGradient(xs[column], ys[column], norm, low);
        }
    }
    return edges(gradients, planeThreshold<T>(highThreshold, norm));
}

inline int angleDirection(int dx, int dy)
{
    auto angle = static_cast<Lum32f>(std::atan2(static_cast<double>(dy), static_cast<double>(dx)));
    if (angle < 0) {
        angle += 3.14159274f;
    }
    if (angle < 0.3926991f) {
        return 1;
    }
    if (angle <= 1.1780972f) {
        return 4;
    }
    if (angle < 1.9634955f) {
        return 3;
    }
    return angle <= 2.7488937f ? 2 : 1;
}

inline Gradient imageGradient(int dx, int dy, LumiNorm norm, bool isLow, Lum32f low)
{
    const auto x = static_cast<Lum32f>(dx);
    const auto y = static_cast<Lum32f>(dy);
    Lum32f m = std::fabs(x) + std::fabs(y);
    if (norm == lumNormL2) {
        const Lum32f squareX = x * x;
        const Lum32f squareY = y * y;
        m = std::sqrt(isLow ? squareX + squareY : static_cast<Lum32f>(dx * dx + dy * dy));
    }
    if (!(m > low)) {
        return {};
    }
    return {static_cast<double>(m), isLow ? angleDirection(dx, dy) : floatDirection(x, y)};
}

struct DerivativeWeights
{
    std::vector<int> difference;  // the first is that of the pixel to the left, or above
    std::vector<int> smoothing;
};

inline DerivativeWeights derivativeWeights(LumiFilterType filter, LumiMaskSize mask)
{
    if (mask == lumMask5x5) {
        return {{-1, -2, 0, 2, 1}, {1, 4, 6, 4, 1}};
    }
    return filter == lumFilterScharr ? DerivativeWeights{{-1, 0, 1}, {3, 10, 3}}
                                     : DerivativeWeights{{-1, 0, 1}, {1, 2, 1}};
}

// The derivatives dx and dy of each pixel of an image that offers row(y), also for the rows in memory around the ROI.
template <class Source>
std::vector<std::pair<int, int>> imageDerivatives(const Source& source, LumiSize size, LumiFilterType filter,
                                                  LumiMaskSize mask, LumiBorderType border, Lum8u borderValue)
{
    const DerivativeWeights weights = derivativeWeights(filter, mask);
    const int side = static_cast<int>(weights.smoothing.size());
    const int reach = side / 2;
    const ExtendedImage<Lum8u> image(source, size, 1, Margins::all(reach), border, &borderValue);
    std::vector<std::pair<int, int>> result;
    for (int row = 0; row < size.height; ++row) {
        for (int column = 0; column < size.width; ++column) {
            int dx = 0;
            int dy = 0;
            for (int i = 0; i < side; ++i) {
                const Lum8u* const pixels = image.row(row + i - reach).data() + column;
                const auto y = static_cast<std::size_t>(i);
                for (int j = 0; j < side; ++j) {
                    const auto x = static_cast<std::size_t>(j);
                    dx += weights.smoothing[y] * weights.difference[x] * pixels[j];
                    dy += weights.difference[y] * weights.smoothing[x] * pixels[j];
                }
            }
            result.emplace_back(dx, dy);
        }
    }
    return result;
}

inline std::vector<Lum8u> derivativeEdges(const std::vector<std::pair<int, int>>& derivatives, LumiSize size,
                                          Lum32f lowThreshold, Lum32f highThreshold, LumiNorm norm)
{
    Gradients gradients(size);
    auto derivative = derivatives.begin();
    for (int row = 0; row < size.height; ++row) {
        for (int column = 0; column < size.width; ++column, ++derivative) {
            gradients.at(row, column) =
                imageGradient(derivative->first, derivative->second, norm, size.height < 4, lowThreshold);
        }
    }
    return edges(gradients, static_cast<double>(highThreshold));
}

// What the size queries report, before it is cut to its low bits.
inline std::uint64_t planeBytes(std::uint64_t width, std::uint64_t height)
{
    const std::uint64_t p = width < 65533 && height < 65533 ? 5 : 9;
    return 16 * width + p * (width + 2) * (height + 2) + 160;
}

inline std::uint64_t imageBytes(std::uint64_t width, std::uint64_t height, LumiMaskSize mask)
{
    const auto upTo32 = [](std::uint64_t bytes) { return (bytes + 31) / 32 * 32; };
    const std::uint64_t k = mask == lumMask3x3 ? 3 : 5;
    const std::uint64_t w = width + k - 1;
    const std::uint64_t h = height + k - 1;
    const std::uint64_t copied = width < k || height < k ? upTo32(w * h) : 0;
    return upTo32(16 * w) + upTo32(w * h) + upTo32(4 * w * h) + 64 + copied;
}

}  // namespace lumcv::test::canny
