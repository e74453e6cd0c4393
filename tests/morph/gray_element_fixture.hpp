// The exports of gray-element morphology by type and form, elements drawn for tests, and records in blocks of exactly
// their size.
#pragma once

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <string>
#include <vector>

#include "lumcv/lumcv.h"
#include "morph/gray_element_reference.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::gray {

template <class T>
struct Exports;

template <>
struct Exports<Lum8u>
{
    static constexpr auto getSize = lumiMorphGrayGetSize_8u_C1R;
    static constexpr auto init = lumiMorphGrayInit_8u_C1R;
    static constexpr auto dilate = lumiGrayDilateBorder_8u_C1R;
    static constexpr auto erode = lumiGrayErodeBorder_8u_C1R;
};

template <>
struct Exports<Lum32f>
{
    static constexpr auto getSize = lumiMorphGrayGetSize_32f_C1R;
    static constexpr auto init = lumiMorphGrayInit_32f_C1R;
    static constexpr auto dilate = lumiGrayDilateBorder_32f_C1R;
    static constexpr auto erode = lumiGrayErodeBorder_32f_C1R;
};

/// A pixel type and one of the two operations, for typed tests.
template <class Pixel, Form operation>
struct Case
{
    using T = Pixel;
    static constexpr Form form = operation;

    static LumStatus apply(const T* pSrc, int srcStep, T* pDst, int dstStep, LumiSize roiSize,
                           LumiBorderType borderType, const LumiMorphGrayRecord* pState)
    {
        if constexpr (operation == Form::Dilate) {
            return Exports<T>::dilate(pSrc, srcStep, pDst, dstStep, roiSize, borderType, pState);
        } else {
            return Exports<T>::erode(pSrc, srcStep, pDst, dstStep, roiSize, borderType, pState);
        }
    }
};

using Cases = testing::Types<Case<Lum8u, Form::Dilate>, Case<Lum8u, Form::Erode>, Case<Lum32f, Form::Dilate>,
                             Case<Lum32f, Form::Erode>>;

struct CaseName
{
    template <class C>
    static std::string GetName(int)
    {
        return std::string(C::form == Form::Dilate ? "Dilate" : "Erode") + (sizeof(typename C::T) == 1 ? "8u" : "32f");
    }
};

/// The bytes of a record.
inline std::size_t recordBytes(LumiSize elementSize)
{
    return static_cast<std::size_t>(elementSize.width) * static_cast<std::size_t>(elementSize.height) * 4 + 32;
}

/// A record that Init laid into a block of exactly its size, for ROIs up to the given size.
template <class T>
class Record
{
  public:
    Record(const Element<T>& element, LumiSize roiSize, Guard guard = Guard::After, std::size_t distance = 0)
        : block_(recordBytes(element.size), guard, distance)
    {
        EXPECT_EQ(Exports<T>::init(state(), roiSize, element.entries.data(), element.size, element.anchor), lumOk);
        EXPECT_TRUE(block_.intact());
    }
    LumiMorphGrayRecord* state() const
    {
        return reinterpret_cast<LumiMorphGrayRecord*>(block_.data());
    }
    const PlacedBlock& block() const
    {
        return block_;
    }

  private:
    PlacedBlock block_;
};

/// Which entries an element has.
enum class Entries
{
    Small,     ///< most sums stay within the range of bytes
    Wide,      ///< most sums leave it
    Extreme,   ///< bytes: the ends of 32 bits and of 8 bits among them; floats: up to the largest, which overflow
    NonFinite  ///< floats: infinities and not-a-numbers among them; bytes: as Extreme
};

