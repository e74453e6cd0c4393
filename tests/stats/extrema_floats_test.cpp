// Extrema of floats: not-a-numbers, infinities, zeros of both signs.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "stats/stats_fixture.hpp"

namespace lumcv::test::stats {
namespace {

template <class F>
void forEachExtrema(F f)
{
    for (const Export& e : extremaExports()) {
        if (e.element == Element::F32) {
            SCOPED_TRACE(e.name);
            f(e);
        }
    }
}

// One value everywhere and a full mask; the channels that do not count hold what would be chosen first.
class Floats : public Scene
{
  public:
    Floats(const Export& e, int width, int height, Lum32f value)
        : Scene(width, height, e.element, e.channels()), channel_(e.channels() / 2)
    {
        fillMaskWith(1);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                setFirst(x, y, -kInfinity, 0);
                setFirst(x, y, kInfinity, e.channels() - 1);
                set(x, y, value);
            }
        }
    }
    void set(int x, int y, Lum32f value)
    {
        setFirst(x, y, value, channel_);
    }
    Outcome outcome(const Export& e) const
    {
        return outcomeOf(e, operands(channel_ + 1));
    }

  private:
    int channel_;
};

Outcome outcomeWith(Lum32f minVal, LumiPoint minIndex, Lum32f maxVal, LumiPoint maxIndex)
{
    Outcome result;
    result.status = lumOk;
    result.minVal = minVal;
    result.maxVal = maxVal;
    result.minIndex = minIndex;
    result.maxIndex = maxIndex;
    return result;
}

const Outcome kNoPlace = outcomeWith(kInfinity, {-1, 0}, -kInfinity, {-1, 0});

TEST(ExtremaFloatsQuick, NotANumbersAloneHaveNoPlace)
{
    forEachExtrema([](const Export& e) {
        for (const Lum32f nan : {kNan, -kNan}) {
            for (const int width : {1, 7, 8, 31, 64, 65}) {
                EXPECT_TRUE(sameOutcome(e, kNoPlace, Floats(e, width, 3, nan).outcome(e))) << "width " << width;
            }
        }
    });
}

// Under a mask that is not empty: that there is no place is no warning, even where numbers stand outside.
TEST(ExtremaFloatsQuick, NotANumbersAloneUnderAMask)
{
    forEachExtrema([](const Export& e) {
        if (!e.masked) {
            return;
        }
        for (int place = 0; place < 40; ++place) {
            Floats scene(e, 40, 2, 5.0f);
            scene.fillMaskWith(0);
            scene.setMask(place, 1, 1);
            scene.set(place, 1, kNan);
            EXPECT_TRUE(sameOutcome(e, kNoPlace, scene.outcome(e))) << "x " << place;
        }
    });
}

// One number among not-a-numbers is both extremes, wherever it stands.
TEST(ExtremaFloats, OneNumberAmongNotANumbers)
{
    forEachExtrema([](const Export& e) {
        for (const Lum32f number : {1.0f, -3e38f, 3e38f, kInfinity, -kInfinity}) {
            Floats scene(e, 67, 3, kNan);
            for (int i = 0; i < 3 * 67; ++i) {
                const LumiPoint place = {i % 67, i / 67};
                scene.set(place.x, place.y, number);
                ASSERT_TRUE(sameOutcome(e, outcomeWith(number, place, number, place), scene.outcome(e)));
                scene.set(place.x, place.y, kNan);
            }
        }
    });
}

// A not-a-number as the first pixel, or at any other place, is neither.
TEST(ExtremaFloatsQuick, NotANumberIsNeverChosen)
{
    forEachExtrema([](const Export& e) {
        for (int place = 0; place < 40; ++place) {
            Floats scene(e, 40, 2, 5.0f);
            scene.set(place, 0, kNan);
            const LumiPoint first = {place == 0 ? 1 : 0, 0};
            EXPECT_TRUE(sameOutcome(e, outcomeWith(5, first, 5, first), scene.outcome(e))) << "x " << place;
            scene.set(20, 1, -6.0f);
            scene.set(21, 1, 6.0f);
            EXPECT_TRUE(sameOutcome(e, outcomeWith(-6, {20, 1}, 6, {21, 1}), scene.outcome(e))) << "x " << place;
        }
    });
}

