// Opening, closing, top-hat, black-hat and gradient compared with the reference: all shapes of elements, all borders,
// all modes, all forms.
#include "morph/morph_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

TYPE_SUITE(Compound, AllForms, FormName);

TYPE_SUITE(CompoundQuick, AllForms, FormName);

/// The five operations, both generations and the four modes in turn.
Setting inTurn(const StructuringElement& element, int width, int height, int number)
{
    constexpr int modes[] = {0, 0, 4, 1, 0, 5, 1};
    Setting s;
    s.operation = kCompounds[number % 5];
    s.generation = kGenerations[number / 5 % 2];
    s.setMode = modes[number / 10 % 7];
    s.element = element;
    s.width = width;
    s.height = height;
    s.seed = number;
    s.border = borderFor(s, number);
    return placed(s);
}

TYPE_TEST(CompoundQuick, MatchesTheReference)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element :
         {rectangle(3, 3), rectangle(5, 5), rectangle(4, 2), disc(5), cross(3, 3, 1, 1), cross(5, 5, 3, 1),
          scattered(5, 4, 40, 3), emptyElement(3, 3), rectangle(1, 1)}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{5, 3}, LumiSize{37, 12}, LumiSize{70, 9}}) {
            expectMorphology<TypeParam>(inTurn(element, size.width, size.height, number++));
        }
    }
}

TYPE_TEST(Compound, EveryElement)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : elementsOfEveryShape()) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{3, 9}, LumiSize{18, 14}, LumiSize{47, 11}}) {
            expectMorphology<TypeParam>(inTurn(element, size.width, size.height, number));
            number += 3;
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

/// The borders that an entry takes.
bool takes(const Setting& s, LumiBorderType border)
{
    const bool allInMemory = (border & lumBorderInMem) == lumBorderInMem;
    const int mode = border & 15;
    if (s.operation == Operation::Gradient && s.generation == Generation::Ordinary) {
        return border < 256 && (border == lumBorderInMem || (isMorphMode(mode) && mode != lumBorderNeutral));
    }
    // all four flags of the first stage are alone where their sides are not in memory
    return isMorphMode(mode) || allInMemory;
}

// Every mode with every combination of sides in memory, and all four sides in memory with any low bits.
TYPE_TEST(Compound, EveryBorder)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : {rectangle(3, 3), scattered(6, 4, 40, 5), rectangle(5, 1)}) {
        for (LumiBorderType border = 0; border < 256; ++border) {
            const LumiSize sizes[] = {{1, 1}, {4, 2}, {19, 9}, {2, 7}};
            for (int i = 0; i < 2; ++i) {
                const LumiSize size = sizes[(number / 2 + i * 2) % 4];
                Setting s = inTurn(element, size.width, size.height, number++);
                s.border = border;
                if (takes(s, border)) {
                    expectMorphology<TypeParam>(s);
                }
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
            number += 3;
        }
    }
}

// The flags of the first stage make their sides real for the first pass alone, in both generations.
TYPE_TEST(Compound, EveryBorderWithStageFlags)
{
    int number = firstNumber<TypeParam>();
    for (LumiBorderType border = 256; border < 4096; border += 1) {
        Setting s = inTurn(rectangle(3, 5), 1 + number * 3 % 17, 1 + number % 9, number);
        ++number;
        if (border / 16 % 5 != 0 && border % 7 != 0) {
            continue;  // a share of them, all modes and sides among it
        }
        s.border = border;
        if (takes(s, border)) {
            expectMorphology<TypeParam>(s);
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

TYPE_TEST(Compound, EveryWidth)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element :
         {rectangle(3, 3), rectangle(2, 4), rectangle(9, 7), disc(7), ellipse(7, 5), scattered(5, 3, 50, 7)}) {
        for (const int width :
             {1, 2, 3, 5, 7, 8, 9, 11, 15, 16, 17, 21, 31, 32, 33, 43, 48, 63, 64, 65, 67, 96, 129, 260, 700}) {
            expectMorphology<TypeParam>(inTurn(element, width, 1 + number * 5 % 7, number));
            number += 3;
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
        ++number;
    }
}

// Both passes of a gradient by a small square look at each row at once where the image is wide enough.
TYPE_TEST(Compound, GradientOfSmallSquares)
{
    int number = firstNumber<TypeParam>();
    for (const int side : {3, 5}) {
        for (const int width : {40, 127, 128, 129, 132, 133, 136, 137, 164, 260, 700, 2100}) {
            for (const int height : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 14}) {
                Setting s = inTurn(rectangle(side, side), width, height, ++number);
                s.operation = Operation::Gradient;
                s.border = borderFor(s, number);
                expectMorphology<TypeParam>(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TYPE_TEST(Compound, EveryHeight)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element :
         {rectangle(3, 3), rectangle(5, 5), rectangle(3, 8), disc(5), cross(5, 5, 2, 2), scattered(4, 5, 50, 11)}) {
        for (int height = 1; height <= 14; ++height) {
            expectMorphology<TypeParam>(inTurn(element, 21, height, number));
            number += 3;
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
        ++number;
    }
}

// Every mode with every operation: asymmetric elements tell the rotated one from the caller's.
TYPE_TEST(Compound, EveryMode)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : {singlePosition(5, 5, 4, 1), rectangle(2, 2), scattered(5, 4, 30, 21),
                                              picture("corner", {"###", "#..", "#.."}), rectangle(3, 3)}) {
        for (const Operation operation : kCompounds) {
            for (const Generation generation : kGenerations) {
                for (const int mode : {0, 1, 4, 5}) {
                    Setting s = inTurn(element, 23, 9, number++);
                    s.operation = operation;
                    s.generation = generation;
                    s.setMode = mode;
                    s.border = borderFor(s, number);
                    expectMorphology<TypeParam>(s);
                }
            }
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

TYPE_TEST(Compound, ElementsLargerThanTheImage)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : {rectangle(21, 21), rectangle(40, 3), rectangle(3, 30), ellipse(22, 15),
                                              scattered(19, 25, 3, 13), cross(17, 17, 4, 12), rectangle(40, 1)}) {
        for (const LumiSize size :
             {LumiSize{1, 1}, LumiSize{2, 3}, LumiSize{17, 5}, LumiSize{20, 20}, LumiSize{22, 22}, LumiSize{5, 40}}) {
            expectMorphology<TypeParam>(inTurn(element, size.width, size.height, number));
            number += 7;
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
