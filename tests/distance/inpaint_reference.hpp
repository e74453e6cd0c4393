// Inpainting written out plainly: the ring, its gradients, the order, and each pixel from the known ones around it.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::distance {

/// The part of the image on which everything happens, and what the size formulas need.
struct WorkRectangle
{
    int count = 0;  ///< non-zero mask pixels
    int x0 = 0;
    int y0 = 0;
    int width = 0;
    int height = 0;
};

inline WorkRectangle workRectangle(const Image<Lum8u>& mask, Lum32f radius)
{
    const int r = static_cast<int>(radius);
    WorkRectangle work;
    int left = mask.width();
    int right = -1;
    int top = mask.height();
    int bottom = -1;
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            if (mask.at(x, y) != 0) {
                ++work.count;
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
        }
    }
    if (work.count > 0) {
        work.x0 = std::max(left - r - 1, 0);
        work.y0 = std::max(top - r - 1, 0);
        work.width = std::min(right + r + 1, mask.width() - 1) - work.x0 + 1;
        work.height = std::min(bottom + r + 1, mask.height() - 1) - work.y0 + 1;
    }
    return work;
}

class Inpainting
{
  public:
    Inpainting(const Image<Lum8u>& mask, const Image<Lum32f>& distance, Lum32f radius, LumiInpaintMethod method)
        : work_(workRectangle(mask, radius)), radius_(radius), r_(static_cast<int>(radius)), method_(method)
    {
        masked_.resize(pixels());
        distance_.resize(pixels());
        for (int y = 0; y < work_.height; ++y) {
            for (int x = 0; x < work_.width; ++x) {
                masked_[index(x, y)] = mask.at(work_.x0 + x, work_.y0 + y) != 0 ? 1 : 0;
                distance_[index(x, y)] = distance.at(work_.x0 + x, work_.y0 + y);
            }
        }
        formOrder();
        formNormals();
    }

    const WorkRectangle& work() const
    {
        return work_;
    }

