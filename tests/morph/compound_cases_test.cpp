// Where the compound operations differ from each other and from one generation to the other, worked out by hand.
#include <limits>
#include <vector>

#include "morph/morph_fixture.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

constexpr Generation kOrdinary = Generation::Ordinary;
constexpr Generation kLarge = Generation::Large;

/// A call on a piece of an image that lies in memory row by row.
template <class T>
struct Piece
{
    std::vector<T> pixels;
    int pitch = 0;      ///< pixels from one row to the next
    LumiRect roi = {};  ///< within the pixels
};

template <class T>
Piece<T> row(std::vector<T> pixels)
{
    const int width = static_cast<int>(pixels.size());
    return {std::move(pixels), width, {0, 0, width, 1}};
}

/// A row with pixels in memory beside the ROI.
template <class T>
Piece<T> rowBetween(std::vector<T> pixels, int before, int behind)
{
    Piece<T> piece = row(std::move(pixels));
    piece.roi.x = before;
    piece.roi.width -= before + behind;
    return piece;
}

template <class Form>
std::vector<typename Form::Element> applied(Operation operation, Generation generation,
                                            const StructuringElement& element,
                                            const Piece<typename Form::Element>& piece, LumiBorderType border,
                                            typename Form::Element borderValue = 0, int setMode = 0)
{
    using T = typename Form::Element;
    Setting s;
    s.operation = operation;
    s.generation = generation;
    s.element = element;
    s.width = piece.roi.width;
    s.height = piece.roi.height;
    s.setMode = setMode;
    const PlacedBlock record = makeRecord<Form>(s);
    const PlacedBlock scratch(scratchBytes<Form>(s));
    std::vector<T> result(static_cast<std::size_t>(s.width * s.height));
    ApplyArguments<Form> arguments;
    arguments.pSrc = piece.pixels.data() + piece.roi.y * piece.pitch + piece.roi.x;
    arguments.srcStep = piece.pitch * static_cast<int>(sizeof(T));
    arguments.pDst = result.data();
    arguments.dstStep = s.width * static_cast<int>(sizeof(T));
    arguments.roiSize = {s.width, s.height};
    arguments.border = border;
    arguments.pBorderValue = &borderValue;
    arguments.pSpec = {record.data()};
    arguments.pBuffer = scratch.data();
    EXPECT_EQ(arguments.call(operation, generation), lumOk);
    EXPECT_TRUE(scratch.intact());
    return result;
}

using Bytes = std::vector<Lum8u>;
using Words = std::vector<Lum16s>;
using FloatRow = std::vector<Lum32f>;

const StructuringElement& rightNeighbour()
{
    static const StructuringElement element = singlePosition(3, 1, 2, 0);
    return element;
}

