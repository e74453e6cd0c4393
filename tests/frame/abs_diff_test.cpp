// Absolute differences of two images and of an image and a constant.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv/lumcv.h"
#include "overlap.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"

namespace lumcv::test {
namespace {

// A constant is a signed 32-bit number for integers and a float for floats.
template <class T>
using Constant = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum32s>;

template <class T>
struct Operands
{
    const T* pSrc1 = nullptr;
    Lum32s src1Step = 0;
    const T* pSrc2 = nullptr;
    Lum32s src2Step = 0;
    T* pDst = nullptr;
    Lum32s dstStep = 0;
    LumiSize roiSize = {0, 0};
    Constant<T> value = 0;
};

template <class T>
struct Export
{
    std::string name;
    int channels;
    bool twoSources;
    std::function<LumStatus(const Operands<T>&)> call;
};

template <class T>
Export<T> ofTwo(const char* name, int channels,
                LumStatus (*f)(const T*, Lum32s, const T*, Lum32s, T*, Lum32s, LumiSize))
{
    return {name, channels, true, [f](const Operands<T>& o) {
                return f(o.pSrc1, o.src1Step, o.pSrc2, o.src2Step, o.pDst, o.dstStep, o.roiSize);
            }};
}

template <class T>
Export<T> withConstant(const char* name, LumStatus (*f)(const T*, Lum32s, T*, Lum32s, LumiSize, Constant<T>))
{
    return {name, 1, false,
            [f](const Operands<T>& o) { return f(o.pSrc1, o.src1Step, o.pDst, o.dstStep, o.roiSize, o.value); }};
}

template <class T>
std::vector<Export<T>> allExports();

template <>
std::vector<Export<Lum8u>> allExports()
{
    return {ofTwo("lumiAbsDiff_8u_C1R", 1, lumiAbsDiff_8u_C1R), ofTwo("lumiAbsDiff_8u_C3R", 3, lumiAbsDiff_8u_C3R),
            withConstant("lumiAbsDiffC_8u_C1R", lumiAbsDiffC_8u_C1R)};
}

template <>
std::vector<Export<Lum16u>> allExports()
{
    return {ofTwo("lumiAbsDiff_16u_C1R", 1, lumiAbsDiff_16u_C1R),
            withConstant("lumiAbsDiffC_16u_C1R", lumiAbsDiffC_16u_C1R)};
}

template <>
std::vector<Export<Lum32f>> allExports()
{
    return {ofTwo("lumiAbsDiff_32f_C1R", 1, lumiAbsDiff_32f_C1R),
            withConstant("lumiAbsDiffC_32f_C1R", lumiAbsDiffC_32f_C1R)};
}

template <class T>
T difference(T a, Constant<T> b)
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        return std::fabs(a - b);
    } else {
        const Lum32s clamped = std::clamp<Lum32s>(b, 0, std::numeric_limits<T>::max());
        return static_cast<T>(std::abs(Lum32s{a} - clamped));
    }
}

template <class T>
T* rowAt(T* base, Lum32s step, int y)
{
    using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(base) + static_cast<std::ptrdiff_t>(y) * step);
}

template <class T>
void reference(const Export<T>& e, const Operands<T>& o)
{
    for (int y = 0; y < o.roiSize.height; ++y) {
        for (int i = 0; i < o.roiSize.width * e.channels; ++i) {
            const T s1 = rowAt(o.pSrc1, o.src1Step, y)[i];
            const Constant<T> s2 = e.twoSources ? rowAt(o.pSrc2, o.src2Step, y)[i] : o.value;
            rowAt(o.pDst, o.dstStep, y)[i] = difference<T>(s1, s2);
        }
    }
}

template <class T>
struct Scene
{
    Image<T> source1;
    Image<T> source2;
    Image<T> destination;

    Scene(const Geometry& geometry, int channels)
        : source1(geometry.layout<T>(0, channels)),
          source2(geometry.layout<T>(1, channels)),
          destination(geometry.layout<T>(2, channels))
    {
    }

