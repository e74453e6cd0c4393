// Extrema with location, in two stages: the first finds the values and the rows in which they stand first, so that the
// loop over all pixels carries no positions; the second looks for the column in those two rows.
#include <limits>

#include "lumcv/stats.h"
#include "stats/channel.hpp"
#include "stats/pixel_groups.hpp"

namespace lumcv {
namespace {

/// Where the results go; null where one is not wanted.
struct Results
{
    Lum32f* least;
    Lum32f* greatest;
    LumiPoint* leastPlace;
    LumiPoint* greatestPlace;

    bool wantPlaces() const
    {
        return leastPlace || greatestPlace;
    }
};

template <class T>
struct Limits
{
    static constexpr bool isFloat = std::is_floating_point_v<T>;
    static constexpr T greatest = isFloat ? std::numeric_limits<T>::infinity() : std::numeric_limits<T>::max();
    static constexpr T least = isFloat ? -std::numeric_limits<T>::infinity() : T{0};
};

/// The extrema of the pixels with the same place in a group. Of no pixels at all, or of not-a-numbers alone, the least
/// is above the greatest.
template <class T, int N>
struct Extremes
{
    simd::Vec<T, N> least = simd::broadcast<N>(Limits<T>::greatest);
    simd::Vec<T, N> greatest = simd::broadcast<N>(Limits<T>::least);

    /// A not-a-number in v leaves what was there.
    [[gnu::always_inline]] Extremes with(simd::Vec<T, N> v) const
    {
        return {simd::min(v, least), simd::max(v, greatest)};
    }

