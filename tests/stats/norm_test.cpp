// Norms: each documented rule by name.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "stats/stats_fixture.hpp"

namespace lumcv::test::stats {
namespace {

constexpr Lum64f kInfinite = std::numeric_limits<Lum64f>::infinity();

// Calls f(export) for the norms.
template <class F>
void forEachNorm(F f)
{
    for (const Export& e : normExports()) {
        SCOPED_TRACE(e.name);
        f(e);
    }
}
template <class F>
void forEachNormOf(Element element, F f)
{
    forEachNorm([&](const Export& e) {
        if (e.element == element) {
            f(e);
        }
    });
}
template <class F>
void forEachRelativeNorm(F f)
{
    forEachNorm([&](const Export& e) {
        if (e.operation == Operation::NormRel) {
            f(e);
        }
    });
}

// Ordinary pixels of both sources, all under the mask, in all channels.
Scene ordinaryScene(const Export& e, int width = 37, int height = 3)
{
    Random random(31);
    Scene scene(width, height, e.element, e.channels());
    scene.fill(random, Content::Ordinary, Content::Ordinary, 0);
    return scene;
}

// Sources whose pixels are zero but for those that a test sets; the channels beside the one that counts, which is the
// last, hold not-a-numbers or the largest number.
class Zeros : public Scene
{
  public:
    Zeros(const Export& e, int width, int height)
        : Scene(width, height, e.element, e.channels()), channel_(e.channels() - 1)
    {
        fillFirst(e.element == Element::F32 ? kNan : largestOf(e.element));
        fillSecond(e.element == Element::F32 ? kNan : largestOf(e.element));
        fillMaskWith(1);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                set(x, y, 0);
                setSecond(x, y, 0, channel_);
            }
        }
    }
    void set(int x, int y, Lum32f value)
    {
        setFirst(x, y, value, channel_);
    }
    void setOther(int x, int y, Lum32f value)
    {
        setSecond(x, y, value, channel_);
    }
    void setAllOther(Lum32f value)
    {
        for (int y = 0; y < height(); ++y) {
            for (int x = 0; x < width(); ++x) {
                setOther(x, y, value);
            }
        }
    }
    Outcome outcome(const Export& e) const
    {
        return outcomeOf(e, operands(channel_ + 1));
    }

  private:
    int channel_;
};

testing::AssertionResult gives(const Outcome& outcome, Lum64f value, LumStatus status = lumOk)
{
    if (outcome.status == status && bitsOf(outcome.value) == bitsOf(value)) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "got " << elementText(outcome.value) << " and status " << outcome.status
                                       << ", expected " << elementText(value) << " and status " << status;
}

TEST(NormQuick, EmptyMask)
{
    forEachNorm([](const Export& e) {
        for (const int width : {1, 16, 33, 100}) {
            Scene scene = ordinaryScene(e, width);
            scene.fillMaskWith(0);
            const Outcome outcome = outcomeOf(e, scene.operands());
            if (e.operation == Operation::NormRel) {
                EXPECT_EQ(outcome.status, lumWrnZeroDivisor);
                EXPECT_EQ(bitsOf(outcome.value), 0xFFF8000000000000u) << elementText(outcome.value);
            } else {
                EXPECT_TRUE(gives(outcome, 0.0));
            }
        }
    });
}

TEST(NormQuick, EqualImagesDoNotDiffer)
{
    forEachNorm([](const Export& e) {
        Scene scene = ordinaryScene(e);
        Operands o = scene.operands();
        o.pSrc2 = o.pSrc1;
        o.src2Step = o.src1Step;
        if (e.operation != Operation::Norm) {
            EXPECT_TRUE(gives(outcomeOf(e, o), 0.0));
        }
    });
}

// The divisor is zero.

TEST(NormQuick, ZeroDivisorUnderPositiveNumerator)
{
    forEachRelativeNorm([](const Export& e) {
        for (const int place : {0, 5, 31, 32, 36}) {
            Zeros scene(e, 37, 2);
            scene.set(place, 1, 1.0f);
            EXPECT_TRUE(gives(scene.outcome(e), kInfinite, lumWrnZeroDivisor));
            if (e.element == Element::F32) {
                scene.set(place, 1, -kInfinity);
                EXPECT_TRUE(gives(scene.outcome(e), kInfinite, lumWrnZeroDivisor));
            }
        }
    });
}

