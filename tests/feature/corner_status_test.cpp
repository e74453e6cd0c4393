// The order of the checks of the corner measures and of line suppression; nothing is written on an error.
#include <vector>

#include "feature/corner_calls.hpp"
#include "support/placed_block.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::corners {
namespace {

constexpr LumiSize kSize = {13, 11};

struct MeasureArguments : MeasureCall
{
    Measure measure = nullptr;
    std::vector<Output> written = {};

    LumStatus call() const
    {
        return measure(*this);
    }
    std::vector<Output> outputs() const
    {
        return written;
    }
};

using MeasureViolations = std::vector<Violation<MeasureArguments>>;
using Arguments = MeasureArguments;

/// A violation of an enumeration: the argument has the value.
Violation<Arguments> wrong(const char* what, LumStatus status, Lum32s MeasureCall::*argument, Lum32s value)
{
    return {std::string(what) + " " + std::to_string(value), status, [=](Arguments& a) { a.*argument = value; }};
}

MeasureViolations nullsAndSizes()
{
    return {
        {"pSrc null", lumErrNullPointer, [](Arguments& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](Arguments& a) { a.pDst = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](Arguments& a) { a.pBuffer = nullptr; }},
        {"width 0", lumErrSize, [](Arguments& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](Arguments& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](Arguments& a) { a.roiSize.height = -11; }},
    };
}

void append(MeasureViolations& table, const MeasureViolations& more)
{
    table.insert(table.end(), more.begin(), more.end());
}

template <class S>
MeasureViolations alignments()
{
    MeasureViolations table = {wrong("destination alignment", lumErrStepAlignment, &MeasureCall::dstStep, 102)};
    if (std::is_same_v<S, Lum32f>) {
        table.push_back(wrong("source alignment", lumErrStepAlignment, &MeasureCall::srcStep, 57));
    }
    return table;
}

template <class S>
MeasureViolations shortStrides()
{
    const int row = kSize.width * static_cast<int>(sizeof(S));
    return {wrong("srcStep", lumErrStep, &MeasureCall::srcStep, row - static_cast<int>(sizeof(S))),
            wrong("srcStep", lumErrStep, &MeasureCall::srcStep, 0),
            wrong("srcStep", lumErrStep, &MeasureCall::srcStep, -2 * row),
            wrong("dstStep", lumErrStep, &MeasureCall::dstStep, 4 * kSize.width - 4),
            wrong("dstStep", lumErrStep, &MeasureCall::dstStep, -96)};
}

template <class S>
class CornerStatusQuick : public testing::Test
{
  public:
    /// A call that succeeds; with room for six floats a pixel and all borders.
    MeasureArguments validCall(Measure measure, Lum32s kernel, Lum32s mask)
    {
        image_.forEach(Area::WithMargins,
                       [](S& element, int x, int y, int) { element = static_cast<S>((x * x + 3 * y + 99) % 250); });
        return {{image_.pixels(), image_.step(), destination_.pixels(), destination_.step(), kSize, kernel, mask, 3,
                 lumBorderReplicate, 7, scratch_.data()},
                measure,
                {Output(destination_), Output(image_)}};
    }

