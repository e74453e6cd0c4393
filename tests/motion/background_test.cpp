// The background model compared with the mixture written out plainly, over many frames with changing parameters; what
// happens to modes, by name.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "motion/background_fixture.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::motion {
namespace {

Lum64f drawRate(Random& random)
{
    switch (random.between(0, 9)) {
        case 0:
            return 0;
        case 1:
            return random.unit<Lum64f>() * 0.95;
        case 2:
        case 3:
            return random.unit<Lum64f>() * 0.1;
        case 4:
            return 0.5;
        default:
            return -1;
    }
}

/// A model is fed with a scene; sometimes its parameters change, sometimes the background is rendered.
Events watch(LumiSize size, int capacity, int frames, std::uint64_t seed, const Surroundings& where)
{
    Random random(seed);
    const auto saneModel = [&] {
        LumFGMMModel model = drawModel(random, capacity);
        model.numFrames += 1;
        return model;
    };
    Watched watched(size, capacity, saneModel(), where);
    Scene scene(seed);
    Image<Lum8u> source(watched.layout(3));
    EXPECT_TRUE(watched.background());
    for (int i = 0; i < frames && !testing::Test::HasFailure(); ++i) {
        scene.draw(source, static_cast<int>(seed % 4) * 3);
        const LumFGMMModel model = saneModel();
        const bool changes = random.oneIn(7);
        EXPECT_TRUE(watched.frame(source, changes ? &model : nullptr, drawRate(random)))
            << "frame " << i << ", model " << textOf(watched.mixture().model());
        if (i % 3 == 0 || i == frames - 1) {
            EXPECT_TRUE(watched.background()) << "after frame " << i << ", model " << textOf(watched.mixture().model());
        }
    }
    return watched.mixture().events();
}

Surroundings surroundingsOf(int number)
{
    Surroundings where;
    where.guard = number % 2 == 0 ? Guard::After : Guard::Before;
    where.distance = number % 3 == 0 ? 0 : static_cast<std::size_t>(number * 7 % 67);
    where.gap = number % 4 == 0 ? 0 : number % 9;
    where.offset = number % 5 == 0 ? number % 33 : 0;
    return where;
}

TEST(BackgroundQuick, Sizes)
{
    int number = 0;
    for (const int height : {1, 3}) {
        for (const int width : {1, 2, 3, 4, 5, 8, 15, 16, 17, 33}) {
            watch({width, height}, number % 5 + 1, 12, static_cast<std::uint64_t>(number), surroundingsOf(number));
            ASSERT_FALSE(testing::Test::HasFailure()) << width << " x " << height << ", number " << number;
            ++number;
        }
    }
}

TEST(Background, Sizes)
{
    int number = 100;
    for (int width = 1; width <= 70; ++width) {
        for (const int height : {1, 2, 5}) {
            watch({width, height}, number % 6 + 1, 20, static_cast<std::uint64_t>(number), surroundingsOf(number));
            ASSERT_FALSE(testing::Test::HasFailure()) << width << " x " << height << ", number " << number;
            ++number;
        }
    }
    for (const int width : {127, 128, 129, 255, 256, 257, 260, 1100}) {
        watch({width, 2}, 4, 12, static_cast<std::uint64_t>(number), surroundingsOf(number));
        ASSERT_FALSE(testing::Test::HasFailure()) << width << ", number " << number;
        ++number;
    }
}

TEST(Background, ManyFrames)
{
    Events all;
    for (int seed = 0; seed < 12; ++seed) {
        const Events events =
            watch({37, 9}, seed % 6 + 1, 90, static_cast<std::uint64_t>(seed) + 1000, surroundingsOf(seed));
        ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed;
        const auto add = [&](long Events::*event) { all.*event += events.*event; };
        for (const auto event : {&Events::created, &Events::replaced, &Events::died, &Events::diedTogether,
                                 &Events::rose, &Events::newModeRose, &Events::dropped, &Events::matchedWithoutWeight,
                                 &Events::background, &Events::foreground, &Events::shadow, &Events::blackMean,
                                 &Events::shareReached, &Events::modesExhausted}) {
            add(event);
        }
    }
    EXPECT_GT(all.created, 10000);
    EXPECT_GT(all.replaced, 1000);
    EXPECT_GT(all.died, 1000);
    EXPECT_GT(all.diedTogether, 100);
    EXPECT_GT(all.rose, 1000);
    EXPECT_GT(all.newModeRose, 100);
    EXPECT_GT(all.dropped, 100);
    EXPECT_GT(all.matchedWithoutWeight, 10);
    EXPECT_GT(all.background, 1000);
    EXPECT_GT(all.foreground, 1000);
    EXPECT_GT(all.shadow, 100);
    EXPECT_GT(all.blackMean, 10);
    EXPECT_GT(all.shareReached, 100);
    EXPECT_GT(all.modesExhausted, 10);
}

TEST(BackgroundCasesQuick, BeforeTheFirstFrameTheBackgroundIsBlack)
{
    const Uniform model;
    EXPECT_EQ(model.rendered(), (Colour{0, 0, 0}));
}

// The first frame is foreground everywhere, and not a shadow of itself.
TEST(BackgroundCasesQuick, FirstFrame)
{
    for (const Lum8u shadowFlag : {Lum8u{0}, Lum8u{1}}) {
        for (const Lum64f rate : {-1.0, 0.0, 0.3}) {
            LumFGMMModel parameters = kUsualModel;
            parameters.shadowFlag = shadowFlag;
            Uniform model(parameters);
            EXPECT_EQ(model.show({10, 200, 255}, rate), 255);
            EXPECT_EQ(model.rendered(), (Colour{10, 200, 255}));
            ASSERT_EQ(model.modes().size(), 1u);
            EXPECT_EQ(model.modes()[0].weight, 1.0f);
            EXPECT_EQ(model.show({10, 200, 255}, rate), 0);
        }
    }
}

// The rate of the first frame is 1 / min(2, numFrames), whatever is asked for.
TEST(BackgroundCasesQuick, AutomaticRates)
{
    Uniform model;
    EXPECT_EQ(model.mixture().nextRate(kUsualModel, 0.01).a, 0.5f);
    model.show({10, 20, 30}, 0.01);
    EXPECT_EQ(model.mixture().nextRate(kUsualModel, 0.01).a, 0.01f);
    EXPECT_EQ(model.mixture().nextRate(kUsualModel, -1).a, 0.25f);
    LumFGMMModel shortHistory = kUsualModel;
    shortHistory.numFrames = 3;
    EXPECT_EQ(model.mixture().nextRate(shortHistory, -1).a, static_cast<Lum32f>(1.0 / 3));
    for (int i = 0; i < 230; ++i) {
        model.show({10 + i % 7, 20 + i % 5, 30 + i % 60}, i % 10 == 0 ? -0.5 : -1);
    }
    EXPECT_EQ(model.mixture().nextRate(kUsualModel, -1).a, static_cast<Lum32f>(1.0 / 200));
}

TEST(BackgroundCasesQuick, RateThatIsNotANumberIsAutomatic)
{
    Uniform model;
    for (int i = 0; i < 5; ++i) {
        model.show({10 + i, 20, 30}, std::numeric_limits<Lum64f>::quiet_NaN());
        model.show({90 - i, 20, 30}, std::numeric_limits<Lum64f>::quiet_NaN());
    }
}

TEST(BackgroundCasesQuick, RateOfZeroLearnsNothing)
{
    LumFGMMModel parameters = kUsualModel;
    parameters.bckgRatio = 0.5f;
    Uniform model(parameters);
    model.show({100, 100, 100});
    model.show({103, 100, 100});
    const Mode before = model.modes()[0];
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(model.show({100 + i, 100, 100 - i}, 0), 0);
        EXPECT_EQ(model.modes()[0].mean, before.mean);
        EXPECT_EQ(model.modes()[0].variance, before.variance);
        EXPECT_EQ(model.modes()[0].weight, before.weight);
    }
    EXPECT_EQ(model.show({0, 200, 0}, 0), 255);
    // a mode of no weight is matched and stays as it is
    EXPECT_EQ(model.show({1, 201, 2}, 0), 255);
    ASSERT_EQ(model.modes().size(), 2u);
    EXPECT_EQ(model.modes()[1].mean, (Colour{0, 200, 0}));
    EXPECT_EQ(model.modes()[1].weight, 0.0f);
    EXPECT_EQ(model.mixture().events().matchedWithoutWeight, 26);
}

