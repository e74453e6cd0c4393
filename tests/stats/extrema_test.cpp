// Extrema with location: values, first places, masks, and what floats bring with them.
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
        SCOPED_TRACE(e.name);
        f(e);
    }
}
template <class F>
void forEachExtremaOf(Element element, F f)
{
    forEachExtrema([&](const Export& e) {
        if (e.element == element) {
            f(e);
        }
    });
}

// One value everywhere in the last channel, and in the others, which do not count, a not-a-number or, by turns, the
// smallest and the largest number; a full mask.
class Plain : public Scene
{
  public:
    Plain(const Export& e, int width, int height, Lum32f value)
        : Scene(width, height, e.element, e.channels()), channel_(e.channels() - 1)
    {
        fillMaskWith(1);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                setFirst(x, y, e.element == Element::F32 ? kNan : 0, 0);
                setFirst(x, y, e.element == Element::F32 ? -kInfinity : largestOf(e.element), channel_ / 2);
                set(x, y, value);
            }
        }
    }
    void set(int x, int y, Lum32f value)
    {
        setFirst(x, y, value, channel_);
    }
    Lum32s coi() const
    {
        return channel_ + 1;
    }
    Outcome outcome(const Export& e) const
    {
        return outcomeOf(e, operands(coi()));
    }

  private:
    int channel_;
};

Outcome outcomeWith(Lum32f minVal, LumiPoint minIndex, Lum32f maxVal, LumiPoint maxIndex, LumStatus status = lumOk)
{
    Outcome result;
    result.status = status;
    result.minVal = minVal;
    result.maxVal = maxVal;
    result.minIndex = minIndex;
    result.maxIndex = maxIndex;
    return result;
}

TEST(ExtremaQuick, ConstantImageHasBothAtTheOrigin)
{
    forEachExtrema([](const Export& e) {
        for (const Lum32f value : {0.0f, 1.0f, largestOf(e.element)}) {
            for (const int width : {1, 2, 15, 16, 17, 64, 100}) {
                EXPECT_TRUE(
                    sameOutcome(e, outcomeWith(value, {0, 0}, value, {0, 0}), Plain(e, width, 3, value).outcome(e)))
                    << "width " << width << ", value " << value;
            }
        }
    });
}

TEST(ExtremaQuick, ConstantImageUnderAMaskHasBothAtItsFirstPixel)
{
    forEachExtrema([](const Export& e) {
        if (!e.masked) {
            return;
        }
        for (int first = 0; first < 150; first += 7) {
            Plain scene(e, 50, 3, 9.0f);
            for (int i = 0; i < 150; ++i) {
                scene.setMask(i % 50, i / 50, i < first ? Lum8u{0} : Lum8u{0x80});
            }
            const LumiPoint place = {first % 50, first / 50};
            EXPECT_TRUE(sameOutcome(e, outcomeWith(9, place, 9, place), scene.outcome(e)));
        }
    });
}

// Of two equal pixels the one in the upper row is told, and in one row the left one.

TEST(Extrema, OfTwoInARowTheLeftOne)
{
    constexpr int width = 70;
    forEachExtrema([](const Export& e) {
        Plain scene(e, width, 2, 100.0f);
        for (int left = 0; left < width; ++left) {
            for (const int distance : {1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 47, 48, 63, 64, 65}) {
                const int right = left + distance;
                if (right >= width) {
                    break;
                }
                scene.set(left, 1, 3);
                scene.set(right, 1, 3);
                ASSERT_TRUE(sameOutcome(e, outcomeWith(3, {left, 1}, 100, {0, 0}), scene.outcome(e))) << distance;
                scene.set(left, 1, 200);
                scene.set(right, 1, 200);
                ASSERT_TRUE(sameOutcome(e, outcomeWith(100, {0, 0}, 200, {left, 1}), scene.outcome(e))) << distance;
                scene.set(left, 1, 100);
                scene.set(right, 1, 100);
            }
        }
    });
}

