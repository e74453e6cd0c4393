// The separable filter's records: their sizes, their layout byte for byte, and what the Inits and the queries refuse.
#include <limits>

#include "filter/separable_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::separable {
namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

struct SpecQuery
{
    Entry entry = Entry::Ordinary;
    LumiSize kernelSize = {3, 5};
    LumDataType kernelType = lumType16s;
    Lum32s channels = 1;
    bool withResult = true;
    const PlacedBlock* result = nullptr;  // of either size's bytes

    LumStatus call() const
    {
        if (entry == Entry::Large) {
            auto* const p = withResult ? reinterpret_cast<Lum64s*>(result->data()) : nullptr;
            return lumiFilterSeparableGetSpecSize_L(kernelSize, kernelType, channels, p);
        }
        auto* const p = withResult ? reinterpret_cast<Lum32s*>(result->data()) : nullptr;
        return lumiFilterSeparableGetSpecSize(kernelSize, kernelType, channels, p);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result->data(), result->size())};
    }
};

PlacedBlock resultBlock(Entry entry)
{
    return PlacedBlock(entry == Entry::Large ? sizeof(Lum64s) : sizeof(Lum32s));
}

template <class T>
T readAs(const PlacedBlock& block)
{
    T value;
    std::memcpy(&value, block.data(), sizeof value);
    return value;
}

TEST(SeparableSizesQuick, SpecSize)
{
    for (const Entry entry : kBothEntries) {
        for (const LumDataType kernelType : {lumType16s, lumType32f}) {
            for (const Lum32s channels : kChannels) {
                for (const LumiSize kernelSize : {LumiSize{1, 1}, LumiSize{3, 3}, LumiSize{5, 4}, LumiSize{1, 400},
                                                  LumiSize{123456, 7}, LumiSize{100000000, 200000000}}) {
                    const PlacedBlock result = resultBlock(entry);
                    SpecQuery query{entry, kernelSize, kernelType, channels, true, &result};
                    ASSERT_EQ(query.call(), lumOk);
                    const Wide expected = specSize(kernelSize, kernelType);
                    const Lum64s actual = entry == Entry::Large ? readAs<Lum64s>(result) : readAs<Lum32s>(result);
                    EXPECT_EQ(actual, static_cast<Lum64s>(expected)) << kernelSize.width << " x " << kernelSize.height;
                    EXPECT_TRUE(result.intact());
                }
            }
        }
    }
    Lum32s size = 0;
    ASSERT_EQ(lumiFilterSeparableGetSpecSize({3, 5}, lumType16s, 1, &size), lumOk);
    EXPECT_EQ(size, 143);
    ASSERT_EQ(lumiFilterSeparableGetSpecSize({3, 5}, lumType32f, 1, &size), lumOk);
    EXPECT_EQ(size, 159);
}

// The largest size of 32 bits is still given, the next is refused; the 64-bit query gives both.
TEST(SeparableSizesQuick, SpecSizeTooLarge)
{
    struct Limit
    {
        LumDataType kernelType;
        Wide coefficients;  // the largest number whose record fits
    };
    for (const Limit limit : {Limit{lumType16s, (kLargest32 - 127) / 2}, Limit{lumType32f, (kLargest32 - 127) / 4}}) {
        const auto fits = static_cast<Lum32s>(limit.coefficients);
        for (const LumiSize kernelSize : {LumiSize{fits - 1, 1}, LumiSize{1, fits - 1}, LumiSize{fits, 1},
                                          LumiSize{1, fits}, LumiSize{kIntMax, 1}, LumiSize{kIntMax, kIntMax}}) {
            SCOPED_TRACE(testing::Message() << kernelSize.width << " x " << kernelSize.height);
            const Wide expected = specSize(kernelSize, limit.kernelType);
            const PlacedBlock result = resultBlock(Entry::Ordinary);
            const PlacedBlock before = result;
            const SpecQuery query{Entry::Ordinary, kernelSize, limit.kernelType, 4, true, &result};
            if (expected > kLargest32) {
                EXPECT_EQ(query.call(), lumErrSizeTooLarge);
                EXPECT_EQ(std::memcmp(result.data(), before.data(), result.size()), 0);
            } else {
                EXPECT_EQ(query.call(), lumOk);
                EXPECT_EQ(readAs<Lum32s>(result), static_cast<Lum32s>(expected));
            }
            const PlacedBlock result64 = resultBlock(Entry::Large);
            const SpecQuery query64{Entry::Large, kernelSize, limit.kernelType, 4, true, &result64};
            EXPECT_EQ(query64.call(), lumOk);
            EXPECT_EQ(readAs<Lum64s>(result64), static_cast<Lum64s>(expected));
        }
    }
}