    Image<Lum8u> repair(const Image<Lum8u>& source, const Layout& layout)
    {
        image_.assign(pixels() * 3, 0);
        channels_ = source.channels();
        for (int y = 0; y < work_.height; ++y) {
            for (int x = 0; x < work_.width; ++x) {
                for (int c = 0; c < channels_; ++c) {
                    level(x, y, c) = source.at(work_.x0 + x, work_.y0 + y, c);
                }
            }
        }
        unknown_ = masked_;
        formGradients();
        for (const auto& [distance, place] : order_) {
            const int x = static_cast<int>(place) % work_.width;
            const int y = static_cast<int>(place) / work_.width;
            method_ == lumInpaintByFront ? fillByFront(x, y) : fillByIsophote(x, y);
            unknown_[place] = 0;
            refreshGradients(x, y);
        }
        Image<Lum8u> result(layout);
        result.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int c) {
            const int i = x - work_.x0;
            const int j = y - work_.y0;
            element = exists(i, j) ? static_cast<Lum8u>(level(i, j, c)) : source.at(x, y, c);
        });
        return result;
    }

    /// How many pixels took the mean of their edge neighbours in the last repair.
    int fallbacks() const
    {
        return fallbacks_;
    }

  private:
    struct Vector
    {
        int x = 0;
        int y = 0;
    };

    /// A known pixel near the one being filled: (a, b) is the way from it to that one.
    struct Neighbour
    {
        int x;
        int y;
        int a;
        int b;
    };

    std::size_t pixels() const
    {
        return static_cast<std::size_t>(work_.width) * static_cast<std::size_t>(work_.height);
    }
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(work_.width) + static_cast<std::size_t>(x);
    }
    bool exists(int x, int y) const
    {
        return x >= 0 && x < work_.width && y >= 0 && y < work_.height;
    }
    bool isKnown(int x, int y) const
    {
        return exists(x, y) && unknown_[index(x, y)] == 0;
    }
    int& level(int x, int y, int c)
    {
        return image_[index(x, y) * 3 + static_cast<std::size_t>(c)];
    }
    Vector& gradient(int x, int y, int c)
    {
        return gradient_[index(x, y) * 3 + static_cast<std::size_t>(c)];
    }

    void formOrder()
    {
        for (int y = 0; y < work_.height; ++y) {
            for (int x = 0; x < work_.width; ++x) {
                if (distance_[index(x, y)] > 0 && order_.size() < static_cast<std::size_t>(work_.count)) {
                    order_.emplace_back(distance_[index(x, y)], index(x, y));
                }
            }
        }
        std::sort(order_.begin(), order_.end());
    }

    /// The low 16 bits of the truncated number; 0 beyond 32 bits.
    static int lowWord(Lum32f value)
    {
        return std::fabs(value) < 2147483648.0f ? static_cast<Lum16s>(static_cast<Lum32s>(value)) : 0;
    }

    int normalAlong(Lum32f before, Lum32f at, Lum32f after, int i, int size) const
    {
        if (size == 1) {
            return 0;
        }
        if (i == 0) {
            return lowWord((after - at) * 4096);
        }
        if (i == size - 1) {
            return lowWord((at - before) * 4096);
        }
        return lowWord((after - before) * 4096 * 0.5f);
    }

    void formNormals()
    {
        const auto at = [&](int x, int y) { return exists(x, y) ? distance_[index(x, y)] : 0.0f; };
        normal_.assign(pixels(), {});
        for (int y = 0; y < work_.height; ++y) {
            for (int x = 0; x < work_.width; ++x) {
                if (masked_[index(x, y)] != 0) {
                    normal_[index(x, y)] = {normalAlong(at(x - 1, y), at(x, y), at(x + 1, y), x, work_.width),
                                            normalAlong(at(x, y - 1), at(x, y), at(x, y + 1), y, work_.height)};
                }
            }
        }
    }

    int central(int before, int at, int after) const
    {
        return method_ == lumInpaintByFront ? (after - before) * 2 : std::abs(after - at) + std::abs(at - before);
    }
    int oneSided(int from, int to) const
    {
        return method_ == lumInpaintByFront ? to - from : 2 * std::abs(to - from);
    }

    /// The component along (dx, dy) of the gradient at a pixel, or `otherwise` if neither neighbour is known.
    int component(int x, int y, int c, int dx, int dy, int otherwise)
    {
        const bool before = isKnown(x - dx, y - dy);
        const bool after = isKnown(x + dx, y + dy);
        const int at = level(x, y, c);
        if (before && after) {
            return central(level(x - dx, y - dy, c), at, level(x + dx, y + dy, c));
        }
        if (after) {
            return oneSided(at, level(x + dx, y + dy, c));
        }
        return before ? oneSided(level(x - dx, y - dy, c), at) : otherwise;
    }

    /// On the known pixels around the masked ones; nearer to the edge of the image the pixels outside are unknown ones.
    void formGradients()
    {
        gradient_.assign(pixels() * 3, {});
        const int k = static_cast<int>(2 * radius_ + 1);
        for (int y = 0; y < work_.height; ++y) {
            for (int x = 0; x < work_.width; ++x) {
                if (masked_[index(x, y)] != 0 || !isNearMasked(x, y, k)) {
                    continue;
                }
                for (int c = 0; c < channels_; ++c) {
                    gradient(x, y, c) = {component(x, y, c, 1, 0, 0), component(x, y, c, 0, 1, 0)};
                }
            }
        }
    }

    /// Whether the k x k square of ones around the pixel meets the mask; an even one lies half a pixel before it.
    bool isNearMasked(int x, int y, int k) const
    {
        for (int j = -((k - 1) / 2); j <= k / 2; ++j) {
            for (int i = -((k - 1) / 2); i <= k / 2; ++i) {
                if (exists(x + i, y + j) && masked_[index(x + i, y + j)] != 0) {
                    return true;
                }
            }
        }
        return false;
    }

    void refreshGradients(int x, int y)
    {
        for (int c = 0; c < channels_; ++c) {
            Vector& own = gradient(x, y, c);
            own = {component(x, y, c, 1, 0, own.x), component(x, y, c, 0, 1, own.y)};
            for (const int side : {-1, 1}) {
                refreshBeside(x, y, c, side, 0);
                refreshBeside(x, y, c, 0, side);
            }
        }
    }

    /// The component of the neighbour at (dx, dy) along the line to it: central over the neighbour if the pixel beyond
    /// is known, else from p alone.
    void refreshBeside(int x, int y, int c, int dx, int dy)
    {
        const int i = x + dx;
        const int j = y + dy;
        if (!exists(i, j)) {
            return;
        }
        const int p = level(x, y, c);
        const int at = level(i, j, c);
        const bool backward = dx < 0 || dy < 0;
        int value = 0;
        if (isKnown(i + dx, j + dy)) {
            const int beyond = level(i + dx, j + dy, c);
            value = backward ? central(beyond, at, p) : central(p, at, beyond);
        } else if (isKnown(i, j)) {
            value = backward ? oneSided(at, p) : oneSided(p, at);
        } else {
            return;  // formed when the pixel itself is filled
        }
        (dx != 0 ? gradient(i, j, c).x : gradient(i, j, c).y) = value;
    }

    /// Row by row. A square that lies inside is cut to a circle of the radius itself, one at the edge to one of the
    /// truncated radius.
    std::vector<Neighbour> knownAround(int x, int y) const
    {
        const bool isInside = exists(x - r_, y - r_) && exists(x + r_, y + r_);
        std::vector<Neighbour> neighbours;
        for (int dy = -r_; dy <= r_; ++dy) {
            for (int dx = -r_; dx <= r_; ++dx) {
                const int d2 = dx * dx + dy * dy;
                const bool isNear = isInside ? !(static_cast<Lum32f>(d2) > radius_ * radius_) : d2 <= r_ * r_;
                if (d2 > 0 && isNear && isKnown(x + dx, y + dy)) {
                    neighbours.push_back({x + dx, y + dy, -dx, -dy});
                }
            }
        }
        return neighbours;
    }

    /// Sum and number of the known pixels above, left, right and below.
    std::pair<int, int> edgeNeighbours(int x, int y, int c)
    {
        int sum = 0;
        int number = 0;
        const int ways[4][2] = {{0, -1}, {-1, 0}, {1, 0}, {0, 1}};
        for (const auto& way : ways) {
            if (isKnown(x + way[0], y + way[1])) {
                sum += level(x + way[0], y + way[1], c);
                ++number;
            }
        }
        ++fallbacks_;
        return {sum, number};
    }

    void fillByFront(int x, int y)
    {
        const Vector normal = normal_[index(x, y)];
        Lum32f sum[3] = {};
        Lum32f gx[3] = {};
        Lum32f gy[3] = {};
        Lum32f weights = 1e-30f;
        for (const Neighbour& q : knownAround(x, y)) {
            const auto d2 = static_cast<Lum32f>(q.a * q.a + q.b * q.b);
            const Lum32f geometric = 1 / (d2 * std::sqrt(d2));
            auto t = static_cast<Lum32f>(q.b * normal.y + q.a * normal.x);
            t = std::fabs(t) < 2.5e-25f ? 2.5e-25f : t;
            const Lum32f l = std::fabs(distance_[index(q.x, q.y)] - distance_[index(x, y)]);
            const Lum32f w = std::fabs((1.0f / 4096) / (l + 1) * geometric * t);
            for (int c = 0; c < channels_; ++c) {
                sum[c] += w * static_cast<Lum32f>(level(q.x, q.y, c));
                gx[c] -= w * static_cast<Lum32f>(gradient(q.x, q.y, c).x * q.a);
                gy[c] -= w * static_cast<Lum32f>(gradient(q.x, q.y, c).y * q.b);
            }
            weights += w;
        }
        int values[3] = {};
        for (int c = 0; c < channels_; ++c) {
            Lum32f mean = sum[c] / weights;
            if (weights < 0.0001f) {
                const auto [known, number] = edgeNeighbours(x, y, c);
                gx[c] = 0;
                gy[c] = 0;
                mean = number == 0 ? 0 : static_cast<Lum32f>(known) / static_cast<Lum32f>(number);
            }
            const Lum32f root = std::sqrt(gx[c] * gx[c] + gy[c] * gy[c]);
            const double term = static_cast<double>(gx[0] + gy[0]) / (1e-20 + static_cast<double>(root));
            const double value = static_cast<double>(mean + 0.5f) + term;
            values[c] = static_cast<int>(std::min(std::max(value, 0.0), 255.0));
        }
        for (int c = 0; c < channels_; ++c) {
            level(x, y, c) = values[c];
        }
    }

    void fillByIsophote(int x, int y)
    {
        const std::vector<Neighbour> neighbours = knownAround(x, y);
        for (int c = 0; c < channels_; ++c) {
            Lum32f sum = 0;
            Lum32f weights = 1e-30f;
            for (const Neighbour& q : neighbours) {
                const auto d2 = static_cast<Lum32f>(q.a * q.a + q.b * q.b);
                const Lum32f geometric = 1 / ((d2 * d2 + 1) * std::sqrt(d2));
                const Vector g = gradient(q.x, q.y, c);
                const int across = std::abs(q.b * g.x - q.a * g.y);
                const Lum32f u =
                    across == 0 ? 1e-6f
                                : static_cast<Lum32f>(across) / std::sqrt(static_cast<Lum32f>(g.x * g.x + g.y * g.y));
                const Lum32f w = u * geometric;
                sum += w * static_cast<Lum32f>(level(q.x, q.y, c));
                weights += w;
            }
            Lum32f mean = sum / weights;
            if (weights < 0.0001f) {
                const auto [known, number] = edgeNeighbours(x, y, c);
                mean = number == 0 ? 0 : static_cast<Lum32f>(known) / static_cast<Lum32f>(number);
            }
            level(x, y, c) = static_cast<int>(mean + 0.5f);
        }
    }

    WorkRectangle work_;
    Lum32f radius_;
    int r_;
    LumiInpaintMethod method_;
    int channels_ = 1;
    int fallbacks_ = 0;
    std::vector<char> masked_;
    std::vector<char> unknown_;
    std::vector<Lum32f> distance_;
    std::vector<std::pair<Lum32f, std::size_t>> order_;  ///< distance and index
    std::vector<Vector> normal_;
    std::vector<Vector> gradient_;
    std::vector<int> image_;
};

}  // namespace lumcv::test::distance
