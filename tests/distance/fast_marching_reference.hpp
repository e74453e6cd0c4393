// Fast marching written out plainly: the sweeps with their marks, pixel by pixel.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::distance {

class FastMarching
{
  public:
    FastMarching(const Image<Lum8u>& source, Lum32f radius)
        : source_(source),
          width_(source.width()),
          height_(source.height()),
          hasBand_(radius > 0),
          limit_(-(radius + 1e-5f)),
          d_(pixels(), 0.0f),
          pending_(pixels(), 0),
          dirty_(static_cast<std::size_t>(height_) + 2, 0)
    {
        firstRow();
        for (int y = 1; y < height_; ++y) {
            firstDownward(y);
        }
        dirty(height_ - 1) = 0;
        if (!sweep(Direction::Up, true)) {
            return;
        }
        while (true) {
            dirty(0) = 0;
            if (!sweep(Direction::Down, false)) {
                return;
            }
            dirty(height_ - 1) = 0;
            if (!sweep(Direction::Up, false)) {
                return;
            }
        }
    }

    Image<Lum32f> result(const Layout& layout)
    {
        Image<Lum32f> image(layout);
        image.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int) { element = d(x, y); });
        return image;
    }

    /// Sweeps after the first one downwards and the first one upwards.
    int laterSweeps() const
    {
        return sweeps_ - 1;
    }

  private:
    enum class Direction
    {
        Down,
        Up
    };
    // the bits of a pixel: for the two scans of a downward and of an upward sweep
    static constexpr int kDownLeftToRight = 1;
    static constexpr int kDownRightToLeft = 2;
    static constexpr int kUpLeftToRight = 4;
    static constexpr int kUpRightToLeft = 8;
    static constexpr Lum32f kFront = -1e-10f;

    std::size_t pixels() const
    {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    }
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }
    Lum32f& d(int x, int y)
    {
        return d_[index(x, y)];
    }
    char& dirty(int y)
    {
        return dirty_[static_cast<std::size_t>(y + 1)];
    }
    bool isInside(int x, int y) const
    {
        return source_.at(x, y) != 0;
    }
    void mark(int x, int y, int bits)
    {
        if (x >= 0 && x < width_ && y >= 0 && y < height_) {
            pending_[index(x, y)] |= bits;
        }
    }

    static Lum32f solveIn(Lum32f a, Lum32f b)
    {
        const Lum32f t = a - b;
        if (std::fabs(t) >= 1) {
            return (a < b ? a : b) + 1;
        }
        return (a + b + std::sqrt(2 - t * t)) * 0.5f;
    }
    static Lum32f solveOut(Lum32f a, Lum32f b)
    {
        if (a == 0 || b == 0) {
            return (a < b ? a : b) - 1;
        }
        const Lum32f t = a - b;
        if (std::fabs(t) >= 1) {
            return (a > b ? a : b) - 1;
        }
        return (a + b - std::sqrt(2 - t * t)) * 0.5f;
    }

    Lum32f insideValue(Lum32f a) const
    {
        return hasBand_ && !(a > 0) ? 1 : a + 1;
    }
    Lum32f insideValue(Lum32f a, Lum32f b) const
    {
        return hasBand_ ? solveIn(a > 0 ? a : 0, b > 0 ? b : 0) : solveIn(a, b);
    }

    enum class Write
    {
        None,
        Front,
        Value
    };

    /// What a visit writes into the pixel; `a` and `b` may be the same neighbour where there is only one.
    Write visit(int x, int y, Lum32f a, const Lum32f* b)
    {
        Lum32f& c = d(x, y);
        if (isInside(x, y)) {
            const Lum32f value = b == nullptr ? insideValue(a) : insideValue(a, *b);
            if (c > value) {
                c = value;
                return Write::Value;
            }
            return Write::None;
        }
        if (!hasBand_) {
            return Write::None;
        }
        if (a > 0 || (b != nullptr && *b > 0)) {
            c = kFront;
            return Write::Front;
        }
        if (!(a < 0 || (b != nullptr && *b < 0))) {
            return Write::None;
        }
        const Lum32f value = b == nullptr ? a - 1 : solveOut(a, *b);
        if ((c == 0 || c < value) && value >= limit_) {
            c = value;
            return Write::Value;
        }
        return Write::None;
    }

    void firstRow()
    {
        d(0, 0) = isInside(0, 0) ? 999999.0f : 0.0f;
        for (int x = 1; x < width_; ++x) {
            const Lum32f before = d(x - 1, 0);
            if (isInside(x, 0)) {
                d(x, 0) = insideValue(before);
            } else if (hasBand_ && before > 0) {
                d(x, 0) = kFront;
            } else if (hasBand_ && before < 0 && before - 1 >= limit_) {
                d(x, 0) = before - 1;
            } else {
                d(x, 0) = 0;
            }
        }
        for (int x = width_ - 2; x >= 0; --x) {
            visit(x, 0, d(x + 1, 0), nullptr);
        }
        dirty(0) = 1;
        dirty(1) = 1;
    }

    void firstDownward(int y)
    {
        for (int x = 0; x < width_; ++x) {
            const Lum32f above = d(x, y - 1);
            const Lum32f* const left = x == 0 ? nullptr : &d(x - 1, y);
            if (isInside(x, y)) {
                d(x, y) = left == nullptr ? insideValue(above) : insideValue(above, *left);
            } else {
                d(x, y) = 0;
                visit(x, y, above, left);
            }
        }
        for (int x = width_ - 2; x >= 0; --x) {
            visit(x, y, d(x, y - 1), &d(x + 1, y));
        }
        dirty(y - 1) = 1;
        dirty(y) = 1;
        dirty(y + 1) = 1;
    }

    /// Whether anything has changed.
    bool sweep(Direction direction, bool isFirst)
    {
        ++sweeps_;
        bool changed = false;
        const int first = direction == Direction::Down ? 1 : height_ - 2;
        const int step = direction == Direction::Down ? 1 : -1;
        for (int y = first; y >= (step > 0 ? 1 : 0) && y < height_; y += step) {
            if (dirty(y) == 0) {
                continue;
            }
            const bool rowChanged = sweepRow(y, direction, isFirst);
            dirty(y) = rowChanged ? 1 : 0;
            if (rowChanged) {
                dirty(y - 1) = 1;
                dirty(y + 1) = 1;
            }
            changed |= rowChanged;
        }
        return changed;
    }

    bool sweepRow(int y, Direction direction, bool isFirst)
    {
        const bool down = direction == Direction::Down;
        const int swept = down ? y - 1 : y + 1;
        bool rowChanged = false;
        const auto step = [&](int x, const Lum32f* b, int bit, bool previousChanged) {
            if (!isFirst && (pending_[index(x, y)] & bit) == 0 && !previousChanged) {
                return false;
            }
            pending_[index(x, y)] &= ~bit;
            const Write write = visit(x, y, d(x, swept), b);
            const bool counts = write == Write::Value || (write == Write::Front && isFirst);
            if (counts) {
                marksOf(x, y, direction, isFirst);
            }
            rowChanged |= counts;
            return counts;
        };
        bool previousChanged = false;
        for (int x = 0; x < width_; ++x) {
            previousChanged =
                step(x, x == 0 ? nullptr : &d(x - 1, y), down ? kDownLeftToRight : kUpLeftToRight, previousChanged);
        }
        previousChanged = false;
        for (int x = width_ - 2; x >= 0; --x) {
            previousChanged = step(x, &d(x + 1, y), down ? kDownRightToLeft : kUpRightToLeft, previousChanged);
        }
        return rowChanged;
    }

    void marksOf(int x, int y, Direction direction, bool isFirst)
    {
        if (direction == Direction::Down) {
            mark(x - 1, y, kUpRightToLeft);
            mark(x + 1, y, kUpLeftToRight);
        } else {
            mark(x - 1, y, kDownRightToLeft);
            mark(x + 1, y, kDownLeftToRight);
        }
        mark(x, y + 1, kDownLeftToRight | kDownRightToLeft);
        if (!isFirst) {
            mark(x, y - 1, kUpLeftToRight | kUpRightToLeft);
        }
    }

    const Image<Lum8u>& source_;
    int width_;
    int height_;
    bool hasBand_;
    Lum32f limit_;
    std::vector<Lum32f> d_;
    std::vector<int> pending_;
    std::vector<char> dirty_;
    int sweeps_ = 0;
};

inline Image<Lum32f> marchedDistances(const Image<Lum8u>& source, Lum32f radius, const Layout& layout)
{
    return FastMarching(source, radius).result(layout);
}

}  // namespace lumcv::test::distance