TEST(NormQuick, ZeroDivisorUnderZeroNumerator)
{
    forEachRelativeNorm([](const Export& e) {
        Zeros scene(e, 37, 2);
        const Outcome outcome = scene.outcome(e);
        EXPECT_EQ(outcome.status, lumWrnZeroDivisor);
        EXPECT_EQ(bitsOf(outcome.value), 0xFFF8000000000000u) << elementText(outcome.value);
    });
}

// A not-a-number in the first source alone: sums take it, a maximum leaves it out.
TEST(NormQuick, ZeroDivisorUnderNotANumber)
{
    forEachRelativeNorm([](const Export& e) {
        if (e.element != Element::F32) {
            return;
        }
        for (const int place : {0, 7, 8, 20, 36}) {
            Zeros scene(e, 37, 2);
            scene.set(place, 0, kNan);
            const Outcome outcome = scene.outcome(e);
            EXPECT_EQ(outcome.status, lumWrnZeroDivisor);
            if (e.sense == Sense::Inf) {
                EXPECT_EQ(bitsOf(outcome.value), 0xFFF8000000000000u) << elementText(outcome.value);
            } else {
                EXPECT_EQ(outcome.value, -kInfinite);
            }
            scene.setMask(place, 0, 0);  // which changes nothing: the factor 0.0 does not hide it
            EXPECT_TRUE(sameOutcome(e, outcome, scene.outcome(e)));
        }
    });
}

// 2^-149 squared is 2^-298: no zero, neither before the root nor after it.
TEST(NormQuick, TinyDivisorIsNotZero)
{
    forEachRelativeNorm([](const Export& e) {
        if (e.element != Element::F32) {
            return;
        }
        Zeros scene(e, 20, 1);
        scene.setOther(3, 0, 0x1p-149f);
        EXPECT_TRUE(gives(scene.outcome(e), 1.0));
        scene.set(3, 0, 0x1p-149f);
        EXPECT_TRUE(gives(scene.outcome(e), 0.0));
        scene.set(3, 0, 0x1p-120f);  // the difference rounds to 2^-120
        EXPECT_TRUE(gives(scene.outcome(e), 0x1p29));
    });
}

TEST(NormQuick, NegativeZerosAreAZeroDivisor)
{
    forEachRelativeNorm([](const Export& e) {
        if (e.element == Element::F32) {
            Zeros scene(e, 20, 2);
            scene.setAllOther(-0.0f);
            const Outcome outcome = scene.outcome(e);
            EXPECT_EQ(outcome.status, lumWrnZeroDivisor);
            EXPECT_EQ(bitsOf(outcome.value), 0xFFF8000000000000u) << elementText(outcome.value);
        }
    });
}

// Where the divisor is no zero, a not-a-number is the result, with the same bits.
TEST(NormQuick, NotANumberAlwaysHasTheSameBits)
{
    forEachNormOf(Element::F32, [](const Export& e) {
        if (e.sense == Sense::Inf) {
            return;
        }
        for (const Lum32f spoiler :
             {kNan, -kNan, std::bit_cast<Lum32f>(0x7FC12345u), std::bit_cast<Lum32f>(0xFF812345u)}) {
            for (const int place : {0, 9, 36}) {
                Zeros scene(e, 37, 2);
                scene.setAllOther(2.0f);
                scene.set(place, 1, spoiler);
                EXPECT_EQ(bitsOf(scene.outcome(e).value), 0xFFF8000000000000u);
                EXPECT_EQ(scene.outcome(e).status, lumOk);
                if (e.twoSources()) {
                    scene.set(place, 1, 1.0f);
                    scene.setOther(place, 1, spoiler);
                    EXPECT_EQ(bitsOf(scene.outcome(e).value), 0xFFF8000000000000u);
                    EXPECT_EQ(scene.outcome(e).status, lumOk);
                    scene.set(place, 1, kInfinity);  // infinity minus infinity
                    scene.setOther(place, 1, kInfinity);
                    EXPECT_EQ(bitsOf(scene.outcome(e).value), 0xFFF8000000000000u);
                }
            }
        }
    });
}

