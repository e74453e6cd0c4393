// Cases of dilation and erosion worked out by hand, and where forms and generations differ in what they make of a call.
#include <limits>
#include <vector>

#include "morph/morph_fixture.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

/// Applies an operation to pixels that are one row after the other; the border value is the same in all channels.
template <class Form>
std::vector<typename Form::Element> applied(Operation operation, Generation generation, StructuringElement element,
                                            LumiSize size, std::vector<typename Form::Element> pixels,
                                            LumiBorderType border, typename Form::Element borderValue = 0)
{
    using T = typename Form::Element;
    Setting s;
    s.operation = operation;
    s.generation = generation;
    s.element = std::move(element);
    s.width = size.width;
    s.height = size.height;
    const PlacedBlock record = makeRecord<Form>(s);
    const PlacedBlock scratch(scratchBytes<Form>(s));
    std::vector<T> result(pixels.size());
    const T borderValues[4] = {borderValue, borderValue, borderValue, borderValue};
    ApplyArguments<Form> arguments;
    arguments.pSrc = pixels.data();
    arguments.srcStep = size.width * Form::channels * static_cast<int>(sizeof(T));
    arguments.pDst = result.data();
    arguments.dstStep = arguments.srcStep;
    arguments.roiSize = {size.width, size.height};
    arguments.border = border;
    arguments.pBorderValue = borderValues;
    arguments.pSpec = {record.data()};
    arguments.pBuffer = scratch.data();
    EXPECT_EQ(arguments.call(operation, generation), lumOk);
    EXPECT_TRUE(scratch.intact());
    return result;
}

TYPE_SUITE(SinglePassCasesQuick, AllForms, FormName);

// An element without a position is the identity, not a constant image, and so is one of a single pixel.
TYPE_TEST(SinglePassCasesQuick, EmptyAndSinglePixelElementsCopy)
{
    int seed = 0;
    for (const StructuringElement& element : {emptyElement(1, 1), emptyElement(3, 3), emptyElement(2, 2),
                                              emptyElement(40, 1), emptyElement(5, 60), rectangle(1, 1)}) {
        for (const LumiBorderType border : kBorders) {
            Setting s;
            s.operation = kSinglePasses[seed % 2];
            s.generation = kGenerations[seed / 2 % 2];
            s.element = element;
            s.width = 1 + seed * 7 % 71;
            s.height = 1 + seed % 4;
            s.border = border;  // the source has no margins: nothing outside the ROI is readable
            s.guard = seed / 4 % 2 == 0 ? Guard::After : Guard::Before;
            s.seed = seed++;
            expectMorphology<TypeParam>(s);
        }
    }
}

// A 2x2 element weighs the pixel itself, its right, its lower and its diagonal neighbour.
TYPE_TEST(SinglePassCasesQuick, EvenElementsReachRightAndDown)
{
    using T = typename TypeParam::Element;
    const auto channels = static_cast<std::size_t>(TypeParam::channels);
    std::vector<T> pixels(5 * 4 * channels, T{1});
    pixels[(2 * 5 + 2) * channels] = T{9};
    for (const Generation generation : kGenerations) {
        const std::vector<T> result =
            applied<TypeParam>(Operation::Dilate, generation, rectangle(2, 2), {5, 4}, pixels, lumBorderReplicate);
        for (std::size_t y = 0; y < 4; ++y) {
            for (std::size_t x = 0; x < 5; ++x) {
                const bool sees = (x == 1 || x == 2) && (y == 1 || y == 2);
                EXPECT_EQ(result[(y * 5 + x) * channels], sees ? T{9} : T{1}) << "x " << x << ", y " << y;
            }
        }
    }
}

// Neither operation reflects the element: a position to the right of the centre moves the image to the left.
TYPE_TEST(SinglePassCasesQuick, ElementIsNotReflected)
{
    using T = typename TypeParam::Element;
    const auto channels = static_cast<std::size_t>(TypeParam::channels);
    std::vector<T> pixels(4 * channels);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<T>(i);
    }
    for (const Operation operation : kSinglePasses) {
        for (const Generation generation : kGenerations) {
            const std::vector<T> result = applied<TypeParam>(operation, generation, singlePosition(3, 3, 2, 1), {4, 1},
                                                             pixels, lumBorderConstant, T{100});
            for (std::size_t i = 0; i < pixels.size(); ++i) {
                EXPECT_EQ(result[i], i + channels < pixels.size() ? pixels[i + channels] : T{100}) << "element " << i;
            }
        }
    }
}

// The neutral border is the smallest or the largest value; an element that sees nothing else shows it.
TYPE_TEST(SinglePassCasesQuick, NeutralBorderIsTheValueThatCannotWin)
{
    using T = typename TypeParam::Element;
    const std::vector<T> pixels(static_cast<std::size_t>(TypeParam::channels), T{5});
    for (const Generation generation : kGenerations) {
        const auto outside = [&](Operation operation) {
            return applied<TypeParam>(operation, generation, singlePosition(3, 1, 2, 0), {1, 1}, pixels,
                                      lumBorderNeutral, T{77})
                .back();
        };
        EXPECT_EQ(outside(Operation::Dilate), std::numeric_limits<T>::lowest());
        EXPECT_EQ(outside(Operation::Erode), std::numeric_limits<T>::max());
    }
}

