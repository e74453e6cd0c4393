// Dilation and erosion compared with the reference: all shapes of elements, all borders, all widths, all forms.
#include "morph/morph_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

TYPE_SUITE(SinglePass, AllForms, FormName);

TYPE_SUITE(SinglePassQuick, AllForms, FormName);

/// Dilation and erosion and both generations in turn.
Setting inTurn(const StructuringElement& element, int width, int height, int number)
{
    Setting s;
    s.operation = kSinglePasses[number % 2];
    s.generation = kGenerations[number / 2 % 2];
    s.element = element;
    s.width = width;
    s.height = height;
    s.seed = number;
    s.border = borderFor(s, number);
    return placed(s);
}

TYPE_TEST(SinglePassQuick, MatchesTheReference)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element :
         {rectangle(3, 3), rectangle(5, 5), rectangle(4, 2), disc(3), disc(5), disc(7), cross(3, 3, 1, 1),
          cross(5, 5, 3, 1), ellipse(9, 7), scattered(5, 5, 40, 3), emptyElement(3, 3), rectangle(1, 1)}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{5, 3}, LumiSize{37, 12}, LumiSize{70, 9}}) {
            expectMorphology<TypeParam>(inTurn(element, size.width, size.height, number++));
        }
        ++number;
    }
}

TYPE_TEST(SinglePass, EveryElement)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : elementsOfEveryShape()) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 9}, LumiSize{12, 1}, LumiSize{19, 14}, LumiSize{45, 11},
                                    LumiSize{19, 15}, LumiSize{68, 23}}) {
            expectMorphology<TypeParam>(inTurn(element, size.width, size.height, number++));
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

// Every mode with every combination of sides in memory, on images below and above the element.
TYPE_TEST(SinglePass, EveryBorder)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : {rectangle(3, 3), disc(5), scattered(6, 4, 40, 5), rectangle(7, 1)}) {
        for (LumiBorderType border = 0; border < 256; ++border) {
            if (border != lumBorderInMem && !isMorphMode(border & 15)) {
                continue;
            }
            const LumiSize sizes[] = {{1, 1}, {4, 2}, {23, 9}, {2, 7}};
            for (int i = 0; i < 2; ++i) {
                const LumiSize size = sizes[(number / 2 + i * 2) % 4];
                Setting s = inTurn(element, size.width, size.height, number++);
                s.border = border;
                expectMorphology<TypeParam>(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
            ++number;
        }
    }
}

TYPE_TEST(SinglePass, EveryWidth)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element :
         {rectangle(3, 3), rectangle(5, 3), rectangle(2, 2), rectangle(9, 9), disc(3), disc(5), disc(7),
          cross(3, 3, 1, 1), cross(5, 5, 2, 2), ellipse(7, 5), scattered(5, 3, 50, 7)}) {
        for (const int width : {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 15, 16, 17, 18, 19,
                                21, 22, 24, 31, 32, 33, 34, 43, 47, 48, 49, 50, 63, 64, 65, 66, 67}) {
            const int height = 1 + number * 5 % 7;
            expectMorphology<TypeParam>(inTurn(element, width, height, number++));
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

TYPE_TEST(SinglePass, WideRows)
{
    int number = firstNumber<TypeParam>();
    for (const int width : {95, 96, 97, 127, 128, 129, 130, 191, 193, 255, 256, 257, 258, 259, 260, 1100}) {
        for (const StructuringElement& element :
             {rectangle(3, 3), rectangle(15, 15), rectangle(33, 1), disc(7), cross(7, 7, 3, 3), ellipse(9, 9)}) {
            expectMorphology<TypeParam>(inTurn(element, width, 1 + number % 4, number));
            ++number;
        }
        ++number;
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

// Spans whose maxima could be formed by doubling: every length, along both axes.
TYPE_TEST(SinglePass, EveryRectangle)
{
    int number = firstNumber<TypeParam>();
    for (int side = 1; side <= 34; ++side) {
        for (const LumiSize size : {LumiSize{side, 1}, LumiSize{1, side}, LumiSize{side, 3}, LumiSize{2, side},
                                    LumiSize{side, side / 4 + 2}}) {
            expectMorphology<TypeParam>(inTurn(rectangle(size.width, size.height), 41, 20, number++));
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

TYPE_TEST(SinglePass, EveryHeight)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : {rectangle(3, 3), rectangle(5, 5), rectangle(3, 8), disc(5), disc(7),
                                              cross(5, 5, 2, 2), ellipse(3, 9), scattered(4, 5, 50, 11)}) {
        for (int height = 1; height <= 14; ++height) {
            expectMorphology<TypeParam>(inTurn(element, 21, height, number++));
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
        ++number;
    }
}

TYPE_TEST(SinglePass, ElementsLargerThanTheImage)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : {rectangle(21, 21), rectangle(64, 3), rectangle(3, 50), ellipse(30, 23),
                                              scattered(19, 25, 3, 13), cross(17, 17, 4, 12), rectangle(40, 1)}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 3}, LumiSize{17, 5}, LumiSize{20, 20}, LumiSize{21, 21},
                                    LumiSize{22, 22}, LumiSize{5, 60}}) {
            for (int i = 0; i < 2; ++i) {
                expectMorphology<TypeParam>(inTurn(element, size.width, size.height, number));
                number += 3;
            }
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

// A record and a block of scratch serve every ROI that is not larger than the one queried for, also those that leave
// the bands of the large image: an ROI narrower or lower than the element, in a block that is made for bands.
TYPE_TEST(SinglePass, SmallerRoiInTheSameBlocks)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element :
         {rectangle(3, 3), rectangle(9, 5), rectangle(15, 1), rectangle(1, 15), rectangle(8, 8), disc(7),
          cross(7, 7, 1, 5), ellipse(11, 9), scattered(9, 9, 20, 17)}) {
        for (const LumiSize queried : {LumiSize{50, 40}, LumiSize{element.width | 1, 30},
                                       LumiSize{30, element.height | 1}, LumiSize{(element.width | 1) + 1, 90}}) {
            for (const LumiSize size :
                 {LumiSize{1, 1}, LumiSize{queried.width, 1}, LumiSize{1, queried.height}, LumiSize{3, 2},
                  LumiSize{queried.width, element.height}, LumiSize{element.width, queried.height},
                  LumiSize{queried.width - 1, queried.height - 1}, LumiSize{queried.width / 2, queried.height}}) {
                const int width = std::clamp(size.width, 1, queried.width);
                const int height = std::clamp(size.height, 1, queried.height);
                Setting s = inTurn(element, width, height, number++);
                s.queriedBeyondRoi = {queried.width - width, queried.height - height};
                expectMorphology<TypeParam>(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
            ++number;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
