// Hough lines as they are described: a full accumulator in place of rings, a sorted list of all peaks, and a walk
// through a plane of bytes in place of bits.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "lumcv/lumcv.h"

namespace lumcv::test::hough {

constexpr Lum32f kAngleLimit = 3.14159f;

// The cells of the accumulator: angles 0 to lastAngle, and rhoCells for each.
struct Cells
{
    int lastAngle = 0;
    int rhoCells = 0;
    int centre = 0;
};

// Too many angles or cells count as 0x7fffffff.
inline Cells cellsOf(LumiSize size, LumiPointPolar delta)
{
    const auto limited = [](double count) { return static_cast<int>(std::min(count, 2147483647.0)); };
    Cells cells;
    cells.lastAngle = limited(double{kAngleLimit} / double{delta.theta});
    const std::int64_t range = 2 * (std::int64_t{size.width} + size.height) + 1;
    cells.rhoCells = limited(double{static_cast<Lum32f>(range) / delta.rho});
    cells.centre = (cells.rhoCells - 1) / 2;
    return cells;
}

// The size queries count in 32 bits without sign.
inline std::uint32_t standardBytes(LumiSize size, LumiPointPolar delta, int maxLineCount)
{
    const Cells cells = cellsOf(size, delta);
    const auto u = [](int value) { return static_cast<std::uint32_t>(value); };
    return (4 * u(size.width) + 64) * u(size.height) + 16 * u(maxLineCount) + 8 * u(cells.lastAngle) + 8 +
           16 * (u(cells.rhoCells) + 4) + 224;
}

inline bool standardBytesExceed(LumiSize size, LumiPointPolar delta, int maxLineCount)
{
    const Cells cells = cellsOf(size, delta);
    const double bytes = ((size.width + 12.0) * 4 + 16) * size.height + (16.0 * maxLineCount + 224) +
                         16.0 * (cells.rhoCells + 4.0) + 4 * (2.0 * cells.lastAngle + 2);
    return bytes > 2147483647.0;
}

inline std::uint32_t progressiveSpecBytes(LumiPointPolar delta)
{
    return 8 * static_cast<std::uint32_t>(cellsOf({1, 1}, delta).lastAngle) + 20;
}

inline std::uint32_t progressiveBytes(LumiSize size, LumiPointPolar delta)
{
    const Cells cells = cellsOf(size, delta);
    const auto u = [](int value) { return static_cast<std::uint32_t>(value); };
    return (u(size.width >> 3) + 1) * u(size.height) +
           4 * (u(size.width) * u(size.height) + u(cells.rhoCells) * (u(cells.lastAngle) + 1));
}

// `image` has at(x, y); any pixel that is not 0 is a point. Row by row.
template <class ImageOfBytes>
std::vector<LumiPoint> pointsOf(const ImageOfBytes& image, LumiSize size)
{
    std::vector<LumiPoint> points;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            if (image.at(x, y) != 0) {
                points.push_back({x, y});
            }
        }
    }
    return points;
}

// Counts for each angle and rho; whatever lies beside the cells is 0.
class Accumulator
{
  public:
    explicit Accumulator(const Cells& cells) : cells_(cells)
    {
        counts_.resize(static_cast<std::size_t>(cells.lastAngle + 1) * static_cast<std::size_t>(cells.rhoCells));
    }
    bool contains(int angle, int rho) const
    {
        return angle >= 0 && angle <= cells_.lastAngle && rho >= 0 && rho < cells_.rhoCells;
    }
    int at(int angle, int rho) const
    {
        return contains(angle, rho) ? counts_[index(angle, rho)] : 0;
    }
    // A vote beside the cells is dropped.
    void add(int angle, int rho, int votes)
    {
        if (contains(angle, rho)) {
            counts_[index(angle, rho)] += votes;
        }
    }

  private:
    std::size_t index(int angle, int rho) const
    {
        return static_cast<std::size_t>(angle) * static_cast<std::size_t>(cells_.rhoCells) +
               static_cast<std::size_t>(rho);
    }
    Cells cells_;
    std::vector<int> counts_;
};

struct Peak
{
    int rho;
    int angle;
    int count;
};

