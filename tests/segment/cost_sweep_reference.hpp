// The watershed by sweeps over a cost image written out plainly: visits, marks and labels, pixel by pixel.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "lumcv/lumcv.h"
#include "segment/bound_segments_reference.hpp"
#include "support/image.hpp"

namespace lumcv::test::watershed {

/// Costs of paths over an 8-bit height image: the highest level above, the length below, in one number.
struct PackedCost
{
    using Height = Lum8u;
    using Cost = std::int64_t;
    static constexpr Cost kNone = 0x7FC00000;
    static constexpr int kUnit = 64;

    static Cost atSeed(Height height)
    {
        return static_cast<Cost>(height) << 23;
    }
    static bool less(Cost a, Cost b)
    {
        return a < b;
    }
    /// The cost of a pixel of the given height by a step from a pixel of cost `q`.
    static Cost step(Cost q, Height height, int term)
    {
        return q + term < atSeed(height) ? atSeed(height) : q + term + 1;
    }
    static Cost stepFromBoth(Cost a, Cost b, Height height)
    {
        const Cost difference = std::abs(a - b);
        Cost base = std::min(a, b) + kUnit - 1;
        if (difference <= kUnit - 1) {
            const double d = static_cast<double>(difference);
            base -= static_cast<Cost>(std::nearbyint(64 - (d + std::sqrt(8192 - d * d)) / 2));
        }
        return step(base, height, 0);
    }
};

/// Costs over a float height image: the pair of level and length.
struct PairCost
{
    using Height = Lum32f;
    struct Cost
    {
        Lum32f height;
        Lum32s steps;
    };
    static constexpr Cost kNone = {std::numeric_limits<Lum32f>::max(), 0x7FFFFFFF};
    static constexpr int kUnit = 256;

    static Cost atSeed(Height height)
    {
        return {height, 0};
    }
    static bool less(Cost a, Cost b)
    {
        return a.height < b.height || (a.height == b.height && a.steps < b.steps);
    }
    static Cost step(Cost q, Height height, int term)
    {
        return height > q.height ? Cost{height, 0} : Cost{q.height, q.steps + term + 1};
    }
    static Cost stepFromBoth(Cost a, Cost b, Height height)
    {
        const std::int64_t d = std::int64_t{a.steps} - b.steps;
        if (a.height != b.height || std::abs(d) > kUnit - 1) {
            return step(less(a, b) ? a : b, height, kUnit - 1);
        }
        if (height > a.height) {
            return {height, 0};
        }
        const double sum = static_cast<double>(a.steps) + static_cast<double>(b.steps);
        const double difference = static_cast<double>(d);
        return {a.height, static_cast<Lum32s>(0.5 + 0.5 * (sum + std::sqrt(131072 - difference * difference)))};
    }
};

template <class Costs, class Label>
class CostSweep
{
  public:
    using Cost = typename Costs::Cost;
    using Height = typename Costs::Height;

