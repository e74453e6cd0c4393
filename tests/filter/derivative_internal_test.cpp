// The derivative services: their kernels with their signs, and the comparison with a plain reference.
#include "filter/derivative_fixture.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::derivatives {
namespace {

TYPE_SUITE(DerivativeServices, SourceTypes, ServiceName);

// A random image through one of the two ways to call a service, against the reference.
template <class S, template <class> class SourceImage = Image>
void expectFiltered(const FilterSetting& setting, LumDerivCode code, LumiMaskSize mask, bool byEntry)
{
    using D = typename Services<S>::Destination;
    using Work = typename Services<S>::Work;
    SCOPED_TRACE(setting);
    SCOPED_TRACE(testing::Message() << "code " << code << ", mask " << mask);
    SourceImage<S> source(setting.layout<S>(promisedMargins(setting.border, maskReach(mask))));
    Random random(static_cast<std::uint64_t>(setting.seed));
    const auto draw = [&](S& element, int, int, int) { element = random.value<S>(setting.values); };
    if constexpr (std::is_same_v<SourceImage<S>, IsolatedRows<S>>) {
        source.forEach(draw);
        source.makeReadOnly();
    } else {
        source.forEach(Area::WithMargins, draw);
    }
    const S borderValue = random.value<S>(setting.values);
    const Rows<Work> rows =
        derivative(extendedRows<Work>(source, setting.size, maskReach(mask), setting.border, borderValue), code, mask);
    Image<D> expected(setting.layout<D>());
    expected.forEach(Area::Roi, [&](D& element, int x, int y, int) {
        element = static_cast<D>(rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]);
    });

    const PlacedBlock scratch = makeScratch<S>(setting, mask);
    Image<D> destination(setting.layout<D>());
    const LumStatus status =
        byEntry ? Services<S>::entry(code)(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                           setting.size, mask, setting.border, borderValue, scratch.data())
                : Services<S>::filter(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                      setting.size, mask, setting.border, borderValue, scratch.data(), code);
    EXPECT_EQ(status, lumOk);
    EXPECT_TRUE(sameImage(expected, destination));
    EXPECT_TRUE(destination.gapsIntact());
    EXPECT_TRUE(scratch.intact());
}

// What multiplies the pixels around the middle one, row by row from the top left.
template <class S>
std::vector<int> kernelOf(LumDerivCode code, LumiMaskSize mask)
{
    const int side = maskSide(mask);
    FilterSetting setting;
    const PlacedBlock scratch = makeScratch<S>(setting, mask);
    std::vector<int> kernel;
    for (std::size_t i = 0; i < static_cast<std::size_t>(side * side); ++i) {
        std::vector<S> pixels(static_cast<std::size_t>(side * side));
        pixels[i] = 1;
        typename Services<S>::Destination result{};
        EXPECT_EQ(Services<S>::filter(pixels.data() + pixels.size() / 2, side * static_cast<int>(sizeof(S)), &result,
                                      sizeof result, {1, 1}, mask, lumBorderInMem, S{}, scratch.data(), code),
                  lumOk);
        kernel.push_back(static_cast<int>(result));
    }
    return kernel;
}

std::vector<int> outerProduct(const std::vector<int>& down, const std::vector<int>& along)
{
    std::vector<int> product;
    for (const int d : down) {
        for (const int a : along) {
            product.push_back(d * a);
        }
    }
    return product;
}

// SobelX alone is the left side minus the right one.
TYPE_TEST(DerivativeServices, KernelsAndTheirSigns)
{
    using V = std::vector<int>;
    EXPECT_EQ((kernelOf<TypeParam>(lumDerivSobelX, lumMask3x3)), (V{1, 0, -1, 2, 0, -2, 1, 0, -1}));
    EXPECT_EQ((kernelOf<TypeParam>(lumDerivSobelY, lumMask3x3)), (V{-1, -2, -1, 0, 0, 0, 1, 2, 1}));
    EXPECT_EQ((kernelOf<TypeParam>(lumDerivScharrX, lumMask3x3)), (V{-3, 0, 3, -10, 0, 10, -3, 0, 3}));
    EXPECT_EQ((kernelOf<TypeParam>(lumDerivScharrY, lumMask3x3)), (V{-3, -10, -3, 0, 0, 0, 3, 10, 3}));
    EXPECT_EQ((kernelOf<TypeParam>(lumDerivSobelXNeg, lumMask3x3)), (V{-1, 0, 1, -2, 0, 2, -1, 0, 1}));
    EXPECT_EQ((kernelOf<TypeParam>(lumDerivSobelX, lumMask5x5)), outerProduct({1, 4, 6, 4, 1}, {1, 2, 0, -2, -1}));
    EXPECT_EQ((kernelOf<TypeParam>(lumDerivSobelY, lumMask5x5)), outerProduct({-1, -2, 0, 2, 1}, {1, 4, 6, 4, 1}));
    EXPECT_EQ((kernelOf<TypeParam>(lumDerivSobelXNeg, lumMask5x5)), outerProduct({1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1}));
}