TEST(SinglePassCasesQuick, NeutralBorderByType)
{
    const StructuringElement outside = singlePosition(1, 3, 0, 0);
    using Op = Operation;
    for (const Generation g : kGenerations) {
        EXPECT_EQ(applied<Form8uC1>(Op::Dilate, g, outside, {1, 1}, {9}, lumBorderNeutral)[0], 0);
        EXPECT_EQ(applied<Form8uC1>(Op::Erode, g, outside, {1, 1}, {9}, lumBorderNeutral)[0], 255);
        EXPECT_EQ(applied<Form16uC1>(Op::Dilate, g, outside, {1, 1}, {9}, lumBorderNeutral)[0], 0);
        EXPECT_EQ(applied<Form16uC1>(Op::Erode, g, outside, {1, 1}, {9}, lumBorderNeutral)[0], 65535);
        EXPECT_EQ(applied<Form16sC1>(Op::Dilate, g, outside, {1, 1}, {9}, lumBorderNeutral)[0], -32768);
        EXPECT_EQ(applied<Form16sC1>(Op::Erode, g, outside, {1, 1}, {9}, lumBorderNeutral)[0], 32767);
        EXPECT_EQ(applied<Form32fC1>(Op::Dilate, g, outside, {1, 1}, {9}, lumBorderNeutral)[0], -3.4028235e38f);
        EXPECT_EQ(applied<Form32fC1>(Op::Erode, g, outside, {1, 1}, {9}, lumBorderNeutral)[0], 3.4028235e38f);
    }
}

// The neutral border of floats is finite, so it wins against an infinite image.
TEST(SinglePassCasesQuick, NeutralBorderOfFloatsIsFinite)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f largest = std::numeric_limits<Lum32f>::max();
    for (const Generation g : kGenerations) {
        const std::vector<Lum32f> low(3, -infinity);
        const std::vector<Lum32f> high(3, infinity);
        EXPECT_EQ(applied<Form32fC1>(Operation::Dilate, g, rectangle(3, 1), {3, 1}, low, lumBorderNeutral),
                  (std::vector<Lum32f>{-largest, -infinity, -largest}));
        EXPECT_EQ(applied<Form32fC1>(Operation::Erode, g, rectangle(3, 1), {3, 1}, high, lumBorderNeutral),
                  (std::vector<Lum32f>{largest, infinity, largest}));
    }
}

// One pixel under a 3x3 element: the whole image with its border.
TYPE_TEST(SinglePassCasesQuick, OnePixel)
{
    using T = typename TypeParam::Element;
    const std::vector<T> pixels(static_cast<std::size_t>(TypeParam::channels), T{5});
    for (const Generation generation : kGenerations) {
        const auto pixel = [&](Operation operation, LumiBorderType border, T value) {
            const std::vector<T> result =
                applied<TypeParam>(operation, generation, rectangle(3, 3), {1, 1}, pixels, border, value);
            for (const T element : result) {
                EXPECT_EQ(element, result[0]);
            }
            return result[0];
        };
        EXPECT_EQ(pixel(Operation::Dilate, lumBorderReplicate, T{9}), T{5});
        EXPECT_EQ(pixel(Operation::Dilate, lumBorderMirror, T{9}), T{5});
        EXPECT_EQ(pixel(Operation::Dilate, lumBorderNeutral, T{9}), T{5});
        EXPECT_EQ(pixel(Operation::Erode, lumBorderNeutral, T{0}), T{5});
        EXPECT_EQ(pixel(Operation::Dilate, lumBorderConstant, T{9}), T{9});
        EXPECT_EQ(pixel(Operation::Erode, lumBorderConstant, T{9}), T{5});
        EXPECT_EQ(pixel(Operation::Erode, lumBorderConstant, T{2}), T{2});
    }
}

TEST(SinglePassCasesQuick, MirrorDoesNotRepeatTheEdgeAndBounces)
{
    // what the row is continued by: ... 30 20 [10 20 30] 20 10 20 30 ...
    const std::vector<Lum8u> pixels = {10, 20, 30};
    for (const Generation g : kGenerations) {
        EXPECT_EQ(applied<Form8uC1>(Operation::Dilate, g, singlePosition(3, 1, 0, 0), {3, 1}, pixels, lumBorderMirror),
                  (std::vector<Lum8u>{20, 10, 20}));
        EXPECT_EQ(
            applied<Form8uC1>(Operation::Dilate, g, singlePosition(13, 1, 12, 0), {3, 1}, pixels, lumBorderMirror),
            (std::vector<Lum8u>{30, 20, 10}));  // six to the right: 2 * 4 - 6 = 2, 3 -> 1, 4 -> 0
        EXPECT_EQ(applied<Form8uC1>(Operation::Erode, g, singlePosition(1, 9, 0, 0), {1, 3}, pixels, lumBorderMirror),
                  (std::vector<Lum8u>{10, 20, 30}));  // four above: a whole period
        EXPECT_EQ(applied<Form8uC1>(Operation::Erode, g, singlePosition(5, 5, 0, 4), {3, 1}, pixels, lumBorderMirror),
                  (std::vector<Lum8u>{30, 20, 10}));  // a single row stands for what is below it
    }
}