    CostSweep(const Image<Height>& source, Image<Label>& marker, unsigned norm, int flag)
        : source_(source),
          labels_(marker),
          width_(marker.width()),
          height_(marker.height()),
          norm_(norm),
          hasDiagonals_((norm == 0 || norm == 2) && width_ > 1),
          costs_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), Costs::kNone),
          isFixed_(costs_.size(), 0),
          pending_(costs_.size(), 0)
    {
        labels_.forEach(Area::Roi, [&](Label& label, int x, int y, int) {
            isFixed_[index(x, y)] = label != 0;
            if (label != 0 && label != kBarrier) {
                costs_[index(x, y)] = Costs::atSeed(source_.at(x, y));
            }
        });
        sweep(Direction::Down, Stage::FirstDown);
        sweep(Direction::Up, Stage::FirstUp);
        while (sweep(Direction::Down, Stage::Later) && sweep(Direction::Up, Stage::Later)) {
        }
        if ((flag & (64 | 128)) != 0) {
            boundSegments(labels_, kBarrier, (flag & 128) != 0 && width_ > 1);
        }
    }

    const Image<Label>& labels() const
    {
        return labels_;
    }
    int sweeps() const
    {
        return sweeps_;
    }

  private:
    enum class Direction
    {
        Down,
        Up
    };
    enum class Stage
    {
        FirstDown,
        FirstUp,
        Later
    };
    static constexpr Label kBarrier = std::numeric_limits<Label>::max();
    // the bits of a pixel: for the two scans of a downward and of an upward sweep
    static constexpr int kDownLeftToRight = 1;
    static constexpr int kDownRightToLeft = 2;
    static constexpr int kUpLeftToRight = 4;
    static constexpr int kUpRightToLeft = 8;

    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }
    bool isInside(int x, int y) const
    {
        return x >= 0 && x < width_ && y >= 0 && y < height_;
    }
    bool isSource(int x, int y) const
    {
        return isInside(x, y) && labels_.at(x, y) != 0 && labels_.at(x, y) != kBarrier;
    }

    /// Whether anything has changed.
    bool sweep(Direction direction, Stage stage)
    {
        ++sweeps_;
        bool changed = false;
        for (int i = 0; i < height_; ++i) {
            const int y = direction == Direction::Down ? i : height_ - 1 - i;
            changed |= scan(y, 1, direction, stage);
            changed |= scan(y, -1, direction, stage);
        }
        return changed;
    }

    bool scan(int y, int toRight, Direction direction, Stage stage)
    {
        const bool down = direction == Direction::Down;
        const int bit = down ? (toRight > 0 ? kDownLeftToRight : kDownRightToLeft)
                             : (toRight > 0 ? kUpLeftToRight : kUpRightToLeft);
        bool changed = false;
        bool previousChanged = false;
        for (int x = toRight > 0 ? 0 : width_ - 1; x >= 0 && x < width_; x += toRight) {
            if (stage == Stage::Later && (pending_[index(x, y)] & bit) == 0 && !previousChanged) {
                continue;
            }
            pending_[index(x, y)] &= ~bit;
            previousChanged = isFixed_[index(x, y)] == 0 && visit(x, y, down ? y - 1 : y + 1, x - toRight);
            if (previousChanged) {
                changed = true;
                markAround(x, y, direction, stage);
            }
        }
        return changed;
    }

    bool visit(int x, int y, int sweptRow, int previous)
    {
        if (norm_ == 3) {
            return visitPair(x, y, sweptRow, previous);
        }
        const int edge = norm_ == 2 ? 10 : 0;
        const int diagonal = norm_ == 2 ? 14 : 0;
        bool changed = false;
        const auto consider = [&](int qx, int qy, int term) {
            if (isSource(qx, qy)) {
                changed |= take(x, y, Costs::step(costs_[index(qx, qy)], source_.at(x, y), term), labels_.at(qx, qy));
            }
        };
        if (hasDiagonals_) {
            consider(x - 1, sweptRow, diagonal);
        }
        consider(x, sweptRow, edge);
        if (hasDiagonals_) {
            consider(x + 1, sweptRow, diagonal);
        }
        consider(previous, y, edge);
        return changed;
    }
    bool visitPair(int x, int y, int sweptRow, int previous)
    {
        const bool hasA = isSource(x, sweptRow);
        const bool hasB = isSource(previous, y);
        const Height height = source_.at(x, y);
        if (hasA && hasB) {
            const Cost a = costs_[index(x, sweptRow)];
            const Cost b = costs_[index(previous, y)];
            return take(x, y, Costs::stepFromBoth(a, b, height),
                        Costs::less(a, b) ? labels_.at(x, sweptRow) : labels_.at(previous, y));
        }
        if (hasA) {
            return take(x, y, Costs::step(costs_[index(x, sweptRow)], height, Costs::kUnit - 1),
                        labels_.at(x, sweptRow));
        }
        return hasB &&
               take(x, y, Costs::step(costs_[index(previous, y)], height, Costs::kUnit - 1), labels_.at(previous, y));
    }
    bool take(int x, int y, Cost cost, Label label)
    {
        if (!Costs::less(cost, costs_[index(x, y)])) {
            return false;
        }
        costs_[index(x, y)] = cost;
        labels_.at(x, y) = label;
        return true;
    }

    void mark(int x, int y, int bits)
    {
        if (isInside(x, y)) {
            pending_[index(x, y)] |= bits;
        }
    }
    void markRow(int x, int y, int bits)
    {
        for (int dx = hasDiagonals_ ? -1 : 0; dx <= (hasDiagonals_ ? 1 : 0); ++dx) {
            mark(x + dx, y, bits);
        }
    }
    void markAround(int x, int y, Direction direction, Stage stage)
    {
        if (stage == Stage::FirstDown) {
            return;
        }
        if (direction == Direction::Down) {
            mark(x - 1, y, kUpRightToLeft);
            mark(x + 1, y, kUpLeftToRight);
        } else {
            mark(x - 1, y, kDownRightToLeft);
            mark(x + 1, y, kDownLeftToRight);
        }
        markRow(x, y + 1, kDownLeftToRight | kDownRightToLeft);
        if (stage != Stage::FirstUp) {
            markRow(x, y - 1, kUpLeftToRight | kUpRightToLeft);
        }
    }

    const Image<Height>& source_;
    Image<Label> labels_;
    int width_;
    int height_;
    unsigned norm_;
    bool hasDiagonals_;
    std::vector<Cost> costs_;
    std::vector<char> isFixed_;
    std::vector<int> pending_;
    int sweeps_ = 0;
};

}  // namespace lumcv::test::watershed
