// One call of morphology with everything around it: images, record and scratch of exactly their sizes against
// unreadable pages, and the comparison with what the reference makes of the same pixels.
#pragma once

#include <cstring>
#include <ostream>
#include <vector>

#include "morph/morph_forms.hpp"
#include "morph/morph_reference.hpp"
#include "morph/morph_sizes.hpp"
#include "support/compare.hpp"
#include "support/guarded_block.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::morph {

struct Setting
{
    Operation operation = Operation::Dilate;
    Generation generation = Generation::Ordinary;
    StructuringElement element = rectangle(3, 3);
    int width = 1;
    int height = 1;
    LumiBorderType border = lumBorderReplicate;
    int setMode = 0;  ///< SetMode is not called for 0: this is what Init leaves
    Values values = Values::Extreme;
    int seed = 0;                        ///< of the pixels
    Guard guard = Guard::After;          ///< of all operands
    std::size_t distance = 0;            ///< of record and scratch from the unreadable page
    int offset = 0;                      ///< of the images from the page's edge, in elements
    int gap = 0;                         ///< between rows, in elements
    LumiSize queriedBeyondRoi = {0, 0};  ///< by how much record and scratch were queried for more than the ROI

    LumiSize queried() const
    {
        return {width + queriedBeyondRoi.width, height + queriedBeyondRoi.height};
    }
    Geometry2 geometry() const
    {
        return {queried().width, queried().height, element.width, element.height};
    }
    template <class Form>
    Recipe recipe() const
    {
        Recipe result;
        result.operation = operation;
        result.generation = generation;
        result.border = border;
        result.setMode = setMode;
        result.refusesMirror = Form::dataType == kBits;
        result.foldsStageFlags = operation == Operation::Dilate && Form::dataType == lumType8u && Form::channels == 1;
        return result;
    }
    template <class Form>
    Layout layout(Margins margins = {}) const
    {
        Layout layout;
        layout.width = width;
        layout.height = height;
        layout.channels = Form::channels;
        layout.gap = gap * static_cast<int>(sizeof(typename Form::Element));
        layout.guard = guard;
        layout.margins = margins;
        layout.offset = offset;
        return layout;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Setting& s)
{
    return stream << nameOf(s.operation) << ", " << nameOf(s.generation) << ", element " << s.element << ", " << s.width
                  << " x " << s.height << ", border " << s.border << ", mode " << s.setMode << ", values "
                  << static_cast<int>(s.values) << ", seed " << s.seed << ", page "
                  << (s.guard == Guard::After ? "after" : "before") << ", distance " << s.distance << ", offset "
                  << s.offset << ", gap " << s.gap << ", queried for " << s.queriedBeyondRoi.width << " x "
                  << s.queriedBeyondRoi.height << " more";
}

template <class Form>
std::size_t recordBytes(const Setting& s)
{
    const Geometry2 g = s.geometry();
    const bool single = isSinglePass(s.operation);
    if (s.generation == Generation::Large) {
        return static_cast<std::size_t>(single ? largeRecordSize(g) : largeCompoundRecordSize(g));
    }
    const Wide one = Form::dataType == kBits ? bitRecordSize(g) : byteRecordSize(g);
    return static_cast<std::size_t>(single ? one : compoundRecordSize(g, one));
}

template <class Form>
std::size_t scratchBytes(const Setting& s)
{
    const Geometry2 g = s.geometry();
    const Wide e = sizeof(typename Form::Element);
    const Wide ch = Form::channels;
    const bool single = isSinglePass(s.operation);
    if (s.generation == Generation::Large) {
        return static_cast<std::size_t>(single ? largeBufferSize(g, ch, e) : largeCompoundBufferSize(g, ch, e));
    }
    const Wide one = Form::dataType == kBits ? bitBufferSize(g) : byteBufferSize(g, ch, e);
    return static_cast<std::size_t>(single ? one : compoundBufferSize(g, ch, e, one));
}

/// Bytes of a caller's element that end at an unreadable page.
inline GuardedBlock maskBlock(const StructuringElement& element)
{
    GuardedBlock block(element.bytes.size(), Guard::After);
    std::memcpy(block.data(), element.bytes.data(), element.bytes.size());
    return block;
}

/// Lays a record; the mask is gone afterwards.
template <class Form>
LumStatus layRecord(const Setting& s, const PlacedBlock& block)
{
    const GuardedBlock mask = maskBlock(s.element);
    const LumiSize roi = s.queried();
    const LumiSize size = {s.element.width, s.element.height};
    const LumiSizeL roiL = {roi.width, roi.height};
    const LumiSizeL sizeL = {size.width, size.height};
    const AnyRecord record{block.data()};
    const bool single = isSinglePass(s.operation);
    LumStatus status = lumOk;
    if (s.generation == Generation::Ordinary) {
        const PlacedBlock buffer(scratchBytes<Form>(s), s.guard, s.distance);
        status = single ? Form::init(roi, mask.data(), size, record, buffer.data())
                        : Form::advInit(roi, mask.data(), size, record, buffer.data());
        EXPECT_TRUE(buffer.intact());
        if (s.setMode != 0) {
            EXPECT_EQ(lumiMorphSetMode(s.setMode, record), lumOk);
        }
        return status;
    }
    if (s.operation == Operation::Dilate) {
        return lumiDilateInit_L(roiL, mask.data(), sizeL, record);
    }
    if (s.operation == Operation::Erode) {
        return lumiErodeInit_L(roiL, mask.data(), sizeL, record);
    }
    status = lumiMorphInit_L(roiL, mask.data(), sizeL, Form::dataType, Form::channels, record);
    if (s.setMode != 0) {
        EXPECT_EQ(lumiMorphSetMode_L(s.setMode, record), lumOk);
    }
    return status;
}

template <class Form>
PlacedBlock makeRecord(const Setting& s)
{
    PlacedBlock block(recordBytes<Form>(s), s.guard, s.distance);
    EXPECT_EQ(layRecord<Form>(s, block), lumOk);
    EXPECT_TRUE(block.intact());
    return block;
}

/// The pixels around the ROI that a border promises.
inline Margins promisedMargins(const Recipe& recipe, const StructuringElement& element)
{
    const PassBorder first = firstBorder(recipe);
    const Reach radius = {element.radiusX(), element.radiusX(), element.radiusY(), element.radiusY()};
    const Reach grown = enlargement(recipe, radius);
    const auto side = [&](int flag, int pixels) { return first.has(flag) ? pixels : 0; };
    return {side(lumBorderInMemTop, radius.top) + grown.top, side(lumBorderInMemBottom, radius.bottom) + grown.bottom,
            side(lumBorderInMemLeft, radius.left) + grown.left, side(lumBorderInMemRight, radius.right) + grown.right};
}

/// Whether a negative zero stays one is told for maxima and minima only: no difference gets to see one.
template <class T>
T zeroFor(Operation operation, T value)
{
    const bool difference =
        operation == Operation::Tophat || operation == Operation::Blackhat || operation == Operation::Gradient;
    return difference && value == T{0} ? T{0} : value;
}

/// A pixel that lets windows differ: most are alike and few are high or low, so that a maximum tells which pixels it
/// saw.
template <class T>
T spot(Random& random, int spacing)
{
    if (random.oneIn(spacing)) {
        return random.value<T>(Values::Ordinary);
    }
    using Limits = std::numeric_limits<T>;
    return Limits::is_integer ? static_cast<T>(Limits::min() / 2 + Limits::max() / 2 + random.between(0, 1))
           : random.oneIn(2)  ? T{0}
                              : -T{0};
}

/// Fills with values of the setting, or with spots; no finite value overflows a difference unless they are extreme.
template <class T, class Target>
void fillPixels(Target& image, const Setting& s, Area area)
{
    Random random(static_cast<std::uint64_t>(s.seed) * 3 + 1);
    const bool spotted = s.seed % 3 != 0;
    const int spacing = s.element.width * s.element.height / 3 + 2;
    image.forEach(area, [&](T& element, int, int, int) {
        element =
            zeroFor(s.operation, spotted && !random.oneIn(20) ? spot<T>(random, spacing) : random.value<T>(s.values));
    });
}

/// Border values that end at an unreadable page.
template <class Form>
class BorderValue
{
  public:
    using T = typename Form::Element;

