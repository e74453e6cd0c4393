// The state of a background model to the last bit, seen from outside: parameters are set so that each comparison stands
// at the very edge, where the smallest difference in a weight, a mean, a variance or a sum turns the result.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "motion/background_fixture.hpp"

namespace lumcv::test::motion {
namespace {

constexpr Lum32f kLargest = std::numeric_limits<Lum32f>::max();

/// The least float above 0 of which the monotone predicate holds, or the largest float.
template <class Predicate>
Lum32f leastFor(Predicate holds)
{
    std::uint32_t low = 0;  // does not hold, or is not looked at
    std::uint32_t high = std::bit_cast<std::uint32_t>(kLargest);
    while (high - low > 1) {
        const std::uint32_t middle = low + (high - low) / 2;
        (holds(std::bit_cast<Lum32f>(middle)) ? high : low) = middle;
    }
    return std::bit_cast<Lum32f>(high);
}

/// At the edge: the float itself, or the one before it.
Lum32f atEdge(Lum32f least, bool itself)
{
    return itself ? least : std::nextafter(least, 0.0f);
}

Lum32f distance2(const Colour& mean, const Colour& p)
{
    const Colour d = {mean[0] - p[0], mean[1] - p[1], mean[2] - p[2]};
    return product(d, d);
}

struct Probe
{
    std::array<int, 3> colour;
    Lum64f rate;
    LumFGMMModel model;