    /// The same of the pixels that the mask keeps. Those that it drops become not-a-numbers, or the greatest and the
    /// least integer.
    [[gnu::always_inline]] Extremes with(simd::Vec<T, N> v, const Lum8u* mask) const
    {
        const auto filled = simd::fillWhereZero(mask, v);
        if constexpr (Limits<T>::isFloat)
            return with(filled);
        else
            return {simd::min(filled, least), simd::max(simd::keepWhere(mask, v), greatest)};
    }
};

/// Pixels of a row that are worked on together: four registers, for an extreme of floats takes four cycles.
template <class T>
inline constexpr int groupPixels = 4 * simd::registerLanes<T>;

template <class T>
using RowExtremes = Extremes<T, groupPixels<T>>;

/// The first register of several.
template <class T, int N>
[[gnu::always_inline]] inline auto& firstRegister(simd::Vec<T, N>& v)
{
    if constexpr (simd::kindOf<T, N> == simd::Kind::pair)
        return firstRegister(v.lo);
    else
        return v;
}

/// Adds the pixels of a row to the extrema. A pixel may be added twice.
template <int channels, class T, class... Mask>
[[gnu::always_inline]] inline RowExtremes<T> addRow(RowExtremes<T> extremes, int64_t width, const T* row,
                                                    const Mask*... mask)
{
    constexpr int N = groupPixels<T>;
    int64_t x = 0;
    for (; x + N <= width; x += N)
        extremes = extremes.with(simd::loadPixels<N, channels>(row + x * channels), (mask + x)...);
    if (x == width)
        return extremes;

    constexpr int lanes = simd::registerLanes<T>;
    auto& least = firstRegister(extremes.least);
    auto& greatest = firstRegister(extremes.greatest);
    Extremes<T, lanes> rest{least, greatest};
    const auto add = [&rest](const T* p, const Mask*... m) {
        rest = rest.with(simd::loadPixels<lanes, channels>(p), m...);
    };
    for (; x + lanes <= width; x += lanes)
        add(row + x * channels, (mask + x)...);
    if (x < width && width >= lanes)
        add(row + (width - lanes) * channels, (mask + (width - lanes))...);
    else  // the missing pixels of a group are masked out, or the first one again
        eachGroup<lanes>(x, width, add, PixelRow<T, channels>{row, *row}, PixelRow<Mask, 1>{mask, 0}...);
    least = rest.least;
    greatest = rest.greatest;
    return extremes;
}

template <class Operation, class T, int N>
T reduced(Operation operation, simd::Vec<T, N> v)
{
    if constexpr (simd::kindOf<T, N> == simd::Kind::pair)
        return reduced(operation, operation(v.lo, v.hi));
    else if constexpr (N > simd::groupLanes<T>) {
        std::array<T, N> lanes;
        simd::store(lanes.data(), v);
        return reduced(operation, operation(simd::load<N / 2>(lanes.data()), simd::load<N / 2>(lanes.data() + N / 2)));
    } else {
        std::array<T, N> lanes;
        simd::store(lanes.data(), v);
        simd::Vec<T, 1> result{lanes[0]};
        for (T lane : lanes)
            result = operation(simd::Vec<T, 1>{lane}, result);
        return result.raw;
    }
}

template <class T, int N>
T leastOf(simd::Vec<T, N> v)
{
    return reduced([](auto a, auto b) { return simd::min(a, b); }, v);
}

template <class T, int N>
T greatestOf(simd::Vec<T, N> v)
{
    return reduced([](auto a, auto b) { return simd::max(a, b); }, v);
}

/// What the first stage finds.
template <class T>
struct Found
{
    bool any = false;  ///< a pixel that is a number
    T least = Limits<T>::greatest;
    T greatest = Limits<T>::least;
    int64_t leastRow = 0;
    int64_t greatestRow = 0;
};

template <int channels, class T, class... Mask>
[[gnu::flatten]] Found<T> findValues(LumiSize size, Plane<const T> src, Plane<const Mask>... mask)
{
    RowExtremes<T> extremes;
    for (int64_t y = 0; y < size.height; ++y)
        extremes = addRow<channels>(extremes, size.width, src.row(y), mask.row(y)...);
    Found<T> found;
    found.least = leastOf(extremes.least);
    found.greatest = greatestOf(extremes.greatest);
    found.any = found.least <= found.greatest;
    return found;
}

/// One register of what is a group of several.
template <class Operation, class T, int N>
[[gnu::always_inline]] inline auto oneRegister(Operation operation, simd::Vec<T, N> v)
{
    if constexpr (simd::kindOf<T, N> == simd::Kind::pair)
        return oneRegister(operation, operation(v.lo, v.hi));
    else
        return v;
}

template <int channels, class T, class... Mask>
[[gnu::flatten]] Found<T> findRows(LumiSize size, Plane<const T> src, Plane<const Mask>... mask)
{
    constexpr int lanes = simd::registerLanes<T>;
    Found<T> found;
    for (int64_t y = 0; y < size.height; ++y) {
        const auto row = addRow<channels>(RowExtremes<T>{}, size.width, src.row(y), mask.row(y)...);
        const auto leasts = oneRegister([](auto a, auto b) { return simd::min(a, b); }, row.least);
        const auto greatests = oneRegister([](auto a, auto b) { return simd::max(a, b); }, row.greatest);
        if (found.any && !simd::anyLess(leasts, simd::broadcast<lanes>(found.least)) &&
            !simd::anyLess(simd::broadcast<lanes>(found.greatest), greatests))
            continue;
        const T least = leastOf(leasts);
        const T greatest = greatestOf(greatests);
        if (!(least <= greatest))
            continue;  // no pixel takes part
        if (!found.any || least < found.least) {
            found.least = least;
            found.leastRow = y;
        }
        if (!found.any || greatest > found.greatest) {
            found.greatest = greatest;
            found.greatestRow = y;
        }
        found.any = true;
    }
    return found;
}

/// The first column of a row that holds the value and is kept by the mask. There is one.
template <int channels, class T, class... Mask>
[[gnu::flatten]] Lum32s columnOf(T value, int64_t width, const T* row, const Mask*... mask)
{
    constexpr int N = 64 / static_cast<int>(sizeof(T));
    int64_t x = 0;
    for (; x < width; x += N) {
        if (x + N <= width &&
            !simd::anyEqual(simd::loadPixels<N, channels>(row + x * channels), simd::broadcast<N>(value)))
            continue;
        for (int64_t i = x; i < width && i < x + N; ++i)
            if (row[i * channels] == value && (mask[i] && ...))
                return static_cast<Lum32s>(i);
    }
    return -1;
}

inline bool anySet(Plane<const Lum8u> mask, LumiSize size)
{
    for (int64_t y = 0; y < size.height; ++y)
        for (int64_t x = 0; x < size.width; ++x)
            if (mask.row(y)[x])
                return true;
    return false;
}

template <class T>
void write(T* result, T value)
{
    if (result)
        *result = value;
}

template <class T, int channels, class... Mask>
LumStatus extrema(Channel<T, channels> source, LumiSize roiSize, Results results, Channel<Mask, 1>... mask)
{
    const auto checks = channelChecks(roiSize, source, mask...);
    if (checks.failed())
        return checks.status();

    const auto src = source.plane();
    const auto found = results.wantPlaces() ? findRows<channels>(roiSize, src, mask.plane()...)
                                            : findValues<channels>(roiSize, src, mask.plane()...);
    if constexpr (sizeof...(mask) > 0)
        if (!found.any && !(anySet(mask.plane(), roiSize) && ...)) {
            write(results.least, 0.0f);
            write(results.greatest, 0.0f);
            write(results.leastPlace, LumiPoint{0, 0});
            write(results.greatestPlace, LumiPoint{0, 0});
            return lumWrnEmptyMask;
        }

    const auto place = [&](T value, int64_t y) {
        return found.any ? LumiPoint{columnOf<channels>(value, roiSize.width, src.row(y), mask.plane().row(y)...),
                                     static_cast<Lum32s>(y)}
                         : LumiPoint{-1, 0};
    };
    // adding +0.0 makes the zeros of both signs one
    write(results.least, static_cast<Lum32f>(found.least) + 0.0f);
    write(results.greatest, static_cast<Lum32f>(found.greatest) + 0.0f);
    if (results.leastPlace)
        *results.leastPlace = place(found.least, found.leastRow);
    if (results.greatestPlace)
        *results.greatestPlace = place(found.greatest, found.greatestRow);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMinMaxIndx_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal,
                                LumiPoint* pMinIndex, LumiPoint* pMaxIndex)
{
    return extrema(wholeImage(pSrc, srcStep), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex});
}

LumStatus lumiMinMaxIndx_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal,
                                 LumiPoint* pMinIndex, LumiPoint* pMaxIndex)
{
    return extrema(wholeImage(pSrc, srcStep), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex});
}