    Operands<T> operands(Constant<T> value)
    {
        return {source1.pixels(),
                source1.step(),
                source2.pixels(),
                source2.step(),
                destination.pixels(),
                destination.step(),
                {source1.width(), source1.height()},
                value};
    }
};

template <class T>
std::vector<Constant<T>> constants()
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
        return {
            0,     -0.0f, 1.5f, -300.25f, 3e38f, -3e38f, infinity, -infinity, std::numeric_limits<Lum32f>::quiet_NaN(),
            1e-40f};
    } else {
        return {0,         1,     -1,    -5,    100,   127,   128,   254,    255,     256,
                300,       32767, 32768, 65534, 65535, 65536, 70000, -65536, 0x10001, -2147483647 - 1,
                2147483647};
    }
}

// Even a not-a-number comes out with a clear sign bit.
template <class T>
void expectNoSign(const Image<T>& image)
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                EXPECT_FALSE(std::signbit(image.at(x, y)))
                    << "pixel x " << x << ", y " << y << ": got " << elementText(image.at(x, y));
            }
        }
    }
}

template <class T>
void sweepAgainstReference(Sweep sweep)
{
    const std::vector<Constant<T>> values = constants<T>();
    for (const Export<T>& e : allExports<T>()) {
        SCOPED_TRACE(e.name);
        forEachGeometry(sweep, [&](const Geometry& geometry) {
            Random random(static_cast<std::uint64_t>(geometry.number));
            const Values kinds[] = {Values::Ordinary, Values::Extreme, Values::NonFinite};
            Scene<T> scene(geometry, e.channels);
            fill(scene.source1, random, kinds[geometry.number % 3]);
            fill(scene.source2, random, kinds[geometry.number / 3 % 3]);
            const Constant<T> value = values[static_cast<std::size_t>(geometry.number) % values.size()];

            const Scene<T> before = scene;
            Scene<T> expected = scene;
            reference(e, expected.operands(value));
            ASSERT_EQ(e.call(scene.operands(value)), lumOk);
            EXPECT_TRUE(sameImage(expected.destination, scene.destination)) << "value " << value;
            expectNoSign(scene.destination);
            EXPECT_TRUE(scene.destination.gapsIntact());
            EXPECT_TRUE(sameBytes(before.source1, scene.source1)) << "source 1 was written";
            EXPECT_TRUE(sameBytes(before.source2, scene.source2)) << "source 2 was written";
        });
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

TEST(AbsDiff, AgreesWithTheReference8u)
{
    sweepAgainstReference<Lum8u>(Sweep::Full);
}

TEST(AbsDiff, AgreesWithTheReference16u)
{
    sweepAgainstReference<Lum16u>(Sweep::Full);
}

TEST(AbsDiff, AgreesWithTheReference32f)
{
    sweepAgainstReference<Lum32f>(Sweep::Full);
}

TEST(AbsDiffQuick, AgreesWithTheReference)
{
    sweepAgainstReference<Lum8u>(Sweep::Quick);
    sweepAgainstReference<Lum16u>(Sweep::Quick);
    sweepAgainstReference<Lum32f>(Sweep::Quick);
}

TEST(AbsDiffQuick, AllPairsOfBytes)
{
    Image<Lum8u> a({.width = 256, .height = 256}), b({.width = 256, .height = 256}), d({.width = 256, .height = 256});
    a.forEach(Area::Roi, [](Lum8u& element, int x, int, int) { element = static_cast<Lum8u>(x); });
    b.forEach(Area::Roi, [](Lum8u& element, int, int y, int) { element = static_cast<Lum8u>(y); });
    ASSERT_EQ(lumiAbsDiff_8u_C1R(a.pixels(), a.step(), b.pixels(), b.step(), d.pixels(), d.step(), {256, 256}), lumOk);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            ASSERT_EQ(d.at(x, y), std::abs(x - y)) << "bytes " << x << " and " << y;
        }
    }
}

