// The slopes of a level of an optical flow: both Scharr derivatives in one pass, with a replicated border.
#include "pyramid/flow_slopes.hpp"

#include <type_traits>

#include "filter/mask_steps.hpp"
#include "frame/checks.hpp"
#include "simd/simd.hpp"

namespace lumcv {

namespace {

// A Scharr derivative adds 16 pixels on each side, two pixels apart; so this makes it a slope.
constexpr Lum32f slopeScale = 0.03125f;

// For each element type: what a row of pixels gives, from which three rows make the slopes of the middle one. The
// neighbours of a pixel stand at the distances left and right.

template <class T>
struct SlopeSteps;

template <>
struct SlopeSteps<Lum8u>
{
    using Slope = Lum16s;

    template <int N>
    struct Row
    {
        simd::Vec<Lum16s, N> threeDifferences, tenDifferences, smooth;
    };

    template <int N>
    [[gnu::always_inline]] static Row<N> row(const Lum8u* p, int64_t left, int64_t right)
    {
        if constexpr (N == 1) {
            const int difference = p[right] - p[left];
            return {static_cast<Lum16s>(3 * difference), static_cast<Lum16s>(10 * difference),
                    static_cast<Lum16s>(3 * (p[left] + p[right]) + 10 * *p)};
        } else {
            const auto sides = simd::loadInTurn<2 * N>(p + left, p + right);
            return {simd::pairSums<-3, 3>(sides), simd::pairSums<-10, 10>(sides),
                    simd::pairSums<3, 3>(sides) + simd::pairSums<5, 5>(simd::loadInTurn<2 * N>(p, p))};
        }
    }

    template <int N>
    [[gnu::always_inline]] static auto slopeX(const Row<N>& above, const Row<N>& middle, const Row<N>& below)
    {
        return (above.threeDifferences + below.threeDifferences + middle.tenDifferences) >> 4;
    }

    template <int N>
    [[gnu::always_inline]] static auto slopeY(const Row<N>& above, const Row<N>& below)
    {
        return (below.smooth - above.smooth) >> 4;
    }
};

/// Of floats, in the order that the derivative filters have.
template <class T>
struct FloatSlopeSteps
{
    using Slope = Lum32f;

    template <int N>
    struct Row
    {
        simd::Vec<Lum32f, N> difference, smooth;
    };

    template <int N>
    [[gnu::always_inline]] static Row<N> row(const T* p, int64_t left, int64_t right)
    {
        const auto tap = [=](int i) {
            const auto pixels = simd::loadFloat<N>(p + (i == 0 ? left : i == 1 ? 0 : right));
            if constexpr (std::is_same_v<T, Lum32f>)
                return pixels;
            else
                return pixels * simd::broadcast<N>(slopeScale);
        };
        return {NegatedDifference3::of(tap), ScharrSmooth3::of(tap)};
    }

    template <int N>
    [[gnu::always_inline]] static auto slopeX(const Row<N>& above, const Row<N>& middle, const Row<N>& below)
    {
        return scaled(ScharrSmooth3::of([&](int i) {
            return i == 0 ? above.difference : i == 1 ? middle.difference : below.difference;
        }));
    }

    template <int N>
    [[gnu::always_inline]] static auto slopeY(const Row<N>& above, const Row<N>& below)
    {
        return scaled(below.smooth - above.smooth);
    }

    template <int N>
    [[gnu::always_inline]] static auto scaled(simd::Vec<Lum32f, N> derivative)
    {
        if constexpr (std::is_same_v<T, Lum32f>)
            return derivative * simd::broadcast<N>(slopeScale);
        else  // the pixels have been scaled
            return derivative;
    }
};

template <>
struct SlopeSteps<Lum16u> : FloatSlopeSteps<Lum16u>
{
};

template <>
struct SlopeSteps<Lum32f> : FloatSlopeSteps<Lum32f>
{
};

/// N columns from x on, of the rows from `begin` to `end`.
template <int N, class T>
[[gnu::flatten]] void takeColumns(Plane<const T> image, int64_t height,
                                  FlowSlopes<typename SlopeSteps<T>::Slope> slopes, int64_t x, int64_t left,
                                  int64_t right, int64_t begin, int64_t end)
{
    using Steps = SlopeSteps<T>;
    const auto rowOf = [=](const T* p) { return Steps::template row<N>(p, left, right); };
    const T* pixel = image.row(begin) + x;
    auto* outX = slopes.x.row(begin) + x;
    auto* outY = slopes.y.row(begin) + x;
    auto above = rowOf(begin > 0 ? rowAt(pixel, image.step, -1) : pixel);
    auto middle = rowOf(pixel);
    for (int64_t y = begin; y < end; ++y) {
        pixel = rowAt(pixel, y + 1 < height ? image.step : 0, 1);
        const auto below = rowOf(pixel);
        simd::store(outX, Steps::slopeX(above, middle, below));
        simd::store(outY, Steps::slopeY(above, below));
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