LumStatus lumiMinMaxIndx_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal,
                                 LumiPoint* pMinIndex, LumiPoint* pMaxIndex)
{
    return extrema(wholeImage(pSrc, srcStep), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex});
}

LumStatus lumiMinMaxIndx_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                 LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                 LumiPoint* pMaxIndex)
{
    return extrema(wholeImage(pSrc, srcStep), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex},
                   wholeImage(pMask, maskStep));
}

LumStatus lumiMinMaxIndx_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                  LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                  LumiPoint* pMaxIndex)
{
    return extrema(wholeImage(pSrc, srcStep), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex},
                   wholeImage(pMask, maskStep));
}

LumStatus lumiMinMaxIndx_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                  LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                  LumiPoint* pMaxIndex)
{
    return extrema(wholeImage(pSrc, srcStep), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex},
                   wholeImage(pMask, maskStep));
}

LumStatus lumiMinMaxIndx_8u_C3CR(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi, Lum32f* pMinVal,
                                 Lum32f* pMaxVal, LumiPoint* pMinIndex, LumiPoint* pMaxIndex)
{
    return extrema(channelOfInterest(pSrc, srcStep, coi), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex});
}

LumStatus lumiMinMaxIndx_16u_C3CR(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi, Lum32f* pMinVal,
                                  Lum32f* pMaxVal, LumiPoint* pMinIndex, LumiPoint* pMaxIndex)
{
    return extrema(channelOfInterest(pSrc, srcStep, coi), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex});
}

LumStatus lumiMinMaxIndx_32f_C3CR(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi, Lum32f* pMinVal,
                                  Lum32f* pMaxVal, LumiPoint* pMinIndex, LumiPoint* pMaxIndex)
{
    return extrema(channelOfInterest(pSrc, srcStep, coi), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex});
}

LumStatus lumiMinMaxIndx_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                  LumiSize roiSize, Lum32s coi, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                  LumiPoint* pMaxIndex)
{
    return extrema(channelOfInterest(pSrc, srcStep, coi), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex},
                   wholeImage(pMask, maskStep));
}

LumStatus lumiMinMaxIndx_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                   LumiSize roiSize, Lum32s coi, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                   LumiPoint* pMaxIndex)
{
    return extrema(channelOfInterest(pSrc, srcStep, coi), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex},
                   wholeImage(pMask, maskStep));
}

LumStatus lumiMinMaxIndx_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                   LumiSize roiSize, Lum32s coi, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                   LumiPoint* pMaxIndex)
{
    return extrema(channelOfInterest(pSrc, srcStep, coi), roiSize, {pMinVal, pMaxVal, pMinIndex, pMaxIndex},
                   wholeImage(pMask, maskStep));
}
