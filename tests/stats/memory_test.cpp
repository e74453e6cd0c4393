// What the functions of image statistics touch: rows that stand alone, results at the edge of a page, images in common.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include "stats/stats_fixture.hpp"

namespace lumcv::test::stats {
namespace {

// Rows of a source, in bytes, each between unreadable pages; they cannot be written.
class AloneRows
{
  public:
    AloneRows(LumiSize size, Element element, int channels, Guard guard)
        : element_(element),
          channels_(channels),
          size_(size),
          rows_({.width = size.width, .height = size.height, .channels = channels * bytesOf(element), .guard = guard})
    {
    }
    // f(x, y, channel) gives the element
    template <class F>
    void fill(F f)
    {
        for (int y = 0; y < size_.height; ++y) {
            for (int i = 0; i < size_.width * channels_; ++i) {
                storeElement(rows_.row(y) + i * bytesOf(element_), element_, f(i / channels_, y, i % channels_));
            }
        }
        rows_.makeReadOnly();
    }
    const Lum8u* pixels() const
    {
        return rows_.pixels();
    }
    int step() const
    {
        return rows_.step();
    }

  private:
    Element element_;
    int channels_;
    LumiSize size_;
    IsolatedRows<Lum8u> rows_;
};

// One byte too far in any row ends the test: behind the last element of the last pixel, which belongs to the row
// whatever the channel of interest is, and before the first element of the first.
void rowsStandAlone(Element element, int channels, Lum32s coi, int width, Guard guard, Random& random)
{
    constexpr int height = 3;
    Sample sample{element, width, height, {}, {}, {}};
    AloneRows source1({width, height}, element, channels, guard);
    AloneRows source2({width, height}, element, channels, guard);
    AloneRows mask({width, height}, Element::U8, 1, guard);
    const auto drawInto = [&](std::vector<Lum32f>& plane) {
        return [&](int, int, int channel) {
            const bool counts = channel == coi - 1;
            const Lum32f value = draw(random, element, counts ? Content::Ordinary : Content::NonFinite, true);
            if (counts) {
                plane.push_back(value);
            }
            return value;
        };
    };
    source1.fill(drawInto(sample.first));
    source2.fill(drawInto(sample.second));
    mask.fill([&](int, int, int) {
        sample.mask.push_back(random.oneIn(3) ? Lum8u{0} : static_cast<Lum8u>(random.between(1, 255)));
        return static_cast<Lum32f>(sample.mask.back());
    });
    Operands o;
    o.pSrc1 = source1.pixels();
    o.src1Step = source1.step();
    o.pSrc2 = source2.pixels();
    o.src2Step = source2.step();
    o.pMask = mask.pixels();
    o.maskStep = mask.step();
    o.roiSize = {width, height};
    o.coi = coi;
    for (const Export& e : allExports()) {
        if (e.element == element && e.channels() == channels) {
            ASSERT_TRUE(sameOutcome(e, expectedOf(e, sample), outcomeOf(e, o)))
                << "channel " << coi << ", width " << width;
        }
    }
}

void rowsStandAlone(const std::vector<int>& widths)
{
    Random random(71);
    for (const Element element : kElements) {
        for (const int width : widths) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                rowsStandAlone(element, 1, 1, width, guard, random);
                for (const Lum32s coi : {1, 2, 3}) {
                    rowsStandAlone(element, 3, coi, width, guard, random);
                }
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(StatsMemory, RowsStandAlone)
{
    std::vector<int> widths;
    for (int width = 1; width <= 70; ++width) {
        widths.push_back(width);
    }
    for (const int width : {95, 96, 97, 127, 128, 129, 191, 193, 255, 256, 257, 1100}) {
        widths.push_back(width);
    }
    rowsStandAlone(widths);
}

TEST(StatsMemoryQuick, RowsStandAlone)
{
    rowsStandAlone({1, 5, 16, 33});
}

// Every channel of interest of the smallest images, whose last pixel is all that there is.
TEST(StatsMemoryQuick, EveryChannelOfNarrowImages)
{
    Random random(72);
    for (const Export& e : allExports()) {
        for (int width = 1; width <= 20 && e.ofInterest; ++width) {
            Scene scene(width, 1, e.element, 3);
            scene.fill(random, Content::Ordinary, Content::Ordinary, 0);
            for (const Lum32s coi : {1, 2, 3}) {
                ASSERT_TRUE(agrees(e, scene, coi));
            }
        }
    }
}

// The channels beside that of interest may hold anything.
TEST(StatsMemoryQuick, NeighbouringChannelsHaveNoInfluence)
{
    Random random(73);
    for (const Export& e : allExports()) {
        if (!e.ofInterest) {
            continue;
        }
        for (const int width : {1, 2, 7, 16, 45, 64}) {
            for (const Lum32s coi : {1, 2, 3}) {
                Scene scene(width, 3, e.element, 3);
                scene.fill(random, Content::Ordinary, Content::Ordinary, 20);
                const Outcome before = outcomeOf(e, scene.operands(coi));
                for (const Lum32f neighbour : {e.element == Element::F32 ? kNan : largestOf(e.element),
                                               e.element == Element::F32 ? kInfinity : 0.0f}) {
                    for (int i = 0; i < 9 * width; ++i) {
                        if (i % 3 != coi - 1) {
                            scene.setFirst(i / 3 % width, i / 3 / width, neighbour, i % 3);
                            scene.setSecond(i / 3 % width, i / 3 / width, neighbour, i % 3);
                        }
                    }
                    EXPECT_TRUE(sameOutcome(e, before, outcomeOf(e, scene.operands(coi))))
                        << "channel " << coi << ", width " << width << ", neighbours " << neighbour;
                }
            }
        }
    }
}

// The stride of a single row leads nowhere.
TEST(StatsMemoryQuick, StrideOfASingleRow)
{
    Random random(74);
    for (const Export& e : allExports()) {
        Scene scene(40, 1, e.element, e.channels());
        scene.fill(random, Content::Ordinary, Content::Ordinary, 30);
        const Outcome expected = expectedOf(e, scene.sample());
        Operands o = scene.operands();
        o.src1Step = o.src2Step = std::numeric_limits<Lum32s>::max() / 4 * 4;
        o.maskStep = std::numeric_limits<Lum32s>::max();
        EXPECT_TRUE(sameOutcome(e, expected, outcomeOf(e, o)));
    }
}

// Sources and mask may be the same memory.
TEST(StatsMemoryQuick, SourcesAndMaskInCommon)
{
    Random random(75);
    for (const Export& e : allExports()) {
        if (e.element != Element::U8 || e.ofInterest || !e.masked) {
            continue;
        }
        Scene scene(77, 3, Element::U8, 1);
        scene.fill(random, Content::FewValues, Content::Zero, 0);
        Operands o = scene.operands();
        o.pSrc2 = o.pMask = static_cast<const Lum8u*>(o.pSrc1);
        o.src2Step = o.maskStep = o.src1Step;
        Sample sample = scene.sample();
        sample.second = sample.first;
        for (std::size_t i = 0; i < sample.mask.size(); ++i) {
            sample.mask[i] = static_cast<Lum8u>(sample.first[i]);
        }
        EXPECT_TRUE(sameOutcome(e, expectedOf(e, sample), outcomeOf(e, o)));
    }
}

// Each result ends at an unreadable page, or begins behind one.
TEST(StatsMemoryQuick, ResultsAtTheEdgeOfAPage)
{
    Random random(76);
    for (const Guard guard : {Guard::After, Guard::Before}) {
        for (const Export& e : allExports()) {
            Scene scene(30, 2, e.element, e.channels());
            scene.fill(random, Content::Ordinary, Content::Ordinary, 30);
            const GuardedBlock value(sizeof(Lum64f), guard), stdDev(sizeof(Lum64f), guard);
            const GuardedBlock minVal(sizeof(Lum32f), guard), maxVal(sizeof(Lum32f), guard);
            const GuardedBlock minIndex(sizeof(LumiPoint), guard), maxIndex(sizeof(LumiPoint), guard);
            const Outcome expected = expectedOf(e, scene.sample());
            Outcome actual;
            std::memcpy(value.data(), &actual.value, sizeof actual.value);
            std::memcpy(stdDev.data(), &actual.stdDev, sizeof actual.stdDev);
            std::memcpy(minVal.data(), &actual.minVal, sizeof actual.minVal);
            std::memcpy(maxVal.data(), &actual.maxVal, sizeof actual.maxVal);
            std::memcpy(minIndex.data(), &actual.minIndex, sizeof actual.minIndex);
            std::memcpy(maxIndex.data(), &actual.maxIndex, sizeof actual.maxIndex);
            Operands o = scene.operands();
            o.pValue = value.as<Lum64f>();
            o.pStdDev = stdDev.as<Lum64f>();
            o.pMinVal = minVal.as<Lum32f>();
            o.pMaxVal = maxVal.as<Lum32f>();
            o.pMinIndex = minIndex.as<LumiPoint>();
            o.pMaxIndex = maxIndex.as<LumiPoint>();
            actual.status = e.call(o);
            actual.value = *o.pValue;
            actual.stdDev = *o.pStdDev;
            actual.minVal = *o.pMinVal;
            actual.maxVal = *o.pMaxVal;
            actual.minIndex = *o.pMinIndex;
            actual.maxIndex = *o.pMaxIndex;
            EXPECT_TRUE(sameOutcome(e, expected, actual));
            for (const GuardedBlock* block : {&value, &stdDev, &minVal, &maxVal, &minIndex, &maxIndex}) {
                EXPECT_TRUE(block->slackIntact()) << e.name;
            }
        }
    }
}

// Threads that read the same images: each call gives what it gives alone, each time.
TEST(StatsMemory, ThreadsShareImages)
{
    Random random(77);
    std::vector<Scene> scenes;
    for (const Element element : kElements) {
        for (const int channels : {1, 3}) {
            scenes.emplace_back(133, 5, element, channels);
            scenes.back().fill(random, Content::Ordinary, Content::Ordinary, 30);
        }
    }
    const auto sceneOf = [&](const Export& e) -> const Scene& {
        return scenes[static_cast<std::size_t>(e.element) * 2 + (e.ofInterest ? 1 : 0)];
    };
    const std::vector<Export>& exports = allExports();
    constexpr std::size_t threadCount = 2;
    std::array<std::vector<Outcome>, threadCount> outcomes;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (int repetition = 0; repetition < 3; ++repetition) {
                for (const Export& e : exports) {
                    outcomes[thread].push_back(outcomeOf(e, sceneOf(e).operands(e.channels())));
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < 3 * exports.size(); ++i) {
        const Export& e = exports[i % exports.size()];
        const Outcome expected = expectedOf(e, sceneOf(e).sample(e.channels()));
        EXPECT_TRUE(sameOutcome(e, expected, outcomes[0][i]));
        EXPECT_TRUE(sameOutcome(e, expected, outcomes[1][i]));
    }
}

}  // namespace
}  // namespace lumcv::test::stats
