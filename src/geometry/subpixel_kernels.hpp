// The arithmetic of subpixel copies, and its way through a rectangle.
//
// A kernel prepares N columns of a row once, for the destination row above it and for the one below:
//
//     columns<N>(p)            what it makes of the N + 1 pixels of a source row from p on
//     value<N>(above, below)   N pixels of the destination
//
// and gives the two rules for places where one neighbour is the pixel itself:
//
//     alongRow()               the kernel of a row that has no row below it
//     alongColumn(p, q)        a pixel that has no column beside it, from p and from q below it
#pragma once

#include <algorithm>

#include "frame/image.hpp"
#include "frame/next_row.hpp"
#include "geometry/subpixel_weights.hpp"
#include "simd/neighbours.hpp"
#include "simd/simd.hpp"

namespace lumcv::subpixel {

/// Sums of words in 32 bits, rounded and stored as words. A Scale has the last step.
template <class S, class Scale>
class IntegerKernel
{
  public:
    using Source = S;
    using Value = typename Scale::Value;

    IntegerKernel(Share x, Share y, Scale scale) : IntegerKernel(x, y, weightsOf(x, y), scale) {}

    template <int N>
    [[gnu::always_inline]] simd::NeighbourWords<N> columns(const S* p) const
    {
        return simd::loadNeighbourWords<N>(p);
    }

    template <int N>
    [[gnu::always_inline]] simd::Vec<Value, N> value(simd::NeighbourWords<N> above, simd::NeighbourWords<N> below) const
    {
        const auto sum = simd::neighbourProducts(above, weights_.w00, weights_.w10) +
                         simd::neighbourProducts(below, weights_.w01, weights_.w11);
        return scale_(sum);
    }

    IntegerKernel alongRow() const
    {
        const Weights weights{static_cast<Lum16s>(x_.left), static_cast<Lum16s>(x_.taken), 0, 0};
        return IntegerKernel(x_, y_, weights, scale_);
    }

    Value alongColumn(S p, S q) const
    {
        const Weights weights{static_cast<Lum16s>(y_.left), 0, static_cast<Lum16s>(y_.taken), 0};
        const S above[2] = {p, p}, below[2] = {q, q};
        const IntegerKernel kernel(x_, y_, weights, scale_);
        return kernel.value(kernel.template columns<1>(above), kernel.template columns<1>(below)).raw;
    }

    Value corner(S p) const
    {
        return alongColumn(p, p);
    }

  private:
    IntegerKernel(Share x, Share y, Weights weights, Scale scale) : x_(x), y_(y), weights_(weights), scale_(scale) {}

    Share x_, y_;
    Weights weights_;
    Scale scale_;
};

/// Sums of words less 2^15 become words.
struct ToWords
{
    using Value = Lum16u;

    /// The weights sum to 1, so that the sums plus this are not negative and below 2^30.
    static constexpr Lum32s offset = 0x8000 * one + one / 2;

    template <int N>
    [[gnu::always_inline]] simd::Vec<Lum16u, N> operator()(simd::NeighbourSums<N> sum) const
    {
        return simd::wordsOf<fractionBits>(sum + offset);
    }
};

/// Sums of at most 255 * 16384, divided by a power of two and saturated to words.
class ToScaledWords
{
  public:
    using Value = Lum16u;

    explicit ToScaledWords(Lum32s scaleFactor)
    {
        constexpr Lum32s greatestDivisor = 16, leastDivisor = -fractionBits + 1, leastFactor = -fractionBits - 16;
        if (scaleFactor > greatestDivisor)
            greatest_ = 0;
        else if (scaleFactor >= leastDivisor) {
            rounding_ = 1 << (scaleFactor + fractionBits - 1);
            rightShift_ = scaleFactor + fractionBits;
        } else {
            const int leftShift = -(scaleFactor < leastFactor ? leastFactor : scaleFactor) - fractionBits;
            greatest_ = (saturated >> leftShift) + 1;  // times the factor at most 65536, and saturated
            factor_ = 1 << leftShift;
        }
    }

    template <int N>
    [[gnu::always_inline]] simd::Vec<Lum16u, N> operator()(simd::NeighbourSums<N> sum) const
    {
        const auto scaled = [*this]<int M>(simd::Vec<Lum32s, M> x) {
            const auto quotient = (x + simd::broadcast<M>(rounding_)) >> rightShift_;
            const auto product = min(quotient, simd::broadcast<M>(greatest_)) * simd::broadcast<M>(factor_);
            return min(product, simd::broadcast<M>(saturated));
        };
        return simd::wordsOf<0>(eachSum(scaled, sum));
    }

  private:
    static constexpr Lum32s saturated = 65535;

