// The order of argument checks of all functions of image statistics.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "stats/stats_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::stats {
namespace {

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();

struct Args : Operands
{
    const Export* tested = nullptr;
    Outcome* results = nullptr;

    LumStatus call() const
    {
        return tested->call(*this);
    }
    std::vector<Output> outputs() const
    {
        return {Output(results, sizeof *results)};
    }
};
using Checks = std::vector<Violation<Args>>;

void append(Checks& checks, const Checks& more)
{
    checks.insert(checks.end(), more.begin(), more.end());
}

constexpr int kWidth = 5;

Checks nullChecks(const Export& e)
{
    Checks checks = {{"pSrc1 null", lumErrNullPointer, [](Args& a) { a.pSrc1 = nullptr; }}};
    if (e.twoSources()) {
        append(checks, {{"pSrc2 null", lumErrNullPointer, [](Args& a) { a.pSrc2 = nullptr; }}});
    }
    if (e.masked) {
        append(checks, {{"pMask null", lumErrNullPointer, [](Args& a) { a.pMask = nullptr; }}});
    }
    if (e.isNorm() || e.operation == Operation::Mean) {
        append(checks, {{"result null", lumErrNullPointer, [](Args& a) { a.pValue = nullptr; }}});
    }
    return checks;
}

Checks sizeChecks()
{
    return {
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"width -1", lumErrSize, [](Args& a) { a.roiSize.width = -1; }},
        {"height -2147483648", lumErrSize, [](Args& a) { a.roiSize.height = kIntMin; }},
    };
}

// A stride that is shorter than a row of kWidth pixels.
Checks widthChecks(const std::string& image, Lum32s Operands::*step, int pixelBytes, int elementBytes)
{
    const int row = kWidth * pixelBytes;
    Checks checks = {
        {image + " stride one pixel short", lumErrStep, [=](Args& a) { a.*step = row - pixelBytes; }},
        {image + " stride one byte short", lumErrStep, [=](Args& a) { a.*step = row - 1; }},
        {image + " stride 0", lumErrStep, [=](Args& a) { a.*step = 0; }},
        {image + " stride negative", lumErrStep, [=](Args& a) { a.*step = -row; }},
        {image + " stride -2147483648", lumErrStep, [=](Args& a) { a.*step = kIntMin; }},
    };
    if (pixelBytes != elementBytes) {
        append(checks,
               {{image + " stride one element short", lumErrStep, [=](Args& a) { a.*step = row - elementBytes; }},
                {image + " stride of one channel", lumErrStep, [=](Args& a) { a.*step = kWidth * elementBytes; }}});
    }
    return checks;
}

Checks alignmentChecks(const std::string& image, Lum32s Operands::*step, int pixelBytes, int elementBytes)
{
    Checks checks;
    for (int off = 1; off < elementBytes; ++off) {
        append(checks, {{image + " stride off by " + std::to_string(off), lumErrStepAlignment,
                         [=](Args& a) { a.*step = kWidth * pixelBytes + off; }}});
    }
    return checks;
}

Checks channelChecks()
{
    Checks checks;
    for (const Lum32s coi : {0, 4, -1, 5, 257, kIntMax, kIntMin}) {
        append(checks, {{"coi " + std::to_string(coi), lumErrChannelOfInterest, [=](Args& a) { a.coi = coi; }}});
    }
    return checks;
}

Checks documentedOrder(const Export& e)
{
    const int elementBytes = bytesOf(e.element);
    const int pixelBytes = elementBytes * e.channels();
    const Checks firstAlignment = alignmentChecks("src1", &Operands::src1Step, pixelBytes, elementBytes);
    // the one function that judges the source completely before the mask
    const bool sourceFirst = e.name == "lumiMean_16u_C1MR";

    Checks order = nullChecks(e);
    append(order, sizeChecks());
    append(order, widthChecks("src1", &Operands::src1Step, pixelBytes, elementBytes));
    if (sourceFirst) {
        append(order, firstAlignment);
    }
    if (e.twoSources()) {
        append(order, widthChecks("src2", &Operands::src2Step, pixelBytes, elementBytes));
    }
    if (e.masked) {
        append(order, widthChecks("mask", &Operands::maskStep, 1, 1));
    }
    if (!sourceFirst) {
        append(order, firstAlignment);
    }
    if (e.twoSources()) {
        append(order, alignmentChecks("src2", &Operands::src2Step, pixelBytes, elementBytes));
    }
    if (e.ofInterest) {
        append(order, channelChecks());
    }
    return order;
}

void expectDocumentedOrder(const Export& e)
{
    SCOPED_TRACE(e.name);
    Random random(61);
    Scene scene(Geometry{.width = kWidth, .height = 3, .number = 1}, e.element, e.channels());
    scene.fill(random, Content::Ordinary, Content::Ordinary, 0);
    Outcome results;
    Args valid;
    static_cast<Operands&>(valid) = scene.operands();
    valid.pValue = &results.value;
    valid.pStdDev = &results.stdDev;
    valid.pMinVal = &results.minVal;
    valid.pMaxVal = &results.maxVal;
    valid.pMinIndex = &results.minIndex;
    valid.pMaxIndex = &results.maxIndex;
    valid.tested = &e;
    valid.results = &results;
    expectStatusOrder(valid, documentedOrder(e));
}