// A plateau has its first cell for a peak, and of equal counts the earlier found stands ahead.
inline std::vector<Peak> peaksOf(const Accumulator& votes, const Cells& cells, int firstRho, int lastRho, int threshold,
                                 int maxLineCount)
{
    std::vector<Peak> peaks;
    for (int angle = 0; angle <= cells.lastAngle; ++angle) {
        for (int rho = std::max(firstRho, 0); rho <= std::min(lastRho, cells.rhoCells - 1); ++rho) {
            const int a = votes.at(angle, rho);
            if (a > threshold && a > votes.at(angle, rho - 1) && a >= votes.at(angle, rho + 1) &&
                a > votes.at(angle - 1, rho) && a >= votes.at(angle + 1, rho)) {
                peaks.push_back({rho, angle, a});
            }
        }
    }
    std::stable_sort(peaks.begin(), peaks.end(), [](const Peak& a, const Peak& b) { return a.count > b.count; });
    if (peaks.size() > static_cast<std::size_t>(maxLineCount)) {
        peaks.resize(static_cast<std::size_t>(maxLineCount));
    }
    return peaks;
}

inline std::vector<LumiPointPolar> asLines(const std::vector<Peak>& peaks, const Cells& cells, LumiPointPolar delta)
{
    std::vector<LumiPointPolar> lines;
    for (const Peak& peak : peaks) {
        lines.push_back(
            {delta.rho * static_cast<Lum32f>(peak.rho - cells.centre), delta.theta * static_cast<Lum32f>(peak.angle)});
    }
    return lines;
}

// Sine and cosine over the rho step, with ten fractional bits; the angle is a sum of single precision.
struct FixedAngle
{
    int sine;
    int cosine;
};

inline std::vector<FixedAngle> fixedAngles(const Cells& cells, LumiPointPolar delta)
{
    std::vector<FixedAngle> angles;
    const double scale = double{1.0f / delta.rho} * 1024;
    Lum32f theta = 0;
    for (int i = 0; i <= cells.lastAngle; ++i) {
        angles.push_back(
            {static_cast<int>(scale * std::sin(double{theta})), static_cast<int>(scale * std::cos(double{theta}))});
        theta += delta.theta;
    }
    return angles;
}

template <class ImageOfBytes>
std::vector<LumiPointPolar> standardLines(const ImageOfBytes& image, LumiSize size, LumiPointPolar delta, int threshold,
                                          int maxLineCount)
{
    const Cells cells = cellsOf(size, delta);
    const std::vector<FixedAngle> angles = fixedAngles(cells, delta);
    Accumulator votes(cells);
    for (const LumiPoint& point : pointsOf(image, size)) {
        for (int i = 0; i <= cells.lastAngle; ++i) {
            const FixedAngle& angle = angles[static_cast<std::size_t>(i)];
            const Lum32f alongX = static_cast<Lum32f>(point.x) * static_cast<Lum32f>(angle.cosine);
            const Lum32f alongY = static_cast<Lum32f>(point.y) * static_cast<Lum32f>(angle.sine);
            const Lum32f sum = alongX + alongY;
            votes.add(i, ((static_cast<int>(std::nearbyint(sum)) + 512) >> 10) + cells.centre, 1);
        }
    }
    return asLines(peaksOf(votes, cells, 0, cells.rhoCells - 1, threshold, maxLineCount), cells, delta);
}

inline Lum32f clampedAngle(Lum32f theta)
{
    return theta < kAngleLimit ? std::max(theta, 0.0f) : kAngleLimit;
}

// `region` holds the low and the high corner, already clamped.
template <class ImageOfBytes>
std::vector<LumiPointPolar> regionLines(const ImageOfBytes& image, LumiSize size, const LumiPointPolar region[2],
                                        LumiPointPolar delta, int threshold, int maxLineCount)
{
    const Cells cells = cellsOf(size, delta);
    const std::vector<FixedAngle> angles = fixedAngles(cells, delta);
    Accumulator votes(cells);
    for (const LumiPoint& point : pointsOf(image, size)) {
        for (int i = 0; i <= cells.lastAngle; ++i) {
            const Lum32f theta = delta.theta * static_cast<Lum32f>(i);
            if (theta >= region[0].theta && theta <= region[1].theta) {
                const FixedAngle& angle = angles[static_cast<std::size_t>(i)];
                votes.add(i, ((point.x * angle.cosine + point.y * angle.sine + 512) >> 10) + cells.centre, 1);
            }
        }
    }
    const Lum32f perCell = 1.0f / delta.rho;
    const auto cellOf = [&](Lum32f rho) {
        const Lum32f cell = perCell * rho + static_cast<Lum32f>(cells.centre);
        return static_cast<int>(std::clamp(cell, -1e9f, 1e9f));
    };
    return asLines(peaksOf(votes, cells, cellOf(region[0].rho), cellOf(region[1].rho), threshold, maxLineCount), cells,
                   delta);
}

