// The six forms of undistortion, their scratch, and lenses of all kinds.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "geometry/undistort_reference.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::geometry {

template <class T, int channelCount, auto function>
struct UndistortForm
{
    using Element = T;
    static constexpr int channels = channelCount;
    static constexpr int elementBytes = sizeof(T);

    static LumStatus call(const T* pSrc, Lum32s srcStep, T* pDst, Lum32s dstStep, LumiSize size, const Lens& lens,
                          Lum8u* pBuffer)
    {
        return function(pSrc, srcStep, pDst, dstStep, size, lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2,
                        pBuffer);
    }
};

using UndistortForms = testing::Types<
    UndistortForm<Lum8u, 1, lumiUndistortRadial_8u_C1R>, UndistortForm<Lum8u, 3, lumiUndistortRadial_8u_C3R>,
    UndistortForm<Lum16u, 1, lumiUndistortRadial_16u_C1R>, UndistortForm<Lum16u, 3, lumiUndistortRadial_16u_C3R>,
    UndistortForm<Lum32f, 1, lumiUndistortRadial_32f_C1R>, UndistortForm<Lum32f, 3, lumiUndistortRadial_32f_C3R>>;

struct UndistortFormName
{
    template <class F>
    static std::string GetName(int)
    {
        const char* const types[] = {"", "8u", "16u", "", "32f"};
        return std::string(types[F::elementBytes]) + "_C" + std::to_string(F::channels);
    }
};

inline LumStatus createMaps(Lum32f* pxMap, Lum32s xStep, Lum32f* pyMap, Lum32s yStep, LumiSize size, const Lens& lens,
                            Lum8u* pBuffer)
{
    return lumiCreateMapCameraUndistort_32f_C1R(pxMap, xStep, pyMap, yStep, size, lens.fx, lens.fy, lens.cx, lens.cy,
                                                lens.k1, lens.k2, lens.p1, lens.p2, pBuffer);
}

/// Six columns of floats of the width rounded up to 4, and 32 bytes for their alignment.
inline std::size_t undistortScratchBytes(int width)
{
    return static_cast<std::size_t>((width + 3) & ~3) * 24 + 32;
}

inline std::ostream& operator<<(std::ostream& stream, const Lens& lens)
{
    return stream << std::hexfloat << "lens of fx " << lens.fx << ", fy " << lens.fy << ", cx " << lens.cx << ", cy "
                  << lens.cy << ", k1 " << lens.k1 << ", k2 " << lens.k2 << ", p1 " << lens.p1 << ", p2 " << lens.p2
                  << std::defaultfloat;
}

/// A lens in front of an image of this size that leaves most places within it.
inline Lens ordinaryLens(LumiSize size, Random& random)
{
    const auto between = [&](Lum32f first, Lum32f last) { return first + (last - first) * random.unit<Lum32f>(); };
    const auto width = static_cast<Lum32f>(size.width);
    const auto height = static_cast<Lum32f>(size.height);
    Lens lens;
    lens.fx = between(0.6f, 2.0f) * width * (random.oneIn(5) ? -1.0f : 1.0f);
    lens.fy = between(0.6f, 2.0f) * height;
    lens.cx = between(0.2f, 0.8f) * width;
    lens.cy = between(0.2f, 0.8f) * height;
    lens.k1 = between(-0.4f, 0.2f);
    lens.k2 = between(-0.1f, 0.1f);
    lens.p1 = between(-0.02f, 0.02f);
    lens.p2 = between(-0.02f, 0.02f);
    return lens;
}

/// An ordinary lens of which one number, or all, are drawn from the whole range of floats, and from what is none.
inline Lens extremeLens(LumiSize size, Random& random)
{
    Lens lens = ordinaryLens(size, random);
    Lum32f* const numbers[] = {&lens.fx, &lens.fy, &lens.cx, &lens.cy, &lens.k1, &lens.k2, &lens.p1, &lens.p2};
    const bool all = random.oneIn(8);
    const auto chosen = random.between(0, 7);
    for (int i = 0; i < 8; ++i) {
        if (!all && i != chosen) {
            continue;
        }
        const Lum32f unusual[] = {0.0f,
                                  -0.0f,
                                  1.0f,
                                  -1.0f,
                                  1e-3f,
                                  1e5f,
                                  -1e9f,
                                  1e-30f,
                                  1e30f,
                                  1e-42f,
                                  -1e-42f,
                                  1e-22f,
                                  1e-38f,
                                  3e38f,
                                  -3e38f,
                                  std::numeric_limits<Lum32f>::infinity(),
                                  -std::numeric_limits<Lum32f>::infinity(),
                                  std::numeric_limits<Lum32f>::quiet_NaN()};
        *numbers[i] = unusual[random.between(0, std::size(unusual) - 1)];
    }
    // a focal length of 0 is an error
    lens.fx = lens.fx == 0 ? 1.0f : lens.fx;
    lens.fy = lens.fy == 0 ? 1.0f : lens.fy;
    return lens;
}

}  // namespace lumcv::test::geometry