// The size comes before the pointer, unlike in other queries, and a channel count is a value, not lumErrChannels.
TEST(SeparableSizesQuick, SpecSizeChecksInOrder)
{
    for (const Entry entry : kBothEntries) {
        const PlacedBlock result = resultBlock(entry);
        using Q = SpecQuery;
        expectStatusOrder(Q{entry, {3, 5}, lumType32f, 3, true, &result},
                          {
                              {"width 0", lumErrSize, [](Q& q) { q.kernelSize.width = 0; }},
                              {"width negative", lumErrSize, [](Q& q) { q.kernelSize.width = kIntMin; }},
                              {"height 0", lumErrSize, [](Q& q) { q.kernelSize.height = 0; }},
                              {"height negative", lumErrSize, [](Q& q) { q.kernelSize.height = -1; }},
                              {"no result", lumErrNullPointer, [](Q& q) { q.withResult = false; }},
                              {"kernel of 8u", lumErrDataType, [](Q& q) { q.kernelType = lumType8u; }},
                              {"kernel of 16u", lumErrDataType, [](Q& q) { q.kernelType = lumType16u; }},
                              {"kernel of 64f", lumErrDataType, [](Q& q) { q.kernelType = lumType64f; }},
                              {"kernel of type 0", lumErrDataType, [](Q& q) { q.kernelType = 0; }},
                              {"kernel of type -1", lumErrDataType, [](Q& q) { q.kernelType = -1; }},
                              {"channels 0", lumErrValue, [](Q& q) { q.channels = 0; }},
                              {"channels 2", lumErrValue, [](Q& q) { q.channels = 2; }},
                              {"channels 5", lumErrValue, [](Q& q) { q.channels = 5; }},
                              {"channels -1", lumErrValue, [](Q& q) { q.channels = -1; }},
                          });
    }
}

std::vector<Lum32f> coefficients(int count, int first)
{
    std::vector<Lum32f> values;
    for (int i = 0; i < count; ++i) {
        values.push_back(static_cast<Lum32f>((first + i * 37) % 1000 - 400));
    }
    return values;
}

template <class K>
void expectKernelBytes(const unsigned char* bytes, const std::vector<Lum32f>& kernel, const char* which)
{
    for (std::size_t i = 0; i < kernel.size(); ++i) {
        K value;
        std::memcpy(&value, bytes + i * sizeof(K), sizeof value);
        EXPECT_EQ(static_cast<Lum32f>(value), kernel[i]) << which << " coefficient " << i;
    }
}