// Straight below, below to the right, and below to the left, where the column of the second is the smaller one.
TEST(Extrema, OfTwoRowsTheUpperOne)
{
    constexpr int width = 40;
    forEachExtrema([](const Export& e) {
        Plain scene(e, width, 4, 100.0f);
        for (int x = 0; x < width; x += 3) {
            for (const int belowX : {x, x + 1, width - 1, x - 1, 0}) {
                if (belowX < 0 || belowX >= width) {
                    continue;
                }
                for (const int belowY : {2, 3}) {
                    scene.set(x, 1, 3);
                    scene.set(belowX, belowY, 3);
                    ASSERT_TRUE(sameOutcome(e, outcomeWith(3, {x, 1}, 100, {0, 0}), scene.outcome(e)))
                        << "again at " << pointText({belowX, belowY});
                    scene.set(x, 1, 200);
                    scene.set(belowX, belowY, 200);
                    ASSERT_TRUE(sameOutcome(e, outcomeWith(100, {0, 0}, 200, {x, 1}), scene.outcome(e)))
                        << "again at " << pointText({belowX, belowY});
                    scene.set(x, 1, 100);
                    scene.set(belowX, belowY, 100);
                }
            }
        }
    });
}

// An equal pixel that the mask hides is not the first.
TEST(ExtremaQuick, EqualPixelsUnderZeroBytesAreSkipped)
{
    forEachExtrema([](const Export& e) {
        if (!e.masked) {
            return;
        }
        for (int x = 3; x < 60; ++x) {
            Plain scene(e, 60, 3, 100.0f);
            for (const int hidden : {0, 1, x - 1}) {
                scene.set(hidden, 1, 3);
                scene.setMask(hidden, 1, 0);
                scene.set(hidden, 0, 200);
                scene.setMask(hidden, 0, 0);
            }
            scene.set(x, 1, 3);
            scene.set(x, 0, 200);
            EXPECT_TRUE(sameOutcome(e, outcomeWith(3, {x, 1}, 200, {x, 0}), scene.outcome(e)));
        }
    });
}

// The two extremes at any two pixels of an image.
TEST(Extrema, EveryPlace)
{
    constexpr int width = 37, height = 3;
    forEachExtrema([](const Export& e) {
        Plain scene(e, width, height, 100.0f);
        for (int low = 0; low < width * height; ++low) {
            for (const int distance : {1, 5, 36, 37, 38, 60}) {
                const int high = (low + distance) % (width * height);
                const LumiPoint lowPlace = {low % width, low / width}, highPlace = {high % width, high / width};
                scene.set(lowPlace.x, lowPlace.y, 99);
                scene.set(highPlace.x, highPlace.y, 101);
                ASSERT_TRUE(sameOutcome(e, outcomeWith(99, lowPlace, 101, highPlace), scene.outcome(e)));
                scene.set(lowPlace.x, lowPlace.y, 100);
                scene.set(highPlace.x, highPlace.y, 100);
            }
        }
    });
}

// Which results are asked for changes none of them.
TEST(ExtremaQuick, EachResultIsOptional)
{
    Random random(51);
    forEachExtrema([&](const Export& e) {
        for (const Content content : {Content::Ordinary, Content::FewValues}) {
            for (const LumiSize size : {LumiSize{1, 1}, LumiSize{45, 4}, LumiSize{128, 2}}) {
                for (const int percentZero : {40, 100}) {
                    Scene scene(size.width, size.height, e.element, e.channels());
                    scene.fill(random, content, Content::Zero, percentZero);
                    const Outcome full = expectedOf(e, scene.sample(e.channels()));
                    for (int wanted = 0; wanted < 16; ++wanted) {
                        Outcome expected, actual;
                        Operands o = scene.operands(e.channels());
                        expected.status = full.status;
                        if (wanted & 1) {
                            o.pMinVal = &actual.minVal;
                            expected.minVal = full.minVal;
                        }
                        if (wanted & 2) {
                            o.pMaxVal = &actual.maxVal;
                            expected.maxVal = full.maxVal;
                        }
                        if (wanted & 4) {
                            o.pMinIndex = &actual.minIndex;
                            expected.minIndex = full.minIndex;
                        }
                        if (wanted & 8) {
                            o.pMaxIndex = &actual.maxIndex;
                            expected.maxIndex = full.maxIndex;
                        }
                        actual.status = e.call(o);
                        EXPECT_TRUE(sameOutcome(e, expected, actual)) << "results wanted: " << wanted;
                    }
                }
            }
        }
    });
}

