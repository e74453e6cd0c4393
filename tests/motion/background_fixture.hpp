// A background model as a caller holds it, next to its plain counterpart: frames go to both and are compared.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "motion/background_reference.hpp"
#include "support/compare.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::motion {

constexpr LumFGMMModel kUsualModel = {200, 5, 15, 4, 75, 16, 0.9f, 9, 0.05f, 127, 1, 0.5f};

/// The size of the state in exact arithmetic.
constexpr std::uint64_t stateBytes(std::uint64_t width, std::uint64_t height, std::uint64_t capacity)
{
    const std::uint64_t area = width * height;
    const std::uint64_t table = (8 * capacity + 31) / 32 * 32;
    const std::uint64_t weightsAndIndices = (8 * capacity * area + 62) / 64 * 64;
    const std::uint64_t means = (16 * capacity * area + 31) / 32 * 32;
    return (area + 3 * table + weightsAndIndices + 191) / 32 * 32 + means + 256;
}

inline Layout layoutOf(LumiSize size, int channels)
{
    Layout layout;
    layout.width = size.width;
    layout.height = size.height;
    layout.channels = channels;
    return layout;
}

/// Where block and images of a model stand.
struct Surroundings
{
    Guard guard = Guard::After;
    std::size_t distance = 0;  ///< of the block from the unreadable page
    int gap = 0;               ///< between the rows of the images
    int offset = 0;            ///< of the images from the page

    Layout layout(LumiSize size, int channels) const
    {
        Layout layout = layoutOf(size, channels);
        layout.guard = guard;
        layout.gap = gap;
        layout.offset = offset;
        return layout;
    }
};

/// A state in a block of exactly the queried size, and the mixture that it should be.
class Watched
{
  public:
    Watched(LumiSize size, int capacity, const LumFGMMModel& model, const Surroundings& where = {})
        : size_(size),
          where_(where),
          block_(stateBytes(static_cast<std::uint64_t>(size.width), static_cast<std::uint64_t>(size.height),
                            static_cast<std::uint64_t>(capacity)),
                 where.guard, where.distance),
          mixture_(size, capacity, model)
    {
        EXPECT_EQ(lumiFGMMInit_8u_C3R(size, capacity, &model, state()), lumOk);
    }

    LumFGMMState* state() const
    {
        return reinterpret_cast<LumFGMMState*>(block_.data());
    }
    const PlacedBlock& block() const
    {
        return block_;
    }
    const Mixture& mixture() const
    {
        return mixture_;
    }
    Layout layout(int channels) const
    {
        return where_.layout(size_, channels);
    }

    /// Takes a frame; the classes are compared.
    testing::AssertionResult frame(const Image<Lum8u>& source, const LumFGMMModel* model, Lum64f learningRate)
    {
        Image<Lum8u> expected(layout(1));
        mixture_.frame(source, expected, model, learningRate);
        Image<Lum8u> classes(layout(1));
        const LumStatus status = lumiFGMMForeground_8u_C3R(source.pixels(), source.step(), classes.pixels(),
                                                           classes.step(), size_, state(), model, learningRate);
        if (status != lumOk) {
            return testing::AssertionFailure() << "status " << status;
        }
        lastClass_ = classes.at(size_.width - 1, size_.height - 1);
        return intact(sameImage(expected, classes), classes, source);
    }
    /// What the last frame made of the last pixel.
    Lum8u lastClass() const
    {
        return lastClass_;
    }

    /// Renders the background and compares it.
    testing::AssertionResult background() const
    {
        Image<Lum8u> expected(layout(3));
        mixture_.render(expected);
        Image<Lum8u> rendered(layout(3));
        const LumStatus status = lumiFGMMBackground_8u_C3R(rendered.pixels(), rendered.step(), size_, state());
        if (status != lumOk) {
            return testing::AssertionFailure() << "status " << status;
        }
        return intact(sameImage(expected, rendered), rendered, rendered);
    }

  private:
    testing::AssertionResult intact(const testing::AssertionResult& same, const Image<Lum8u>& result,
                                    const Image<Lum8u>& source) const
    {
        for (const testing::AssertionResult& other :
             {same, result.gapsIntact(), source.gapsIntact(), block_.intact()}) {
            if (!other) {
                return other;
            }
        }
        return testing::AssertionSuccess();
    }

    LumiSize size_;
    Surroundings where_;
    PlacedBlock block_;
    Mixture mixture_;
    Lum8u lastClass_ = 0;
};