// A maximum can be infinite over infinite.
TEST(NormQuick, InfiniteOverInfinite)
{
    forEachRelativeNorm([](const Export& e) {
        if (e.element == Element::F32) {
            Zeros scene(e, 37, 2);
            scene.setOther(30, 1, -kInfinity);
            const Outcome outcome = scene.outcome(e);
            EXPECT_EQ(outcome.status, lumOk);
            EXPECT_EQ(bitsOf(outcome.value), 0xFFF8000000000000u) << elementText(outcome.value);
            scene.setOther(30, 1, 1.0f);
            scene.set(20, 1, -kInfinity);
            EXPECT_TRUE(gives(scene.outcome(e), kInfinite));
        }
    });
}

// Masks.

// In sums the mask is a factor of 1.0 or 0.0, which does not hide what is infinite or not a number.
TEST(NormQuick, MaskedOutInfinityAndNotANumberSpoilSums)
{
    forEachNormOf(Element::F32, [](const Export& e) {
        if (e.sense == Sense::Inf) {
            return;
        }
        for (const Lum32f spoiler : {kNan, kInfinity, -kInfinity}) {
            for (int place = 0; place < 37; ++place) {
                Zeros scene(e, 37, 2);
                scene.setAllOther(2.0f);
                scene.setMask(place, 1, 0);
                scene.set(place, 1, spoiler);
                EXPECT_TRUE(std::isnan(scene.outcome(e).value)) << "x " << place << ": " << spoiler;
            }
        }
    });
}

TEST(NormQuick, MaskedOutInfinityAndNotANumberTakeNoPartInMaxima)
{
    forEachNormOf(Element::F32, [](const Export& e) {
        if (e.sense != Sense::Inf) {
            return;
        }
        for (const Lum32f spoiler : {kNan, kInfinity, -kInfinity}) {
            for (int place = 0; place < 37; ++place) {
                Zeros scene(e, 37, 2);
                scene.set((place + 9) % 37, 1, -3.0f);
                scene.setAllOther(2.0f);
                scene.setMask(place, 1, 0);
                scene.set(place, 1, spoiler);
                const Lum64f expected[] = {3.0, 5.0, 2.5};
                const Lum64f value = expected[static_cast<int>(e.operation) - static_cast<int>(Operation::Norm)];
                EXPECT_TRUE(gives(scene.outcome(e), value)) << "x " << place << ": " << spoiler;
                scene.set(place, 1, 0.0f);
                scene.setOther(place, 1, spoiler);
                EXPECT_TRUE(gives(scene.outcome(e), value)) << "second source, x " << place << ": " << spoiler;
            }
        }
    });
}

// Maxima.

TEST(NormQuick, MaximaLeaveNotANumbersOutAndCountInfinities)
{
    forEachNormOf(Element::F32, [](const Export& e) {
        if (e.sense != Sense::Inf || e.operation == Operation::NormRel) {
            return;
        }
        for (int place = 0; place < 40; ++place) {
            Zeros scene(e, 40, 1);
            scene.set(place, 0, kNan);
            EXPECT_TRUE(gives(scene.outcome(e), 0.0)) << "x " << place;
            scene.set((place + 1) % 40, 0, -0.5f);
            EXPECT_TRUE(gives(scene.outcome(e), 0.5)) << "x " << place;
            scene.set((place + 39) % 40, 0, -kInfinity);
            EXPECT_TRUE(gives(scene.outcome(e), kInfinite)) << "x " << place;
            if (e.twoSources()) {
                scene.setOther((place + 39) % 40, 0, -kInfinity);  // a difference that is not a number
                EXPECT_TRUE(gives(scene.outcome(e), 0.5)) << "x " << place;
            }
        }
        Zeros scene(e, 40, 2);
        for (int i = 0; i < 80; ++i) {
            scene.set(i % 40, i / 40, kNan);
        }
        EXPECT_TRUE(gives(scene.outcome(e), 0.0)) << "not-a-numbers alone";
        for (int i = 0; i < 80; ++i) {
            scene.set(i % 40, i / 40, -0.0f);
        }
        EXPECT_TRUE(gives(scene.outcome(e), 0.0)) << "negative zeros alone";
    });
}

