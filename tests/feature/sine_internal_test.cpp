// Sines and cosines against those of extended precision.
#include "feature/sine.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumcv::test {
namespace {

constexpr double mostError = 1.5;

// In units in the last place of the exact value.
double error(Lum64f value, long double exact)
{
    const double magnitude = std::fabs(double(exact));
    const double unit = std::nextafter(magnitude, std::numeric_limits<double>::infinity()) - magnitude;
    return double(std::fabs(value - exact) / unit);
}

void expectAccurate(Lum32f angle)
{
    const SineCosine of = sineCosine(angle);
    EXPECT_LE(error(of.sine, std::sin(static_cast<long double>(angle))), mostError) << angle;
    EXPECT_LE(error(of.cosine, std::cos(static_cast<long double>(angle))), mostError) << angle;
}

TEST(SineQuick, TableOfAngles)
{
    for (int i = 0; i < 200000; ++i)
        expectAccurate(Lum32f(i) * 7.3e-5f);
}

TEST(SineQuick, AboutEighthsOfATurn)
{
    for (int eighth = 0; eighth <= 16; ++eighth) {
        auto angle = Lum32f(eighth * 0.78539816339744830962);
        for (int i = 0; i < 100; ++i)
            angle = std::nextafter(angle, 0.0f);
        for (int i = 0; i < 200; ++i, angle = std::nextafter(angle, 100.0f))
            expectAccurate(angle);
    }
}

TEST(SineQuick, NoAngleAndSmallestAngles)
{
    EXPECT_EQ(sineCosine(0).sine, 0);
    EXPECT_EQ(sineCosine(0).cosine, 1);
    for (const Lum32f angle : {1e-45f, 1e-38f, 1e-20f, 1e-4f})
        EXPECT_EQ(sineCosine(angle).sine, std::sin(Lum64f{angle})) << angle;
}

}  // namespace
}  // namespace lumcv::test