// The erosion of the ordinary gradient runs with the caller's element again, that of the large one with the element of
// the second pass, which is the rotated one unless SetMode says otherwise.
TEST(CompoundCasesQuick, OrdinaryGradientErodesWithTheFirstElementLargeWithTheSecond)
{
    const Piece<Lum8u> image = row<Lum8u>({10, 20, 40, 80});
    const auto gradient = [&](Generation generation, int mode) {
        return applied<Form8uC1>(Operation::Gradient, generation, rightNeighbour(), image, lumBorderReplicate, 0, mode);
    };
    EXPECT_EQ(gradient(kOrdinary, 0), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(gradient(kOrdinary, 1), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(gradient(kLarge, 0), (Bytes{20 - 10, 40 - 10, 80 - 20, 80 - 40}));
    EXPECT_EQ(gradient(kLarge, 1), (Bytes{0, 0, 0, 0}));
}

TEST(CompoundCasesQuick, GradientOf16sNeverClampsThatOf32fAlways)
{
    const Piece<Lum16s> words = row<Lum16s>({80, 40, 20, 10});
    const Piece<Lum32f> floats = row<Lum32f>({80, 40, 20, 10});
    for (const int mode : {0, 4}) {
        EXPECT_EQ(applied<Form16sC1>(Operation::Gradient, kLarge, rightNeighbour(), words, lumBorderReplicate, 0, mode),
                  (Words{40 - 80, 20 - 80, 10 - 40, 10 - 20}))
            << "mode " << mode;
        EXPECT_EQ(
            applied<Form32fC1>(Operation::Gradient, kLarge, rightNeighbour(), floats, lumBorderReplicate, 0, mode),
            (FloatRow{0, 0, 0, 0}))
            << "mode " << mode;
    }
}

/// With the caller's element in both passes the image moves two pixels, and differences of both signs arise.
template <class Form>
std::vector<typename Form::Element> moved(Operation operation, Generation generation, int mode)
{
    using T = typename Form::Element;
    const Piece<T> image = row<T>({T{10}, T{50}, T{20}, T{40}, T{40}});
    return applied<Form>(operation, generation, rightNeighbour(), image, lumBorderReplicate, T{0}, mode);
}

// Opening and closing both give 20 40 40 40 40 here.
TEST(CompoundCasesQuick, TophatAndBlackhatOf16s)
{
    const Words tophat = {-10, 10, -20, 0, 0};
    const Words blackhat = {10, -10, 20, 0, 0};
    for (const int mode : {1, 5}) {
        EXPECT_EQ(moved<Form16sC1>(Operation::Tophat, kOrdinary, mode), tophat) << "negatives stay, mode " << mode;
        EXPECT_EQ(moved<Form16sC1>(Operation::Blackhat, kOrdinary, mode), blackhat) << "negatives stay, mode " << mode;
    }
    EXPECT_EQ(moved<Form16sC1>(Operation::Tophat, kLarge, 1), (Words{0, 10, 0, 0, 0}));
    EXPECT_EQ(moved<Form16sC1>(Operation::Blackhat, kLarge, 1), (Words{10, 0, 20, 0, 0}));
    EXPECT_EQ(moved<Form16sC1>(Operation::Tophat, kLarge, 5), tophat);
    EXPECT_EQ(moved<Form16sC1>(Operation::Blackhat, kLarge, 5), blackhat);
}

TEST(CompoundCasesQuick, TophatAndBlackhatOf32f)
{
    for (const int mode : {1, 5}) {
        EXPECT_EQ(moved<Form32fC1>(Operation::Tophat, kOrdinary, mode), (FloatRow{0, 10, 0, 0, 0}))
            << "no mode keeps negatives, mode " << mode;
        EXPECT_EQ(moved<Form32fC1>(Operation::Blackhat, kOrdinary, mode), (FloatRow{10, 0, 20, 0, 0}));
    }
    EXPECT_EQ(moved<Form32fC1>(Operation::Tophat, kLarge, 1), (FloatRow{0, 10, 0, 0, 0}));
    EXPECT_EQ(moved<Form32fC1>(Operation::Blackhat, kLarge, 1), (FloatRow{10, 0, 20, 0, 0}));
    EXPECT_EQ(moved<Form32fC1>(Operation::Tophat, kLarge, 5), (FloatRow{-10, 10, -20, 0, 0}));
    EXPECT_EQ(moved<Form32fC1>(Operation::Blackhat, kLarge, 5), (FloatRow{10, -10, 20, 0, 0}));
}

TEST(CompoundCasesQuick, TophatAndBlackhatOfUnsignedAreNeverNegative)
{
    for (const Generation generation : kGenerations) {
        for (const int mode : {1, 5}) {
            EXPECT_EQ(moved<Form8uC1>(Operation::Tophat, generation, mode), (Bytes{0, 10, 0, 0, 0}));
            EXPECT_EQ(moved<Form8uC1>(Operation::Blackhat, generation, mode), (Bytes{10, 0, 20, 0, 0}));
            EXPECT_EQ(moved<Form16uC1>(Operation::Tophat, generation, mode), (std::vector<Lum16u>{0, 10, 0, 0, 0}));
            EXPECT_EQ(moved<Form16uC1>(Operation::Blackhat, generation, mode), (std::vector<Lum16u>{10, 0, 20, 0, 0}));
        }
    }
}

// A border of high value is eroded into the image, and the top-hat becomes negative with any element.
TEST(CompoundCasesQuick, NegativeTophatIsZeroByDefaultAndKeptAfterMode4)
{
    const Piece<Lum32f> image = row<Lum32f>({1, 1, 1, 1, 1});
    const auto tophat = [&](Generation generation, int mode) {
        return applied<Form32fC1>(Operation::Tophat, generation, rectangle(3, 1), image, lumBorderConstant, 9, mode);
    };
    EXPECT_EQ(tophat(kLarge, 0), (FloatRow{0, 0, 0, 0, 0}));
    EXPECT_EQ(tophat(kLarge, 4), (FloatRow{-8, 0, 0, 0, -8}));
    EXPECT_EQ(tophat(kOrdinary, 0), (FloatRow{0, 0, 0, 0, 0}));
    EXPECT_EQ(tophat(kOrdinary, 4), (FloatRow{0, 0, 0, 0, 0}));
}

TEST(CompoundCasesQuick, DifferencesOf16sSaturate)
{
    const Piece<Lum16s> image = row<Lum16s>({-32768, 32767, -32768, -32768});
    for (const Generation generation : kGenerations) {
        EXPECT_EQ(applied<Form16sC1>(Operation::Tophat, generation, rectangle(3, 1), image, lumBorderReplicate),
                  (Words{0, 32767, 0, 0}));
        EXPECT_EQ(applied<Form16sC1>(Operation::Gradient, generation, rectangle(3, 1), image, lumBorderReplicate),
                  (Words{32767, 32767, 32767, 0}));
    }
    // both ends of the range and an element that moves the image: the negative end
    const Piece<Lum16s> steps = row<Lum16s>({32767, 0, -32768});
    EXPECT_EQ(applied<Form16sC1>(Operation::Gradient, kLarge, rightNeighbour(), steps, lumBorderReplicate),
              (Words{-32767, -32768, -32768}));
}

// Ordinary operations read the flagged side in the first pass only; the second one repeats, mirrors or sees a constant.
// Large ones see what a larger image would give.
TEST(CompoundCasesQuick, SidesInMemoryStopAtTheFirstPassOfOrdinaryOperations)
{
    // the ROI is the 9; the image around it is dark on the left and bright two pixels to the right
    const Piece<Lum8u> image = rowBetween<Lum8u>({1, 1, 9, 9, 9}, 2, 2);
    const StructuringElement element = rectangle(3, 1);
    const auto opened = [&](Generation generation, LumiBorderType border) {
        return applied<Form8uC1>(Operation::Open, generation, element, image, border)[0];
    };
    // eroded: 1 here, 9 to the right; the second pass of the ordinary operation does not see the 9
    EXPECT_EQ(opened(kOrdinary, lumBorderReplicate | lumBorderInMem), 1);
    EXPECT_EQ(opened(kLarge, lumBorderReplicate | lumBorderInMem), 9);
    EXPECT_EQ(opened(kOrdinary, lumBorderReplicate | lumBorderInMemLeft), 1);
    EXPECT_EQ(opened(kOrdinary, lumBorderReplicate | lumBorderInMemRight), 9);
    // the flag of the first stage alone is the same in both
    EXPECT_EQ(opened(kOrdinary, lumBorderReplicate | lumBorderStageInMemLeft), 1);
    EXPECT_EQ(opened(kLarge, lumBorderReplicate | lumBorderStageInMemLeft), 1);
}

// With all sides in memory and no mode the second pass of an ordinary operation is neutral.
TEST(CompoundCasesQuick, AllSidesInMemoryNeedNoModeAndTheSecondPassIsNeutral)
{
    const Piece<Lum8u> image = rowBetween<Lum8u>({1, 1, 9, 9, 5}, 2, 2);
    for (const LumiBorderType lowBits : {0, 2, 4, 7, 8, 15}) {
        const LumiBorderType border = lumBorderInMem | lowBits;
        // eroded by the right neighbour: 9; dilated by the left one, which lies outside: the neutral 0
        EXPECT_EQ(applied<Form8uC1>(Operation::Open, kOrdinary, rightNeighbour(), image, border)[0], 0);
        EXPECT_EQ(applied<Form8uC1>(Operation::Close, kOrdinary, rightNeighbour(), image, border)[0], 255);
        EXPECT_EQ(applied<Form8uC1>(Operation::Tophat, kOrdinary, rightNeighbour(), image, border)[0], 9);
        // in a larger image the element moves there and back
        EXPECT_EQ(applied<Form8uC1>(Operation::Open, kLarge, rightNeighbour(), image, border)[0], 9);
        EXPECT_EQ(applied<Form8uC1>(Operation::Close, kLarge, rightNeighbour(), image, border)[0], 9);
    }
    EXPECT_EQ(
        applied<Form8uC1>(Operation::Open, kOrdinary, rightNeighbour(), image, lumBorderInMem | lumBorderReplicate)[0],
        9);
}

// A large operation on a part of an image gives what the operation on the whole image gives there.
TEST(CompoundCasesQuick, LargeOperationsOnAPartAreThoseOfTheWhole)
{
    Setting s;
    s.generation = kLarge;
    s.element = scattered(5, 4, 40, 31);
    Piece<Lum8u> whole;
    Random random(8);
    constexpr int width = 40;
    constexpr int height = 30;
    for (int i = 0; i < width * height; ++i) {
        whole.pixels.push_back(spot<Lum8u>(random, 6));
    }
    whole.pitch = width;
    whole.roi = {0, 0, width, height};
    for (const Operation operation : kCompounds) {
        const Bytes expected = applied<Form8uC1>(operation, kLarge, s.element, whole, lumBorderMirror);
        Piece<Lum8u> part = whole;
        part.roi = {7, 5, 17, 13};
        const Bytes actual = applied<Form8uC1>(operation, kLarge, s.element, part, lumBorderInMem);
        for (int y = 0; y < part.roi.height; ++y) {
            for (int x = 0; x < part.roi.width; ++x) {
                ASSERT_EQ(actual[static_cast<std::size_t>(y * part.roi.width + x)],
                          expected[static_cast<std::size_t>((y + part.roi.y) * width + x + part.roi.x)])
                    << nameOf(operation) << ", x " << x << ", y " << y;
            }
        }
    }
}

TYPE_SUITE(CompoundCasesOfFormsQuick, AllForms, FormName);

// The same under another name: it takes too long for the emulator.
TYPE_SUITE(CompoundCasesOfForms, AllForms, FormName);

/// The result of a setting on its own random image.
template <class Form>
Image<typename Form::Element> result(const Setting& s, const Image<typename Form::Element>& source)
{
    const PlacedBlock record = makeRecord<Form>(s);
    const PlacedBlock scratch(scratchBytes<Form>(s));
    const BorderValue<Form> borderValue(s);
    Image<typename Form::Element> destination(s.layout<Form>());
    const auto arguments = argumentsFor<Form>(s, source, destination, record, scratch, borderValue.forBorder(s.border));
    EXPECT_EQ(arguments.call(s.operation, s.generation), lumOk);
    return destination;
}

Setting settingFor(const StructuringElement& element, Generation generation)
{
    Setting s;
    s.generation = generation;
    s.element = element;
    s.width = 33;
    s.height = 14;
    s.seed = element.width * 7 + element.height;
    return s;
}

template <class Form>
Image<typename Form::Element> imageFor(const Setting& s)
{
    Image<typename Form::Element> source(s.layout<Form>());
    fillPixels<typename Form::Element>(source, s, Area::Roi);
    return source;
}

// Because the second pass runs with the rotated element, an opening is nowhere above the image, a closing nowhere below
// it, and doing either again changes nothing: for any element, even sizes included.
TYPE_TEST(CompoundCasesOfFormsQuick, OpeningAndClosingAreAdjoint)
{
    using T = typename TypeParam::Element;
    for (const Generation generation : kGenerations) {
        for (const StructuringElement& element :
             {rectangle(2, 2), rectangle(4, 3), rectangle(1, 6), singlePosition(4, 4, 3, 0), scattered(6, 4, 40, 5),
              scattered(5, 5, 40, 6), cross(4, 4, 0, 3), disc(5)}) {
            Setting s = settingFor(element, generation);
            s.border = lumBorderNeutral;
            s.operation = Operation::Gradient;  // whose images have no negative zeros
            const Image<T> source = imageFor<TypeParam>(s);
            for (const Operation operation : {Operation::Open, Operation::Close}) {
                s.operation = operation;
                const Image<T> once = result<TypeParam>(s, source);
                EXPECT_TRUE(sameImage(once, result<TypeParam>(s, once))) << s;
                for (int y = 0; y < s.height; ++y) {
                    for (int i = 0; i < s.width * TypeParam::channels; ++i) {
                        const bool ordered = operation == Operation::Open ? once.row(y)[i] <= source.row(y)[i]
                                                                          : once.row(y)[i] >= source.row(y)[i];
                        ASSERT_TRUE(ordered) << s << ", element " << i << " of row " << y;
                    }
                }
            }
        }
    }
}

TYPE_TEST(CompoundCasesOfFormsQuick, SymmetricElementsKnowNoMode)
{
    using T = typename TypeParam::Element;
    for (const Generation generation : kGenerations) {
        for (const StructuringElement& element : {rectangle(3, 3), disc(5), cross(3, 3, 1, 1), ellipse(7, 9)}) {
            for (const Operation operation : kCompounds) {
                Setting s = settingFor(element, generation);
                s.operation = operation;
                const Image<T> source = imageFor<TypeParam>(s);
                const auto rotated = result<TypeParam>(s, source);
                s.setMode = 1;
                EXPECT_TRUE(sameImage(rotated, result<TypeParam>(s, source))) << s;
            }
        }
    }
}

// An even mode finds the rotated element again, in the records of all forms and both generations.
TYPE_TEST(CompoundCasesOfFormsQuick, EvenModesWorkOnEveryRecord)
{
    using T = typename TypeParam::Element;
    for (const Generation generation : kGenerations) {
        Setting s = settingFor(scattered(5, 4, 40, 3), generation);
        s.operation = Operation::Open;
        const Image<T> source = imageFor<TypeParam>(s);
        const Image<T> expected = reference<TypeParam>(s, source, nullptr);
        for (const std::vector<int>& modes : std::vector<std::vector<int>>{{0}, {4}, {1, 0}, {5, 4}, {1, 5, 0, 4}}) {
            const PlacedBlock record = makeRecord<TypeParam>(s);
            const PlacedBlock scratch(scratchBytes<TypeParam>(s));
            for (const int mode : modes) {
                const AnyRecord any{record.data()};
                EXPECT_EQ(generation == kLarge ? lumiMorphSetMode_L(mode, any) : lumiMorphSetMode(mode, any), lumOk);
            }
            Image<T> destination(s.layout<TypeParam>());
            const auto arguments = argumentsFor<TypeParam>(s, source, destination, record, scratch);
            EXPECT_EQ(arguments.call(s.operation, generation), lumOk);
            EXPECT_TRUE(sameImage(expected, destination)) << "modes ending in " << modes.back();
            EXPECT_TRUE(record.intact());
        }
    }
}

// A single pixel and nothing at all: opening and closing copy, the differences are zero.
TYPE_TEST(CompoundCasesOfFormsQuick, IdentityElements)
{
    using T = typename TypeParam::Element;
    for (const Generation generation : kGenerations) {
        for (const StructuringElement& element : {rectangle(1, 1), emptyElement(1, 1), emptyElement(4, 3)}) {
            for (const Operation operation : kCompounds) {
                for (const LumiBorderType border : {lumBorderReplicate + 0, lumBorderConstant + 0, lumBorderInMem + 0,
                                                    lumBorderMirror | lumBorderInMemLeft}) {
                    Setting s = settingFor(element, generation);
                    s.operation = operation;
                    s.border = border;
                    const Image<T> source = imageFor<TypeParam>(s);
                    Image<T> zeros(s.layout<TypeParam>());
                    zeros.forEach(Area::Roi, [](T& pixel, int, int, int) { pixel = T{0}; });
                    const bool copies = operation == Operation::Open || operation == Operation::Close;
                    EXPECT_TRUE(sameImage(copies ? source : zeros, result<TypeParam>(s, source))) << s;
                }
            }
        }
    }
}

// Opening and closing read the source in one pass and write the destination in the other.
template <class Form>
void expectInPlace(const Setting& s)
{
    using T = typename Form::Element;
    Image<T> image = imageFor<Form>(s);
    const Image<T> expected = reference<Form>(s, image, nullptr);
    const PlacedBlock record = makeRecord<Form>(s);
    const PlacedBlock scratch(scratchBytes<Form>(s));
    const auto arguments = argumentsFor<Form>(s, image, image, record, scratch);
    EXPECT_EQ(arguments.call(s.operation, s.generation), lumOk);
    EXPECT_TRUE(sameImage(expected, image)) << s;
}

TYPE_TEST(CompoundCasesOfFormsQuick, OpeningAndClosingWorkInPlace)
{
    for (const Generation generation : kGenerations) {
        for (const StructuringElement& element : {rectangle(3, 3), scattered(5, 4, 40, 3), disc(7), rectangle(20, 9)}) {
            for (const Operation operation : {Operation::Open, Operation::Close}) {
                Setting s = settingFor(element, generation);
                s.operation = operation;
                expectInPlace<TypeParam>(s);
            }
        }
    }
}

// An image of more bytes than a strip of the second-level cache.
TYPE_TEST(CompoundCasesOfForms, OpeningOfATallImageWorksInPlace)
{
    for (const Generation generation : kGenerations) {
        Setting s = settingFor(rectangle(3, 3), generation);
        s.operation = Operation::Open;
        s.width = 9;
        s.height = 20000;
        expectInPlace<TypeParam>(s);
    }
}

}  // namespace
}  // namespace lumcv::test::morph
