// Blocks and calls for the separable filter's tests: records and scratch of exactly the queried size at any address,
// and one way to call each export.
#pragma once

#include <lumcv/lumcv.h>

#include <cmath>
#include <cstring>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "filter/filter_setting.hpp"
#include "filter/pipeline_blocks.hpp"
#include "filter/separable_reference.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::separable {

// The exports from one element type to another, with the kernels that they take.
template <class Source, class Destination>
struct Exports;

template <>
struct Exports<Lum8u, Lum8u>
{
    static constexpr const char* name = "8u";
    static constexpr LumDataType dataType = lumType8u;
    static constexpr LumDataType kernelTypes[] = {lumType16s, lumType32f};
    static constexpr auto c1 = lumiFilterSeparable_8u_C1R;
    static constexpr auto c3 = lumiFilterSeparable_8u_C3R;
    static constexpr auto c4 = lumiFilterSeparable_8u_C4R;
    static constexpr auto c1L = lumiFilterSeparable_8u_C1R_L;
    static constexpr auto c3L = lumiFilterSeparable_8u_C3R_L;
    static constexpr auto c4L = lumiFilterSeparable_8u_C4R_L;
};

template <>
struct Exports<Lum8u, Lum16s>
{
    static constexpr const char* name = "8u16s";
    static constexpr LumDataType dataType = lumType8u;
    static constexpr LumDataType kernelTypes[] = {lumType16s, lumType32f};
    static constexpr auto c1 = lumiFilterSeparable_8u16s_C1R;
    static constexpr auto c3 = lumiFilterSeparable_8u16s_C3R;
    static constexpr auto c4 = lumiFilterSeparable_8u16s_C4R;
    static constexpr auto c1L = lumiFilterSeparable_8u16s_C1R_L;
    static constexpr auto c3L = lumiFilterSeparable_8u16s_C3R_L;
    static constexpr auto c4L = lumiFilterSeparable_8u16s_C4R_L;
};

template <>
struct Exports<Lum16s, Lum16s>
{
    static constexpr const char* name = "16s";
    static constexpr LumDataType dataType = lumType16s;
    static constexpr LumDataType kernelTypes[] = {lumType16s};
    static constexpr auto c1 = lumiFilterSeparable_16s_C1R;
    static constexpr auto c3 = lumiFilterSeparable_16s_C3R;
    static constexpr auto c4 = lumiFilterSeparable_16s_C4R;
    static constexpr auto c1L = lumiFilterSeparable_16s_C1R_L;
    static constexpr auto c3L = lumiFilterSeparable_16s_C3R_L;
    static constexpr auto c4L = lumiFilterSeparable_16s_C4R_L;
};

template <>
struct Exports<Lum16u, Lum16u>
{
    static constexpr const char* name = "16u";
    static constexpr LumDataType dataType = lumType16u;
    static constexpr LumDataType kernelTypes[] = {lumType32f};
    static constexpr auto c1 = lumiFilterSeparable_16u_C1R;
    static constexpr auto c3 = lumiFilterSeparable_16u_C3R;
    static constexpr auto c4 = lumiFilterSeparable_16u_C4R;
    static constexpr auto c1L = lumiFilterSeparable_16u_C1R_L;
    static constexpr auto c3L = lumiFilterSeparable_16u_C3R_L;
    static constexpr auto c4L = lumiFilterSeparable_16u_C4R_L;
};

template <>
struct Exports<Lum32f, Lum32f>
{
    static constexpr const char* name = "32f";
    static constexpr LumDataType dataType = lumType32f;
    static constexpr LumDataType kernelTypes[] = {lumType32f};
    static constexpr auto c1 = lumiFilterSeparable_32f_C1R;
    static constexpr auto c3 = lumiFilterSeparable_32f_C3R;
    static constexpr auto c4 = lumiFilterSeparable_32f_C4R;
    static constexpr auto c1L = lumiFilterSeparable_32f_C1R_L;
    static constexpr auto c3L = lumiFilterSeparable_32f_C3R_L;
    static constexpr auto c4L = lumiFilterSeparable_32f_C4R_L;
};

// An entry and its twin with 64-bit geometry.
enum class Entry
{
    Ordinary,
    Large
};

constexpr Entry kBothEntries[] = {Entry::Ordinary, Entry::Large};
constexpr int kChannels[] = {1, 3, 4};

