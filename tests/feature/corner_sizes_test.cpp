// The scratch sizes of the corner measures and of line suppression: the formulas, the limit of 32 bits, the checks.
#include <limits>
#include <vector>

#include "feature/corner_calls.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::corners {
namespace {

void expectBytes(LumStatus status, Lum32s bytes, Wide expected, const testing::Message& what)
{
    if (expected > std::numeric_limits<Lum32s>::max()) {
        EXPECT_EQ(status, lumErrSizeTooLarge) << what;
        EXPECT_EQ(bytes, -77) << what;
    } else {
        EXPECT_EQ(status, lumOk) << what;
        EXPECT_EQ(bytes, static_cast<Lum32s>(expected)) << what;
    }
}

template <class S>
void expectEigenBytes(LumiSize size)
{
    using E = Exports<S>;
    for (const int aperture : {3, 5}) {
        for (const int window : {3, 5}) {
            const Wide expected = eigenBytes(size, {lumKernSobel, aperture, window}, E::type);
            const auto what = testing::Message() << size.width << " x " << size.height << ", aperture " << aperture
                                                 << ", window " << window;
            Lum32s bytes = -77;
            LumStatus status = E::minEigenValBytes(size, aperture, window, &bytes);
            expectBytes(status, bytes, expected, what);
            bytes = -77;
            status = E::eigenValsVecsBytes(size, aperture, window, &bytes);
            expectBytes(status, bytes, expected, what);
        }
    }
}

void expectHarrisBytes(LumiSize size, int window)
{
    for (const LumiMaskSize mask : {lumMask3x3, lumMask5x5}) {
        for (const LumDataType type : {lumType8u, lumType32f}) {
            const Wide expected = harrisBytes(size, {lumFilterSobel, mask, window}, type);
            const auto what = testing::Message() << size.width << " x " << size.height << ", mask " << mask
                                                 << ", window " << window << ", type " << type;
            Lum32s bytes = -77;
            LumStatus status = lumiHarrisCornerGetBufferSize(size, mask, window, type, 1, &bytes);
            expectBytes(status, bytes, expected, what);
            bytes = -77;
            status = lumiLineSuppressionGetBufferSize(size, mask, window, type, 1, &bytes);
            expectBytes(status, bytes, expected, what);
        }
    }
}

/// Sizes of every magnitude, near the limit of 32 bits more often.
LumiSize drawSize(Random& random, std::int64_t pixelsAtTheLimit)
{
    const auto width = random.between(1, (std::int64_t{1} << random.between(1, 31)) - 1);
    const std::int64_t limit = pixelsAtTheLimit / width;
    const bool near = random.oneIn(2);
    const std::int64_t height =
        near ? limit + random.between(-2, 3) : random.between(1, (std::int64_t{1} << random.between(1, 31)) - 1);
    return {static_cast<Lum32s>(width), static_cast<Lum32s>(height < 1 ? 1 : height)};
}

TEST(CornerSizesQuick, OfTheEigenvalueMeasures)
{
    Random random(1);
    for (int i = 0; i < 2000 && !testing::Test::HasFailure(); ++i) {
        expectEigenBytes<Lum8u>(drawSize(random, (std::int64_t{1} << 31) / 16));
        expectEigenBytes<Lum32f>(drawSize(random, (std::int64_t{1} << 31) / 20));
    }
}

TEST(CornerSizesQuick, OfHarrisAndLineSuppression)
{
    for (int window = 1; window < 40; ++window) {
        for (const int width : {1, 2, 3, 5, 8, 15, 16, 17, 31, 40, 95, 96, 97, 130, 1920}) {
            for (const int height : {1, 4, 9, 33, 88, 70, 1080}) {
                expectHarrisBytes({width, height}, window);
            }
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    Random random(2);
    for (int i = 0; i < 4000 && !testing::Test::HasFailure(); ++i) {
        const auto window = static_cast<int>(random.between(1, (std::int64_t{1} << random.between(1, 31)) - 1));
        expectHarrisBytes(drawSize(random, (std::int64_t{1} << 31) / 24), window);
        expectHarrisBytes(drawSize(random, (std::int64_t{1} << 31) / 24), 1 + i % 40);
    }
}

// 8u, 1920 by 1080 by hand. Smaller eigenvalue 3, 3: W16 is 1920, the derivatives take 3 * 1922 = 5766, so 5792 + 32,
// the lowpass 7680 * 21 + 888 = 162168. Harris 3x3 with a window of 3, margins of 2: the strips along the rows have
// 1922 by 4 pixels, their planes rows of 7712 and 3872 bytes.
TEST(CornerSizesQuick, ByHand)
{
    Lum32s bytes = 0;
    EXPECT_EQ(lumiMinEigenValGetBufferSize_8u32f_C1R({1920, 1080}, 3, 3, &bytes), lumOk);
    EXPECT_EQ(bytes, 162168 + 16 * 1920 * 1080 + 224);
    EXPECT_EQ(lumiHarrisCornerGetBufferSize({1920, 1080}, lumMask3x3, 3, lumType8u, 1, &bytes), lumOk);
    const int box = 512 * 121 + 63;
    const int rows = 7712 * 4 * 3 + 3872 * 4 * 2 + 64 + box + 7712 * 4;
    const int columns = 32 * 1082 * 3 + 32 * 1082 * 2 + 64 + 512 + 63 + 32 * 1082;
    const int tile = (416 * 3 + 448) * 90 + 512 * 7 + 63 + 64;
    EXPECT_EQ(bytes, std::max({rows, columns, tile}));
}

struct QueryArguments
{
    Lum32s* pBufferSize;
    std::vector<Output> written;
    LumStatus (*query)(const QueryArguments&);
    LumiSize roiSize = {64, 48};
    Lum32s mask = 3;
    Lum32s window = 3;
    LumDataType type = lumType32f;
    Lum32s channels = 1;

    LumStatus call() const
    {
        return query(*this);
    }
    std::vector<Output> outputs() const
    {
        return written;
    }
};

using Arguments = QueryArguments;

template <auto Export>
LumStatus eigenQuery(const Arguments& a)
{
    return Export(a.roiSize, a.mask, a.window, a.pBufferSize);
}

template <auto Export>
LumStatus harrisQuery(const Arguments& a)
{
    return Export(a.roiSize, a.mask, a.window, a.type, a.channels, a.pBufferSize);
}

std::vector<Violation<Arguments>> nullAndSizes()
{
    return {{"result null", lumErrNullPointer, [](Arguments& a) { a.pBufferSize = nullptr; }},
            {"width 0", lumErrSize, [](Arguments& a) { a.roiSize.width = 0; }},
            {"height 0", lumErrSize, [](Arguments& a) { a.roiSize.height = 0; }},
            {"height negative", lumErrSize, [](Arguments& a) { a.roiSize.height = -48; }}};
}

Violation<Arguments> tooLarge()
{
    return {"too large", lumErrSizeTooLarge, [](Arguments& a) { a.roiSize = {1 << 30, 1 << 30}; }};
}

TEST(CornerSizesQuick, ChecksOfTheEigenQueries)
{
    auto table = nullAndSizes();
    for (const int aperture : {4, 1, 7, 33, -3}) {
        table.push_back({"aperture " + std::to_string(aperture), lumErrSize, [=](Arguments& a) { a.mask = aperture; }});
    }
    for (const int window : {4, 1, 7, 33, -5, 0}) {
        table.push_back({"window " + std::to_string(window), lumErrSize, [=](Arguments& a) { a.window = window; }});
    }
    table.push_back(tooLarge());
    for (const auto query :
         {eigenQuery<lumiMinEigenValGetBufferSize_8u32f_C1R>, eigenQuery<lumiMinEigenValGetBufferSize_32f_C1R>,
          eigenQuery<lumiEigenValsVecsGetBufferSize_8u32f_C1R>, eigenQuery<lumiEigenValsVecsGetBufferSize_32f_C1R>}) {
        Lum32s bytes = -77;
        expectStatusOrder(Arguments{&bytes, {Output(&bytes, sizeof bytes)}, query}, table);
    }
}

TEST(CornerSizesQuick, ChecksOfTheHarrisAndTheSuppressionQuery)
{
    auto table = nullAndSizes();
    for (const int mask : {3, 0, 53, -33}) {
        table.push_back({"mask " + std::to_string(mask), lumErrMaskSize, [=](Arguments& a) { a.mask = mask; }});
    }
    for (const int type : {5, 7, 19, 0, -1}) {
        table.push_back({"type " + std::to_string(type), lumErrDataType, [=](Arguments& a) { a.type = type; }});
    }
    for (const int channels : {0, 3, 4, -1}) {
        table.push_back(
            {"channels " + std::to_string(channels), lumErrChannels, [=](Arguments& a) { a.channels = channels; }});
    }
    for (const int window : {0, -1}) {
        table.push_back({"window " + std::to_string(window), lumErrSize, [=](Arguments& a) { a.window = window; }});
    }
    table.push_back(tooLarge());
    for (const auto query :
         {harrisQuery<lumiHarrisCornerGetBufferSize>, harrisQuery<lumiLineSuppressionGetBufferSize>}) {
        Lum32s bytes = -77;
        Arguments valid{&bytes, {Output(&bytes, sizeof bytes)}, query};
        valid.mask = lumMask5x5;
        expectStatusOrder(valid, table);
    }
}

}  // namespace
}  // namespace lumcv::test::corners