// The flags of the first stage add in-memory sides in all large entries, and of the ordinary ones in the dilation of 8u
// with one channel alone; the others ignore them.
TYPE_TEST(SinglePassCasesQuick, StageFlagsCountInOneOrdinaryEntryAlone)
{
    int seed = 0;
    for (const Operation operation : kSinglePasses) {
        for (const Generation generation : kGenerations) {
            for (int stage = 1; stage < 16; ++stage) {
                for (const LumiBorderType border : {lumBorderReplicate + 0, lumBorderMirror | lumBorderInMemLeft,
                                                    lumBorderConstant | lumBorderInMemTop, lumBorderNeutral + 0}) {
                    Setting s;
                    s.operation = operation;
                    s.generation = generation;
                    s.element = rectangle(5, 3);
                    s.width = 3 + seed % 20;
                    s.height = 4 + seed % 5;
                    s.border = stage << 8 | border;
                    s.guard = seed % 2 == 0 ? Guard::After : Guard::Before;
                    s.seed = seed++;
                    expectMorphology<TypeParam>(s);
                }
            }
        }
    }
}

TEST(SinglePassCasesQuick, StageFlagsOf8uByHand)
{
    // the pixel between: its neighbours are in memory
    const Lum8u row[] = {200, 100, 50};
    Setting s;
    s.element = rectangle(3, 1);
    s.width = 1;
    s.height = 1;
    const PlacedBlock record = makeRecord<Form8uC1>(s);
    const PlacedBlock scratch(scratchBytes<Form8uC1>(s));
    const auto* const spec = reinterpret_cast<const LumiMorphMaskRecord*>(record.data());
    const LumiBorderType left = lumBorderReplicate | lumBorderStageInMemLeft;
    const LumiBorderType right = lumBorderReplicate | lumBorderStageInMemRight;
    Lum8u result = 0;
    EXPECT_EQ(lumiDilateBorder_8u_C1R(row + 1, 1, &result, 1, {1, 1}, left, 0, spec, scratch.data()), lumOk);
    EXPECT_EQ(result, 200);
    EXPECT_EQ(lumiErodeBorder_8u_C1R(row + 1, 1, &result, 1, {1, 1}, right, 0, spec, scratch.data()), lumOk);
    EXPECT_EQ(result, 100);

    s.generation = Generation::Large;
    const PlacedBlock largeRecord = makeRecord<Form8uC1>(s);
    const PlacedBlock largeScratch(scratchBytes<Form8uC1>(s));
    const auto* const largeSpec = reinterpret_cast<const LumiDilateErodeSpec*>(largeRecord.data());
    EXPECT_EQ(lumiErode_8u_C1R_L(row + 1, 1, &result, 1, {1, 1}, right, nullptr, largeSpec, largeScratch.data()),
              lumOk);
    EXPECT_EQ(result, 50);
}

// One ordinary record serves all forms, one large record both operations as well.
TYPE_TEST(SinglePassCasesQuick, RecordServesAllForms)
{
    using T = typename TypeParam::Element;
    int seed = 0;
    for (const StructuringElement& element :
         {rectangle(3, 3), rectangle(6, 4), disc(5), cross(3, 3, 1, 1), scattered(5, 7, 40, 9)}) {
        for (const Operation operation : kSinglePasses) {
            for (const Generation generation : kGenerations) {
                Setting s;
                s.operation = operation;
                s.generation = generation;
                s.element = element;
                s.width = 29;
                s.height = 11;
                s.seed = seed++;
                Image<T> source(s.layout<TypeParam>());
                fillPixels<T>(source, s, Area::Roi);
                const BorderValue<TypeParam> borderValue(s);
                const Image<T> expected = reference<TypeParam>(s, source, borderValue.values());
                // laid for bytes and for the other operation
                Setting other = s;
                other.operation = operation == Operation::Dilate ? Operation::Erode : Operation::Dilate;
                const PlacedBlock record = makeRecord<Form8uC1>(other);
                const PlacedBlock scratch(scratchBytes<TypeParam>(s));
                Image<T> destination(s.layout<TypeParam>());
                const auto arguments = argumentsFor<TypeParam>(s, source, destination, record, scratch);
                EXPECT_EQ(arguments.call(operation, generation), lumOk);
                EXPECT_TRUE(sameImage(expected, destination)) << s;
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