    Lum32s rounding_ = 0;
    int rightShift_ = 0;
    Lum32s greatest_ = saturated;
    Lum32s factor_ = 1;
};

/// Bytes, whose sums of products with weights in two parts fit words: w = 128 * upper + lower.
class ByteKernel
{
  public:
    using Source = Lum8u;
    using Value = Lum8u;

    ByteKernel(Share x, Share y) : ByteKernel(x, y, weightsOf(x, y)) {}

    template <int N>
    [[gnu::always_inline]] simd::NeighbourBytes<N> columns(const Lum8u* p) const
    {
        return {simd::load<N>(p), simd::load<N>(p + 1)};
    }

    template <int N>
    [[gnu::always_inline]] simd::Vec<Lum8u, N> value(simd::NeighbourBytes<N> above, simd::NeighbourBytes<N> below) const
    {
        if constexpr (N == 1) {
            const Lum32s sum = weights_.w00 * above.at.raw + weights_.w10 * above.next.raw +
                               weights_.w01 * below.at.raw + weights_.w11 * below.next.raw;
            return {static_cast<Lum8u>((sum + one / 2) >> fractionBits)};
        } else {
            // the whole sum without its lowest seven bits, which do not count, and then rounded to a byte
            const auto rounded = [this](simd::Vec<Lum8u, N> a, simd::Vec<Lum8u, N> b) {
                const auto product = [](simd::Vec<Lum8u, N> v, Lum16s factors) {
                    return simd::pairProducts(v, simd::broadcast<N / 2>(factors));
                };
                const auto upper = product(a, upperAbove_) + product(b, upperBelow_);
                const auto lower = product(a, lowerAbove_) + product(b, lowerBelow_);
                return simd::roundedProduct(upper + (lower >> lowerBits), 1 << (15 - (fractionBits - lowerBits)));
            };
            return simd::merged(rounded(above.at, below.at), rounded(above.next, below.next));
        }
    }

    ByteKernel alongRow() const
    {
        return ByteKernel(x_, y_, {static_cast<Lum16s>(x_.left), static_cast<Lum16s>(x_.taken), 0, 0});
    }

    Lum8u alongColumn(Lum8u p, Lum8u q) const
    {
        return static_cast<Lum8u>((y_.left * p + y_.taken * q + one / 2) >> fractionBits);
    }

    Lum8u corner(Lum8u p) const
    {
        return p;
    }

  private:
    static constexpr int lowerBits = 7;
    static constexpr Lum32s lowerUnit = 1 << lowerBits;

    ByteKernel(Share x, Share y, Weights weights) : x_(x), y_(y), weights_(weights)
    {
        // a weight of 1 has no upper part of seven bits, and the next smaller one leaves every byte as it is, too
        const auto bounded = [](Lum32s w) { return std::min(w, one - 1); };
        const Lum32s all[4] = {bounded(weights.w00), bounded(weights.w10), bounded(weights.w01), bounded(weights.w11)};
        Lum32s lower[4], upper[4], sum = 0;
        for (int i = 0; i < 4; ++i)
            sum += lower[i] = all[i] % lowerUnit;
        // The sum of the weights is 1, and this one 0 to 3 units. With the greatest two or all of them made negative,
        // neither the positive nor the negative ones exceed a unit in sum, and their products with bytes fit words.
        for (Lum32s excess = sum / lowerUnit - 1; excess > 0; --excess)
            for (int i = 0; i < 2; ++i)
                *std::max_element(lower, lower + 4) -= lowerUnit;
        for (int i = 0; i < 4; ++i)
            upper[i] = (all[i] - lower[i]) / lowerUnit;
        upperAbove_ = pair(upper[0], upper[1]);
        upperBelow_ = pair(upper[2], upper[3]);
        lowerAbove_ = pair(lower[0], lower[1]);
        lowerBelow_ = pair(lower[2], lower[3]);
    }

    /// Two signed bytes in a word.
    static Lum16s pair(Lum32s first, Lum32s second)
    {
        return static_cast<Lum16s>((first & 0xff) | (second & 0xff) << 8);
    }

    Share x_, y_;
    Weights weights_;
    Lum16s upperAbove_, upperBelow_, lowerAbove_, lowerBelow_;
};

/// Rows of interpolated floats, combined by one factor and a ratio.
template <class S, bool isAlongRow = false>
class FloatKernel
{
  public:
    using Source = S;
    using Value = Lum32f;

    FloatKernel(Lum32f x, Lum32f y) : x_(boundedX(x)), y_(boundedY(y)), restX_(1 - x_), ratioY_((1 - y_) / y_) {}