// An infinity that equals the initial value has its first place all the same.
TEST(ExtremaFloatsQuick, InfinitiesCountLikeAnyPixel)
{
    forEachExtrema([](const Export& e) {
        for (const Lum32f infinity : {kInfinity, -kInfinity}) {
            for (const int width : {1, 8, 33}) {
                Floats scene(e, width, 3, infinity);
                EXPECT_TRUE(sameOutcome(e, outcomeWith(infinity, {0, 0}, infinity, {0, 0}), scene.outcome(e)));
                for (int x = 0; x < width; ++x) {
                    scene.set(x, 0, kNan);
                }
                scene.set(0, 1, kNan);
                const LumiPoint first = width == 1 ? LumiPoint{0, 2} : LumiPoint{1, 1};
                EXPECT_TRUE(sameOutcome(e, outcomeWith(infinity, first, infinity, first), scene.outcome(e)));
            }
        }
        Floats scene(e, 40, 3, 1.0f);
        scene.set(37, 1, kInfinity);
        scene.set(38, 1, kInfinity);
        scene.set(3, 2, -kInfinity);
        scene.set(4, 2, -kInfinity);
        EXPECT_TRUE(sameOutcome(e, outcomeWith(-kInfinity, {3, 2}, kInfinity, {37, 1}), scene.outcome(e)));
        Floats mixed(e, 40, 3, kInfinity);
        mixed.set(11, 2, 4.0f);
        EXPECT_TRUE(sameOutcome(e, outcomeWith(4, {11, 2}, kInfinity, {0, 0}), mixed.outcome(e)));
    });
}

TEST(ExtremaFloatsQuick, WhatIsMaskedOutTakesNoPart)
{
    forEachExtrema([](const Export& e) {
        if (!e.masked) {
            return;
        }
        for (const Lum32f outside : {kNan, kInfinity, -kInfinity}) {
            for (int place = 0; place < 40; ++place) {
                Floats scene(e, 40, 2, outside);
                scene.fillMaskWith(0);
                scene.setMask(place, 0, 1);
                scene.set(place, 0, 2.0f);
                scene.setMask(39 - place, 1, 0xFF);
                scene.set(39 - place, 1, 1.0f);
                EXPECT_TRUE(sameOutcome(e, outcomeWith(1, {39 - place, 1}, 2, {place, 0}), scene.outcome(e)))
                    << "outside: " << outside;
            }
        }
    });
}

// Zeros of both signs are equal: the first of either sign is the place, and the value has no sign.
TEST(ExtremaFloatsQuick, ZerosAreEqualAndPositive)
{
    forEachExtrema([](const Export& e) {
        for (int place = 0; place < 40; ++place) {
            Floats scene(e, 40, 2, 1.0f);
            scene.set(place, 0, 0.0f);
            scene.set(39 - place, 1, -0.0f);
            EXPECT_TRUE(sameOutcome(e, outcomeWith(0.0f, {place, 0}, 1, {place == 0 ? 1 : 0, 0}), scene.outcome(e)));
            scene.set(place, 0, -0.0f);
            scene.set(39 - place, 1, 0.0f);
            EXPECT_TRUE(sameOutcome(e, outcomeWith(0.0f, {place, 0}, 1, {place == 0 ? 1 : 0, 0}), scene.outcome(e)));
            Floats below(e, 40, 2, -1.0f);
            below.set(place, 0, -0.0f);
            below.set(39 - place, 1, 0.0f);
            EXPECT_TRUE(sameOutcome(e, outcomeWith(-1, {place == 0 ? 1 : 0, 0}, 0.0f, {place, 0}), below.outcome(e)));
        }
        for (const int width : {1, 8, 40}) {
            EXPECT_TRUE(sameOutcome(e, outcomeWith(0.0f, {0, 0}, 0.0f, {0, 0}), Floats(e, width, 2, -0.0f).outcome(e)));
        }
    });
}

TEST(ExtremaFloatsQuick, SubnormalNumbersAreNoZeros)
{
    forEachExtrema([](const Export& e) {
        Floats scene(e, 40, 2, 0.0f);
        scene.set(20, 1, 0x1p-149f);
        scene.set(21, 1, -0x1p-149f);
        EXPECT_TRUE(sameOutcome(e, outcomeWith(-0x1p-149f, {21, 1}, 0x1p-149f, {20, 1}), scene.outcome(e)));
    });
}

TEST(ExtremaFloatsQuick, ValuesAloneAreTheSame)
{
    Random random(52);
    forEachExtrema([&](const Export& e) {
        for (const Content content : {Content::NonFinite, Content::FewValues, Content::Zero}) {
            for (int width = 1; width < 70; width += 3) {
                Scene scene(width, 3, Element::F32, e.channels());
                scene.fill(random, content, Content::Zero, 20);
                const Outcome expected = expectedOf(e, scene.sample(1 + e.channels() / 2));
                Operands o = scene.operands(1 + e.channels() / 2);
                Lum32f minimum = -1, maximum = -1;
                o.pMinVal = &minimum;
                o.pMaxVal = &maximum;
                EXPECT_EQ(e.call(o), expected.status);
                EXPECT_TRUE(sameElement(expected.minVal, minimum)) << "width " << width << ": " << minimum;
                EXPECT_TRUE(sameElement(expected.maxVal, maximum)) << "width " << width << ": " << maximum;
            }
        }
    });
}

}  // namespace
}  // namespace lumcv::test::stats
