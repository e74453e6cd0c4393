// Floats that are no ordinary numbers: the two zeros, infinities and not-a-numbers.
#include <cmath>
#include <limits>

#include "morph/morph_fixture.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

using FloatForms = ::testing::Types<Form32fC1, Form32fC3, Form32fC4>;

TYPE_SUITE(MorphFloatsQuick, FloatForms, FormName);

const std::vector<StructuringElement>& elements()
{
    static const std::vector<StructuringElement> result = {
        rectangle(3, 3),        rectangle(5, 5),   rectangle(4, 2),   rectangle(11, 1),
        rectangle(1, 13),       disc(3),           disc(5),           disc(7),
        cross(3, 3, 1, 1),      cross(5, 5, 2, 2), cross(5, 5, 4, 1), ellipse(9, 5),
        scattered(5, 4, 50, 3), rectangle(19, 12)};
    return result;
}

template <class Form>
class Floats
{
  public:
    Floats(Operation operation, Generation generation, const StructuringElement& element, int number)
    {
        setting.operation = operation;
        setting.generation = generation;
        setting.element = element;
        setting.width = 1 + number * 11 % 75;
        setting.height = 1 + number * 5 % 17;
        setting.seed = number;
        setting.border = borderFor(setting, number);
        setting = placed(setting);
    }
    /// Draws each pixel and the border values by draw(random).
    template <class Draw>
    Image<Lum32f> source(Draw draw)
    {
        Image<Lum32f> image(setting.layout<Form>(promisedMargins(setting.recipe<Form>(), setting.element)));
        Random random(static_cast<std::uint64_t>(setting.seed) + 5);
        image.forEach(Area::WithMargins, [&](Lum32f& pixel, int, int, int) { pixel = draw(random); });
        for (Lum32f& value : borderValue) {
            value = draw(random);
        }
        return image;
    }
    Image<Lum32f> applied(const Image<Lum32f>& source) const
    {
        const PlacedBlock record = makeRecord<Form>(setting);
        const PlacedBlock scratch(scratchBytes<Form>(setting));
        Image<Lum32f> destination(setting.layout<Form>());
        const auto arguments = argumentsFor<Form>(setting, source, destination, record, scratch, borderValue);
        EXPECT_EQ(arguments.call(setting.operation, setting.generation), lumOk);
        EXPECT_TRUE(scratch.intact());
        return destination;
    }

    Setting setting;
    Lum32f borderValue[4] = {};
};

Lum32f zeroOrInfinity(Random& random)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    const Lum32f values[] = {0.0f,
                             -0.0f,
                             infinity,
                             -infinity,
                             1.0f,
                             -std::numeric_limits<Lum32f>::denorm_min(),
                             std::numeric_limits<Lum32f>::max()};
    return values[random.between(0, 6)];
}

// Of zeros the last in the order of the element's rows stays; everything else has one maximum.
TYPE_TEST(MorphFloatsQuick, ZerosAndInfinities)
{
    int number = 0;
    for (const StructuringElement& element : elements()) {
        for (const Operation operation : {Operation::Dilate, Operation::Erode, Operation::Open, Operation::Close}) {
            for (const bool onlyZeros : {true, false}) {
                Floats<TypeParam> floats(operation, kGenerations[number / 2 % 2], element, number);
                ++number;
                const Image<Lum32f> source = floats.source([&](Random& random) {
                    return onlyZeros ? (random.oneIn(2) ? 0.0f : -0.0f) : zeroOrInfinity(random);
                });
                EXPECT_TRUE(
                    sameImage(reference<TypeParam>(floats.setting, source, floats.borderValue), floats.applied(source)))
                    << floats.setting;
            }
        }
    }
}

// A window with a not-a-number yields one of its values; the others are not disturbed.
TYPE_TEST(MorphFloatsQuick, NotANumbersStayInTheirWindows)
{
    constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    int number = 0;
    for (const StructuringElement& element : elements()) {
        for (const Operation operation : kSinglePasses) {
            Floats<TypeParam> floats(operation, kGenerations[number / 2 % 2], element, number);
            ++number;
            const Image<Lum32f> source = floats.source(
                [&](Random& random) { return random.oneIn(40) ? nan : random.value<Lum32f>(Values::Ordinary); });
            const Image<Lum32f> actual = floats.applied(source);
            const Setting& s = floats.setting;
            const PassBorder border = firstBorder(s.recipe<TypeParam>());
            const Lum32f neutral = neutralValue<Lum32f>(operation, false);
            for (int y = 0; y < s.height; ++y) {
                for (int x = 0; x < s.width; ++x) {
                    for (int c = 0; c < TypeParam::channels; ++c) {
                        bool hasNan = false;
                        bool isOne = false;
                        Lum32f best = operation == Operation::Dilate ? -INFINITY : INFINITY;
                        const Lum32f result = actual.at(x, y, c);
                        for (const Offset& offset : element.offsets().list) {
                            const auto column = resolve(x + offset.x, s.width, border.has(lumBorderInMemLeft),
                                                        border.has(lumBorderInMemRight), border.mode);
                            const auto row = resolve(y + offset.y, s.height, border.has(lumBorderInMemTop),
                                                     border.has(lumBorderInMemBottom), border.mode);
                            const Lum32f outside = border.mode == lumBorderNeutral ? neutral : floats.borderValue[c];
                            const Lum32f value = column && row ? source.at(*column, *row, c) : outside;
                            hasNan = hasNan || std::isnan(value);
                            isOne = isOne || value == result;
                            best = operation == Operation::Dilate ? std::fmax(best, value) : std::fmin(best, value);
                        }
                        if (hasNan ? !isOne && !std::isnan(result) : result != best) {
                            FAIL() << s << ": x " << x << ", y " << y << ", channel " << c << ": got " << result
                                   << (hasNan ? " with a not-a-number" : "") << ", expected " << best;
                        }
                    }
                }
            }
        }
    }
}

// Not-a-numbers take no lane-dependent path: the same call gives the same bits.
TYPE_TEST(MorphFloatsQuick, NotANumbersAreTheSameEveryTime)
{
    int number = 0;
    for (const StructuringElement& element : elements()) {
        for (const Operation operation :
             {Operation::Dilate, Operation::Erode, Operation::Open, Operation::Tophat, Operation::Blackhat}) {
            Floats<TypeParam> floats(operation, kGenerations[number % 2], element, number);
            ++number;
            const Image<Lum32f> source =
                floats.source([&](Random& random) { return random.value<Lum32f>(Values::NonFinite); });
            const Image<Lum32f> first = floats.applied(source);
            EXPECT_TRUE(sameBytes(first, floats.applied(source))) << floats.setting;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
