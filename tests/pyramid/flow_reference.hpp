// Lucas-Kanade flow written out plainly, one point after the other and one sample after the other.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "filter/derivative_steps.hpp"
#include "lumcv/lumcv.h"

namespace lumcv::test::flow {

struct Settings
{
    int winSize = 9;
    int maxLev = 0;
    int maxIter = 10;
    Lum32f threshold = 0.01f;
};

/// What becomes of one point.
struct Followed
{
    Lum32f x = 0;
    Lum32f y = 0;
    int status = 0;
    Lum32f error = 0;
};

/// How often the reference went which way, so that a sweep can tell that it has been everywhere.
struct Ways
{
    long followed = 0;
    long lostOutside = 0;    ///< no sample is valid in both windows
    long lostFlat = 0;       ///< the determinant is too small
    long shortSteps = 0;     ///< a level ended by the threshold
    long swings = 0;         ///< a level ended by a swing, not in its first iteration
    long firstSwings = 0;    ///< a level ended by a first step that is short
    long allIterations = 0;  ///< a level ended by the number of iterations
    long clipped = 0;        ///< an area smaller than the window
    long areaChanges = 0;    ///< the area of an iteration is not that of the one before
};

/// The window on one axis.
struct Axis
{
    Axis(Lum32f point, int winSize, int size)
    {
        const Lum32f corner = point - static_cast<Lum32f>(winSize + 1) * 0.5f;
        const Lum32f whole = std::floor(corner);
        fraction = corner - whole;
        for (int k = 0; k < winSize + 2; ++k) {
            const Lum64f pixel = static_cast<Lum64f>(whole) + k;
            const bool first = pixel >= 0 && pixel <= size - 1;
            const bool second = pixel + 1 >= 0 && pixel + 1 <= size - 1;
            valid.push_back(first && (second || fraction == 0));
            pixels.push_back(valid.back() ? static_cast<int>(pixel) : -1);
        }
    }

    Lum32f fraction;
    std::vector<bool> valid;
    std::vector<int> pixels;  ///< of the valid samples: the left or upper one of both
};

template <class T>
class Reference
{
    /// Of 8u in integers, of the others in single precision; planes of pixels and patches alike.
    using Value = std::conditional_t<std::is_same_v<T, Lum8u>, int, Lum32f>;

    struct Plane
    {
        Plane(int planeWidth, int planeHeight)
            : width(planeWidth),
              height(planeHeight),
              values(static_cast<std::size_t>(planeWidth) * static_cast<std::size_t>(planeHeight))
        {
        }
        Value& at(int x, int y)
        {
            return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
        }
        Value at(int x, int y) const
        {
            return const_cast<Plane*>(this)->at(x, y);
        }

        int width;
        int height;
        std::vector<Value> values;
    };

  public:
    Reference(const LumiPyramidRecord& first, const LumiPyramidRecord& second, int maxLev)
        : scales_(first.pLayerScales, first.pLayerScales + maxLev + 1)
    {
        for (int l = 0; l <= maxLev; ++l) {
            first_.push_back(image(first, l));
            second_.push_back(image(second, l));
            alongX_.push_back(derivative(first_.back(), true));
            alongY_.push_back(derivative(first_.back(), false));
        }
    }

    Followed follow(Lum32f prevX, Lum32f prevY, const Settings& settings, Ways& ways) const
    {
        Followed point = {0, 0, settings.maxLev + 1, 0};
        Lum32f vx = prevX, vy = prevY;
        for (int l = settings.maxLev; l >= 0; --l) {
            const Lum64f scale = scales_[static_cast<std::size_t>(l)];
            vx = static_cast<Lum32f>(vx * scale);
            vy = static_cast<Lum32f>(vy * scale);
            const bool found = onLevel(static_cast<std::size_t>(l), static_cast<Lum32f>(prevX * scale),
                                       static_cast<Lum32f>(prevY * scale), vx, vy, point.error, settings, ways);
            point.status = found ? l : l + 1;
            if (l > 0 || !found) {
                vx = static_cast<Lum32f>(vx * (1.0 / scale));
                vy = static_cast<Lum32f>(vy * (1.0 / scale));
            }
            if (!found) {
                break;
            }
        }
        ways.followed += point.status == 0;
        point.x = vx;
        point.y = vy;
        return point;
    }

