// What a frame does to the modes of pixels, and what they tell of them.
//
// A kernel works on the pixels of one group at a time, a lane for each, or on a single pixel. Lanes take different
// ways: some match in the first slot, some later, some never; a mask says for each step which of them take part.
#pragma once

#include "lumcv/motion.h"
#include "simd/simd.hpp"

namespace lumcv {

/// The modes of a few pixels. Each slot has planes of its own: one of weights, and one with four floats for each pixel,
/// the means of the channels and the variance. Of pixels that are kept together, these stand lane by lane.
struct Slots
{
    Lum32f* weights;
    Lum32f* groups;
    int64_t plane;     // pixels of the model
    int64_t together;  // pixels

    Lum32f* weight(int64_t slot) const
    {
        return weights + slot * plane;
    }

    /// Channel 0, 1, 2 of the mean, or 3: the variance.
    Lum32f* mean(int64_t slot, int channel) const
    {
        return groups + 4 * slot * plane + channel * together;
    }
};

/// The numbers of a frame.
struct FrameRules
{
    LumFGMMModel model;
    Lum32f rate;  // a
    Lum32f kept;  // 1 - a
    Lum32f loss;  // a * CT
    Lum32f mostModes;
};

template <int N>
class ModesOf
{
    using V = simd::Vec<Lum32f, N>;
    using M = simd::Mask<Lum32f, N>;

  public:
    [[gnu::always_inline]] ModesOf(const Slots& slots, const FrameRules& rules, const Lum8u* pixels)
        : slots_(slots), rules_(rules), pixel_(simd::loadTriples<N>(pixels))
    {
    }

    /// Updates the modes and gives the classes.
    [[gnu::always_inline]] V takeFrame(Lum32f* counts)
    {
        const V before = simd::min(simd::load<N>(counts), all(rules_.mostModes));
        count_ = before;
        const Matches matches = match(before);
        if (simd::any(matches.open))
            create(matches);
        else
            for (int64_t s = 0; s < matches.slots; ++s)
                simd::store(slots_.weight(s), simd::load<N>(slots_.weight(s)) * matches.scale);
        simd::store(counts, count_);
        return classify(before, matches.background);
    }

  private:
    struct Matches
    {
        M background, open;  // open: no mode has matched
        V scale;             // of the weights, that they become shares
        int64_t slots;       // that any of the pixels had
    };

    [[gnu::always_inline]] static V all(Lum32f value)
    {
        return simd::broadcast<N>(value);
    }

    [[gnu::always_inline]] static V dot(V a0, V a1, V a2, V b0, V b1, V b2)
    {
        return (a0 * b0 + a1 * b1) + a2 * b2;
    }

    [[gnu::always_inline]] Matches match(V before)
    {
        const V zero = all(0), one = all(1);
        V total = zero;
        M open = simd::greater(one, zero), background = simd::greater(zero, one);
        int64_t s = 0;
        for (V slot = zero;; ++s, slot = slot + one) {
            const M live = simd::greater(before, slot);
            if (!simd::any(live))
                break;
            V w = all(rules_.kept) * simd::load<N>(slots_.weight(s)) - all(rules_.loss);
            const M asked = live & open;
            M hit = without(asked, asked);
            if (simd::any(asked)) {
                const V m0 = simd::load<N>(slots_.mean(s, 0)), m1 = simd::load<N>(slots_.mean(s, 1));
                const V m2 = simd::load<N>(slots_.mean(s, 2)), variance = simd::load<N>(slots_.mean(s, 3));
                const V d0 = m0 - pixel_.a, d1 = m1 - pixel_.b, d2 = m2 - pixel_.c;
                const V distance = dot(d0, d1, d2, d0, d1, d2);
                background = background | (asked & simd::less(total, all(rules_.model.bckgRatio)) &
                                           simd::greater(all(rules_.model.varWBRatio) * variance, distance));
                hit = asked & simd::greater(all(rules_.model.varWGen) * variance, distance);
                if (simd::any(hit)) {
                    w = simd::select(hit, w + all(rules_.rate), w);
                    const M changed = without(hit, simd::equal(w, zero));
                    const V k = all(rules_.rate) / w;
                    const V grown = variance + k * (distance - variance);
                    const V limited = simd::min(simd::max(grown, all(rules_.model.varMin)), all(rules_.model.varMax));
                    simd::store(slots_.mean(s, 0), simd::select(changed, m0 - k * d0, m0));
                    simd::store(slots_.mean(s, 1), simd::select(changed, m1 - k * d1, m1));
                    simd::store(slots_.mean(s, 2), simd::select(changed, m2 - k * d2, m2));
                    simd::store(slots_.mean(s, 3), simd::select(changed, limited, variance));
                    open = without(open, hit);
                }
            }
            const M dies = live & simd::greater(all(rules_.loss), w);
            count_ = count_ - simd::select(dies, one, zero);
            const V weight = simd::select(without(live, dies), w, zero);
            simd::store(slots_.weight(s), weight);
            total = total + weight;
            if (s > 0 && simd::any(hit))
                moveUp(s, hit, w);
        }
        return {background, open, one / total, s};
    }

    /// Moves modes from a slot to the first one above which nothing is heavier; `w` decides, and not the weight in the
    /// slot, which is 0 if the mode has just died.
    [[gnu::always_inline]] void moveUp(int64_t slot, M moving, V w)
    {
        for (; slot > 0; --slot) {
            moving = moving & simd::atMost(simd::load<N>(slots_.weight(slot - 1)), w);
            if (!simd::any(moving))
                return;
            exchange(slot, moving);
        }
    }