// The header stands at the address given, however odd it is, and the kernels follow at once.
TEST(SeparableInitQuick, RecordByteForByte)
{
    for (const Entry entry : kBothEntries) {
        for (const LumDataType kernelType : {lumType16s, lumType32f}) {
            for (std::size_t distance = 0; distance < 64; ++distance) {
                SCOPED_TRACE(testing::Message() << "kernel type " << kernelType << ", distance " << distance);
                const int channels = kChannels[distance % 3];
                Kernel kernel{kernelType, coefficients(static_cast<int>(1 + distance % 9), 3), coefficients(5, 700)};
                if (kernelType == lumType16s) {
                    kernel.divisor = distance % 2 == 0 ? -2 : 1000;
                    kernel.scaleFactor = distance % 3 == 0 ? -77 : 5;
                }
                const PlacedBlock block = makeRecord(entry, kernel, lumType8u, channels,
                                                     distance % 2 == 0 ? Guard::After : Guard::Before, distance);
                const Record record = readRecord(block.data());
                EXPECT_EQ(record.kernelType, kernelType == lumType16s ? 0 : 1);
                EXPECT_EQ(record.kernelWidth, static_cast<Lum32s>(kernel.x.size()));
                EXPECT_EQ(record.kernelHeight, static_cast<Lum32s>(kernel.y.size()));
                EXPECT_EQ(record.divisor, kernel.divisor);
                EXPECT_EQ(record.scaleFactor, kernel.scaleFactor);
                EXPECT_EQ(record.reserved[0], 0);
                EXPECT_EQ(record.reserved[1], 0);
                EXPECT_EQ(record.reserved[2], 0);
                const unsigned char* const x = block.data() + 64;
                const unsigned char* const y =
                    x + kernel.x.size() * static_cast<std::size_t>(coefficientBytes(kernelType));
                EXPECT_EQ(record.pKernelX, x);
                EXPECT_EQ(record.reservedPointer, nullptr);
                EXPECT_EQ(record.pKernelY, y);
                EXPECT_EQ(record.numChannels, channels);
                if (kernelType == lumType16s) {
                    expectKernelBytes<Lum16s>(x, kernel.x, "row");
                    expectKernelBytes<Lum16s>(y, kernel.y, "column");
                } else {
                    expectKernelBytes<Lum32f>(x, kernel.x, "row");
                    expectKernelBytes<Lum32f>(y, kernel.y, "column");
                }
            }
        }
    }
}

// Bits of coefficients are copied, whatever they mean as numbers.
TEST(SeparableInitQuick, FloatCoefficientsKeepTheirBits)
{
    const Lum32u patterns[] = {0x7f800001u, 0xffc12345u, 0x80000000u, 0x00000001u, 0x7f800000u, 0x12345678u};
    Lum32f kernel[6];
    std::memcpy(kernel, patterns, sizeof kernel);
    const PlacedBlock block(static_cast<std::size_t>(specSize({4, 2}, lumType32f)), Guard::After, 1);
    auto* const pSpec = reinterpret_cast<LumFilterSeparableSpec*>(block.data());
    ASSERT_EQ(lumiFilterSeparableInit_32f(kernel, kernel + 4, {4, 2}, lumType32f, 1, pSpec), lumOk);
    EXPECT_EQ(std::memcmp(block.data() + 64, patterns, sizeof patterns), 0);
}

template <class K>
struct InitArgs
{
    Entry entry;
    const K* pKernelX;
    const K* pKernelY;
    LumiSize kernelSize = {3, 2};
    Lum32s divisor = -2;
    LumDataType dataType = lumType8u;
    Lum32s channels = 4;
    const PlacedBlock* block;
    bool withBlock = true;

    LumStatus call() const
    {
        auto* const pSpec = withBlock ? reinterpret_cast<LumFilterSeparableSpec*>(block->data()) : nullptr;
        if constexpr (std::is_same_v<K, Lum16s>) {
            const auto init = entry == Entry::Large ? lumiFilterSeparableInit_16s_L : lumiFilterSeparableInit_16s;
            return init(pKernelX, pKernelY, kernelSize, divisor, 0, dataType, channels, pSpec);
        } else {
            const auto init = entry == Entry::Large ? lumiFilterSeparableInit_32f_L : lumiFilterSeparableInit_32f;
            return init(pKernelX, pKernelY, kernelSize, dataType, channels, pSpec);
        }
    }
    std::vector<Output> outputs() const
    {
        return {Output(block->data(), block->size())};
    }
};

