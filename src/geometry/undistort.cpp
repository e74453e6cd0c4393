// Images without the radial distortion of the lens, resampled by bilinear interpolation.
#include <climits>
#include <limits>

#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "geometry/lens.hpp"
#include "lumcv/geometry.h"
#include "simd/control.hpp"
#include "simd/neighbours.hpp"

namespace lumcv {
namespace {

using lens::Lens;

/// Columns that are worked on at once: first their places, then their pixels, then the interpolation, so that none of
/// them waits for what has just been stored.
constexpr int blockColumns = 128;
constexpr int groupColumns = 16;
constexpr int groups = blockColumns / groupColumns;

/// Where the columns of a block come from. A column that is not valid comes from the image's first pixel.
struct Block
{
    Lum32s x[blockColumns], y[blockColumns];    ///< the integers in the places
    Lum32s at[blockColumns];                    ///< the place of the pixel, in bytes
    Lum32f tx[blockColumns], ty[blockColumns];  ///< the fractions
    uint16_t valid[groups];                     ///< a bit for each column
    bool isAnyValid, areAllValid;
};

struct Limits
{
    Lum32f x, y;
};

/// The places of `count` columns from x on; one pixel has pixelBytes.
[[gnu::always_inline]] inline void place(Block& block, const lens::RadialForm& form, const lens::RadialForm::Row& row,
                                         Limits limits, int64_t firstX, int64_t count, Lum32s step, Lum32s pixelBytes)
{
    unsigned any = 0, missing = 0;
    for (int i = 0; i < blockColumns && i < count; i += groupColumns) {
        constexpr int N = groupColumns;
        const auto places = form.places(row, lens::columnNumbers<N>(firstX + i));
        const auto zero = simd::broadcast<N>(0.0f);
        const auto belowZero =
            simd::broadcast<N>(-std::numeric_limits<Lum32f>::denorm_min());  // the greatest such number
        const auto mask = greater(places.x, belowZero) & greater(places.y, belowZero) &
                          less(places.x, simd::broadcast<N>(limits.x)) & less(places.y, simd::broadcast<N>(limits.y));
        const auto counted = count - i >= N ? 0xffffu : (1u << (count - i)) - 1;
        const auto valid = static_cast<unsigned>(laneBits(mask)) & counted;
        block.valid[i / N] = static_cast<uint16_t>(valid);
        any |= valid;
        missing |= valid ^ counted;
        const auto sx = select(mask, places.x, zero), sy = select(mask, places.y, zero);
        const auto ix = truncated(sx), iy = truncated(sy);
        store(block.x + i, ix);
        store(block.y + i, iy);
        store(block.at + i, iy * simd::broadcast<N>(step) + ix * simd::broadcast<N>(pixelBytes));
        store(block.tx + i, sx - toFloat(ix));
        store(block.ty + i, sy - toFloat(iy));
    }
    block.isAnyValid = any != 0;
    block.areAllValid = missing == 0;
}

/// The four pixels around each place: those of the upper row and those of the lower one, side by side.
template <class T>
struct Corners
{
    T upper[2 * blockColumns], lower[2 * blockColumns];
};

template <int N>
struct Weights
{
    simd::Vec<Lum32f, N> w00, w10, w01, w11;
};

template <int N>
[[gnu::always_inline]] inline Weights<N> weightsOf(simd::Vec<Lum32f, N> tx, simd::Vec<Lum32f, N> ty)
{
    const auto one = simd::broadcast<N>(1.0f);
    const auto restX = one - tx, restY = one - ty;
    return {restX * restY, tx * restY, restX * ty, tx * ty};
}

/// What a value becomes in an image of T; of integers the integer part of the value and a half.
template <class T, int N>
[[gnu::always_inline]] inline simd::Vec<T, N> stored(simd::Vec<Lum32f, N> value)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return value;
    else
        return simd::narrow<T>(truncated(value + simd::broadcast<N>(0.5f)));
}

/// `offset(i)` is the place of the pixel of column i, in bytes.
template <class T, class Offset>
[[gnu::always_inline]] inline void resample(const Block& block, const Lum8u* src, int64_t step, int count,
                                            Offset offset, T* values)
{
    alignas(64) Corners<T> corners;
    for (int i = 0; i < count; ++i) {
        const Lum8u* const pixel = src + offset(i);
        __builtin_memcpy(corners.upper + 2 * i, pixel, 2 * sizeof(T));
        __builtin_memcpy(corners.lower + 2 * i, pixel + step, 2 * sizeof(T));
    }
    for (int i = 0; i < count; i += groupColumns) {
        constexpr int N = groupColumns;
        const auto weights = weightsOf(simd::load<N>(block.tx + i), simd::load<N>(block.ty + i));
        const auto upper = simd::loadNeighbours<N>(corners.upper + 2 * i);
        const auto lower = simd::loadNeighbours<N>(corners.lower + 2 * i);
        const auto value = (weights.w00 * upper.first + weights.w10 * upper.second) +
                           (weights.w01 * lower.first + weights.w11 * lower.second);
        store(values + i, stored<T>(value));
    }
}

/// The same of three channels, a pixel at a time in four lanes. Of two adjacent pixels, the four elements from the
/// first on and from the third on are loaded: nothing beyond them is read. Stores one element behind the last pixel.
template <class T, class Offset>
[[gnu::always_inline]] inline void resampleColours(const Block& block, const Lum8u* src, int64_t step, int count,
                                                   Offset offset, T* values)
{
    alignas(64) Lum32f w00[blockColumns], w10[blockColumns], w01[blockColumns], w11[blockColumns];
    for (int i = 0; i < count; i += groupColumns) {
        constexpr int N = groupColumns;
        const auto weights = weightsOf(simd::load<N>(block.tx + i), simd::load<N>(block.ty + i));
        store(w00 + i, weights.w00);
        store(w10 + i, weights.w10);
        store(w01 + i, weights.w01);
        store(w11 + i, weights.w11);
    }
    for (int i = 0; i < count; ++i) {
        const auto row = [=](const Lum8u* p, Lum32f first, Lum32f second) {
            const auto* const pixel = reinterpret_cast<const T*>(p);
            return simd::broadcast<4>(first) * simd::loadFloat<4>(pixel) +
                   simd::broadcast<4>(second) *
                       simd::movedDown<1>(simd::loadFloat<4>(pixel + 2), simd::broadcast<4>(0.0f));
        };
        const Lum8u* const pixel = src + offset(i);
        const auto value = row(pixel, w00[i], w10[i]) + row(pixel + step, w01[i], w11[i]);
        if constexpr (std::is_same_v<T, Lum32f>)
            store(values + 3 * i, value);
        else
            simd::storeFour(values + 3 * i, truncated(value + simd::broadcast<4>(0.5f)));
    }
}

/// Copies the pixels whose bits are set.
template <class T, int channels>
void storeValid(const Block& block, const T* values, T* dst, int count)
{
    for (int i = 0; i < count; ++i)
        if (block.valid[i / groupColumns] >> i % groupColumns & 1)
            for (int c = 0; c < channels; ++c)
                dst[channels * i + c] = values[channels * i + c];
}

/// Not inlined, so that all of it is rounded as the caller of it has set.
template <class T, int channels>
[[gnu::noinline, gnu::flatten]] void undistortAsRounded(const Lens& lens, Plane<const T> src, Plane<T> dst,
                                                        LumiSize size)
{
    constexpr auto pixelBytes = static_cast<Lum32s>(channels * sizeof(T));
    const lens::RadialForm form(lens);
    const Limits limits{static_cast<Lum32f>(size.width - 1), static_cast<Lum32f>(size.height - 1)};
    const bool areOffsetsShort = src.step * size.height <= INT_MAX;
    const auto* const bytes = reinterpret_cast<const Lum8u*>(src.pixels);
    alignas(64) Block block;
    alignas(64) T values[channels * blockColumns + 1];
    for (Lum32s y = 0; y < size.height; ++y) {
        const auto row = form.row(y);
        for (int64_t x = 0; x < size.width; x += blockColumns) {
            const int count = static_cast<int>(size.width - x < blockColumns ? size.width - x : blockColumns);
            place(block, form, row, limits, x, count, static_cast<Lum32s>(src.step), pixelBytes);
            if (!block.isAnyValid)
                continue;
            const auto pixels = [&](auto offset) {
                if constexpr (channels == 1)
                    resample(block, bytes, src.step, count, offset, values);
                else
                    resampleColours(block, bytes, src.step, count, offset, values);
            };
            if (areOffsetsShort)
                pixels([&](int i) -> int64_t { return block.at[i]; });
            else
                pixels([&](int i) { return src.step * block.y[i] + int64_t{block.x[i]} * pixelBytes; });
            T* const to = dst.row(y) + x * channels;
            if (block.areAllValid)
                simd::copyFew(to, values, count * int64_t{pixelBytes});
            else
                storeValid<T, channels>(block, values, to, count);
        }
    }
}

template <int channels, class T>
LumStatus undistort(Plane<const T> src, Plane<T> dst, LumiSize size, const Lens& lens)
{
    const LumStatus status = Checks{}
                                 .notNull(src.pixels, dst.pixels)
                                 .size(size)
                                 .step(src, rowElements(size.width, channels))
                                 .step(dst, rowElements(size.width, channels))
                                 .alignment(src)
                                 .alignment(dst)
                                 .require(lens.fx != 0 && lens.fy != 0, lumErrArgument)
                                 .status();
    if (status != lumOk)
        return status;
    const simd::OwnFloatMode rounding(simd::Rounding::towardsZero);
    undistortAsRounded<T, channels>(lens, src, dst, size);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiUndistortGetSize(LumiSize roiSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(roiSize);
    if (checks.failed())
        return checks.status();
    return storeSize((Bytes{roiSize.width} + 3) / 4 * 4 * 24 + 32, pBufferSize);
}

LumStatus lumiUndistortRadial_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1, Lum32f k2, Lum8u*)
{
    return undistort<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, Lens{fx, fy, cx, cy, k1, k2, 0, 0});
}

LumStatus lumiUndistortRadial_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1, Lum32f k2, Lum8u*)
{
    return undistort<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, Lens{fx, fy, cx, cy, k1, k2, 0, 0});
}

LumStatus lumiUndistortRadial_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                      LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                      Lum32f k2, Lum8u*)
{
    return undistort<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, Lens{fx, fy, cx, cy, k1, k2, 0, 0});
}

LumStatus lumiUndistortRadial_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                      LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                      Lum32f k2, Lum8u*)
{
    return undistort<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, Lens{fx, fy, cx, cy, k1, k2, 0, 0});
}

LumStatus lumiUndistortRadial_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                      Lum32f k2, Lum8u*)
{
    return undistort<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, Lens{fx, fy, cx, cy, k1, k2, 0, 0});
}

LumStatus lumiUndistortRadial_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                      Lum32f k2, Lum8u*)
{
    return undistort<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, Lens{fx, fy, cx, cy, k1, k2, 0, 0});
}