TEST(NormQuick, DifferencesOfFloatsAreRoundedToSinglePrecision)
{
    forEachNormOf(Element::F32, [](const Export& e) {
        if (e.operation != Operation::NormDiff) {
            return;
        }
        Zeros scene(e, 3, 1);
        scene.set(1, 0, 16777216.0f);
        scene.setOther(1, 0, -1.0f);
        EXPECT_TRUE(gives(scene.outcome(e), 16777216.0));
        scene.set(1, 0, 3e38f);
        scene.setOther(1, 0, -3e38f);
        EXPECT_TRUE(gives(scene.outcome(e), kInfinite));
    });
}

// The ends of the integer types, in either order, at every place of a row.
TEST(NormQuick, LargestIntegerDifferences)
{
    forEachNorm([](const Export& e) {
        if (e.element == Element::F32 || e.operation != Operation::NormDiff) {
            return;
        }
        const Lum32f largest = largestOf(e.element);
        const auto wide = static_cast<Lum64f>(largest);
        for (int place = 0; place < 70; ++place) {
            Zeros scene(e, 70, 1);
            scene.set(place, 0, largest);
            EXPECT_TRUE(gives(scene.outcome(e), wide)) << "x " << place;
            scene.setOther(69 - place, 0, largest);
            const Lum64f expected[] = {wide, 2 * wide, std::sqrt(2 * wide * wide)};
            EXPECT_TRUE(gives(scene.outcome(e), expected[static_cast<int>(e.sense)])) << "x " << place;
        }
    });
}

// sqrt(N / D) and sqrt(N) / sqrt(D) differ in the last bit for many pairs.
TEST(NormQuick, RelativeNormIsTheRootOfTheQuotient)
{
    int apart = 0;
    forEachRelativeNorm([&](const Export& e) {
        if (e.sense != Sense::L2) {
            return;
        }
        for (int i = 2; i < 60; ++i) {
            Zeros scene(e, 40, 1);
            scene.set(17, 0, static_cast<Lum32f>(i));
            scene.set(18, 0, 1.0f);
            scene.setOther(30, 0, 3.0f);
            scene.setOther(31, 0, 2.0f);
            const Lum64f numerator = i * i + 1 + 13, denominator = 13;
            EXPECT_TRUE(gives(scene.outcome(e), std::sqrt(numerator / denominator))) << i;
            apart += std::sqrt(numerator / denominator) != std::sqrt(numerator) / std::sqrt(denominator);
        }
    });
    EXPECT_GT(apart, 50);
}

// 4112 * 4112 pixels of 255: their sum passes 2 to the 32.
TEST(Norm, SumsOfBytesBeyondThirtyTwoBits)
{
    constexpr int side = 4112;
    constexpr Lum64f pixels = 1.0 * side * side;
    static_assert(pixels * 255 > 0x1p32);
    const std::vector<Lum8u> largest(side * side, 255);
    const std::vector<Lum8u> zero(side * side, 0);
    for (const LumiSize size : {LumiSize{side, side}, LumiSize{side * side, 1}}) {
        for (const char* const name : {"lumiNorm_L1_8u_C1MR", "lumiNormDiff_L1_8u_C1MR", "lumiNorm_L2_8u_C1MR",
                                       "lumiNormDiff_L2_8u_C1MR", "lumiNormRel_L2_8u_C1MR"}) {
            const Export& e = exportNamed(name);
            const bool relative = e.operation == Operation::NormRel;
            Operands o;
            o.pSrc1 = relative ? zero.data() : largest.data();
            o.pSrc2 = relative ? largest.data() : zero.data();
            o.pMask = largest.data();
            o.src1Step = o.src2Step = o.maskStep = size.width;
            o.roiSize = size;
            EXPECT_TRUE(gives(outcomeOf(e, o), relative               ? 1.0
                                               : e.sense == Sense::L1 ? pixels * 255
                                                                      : std::sqrt(pixels * 65025)))
                << name << ", " << size.width << " x " << size.height;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::stats
