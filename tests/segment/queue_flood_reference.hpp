// The two floods in 256 queues written out plainly: by the difference of neighbours, and by level.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <limits>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::watershed {

struct Place
{
    int x;
    int y;
};

/// In the order in which the floods look: the edges first, then the diagonals.
constexpr Place kNeighbours[8] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};

inline int neighbourCount(unsigned norm)
{
    return norm == 0 ? 8 : 4;
}

/// How many neighbours decide whether a labelled pixel is a boundary: 0 without boundaries.
inline int boundaryNeighbours(int flag)
{
    return (flag & 128) != 0 ? 8 : (flag & 64) != 0 ? 4 : 0;
}

/// Pixels that wait, the oldest first, at each of the 256 levels.
class Queues
{
  public:
    void push(int level, Place place)
    {
        queues_[level].push_back(place);
    }
    /// The lowest level at or above the given one at which a pixel waits, or 256.
    int nextLevel(int level) const
    {
        while (level < 256 && queues_[level].empty()) {
            ++level;
        }
        return level;
    }
    Place pop(int level)
    {
        const Place place = queues_[level].front();
        queues_[level].pop_front();
        return place;
    }

  private:
    std::deque<Place> queues_[256];
};

class GradientFlood
{
  public:
    GradientFlood(const Image<Lum8u>& source, Image<Lum8u>& marker, unsigned norm, int flag)
        : source_(source), work_(marker), neighbours_(neighbourCount(norm)), boundary_(boundaryNeighbours(flag))
    {
        frame();
        seed();
        int level = queues_.nextLevel(0);
        if (level == 256) {
            return;
        }
        for (; level < 256; level = queues_.nextLevel(level)) {
            const Place p = queues_.pop(level);
            work(p) = bestLabel(p);
            if (isBoundary(p)) {
                work(p) = 254;
            }
            for (int i = 0; i < neighbours_; ++i) {
                const Place q = neighbour(p, i);
                if (work(q) == 0) {
                    queues_.push(cost(p, q), q);
                    work(q) = 255;
                    level = std::min(level, cost(p, q));
                }
            }
        }
        marker = work_;
    }

  private:
    Lum8u& work(Place p)
    {
        return work_.at(p.x, p.y);
    }
    static Place neighbour(Place p, int i)
    {
        return {p.x + kNeighbours[i].x, p.y + kNeighbours[i].y};
    }
    int cost(Place p, Place q) const
    {
        int largest = 0;
        for (int c = 0; c < source_.channels(); ++c) {
            largest = std::max(largest, std::abs(source_.at(p.x, p.y, c) - source_.at(q.x, q.y, c)));
        }
        return largest;
    }

    void frame()
    {
        work_.forEach(Area::Roi, [&](Lum8u& label, int x, int y, int) {
            if (x == 0 || y == 0 || x == work_.width() - 1 || y == work_.height() - 1) {
                label = 255;
            }
        });
    }
    void seed()
    {
        for (int y = 1; y < work_.height() - 1; ++y) {
            for (int x = 1; x < work_.width() - 1; ++x) {
                const Place p = {x, y};
                if (work(p) != 0) {
                    continue;
                }
                int lowest = 256;
                for (int i = 0; i < neighbours_; ++i) {
                    const Place q = neighbour(p, i);
                    if (work(q) != 0 && work(q) != 255) {
                        lowest = std::min(lowest, cost(p, q));
                    }
                }
                if (lowest < 256) {
                    queues_.push(lowest, p);
                    work(p) = 255;
                }
            }
        }
    }
    Lum8u bestLabel(Place p)
    {
        Lum8u best = 0;
        int bestCost = 256;
        for (int i = 0; i < neighbours_; ++i) {
            const Place q = neighbour(p, i);
            const Lum8u label = work(q);
            if (label == 0 || label == 255) {
                continue;
            }
            const int c = cost(p, q);
            if (best == 0 || c < bestCost || (c == bestCost && label != 254)) {
                best = label;
                bestCost = c;
            }
        }
        return best;
    }
    bool isBoundary(Place p)
    {
        for (int i = 0; i < boundary_; ++i) {
            const Lum8u label = work(neighbour(p, i));
            if (label >= 1 && label <= 253 && label != work(p)) {
                return true;
            }
        }
        return false;
    }

    const Image<Lum8u>& source_;
    Image<Lum8u> work_;
    int neighbours_;
    int boundary_;
    Queues queues_;
};

template <class Label>
class LevelFlood
{
  public:
    LevelFlood(const Image<Lum8u>& source, Image<Label>& marker, unsigned norm, int flag)
        : source_(source),
          work_(marker),
          seeds_(marker),
          neighbours_(neighbourCount(norm)),
          boundary_(boundaryNeighbours(flag))
    {
        seed();
        int level = queues_.nextLevel(0);
        if (level == 256) {
            return;
        }
        for (; level < 256; level = queues_.nextLevel(level)) {
            const Place p = queues_.pop(level);
            if (meetsAnother(work_, p)) {
                work_.at(p.x, p.y) = kBarrier;
                continue;
            }
            for (int i = 0; i < neighbours_; ++i) {
                const Place q = neighbour(p, i);
                if (isInside(q) && work_.at(q.x, q.y) == 0) {
                    label(work_, q, level);
                }
            }
        }
        marker = work_;
    }

  private:
    static constexpr Label kBarrier = std::numeric_limits<Label>::max();

    static Place neighbour(Place p, int i)
    {
        return {p.x + kNeighbours[i].x, p.y + kNeighbours[i].y};
    }
    bool isInside(Place p) const
    {
        return p.x >= 0 && p.y >= 0 && p.x < work_.width() && p.y < work_.height();
    }
    /// The label at a place, 0 where none counts.
    Label labelAt(const Image<Label>& image, Place p) const
    {
        return isInside(p) && image.at(p.x, p.y) != kBarrier ? image.at(p.x, p.y) : Label{0};
    }

    void seed()
    {
        for (int y = 0; y < work_.height(); ++y) {
            for (int x = 0; x < work_.width(); ++x) {
                const Place p = {x, y};
                if (seeds_.at(x, y) == 0) {
                    label(seeds_, p, 0);
                } else if (labelAt(seeds_, p) != 0 && meetsAnother(seeds_, p)) {
                    work_.at(x, y) = kBarrier;
                }
            }
        }
    }
    /// Labels a pixel as its neighbours in the image agree, and lets it wait at its level.
    void label(const Image<Label>& image, Place p, int level)
    {
        Label label = 0;
        for (int i = 0; i < neighbours_; ++i) {
            const Label other = labelAt(image, neighbour(p, i));
            if (other == 0) {
                continue;
            }
            if (label != 0 && label != other) {
                work_.at(p.x, p.y) = kBarrier;
                return;
            }
            label = other;
        }
        if (label != 0) {
            work_.at(p.x, p.y) = label;
            queues_.push(std::max(level, int{source_.at(p.x, p.y)}), p);
        }
    }
    bool meetsAnother(const Image<Label>& image, Place p) const
    {
        for (int i = 0; i < boundary_; ++i) {
            const Label other = labelAt(image, neighbour(p, i));
            if (other != 0 && other != work_.at(p.x, p.y)) {
                return true;
            }
        }
        return false;
    }

    const Image<Lum8u>& source_;
    Image<Label> work_;
    Image<Label> seeds_;
    int neighbours_;
    int boundary_;
    Queues queues_;
};

}  // namespace lumcv::test::watershed
