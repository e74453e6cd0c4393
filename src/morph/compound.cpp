#include "morph/compound.hpp"

namespace lumcv {
namespace {

/// minuend - subtrahend, by the rule of the type.
template <class T>
struct Difference
{
    Negative negative;

    template <int N>
    [[gnu::always_inline]] simd::Vec<T, N> operator()(simd::Vec<T, N> minuend, simd::Vec<T, N> subtrahend) const
    {
        simd::Vec<T, N> difference;
        if constexpr (std::is_same_v<T, Lum32f>)
            difference = minuend - subtrahend;
        else
            difference = simd::subtractSaturated(minuend, subtrahend);
        if constexpr (std::is_signed_v<T>)
            if (negative == Negative::zero)
                difference = simd::max(simd::broadcast<N>(T{0}), difference);
        return difference;
    }
};

/// dst = minuend - subtrahend, row after row; dst may be either.
template <class T>
[[gnu::flatten, gnu::noinline]] void subtract(Plane<const T> minuend, Plane<const T> subtrahend, Plane<T> dst,
                                              int64_t elements, int64_t height, Negative negative)
{
    const Difference<T> difference{negative};
    for (int64_t y = 0; y < height; ++y) {
        const T* const a = minuend.row(y);
        const T* const b = subtrahend.row(y);
        T* const d = dst.row(y);
        simd::eachOnce<lanesIn<T, 2>>(0, elements, [=](int64_t x, auto lanes) {
            simd::store(d + x, difference(simd::load<lanes>(a + x), simd::load<lanes>(b + x)));
        });
    }
}

template <class T>
Plane<const T> constant(Plane<T> image)
{
    return {image.pixels, image.step};
}

template <class T>
Plane<T> from(Plane<T> image, int64_t x, int64_t y)
{
    return {image.row(y) + x, image.step};
}

/// Rows [begin, end) of a pass over an image of so many rows.
template <class Operation, class T>
void passRows(const Stage& stage, int channels, Plane<const T> src, Plane<T> dst, LumiSizeL size, int64_t begin,
              int64_t end, const T* borderValue, Lum8u* scratch)
{
    Border border = stage.border;
    border.top = border.top || begin > 0;
    border.bottom = border.bottom || end < size.height;
    pass<Operation>(stage.element, channels, from(src, 0, begin), from(dst, 0, begin), {size.width, end - begin},
                    border, borderValue, scratch);
}

/// The rows of a strip: few enough for the second-level cache and enough for a mirrored edge, and for what neighbouring
/// strips compute twice to be little.
int64_t stripRows(int64_t rowBytes, int64_t elementHeight)
{
    constexpr int64_t stripBytes = 256 * 1024;
    const int64_t rows = stripBytes / rowBytes, least = 4 * elementHeight;
    return rows < least ? least : rows;
}

/// Calls strip(begin, end) for the strips of an image from its top; none is lower than `rows`, but for the image
/// itself.
template <class Strip>
void eachStrip(int64_t height, int64_t rows, Strip strip)
{
    int64_t y = 0;
    for (; y + 2 * rows <= height; y += rows)
        strip(y, y + rows);
    strip(y, height);
}

template <class T>
struct Intermediate
{
    Plane<T> image;
    Lum8u* scratch;  ///< of the passes