template <class K>
std::vector<Violation<InitArgs<K>>> initOrder()
{
    using Args = InitArgs<K>;
    return {
        {"pKernelX null", lumErrNullPointer, [](Args& a) { a.pKernelX = nullptr; }},
        {"pKernelY null", lumErrNullPointer, [](Args& a) { a.pKernelY = nullptr; }},
        {"pSpec null", lumErrNullPointer, [](Args& a) { a.withBlock = false; }},
        {"width 0", lumErrSize, [](Args& a) { a.kernelSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.kernelSize.width = kIntMin; }},
        {"height 0", lumErrSize, [](Args& a) { a.kernelSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.kernelSize.height = -1; }},
        {"64f", lumErrDataType, [](Args& a) { a.dataType = lumType64f; }},
        {"type 0", lumErrDataType, [](Args& a) { a.dataType = 0; }},
        {"type -1", lumErrDataType, [](Args& a) { a.dataType = -1; }},
        {"channels 0", lumErrValue, [](Args& a) { a.channels = 0; }},
        {"channels 2", lumErrValue, [](Args& a) { a.channels = 2; }},
        {"channels 5", lumErrValue, [](Args& a) { a.channels = 5; }},
        {"channels -3", lumErrValue, [](Args& a) { a.channels = -3; }},
    };
}

TEST(SeparableInitQuick, IntegerKernelsChecksInOrder)
{
    using Args = InitArgs<Lum16s>;
    const Lum16s kernel[3] = {1, 2, 1};
    for (const Entry entry : kBothEntries) {
        const PlacedBlock block(static_cast<std::size_t>(specSize({3, 2}, lumType16s)));
        std::vector<Violation<Args>> order = initOrder<Lum16s>();
        const auto channels = order.begin() + 10;
        order.insert(channels, {{"16u", lumErrDataType, [](Args& a) { a.dataType = lumType16u; }},
                                {"32f", lumErrDataType, [](Args& a) { a.dataType = lumType32f; }}});
        order.push_back({"divisor 0", lumErrDivisor, [](Args& a) { a.divisor = 0; }});
        expectStatusOrder(Args{entry, kernel, kernel, {3, 2}, -2, lumType8u, 4, &block}, order);
        expectStatusOrder(Args{entry, kernel, kernel, {3, 2}, kIntMin, lumType16s, 1, &block}, order);
    }
}

// Among the images of float kernels there is no 16s.
TEST(SeparableInitQuick, FloatKernelsChecksInOrder)
{
    using Args = InitArgs<Lum32f>;
    const Lum32f kernel[3] = {1, 2, 1};
    for (const Entry entry : kBothEntries) {
        const PlacedBlock block(static_cast<std::size_t>(specSize({3, 2}, lumType32f)));
        std::vector<Violation<Args>> order = initOrder<Lum32f>();
        order.insert(order.begin() + 10, {"16s", lumErrDataType, [](Args& a) { a.dataType = lumType16s; }});
        for (const LumDataType dataType : {lumType8u, lumType16u, lumType32f}) {
            expectStatusOrder(Args{entry, kernel, kernel, {3, 2}, 1, dataType, 3, &block}, order);
        }
    }
}

struct BufferQuery
{
    Entry entry = Entry::Ordinary;
    LumiSizeL roiSize = {20, 10};
    LumiSize kernelSize = {3, 5};
    LumDataType dataType = lumType8u;
    LumDataType kernelType = lumType16s;
    Lum32s channels = 1;
    bool withResult = true;
    const PlacedBlock* result = nullptr;

    LumStatus call() const
    {
        if (entry == Entry::Large) {
            auto* const p = withResult ? reinterpret_cast<Lum64s*>(result->data()) : nullptr;
            return lumiFilterSeparableGetBufferSize_L(roiSize, kernelSize, dataType, kernelType, channels, p);
        }
        auto* const p = withResult ? reinterpret_cast<Lum32s*>(result->data()) : nullptr;
        const LumiSize size = {static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)};
        return lumiFilterSeparableGetBufferSize(size, kernelSize, dataType, kernelType, channels, p);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result->data(), result->size())};
    }
};