TEST(ExtremaQuick, EmptyMaskWarnsWhateverIsAskedFor)
{
    forEachExtrema([](const Export& e) {
        if (!e.masked) {
            return;
        }
        for (const int width : {1, 16, 33, 100}) {
            Plain scene(e, width, 3, e.element == Element::F32 ? kNan : 7.0f);
            scene.fillMaskWith(0);
            EXPECT_TRUE(sameOutcome(e, outcomeWith(0, {0, 0}, 0, {0, 0}, lumWrnEmptyMask), scene.outcome(e)));
            Operands o = scene.operands(scene.coi());
            EXPECT_EQ(e.call(o), lumWrnEmptyMask) << "no result asked for";
            Lum32f maximum = -1;
            o.pMaxVal = &maximum;
            EXPECT_EQ(e.call(o), lumWrnEmptyMask) << "without pMinIndex";
            EXPECT_EQ(bitsOf(maximum), 0u) << maximum;
            LumiPoint place = {-1, -1};
            o.pMaxVal = nullptr;
            o.pMaxIndex = &place;
            EXPECT_EQ(e.call(o), lumWrnEmptyMask) << "pMaxIndex alone";
            EXPECT_EQ(pointText(place), "(0, 0)");
            // a single byte makes the difference, wherever it is
            for (const LumiPoint set : {LumiPoint{0, 0}, LumiPoint{width - 1, 2}, LumiPoint{width / 2, 1}}) {
                scene.setMask(set.x, set.y, 0x80);
                scene.set(set.x, set.y, 5.0f);
                EXPECT_TRUE(sameOutcome(e, outcomeWith(5, set, 5, set), scene.outcome(e))) << pointText(set);
                scene.setMask(set.x, set.y, 0);
            }
        }
    });
}

// The first pixel is the extremum that the mask allows: (0, 0) with a byte that is set is no empty mask; nor is it with
// a byte that is not set and others that are.
TEST(ExtremaQuick, PlaceAtTheOriginIsNoEmptyMask)
{
    forEachExtrema([](const Export& e) {
        Plain scene(e, 20, 2, 0.0f);
        EXPECT_TRUE(sameOutcome(e, outcomeWith(0, {0, 0}, 0, {0, 0}), scene.outcome(e)));
        if (e.masked) {
            scene.setMask(0, 0, 0);
            EXPECT_TRUE(sameOutcome(e, outcomeWith(0, {1, 0}, 0, {1, 0}), scene.outcome(e)));
        }
    });
}

// 8u and 16u: the whole range, whose halves would change places if it were taken as signed.
TEST(ExtremaQuick, IntegersAreUnsigned)
{
    forEachExtrema([](const Export& e) {
        if (e.element == Element::F32) {
            return;
        }
        const Lum32f half = e.element == Element::U8 ? 128.0f : 32768.0f;
        for (const int width : {1, 8, 16, 33, 64}) {
            Plain scene(e, width + 2, 2, half);
            scene.set(width, 1, half - 1);
            scene.set(width + 1, 1, half + 1);
            EXPECT_TRUE(sameOutcome(e, outcomeWith(half - 1, {width, 1}, half + 1, {width + 1, 1}), scene.outcome(e)));
            scene.set(width, 1, largestOf(e.element));
            scene.set(width + 1, 1, 0);
            EXPECT_TRUE(
                sameOutcome(e, outcomeWith(0, {width + 1, 1}, largestOf(e.element), {width, 1}), scene.outcome(e)));
        }
    });
}

// Places are integers all the way: 2^24 + 1 is no Lum32f, and rows pass 65535.
TEST(Extrema, PlacesFarOut)
{
    constexpr int pixels = 0x1000005;
    std::vector<Lum8u> row(pixels, 100);
    const std::vector<Lum8u> mask(pixels, 1);
    row[0x1000001] = 3;
    row[0x1000002] = 3;
    row[pixels - 1] = 200;
    for (const char* const name : {"lumiMinMaxIndx_8u_C1R", "lumiMinMaxIndx_8u_C1MR"}) {
        const Export& e = exportNamed(name);
        Operands o;
        o.pSrc1 = row.data();
        o.pMask = mask.data();
        for (const int width : {pixels, 1}) {
            o.src1Step = o.maskStep = width;
            o.roiSize = {width, pixels / width};
            const auto placeOf = [&](int i) { return width == 1 ? LumiPoint{0, i} : LumiPoint{i, 0}; };
            EXPECT_TRUE(sameOutcome(e, outcomeWith(3, placeOf(0x1000001), 200, placeOf(pixels - 1)), outcomeOf(e, o)))
                << "width " << width;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::stats