TEST(AbsDiffQuick, AllBytesAgainstAllConstants)
{
    Image<Lum8u> a({.width = 256}), d({.width = 256});
    a.forEach(Area::Roi, [](Lum8u& element, int x, int, int) { element = static_cast<Lum8u>(x); });
    for (int value = -3; value <= 258; ++value) {
        ASSERT_EQ(lumiAbsDiffC_8u_C1R(a.pixels(), 256, d.pixels(), 256, {256, 1}, value), lumOk);
        for (int x = 0; x < 256; ++x) {
            ASSERT_EQ(d.at(x, 0), std::abs(x - std::clamp(value, 0, 255))) << "byte " << x << ", value " << value;
        }
    }
}

TEST(AbsDiffQuick, ConstantsAreClampedToTheType)
{
    std::vector<Lum8u> bytes(200);
    std::vector<Lum16u> words(200);
    for (int i = 0; i < 200; ++i) {
        bytes[static_cast<std::size_t>(i)] = static_cast<Lum8u>(i * 5 / 4);
        words[static_cast<std::size_t>(i)] = static_cast<Lum16u>(i * 329);
    }
    std::vector<Lum8u> bytesOut(200), bytesClamped(200);
    std::vector<Lum16u> wordsOut(200), wordsClamped(200);
    const auto compare = [&](Lum32s value, Lum32s byteLimit, Lum32s wordLimit) {
        EXPECT_EQ(lumiAbsDiffC_8u_C1R(bytes.data(), 200, bytesOut.data(), 200, {200, 1}, value), lumOk);
        EXPECT_EQ(lumiAbsDiffC_8u_C1R(bytes.data(), 200, bytesClamped.data(), 200, {200, 1}, byteLimit), lumOk);
        EXPECT_EQ(bytesOut, bytesClamped) << "value " << value;
        EXPECT_EQ(lumiAbsDiffC_16u_C1R(words.data(), 400, wordsOut.data(), 400, {200, 1}, value), lumOk);
        EXPECT_EQ(lumiAbsDiffC_16u_C1R(words.data(), 400, wordsClamped.data(), 400, {200, 1}, wordLimit), lumOk);
        EXPECT_EQ(wordsOut, wordsClamped) << "value " << value;
    };
    compare(300, 255, 300);
    compare(-5, 0, 0);
    compare(70000, 255, 65535);
    compare(std::numeric_limits<Lum32s>::max(), 255, 65535);
    compare(std::numeric_limits<Lum32s>::min(), 0, 0);
}

template <class T>
void tryInPlace()
{
    for (const Export<T>& e : allExports<T>()) {
        SCOPED_TRACE(e.name);
        forEachGeometry(Sweep::Full, [&](const Geometry& geometry) {
            Random random(static_cast<std::uint64_t>(geometry.number));
            Scene<T> scene(geometry, e.channels);
            fill(scene.source1, random, Values::Extreme);
            fill(scene.source2, random, Values::Extreme);
            const Constant<T> value = constants<T>()[static_cast<std::size_t>(geometry.number) % constants<T>().size()];
            Scene<T> expected = scene;
            reference(e, expected.operands(value));

            Scene<T> onFirst = scene;
            Operands<T> o = onFirst.operands(value);
            o.pDst = onFirst.source1.pixels();
            o.dstStep = onFirst.source1.step();
            ASSERT_EQ(e.call(o), lumOk);
            EXPECT_TRUE(sameImage(expected.destination, onFirst.source1)) << "onto source 1";
            EXPECT_TRUE(onFirst.source1.gapsIntact());
            if (!e.twoSources) {
                return;
            }
            Scene<T> onSecond = scene;
            o = onSecond.operands(value);
            o.pDst = onSecond.source2.pixels();
            o.dstStep = onSecond.source2.step();
            ASSERT_EQ(e.call(o), lumOk);
            EXPECT_TRUE(sameImage(expected.destination, onSecond.source2)) << "onto source 2";
            EXPECT_TRUE(onSecond.source2.gapsIntact());

            Scene<T> onBoth = scene;
            o = onBoth.operands(value);
            o.pSrc2 = o.pSrc1;
            o.src2Step = o.src1Step;
            o.pDst = onBoth.source1.pixels();
            o.dstStep = o.src1Step;
            ASSERT_EQ(e.call(o), lumOk);
            Image<T> zero(geometry.layout<T>(0, e.channels));
            zero.forEach(Area::Roi, [](T& element, int, int, int) { element = 0; });
            EXPECT_TRUE(sameImage(zero, onBoth.source1)) << "an image minus itself";
        });
    }
}

