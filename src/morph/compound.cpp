#include "morph/compound.hpp"

namespace lumcv {
namespace {

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

/// Columns and rows of an image.
struct Rectangle
{
    int64_t x = 0, y = 0, width = 0, height = 0;
};

/// A part of a pass over an image, for which the rest of the image is memory around it. dst is that of the part.
template <class Operation, class T>
void passPart(const Stage& stage, int channels, Plane<const T> src, Plane<T> dst, LumiSizeL size, const Rectangle& part,
              const T* borderValue, Lum8u* scratch)
{
    Border border = stage.border;
    border.left = border.left || part.x > 0;
    border.right = border.right || part.x + part.width < size.width;
    border.top = border.top || part.y > 0;
    border.bottom = border.bottom || part.y + part.height < size.height;
    pass<Operation>(stage.element, channels, from(src, part.x * channels, part.y), dst, {part.width, part.height},
                    border, borderValue, scratch);
}

/// The side of a square of 3x3 or 5x5, if both elements are that; otherwise 0.
int64_t commonSquare(const Element& a, const Element& b)
{
    const bool isCommon = a.is(shapeRectangle) && b.is(shapeRectangle) && a.width == a.height && b.width == a.width &&
                          b.height == a.width && (a.width == 3 || a.width == 5);
    return isCommon ? a.width : 0;
}

/// Where a square sees nothing but memory in both passes, less some columns and rows: those around it are enough for a
/// mirrored edge.
Rectangle insideOf(LumiSizeL roi, int64_t size, const Border& a, const Border& b)
{
    const int64_t rim = size - 1;
    const int64_t left = a.left && b.left ? 0 : rim, right = a.right && b.right ? 0 : rim;
    const int64_t top = a.top && b.top ? 0 : rim, bottom = a.bottom && b.bottom ? 0 : rim;
    return {left, top, roi.width - left - right, roi.height - top - bottom};
}

/// Calls body(part) for the parts of the image around a rectangle.
template <class Body>
void eachRimOf(const Rectangle& inside, LumiSizeL roi, Body body)
{
    const int64_t right = inside.x + inside.width, bottom = inside.y + inside.height;
    for (const Rectangle& part :
         {Rectangle{0, 0, roi.width, inside.y}, Rectangle{0, bottom, roi.width, roi.height - bottom},
          Rectangle{0, inside.y, inside.x, inside.height},
          Rectangle{right, inside.y, roi.width - right, inside.height}})
        if (part.width > 0 && part.height > 0)
            body(part);
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
        passPart<typename Operation::First>(first, channels, grownSrc, from(between.image, 0, done), grown,
                                            {0, done, grown.width, needed - done}, borderValue, between.scratch);
        done = needed;
        passPart<typename Operation::Second>(second, channels, secondSrc, from(dst, 0, begin), roi,
                                             {0, begin, roi.width, end - begin}, borderValue, between.scratch);
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
    const auto inTwoPasses = [&](const Rectangle& part) {
        const Intermediate<T> between(scratch, part.width, part.height, channels);
        const Plane<T> result = from(dst, part.x * channels, part.y);
        passPart<Maximum>(dilation, channels, src, result, roi, part, borderValue, between.scratch);
        passPart<Minimum>(erosion, channels, src, between.image, roi, part, borderValue, between.scratch);
        subtract(constant(result), constant(between.image), result, part.width * channels, part.height, negative);
    };
    const int64_t size = commonSquare(dilation.element, erosion.element);
    const Rectangle inside = size == 0 ? Rectangle{} : insideOf(roi, size, dilation.border, erosion.border);
    if (inside.width > 0 && inside.height > 0) {
        const Area<T> area{from(src, inside.x * channels, inside.y), from(dst, inside.x * channels, inside.y),
                           inside.width * channels, inside.height, channels};
        Lum8u* const aligned = alignedUp(scratch, 32);
        if (squareGradient(area, size, Difference<T>{negative},
                           {aligned, roi.height * intermediateStep<T>(roi.width, channels)})) {
            return eachRimOf(inside, roi, inTwoPasses);
        }
    }
    const int64_t rows = stripRows(intermediateStep<T>(roi.width, channels), dilation.element.height);
    eachStrip(roi.height, rows, [&](int64_t begin, int64_t end) { inTwoPasses({0, begin, roi.width, end - begin}); });
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