// The exports as the parameter of a typed test.
template <class SourceElement, class DestinationElement>
struct Case : Exports<SourceElement, DestinationElement>
{
    using Source = SourceElement;
    using Destination = DestinationElement;

    static LumStatus call(Entry entry, int channels, const Source* pSrc, Lum64s srcStep, Destination* pDst,
                          Lum64s dstStep, LumiSizeL roiSize, LumiBorderType border, const Source* borderValue,
                          const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer)
    {
        const Source value = borderValue == nullptr ? Source{} : *borderValue;
        if (entry == Entry::Large) {
            if (channels == 1) {
                return Case::c1L(pSrc, srcStep, pDst, dstStep, roiSize, border, value, pSpec, pBuffer);
            }
            return (channels == 3 ? Case::c3L : Case::c4L)(pSrc, srcStep, pDst, dstStep, roiSize, border, borderValue,
                                                           pSpec, pBuffer);
        }
        const auto srcStep32 = static_cast<Lum32s>(srcStep);
        const auto dstStep32 = static_cast<Lum32s>(dstStep);
        const LumiSize size = {static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)};
        if (channels == 1) {
            return Case::c1(pSrc, srcStep32, pDst, dstStep32, size, border, value, pSpec, pBuffer);
        }
        return (channels == 3 ? Case::c3 : Case::c4)(pSrc, srcStep32, pDst, dstStep32, size, border, borderValue, pSpec,
                                                     pBuffer);
    }
};

using AllCases = testing::Types<Case<Lum8u, Lum8u>, Case<Lum8u, Lum16s>, Case<Lum16s, Lum16s>, Case<Lum16u, Lum16u>,
                                Case<Lum32f, Lum32f>>;

struct CaseName
{
    template <typename C>
    static std::string GetName(int)
    {
        return C::name;
    }
};

inline const LumFilterSeparableSpec* specOf(const PlacedBlock& block)
{
    return reinterpret_cast<const LumFilterSeparableSpec*>(block.data());
}

// Lays a record with the Init of the kernel's type; the kernels stand against unreadable pages and are gone afterwards.
inline LumStatus layRecord(Entry entry, const Kernel& kernel, LumDataType dataType, int channels, void* block)
{
    auto* const pSpec = static_cast<LumFilterSeparableSpec*>(block);
    if (kernel.type == lumType32f) {
        const GuardedArray<Lum32f> x(kernel.x, Guard::After);
        const GuardedArray<Lum32f> y(kernel.y, Guard::After);
        const auto init = entry == Entry::Large ? lumiFilterSeparableInit_32f_L : lumiFilterSeparableInit_32f;
        return init(x.data(), y.data(), kernel.size(), dataType, channels, pSpec);
    }
    const GuardedArray<Lum16s> x(std::vector<Lum16s>(kernel.x.begin(), kernel.x.end()), Guard::After);
    const GuardedArray<Lum16s> y(std::vector<Lum16s>(kernel.y.begin(), kernel.y.end()), Guard::After);
    const auto init = entry == Entry::Large ? lumiFilterSeparableInit_16s_L : lumiFilterSeparableInit_16s;
    return init(x.data(), y.data(), kernel.size(), kernel.divisor, kernel.scaleFactor, dataType, channels, pSpec);
}

inline PlacedBlock makeRecord(Entry entry, const Kernel& kernel, LumDataType dataType, int channels,
                              Guard guard = Guard::After, std::size_t distance = 0)
{
    PlacedBlock block(static_cast<std::size_t>(specSize(kernel.size(), kernel.type)), guard, distance);
    EXPECT_EQ(layRecord(entry, kernel, dataType, channels, block.data()), lumOk);
    EXPECT_TRUE(block.intact());
    return block;
}

inline PlacedBlock makeScratch(const Kernel& kernel, int width, int channels, Guard guard = Guard::After,
                               std::size_t distance = 0)
{
    return PlacedBlock(static_cast<std::size_t>(bufferSize(width, kernel.size(), kernel.type, channels)), guard,
                       distance);
}

