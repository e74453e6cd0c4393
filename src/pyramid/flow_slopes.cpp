// The slopes of a level of an optical flow: both Scharr derivatives in one pass, with a replicated border.
#include "pyramid/flow_slopes.hpp"

#include "filter/mask_steps.hpp"
#include "frame/checks.hpp"
#include "simd/simd.hpp"

namespace lumcv {

namespace {

// A Scharr derivative adds 16 pixels on each side, two pixels apart; so this makes it a slope.
constexpr Lum32f slopeScale = 0.03125f;

/// What the derivatives of an element type are made of, and what becomes of them.
template <class T>
struct SlopeSteps;

template <>
struct SlopeSteps<Lum8u>
{
    using Slope = Lum16s;

    template <int N>
    [[gnu::always_inline]] static auto pixels(const Lum8u* p)
    {
        return simd::loadWords<N>(p);
    }

    template <int N>
    [[gnu::always_inline]] static auto slope(simd::Vec<Lum16s, N> derivative)
    {
        return derivative >> 4;
    }
};

template <>
struct SlopeSteps<Lum16u>
{
    using Slope = Lum32f;

    template <int N>
    [[gnu::always_inline]] static auto pixels(const Lum16u* p)
    {
        return simd::loadFloat<N>(p) * simd::broadcast<N>(slopeScale);
    }

    template <int N>
    [[gnu::always_inline]] static auto slope(simd::Vec<Lum32f, N> derivative)
    {
        return derivative;
    }
};

template <>
struct SlopeSteps<Lum32f>
{
    using Slope = Lum32f;

    template <int N>
    [[gnu::always_inline]] static auto pixels(const Lum32f* p)
    {
        return simd::load<N>(p);
    }

    template <int N>
    [[gnu::always_inline]] static auto slope(simd::Vec<Lum32f, N> derivative)
    {
        return derivative * simd::broadcast<N>(slopeScale);
    }
};

/// What a row of the image gives: the difference and the smooth sum of three pixels.
template <class V>
struct SlopeRow
{
    V difference, smooth;
};

/// N columns from x on, of the rows from `begin` to `end`. The neighbours stand at the distances left and right.
template <int N, class T>
[[gnu::flatten]] void takeColumns(Plane<const T> image, int64_t height,
                                  FlowSlopes<typename SlopeSteps<T>::Slope> slopes, int64_t x, int64_t left,
                                  int64_t right, int64_t begin, int64_t end)
{
    using Steps = SlopeSteps<T>;
    using Slope = typename Steps::Slope;
    using V = simd::Vec<Slope, N>;
    const auto rowOf = [=](const T* p) {
        const auto tap = [=](int i) { return Steps::template pixels<N>(p + (i == 0 ? left : i == 1 ? 0 : right)); };
        return SlopeRow<V>{NegatedDifference3::of(tap), ScharrSmooth3::of(tap)};
    };
    const T* const last = image.row(height - 1) + x;
    const T* pixel = image.row(begin) + x;
    Slope* outX = slopes.x.row(begin) + x;
    Slope* outY = slopes.y.row(begin) + x;
    SlopeRow<V> above = rowOf(begin > 0 ? rowAt(pixel, image.step, -1) : pixel);
    SlopeRow<V> middle = rowOf(pixel);
    for (int64_t y = begin; y < end; ++y) {
        pixel = pixel == last ? last : rowAt(pixel, image.step, 1);
        const SlopeRow<V> below = rowOf(pixel);
        const auto differences = [&](int i) {
            return i == 0 ? above.difference : i == 1 ? middle.difference : below.difference;
        };
        const auto smooths = [&](int i) { return i == 0 ? above.smooth : below.smooth; };
        simd::store(outX, Steps::slope(ScharrSmooth3::of(differences)));
        simd::store(outY, Steps::slope(NegatedDifference3::of(smooths)));
        outX = rowAt(outX, slopes.x.step, 1);
        outY = rowAt(outY, slopes.y.step, 1);
        above = middle;
        middle = below;
    }
}

template <class T>
LumStatus slopesOf(Plane<const T> image, LumiSize size, FlowSlopes<typename SlopeSteps<T>::Slope> slopes)
{
    const LumStatus status = Checks{}.notNull(image.pixels).size(size).alignment(image).status();
    if (status != lumOk)
        return status;
    constexpr int lanes = simd::registerLanes<typename SlopeSteps<T>::Slope>;
    constexpr int64_t bandRows = 32;  // of which all columns stay in the nearest cache
    const int64_t width = size.width, height = size.height;
    for (int64_t begin = 0; begin < height; begin += bandRows) {
        const int64_t end = height - begin < bandRows ? height : begin + bandRows;
        takeColumns<1>(image, height, slopes, 0, 0, width > 1, begin, end);
        simd::eachAtLeastOnce<lanes>(1, width - 1, [=](int64_t x, auto count) {
            takeColumns<count>(image, height, slopes, x, -1, 1, begin, end);
        });
        if (width > 1)
            takeColumns<1>(image, height, slopes, width - 1, -1, 0, begin, end);
    }
    return lumOk;
}

}  // namespace

LumStatus takeSlopes(Plane<const Lum8u> image, LumiSize size, FlowSlopes<Lum16s> slopes)
{
    return slopesOf(image, size, slopes);
}

LumStatus takeSlopes(Plane<const Lum16u> image, LumiSize size, FlowSlopes<Lum32f> slopes)
{
    return slopesOf(image, size, slopes);
}

LumStatus takeSlopes(Plane<const Lum32f> image, LumiSize size, FlowSlopes<Lum32f> slopes)
{
    return slopesOf(image, size, slopes);
}

}  // namespace lumcv
