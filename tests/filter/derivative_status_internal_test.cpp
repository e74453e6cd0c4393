// The scratch sizes of the derivative services, and what they and their queries refuse, in which order.
#include <limits>

#include "filter/derivative_fixture.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::derivatives {
namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

TYPE_SUITE(DerivativeStatus, SourceTypes, ServiceName);

template <class S>
struct FilterArgs
{
    using D = typename Services<S>::Destination;

    const Image<D>* destination;
    const S* pSrc;
    Lum32s srcStep;
    D* pDst;
    Lum32s dstStep;
    LumiSize roiSize = {7, 6};
    LumiMaskSize mask = lumMask3x3;
    LumiBorderType border = lumBorderReplicate;
    Lum8u* pBuffer;
    LumDerivCode code;
    bool byEntry;

    LumStatus call() const
    {
        return byEntry ? Services<S>::entry(code)(pSrc, srcStep, pDst, dstStep, roiSize, mask, border, S{1}, pBuffer)
                       : Services<S>::filter(pSrc, srcStep, pDst, dstStep, roiSize, mask, border, S{1}, pBuffer, code);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

// No stride is too short; the mask comes before the border.
TYPE_TEST(DerivativeStatus, ChecksInOrder)
{
    using Args = FilterArgs<TypeParam>;
    FilterSetting setting;
    setting.size = {7, 6};
    Image<TypeParam> source(setting.layout<TypeParam>());
    source.forEach(Area::Roi,
                   [](TypeParam& element, int x, int y, int) { element = static_cast<TypeParam>(x * y * y); });
    Image<typename Services<TypeParam>::Destination> destination(
        setting.layout<typename Services<TypeParam>::Destination>());
    for (const LumDerivCode code : kCodes) {
        std::vector<Violation<Args>> order = {
            {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
            {"pDst null", lumErrNullPointer, [](Args& a) { a.pDst = nullptr; }},
            {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
            {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
            {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = kIntMin; }},
            {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
            {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -1; }},
            {"dstStep odd", lumErrStepAlignment, [](Args& a) { a.dstStep += 1; }},
        };
        if (sizeof(TypeParam) == 4) {
            order.push_back({"dstStep even", lumErrStepAlignment, [](Args& a) { a.dstStep += 2; }});
            order.push_back({"srcStep odd", lumErrStepAlignment, [](Args& a) { a.srcStep += 1; }});
            order.push_back({"srcStep even", lumErrStepAlignment, [](Args& a) { a.srcStep += 2; }});
        }
        order.push_back({"mask 13", lumErrMaskSize, [](Args& a) { a.mask = 13; }});
        order.push_back({"mask 0", lumErrMaskSize, [](Args& a) { a.mask = 0; }});
        if (isScharr(code)) {
            order.push_back({"mask 55 of Scharr", lumErrMaskSize, [](Args& a) { a.mask = lumMask5x5; }});
        }
        for (const LumiBorderType border : {0, 2, 4, 5, 7, 0x70, 0xF2, 0xF5, 0x101, 0x1F0, -15}) {
            order.push_back({"border " + std::to_string(border), lumErrBorder, [=](Args& a) { a.border = border; }});
        }
        for (const LumiMaskSize mask : masksOf(code)) {
            const PlacedBlock scratch = makeScratch<TypeParam>(setting, mask);
            for (const bool byEntry : {false, true}) {
                expectStatusOrder(Args{&destination,
                                       source.pixels(),
                                       source.step(),
                                       destination.pixels(),
                                       destination.step(),
                                       {7, 6},
                                       mask,
                                       lumBorderReplicate,
                                       scratch.data(),
                                       code,
                                       byEntry},
                                  order);
            }
        }
    }
}

using SizeQuery = LumStatus (*)(LumiSize, LumiMaskSize, LumDataType, LumDataType, Lum32s, Lum32s*);

TEST(DerivativeSizes, Formula)
{
    for (const LumiMaskSize mask : {lumMask3x3, lumMask5x5}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{5, 9}, LumiSize{9, 5}, LumiSize{640, 480},
                                    LumiSize{480, 641}, LumiSize{1, 100000}, LumiSize{1000001, 3}}) {
            for (const LumDataType type : {lumType8u, lumType16s, lumType32f}) {
                const LumDataType destination = type == lumType32f ? lumType32f : lumType16s;
                for (const SizeQuery query :
                     {lumDerivGetBufferSize, lumDerivSobelXGetBufferSize, lumDerivScharrGetBufferSize}) {
                    if ((query == lumDerivSobelXGetBufferSize && type == lumType16s) ||
                        (query == lumDerivScharrGetBufferSize && mask == lumMask5x5)) {
                        continue;
                    }
                    Lum32s bytes = 0;
                    ASSERT_EQ(query(size, mask, type, destination, 1, &bytes), lumOk);
                    EXPECT_EQ(bytes, scratchBytes(size, mask, type)) << size.width << " x " << size.height;
                }
            }
        }
    }
    // 3 * (6 + 2) bytes, rounded up, and 32
    Lum32s bytes = 0;
    ASSERT_EQ(lumDerivGetBufferSize({5, 6}, lumMask3x3, lumType8u, lumType16s, 1, &bytes), lumOk);
    EXPECT_EQ(bytes, 64);
}

TEST(DerivativeSizes, TooLarge)
{
    Lum32s bytes = -3;
    EXPECT_EQ(lumDerivGetBufferSize({kIntMax, 1}, lumMask3x3, lumType8u, lumType16s, 1, &bytes), lumErrSizeTooLarge);
    EXPECT_EQ(lumDerivGetBufferSize({1, kIntMax}, lumMask5x5, lumType32f, lumType32f, 1, &bytes), lumErrSizeTooLarge);
    EXPECT_EQ(lumDerivGetBufferSize({kIntMax, kIntMax}, lumMask5x5, lumType16s, lumType16s, 1, &bytes),
              lumErrSizeTooLarge);
    EXPECT_EQ(bytes, -3);
}

struct SizeArgs
{
    SizeQuery query;
    LumiSize roiSize = {20, 10};
    LumiMaskSize mask = lumMask3x3;
    LumDataType sourceType = lumType8u;
    LumDataType destinationType = lumType16s;
    Lum32s channels = 1;
    bool withResult = true;
    const PlacedBlock* result = nullptr;

    LumStatus call() const
    {
        return query(roiSize, mask, sourceType, destinationType, channels,
                     withResult ? reinterpret_cast<Lum32s*>(result->data()) : nullptr);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result->data(), result->size())};
    }
};