// The float next to high + low towards zero; low is what high lacks after rounding.
inline Lum32f truncated(double high, double low)
{
    const auto nearest = static_cast<Lum32f>(high);
    const bool isBeyond = std::fabs(double{nearest}) > std::fabs(high);
    const bool isJustBeyond = double{nearest} == high && low != 0 && (low < 0) != (high < 0);
    return isBeyond || isJustBeyond ? std::nextafter(nearest, 0.0f) : nearest;
}

// A coordinate has at most 17 bits: the product is exact in double precision.
inline Lum32f truncatedProduct(int a, Lum32f b)
{
    return truncated(static_cast<double>(a) * double{b}, 0);
}

inline Lum32f truncatedSum(Lum32f a, Lum32f b)
{
    const double sum = double{a} + double{b};
    const double partOfB = sum - double{a};
    const double lost = (double{a} - (sum - partOfB)) + (double{b} - partOfB);
    return truncated(sum, lost);
}

// Cosine and sine over the rho step for each angle, as Init lays them in the record.
struct FloatAngle
{
    Lum32f cosine;
    Lum32f sine;
};

inline std::vector<FloatAngle> floatAngles(LumiPointPolar delta)
{
    std::vector<FloatAngle> angles;
    const double scale = 1.0f / delta.rho;
    Lum32f theta = 0;
    for (int i = 0; i <= cellsOf({1, 1}, delta).lastAngle; ++i) {
        angles.push_back({static_cast<Lum32f>(scale * std::cos(double{theta})),
                          static_cast<Lum32f>(scale * std::sin(double{theta}))});
        theta += delta.theta;
    }
    return angles;
}

// Start x, start y, end x, end y.
struct Segment
{
    Lum32s startX;
    Lum32s startY;
    Lum32s endX;
    Lum32s endY;
};

struct Search
{
    int threshold = 1;
    int lineLength = 0;
    int lineGap = 0;
    int maxLineCount = 100;
};

struct Segments
{
    LumStatus status = lumOk;
    std::vector<Segment> lines;
};