    Intermediate(Lum8u* block, int64_t width, int64_t height, int channels)
    {
        Lum8u* const aligned = alignedUp(block, 32);
        const int64_t step = intermediateStep<T>(width, channels);
        image = {reinterpret_cast<T*>(aligned), step};
        scratch = aligned + step * height;
    }
};

}  // namespace

template <class Operation, class T>
void compound(const Stage& first, const Stage& second, int channels, Plane<const T> src, Plane<T> dst, LumiSizeL roi,
              const Growth& growth, const T* borderValue, Finish finish, Negative negative, Lum8u* scratch)
{
    const LumiSizeL grown = growth.grown(roi);
    const Plane<const T> grownSrc = from(src, -growth.left * channels, -growth.top);
    const Intermediate<T> between(scratch, grown.width, grown.height, channels);
    const Plane<const T> secondSrc = constant(from(between.image, growth.left * channels, growth.top));
    const int64_t elements = roi.width * channels;

    // in place, the first pass must have read all of the source before the second one writes
    const int64_t rows = src.pixels == dst.pixels ? roi.height : stripRows(between.image.step, second.element.height);
    int64_t done = 0;  // rows of the intermediate image
    eachStrip(roi.height, rows, [&](int64_t begin, int64_t end) {
        const int64_t below = growth.top + end + second.element.height / 2;
        const int64_t needed = end == roi.height || below > grown.height ? grown.height : below;
        passRows<typename Operation::First>(first, channels, grownSrc, between.image, grown, done, needed, borderValue,
                                            between.scratch);
        done = needed;
        passRows<typename Operation::Second>(second, channels, secondSrc, dst, roi, begin, end, borderValue,
                                             between.scratch);
        const Plane<const T> source = from(src, 0, begin);
        const Plane<T> result = from(dst, 0, begin);
        if (finish == Finish::fromSource)
            subtract(source, constant(result), result, elements, end - begin, negative);
        else if (finish == Finish::minusSource)
            subtract(constant(result), source, result, elements, end - begin, negative);
    });
}

template <class T>
void gradient(const Stage& dilation, const Stage& erosion, int channels, Plane<const T> src, Plane<T> dst,
              LumiSizeL roi, const T* borderValue, Negative negative, Lum8u* scratch)
{
    const Intermediate<T> between(scratch, roi.width, roi.height, channels);
    eachStrip(roi.height, stripRows(between.image.step, dilation.element.height), [&](int64_t begin, int64_t end) {
        passRows<Maximum>(dilation, channels, src, dst, roi, begin, end, borderValue, between.scratch);
        passRows<Minimum>(erosion, channels, src, between.image, roi, begin, end, borderValue, between.scratch);
        const Plane<T> result = from(dst, 0, begin);
        subtract(constant(result), constant(from(between.image, 0, begin)), result, roi.width * channels, end - begin,
                 negative);
    });
}

template void compound<Opening>(const Stage&, const Stage&, int, Plane<const Lum8u>, Plane<Lum8u>, LumiSizeL,
                                const Growth&, const Lum8u*, Finish, Negative, Lum8u*);
template void compound<Opening>(const Stage&, const Stage&, int, Plane<const Lum16u>, Plane<Lum16u>, LumiSizeL,
                                const Growth&, const Lum16u*, Finish, Negative, Lum8u*);
template void compound<Opening>(const Stage&, const Stage&, int, Plane<const Lum16s>, Plane<Lum16s>, LumiSizeL,
                                const Growth&, const Lum16s*, Finish, Negative, Lum8u*);
template void compound<Opening>(const Stage&, const Stage&, int, Plane<const Lum32f>, Plane<Lum32f>, LumiSizeL,
                                const Growth&, const Lum32f*, Finish, Negative, Lum8u*);
template void compound<Closing>(const Stage&, const Stage&, int, Plane<const Lum8u>, Plane<Lum8u>, LumiSizeL,
                                const Growth&, const Lum8u*, Finish, Negative, Lum8u*);
template void compound<Closing>(const Stage&, const Stage&, int, Plane<const Lum16u>, Plane<Lum16u>, LumiSizeL,
                                const Growth&, const Lum16u*, Finish, Negative, Lum8u*);
template void compound<Closing>(const Stage&, const Stage&, int, Plane<const Lum16s>, Plane<Lum16s>, LumiSizeL,
                                const Growth&, const Lum16s*, Finish, Negative, Lum8u*);
template void compound<Closing>(const Stage&, const Stage&, int, Plane<const Lum32f>, Plane<Lum32f>, LumiSizeL,
                                const Growth&, const Lum32f*, Finish, Negative, Lum8u*);
template void gradient(const Stage&, const Stage&, int, Plane<const Lum8u>, Plane<Lum8u>, LumiSizeL, const Lum8u*,
                       Negative, Lum8u*);
template void gradient(const Stage&, const Stage&, int, Plane<const Lum16u>, Plane<Lum16u>, LumiSizeL, const Lum16u*,
                       Negative, Lum8u*);
template void gradient(const Stage&, const Stage&, int, Plane<const Lum16s>, Plane<Lum16s>, LumiSizeL, const Lum16s*,
                       Negative, Lum8u*);
template void gradient(const Stage&, const Stage&, int, Plane<const Lum32f>, Plane<Lum32f>, LumiSizeL, const Lum32f*,
                       Negative, Lum8u*);

}  // namespace lumcv
