// The mixture of Gaussians written out plainly, pixel by pixel.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::motion {

using Colour = std::array<Lum32f, 3>;

struct Mode
{
    Lum32f weight = 0;
    Colour mean = {};
    Lum32f variance = 0;
};

inline Lum32f product(const Colour& u, const Colour& v)
{
    const Lum32f first = u[0] * v[0];
    const Lum32f second = u[1] * v[1];
    const Lum32f third = u[2] * v[2];
    return (first + second) + third;
}

/// How often what happened: a test that wants something to happen looks here.
struct Events
{
    long created = 0;
    long replaced = 0;
    long died = 0;
    long diedTogether = 0;  ///< frames of a pixel in which more than one mode died
    long rose = 0;          ///< a matched mode changed places
    long newModeRose = 0;
    long dropped = 0;  ///< by a lowered maximum
    long matchedWithoutWeight = 0;
    long background = 0;
    long foreground = 0;
    long shadow = 0;
    long blackMean = 0;
    long shareReached = 0;  ///< the shadow test ended by the share of the weights
    long modesExhausted = 0;
};

/// The constants of a frame.
struct Rate
{
    Lum32f a = 0;
    Lum32f rest = 0;    ///< 1 - a
    Lum32f pruned = 0;  ///< a * CT
};

class Mixture
{
  public:
    Mixture(LumiSize size, int capacity, const LumFGMMModel& model)
        : width_(size.width),
          maxModes_(static_cast<std::size_t>(capacity)),
          model_(model),
          modes_(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height))
    {
    }

    const LumFGMMModel& model() const
    {
        return model_;
    }
    const std::vector<Mode>& modes(int x, int y) const
    {
        return modes_[index(x, y)];
    }
    const Events& events() const
    {
        return events_;
    }
    std::size_t maxModes() const
    {
        return maxModes_;
    }

    /// The constants that the next frame would take with this model.
    Rate nextRate(const LumFGMMModel& model, Lum64f learningRate) const
    {
        const Lum64f t = frames_ + 1;
        const Lum64f a =
            t > 1 && learningRate >= 0 ? learningRate : 1.0 / std::min(2.0 * t, static_cast<Lum64f>(model.numFrames));
        return {static_cast<Lum32f>(a), static_cast<Lum32f>(1.0 - a),
                static_cast<Lum32f>(a * static_cast<Lum64f>(model.CT))};
    }

    void frame(const Image<Lum8u>& source, Image<Lum8u>& classes, const LumFGMMModel* model, Lum64f learningRate)
    {
        if (model != nullptr) {
            model_ = *model;
            maxModes_ = std::max<std::size_t>(model->maxNGauss, 1);
        }
        rate_ = nextRate(model_, learningRate);
        frames_ += 1;
        classes.forEach(Area::Roi, [&](Lum8u& pixelClass, int x, int y, int) {
            Colour p;
            for (int c = 0; c < 3; ++c) {
                p[static_cast<std::size_t>(c)] = static_cast<Lum32f>(source.at(x, y, c));
            }
            pixelClass = update(modes_[index(x, y)], p);
        });
    }

    void render(Image<Lum8u>& background) const
    {
        background.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int c) {
            Lum32f sum = 0;
            Lum32f total = 0;
            for (const Mode& mode : modes(x, y)) {
                sum += mode.weight * mode.mean[static_cast<std::size_t>(c)];
                total += mode.weight;
                if (total > model_.bckgRatio) {
                    break;
                }
            }
            const Lum32f value = modes(x, y).empty() ? 0 : std::nearbyint(sum / total);
            element = static_cast<Lum8u>(std::clamp(value, 0.0f, 255.0f));
        });
    }

  private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }

    Lum8u update(std::vector<Mode>& modes, const Colour& p)
    {
        if (modes.size() > maxModes_) {
            modes.resize(maxModes_);
            ++events_.dropped;
        }
        const bool hadModes = !modes.empty();
        std::size_t count = modes.size();
        Lum32f total = 0;
        bool matched = false;
        bool background = false;
        for (std::size_t slot = 0; slot < modes.size(); ++slot) {
            Lum32f w = -rate_.pruned + rate_.rest * modes[slot].weight;
            std::size_t at = slot;
            if (!matched) {
                matched = match(modes[slot], p, total, w, background);
                if (matched) {
                    modes[slot].weight = w;
                    for (; at > 0 && w >= modes[at - 1].weight; --at) {
                        std::swap(modes[at], modes[at - 1]);
                        ++events_.rose;
                    }
                }
            }
            if (rate_.pruned > w) {
                w = 0;
                --count;
                ++events_.died;
            }
            modes[at].weight = w;
            total += w;
        }
        events_.diedTogether += modes.size() > count + 1 ? 1 : 0;
        modes.resize(count);
        if (count > 0) {
            const Lum32f inverse = 1.0f / total;
            for (Mode& mode : modes) {
                mode.weight *= inverse;
            }
        }
        if (!matched) {
            create(modes, p);
        }
        return classOf(modes, p, background, hadModes);
    }

    /// Whether the pixel belongs to the mode, which is updated if so.
    bool match(Mode& mode, const Colour& p, Lum32f total, Lum32f& w, bool& background)
    {
        const Colour d = {mode.mean[0] - p[0], mode.mean[1] - p[1], mode.mean[2] - p[2]};
        const Lum32f dist2 = product(d, d);
        if (total < model_.bckgRatio && model_.varWBRatio * mode.variance > dist2) {
            background = true;
        }
        if (!(model_.varWGen * mode.variance > dist2)) {
            return false;
        }
        w += rate_.a;
        if (w == 0) {
            ++events_.matchedWithoutWeight;
            return true;
        }
        const Lum32f k = rate_.a / w;
        for (std::size_t c = 0; c < 3; ++c) {
            mode.mean[c] -= k * d[c];
        }
        const Lum32f variance = mode.variance + k * (dist2 - mode.variance);
        const Lum32f raised = variance > model_.varMin ? variance : model_.varMin;
        mode.variance = raised < model_.varMax ? raised : model_.varMax;
        return true;
    }

    void create(std::vector<Mode>& modes, const Colour& p)
    {
        if (modes.size() == maxModes_) {
            modes.pop_back();
            ++events_.replaced;
        }
        ++events_.created;
        for (Mode& mode : modes) {
            mode.weight *= rate_.rest;
        }
        modes.push_back({modes.empty() ? 1.0f : rate_.a, p, model_.varInit});
        for (std::size_t at = modes.size() - 1; at > 0 && !(modes[at - 1].weight > rate_.a); --at) {
            std::swap(modes[at], modes[at - 1]);
            ++events_.newModeRose;
        }
    }

    Lum8u classOf(const std::vector<Mode>& modes, const Colour& p, bool background, bool hadModes)
    {
        if (background) {
            ++events_.background;
            return 0;
        }
        if (model_.shadowFlag != 0 && hadModes && isShadow(modes, p)) {
            ++events_.shadow;
            return model_.shadowValue;
        }
        ++events_.foreground;
        return 255;
    }

    bool isShadow(const std::vector<Mode>& modes, const Colour& p)
    {
        Lum32f sum = 0;
        for (const Mode& mode : modes) {
            const Colour& m = mode.mean;
            const Lum32f mm = product(m, m);
            if (mm == 0) {
                ++events_.blackMean;
                return false;
            }
            const Lum32f mp = product(m, p);
            if (mm >= mp && mp >= model_.shadowRatio * mm) {
                const Lum32f r = mp / mm;
                const Colour e = {r * m[0] - p[0], r * m[1] - p[1], r * m[2] - p[2]};
                const Lum32f bound = ((r * r) * model_.varWBRatio) * mode.variance;
                if (bound > product(e, e)) {
                    return true;
                }
            }
            sum += mode.weight;
            if (sum > model_.bckgRatio) {
                ++events_.shareReached;
                return false;
            }
        }
        ++events_.modesExhausted;
        return false;
    }

    int width_;
    std::size_t maxModes_;
    LumFGMMModel model_;
    std::vector<std::vector<Mode>> modes_;
    Lum64f frames_ = 0;
    Rate rate_;
    Events events_;
};

}  // namespace lumcv::test::motion