template <class T>
Entry<T> drawEntry(Entries entries, Random& random)
{
    const bool special = random.oneIn(3);
    if constexpr (std::is_same_v<T, Lum32f>) {
        if (special && (entries == Entries::Extreme || entries == Entries::NonFinite)) {
            return random.value<Lum32f>(entries == Entries::Extreme ? Values::Extreme : Values::NonFinite);
        }
        return random.value<Lum32f>(Values::Ordinary) * (entries == Entries::Small ? 0.03125f : 4.0f);
    } else {
        const Lum32s choices[] = {
            INT_MIN, INT_MIN + 1, INT_MIN + 254, INT_MIN + 255, INT_MIN + 256, -65536,        -32768,      -257,
            -256,    -255,        -254,          -129,          -128,          -127,          -1,          0,
            1,       127,         128,           129,           254,           255,           256,         257,
            32767,   32768,       65536,         INT_MAX - 256, INT_MAX - 255, INT_MAX - 254, INT_MAX - 1, INT_MAX};
        if (special && (entries == Entries::Extreme || entries == Entries::NonFinite)) {
            return choices[random.between(0, std::ssize(choices) - 1)];
        }
        const int limit = entries == Entries::Small ? 20 : 400;
        return static_cast<Lum32s>(random.between(-limit, limit));
    }
}

template <class T>
Element<T> drawElement(LumiSize size, LumiPoint anchor, Entries entries, Random& random)
{
    Element<T> element{size, anchor, {}};
    for (int i = 0; i < size.width * size.height; ++i) {
        element.entries.push_back(drawEntry<T>(entries, random));
    }
    return element;
}

/// One kind of pixels as often as another.
inline Values drawValues(Random& random)
{
    const Values values[] = {Values::Ordinary, Values::Extreme, Values::NonFinite};
    return values[random.between(0, 2)];
}

/// Draws an element at the given size and an anchor anywhere within it.
template <class T>
Element<T> drawElement(LumiSize size, Entries entries, Random& random)
{
    const LumiPoint anchor = {static_cast<Lum32s>(random.between(0, size.width - 1)),
                              static_cast<Lum32s>(random.between(0, size.height - 1))};
    return drawElement<T>(size, anchor, entries, random);
}

/// The corners of an element, without repetition of those that coincide, and its middle.
inline std::vector<LumiPoint> outermostAnchors(LumiSize size)
{
    std::vector<LumiPoint> anchors = {{0, 0}};
    if (size.width > 1) {
        anchors.push_back({size.width - 1, 0});
    }
    if (size.height > 1) {
        anchors.push_back({0, size.height - 1});
    }
    if (size.width > 1 && size.height > 1) {
        anchors.push_back({size.width - 1, size.height - 1});
        anchors.push_back({size.width / 2, size.height / 2});
    }
    return anchors;
}

/// Runs an element over an image.
template <class C>
testing::AssertionResult applied(const Element<typename C::T>& element, const Image<typename C::T>& source,
                                 Image<typename C::T>& destination)
{
    const LumiSize roiSize = {source.width(), source.height()};
    const Record<typename C::T> record(element, roiSize);
    const LumStatus status = C::apply(source.pixels(), source.step(), destination.pixels(), destination.step(), roiSize,
                                      lumBorderReplicate, record.state());
    if (const testing::AssertionResult intact = record.block().intact(); !intact) {
        return intact;
    }
    return (status == lumOk ? testing::AssertionSuccess() : testing::AssertionFailure())
           << element << ": status " << status;
}

/// Runs an element over an image and compares with the reference.
template <class C>
void expectReference(const Element<typename C::T>& element, const Image<typename C::T>& source,
                     Image<typename C::T>& destination)
{
    using T = typename C::T;
    const Image<T> sourceBefore = source;
    ASSERT_TRUE(applied<C>(element, source, destination));
    EXPECT_TRUE(sameImage(reference<T>(C::form, element, source, {source.width(), source.height()}), destination))
        << element;
    EXPECT_TRUE(destination.gapsIntact()) << element;
    EXPECT_TRUE(sameBytes(sourceBefore, source)) << element << ": the source was written";
}

}  // namespace lumcv::test::gray