TEST(AbsDiff, ExactlyInPlace)
{
    tryInPlace<Lum8u>();
    tryInPlace<Lum16u>();
    tryInPlace<Lum32f>();
}

Operands<Lum32f> operandsIn(float* block, const Arrangement& arrangement)
{
    return {block + arrangement.source1.begin,
            arrangement.source1.stride * 4,
            block + arrangement.source2.begin,
            arrangement.source2.stride * 4,
            block + arrangement.destination.begin,
            arrangement.destination.stride * 4,
            arrangement.roiSize,
            0.125f};
}

TEST(AbsDiff, OverlappingOperandsFollowTheOrderOfPixels)
{
    for (const Export<Lum32f>& e : allExports<Lum32f>()) {
        SCOPED_TRACE(e.name);
        forEachOverlap([&](const Arrangement& arrangement) {
            expectSameBlock(
                arrangement, [&](float* block) { EXPECT_EQ(e.call(operandsIn(block, arrangement)), lumOk); },
                [&](float* block) { reference(e, operandsIn(block, arrangement)); });
        });
    }
}

TEST(AbsDiffQuick, SpecialFloats)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    constexpr Lum32f largest = std::numeric_limits<Lum32f>::max();
    constexpr Lum32f smallest = std::numeric_limits<Lum32f>::denorm_min();
    struct Case
    {
        Lum32f a, b, expected;
    };
    const Case cases[] = {{0.0f, -0.0f, 0.0f},
                          {-0.0f, 0.0f, 0.0f},
                          {-0.0f, -0.0f, 0.0f},
                          {infinity, 1, infinity},
                          {1, infinity, infinity},
                          {infinity, -infinity, infinity},
                          {infinity, infinity, nan},
                          {-infinity, -infinity, nan},
                          {nan, 1, nan},
                          {1, -nan, nan},
                          {-nan, -nan, nan},
                          {largest, -largest, infinity},
                          {smallest, 0, smallest},
                          {0, smallest, smallest},
                          {-smallest, smallest, 2 * smallest}};
    for (const Case& c : cases) {
        for (const int width : {1, 3, 8, 29}) {
            const auto count = static_cast<std::size_t>(width);
            const std::vector<Lum32f> a(count, c.a), b(count, c.b);
            std::vector<Lum32f> two(count), one(count);
            ASSERT_EQ(lumiAbsDiff_32f_C1R(a.data(), 4 * width, b.data(), 4 * width, two.data(), 4 * width, {width, 1}),
                      lumOk);
            ASSERT_EQ(lumiAbsDiffC_32f_C1R(a.data(), 4 * width, one.data(), 4 * width, {width, 1}, c.b), lumOk);
            for (std::size_t i = 0; i < count; ++i) {
                EXPECT_TRUE(sameElement(c.expected, two[i]) && !std::signbit(two[i]))
                    << "|" << c.a << " - " << c.b << "|: got " << elementText(two[i]) << " at " << i << " of " << width;
                EXPECT_TRUE(sameElement(c.expected, one[i]) && !std::signbit(one[i]))
                    << "|" << c.a << " - " << c.b << "| with a constant: got " << elementText(one[i]) << " at " << i
                    << " of " << width;
            }
        }
    }
}

// Argument checks.

template <class T>
struct Args : Operands<T>
{
    const Export<T>* tested = nullptr;
    const Image<T>* destination = nullptr;

