// The norms over a mask: which sums make them, the checks, and the walk over the rows.
#pragma once

#include <bit>
#include <cmath>
#include <limits>

#include "frame/checks.hpp"
#include "stats/norm_sums.hpp"
#include "stats/pixel_groups.hpp"

namespace lumcv {

enum class Sense
{
    inf,
    l1,
    l2
};

/// What the norm of a sense gathers from pixels of type T.
template <Sense sense, class T>
struct GathererOf
{
    using Type = Greatest<T>;
};
template <>
struct GathererOf<Sense::l1, Lum8u>
{
    using Type = IntegerSum<ByteMagnitudes>;
};
template <>
struct GathererOf<Sense::l2, Lum8u>
{
    using Type = IntegerSum<ByteSquares>;
};
template <>
struct GathererOf<Sense::l1, Lum16u>
{
    using Type = IntegerSum<WordMagnitudes>;
};
template <>
struct GathererOf<Sense::l2, Lum16u>
{
    using Type = IntegerSum<WordSquares>;
};
template <>
struct GathererOf<Sense::l1, Lum32f>
{
    using Type = FloatSum<Power::magnitude, Lum64f>;
};
template <>
struct GathererOf<Sense::l2, Lum32f>
{
    using Type = FloatSum<Power::square, Lum64f>;
};

/// One channel of an image: of several, those before the channel of interest are skipped.
template <class T, int channels_>
struct Channel
{
    static constexpr int channels = channels_;

    Plane<const T> image;
    Lum32s number;  ///< 1 for the first

    PixelRow<T, channels> row(int64_t y) const
    {
        return {image.row(y) + (number - 1), T{0}};
    }
};

/// The norm of an image, or of the difference of two.
template <class Gatherer>
struct Single
{
    Gatherer values;

    template <class... Steps>
    void add(const Lum8u* mask, Steps... steps)
    {
        values.add(mask, steps...);
    }
    void spill()
    {
        values.spill();
    }
    void endRow()
    {
        values.endRow();
    }
};

/// The norm of the difference of two images, and that of the second.
template <class Gatherer>
struct Relative
{
    Gatherer difference, reference;

    template <class V>
    void add(const Lum8u* mask, V a, V b)
    {
        difference.add(mask, a, b);
        reference.add(mask, b);
    }
    void spill()
    {
        difference.spill();
        reference.spill();
    }
    void endRow()
    {
        difference.endRow();
        reference.endRow();
    }
};

/// Shows each step of pixels of the images to a gatherer, row after row.
template <class Gatherer, class T, int channels, class... Images>
[[gnu::flatten]] Gatherer gathered(LumiSize size, Plane<const Lum8u> mask, Channel<T, channels> first, Images... others)
{
    constexpr int lanes = stepLanes<T>;
    constexpr int64_t spilled = int64_t{stepsBetweenSpills} * lanes;
    const auto step = [](Gatherer sums, const Lum8u* m, auto*... p) {
        sums.add(m, simd::loadPixels<lanes, channels>(p)...);
        return sums;
    };
    Gatherer sums{};
    for (int64_t y = 0; y < size.height; ++y) {
        for (int64_t x = 0; x < size.width; x += spilled) {
            const int64_t end = size.width - x < spilled ? size.width : x + spilled;
            const PixelRow<Lum8u, 1> maskRow{mask.row(y), 0};
            sums = foldGroups<lanes>(x, end, sums, step, maskRow, first.row(y), others.row(y)...);
            sums.spill();
        }
        sums.endRow();
    }
    return sums;
}

/// The documented order of checks: all strides, the mask's among them, before all alignments.
template <class... Images>
LumStatus normStatus(LumiSize size, const Lum64f* value, Plane<const Lum8u> mask, Images... images)
{
    Checks checks;
    checks.notNull(images.image.pixels..., mask.pixels, value).size(size);
    (checks.step(images.image, rowElements(size.width, Images::channels)), ...);
    checks.step(mask, size.width);
    (checks.alignment(images.image), ...);
    return checks.require(((1 <= images.number && images.number <= Images::channels) && ...), lumErrChannelOfInterest)
        .status();
}

/// A not-a-number has the same bits wherever it comes from.
inline Lum64f canonical(Lum64f value)
{
    return value != value ? std::bit_cast<Lum64f>(0xFFF8000000000000) : value;
}

template <Sense sense>
Lum64f rooted(Lum64f sum)
{
    return sense == Sense::l2 ? std::sqrt(sum) : sum;
}

/// The norm of an image, or of the difference of two, made of what the gatherer gathers.
template <Sense sense, class Gatherer, class... Images>
LumStatus normBy(LumiSize size, Lum64f* value, Plane<const Lum8u> mask, Images... images)
{
    const LumStatus status = normStatus(size, value, mask, images...);
    if (status == lumOk)
        *value = canonical(rooted<sense>(gathered<Single<Gatherer>>(size, mask, images...).values.value()));
    return status;
}

template <Sense sense, class T, int channels>
LumStatus norm(Channel<T, channels> image, Plane<const Lum8u> mask, LumiSize size, Lum64f* value)
{
    return normBy<sense, typename GathererOf<sense, T>::Type>(size, value, mask, image);
}

template <Sense sense, class T, int channels>
LumStatus normOfDifference(Channel<T, channels> image1, Channel<T, channels> image2, Plane<const Lum8u> mask,
                           LumiSize size, Lum64f* value)
{
    return normBy<sense, typename GathererOf<sense, T>::Type>(size, value, mask, image1, image2);
}

/// N / D where D is zero.
inline Lum64f zeroQuotient(Lum64f n)
{
    constexpr Lum64f infinity = std::numeric_limits<Lum64f>::infinity();
    return n > 0.0 ? infinity : n == 0.0 ? std::numeric_limits<Lum64f>::quiet_NaN() : -infinity;
}

template <Sense sense, class T, int channels>
LumStatus relativeNorm(Channel<T, channels> image1, Channel<T, channels> image2, Plane<const Lum8u> mask, LumiSize size,
                       Lum64f* value)
{
    const LumStatus status = normStatus(size, value, mask, image1, image2);
    if (status != lumOk)
        return status;
    const auto sums = gathered<Relative<typename GathererOf<sense, T>::Type>>(size, mask, image1, image2);
    const Lum64f difference = sums.difference.value();
    const Lum64f reference = sums.reference.value();
    if (reference == 0.0) {
        *value = canonical(zeroQuotient(difference));
        return lumWrnZeroDivisor;
    }
    *value = canonical(rooted<sense>(difference / reference));
    return lumOk;
}

// The operands of the exports.

template <class T>
Channel<T, 1> image(const T* pixels, Lum32s step)
{
    return {source(pixels, step), 1};
}

template <class T>
Channel<T, 3> channelOfThree(const T* pixels, Lum32s step, Lum32s number)
{
    return {source(pixels, step), number};
}

}  // namespace lumcv