    template <int N>
    [[gnu::always_inline]] simd::Vec<Lum32f, N> columns(const S* p) const
    {
        return simd::broadcast<N>(restX_) * simd::loadFloat<N>(p) + simd::broadcast<N>(x_) * simd::loadFloat<N>(p + 1);
    }

    template <int N>
    [[gnu::always_inline]] simd::Vec<Lum32f, N> value(simd::Vec<Lum32f, N> above, simd::Vec<Lum32f, N> below) const
    {
        if constexpr (isAlongRow)
            return above;
        else
            return simd::broadcast<N>(y_) * (below + simd::broadcast<N>(ratioY_) * above);
    }

    FloatKernel<S, true> alongRow() const
    {
        return FloatKernel<S, true>(x_, y_);
    }

    Lum32f alongColumn(S p, S q) const
    {
        using V = simd::Vec<Lum32f, 1>;
        return value(V{static_cast<Lum32f>(p)}, V{static_cast<Lum32f>(q)}).raw;
    }

    Lum32f corner(S p) const
    {
        return static_cast<Lum32f>(p);
    }

  private:
    Lum32f x_, y_, restX_, ratioY_;
};

/// `rows` rows of N pixels; p stands at the first column.
template <int N, int rows, class Kernel, class D>
[[gnu::always_inline]] inline void copyBlock(const Kernel& kernel, Plane<const typename Kernel::Source> src,
                                             Plane<D> dst)
{
    auto above = kernel.template columns<N>(src.pixels);
    for (int y = 0; y < rows; ++y) {
        const auto below = kernel.template columns<N>(src.row(y + 1));
        simd::store(dst.row(y), kernel.value(above, below));
        above = below;
    }
}

/// Asks for the rows that come `ahead` rows later, if that is not 0: the processor does not see a row's next page
/// coming.
template <int rows, int ahead, class Kernel, class D>
[[gnu::always_inline]] inline void copyBand(const Kernel& kernel, Plane<const typename Kernel::Source> src,
                                            Plane<D> dst, int64_t width)
{
    simd::eachAtLeastOnce<simd::registerLanes<Lum8u>>(0, width, [=](int64_t x, auto lanes) {
        if constexpr (ahead > 0 && lanes > 1)
            for (int y = ahead; y < ahead + rows; ++y) {
                simd::prefetch<lanes>(src.row(y + 1) + x);
                simd::prefetch<lanes>(static_cast<const D*>(dst.row(y) + x));
            }
        copyBlock<lanes, rows>(kernel, {src.pixels + x, src.step}, Plane<D>{dst.pixels + x, dst.step});
    });
}

/// A rectangle of which a column and a row more than its own are read.
template <class Kernel, class D>
[[gnu::flatten]] void copy(Kernel kernel, Plane<const typename Kernel::Source> src, Plane<D> dst, int64_t width,
                           int64_t height)
{
    constexpr int bandRows = 4;
    int64_t y = 0;
    if (asksForNextRow(width, height))
        for (; y + 2 * bandRows <= height; y += bandRows)
            copyBand<bandRows, bandRows>(kernel, {src.row(y), src.step}, Plane<D>{dst.row(y), dst.step}, width);
    for (; y + bandRows <= height; y += bandRows)
        copyBand<bandRows, 0>(kernel, {src.row(y), src.step}, Plane<D>{dst.row(y), dst.step}, width);
    for (; y < height; ++y)
        copyBand<1, 0>(kernel, {src.row(y), src.step}, Plane<D>{dst.row(y), dst.step}, width);
}

template <class S, class D>
struct KernelOf;

template <>
struct KernelOf<Lum8u, Lum8u>
{
    static auto make(Lum32f x, Lum32f y)
    {
        return ByteKernel(shareOf(x), shareOf(y));
    }
};

template <>
struct KernelOf<Lum16u, Lum16u>
{
    static auto make(Lum32f x, Lum32f y)
    {
        return IntegerKernel<Lum16u, ToWords>(shareOf(x), shareOf(y), ToWords{});
    }
};

template <>
struct KernelOf<Lum8u, Lum16u>
{
    static auto make(Lum32f x, Lum32f y, Lum32s scaleFactor)
    {
        return IntegerKernel<Lum8u, ToScaledWords>(shareOf(x), shareOf(y), ToScaledWords(scaleFactor));
    }
};

template <class S>
struct KernelOf<S, Lum32f>
{
    static auto make(Lum32f x, Lum32f y)
    {
        return FloatKernel<S>(x, y);
    }
};

/// The kernel of a pair of types for fractions of a column and of a row, and for what else it takes.
template <class S, class D, class... Parameters>
auto kernelOf(Lum32f x, Lum32f y, Parameters... parameters)
{
    return KernelOf<S, D>::make(x, y, parameters...);
}

}  // namespace lumcv::subpixel