TEST(BackgroundCasesQuick, OneModeIsAlwaysReplaced)
{
    LumFGMMModel parameters = kUsualModel;
    parameters.maxNGauss = 1;
    parameters.shadowFlag = 0;
    Uniform model(parameters, 1);
    for (const int value : {10, 200, 90, 250}) {
        EXPECT_EQ(model.show({value, 255 - value, value}), 255);
        EXPECT_EQ(model.rendered(),
                  (Colour{static_cast<Lum32f>(value), static_cast<Lum32f>(255 - value), static_cast<Lum32f>(value)}));
    }
}

// The mode that a frame makes takes part in its shadow test: its own colour, neither darker nor another, is a shadow.
TEST(BackgroundCasesQuick, ANewModeIsItsOwnShadow)
{
    LumFGMMModel parameters = kUsualModel;
    Uniform model(parameters, 1);
    EXPECT_EQ(model.show({10, 245, 10}), 255);
    EXPECT_EQ(model.show({200, 55, 200}), 127);
    EXPECT_EQ(model.show({0, 0, 0}), 255) << "a black mean has no shadow";
}

// Init allows what it is told, not what the parameters say.
TEST(BackgroundCasesQuick, InitTakesTheCapacityAsMaximum)
{
    LumFGMMModel parameters = kUsualModel;
    parameters.CT = 0;
    for (const Lum32u field : {0u, 1u, 200u}) {
        parameters.maxNGauss = field;
        Uniform model(parameters, 3);
        for (const int value : {10, 90, 160, 250}) {
            model.show({value, value, value}, 0.1);
        }
        EXPECT_EQ(model.modes().size(), 3u);
    }
}