TEST(SeparableSizesQuick, BufferSize)
{
    for (const Entry entry : kBothEntries) {
        for (const LumDataType kernelType : {lumType16s, lumType32f}) {
            for (const LumDataType dataType : {lumType8u, lumType16u, lumType16s, lumType32f}) {
                for (const Lum32s channels : kChannels) {
                    for (const LumiSize kernelSize :
                         {LumiSize{1, 1}, LumiSize{3, 3}, LumiSize{5, 4}, LumiSize{2, 400}}) {
                        for (const LumiSizeL roiSize :
                             {LumiSizeL{1, 1}, LumiSizeL{7, kIntMax}, LumiSizeL{1920, 1080}, LumiSizeL{100001, 2}}) {
                            const PlacedBlock result = resultBlock(entry);
                            const BufferQuery query{entry,      roiSize,  kernelSize, dataType,
                                                    kernelType, channels, true,       &result};
                            ASSERT_EQ(query.call(), lumOk);
                            const Lum64s actual =
                                entry == Entry::Large ? readAs<Lum64s>(result) : readAs<Lum32s>(result);
                            EXPECT_EQ(actual,
                                      static_cast<Lum64s>(bufferSize(roiSize.width, kernelSize, kernelType, channels)));
                            EXPECT_TRUE(result.intact());
                        }
                    }
                }
            }
        }
    }
    Lum32s size = 0;
    ASSERT_EQ(lumiFilterSeparableGetBufferSize({20, 10}, {3, 5}, lumType8u, lumType16s, 3, &size), lumOk);
    EXPECT_EQ(size, 256 * 3 + 8 * 5 + 12 * (3 * 2 + 22 * 5));
}

// A total beyond 32 bits is refused by the ordinary query, also where its low 32 bits look small; the 64-bit query
// gives what 64 bits hold.
TEST(SeparableSizesQuick, BufferSizeTooLarge)
{
    struct Shape
    {
        Lum32s width;
        LumiSize kernel;
    };
    // the widest ROI whose scratch for one channel and a 16s kernel of one coefficient fits, and the next
    const auto widest = static_cast<Lum32s>((kLargest32 - 256 - 8 - 8) / 4);
    for (const Shape shape :
         {Shape{widest, {1, 1}}, Shape{widest + 1, {1, 1}}, Shape{kIntMax, {1, 1}}, Shape{1, {kIntMax, 1}},
          Shape{1, {1, kIntMax}}, Shape{kIntMax, {3, 3}}, Shape{0x40000000, {1, 4}}, Shape{0x10000000, {1, 64}},
          Shape{1, {0x40000000, 4}}, Shape{kIntMax, {kIntMax, 1}}, Shape{kIntMax, {1, 0x10000000}}}) {
        for (const Lum32s channels : kChannels) {
            for (const LumDataType kernelType : {lumType16s, lumType32f}) {
                SCOPED_TRACE(testing::Message() << shape.width << ", kernel " << shape.kernel.width << " x "
                                                << shape.kernel.height << ", channels " << channels);
                const Wide expected = bufferSize(shape.width, shape.kernel, kernelType, channels);
                const PlacedBlock result = resultBlock(Entry::Ordinary);
                const PlacedBlock before = result;
                const BufferQuery query{Entry::Ordinary, {shape.width, 1}, shape.kernel, lumType8u,
                                        kernelType,      channels,         true,         &result};
                if (expected > kLargest32) {
                    EXPECT_EQ(query.call(), lumErrSizeTooLarge);
                    EXPECT_EQ(std::memcmp(result.data(), before.data(), result.size()), 0);
                } else {
                    EXPECT_EQ(query.call(), lumOk);
                    EXPECT_EQ(readAs<Lum32s>(result), static_cast<Lum32s>(expected));
                }
                ASSERT_LE(expected, kLargest64);
                const PlacedBlock result64 = resultBlock(Entry::Large);
                const BufferQuery query64{Entry::Large, {shape.width, 1}, shape.kernel, lumType8u,
                                          kernelType,   channels,         true,         &result64};
                EXPECT_EQ(query64.call(), lumOk);
                EXPECT_EQ(readAs<Lum64s>(result64), static_cast<Lum64s>(expected));
            }
        }
    }
}