    Colour pixel() const
    {
        return {static_cast<Lum32f>(colour[0]), static_cast<Lum32f>(colour[1]), static_cast<Lum32f>(colour[2])};
    }
};

/// The modes that the frame of a probe would leave.
std::vector<Mode> modesAfter(const Uniform& uniform, const Probe& probe)
{
    Mixture mixture({1, 1}, 5, probe.model);
    mixture = uniform.mixture();
    Image<Lum8u> source(layoutOf({13, 2}, 3));
    source.forEach(Area::Roi, [&](Lum8u& element, int, int, int c) {
        element = static_cast<Lum8u>(probe.colour[static_cast<std::size_t>(c)]);
    });
    Image<Lum8u> classes(layoutOf({13, 2}, 1));
    mixture.frame(source, classes, &probe.model, probe.rate);
    return mixture.modes(12, 1);
}

/// The first of them; none if all have died.
Mode heaviestAfter(const Uniform& uniform, const Probe& probe)
{
    const std::vector<Mode> modes = modesAfter(uniform, probe);
    return modes.empty() ? Mode{} : modes[0];
}

/// What stands at the edge in a frame.
enum class Edge
{
    Background,    ///< varWBRatio * var > dist2
    Match,         ///< varWGen * var > dist2
    Total,         ///< total < bckgRatio, of the weights before they are normalised
    Pruning,       ///< a * CT > w
    Rendering,     ///< total > bckgRatio when the background is rendered
    ShadowRatio,   ///< mp >= shadowRatio * mm
    ShadowColour,  ///< ((r * r) * varWBRatio) * var > e.e
    ShadowShare,   ///< sum > bckgRatio in the shadow test
    Count
};

/// The last slot that the loop comes to, of those before the frame, that is nearest in its variances.
std::size_t nearestSlot(const std::vector<Mode>& modes, const Colour& p)
{
    std::size_t nearest = 0;
    for (std::size_t s = 1; s < modes.size(); ++s) {
        if (distance2(modes[s].mean, p) / modes[s].variance <
            distance2(modes[nearest].mean, p) / modes[nearest].variance) {
            nearest = s;
        }
    }
    return nearest;
}

void toEdge(const Uniform& uniform, Probe& probe, Edge edge, bool itself, Random& random)
{
    const std::vector<Mode>& modes = uniform.modes();
    LumFGMMModel& model = probe.model;
    const Colour p = probe.pixel();
    const Rate rate = uniform.mixture().nextRate(model, probe.rate);
    const std::size_t slot = nearestSlot(modes, p);
    const Lum32f dist2 = distance2(modes[slot].mean, p);
    const auto passes = [&](Lum32f ratio) { return ratio * modes[slot].variance > dist2; };
    switch (edge) {
        case Edge::Background:
            model.bckgRatio = 5;
            model.varWBRatio = atEdge(leastFor(passes), itself);
            break;
        case Edge::Match:
            model.varWGen = atEdge(leastFor(passes), itself);
            break;
        case Edge::Total: {
            // up to the slot that would be background; nothing matches before
            Lum32f total = 0;
            for (std::size_t s = 0; s < slot; ++s) {
                const Lum32f w = -rate.pruned + rate.rest * modes[s].weight;
                total += rate.pruned > w ? 0 : w;
            }
            model.varWGen = 0;
            model.varWBRatio = 2 * dist2 / modes[slot].variance + 0.1f;
            model.bckgRatio = itself ? total : std::nextafter(total, 10.0f);
            break;
        }
        case Edge::Pruning: {
            const std::size_t s = static_cast<std::size_t>(random.between(0, static_cast<long>(modes.size()) - 1));
            LumFGMMModel trial = model;
            const Lum32f ct = leastFor([&](Lum32f candidate) {
                trial.CT = candidate;
                const Rate r = uniform.mixture().nextRate(trial, probe.rate);
                return r.pruned > -r.pruned + r.rest * modes[s].weight;
            });
            model.CT = ct < 5 ? atEdge(ct, itself) : model.CT;
            break;
        }
        case Edge::Rendering: {
            const std::vector<Mode> after = modesAfter(uniform, probe);
            if (after.empty()) {
                break;
            }
            const std::size_t last = static_cast<std::size_t>(random.between(0, static_cast<long>(after.size()) - 1));
            Lum32f total = 0;
            for (std::size_t s = 0; s <= last; ++s) {
                total += after[s].weight;
            }
            model.bckgRatio = itself ? total : std::nextafter(total, 0.0f);
            break;
        }
        case Edge::ShadowRatio: {
            const Mode first = heaviestAfter(uniform, probe);
            const Lum32f mm = product(first.mean, first.mean);
            const Lum32f mp = product(first.mean, p);
            model.bckgRatio = -1;
            model.varWBRatio = 1000;
            model.shadowRatio = atEdge(leastFor([&](Lum32f ratio) { return mp < ratio * mm; }), itself);
            break;
        }
        case Edge::ShadowColour: {
            const Mode first = heaviestAfter(uniform, probe);
            const Lum32f mm = product(first.mean, first.mean);
            const Lum32f r = product(first.mean, p) / mm;
            const Colour e = {r * first.mean[0] - p[0], r * first.mean[1] - p[1], r * first.mean[2] - p[2]};
            const Lum32f ee = product(e, e);
            model.bckgRatio = -1;
            model.shadowRatio = 0.01f;
            model.varWBRatio =
                atEdge(leastFor([&](Lum32f ratio) { return ((r * r) * ratio) * first.variance > ee; }), itself);
            break;
        }
        case Edge::ShadowShare: {
            // the pixel is the shadow of a slot behind the first: it is reached or not
            const std::vector<Mode> after = modesAfter(uniform, probe);
            if (after.empty()) {
                break;
            }
            Lum32f sum = 0;
            const std::size_t last = static_cast<std::size_t>(random.between(0, static_cast<long>(after.size()) - 1));
            for (std::size_t s = 0; s <= last; ++s) {
                sum += after[s].weight;
            }
            model.bckgRatio = itself ? sum : std::nextafter(sum, 0.0f);
            model.varWGen = 0;
            break;
        }
        default:
            break;
    }
}

/// A colour near one of the modes, a darker one, or a new one.
std::array<int, 3> drawColour(const std::vector<Mode>& modes, Random& random)
{
    const Mode& mode = modes[static_cast<std::size_t>(random.between(0, static_cast<long>(modes.size()) - 1))];
    const int kind = static_cast<int>(random.between(0, 9));
    const Lum32f brightness = kind < 4 ? 0.55f + 0.45f * random.unit<Lum32f>() : 1;
    std::array<int, 3> colour = {};
    for (std::size_t c = 0; c < 3; ++c) {
        const int near = static_cast<int>(mode.mean[c] * brightness) + static_cast<int>(random.between(-6, 6));
        colour[c] = kind == 9 ? static_cast<int>(random.between(0, 255)) : std::clamp(near, 0, 255);
    }
    return colour;
}

TEST(BackgroundEdges, EveryComparison)
{
    // classes on both sides of each edge, or the probes would probe nothing
    long zero[static_cast<int>(Edge::Count)] = {};
    long other[static_cast<int>(Edge::Count)] = {};
    for (int seed = 0; seed < 300; ++seed) {
        Random random(static_cast<std::uint64_t>(seed));
        Uniform uniform;
        uniform.show({static_cast<int>(random.between(60, 255)), static_cast<int>(random.between(60, 255)),
                      static_cast<int>(random.between(60, 255))});
        for (int i = 0; i < 60 && !testing::Test::HasFailure(); ++i) {
            if (uniform.modes().empty()) {
                uniform.show({static_cast<int>(random.between(0, 255)), 99, 99});
            }
            Probe probe;
            probe.model = drawModel(random, 5);
            probe.model.numFrames += 1;
            probe.model.maxNGauss = 5;
            probe.model.CT = random.oneIn(2) ? 0 : 0.1f * random.unit<Lum32f>();
            probe.rate = random.oneIn(2) ? -1 : random.unit<Lum64f>() * 0.3;
            probe.colour = drawColour(uniform.modes(), random);
            const Edge edge = static_cast<Edge>(random.between(0, static_cast<int>(Edge::Count) - 1));
            toEdge(uniform, probe, edge, random.oneIn(2), random);
            const Lum8u result = uniform.show(probe.colour, probe.rate, &probe.model);
            uniform.rendered();
            ASSERT_FALSE(testing::Test::HasFailure())
                << "seed " << seed << ", frame " << i << ", edge " << static_cast<int>(edge) << ", model "
                << textOf(probe.model) << ", rate " << probe.rate << ", colour " << probe.colour[0] << " "
                << probe.colour[1] << " " << probe.colour[2];
            (result == 0 ? zero : other)[static_cast<int>(edge)] += 1;
        }
    }
    for (const Edge edge : {Edge::Background, Edge::Match, Edge::Total}) {
        EXPECT_GT(zero[static_cast<int>(edge)], 300) << static_cast<int>(edge);
        EXPECT_GT(other[static_cast<int>(edge)], 300) << static_cast<int>(edge);
    }
}

}  // namespace
}  // namespace lumcv::test::motion