    explicit BorderValue(const Setting& s) : block_(Form::channels * sizeof(T), Guard::After)
    {
        Random random(static_cast<std::uint64_t>(s.seed) + 1000);
        for (int c = 0; c < Form::channels; ++c) {
            const T value = zeroFor(s.operation, random.value<T>(random.oneIn(2) ? Values::Ordinary : Values::Extreme));
            std::memcpy(block_.data() + static_cast<std::size_t>(c) * sizeof(T), &value, sizeof(T));
        }
    }
    const T* values() const
    {
        return block_.template as<T>();
    }
    /// What a call gets: nothing unless its mode needs it.
    const T* forBorder(LumiBorderType border) const
    {
        return (border & 15) == lumBorderConstant ? values() : nullptr;
    }

  private:
    GuardedBlock block_;
};

/// What the call makes of a source that offers row(y).
template <class Form, class Source>
Plane<typename Form::Element> referencePlane(const Setting& s, const Source& source,
                                             const typename Form::Element* borderValue)
{
    const Reach radius = {s.element.radiusX(), s.element.radiusX(), s.element.radiusY(), s.element.radiusY()};
    return morphology<typename Form::Element>(s.recipe<Form>(), s.element, radius, s.width, s.height, Form::channels,
                                              source, borderValue, Form::dataType == kBits);
}

template <class Form>
Image<typename Form::Element> imageOf(const Setting& s, const Plane<typename Form::Element>& plane)
{
    using T = typename Form::Element;
    Image<T> image(s.layout<Form>());
    for (int y = 0; y < s.height; ++y) {
        std::memcpy(image.row(y), plane.row(y), static_cast<std::size_t>(s.width * Form::channels) * sizeof(T));
    }
    return image;
}

template <class Form, class Source>
Image<typename Form::Element> reference(const Setting& s, const Source& source,
                                        const typename Form::Element* borderValue)
{
    return imageOf<Form>(s, referencePlane<Form>(s, source, borderValue));
}

/// Compares the pixels before it makes an image of them, which takes longer.
template <class Form>
testing::AssertionResult samePixels(const Setting& s, const Plane<typename Form::Element>& expected,
                                    const Image<typename Form::Element>& actual)
{
    bool same = true;
    for (int y = 0; y < s.height; ++y) {
        same = same &&
               std::memcmp(expected.row(y), actual.row(y),
                           static_cast<std::size_t>(s.width * Form::channels) * sizeof(typename Form::Element)) == 0;
    }
    return same ? testing::AssertionSuccess() : sameImage(imageOf<Form>(s, expected), actual);
}

/// The arguments of a call from one image to another. Without a border value the call gets none.
template <class Form, class Source, class Destination>
ApplyArguments<Form> argumentsFor(const Setting& s, const Source& source, Destination& destination,
                                  const PlacedBlock& record, const PlacedBlock& scratch,
                                  const typename Form::Element* borderValue = nullptr)
{
    ApplyArguments<Form> arguments;
    arguments.pSrc = source.pixels();
    arguments.srcStep = source.step();
    arguments.pDst = destination.pixels();
    arguments.dstStep = destination.step();
    arguments.roiSize = {s.width, s.height};
    arguments.border = s.border;
    arguments.pBorderValue = borderValue;
    arguments.pSpec = {record.data()};
    arguments.pBuffer = scratch.data();
    return arguments;
}

/// Applies an operation to a random image, with blocks of its own, and compares with the reference.
template <class Form>
void expectMorphology(const Setting& s)
{
    using T = typename Form::Element;
    SCOPED_TRACE(s);
    Image<T> source(s.layout<Form>(promisedMargins(s.recipe<Form>(), s.element)));
    fillPixels<T>(source, s, Area::WithMargins);
    const BorderValue<Form> borderValue(s);
    const auto expected = referencePlane<Form>(s, source, borderValue.values());

    const PlacedBlock record = makeRecord<Form>(s);
    record.makeReadOnly();
    const PlacedBlock scratch(scratchBytes<Form>(s), s.guard, s.distance);
    Image<T> destination(s.layout<Form>());
    const auto arguments = argumentsFor<Form>(s, source, destination, record, scratch, borderValue.forBorder(s.border));
    EXPECT_EQ(arguments.call(s.operation, s.generation), lumOk);
    EXPECT_TRUE(samePixels<Form>(s, expected, destination));
    EXPECT_TRUE(destination.gapsIntact());
    EXPECT_TRUE(scratch.intact());
}

/// Where a form begins in a list of cases that take operations, borders and so on in turn: elsewhere than the others.
template <class Form>
int firstNumber()
{
    return Form::channels * 3 + Form::dataType * 17;
}

/// A setting whose placement is drawn from its seed.
inline Setting placed(Setting s)
{
    Random random(static_cast<std::uint64_t>(s.seed) + 77);
    s.guard = random.oneIn(2) ? Guard::After : Guard::Before;
    s.distance = random.oneIn(2) ? 0 : static_cast<std::size_t>(random.between(0, 63));
    s.offset = random.oneIn(2) ? 0 : static_cast<int>(random.between(0, 63));
    s.gap = random.oneIn(2) ? 0 : static_cast<int>(random.between(0, 40));
    return s;
}

/// Borders of every mode with some sides in memory; a prime number of them, so that they meet every other list.
constexpr LumiBorderType kBorders[] = {
    lumBorderReplicate,
    lumBorderMirror,
    lumBorderConstant,
    lumBorderNeutral,
    lumBorderInMem,
    lumBorderConstant | lumBorderInMemLeft,
    lumBorderMirror | lumBorderInMemRight | lumBorderInMemTop,
    lumBorderReplicate | lumBorderInMemLeft | lumBorderInMemRight | lumBorderInMemBottom,
    lumBorderNeutral | lumBorderInMemTop | lumBorderInMemBottom,
    lumBorderMirror | lumBorderInMemLeft | lumBorderInMemBottom,
    lumBorderReplicate | lumBorderInMemTop,
    lumBorderConstant | lumBorderInMemTop | lumBorderInMemLeft | lumBorderInMemRight,
    lumBorderMirror | lumBorderInMem,
};

/// One of kBorders that the entry accepts.
inline LumiBorderType borderFor(const Setting& s, int number)
{
    const LumiBorderType border = kBorders[static_cast<std::size_t>(number) % std::size(kBorders)];
    const bool takesNeutral = s.operation != Operation::Gradient || s.generation == Generation::Large;
    return (border & 15) == lumBorderNeutral && !takesNeutral ? border - lumBorderNeutral + lumBorderConstant : border;
}

}  // namespace lumcv::test::morph