/// A model all of whose pixels see the same, so that whole vectors and the rest of a row have to agree.
class Uniform
{
  public:
    explicit Uniform(const LumFGMMModel& model = kUsualModel, int capacity = 5)
        : watched_({13, 2}, capacity, model), source_(watched_.layout(3))
    {
    }
    /// The class that a colour gets.
    Lum8u show(std::array<int, 3> colour, Lum64f learningRate = -1, const LumFGMMModel* model = nullptr)
    {
        source_.forEach(Area::Roi, [&](Lum8u& element, int, int, int c) {
            element = static_cast<Lum8u>(colour[static_cast<std::size_t>(c)]);
        });
        EXPECT_TRUE(watched_.frame(source_, model, learningRate));
        return watched_.lastClass();
    }
    Colour rendered() const
    {
        EXPECT_TRUE(watched_.background());
        Image<Lum8u> image(watched_.layout(3));
        EXPECT_EQ(lumiFGMMBackground_8u_C3R(image.pixels(), image.step(), {13, 2}, watched_.state()), lumOk);
        return {static_cast<Lum32f>(image.at(12, 1, 0)), static_cast<Lum32f>(image.at(12, 1, 1)),
                static_cast<Lum32f>(image.at(12, 1, 2))};
    }
    const Mixture& mixture() const
    {
        return watched_.mixture();
    }
    const std::vector<Mode>& modes() const
    {
        return watched_.mixture().modes(12, 1);
    }

  private:
    Watched watched_;
    Image<Lum8u> source_;
};

/// A scene in which pixels show their background with noise, its shadow, one of a few passing colours, or anything.
class Scene
{
  public:
    explicit Scene(std::uint64_t seed) : seed_(seed), random_(seed) {}

    void draw(Image<Lum8u>& frame, int noise)
    {
        for (int y = 0; y < frame.height(); ++y) {
            for (int x = 0; x < frame.width(); ++x) {
                drawPixel(&frame.at(x, y, 0), x, y, noise);
            }
        }
    }

  private:
    void drawPixel(Lum8u* pixel, int x, int y, int noise)
    {
        Random own(seed_ * 7919 + static_cast<std::uint64_t>(y * 1013 + x / 3));
        const int dice = static_cast<int>(random_.between(0, 19));
        const double brightness = dice < 3 ? 0.4 + 0.6 * random_.unit<double>() : 1;
        for (int c = 0; c < 3; ++c) {
            int value = static_cast<int>(own.between(0, 255));
            value = dice >= 14 ? static_cast<int>((own.bits() >> (8 * (dice - 14))) & 255) : value;
            value = static_cast<int>(value * brightness + static_cast<double>(random_.between(-noise, noise)));
            value = dice == 13 ? static_cast<int>(random_.between(0, 255)) : dice == 12 ? 0 : value;
            pixel[c] = static_cast<Lum8u>(std::clamp(value, 0, 255));
        }
    }

    std::uint64_t seed_;
    Random random_;
};

/// Parameters around the usual ones, now and then strange ones.
inline LumFGMMModel drawModel(Random& random, int capacity)
{
    const auto between = [&](Lum32f low, Lum32f high) { return low + (high - low) * random.unit<Lum32f>(); };
    LumFGMMModel model = {};
    model.numFrames = static_cast<Lum32u>(random.between(1, random.oneIn(2) ? 10 : 300));
    model.maxNGauss = static_cast<Lum32u>(random.oneIn(3) ? random.between(1, capacity) : capacity);
    model.varInit = between(2, 60);
    model.varMin = between(0, 8);
    model.varMax = random.oneIn(8) ? between(0, 4) : between(20, 200);
    model.varWBRatio = between(1, 30);
    model.bckgRatio = random.oneIn(6) ? between(-0.2f, 1.5f) : between(0.5f, 0.97f);
    model.varWGen = between(1, 20);
    model.CT = random.oneIn(4) ? 0 : random.oneIn(4) ? between(0.1f, 2.5f) : between(0, 0.2f);
    model.shadowValue = static_cast<Lum8u>(random.between(0, 255));
    model.shadowFlag = random.oneIn(4) ? Lum8u{0} : static_cast<Lum8u>(random.between(1, 255));
    model.shadowRatio = between(0.1f, 0.9f);
    return model;
}

inline std::string textOf(const LumFGMMModel& model)
{
    std::ostringstream text;
    text << "{" << model.numFrames << ", " << model.maxNGauss << ", " << model.varInit << ", " << model.varMin << ", "
         << model.varMax << ", " << model.varWBRatio << ", " << model.bckgRatio << ", " << model.varWGen << ", "
         << model.CT << ", " << int{model.shadowValue} << ", " << int{model.shadowFlag} << ", " << model.shadowRatio
         << "}";
    return text.str();
}

}  // namespace lumcv::test::motion
