// Calls of the Canny exports with operands at chosen places, compared with the reference.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "feature/canny_reference.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/placement.hpp"
#include "support/random.hpp"

namespace lumcv::test::canny {

inline LumiSizeL wide(LumiSize size)
{
    return {size.width, size.height};
}

// An image of the destination's layout that holds the expected edges.
inline Image<Lum8u> asImage(const std::vector<Lum8u>& pixels, const Layout& layout)
{
    Image<Lum8u> image(layout);
    image.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
        element =
            pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(layout.width) + static_cast<std::size_t>(x)];
    });
    return image;
}

template <class T>
struct PlaneExports;

template <>
struct PlaneExports<Lum16s>
{
    static constexpr const char* name = "16s";
    static constexpr auto edges = lumiCanny_16s8u_C1R;
    static constexpr auto wideEdges = lumiCanny_16s8u_C1R_L;
};

template <>
struct PlaneExports<Lum32f>
{
    static constexpr const char* name = "32f";
    static constexpr auto edges = lumiCanny_32f8u_C1R;
    static constexpr auto wideEdges = lumiCanny_32f8u_C1R_L;
};

struct PlaneName
{
    template <class T>
    static std::string GetName(int)
    {
        return PlaneExports<T>::name;
    }
};

using PlaneTypes = testing::Types<Lum16s, Lum32f>;

enum class PlaneForm
{
    Narrow,  // without `_L`, which knows one norm
    WideL1,
    WideL2
};

constexpr PlaneForm kPlaneForms[] = {PlaneForm::Narrow, PlaneForm::WideL1, PlaneForm::WideL2};

inline LumiNorm normOf(PlaneForm form)
{
    return form == PlaneForm::WideL2 ? lumNormL2 : lumNormL1;
}

template <class T>
struct Planes
{
    Planes(LumiSize planeSize, const Placement& planePlace)
        : size(planeSize), place(planePlace), dx(place.layout<T>(size)), dy(dyLayout())
    {
    }
    Layout dyLayout() const
    {
        Layout layout = place.layout<T>(size);
        layout.gap += place.gap == 0 ? 0 : 3 * static_cast<int>(sizeof(T));  // the two strides differ
        return layout;
    }

    LumiSize size;
    Placement place;
    Image<T> dx;
    Image<T> dy;
};

template <class T>
LumStatus callPlanes(const Planes<T>& planes, PlaneForm form, Lum32f low, Lum32f high, Lum8u* pDst, int dstStep,
                     Lum8u* pBuffer)
{
    if (form == PlaneForm::Narrow) {
        return PlaneExports<T>::edges(planes.dx.pixels(), planes.dx.step(), planes.dy.pixels(), planes.dy.step(), pDst,
                                      dstStep, planes.size, low, high, pBuffer);
    }
    return PlaneExports<T>::wideEdges(planes.dx.pixels(), planes.dx.step(), planes.dy.pixels(), planes.dy.step(), pDst,
                                      dstStep, wide(planes.size), low, high, normOf(form), pBuffer);
}

// Runs one form with scratch of the exact size and gives the destination as it lies in memory.
template <class T>
Image<Lum8u> runPlanes(const Planes<T>& planes, PlaneForm form, Lum32f low, Lum32f high)
{
    Image<Lum8u> dst(planes.place.template layout<Lum8u>(planes.size));
    const PlacedBlock scratch(
        planeBytes(static_cast<std::uint64_t>(planes.size.width), static_cast<std::uint64_t>(planes.size.height)),
        planes.place.guard, planes.place.distance);
    EXPECT_EQ(callPlanes(planes, form, low, high, dst.pixels(), dst.step(), scratch.data()), lumOk);
    EXPECT_TRUE(dst.gapsIntact());
    EXPECT_TRUE(scratch.intact());
    return dst;
}

template <class T>
void expectPlaneEdges(const Planes<T>& planes, PlaneForm form, Lum32f low, Lum32f high)
{
    const std::vector<Lum8u> expected = planeEdges<T>(planes.dx, planes.dy, planes.size, low, high, normOf(form));
    const Image<Lum8u> actual = runPlanes(planes, form, low, high);
    EXPECT_TRUE(sameImage(asImage(expected, actual.layout()), actual))
        << PlaneExports<T>::name << ", form " << static_cast<int>(form) << ", " << planes.size.width << " x "
        << planes.size.height << ", low " << low << ", high " << high << ", " << planes.place;
}

template <class T>
void expectPlaneEdges(const Planes<T>& planes, Lum32f low, Lum32f high)
{
    for (const PlaneForm form : kPlaneForms) {
        expectPlaneEdges(planes, form, low, high);
    }
}

// A few waves across the image: smooth, with ridges in all directions.
class Waves
{
  public:
    explicit Waves(Random& random)
    {
        for (Wave& wave : waves_) {
            wave = {random.unit<double>() * 1.2 - 0.6, random.unit<double>() * 1.2 - 0.6, random.unit<double>() * 6.3};
        }
    }
    // From -1 to 1.
    double value(int x, int y) const
    {
        double sum = 0;
        for (const Wave& wave : waves_) {
            sum += std::sin(wave.alongX * x + wave.alongY * y + wave.phase);
        }
        return sum / 3;
    }

  private:
    struct Wave
    {
        double alongX;
        double alongY;
        double phase;
    };
    Wave waves_[3] = {};
};

// What an image of 8u holds.
enum class Content
{
    Smooth,
    Noise,
    Binary,    // 0 and 255 by chance
    Plateaus,  // blocks of few values
    Steps,     // a staircase along both sides, with runs of equal magnitude
    Count
};

inline Lum8u contentValue(Content content, const Waves& waves, std::uint64_t salt, Random& random, int x, int y)
{
    switch (content) {
        case Content::Smooth:
            return static_cast<Lum8u>(127.5 + 127 * waves.value(x, y));
        case Content::Noise:
            return static_cast<Lum8u>(random.bits());
        case Content::Binary:
            return random.oneIn(2) ? Lum8u{0} : Lum8u{255};
        case Content::Plateaus: {
            const auto block = static_cast<std::uint64_t>((y + 8) / 3 * 1000 + (x + 8) / 4);
            return static_cast<Lum8u>(Random(salt + block).between(0, 3) * 60);
        }
        default:
            return static_cast<Lum8u>(((x + 8) / 5 * 16 + (y + 8) / 3 * 32) & 255);
    }
}

}  // namespace lumcv::test::canny
