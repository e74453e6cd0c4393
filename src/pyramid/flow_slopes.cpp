// The slopes of a level of an optical flow: both Scharr derivatives in one pass, with a replicated border.
#include "pyramid/flow_slopes.hpp"

#include <type_traits>

#include "filter/mask_steps.hpp"
#include "frame/border.hpp"
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
            return {{static_cast<Lum16s>(3 * difference)},
                    {static_cast<Lum16s>(10 * difference)},
                    {static_cast<Lum16s>(3 * (p[left] + p[right]) + 10 * *p)}};
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

/// So many rows are made at a time, which share the rows of pixels that they are made of.
constexpr int bandRows = 2;

/// Rows that follow one another, and the rows of pixels from the one above the first to the one below the last.
template <class T, int rows>
struct SlopeBand
{
    using Slope = typename SlopeSteps<T>::Slope;

    const T* pixels[rows + 2];
    Slope *x[rows], *y[rows];

    SlopeBand(Plane<const T> image, int64_t height, const FlowSlopes<Slope>& slopes, int64_t first)
    {
        for (int i = 0; i < rows + 2; ++i)
            pixels[i] = image.row(borderIndex(first + i - 1, height, lumBorderReplicate));
        for (int i = 0; i < rows; ++i) {
            x[i] = slopes.x.row(first + i);
            y[i] = slopes.y.row(first + i);
        }
    }

    template <int N>
    [[gnu::always_inline]] void take(int64_t column, int64_t left, int64_t right) const
    {
        using Steps = SlopeSteps<T>;
        auto above = Steps::template row<N>(pixels[0] + column, left, right);
        auto middle = Steps::template row<N>(pixels[1] + column, left, right);
        for (int i = 0; i < rows; ++i) {
            const auto below = Steps::template row<N>(pixels[i + 2] + column, left, right);
            simd::store(x[i] + column, Steps::slopeX(above, middle, below));
            simd::store(y[i] + column, Steps::slopeY(above, below));
            above = middle;
            middle = below;
        }
    }
};

template <int rows, class T>
[[gnu::flatten, gnu::noinline]] void takeBand(Plane<const T> image, LumiSize size,
                                              FlowSlopes<typename SlopeSteps<T>::Slope> slopes, int64_t first)
{
    constexpr int lanes = simd::registerLanes<typename SlopeSteps<T>::Slope>;
    const int64_t width = size.width;
    const SlopeBand<T, rows> band(image, size.height, slopes, first);
    band.template take<1>(0, 0, width > 1);
    simd::eachAtLeastOnce<lanes>(1, width - 1, [band](int64_t x, auto count) { band.template take<count>(x, -1, 1); });
    if (width > 1)
        band.template take<1>(width - 1, -1, 0);
}

template <class T>
LumStatus slopesOf(Plane<const T> image, LumiSize size, FlowSlopes<typename SlopeSteps<T>::Slope> slopes)
{
    const LumStatus status = Checks{}.notNull(image.pixels).size(size).alignment(image).status();
    if (status != lumOk)
        return status;
    int64_t y = 0;
    for (; y + bandRows <= size.height; y += bandRows)
        takeBand<bandRows>(image, size, slopes, y);
    for (; y < size.height; ++y)
        takeBand<1>(image, size, slopes, y);
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