TYPE_TEST(DerivativeServices, RampsAndFlatImages)
{
    using D = typename Services<TypeParam>::Destination;
    FilterSetting setting;
    setting.size = {7, 6};
    Image<TypeParam> toTheRight(setting.layout<TypeParam>());
    Image<TypeParam> flat(setting.layout<TypeParam>());
    toTheRight.forEach(Area::Roi, [](TypeParam& element, int x, int, int) { element = static_cast<TypeParam>(3 * x); });
    flat.forEach(Area::Roi, [](TypeParam& element, int, int, int) { element = 99; });
    Image<D> destination(setting.layout<D>());
    for (const LumDerivCode code : kCodes) {
        for (const LumiMaskSize mask : masksOf(code)) {
            const PlacedBlock scratch = makeScratch<TypeParam>(setting, mask);
            const auto middleOf = [&](Image<TypeParam>& source) {
                EXPECT_EQ(Services<TypeParam>::filter(source.pixels(), source.step(), destination.pixels(),
                                                      destination.step(), setting.size, mask, lumBorderReplicate, 0,
                                                      scratch.data(), code),
                          lumOk);
                return destination.at(3, 3);
            };
            const auto slope = middleOf(toTheRight);
            if (code == lumDerivSobelX) {
                EXPECT_LT(slope, 0);
            } else if (code == lumDerivScharrX || code == lumDerivSobelXNeg) {
                EXPECT_GT(slope, 0);
            } else {
                EXPECT_EQ(slope, 0);
            }
            EXPECT_EQ(middleOf(flat), 0);
            destination.forEach(Area::Roi, [](D& element, int, int, int) { EXPECT_EQ(element, D{0}); });
        }
    }
}

TYPE_TEST(DerivativeServices, EveryBorder)
{
    int number = 0;
    for (LumiBorderType border = 0; border < 256; ++border) {
        if (!isFilterBorder(border)) {
            continue;
        }
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 1}, LumiSize{1, 2}, LumiSize{3, 2}, LumiSize{2, 3},
                                    LumiSize{3, 3}, LumiSize{4, 9}, LumiSize{37, 5}}) {
            FilterSetting setting;
            setting.size = size;
            setting.border = border;
            setting.seed = number;
            setting.guard = number / 5 % 2 == 0 ? Guard::After : Guard::Before;
            const LumDerivCode code = kCodes[number++ % 5];
            for (const LumiMaskSize mask : masksOf(code)) {
                expectFiltered<TypeParam>(setting, code, mask, number % 2 == 0);
            }
            if (testing::Test::HasFailure()) {
                return;
            }
        }
        ++number;
    }
}

TYPE_TEST(DerivativeServices, EveryWidthAndHeight)
{
    int number = 0;
    for (const LumDerivCode code : kCodes) {
        for (const LumiMaskSize mask : masksOf(code)) {
            for (int width = 1; width <= 70; ++width) {
                FilterSetting setting = placed({width, 1 + number % 6}, number);
                setting.values = static_cast<Values>(number % 3);
                expectFiltered<TypeParam>(setting, code, mask, number % 2 == 0);
                ++number;
            }
            for (const LumiSize size : {LumiSize{257, 3}, LumiSize{1100, 2}, LumiSize{3, 40}, LumiSize{2, 41},
                                        LumiSize{1, 30}, LumiSize{129, 33}}) {
                for (int i = 0; i < 7; ++i) {
                    expectFiltered<TypeParam>(placed(size, number), code, mask, number % 2 == 0);
                    ++number;
                }
            }
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

// Every row of the source alone between unreadable pages; the scratch of exactly its size at every address.
TYPE_TEST(DerivativeServices, RowsBetweenUnreadablePages)
{
    int number = 0;
    for (const int width : {1, 2, 3, 4, 7, 8, 15, 16, 17, 18, 31, 33, 64, 65, 130}) {
        for (const LumDerivCode code : kCodes) {
            for (const LumiMaskSize mask : masksOf(code)) {
                for (const LumiBorderType border : {lumBorderInMem + 0, lumBorderMirror + 0,
                                                    lumBorderConstant | lumBorderInMemTop | lumBorderInMemLeft,
                                                    lumBorderReplicate | lumBorderInMemRight | lumBorderInMemBottom}) {
                    FilterSetting setting = placed({width, 1 + number % 5}, number);
                    setting.border = border;
                    setting.distance = static_cast<std::size_t>(number % 64);
                    ++number;
                    expectFiltered<TypeParam, IsolatedRows>(setting, code, mask, true);
                    if (testing::Test::HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

// Strides are not held against the width: the rows of the source may overlap.
TYPE_TEST(DerivativeServices, RowsOfTheSourceMayOverlap)
{
    using D = typename Services<TypeParam>::Destination;
    std::vector<TypeParam> pixels;
    for (int i = 0; i < 40; ++i) {
        pixels.push_back(static_cast<TypeParam>(i * i % 97));
    }
    struct Overlapping
    {
        const TypeParam* pixels;
        const TypeParam* row(int y) const
        {
            return pixels + y;
        }
    };
    using Work = typename Services<TypeParam>::Work;
    const LumiSize size = {20, 6};
    const Rows<Work> rows = derivative(
        extendedRows<Work>(Overlapping{pixels.data()}, size, Margins::all(1), lumBorderReplicate, TypeParam{}),
        lumDerivSobelX, lumMask3x3);
    FilterSetting setting;
    setting.size = size;
    const PlacedBlock scratch = makeScratch<TypeParam>(setting, lumMask3x3);
    Image<D> destination(setting.layout<D>());
    ASSERT_EQ(Services<TypeParam>::filter(pixels.data(), sizeof(TypeParam), destination.pixels(), destination.step(),
                                          size, lumMask3x3, lumBorderReplicate, 0, scratch.data(), lumDerivSobelX),
              lumOk);
    destination.forEach(Area::Roi, [&](D& element, int x, int y, int) {
        EXPECT_EQ(element, rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]);
    });
}

}  // namespace
}  // namespace lumcv::test::derivatives