class ProgressiveSearch
{
  public:
    template <class ImageOfBytes>
    ProgressiveSearch(const ImageOfBytes& image, LumiSize size, LumiPointPolar delta, const Search& search)
        : size_(size),
          search_(search),
          cells_(cellsOf(size, delta)),
          angles_(floatAngles(delta)),
          votes_(cells_),
          remaining_(pointsOf(image, size)),
          isSet_(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height))
    {
        for (const LumiPoint& point : remaining_) {
            isSet_[indexOf(point)] = true;
        }
    }

    Segments run()
    {
        Segments result;
        std::uint64_t state = ~std::uint64_t{0};
        while (!remaining_.empty()) {
            state = (state & 0xFFFFFFFFu) * 0xF83F630Au + (state >> 32);
            const std::size_t index = (state & 0xFFFFFFFFu) % remaining_.size();
            const LumiPoint point = remaining_[index];
            remaining_[index] = remaining_.back();
            remaining_.pop_back();
            if (!isSet_[indexOf(point)]) {
                continue;
            }
            const int angle = vote(point);
            if (angle < 0) {
                continue;
            }
            const Step step = stepOf(angles_[static_cast<std::size_t>(angle)]);
            const LumiPoint start = endOf(point, step, 1);
            const LumiPoint end = endOf(point, step, -1);
            const bool isLong =
                std::abs(end.x - start.x) >= search_.lineLength || std::abs(end.y - start.y) >= search_.lineLength;
            consume(point, step, 1, start, isLong);
            consume(point, step, -1, end, isLong);
            if (!isLong) {
                continue;
            }
            if (static_cast<int>(result.lines.size()) >= search_.maxLineCount) {
                result.status = lumWrnLineListFull;
                return result;
            }
            result.lines.push_back({start.x, start.y, end.x, end.y});
        }
        return result;
    }

  private:
    // One of the two is a whole pixel, the other has 16 fractional bits.
    struct Step
    {
        bool isAlongX;
        int x;
        int y;
    };

    std::size_t indexOf(LumiPoint point) const
    {
        return static_cast<std::size_t>(point.y) * static_cast<std::size_t>(size_.width) +
               static_cast<std::size_t>(point.x);
    }
    int rhoOf(LumiPoint point, const FloatAngle& angle) const
    {
        const Lum32f sum = truncatedSum(truncatedProduct(point.x, angle.cosine), truncatedProduct(point.y, angle.sine));
        return static_cast<int>(sum) + cells_.centre;
    }
    // The first angle with the largest count, or -1 if that is below the threshold.
    int vote(LumiPoint point)
    {
        int best = 0;
        int bestAngle = -1;
        for (int i = 0; i <= cells_.lastAngle; ++i) {
            const int rho = rhoOf(point, angles_[static_cast<std::size_t>(i)]);
            votes_.add(i, rho, 1);
            if (votes_.at(i, rho) > best) {
                best = votes_.at(i, rho);
                bestAngle = i;
            }
        }
        return best >= search_.threshold ? bestAngle : -1;
    }
    static Step stepOf(const FloatAngle& angle)
    {
        const double cosine = angle.cosine;
        const double sine = angle.sine;
        if (std::fabs(sine) > std::fabs(cosine)) {
            return {true, sine < 0 ? 1 : -1, static_cast<int>(cosine * 65536 / std::fabs(sine))};
        }
        return {false, static_cast<int>(sine * -65536 / std::fabs(cosine)), cosine > 0 ? 1 : -1};
    }
    // The pixel that lies `count` steps from the point.
    static LumiPoint pixelOf(LumiPoint point, const Step& step, int count)
    {
        const auto fraction = [count](int from, int by) {
            return static_cast<int>(((static_cast<std::int64_t>(from) << 16) + 0x8000 + std::int64_t{by} * count) >>
                                    16);
        };
        return step.isAlongX ? LumiPoint{point.x + step.x * count, fraction(point.y, step.y)}
                             : LumiPoint{fraction(point.x, step.x), point.y + step.y * count};
    }
    bool isInside(LumiPoint pixel) const
    {
        return pixel.x >= 0 && pixel.y >= 0 && pixel.x < size_.width && pixel.y < size_.height;
    }
    // The last set pixel on the way along the step (direction 1) or against it (-1).
    LumiPoint endOf(LumiPoint point, const Step& step, int direction) const
    {
        LumiPoint end = point;
        int gap = 0;
        for (int i = 0;; ++i) {
            const LumiPoint pixel = pixelOf(point, step, i * direction);
            if (!isInside(pixel)) {
                return end;
            }
            if (isSet_[indexOf(pixel)]) {
                end = pixel;
                gap = 0;
            } else if (++gap > search_.lineGap) {
                return end;
            }
        }
    }
    // Clears the pixels on the way to the end, and takes back the votes of those of a line.
    void consume(LumiPoint point, const Step& step, int direction, LumiPoint end, bool isLine)
    {
        for (int i = 0;; ++i) {
            const LumiPoint pixel = pixelOf(point, step, i * direction);
            if (isSet_[indexOf(pixel)]) {
                for (int angle = 0; isLine && angle <= cells_.lastAngle; ++angle) {
                    votes_.add(angle, rhoOf(pixel, angles_[static_cast<std::size_t>(angle)]), -1);
                }
                isSet_[indexOf(pixel)] = false;
            }
            if (pixel.x == end.x && pixel.y == end.y) {
                return;
            }
        }
    }

    LumiSize size_;
    Search search_;
    Cells cells_;
    std::vector<FloatAngle> angles_;
    Accumulator votes_;
    std::vector<LumiPoint> remaining_;
    std::vector<bool> isSet_;
};

template <class ImageOfBytes>
Segments progressiveLines(const ImageOfBytes& image, LumiSize size, LumiPointPolar delta, const Search& search)
{
    return ProgressiveSearch(image, size, delta, search).run();
}

}  // namespace lumcv::test::hough
