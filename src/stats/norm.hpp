// The norms over a mask: which sums make them, the checks, and the walk over the rows.
#pragma once

#include <bit>
#include <cmath>
#include <limits>

#include "stats/channel.hpp"
#include "stats/norm_sums.hpp"

namespace lumcv {

enum class Sense
{
    inf,
    l1,
    l2
};

template <Sense sense, class T>
struct GathererChoice
{
    using Type = Greatest<T>;
};
template <>
struct GathererChoice<Sense::l1, Lum8u>
{
    using Type = ByteSum;
};
template <>
struct GathererChoice<Sense::l2, Lum8u>
{
    using Type = ByteSquareSum;
};
template <Sense sense>
requires(sense != Sense::inf) struct GathererChoice<sense, Lum16u>
{
    using Type = WordSum<sense == Sense::l2>;
};
template <Sense sense>
requires(sense != Sense::inf) struct GathererChoice<sense, Lum32f>
{
    using Type = FloatSum<sense == Sense::l2, Lum64f>;
};

/// What a norm gathers from pixels of type T.
template <Sense sense, class T>
using GathererOf = typename GathererChoice<sense, T>::Type;

/// Gathers for a quotient: the difference of two images, and the second image.
template <class Gatherer>
class Relative
{
  public:
    static constexpr int lanes = Gatherer::lanes;

    struct Values
    {
        Lum64f difference, reference;
    };

    template <class V>
    void add(const Lum8u* mask, V a, V b)
    {
        difference_.add(mask, a, b);
        reference_.add(mask, b);
    }

    void settle()
    {
        difference_.settle();
        reference_.settle();
    }

    void endRow()
    {
        difference_.endRow();
        reference_.endRow();
    }

    Values value() const
    {
        return {difference_.value(), reference_.value()};
    }

  private:
    Gatherer difference_, reference_;
};

/// Shows each step of pixels of one channel of the images to a gatherer, row after row.
template <class Gatherer, int channels, class... T>
[[gnu::flatten]] auto gathered(LumiSize size, Plane<const Lum8u> mask, Plane<const T>... images)
{
    constexpr int lanes = Gatherer::lanes;
    Gatherer sums{};
    const auto add = [&sums](const Lum8u* m, const T*... p) { sums.add(m, simd::loadPixels<lanes, channels>(p)...); };
    eachRow(size, [&](int64_t y, auto nextRow, auto ahead) {
        addSettled<lanes, nextRow>(sums, size.width, add, PixelRow<Lum8u, 1>{mask.row(y), 0, ahead(mask)},
                                   PixelRow<T, channels>{images.row(y), T{0}, ahead(images)}...);
        sums.endRow();
    });
    return sums.value();
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
template <Sense sense, class Gatherer, int channels, class... T>
LumStatus normBy(LumiSize roiSize, Lum64f* pValue, Channel<Lum8u, 1> mask, Channel<T, channels>... images)
{
    const auto checks = Checks{}.notNull(pValue).then(channelChecks(roiSize, images..., mask).status());
    if (checks.failed())
        return checks.status();
    *pValue = canonical(rooted<sense>(gathered<Gatherer, channels>(roiSize, mask.plane(), images.plane()...)));
    return lumOk;
}

template <Sense sense, class T, int channels>
LumStatus norm(Channel<T, channels> image, Channel<Lum8u, 1> mask, LumiSize roiSize, Lum64f* pValue)
{
    return normBy<sense, GathererOf<sense, T>>(roiSize, pValue, mask, image);
}

template <Sense sense, class T, int channels>
LumStatus normOfDifference(Channel<T, channels> image1, Channel<T, channels> image2, Channel<Lum8u, 1> mask,
                           LumiSize roiSize, Lum64f* pValue)
{
    return normBy<sense, GathererOf<sense, T>>(roiSize, pValue, mask, image1, image2);
}

/// N / D where D is zero.
inline Lum64f zeroQuotient(Lum64f n)
{
    constexpr Lum64f infinity = std::numeric_limits<Lum64f>::infinity();
    return n > 0.0 ? infinity : n == 0.0 ? std::numeric_limits<Lum64f>::quiet_NaN() : -infinity;
}

template <Sense sense, class T, int channels>
LumStatus relativeNorm(Channel<T, channels> image1, Channel<T, channels> image2, Channel<Lum8u, 1> mask,
                       LumiSize roiSize, Lum64f* pValue)
{
    const auto checks = Checks{}.notNull(pValue).then(channelChecks(roiSize, image1, image2, mask).status());
    if (checks.failed())
        return checks.status();
    const auto [difference, reference] =
        gathered<Relative<GathererOf<sense, T>>, channels>(roiSize, mask.plane(), image1.plane(), image2.plane());
    const bool zeroDivisor = reference == 0.0;
    *pValue = canonical(zeroDivisor ? zeroQuotient(difference) : rooted<sense>(difference / reference));
    return zeroDivisor ? lumWrnZeroDivisor : lumOk;
}

}  // namespace lumcv