  private:
    Image<S> image_{Layout{kSize.width, kSize.height, 1, 8, Guard::After, Margins::all(8)}};
    Image<Lum32f> destination_{Layout{kSize.width, kSize.height, 6}};
    PlacedBlock scratch_{static_cast<std::size_t>(eigenBytes(kSize, {lumKernSobel, 5, 5}, Exports<S>::type)) * 3};
};
TYPED_TEST_SUITE(CornerStatusQuick, SourceTypes, SourceName);

template <class S>
MeasureViolations eigenViolations()
{
    MeasureViolations table = nullsAndSizes();
    append(table, shortStrides<S>());
    append(table, alignments<S>());
    append(table, {wrong("kernType", lumErrArgument, &MeasureCall::kernel, 3),
                   wrong("kernType", lumErrArgument, &MeasureCall::kernel, -1),
                   wrong("aperture", lumErrSize, &MeasureCall::mask, 4),
                   wrong("aperture", lumErrSize, &MeasureCall::mask, -3),
                   wrong("aperture", lumErrSize, &MeasureCall::mask, 33),
                   {"Scharr 5x5", lumErrSize,
                    [](Arguments& a) {
                        a.kernel = lumKernScharr;
                        a.mask = 5;
                    }},
                   wrong("window", lumErrSize, &MeasureCall::window, 4),
                   wrong("window", lumErrSize, &MeasureCall::window, 1),
                   wrong("window", lumErrSize, &MeasureCall::window, 7),
                   wrong("window", lumErrSize, &MeasureCall::window, -3)});
    return table;
}

TYPED_TEST(CornerStatusQuick, PlainEigenForms)
{
    for (const Measure measure : {Exports<TypeParam>::minEigenVal, Exports<TypeParam>::eigenValsVecs}) {
        expectStatusOrder(this->validCall(measure, lumKernSobelNeg, 5), eigenViolations<TypeParam>());
    }
}

TYPED_TEST(CornerStatusQuick, EigenFormsWithABorder)
{
    MeasureViolations table = eigenViolations<TypeParam>();
    append(table, {wrong("border", lumErrBorder, &MeasureCall::border, 0),
                   wrong("border without a mode and a side", lumErrBorder, &MeasureCall::border, 0x72),
                   wrong("neutral", lumErrBorder, &MeasureCall::border, lumBorderNeutral),
                   wrong("neutral in memory", lumErrBorder, &MeasureCall::border, lumBorderNeutral | lumBorderInMem),
                   wrong("border above 255", lumErrBorder, &MeasureCall::border, 256 + lumBorderReplicate),
                   wrong("border above 4095", lumErrBorder, &MeasureCall::border, 4096 + lumBorderReplicate)});
    for (const Measure measure : {Exports<TypeParam>::minEigenValBorder, Exports<TypeParam>::eigenValsVecsBorder}) {
        expectStatusOrder(this->validCall(measure, lumKernSobel, 3), table);
    }
}

template <class S>
MeasureViolations harrisViolations()
{
    MeasureViolations table = nullsAndSizes();
    append(table, alignments<S>());
    append(table, {wrong("filter", lumErrFilterType, &MeasureCall::kernel, 0),
                   wrong("filter", lumErrFilterType, &MeasureCall::kernel, 9),
                   wrong("filter", lumErrFilterType, &MeasureCall::kernel, -2),
                   wrong("mask", lumErrMaskSize, &MeasureCall::mask, 3),
                   wrong("mask", lumErrMaskSize, &MeasureCall::mask, 77),
                   {"Scharr 5x5", lumErrMaskSize,
                    [](Arguments& a) {
                        a.kernel = lumFilterScharr;
                        a.mask = lumMask5x5;
                    }},
                   {"central difference 5x5", lumErrMaskSize,
                    [](Arguments& a) {
                        a.kernel = lumFilterCentralDiff;
                        a.mask = lumMask5x5;
                    }},
                   wrong("border", lumErrBorder, &MeasureCall::border, 0),
                   wrong("neutral", lumErrBorder, &MeasureCall::border, lumBorderNeutral),
                   wrong("border above 255", lumErrBorder, &MeasureCall::border, 256 + lumBorderReplicate),
                   wrong("in memory with a wrong mode", lumErrBorder, &MeasureCall::border, lumBorderInMem + 2),
                   wrong("window", lumErrSize, &MeasureCall::window, 0),
                   wrong("window", lumErrSize, &MeasureCall::window, -3)});
    append(table, shortStrides<S>());
    return table;
}

TYPED_TEST(CornerStatusQuick, Harris)
{
    MeasureViolations table = harrisViolations<TypeParam>();
    if (std::is_same_v<TypeParam, Lum32f>) {
        table.push_back({"in place", lumErrInPlace,
                         [](Arguments& a) { a.pDst = const_cast<Lum32f*>(static_cast<const Lum32f*>(a.pSrc)); }});
    }
    expectStatusOrder(this->validCall(Exports<TypeParam>::harris, lumFilterSobel, lumMask5x5), table);
    expectStatusOrder(this->validCall(Exports<TypeParam>::harris, lumFilterScharr, lumMask3x3), table);
}

TYPED_TEST(CornerStatusQuick, WhichBordersAreAccepted)
{
    using E = Exports<TypeParam>;
    const auto expectStatus = [](MeasureArguments arguments, LumiBorderType border, bool accepted) {
        arguments.border = border;
        ASSERT_EQ(arguments.call(), accepted ? lumOk : lumErrBorder) << "border " << border;
    };
    const MeasureArguments minEigenVal = this->validCall(E::minEigenValBorder, lumKernSobel, 3);
    const MeasureArguments eigenValsVecs = this->validCall(E::eigenValsVecsBorder, lumKernSobel, 3);
    const MeasureArguments harris = this->validCall(E::harris, lumFilterSobel, lumMask3x3);
    for (LumiBorderType border = -260; border < 560; ++border) {
        expectStatus(minEigenVal, border, isEigenBorder(border));
        expectStatus(eigenValsVecs, border, isEigenBorder(border));
        expectStatus(harris, border, isFilterBorder(border));
    }
    for (const LumiBorderType border : {4096 + 1, 4096 + 240, 0x7fffff01, -0x7fffffff}) {
        expectStatus(minEigenVal, border, false);
        expectStatus(eigenValsVecs, border, false);
        expectStatus(harris, border, false);
    }
}

struct SuppressionArguments
{
    const Lum8u* pSrc;
    const Lum8u* pFeature;
    Lum8u* pDst;
    Lum8u* pBuffer;
    std::vector<Output> written;
    Lum32s srcStep = 64;
    Lum32s featureStep = 30;
    Lum32s dstStep = 40;
    LumiSize roiSize = kSize;
    Lum32s filter = lumFilterSobel;
    Lum32s mask = lumMask5x5;
    Lum32s window = 3;
    LumiBorderType border = lumBorderReplicate;

