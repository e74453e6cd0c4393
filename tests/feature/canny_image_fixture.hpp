// Calls of lumiCannyBorder_8u_C1R with exactly the pixels that it may read and scratch of exactly the queried size.
#pragma once

#include <ostream>
#include <utility>
#include <vector>

#include "feature/canny_fixture.hpp"

namespace lumcv::test::canny {

struct Operator
{
    LumiFilterType filter;
    LumiMaskSize mask;
};

constexpr Operator kOperators[] = {
    {lumFilterSobel, lumMask3x3}, {lumFilterScharr, lumMask3x3}, {lumFilterSobel, lumMask5x5}};

struct ImageCall
{
    LumiSize size = {1, 1};
    LumiFilterType filter = lumFilterSobel;
    LumiMaskSize mask = lumMask3x3;
    LumiBorderType border = lumBorderReplicate;
    Lum8u borderValue = 0;
    Lum32f low = 0;
    Lum32f high = 0;
    LumiNorm norm = lumNormL1;
    Content content = Content::Smooth;
    Placement place;
    bool bottomUp = false;  // negative strides
    int seed = 0;

    Margins margins() const
    {
        return promisedMargins(border, Margins::all(mask == lumMask3x3 ? 1 : 2));
    }
    Layout sourceLayout() const
    {
        Layout layout = place.layout<Lum8u>(size, margins());
        layout.bottomUp = bottomUp;
        return layout;
    }
    Layout destinationLayout() const
    {
        Layout layout = place.layout<Lum8u>(size);
        layout.gap += place.gap == 0 ? 0 : 5;
        layout.bottomUp = bottomUp && seed % 2 == 0;
        return layout;
    }
    std::size_t scratchBytes() const
    {
        return imageBytes(static_cast<std::uint64_t>(size.width), static_cast<std::uint64_t>(size.height), mask);
    }
    LumStatus apply(const Lum8u* pSrc, int srcStep, Lum8u* pDst, int dstStep, Lum8u* pBuffer) const
    {
        return lumiCannyBorder_8u_C1R(pSrc, srcStep, pDst, dstStep, size, filter, mask, border, borderValue, low, high,
                                      norm, pBuffer);
    }
    // Of a source that offers row(y) as far as the call may read.
    template <class Source>
    std::vector<Lum8u> expected(const Source& source) const
    {
        return derivativeEdges(imageDerivatives(source, size, filter, mask, border, borderValue), size, low, high,
                               norm);
    }
};

inline std::ostream& operator<<(std::ostream& stream, const ImageCall& call)
{
    return stream << call.size.width << " x " << call.size.height << ", filter " << call.filter << ", mask "
                  << call.mask << ", border " << call.border << " of " << int{call.borderValue} << ", low " << call.low
                  << ", high " << call.high << ", norm " << call.norm << ", content " << static_cast<int>(call.content)
                  << ", seed " << call.seed << (call.bottomUp ? ", bottom up" : "") << ", " << call.place;
}

// Fills the pixels that a call may read.
template <class Source>
void drawImage(Source& source, const ImageCall& call)
{
    Random random(static_cast<std::uint64_t>(call.seed) * 11 + 7);
    const Waves waves(random);
    const std::uint64_t salt = random.bits();
    const Margins m = call.margins();
    for (int y = -m.top; y < call.size.height + m.bottom; ++y) {
        for (int x = -m.left; x < call.size.width + m.right; ++x) {
            source.at(x, y) = contentValue(call.content, waves, salt, random, x, y);
        }
    }
}

struct ImageOperands
{
    explicit ImageOperands(const ImageCall& imageCall)
        : call(imageCall),
          source(call.sourceLayout()),
          destination(call.destinationLayout()),
          scratch(call.scratchBytes(), call.place.guard, call.place.distance)
    {
        drawImage(source, call);
    }
    const Image<Lum8u>& run()
    {
        EXPECT_EQ(call.apply(source.pixels(), source.step(), destination.pixels(), destination.step(), scratch.data()),
                  lumOk)
            << call;
        EXPECT_TRUE(destination.gapsIntact()) << call;
        EXPECT_TRUE(scratch.intact()) << call;
        return destination;
    }
    testing::AssertionResult matchesReference() const
    {
        return sameImage(asImage(call.expected(source), destination.layout()), destination);
    }

    ImageCall call;
    Image<Lum8u> source;
    Image<Lum8u> destination;
    PlacedBlock scratch;
};

inline void expectImageEdges(const ImageCall& call)
{
    ImageOperands operands(call);
    operands.run();
    EXPECT_TRUE(operands.matchesReference()) << call;
}

// The edge pixels as (x, y), row by row.
inline std::vector<std::pair<int, int>> edgePixels(const Image<Lum8u>& image)
{
    std::vector<std::pair<int, int>> result;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            EXPECT_TRUE(image.at(x, y) == 0 || image.at(x, y) == 255) << x << ", " << y;
            if (image.at(x, y) != 0) {
                result.emplace_back(x, y);
            }
        }
    }
    return result;
}

}  // namespace lumcv::test::canny