// A maximum below what a pixel has drops its weakest modes, and 0 acts as 1.
TEST(BackgroundCasesQuick, LoweredMaximum)
{
    for (const Lum32u maximum : {0u, 1u, 2u}) {
        LumFGMMModel parameters = kUsualModel;
        parameters.CT = 0;
        Uniform model(parameters);
        for (const int value : {10, 90, 160, 250}) {
            model.show({value, 0, 0}, 0.1);
        }
        parameters.maxNGauss = maximum;
        EXPECT_EQ(model.modes().size(), 4u);
        model.show({10, 0, 0}, 0.1, &parameters);
        EXPECT_EQ(model.modes().size(), std::max(maximum, 1u));
        EXPECT_EQ(model.modes()[0].mean[0], 10.0f);
        parameters.maxNGauss = 5;
        for (const int value : {90, 160, 250}) {
            model.show({value, 0, 0}, 0.1, &parameters);
        }
    }
}

TEST(BackgroundCasesQuick, SeveralModesDieInOneFrame)
{
    LumFGMMModel parameters = kUsualModel;
    parameters.CT = 0;
    Uniform model(parameters);
    for (const int value : {10, 90, 160, 250}) {
        model.show({value, 0, 0}, 0.05);
    }
    parameters.CT = 0.9f;
    model.show({10, 0, 0}, 0.3, &parameters);
    EXPECT_EQ(model.modes().size(), 1u);
    EXPECT_EQ(model.mixture().events().diedTogether, 26);
}

TEST(BackgroundCasesQuick, ShadowsAndTheirValue)
{
    LumFGMMModel parameters = kUsualModel;
    parameters.shadowValue = 93;
    Uniform model(parameters);
    for (int i = 0; i < 10; ++i) {
        model.show({200, 160, 120});
    }
    EXPECT_EQ(model.show({120, 96, 72}, 0), 93);
    EXPECT_EQ(model.show({90, 72, 54}, 0), 255) << "darker than a shadow may be";
    EXPECT_EQ(model.show({120, 72, 96}, 0), 255) << "another colour";
    EXPECT_EQ(model.show({230, 184, 138}, 0), 255) << "brighter";
    parameters.shadowFlag = 0;
    EXPECT_EQ(model.show({120, 96, 73}, 0, &parameters), 255);
    parameters.shadowFlag = 128;
    parameters.shadowRatio = 0.4f;
    EXPECT_EQ(model.show({90, 72, 54}, 0, &parameters), 93);
}

// Sum and total are divided, not multiplied by a reciprocal, and halves go to the even number.
TEST(BackgroundCasesQuick, BackgroundIsRoundedToNearestEven)
{
    const LumiSize size = {85, 1};
    LumFGMMModel parameters = kUsualModel;
    parameters.CT = 0;
    parameters.varWGen = 50;
    parameters.bckgRatio = 0.01f;
    Random random(3);
    for (int i = 0; i < 40; ++i) {
        Watched watched(size, 3, parameters);
        Image<Lum8u> source(watched.layout(3));
        const auto show = [&](int add, Lum64f rate) {
            source.forEach(Area::Roi, [&](Lum8u& element, int x, int, int c) {
                element = static_cast<Lum8u>((3 * x + c + add) % 256);
            });
            EXPECT_TRUE(watched.frame(source, nullptr, rate));
        };
        show(0, -1);
        show(1, 0.5);
        for (int x = 0; x < 85; ++x) {
            EXPECT_EQ(watched.mixture().modes(x, 0)[0].mean[1], static_cast<Lum32f>(3 * x + 1) + 0.5f);
        }
        EXPECT_TRUE(watched.background());
        // a mode of a drawn weight remains the heaviest
        show(128, random.unit<Lum64f>() * 0.45);
        EXPECT_TRUE(watched.background());
    }
}

}  // namespace
}  // namespace lumcv::test::motion