  private:
    static Plane image(const LumiPyramidRecord& pyramid, int l)
    {
        const LumiSize size = pyramid.pLayerSizes[l];
        Plane plane(size.width, size.height);
        for (int y = 0; y < size.height; ++y) {
            const auto* const row = reinterpret_cast<const T*>(static_cast<const unsigned char*>(pyramid.ppLayers[l]) +
                                                               static_cast<std::ptrdiff_t>(y) * pyramid.pLayerSteps[l]);
            for (int x = 0; x < size.width; ++x) {
                plane.at(x, y) = static_cast<Value>(row[x]);
            }
        }
        return plane;
    }

    static Plane derivative(const Plane& image, bool alongX)
    {
        constexpr bool isInteger = std::is_same_v<T, Lum8u>;
        const auto pixel = [&](int x, int y) {
            const Value value = image.at(x < 0              ? 0
                                         : x >= image.width ? image.width - 1
                                                            : x,
                                         y < 0               ? 0
                                         : y >= image.height ? image.height - 1
                                                             : y);
            return std::is_same_v<T, Lum16u> ? static_cast<Value>(value * 0.03125f) : value;
        };
        const auto step = alongX ? derivatives::negatedDerivative3<Value> : derivatives::scharrSmoothing3<Value>;
        const auto across = alongX ? derivatives::scharrSmoothing3<Value> : derivatives::negatedDerivative3<Value>;
        Plane result(image.width, image.height);
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                Value rows[3];
                for (int i = 0; i < 3; ++i) {
                    const Value row[3] = {pixel(x - 1, y + i - 1), pixel(x, y + i - 1), pixel(x + 1, y + i - 1)};
                    rows[i] = step(row + 1);
                }
                const Value sum = across(rows + 1);
                if constexpr (isInteger) {
                    result.at(x, y) = sum >> 4;
                } else {
                    result.at(x, y) = std::is_same_v<T, Lum32f> ? sum * 0.03125f : sum;
                }
            }
        }
        return result;
    }

    /// A sample between four pixels. `shift` is what leaves seven fractional bits of the image's scale.
    static Value between(const Plane& plane, const Axis& alongX, const Axis& alongY, std::size_t kx, std::size_t ky,
                         int shift)
    {
        const Lum32f rx = alongX.fraction, ry = alongY.fraction;
        const int x = alongX.pixels[kx], y = alongY.pixels[ky];
        const int right = rx == 0 ? x : x + 1, below = ry == 0 ? y : y + 1;
        const Value p00 = plane.at(x, y), p01 = plane.at(right, y);
        const Value p10 = plane.at(x, below), p11 = plane.at(right, below);
        const Lum32f w00 = (1 - rx) * (1 - ry), w01 = rx * (1 - ry), w10 = (1 - rx) * ry, w11 = rx * ry;
        if constexpr (std::is_same_v<T, Lum8u>) {
            const auto fixed = [](Lum32f weight) { return static_cast<int>(std::nearbyint(weight * 16384)); };
            const int W00 = fixed(w00), W01 = fixed(w01), W10 = fixed(w10), W11 = 16384 - W00 - W01 - W10;
            return (W00 * p00 + W01 * p01 + W10 * p10 + W11 * p11 + (1 << (shift - 1))) >> shift;
        } else {
            const Lum32f a = w00 * p00, b = w01 * p01, c = w10 * p10, d = w11 * p11;
            return ((a + b) + c) + d;
        }
    }

    /// One sample of the area.
    struct Sample
    {
        std::size_t column;  ///< counted from the first of the area
        Value difference;    ///< I - J
        Value ix;
        Value iy;
    };

    static Lum64f sum(const std::vector<Sample>& samples, Value Sample::*left, Value Sample::*right)
    {
        if constexpr (std::is_same_v<T, Lum8u>) {
            std::int64_t total = 0;
            for (const Sample& sample : samples) {
                total += std::int64_t{sample.*left} * (sample.*right);
            }
            return static_cast<Lum64f>(total);
        } else {
            std::array<Lum64f, 4> parts = {0, 0, 0, 0};
            for (const Sample& sample : samples) {
                parts[sample.column % 4] += static_cast<Lum64f>(sample.*left) * static_cast<Lum64f>(sample.*right);
            }
            return (parts[0] + parts[1]) + (parts[2] + parts[3]);
        }
    }

    bool onLevel(std::size_t l, Lum32f ux, Lum32f uy, Lum32f& vx, Lum32f& vy, Lum32f& error, const Settings& settings,
                 Ways& ways) const
    {
        constexpr Lum64f smallStep = 0.00034526698300124393;
        const Axis uAlongX(ux, settings.winSize, first_[l].width);
        const Axis uAlongY(uy, settings.winSize, first_[l].height);
        const auto n = static_cast<std::size_t>(settings.winSize) + 2;
        std::vector<std::size_t> areaBefore;
        Lum64f gxx = 0, gxy = 0, gyy = 0, lastX = 0, lastY = 0;
        std::vector<Sample> samples;
        bool ended = false;
        for (int iteration = 0; iteration < settings.maxIter && !ended; ++iteration) {
            const Axis vAlongX(vx, settings.winSize, second_[l].width);
            const Axis vAlongY(vy, settings.winSize, second_[l].height);
            std::vector<std::size_t> area;
            samples.clear();
            for (std::size_t ky = 0; ky < n; ++ky) {
                std::size_t column = 0;
                for (std::size_t kx = 0; kx < n; ++kx) {
                    if (!uAlongX.valid[kx] || !vAlongX.valid[kx] || !uAlongY.valid[ky] || !vAlongY.valid[ky]) {
                        continue;
                    }
                    area.push_back(ky * n + kx);
                    const Value i = between(first_[l], uAlongX, uAlongY, kx, ky, 7);
                    const Value j = between(second_[l], vAlongX, vAlongY, kx, ky, 7);
                    samples.push_back({column++, i - j, between(alongX_[l], uAlongX, uAlongY, kx, ky, 8),
                                       between(alongY_[l], uAlongX, uAlongY, kx, ky, 8)});
                }
            }
            if (area.empty()) {
                ++ways.lostOutside;
                return false;
            }
            ways.clipped += area.size() < n * n;
            ways.areaChanges += iteration > 0 && area != areaBefore;
            areaBefore = area;
            gxx = sum(samples, &Sample::ix, &Sample::ix);
            gxy = sum(samples, &Sample::ix, &Sample::iy);
            gyy = sum(samples, &Sample::iy, &Sample::iy);
            const Lum64f bx = sum(samples, &Sample::difference, &Sample::ix);
            const Lum64f by = sum(samples, &Sample::difference, &Sample::iy);
            const Lum64f det = gxx * gyy - gxy * gxy;
            if (!(det >= 2.220446049250313e-16)) {
                ++ways.lostFlat;
                return false;
            }
            const Lum64f dx = (gyy * bx - gxy * by) / det, dy = (gxx * by - gxy * bx) / det;
            vx = static_cast<Lum32f>(vx + dx);
            vy = static_cast<Lum32f>(vy + dy);
            const Lum64f threshold = settings.threshold;
            if (dx * dx + dy * dy < threshold * threshold) {
                ++ways.shortSteps;
                ended = true;
            } else if (std::abs(dx + lastX) < smallStep && std::abs(dy + lastY) < smallStep) {
                ++(iteration == 0 ? ways.firstSwings : ways.swings);
                vx = static_cast<Lum32f>(vx - 0.5 * dx);
                vy = static_cast<Lum32f>(vy - 0.5 * dy);
                ended = true;
            }
            lastX = dx;
            lastY = dy;
        }
        ways.allIterations += !ended;
        const Lum64f squares = sum(samples, &Sample::difference, &Sample::difference);
        const Lum64f unit = std::is_same_v<T, Lum8u> ? 0.0078125 : 1.0;
        error =
            squares > 0 ? static_cast<Lum32f>(std::sqrt(squares / static_cast<Lum64f>(samples.size())) * unit) : 0.0f;
        return true;
    }

    std::vector<Lum64f> scales_;
    std::vector<Plane> first_, second_, alongX_, alongY_;
};

}  // namespace lumcv::test::flow
