// One way to call each of the fixed filters, scratch of exactly the queried size, and the comparison with the
// reference.
#pragma once

#include <lumcv/lumcv.h>

#include <string>

#include "filter/filter_setting.hpp"
#include "filter/fixed_filters_reference.hpp"
#include "support/compare.hpp"
#include "support/placed_block.hpp"

namespace lumcv::test::fixed_filters {

template <class Operator, class Source>
struct Exports;

template <>
struct Exports<Laplacian, Lum8u>
{
    using Destination = Lum16s;
    static constexpr const char* name = "Laplacian_8u16s";
    static constexpr auto apply = lumiFilterLaplacianBorder_8u16s_C1R;
    static constexpr auto query = lumiFilterLaplacianGetBufferSize_8u16s_C1R;
};

template <>
struct Exports<Laplacian, Lum32f>
{
    using Destination = Lum32f;
    static constexpr const char* name = "Laplacian_32f";
    static constexpr auto apply = lumiFilterLaplacianBorder_32f_C1R;
    static constexpr auto query = lumiFilterLaplacianGetBufferSize_32f_C1R;
};

template <>
struct Exports<Lowpass, Lum8u>
{
    using Destination = Lum8u;
    static constexpr const char* name = "Lowpass_8u";
    static constexpr auto apply = lumiFilterLowpassBorder_8u_C1R;
    static constexpr auto query = lumiFilterLowpassGetBufferSize_8u_C1R;
};

template <>
struct Exports<Lowpass, Lum32f>
{
    using Destination = Lum32f;
    static constexpr const char* name = "Lowpass_32f";
    static constexpr auto apply = lumiFilterLowpassBorder_32f_C1R;
    static constexpr auto query = lumiFilterLowpassGetBufferSize_32f_C1R;
};

template <>
struct Exports<SobelCross, Lum8u>
{
    using Destination = Lum16s;
    static constexpr const char* name = "SobelCross_8u16s";
    static constexpr auto apply = lumiFilterSobelCrossBorder_8u16s_C1R;
    static constexpr auto query = lumiFilterSobelCrossGetBufferSize_8u16s_C1R;
};

template <>
struct Exports<SobelCross, Lum32f>
{
    using Destination = Lum32f;
    static constexpr const char* name = "SobelCross_32f";
    static constexpr auto apply = lumiFilterSobelCrossBorder_32f_C1R;
    static constexpr auto query = lumiFilterSobelCrossGetBufferSize_32f_C1R;
};

// The exports of an operator and an element type as the parameter of a typed test.
template <class ItsOperator, class SourceElement>
struct Case : Exports<ItsOperator, SourceElement>
{
    using Operator = ItsOperator;
    using Source = SourceElement;
    using Work = std::conditional_t<std::is_same_v<Source, Lum32f>, Lum32f, int>;
};

using AllCases = testing::Types<Case<Laplacian, Lum8u>, Case<Laplacian, Lum32f>, Case<Lowpass, Lum8u>,
                                Case<Lowpass, Lum32f>, Case<SobelCross, Lum8u>, Case<SobelCross, Lum32f>>;

struct CaseName
{
    template <typename C>
    static std::string GetName(int)
    {
        return C::name;
    }
};

constexpr LumiMaskSize kMasks[] = {lumMask3x3, lumMask5x5};

template <class C>
PlacedBlock makeScratch(int width, LumiMaskSize mask, Guard guard = Guard::After, std::size_t distance = 0)
{
    const Wide bytes = bufferSize<typename C::Operator, typename C::Source>(width, mask);
    return PlacedBlock(static_cast<std::size_t>(bytes), guard, distance);
}

template <class C>
typename C::Source drawBorderValue(const FilterSetting& setting)
{
    Random random(static_cast<std::uint64_t>(setting.seed) + 1000);
    return random.value<typename C::Source>(setting.values);
}

// An image of the setting's layout with the given rows.
template <class D, class Work>
Image<D> imageOf(const FilterSetting& setting, const Rows<Work>& rows)
{
    Image<D> image(setting.layout<D>());
    image.forEach(Area::Roi, [&](D& element, int x, int y, int) {
        element = static_cast<D>(rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]);
    });
    return image;
}

template <class C, class Source>
Image<typename C::Destination> reference(const FilterSetting& setting, LumiMaskSize mask, const Source& source,
                                         typename C::Source borderValue)
{
    using Work = typename C::Work;
    const Rows<Work> rows = extendedRows<Work>(source, setting.size, maskReach(mask), setting.border, borderValue);
    return imageOf<typename C::Destination>(setting, C::Operator::template apply<Work>(rows, mask));
}

// Filters a random image and compares the result with the reference.
template <class C>
void expectFiltered(const FilterSetting& setting, LumiMaskSize mask)
{
    using S = typename C::Source;
    using D = typename C::Destination;
    SCOPED_TRACE(setting);
    SCOPED_TRACE(mask);
    Image<S> source(setting.layout<S>(promisedMargins(setting.border, maskReach(mask))));
    Random random(static_cast<std::uint64_t>(setting.seed));
    fill(source, random, setting.values, Area::WithMargins);
    const S borderValue = drawBorderValue<C>(setting);
    const Image<D> expected = reference<C>(setting, mask, source, borderValue);

    const PlacedBlock scratch = makeScratch<C>(setting.size.width, mask, setting.guard, setting.distance);
    Image<D> destination(setting.layout<D>());
    const LumStatus status = C::apply(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                      setting.size, mask, setting.border, borderValue, scratch.data());
    EXPECT_EQ(status, lumOk);
    EXPECT_TRUE(sameImage(expected, destination));
    EXPECT_TRUE(destination.gapsIntact());
    EXPECT_TRUE(scratch.intact());
}

}  // namespace lumcv::test::fixed_filters