TEST(StatsStatus, MeansCheckInDocumentedOrder)
{
    for (const Export& e : meanExports()) {
        expectDocumentedOrder(e);
    }
}

TEST(StatsStatus, NormsCheckInDocumentedOrder)
{
    for (const Export& e : normExports()) {
        expectDocumentedOrder(e);
    }
}

TEST(StatsStatus, ExtremaCheckInDocumentedOrder)
{
    for (const Export& e : extremaExports()) {
        expectDocumentedOrder(e);
    }
}

TEST(StatsStatusQuick, CheckInDocumentedOrder)
{
    for (const char* const name : {"lumiMean_16u_C1MR", "lumiMean_16u_C3CMR", "lumiMean_StdDev_16u_C1MR",
                                   "lumiNormRel_L2_32f_C3CMR", "lumiMinMaxIndx_16u_C3CMR"}) {
        expectDocumentedOrder(exportNamed(name));
    }
}

// lumiMean_16u_C1MR and no other: an odd stride of the source is found before a short one of the mask.
TEST(StatsStatusQuick, MaskedMeanOfSixteenBitsJudgesItsSourceFirst)
{
    for (const Export& e : allExports()) {
        if (!e.masked || e.element == Element::U8) {
            continue;
        }
        Scene scene(kWidth, 3, e.element, e.channels());
        Random random(62);
        scene.fill(random, Content::Ordinary, Content::Ordinary, 0);
        Operands o = scene.operands();
        o.src1Step = kWidth * e.channels() * bytesOf(e.element) + 1;
        o.maskStep = kWidth - 1;
        const bool sourceFirst = e.name == "lumiMean_16u_C1MR";
        EXPECT_EQ(outcomeOf(e, o).status, sourceFirst ? lumErrStepAlignment : lumErrStep) << e.name;
    }
}

// Results that are not wanted do not keep the other arguments from being judged.
TEST(StatsStatusQuick, ArgumentsAreJudgedWithoutResults)
{
    for (const Export& e : allExports()) {
        if (e.isNorm() || e.operation == Operation::Mean) {
            continue;
        }
        Scene scene(kWidth, 3, e.element, e.channels());
        Random random(63);
        scene.fill(random, Content::Ordinary, Content::Ordinary, 0);
        const Operands valid = scene.operands();
        EXPECT_EQ(e.call(valid), lumOk) << e.name;
        Operands o = valid;
        o.pSrc1 = nullptr;
        EXPECT_EQ(e.call(o), lumErrNullPointer) << e.name;
        o = valid;
        o.roiSize.height = 0;
        EXPECT_EQ(e.call(o), lumErrSize) << e.name;
        o = valid;
        o.src1Step = 1;
        EXPECT_EQ(e.call(o), lumErrStep) << e.name;
        o = valid;
        o.coi = 4;
        EXPECT_EQ(e.call(o), e.ofInterest ? lumErrChannelOfInterest : lumOk) << e.name;
    }
}

// Bytes of a row are counted in signed 32-bit numbers that wrap: no stride is below a negative row, and what is checked
// next decides.
TEST(StatsStatusQuick, RowSizesAreThirtyTwoBitProductsThatWrap)
{
    const Lum32f pixels[64] = {};
    const Lum8u mask[64] = {};
    for (const Export& e : allExports()) {
        const Lum32s pixelBytes = bytesOf(e.element) * e.channels();
        if (pixelBytes == 1) {
            continue;
        }
        Operands o;
        o.pSrc1 = o.pSrc2 = pixels;
        o.pMask = mask;
        o.maskStep = kIntMax;
        o.src1Step = o.src2Step = 64;
        o.coi = 0;
        // the widest row that fits
        o.roiSize = {kIntMax / pixelBytes, 1};
        EXPECT_EQ(outcomeOf(e, o).status, lumErrStep) << e.name;
        // the next one; and one far beyond for three channels, whose product is still negative
        const Lum32s wide = e.element == Element::U8 ? 0x40000000 : e.element == Element::U16 ? 0x20000000 : 0x10000000;
        for (const Lum32s width : {kIntMax / pixelBytes + 1, e.ofInterest ? wide : kIntMax / pixelBytes + 1}) {
            o.roiSize = {width, 1};
            if (e.element != Element::U8) {
                o.src1Step = 65;
                EXPECT_EQ(outcomeOf(e, o).status, lumErrStepAlignment) << e.name << ", width " << width;
                o.src1Step = 64;
            }
            if (e.ofInterest) {
                EXPECT_EQ(outcomeOf(e, o).status, lumErrChannelOfInterest) << e.name << ", width " << width;
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::stats