    LumStatus call() const
    {
        return lumiLineSuppression_8u_C1R(pSrc, srcStep, pFeature, featureStep, pDst, dstStep, roiSize, filter, mask,
                                          window, 10, border, 7, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return written;
    }
};

TEST(LineSuppressionStatusQuick, ChecksInOrder)
{
    using A = SuppressionArguments;
    std::vector<Lum8u> image(64 * 40);
    for (std::size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<Lum8u>(i * i);
    }
    std::vector<Lum8u> features(30 * 11, Lum8u{3});
    std::vector<Lum8u> destination(40 * 11, Lum8u{55});
    std::vector<Lum8u> scratch(static_cast<std::size_t>(harrisBytes(kSize, {lumFilterSobel, lumMask5x5}, lumType8u)));
    const A valid{image.data() + 64 * 10 + 10,
                  features.data(),
                  destination.data(),
                  scratch.data(),
                  {Output(destination.data(), destination.size()), Output(features.data(), features.size())}};
    const auto wrongBorder = [](const char* name, LumiBorderType border) {
        return Violation<A>(name, lumErrBorder, [=](A& a) { a.border = border; });
    };
    expectStatusOrder(valid, {{"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
                              {"pFeature null", lumErrNullPointer, [](A& a) { a.pFeature = nullptr; }},
                              {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
                              {"pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }},
                              {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                              {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                              {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -1; }},
                              {"filter 1", lumErrFilterType, [](A& a) { a.filter = 1; }},
                              {"filter negative", lumErrFilterType, [](A& a) { a.filter = -8; }},
                              {"mask", lumErrMaskSize, [](A& a) { a.mask = 5; }},
                              {"Scharr 5x5", lumErrMaskSize, [](A& a) { a.filter = lumFilterScharr; }},
                              {"central difference 5x5", lumErrMaskSize, [](A& a) { a.filter = lumFilterCentralDiff; }},
                              wrongBorder("mirror", lumBorderMirror),
                              wrongBorder("mirror in memory", lumBorderMirror | lumBorderInMem),
                              wrongBorder("neutral", lumBorderNeutral),
                              wrongBorder("no mode", 0x10),
                              wrongBorder("border above 255", 256 + lumBorderReplicate),
                              wrongBorder("border negative", -16),
                              {"window 0", lumErrSize, [](A& a) { a.window = 0; }},
                              {"window negative", lumErrSize, [](A& a) { a.window = -3; }},
                              {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -64; }},
                              {"featureStep negative", lumErrStep, [](A& a) { a.featureStep = -1; }},
                              {"dstStep negative", lumErrStep, [](A& a) { a.dstStep = -40; }},
                              {"in place", lumErrInPlace, [](A& a) { a.pDst = const_cast<Lum8u*>(a.pFeature); }}});
    for (LumiBorderType border = 0; border < 256; ++border) {
        const bool accepted = isFilterBorder(border) && (border & 15) != lumBorderMirror;
        A arguments = valid;
        arguments.border = border;
        EXPECT_EQ(arguments.call(), accepted ? lumOk : lumErrBorder) << "border " << border;
    }
}

}  // namespace
}  // namespace lumcv::test::corners