// What passes 64 bits is refused by both.
TEST(SeparableSizesQuick, BufferSizeBeyond64Bits)
{
    for (const Entry entry : kBothEntries) {
        for (const Lum32s channels : kChannels) {
            ASSERT_GT(bufferSize(kIntMax, {kIntMax, kIntMax}, lumType32f, channels), kLargest64);
            const PlacedBlock result = resultBlock(entry);
            const PlacedBlock before = result;
            const BufferQuery query{
                entry, {kIntMax, kIntMax}, {kIntMax, kIntMax}, lumType32f, lumType32f, channels, true, &result};
            EXPECT_EQ(query.call(), lumErrSizeTooLarge);
            EXPECT_EQ(std::memcmp(result.data(), before.data(), result.size()), 0);
        }
    }
}

TEST(SeparableSizesQuick, BufferSizeChecksInOrder)
{
    using Q = BufferQuery;
    for (const Entry entry : kBothEntries) {
        const PlacedBlock result = resultBlock(entry);
        std::vector<Violation<Q>> order = {
            {"no result", lumErrNullPointer, [](Q& q) { q.withResult = false; }},
            {"width 0", lumErrSize, [](Q& q) { q.roiSize.width = 0; }},
            {"width negative", lumErrSize, [](Q& q) { q.roiSize.width = kIntMin; }},
            {"height 0", lumErrSize, [](Q& q) { q.roiSize.height = 0; }},
            {"height negative", lumErrSize, [](Q& q) { q.roiSize.height = -1; }},
            {"kernel width 0", lumErrSize, [](Q& q) { q.kernelSize.width = 0; }},
            {"kernel width negative", lumErrSize, [](Q& q) { q.kernelSize.width = kIntMin; }},
            {"kernel height 0", lumErrSize, [](Q& q) { q.kernelSize.height = 0; }},
            {"kernel height negative", lumErrSize, [](Q& q) { q.kernelSize.height = -1; }},
            {"image of 64f", lumErrDataType, [](Q& q) { q.dataType = lumType64f; }},
            {"image of type 0", lumErrDataType, [](Q& q) { q.dataType = 0; }},
            {"image of type -1", lumErrDataType, [](Q& q) { q.dataType = -1; }},
            {"kernel of 8u", lumErrDataType, [](Q& q) { q.kernelType = lumType8u; }},
            {"kernel of 16u", lumErrDataType, [](Q& q) { q.kernelType = lumType16u; }},
            {"kernel of 64f", lumErrDataType, [](Q& q) { q.kernelType = lumType64f; }},
            {"channels 0", lumErrValue, [](Q& q) { q.channels = 0; }},
            {"channels 2", lumErrValue, [](Q& q) { q.channels = 2; }},
            {"channels 5", lumErrValue, [](Q& q) { q.channels = 5; }},
        };
        if (entry == Entry::Ordinary) {
            order.push_back({"too large", lumErrSizeTooLarge,
                             [](Q& q) { q.roiSize.width = q.roiSize.width < 1 ? q.roiSize.width : kIntMax; }});
        }
        expectStatusOrder(Q{entry, {20, 10}, {3, 5}, lumType8u, lumType16s, 4, true, &result}, order);
    }
}

TEST(SeparableSizesQuick, BufferSizeOfA64BitRoi)
{
    for (const LumiSizeL roiSize : {LumiSizeL{Lum64s{1} << 31, 1}, LumiSizeL{1, Lum64s{1} << 31},
                                    LumiSizeL{std::numeric_limits<Lum64s>::max(), 1}}) {
        const PlacedBlock result = resultBlock(Entry::Large);
        const PlacedBlock before = result;
        BufferQuery query{Entry::Large, roiSize, {3, 5}, lumType8u, lumType16s, 1, true, &result};
        EXPECT_EQ(query.call(), lumErrSizeTooLarge);
        EXPECT_EQ(std::memcmp(result.data(), before.data(), result.size()), 0);
        query.withResult = false;
        EXPECT_EQ(query.call(), lumErrNullPointer);
    }
    // a negative width does not become large in 64 bits
    const PlacedBlock result = resultBlock(Entry::Large);
    const BufferQuery query{
        Entry::Large, {std::numeric_limits<Lum64s>::min(), 1}, {3, 5}, lumType8u, lumType16s, 1, true, &result};
    EXPECT_EQ(query.call(), lumErrSize);
}

}  // namespace
}  // namespace lumcv::test::separable