std::vector<Violation<SizeArgs>> sizeOrder()
{
    using Args = SizeArgs;
    const auto types = [](LumDataType source, LumDataType destination) {
        return Violation<Args>{"from " + std::to_string(source) + " to " + std::to_string(destination), lumErrDataType,
                               [=](Args& a) {
                                   a.sourceType = source;
                                   a.destinationType = destination;
                               }};
    };
    return {
        {"no result", lumErrNullPointer, [](Args& a) { a.withResult = false; }},
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = kIntMin; }},
        {"mask 13", lumErrMaskSize, [](Args& a) { a.mask = 13; }},
        types(lumType8u, lumType32f),
        types(lumType16s, lumType32f),
        types(lumType16u, lumType32f),
        types(lumType32f, lumType16s),
        types(lumType16u, lumType16s),
        types(lumType8u, lumType8u),
        types(lumType8u, lumType16u),
        types(lumType32f, lumType64f),
        types(lumType8u, 0),
        {"channels 0", lumErrChannels, [](Args& a) { a.channels = 0; }},
        {"channels 3", lumErrChannels, [](Args& a) { a.channels = 3; }},
    };
}

// SobelX looks at a source of 16s before all else, Scharr at the mask, even before the null pointer.
TEST(DerivativeSizes, ChecksInOrder)
{
    using Args = SizeArgs;
    const PlacedBlock result(sizeof(Lum32s));
    for (const LumiMaskSize mask : {lumMask3x3, lumMask5x5}) {
        expectStatusOrder(Args{lumDerivGetBufferSize, {20, 10}, mask, lumType16s, lumType16s, 1, true, &result},
                          sizeOrder());
        expectStatusOrder(Args{lumDerivGetBufferSize, {20, 10}, mask, lumType32f, lumType32f, 1, true, &result},
                          sizeOrder());

        std::vector<Violation<Args>> sobel = sizeOrder();
        std::erase_if(sobel, [](const auto& violation) { return violation.name == "from 7 to 13"; });
        sobel.insert(sobel.begin(), {"from 16s", lumErrDataType, [](Args& a) { a.sourceType = lumType16s; }});
        expectStatusOrder(Args{lumDerivSobelXGetBufferSize, {20, 10}, mask, lumType8u, lumType16s, 1, true, &result},
                          sobel);
    }
    std::vector<Violation<Args>> scharr = sizeOrder();
    std::erase_if(scharr, [](const auto& violation) { return violation.name == "mask 13"; });
    scharr.insert(scharr.begin(), {{"mask 55", lumErrMaskSize, [](Args& a) { a.mask = lumMask5x5; }},
                                   {"mask 13", lumErrMaskSize, [](Args& a) { a.mask = 13; }}});
    expectStatusOrder(Args{lumDerivScharrGetBufferSize, {20, 10}, lumMask3x3, lumType8u, lumType16s, 1, true, &result},
                      scharr);
}

}  // namespace
}  // namespace lumcv::test::derivatives