// Coefficients that bring most results into the range of the elements and some to its ends and beyond. Those of an
// image of floats may be of any size; in an image of integers no sum becomes infinite.
inline Kernel drawKernels(LumDataType kernelType, LumiSize size, bool floatImage, Random& random)
{
    const auto magnitude = static_cast<Coefficients>(random.between(0, 2));
    const bool symmetric = random.oneIn(4);
    Kernel kernel;
    kernel.type = kernelType;
    if (kernelType == lumType16s) {
        const std::vector<Lum16s> x = drawKernel<Lum16s>(size.width, magnitude, symmetric, random);
        const std::vector<Lum16s> y = drawKernel<Lum16s>(size.height, magnitude, symmetric, random);
        kernel.divisor = drawDivisor(random.oneIn(2) ? x : y, random);
        kernel.x.assign(x.begin(), x.end());
        kernel.y.assign(y.begin(), y.end());
        return kernel;
    }
    const auto drawFloats = [&](int count) {
        if (floatImage) {
            return drawKernel<Lum32f>(count, magnitude, symmetric, random);
        }
        std::vector<Lum32f> floats = drawKernel<Lum32f>(count, Coefficients::Small, symmetric, random);
        const Lum32f scale = magnitude == Coefficients::Full ? 3e4f : 2.0f / std::sqrt(static_cast<Lum32f>(count));
        for (Lum32f& k : floats) {
            k *= scale;
        }
        return floats;
    };
    kernel.x = drawFloats(size.width);
    kernel.y = drawFloats(size.height);
    return kernel;
}

using Setting = FilterSetting;

inline std::ostream& operator<<(std::ostream& stream, const Kernel& kernel)
{
    return stream << (kernel.type == lumType16s ? "16s" : "32f") << " kernel " << kernel.x.size() << " x "
                  << kernel.y.size() << ", divisor " << kernel.divisor;
}

template <class T>
std::vector<T> drawBorderValue(int seed, Values values)
{
    Random random(static_cast<std::uint64_t>(seed) + 1000);
    std::vector<T> borderValue;
    for (int c = 0; c < 4; ++c) {
        borderValue.push_back(random.value<T>(values));
    }
    return borderValue;
}

template <class C, class Source>
Image<typename C::Destination> reference(const Setting& setting, const Kernel& kernel, const Source& source,
                                         const typename C::Source* borderValue)
{
    using D = typename C::Destination;
    const std::vector<D> result =
        filter<D>(kernel, source, setting.size, setting.channels, setting.border, borderValue);
    Image<D> expected(setting.layout<D>());
    auto next = result.begin();
    expected.forEach(Area::Roi, [&](D& element, int, int, int) { element = *next++; });
    return expected;
}

// What a call gets as border values: as many as there are channels against an unreadable page, or nothing where the
// mode has no use for them.
template <class T>
class BorderValue
{
  public:
    BorderValue(const std::vector<T>& values, int channels, LumiBorderType border)
        : array_({values.begin(), values.begin() + channels}, Guard::After), needed_((border & 15) == lumBorderConstant)
    {
    }
    const T* argument() const
    {
        return needed_ ? array_.data() : nullptr;
    }

  private:
    GuardedArray<T> array_;
    bool needed_;
};

// Filters a random image and compares the result with the reference.
template <class C>
void expectFiltered(Entry entry, const Setting& setting, const Kernel& kernel)
{
    using S = typename C::Source;
    using D = typename C::Destination;
    SCOPED_TRACE(setting);
    SCOPED_TRACE(kernel);
    SCOPED_TRACE(entry == Entry::Ordinary ? "ordinary" : "large");
    Image<S> source(setting.layout<S>(promisedMargins(setting.border, kernel.reach())));
    Random random(static_cast<std::uint64_t>(setting.seed));
    fill(source, random, setting.values, Area::WithMargins);
    const std::vector<S> values = drawBorderValue<S>(setting.seed, setting.values);
    const BorderValue<S> borderValue(values, setting.channels, setting.border);
    const Image<D> expected = reference<C>(setting, kernel, source, values.data());

    const PlacedBlock record =
        makeRecord(entry, kernel, C::dataType, setting.channels, setting.guard, setting.distance);
    record.makeReadOnly();
    const PlacedBlock scratch =
        makeScratch(kernel, setting.size.width, setting.channels, setting.guard, setting.distance);
    Image<D> destination(setting.layout<D>());
    const LumStatus status = C::call(entry, setting.channels, source.pixels(), source.step(), destination.pixels(),
                                     destination.step(), {setting.size.width, setting.size.height}, setting.border,
                                     borderValue.argument(), specOf(record), scratch.data());
    EXPECT_EQ(status, lumOk);
    EXPECT_TRUE(sameImage(expected, destination));
    EXPECT_TRUE(destination.gapsIntact());
    EXPECT_TRUE(scratch.intact());
}

}  // namespace lumcv::test::separable
