// The order of float additions in a stage: the sort of the classifiers, the running sum, the sum of a rectangle.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <type_traits>
#include <vector>

#include "integral/haar_fixture.hpp"

namespace lumcv::test::haar {
namespace {

constexpr Lum32f kLarge = 16777216;  // 2^24: adding 1 to it is lost

// Calls f with each form that adds its votes in single precision.
template <class F>
void forEachFloatForm(F f)
{
    forEachForm([&]<class T, class V>(const Form<T, V>& form) {
        if constexpr (std::is_same_v<V, Lum32f>) {
            f(form);
        }
    });
}

struct Vote
{
    int rects;
    Lum32f vote;
};

// Classifiers that vote the same whatever the feature, in the caller's order.
Stage<Lum32f> stageOfVotes(const std::vector<Vote>& votes)
{
    Stage<Lum32f> stage;
    for (const Vote& vote : votes) {
        const auto count = static_cast<std::size_t>(vote.rects);
        stage.push_back({std::vector<LumiRect>(count, LumiRect{0, 0, 1, 1}), std::vector<Lum32f>(count, 0.0F), 0,
                         vote.vote, vote.vote});
    }
    return stage;
}

// Whether the votes add up to the given sum: a window is kept by a threshold that is a little lower and cleared by one
// that is a little higher.
void expectSum(const std::vector<Vote>& votes, Lum32f sum)
{
    const Stage<Lum32f> stage = stageOfVotes(votes);
    const std::vector<Turn> turns = allTurned(stage.size(), Turn::Upright);
    forEachFloatForm([&]<class T>(const Form<T, Lum32f>& form) {
        const Record<Lum32f> record(stage, {35, 2});
        Scene<T, Lum32f> scene(form, stage, turns, {.width = 35, .height = 2}, {.width = 35, .height = 2});
        Random random(91);
        fillScene(scene, random, Numbers::Ordinary, 0);
        scene.mask.forEach(Area::Roi, [](Lum8u& byte, int, int, int) { byte = 1; });
        for (const Lum32s positive : estimates(scene.roiSize)) {
            for (const Lum32f off : {-0.25F, 0.25F}) {
                scene.positive = positive;
                scene.threshold = sum + off;
                Image<Lum8u> mask = scene.mask;
                Lum32s count = positive;
                ASSERT_EQ(scene.call(record.state(), mask, count), lumOk);
                EXPECT_EQ(count, off < 0 ? 70 : 0) << "the sum is not " << sum << ", estimate " << positive;
                EXPECT_TRUE(agrees(scene, record));
            }
        }
    });
}

Lum32f sumInOrder(const std::vector<Lum32f>& votes)
{
    Lum32f sum = 0;
    for (const Lum32f vote : votes) {
        sum += vote;
    }
    return sum;
}

// Two rectangles first, then three, then the rest.
TEST(HaarOrderQuick, TwoThenThreeThenAllOthers)
{
    EXPECT_EQ(sumInOrder({kLarge, 1, -kLarge, 1}), 1) << "the caller's order";
    EXPECT_EQ(sumInOrder({1, 1, kLarge, -kLarge}), 2) << "the stored order";
    expectSum({{3, kLarge}, {2, 1}, {4, -kLarge}, {2, 1}}, 2);
    expectSum({{4, kLarge}, {2, 1}, {3, -kLarge}, {2, 1}}, sumInOrder({1, 1, -kLarge, kLarge}));
    expectSum({{2, kLarge}, {3, 1}, {2, -kLarge}, {4, 1}}, 2);
    expectSum({{3, kLarge}, {4, 1}, {3, -kLarge}, {1, 1}}, 2);
    EXPECT_EQ(sumInOrder({1, 1, -kLarge, kLarge, 0}), 2) << "four before three";
    expectSum({{4, 1}, {3, kLarge}, {4, 1}, {3, 0}, {4, -kLarge}}, sumInOrder({kLarge, 0, 1, 1, -kLarge}));
}

// Within a group the caller's order stands; turned round the sums would be 2.
TEST(HaarOrderQuick, GroupsKeepTheOrderOfTheCaller)
{
    EXPECT_EQ(sumInOrder({kLarge, 1, -kLarge, 1}), 1);
    EXPECT_EQ(sumInOrder({1, -kLarge, 1, kLarge}), 2);
    for (const int rects : {1, 2, 3, 4, 7}) {
        expectSum({{rects, kLarge}, {rects, 1}, {rects, -kLarge}, {rects, 1}}, 1);
    }
}

// One rectangle, or more than three: one group, in the caller's order and behind all others.
TEST(HaarOrderQuick, OneRectangleStandsWithFourAndMore)
{
    expectSum({{1, kLarge}, {5, 1}, {4, -kLarge}, {1, 1}}, 1);
    expectSum({{4, kLarge}, {1, 1}, {6, -kLarge}, {5, 1}}, 1);
    expectSum({{1, kLarge}, {3, 1}, {1, -kLarge}, {2, 1}}, 2);
    EXPECT_EQ(sumInOrder({kLarge, 1, -kLarge, 1}), 1);
    expectSum({{1, kLarge}, {2, 1}, {1, 0}, {2, 1}, {1, -kLarge}}, 2);
}

// All votes go into one running sum, over more classifiers than any block of them: partial sums, of whatever length,
// or the kinds of classifiers summed apart, would be other sums.
TEST(HaarOrder, OneRunningSum)
{
    Random random(92);
    for (const int length : {2, 16, 17, 33, 50, 70}) {
        Stage<Lum32f> stage = drawStage<Lum32f>(random, length, {6, 6});
        for (Classifier<Lum32f>& c : stage) {
            c.val1 = random.value<Lum32f>(Values::Ordinary) * (random.oneIn(3) ? 4096.0F : 1.0F);
            c.val2 = random.value<Lum32f>(Values::Ordinary);
        }
        const Record<Lum32f> record(stage, {83, 2});
        forEachFloatForm([&]<class T>(const Form<T, Lum32f>& form) {
            Scene<T, Lum32f> scene(form, stage, allTurned(stage.size(), Turn::Upright), {.width = 83, .height = 2},
                                   {.width = 83, .height = 2});
            fillScene(scene, random, Numbers::Ordinary, 0);
            scene.mask.forEach(Area::Roi, [](Lum8u& byte, int, int, int) { byte = 1; });
            // a threshold that every window of one sum meets exactly: off by a rounding, its outcome is another
            int differentSums = 0;
            for (int repetition = 0; repetition < 18; ++repetition) {
                const int i = static_cast<int>(random.between(0, 82)), j = static_cast<int>(random.between(0, 1));
                const std::vector<Lum32s> all = estimates(scene.roiSize);
                scene.positive = all[static_cast<std::size_t>(repetition) % all.size()];
                scene.threshold = scene.sumAt(i, j);
                ASSERT_TRUE(agrees(scene, record)) << length << " classifiers";
                const Job<T, Lum32f> job = scene.job();
                std::vector<Lum32f> votes;
                for (const StoredClassifier<Lum32f>& c : job.classifiers) {
                    const Lum32f feature = featureOf(job, c, i, j, orderOf(job, placeOf(job, scene.roiSize, i)));
                    votes.push_back(isBelow(job, feature, c.threshold, scene.norms.at(i, j)) ? c.val1 : c.val2);
                }
                ASSERT_EQ(sumInOrder(votes), scene.threshold);
                for (const std::size_t block : {std::size_t{4}, std::size_t{8}, std::size_t{16}}) {
                    Lum32f sum = 0;
                    for (std::size_t k = 0; k < votes.size(); k += block) {
                        const auto begin = votes.begin() + static_cast<std::ptrdiff_t>(k);
                        const auto end = votes.begin() + static_cast<std::ptrdiff_t>(std::min(k + block, votes.size()));
                        sum += sumInOrder({begin, end});
                    }
                    differentSums += sum != scene.threshold;
                }
            }
            if (length > 16) {
                EXPECT_GT(differentSums, 3) << "blocks would do as well";
            }
        });
    }
}

// Features are sums over the rectangles in the caller's order, each product rounded by itself.
TEST(HaarOrder, FeaturesInTheOrderOfTheRectangles)
{
    Random random(93);
    for (const int rects : {2, 3, 4, 6}) {
        const auto count = static_cast<std::size_t>(rects);
        Stage<Lum32f> stage(1);
        for (std::size_t k = 0; k < count; ++k) {
            stage[0].rects.push_back(drawRect(random, {5, 5}, false));
            stage[0].weights.push_back(random.value<Lum32f>(Values::Ordinary));
        }
        stage[0].threshold = 1;
        stage[0].val1 = 0;
        stage[0].val2 = 1;
        const Record<Lum32f> record(stage, {77, 4});
        forEachFloatForm([&]<class T>(const Form<T, Lum32f>& form) {
            Scene<T, Lum32f> scene(form, stage, allTurned(1, Turn::Upright), {.width = 77, .height = 4},
                                   {.width = 77, .height = 4});
            fillScene(scene, random, Numbers::Ordinary, 0);
            scene.threshold = 0.5F;
            for (const Lum32s positive : estimates(scene.roiSize)) {
                scene.positive = positive;
                // the norm is the feature itself, which is then not below it; a feature that is rounded otherwise often
                // is
                const Job<T, Lum32f> job = scene.job();
                int lower = 0;
                scene.norms.forEach(Area::Roi, [&](Lum32f& norm, int i, int j, int) {
                    const SumOrder order = orderOf(job, placeOf(job, scene.roiSize, i));
                    norm = featureOf(job, job.classifiers[0], i, j, order);
                    Lum64f exact = 0;
                    Lum32f backwards = 0;
                    for (auto rect = job.classifiers[0].rects.rbegin(); rect != job.classifiers[0].rects.rend();
                         ++rect) {
                        const Lum32f sum = rectangleSum(entriesOf(job, job.classifiers[0], *rect, i, j), order);
                        backwards += rect->weight * sum;
                        exact += static_cast<Lum64f>(rect->weight) * static_cast<Lum64f>(sum);
                    }
                    lower += (backwards < norm) + (static_cast<Lum32f>(exact) < norm);
                });
                EXPECT_TRUE(agrees(scene, record)) << rects << " rectangles, estimate " << positive;
                EXPECT_GT(lower, 10) << "another order, or fewer roundings, would do as well";
            }
        });
    }
}

// In groups a rectangle is ((br - bl) - tr) + tl, in the tail (br - (bl + tr)) + tl; mixed forms have the first in all
// windows. Norms are such that the vote of the other formula differs in some windows of each.
TEST(HaarOrder, SumOfARectangleInGroupsAndTail)
{
    Random random(94);
    const Stage<Lum32f> stage = {{{{1, 1, 3, 2}}, {1}, 1, 0, 1}};
    for (const int width : {7, 13, 16, 21, 31, 45}) {
        const Layout layout{.width = width, .height = 24};
        const Record<Lum32f> record(stage, {width, 24});
        for (const Form<Lum32f, Lum32f>& form : {kPlain32f, kMixed32f}) {
            SCOPED_TRACE(form.name);
            Scene<Lum32f, Lum32f> scene(form, stage, allTurned(1, Turn::Upright), layout, layout);
            fillScene(scene, random, Numbers::Ordinary, 0);
            scene.mask.forEach(Area::Roi, [](Lum8u& byte, int, int, int) { byte = 1; });
            scene.threshold = 0.5F;
            for (const Lum32s positive : estimates(scene.roiSize)) {
                scene.positive = positive;
                const Job<Lum32f, Lum32f> job = scene.job();
                int inGroups = 0, inTail = 0, groupWindows = 0;
                scene.norms.forEach(Area::Roi, [&](Lum32f& norm, int i, int j, int) {
                    const bool group = placeOf(job, scene.roiSize, i) == Place::Group;
                    const Lum32f oneRun = featureOf(job, job.classifiers[0], i, j, SumOrder::OneRun);
                    const Lum32f middleFirst = featureOf(job, job.classifiers[0], i, j, SumOrder::MiddleFirst);
                    norm = std::max(oneRun, middleFirst);
                    groupWindows += group;
                    (group ? inGroups : inTail) += oneRun != middleFirst;
                });
                EXPECT_TRUE(agrees(scene, record)) << "width " << width << ", estimate " << positive;
                EXPECT_TRUE(groupWindows == 0 || inGroups > 0) << "groups do not tell the formulas apart";
                EXPECT_TRUE(groupWindows == width * 24 || inTail > 0) << "the tail does not tell the formulas apart";
            }
        }
    }
}

// Sums of integers wrap at 32 bits and are rounded to single precision then.
TEST(HaarOrderQuick, IntegerRectanglesWrapBeforeTheyAreFloats)
{
    // br - bl = -2^31 - 1 wraps to 2^31 - 1, which is 2^31 in single precision
    const Stage<Lum32f> stage = {{{{0, 0, 1, 1}}, {1}, 1, 0, 1}};
    const Record<Lum32f> record(stage, {1, 1});
    for (const FloatsOfIntegers& form : {kPlain32s32f, kMixed32s32f}) {
        SCOPED_TRACE(form.name);
        Scene<Lum32s, Lum32f> scene(form, stage, allTurned(1, Turn::Upright), {}, {});
        Image<Lum32s>& table = scene.upright.image();
        table.at(0, 0) = 0;
        table.at(1, 0) = 0;
        table.at(0, 1) = 1;
        table.at(1, 1) = std::numeric_limits<Lum32s>::min();
        scene.mask.at(0, 0) = 3;
        scene.threshold = 0.5F;
        scene.norms.at(0, 0) = 2147483648.0F;  // not above the feature
        ASSERT_TRUE(agrees(scene, record));
        Lum32s count = 1;
        ASSERT_EQ(scene.call(record.state(), scene.mask, count), lumOk);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(scene.mask.at(0, 0), 3);
    }
}

}  // namespace
}  // namespace lumcv::test::haar