    /// Lets modes change places with those above them.
    [[gnu::always_inline]] void exchange(int64_t slot, M moving)
    {
        const auto planes = [moving](Lum32f* upper, Lum32f* lower) {
            const V up = simd::load<N>(upper), low = simd::load<N>(lower);
            simd::store(upper, simd::select(moving, low, up));
            simd::store(lower, simd::select(moving, up, low));
        };
        planes(slots_.weight(slot - 1), slots_.weight(slot));
        for (int channel = 0; channel < 4; ++channel)
            planes(slots_.mean(slot - 1, channel), slots_.mean(slot, channel));
    }

    /// Makes modes of the pixels that match none, and scales all weights.
    [[gnu::always_inline]] void create(const Matches& matches)
    {
        const V zero = all(0), one = all(1), most = all(rules_.mostModes);
        const M created = matches.open;
        const V place = simd::select(simd::less(count_, most), count_, count_ - one);
        const V weight = simd::select(simd::equal(place, zero), one, all(rules_.rate));
        count_ = simd::select(created, place + one, count_);
        int64_t s = 0;
        for (V slot = zero;; ++s, slot = slot + one) {
            const M above = created & simd::greater(place, slot), here = created & simd::equal(place, slot);
            if (s >= matches.slots && !simd::any(above | here))
                break;
            const V w = simd::load<N>(slots_.weight(s)) * matches.scale;
            const V shrunk = simd::select(above, w * all(rules_.kept), w);
            simd::store(slots_.weight(s), simd::select(here, weight, shrunk));
            if (simd::any(here)) {
                const auto put = [here](Lum32f* to, V v) { simd::store(to, simd::select(here, v, simd::load<N>(to))); };
                put(slots_.mean(s, 0), pixel_.a);
                put(slots_.mean(s, 1), pixel_.b);
                put(slots_.mean(s, 2), pixel_.c);
                put(slots_.mean(s, 3), all(rules_.model.varInit));
            }
        }
        V at = place;
        for (--s; s > 0; --s) {
            const M moving = without(created & simd::equal(at, all(static_cast<Lum32f>(s))),
                                     simd::greater(simd::load<N>(slots_.weight(s - 1)), all(rules_.rate)));
            if (simd::any(moving)) {
                exchange(s, moving);
                at = simd::select(moving, at - one, at);
            }
        }
    }

    [[gnu::always_inline]] V classify(V before, M background)
    {
        const V zero = all(0), one = all(1), foreground = all(255);
        V result = simd::select(background, zero, foreground);
        if (rules_.model.shadowFlag == 0)
            return result;
        M open = without(simd::greater(before, zero), background);
        V total = zero, slot = zero;
        for (int64_t s = 0;; ++s, slot = slot + one) {
            open = open & simd::greater(count_, slot);
            if (!simd::any(open))
                return result;
            const V m0 = simd::load<N>(slots_.mean(s, 0)), m1 = simd::load<N>(slots_.mean(s, 1));
            const V m2 = simd::load<N>(slots_.mean(s, 2)), variance = simd::load<N>(slots_.mean(s, 3));
            const V mm = dot(m0, m1, m2, m0, m1, m2), mp = dot(m0, m1, m2, pixel_.a, pixel_.b, pixel_.c);
            open = without(open, simd::equal(mm, zero));
            const V r = mp / mm;
            const V e0 = r * m0 - pixel_.a, e1 = r * m1 - pixel_.b, e2 = r * m2 - pixel_.c;
            const V reach = r * r * all(rules_.model.varWBRatio) * variance;
            const M shadow = open & simd::atMost(mp, mm) & simd::atMost(all(rules_.model.shadowRatio) * mm, mp) &
                             simd::greater(reach, dot(e0, e1, e2, e0, e1, e2));
            result = simd::select(shadow, all(rules_.model.shadowValue), result);
            total = total + simd::load<N>(slots_.weight(s));
            open = without(without(open, shadow), simd::greater(total, all(rules_.model.bckgRatio)));
        }
    }

    Slots slots_;
    const FrameRules& rules_;
    simd::Triple<N> pixel_;
    V count_;
};

/// The pixels of the background.
template <int N>
[[gnu::always_inline]] inline void renderBackground(const Slots& slots, const Lum32f* counts, Lum32f bckgRatio,
                                                    Lum8u* pixels)
{
    const auto zero = simd::broadcast<N>(0.0f), one = simd::broadcast<N>(1.0f);
    const auto count = simd::load<N>(counts);
    auto sum0 = zero, sum1 = zero, sum2 = zero, total = zero, slot = zero;
    auto open = simd::greater(count, zero);
    for (int64_t s = 0;; ++s, slot = slot + one) {
        open = open & simd::greater(count, slot);
        if (!simd::any(open))
            break;
        const auto w = simd::load<N>(slots.weight(s));
        const auto grown = [=](auto sum, int channel) {
            return simd::select(open, sum + w * simd::load<N>(slots.mean(s, channel)), sum);
        };
        sum0 = grown(sum0, 0);
        sum1 = grown(sum1, 1);
        sum2 = grown(sum2, 2);
        total = simd::select(open, total + w, total);
        open = without(open, simd::greater(total, simd::broadcast<N>(bckgRatio)));
    }
    const auto divisor = simd::select(simd::greater(count, zero), total, one);
    const auto white = simd::broadcast<N>(255.0f);
    simd::storeTriples(pixels, simd::min(sum0 / divisor, white), simd::min(sum1 / divisor, white),
                       simd::min(sum2 / divisor, white));
}

}  // namespace lumcv