    LumStatus call() const
    {
        return tested->call(*this);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

template <class T>
void expectDocumentedOrder(const Export<T>& e)
{
    SCOPED_TRACE(e.name);
    using A = Args<T>;
    using Checks = std::vector<Violation<A>>;
    constexpr int size = sizeof(T);
    const int row = 5 * e.channels * size;

    Checks nulls = {
        {"pSrc1 null", lumErrNullPointer, [](A& a) { a.pSrc1 = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
    };
    const Checks sizes = {
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"width -7", lumErrSize, [](A& a) { a.roiSize.width = -7; }},
        {"height -1", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
    };
    Checks widths = {
        {"src1Step one element short", lumErrStep, [=](A& a) { a.src1Step = row - size; }},
        {"src1Step one byte short", lumErrStep, [=](A& a) { a.src1Step = row - 1; }},
        {"src1Step 0", lumErrStep, [](A& a) { a.src1Step = 0; }},
        {"src1Step negative", lumErrStep, [=](A& a) { a.src1Step = -row; }},
        {"dstStep one element short", lumErrStep, [=](A& a) { a.dstStep = row - size; }},
        {"dstStep one byte short", lumErrStep, [=](A& a) { a.dstStep = row - 1; }},
        {"dstStep negative", lumErrStep, [=](A& a) { a.dstStep = -row; }},
    };
    Checks alignments;
    if (size > 1) {
        alignments = {
            {"src1Step odd", lumErrStepAlignment, [=](A& a) { a.src1Step = row + 1; }},
            {"dstStep odd", lumErrStepAlignment, [=](A& a) { a.dstStep = row + 1; }},
        };
    }
    if (size > 2) {
        alignments.push_back({"src1Step off by two", lumErrStepAlignment, [=](A& a) { a.src1Step = row + 2; }});
        alignments.push_back({"dstStep off by three", lumErrStepAlignment, [=](A& a) { a.dstStep = row + 3; }});
    }
    if (e.twoSources) {
        nulls.push_back({"pSrc2 null", lumErrNullPointer, [](A& a) { a.pSrc2 = nullptr; }});
        widths.push_back({"src2Step one element short", lumErrStep, [=](A& a) { a.src2Step = row - size; }});
        widths.push_back({"src2Step negative", lumErrStep, [=](A& a) { a.src2Step = -row; }});
        if (size > 1) {
            alignments.push_back({"src2Step odd", lumErrStepAlignment, [=](A& a) { a.src2Step = row + 1; }});
        }
    }
    Checks table = nulls;
    for (const Checks& next : {sizes, widths, alignments}) {
        table.insert(table.end(), next.begin(), next.end());
    }

    Geometry geometry;
    geometry.width = 5;
    geometry.height = 3;
    Scene<T> scene(geometry, e.channels);
    Random random;
    fill(scene.source1, random);
    fill(scene.source2, random);
    Args<T> valid;
    static_cast<Operands<T>&>(valid) = scene.operands(1);
    valid.tested = &e;
    valid.destination = &scene.destination;
    expectStatusOrder(valid, table);
}

template <class T>
void expectDocumentedOrderOfAll()
{
    for (const Export<T>& e : allExports<T>()) {
        expectDocumentedOrder(e);
    }
}

TEST(AbsDiffQuick, ChecksInDocumentedOrder)
{
    expectDocumentedOrderOfAll<Lum8u>();
    expectDocumentedOrderOfAll<Lum16u>();
    expectDocumentedOrderOfAll<Lum32f>();
}

TEST(AbsDiffQuick, ByteStridesNeedNoAlignment)
{
    Image<Lum8u> a({.width = 5, .height = 3, .gap = 2}), b({.width = 5, .height = 3, .gap = 4}),
        d({.width = 5, .height = 3, .gap = 6});
    Random random;
    fill(a, random);
    fill(b, random);
    ASSERT_EQ(lumiAbsDiff_8u_C1R(a.pixels(), 7, b.pixels(), 9, d.pixels(), 11, {5, 3}), lumOk);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            EXPECT_EQ(d.at(x, y), std::abs(a.at(x, y) - b.at(x, y))) << "x " << x << ", y " << y;
        }
    }
    EXPECT_TRUE(d.gapsIntact());
}

}  // namespace
}  // namespace lumcv::test
