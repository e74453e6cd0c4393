// Images of any of the element types, what a statistics call does with them, and the comparison with the reference.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "stats/stats_exports.hpp"
#include "stats/stats_reference.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/isolated_rows.hpp"
#include "support/random.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::stats {

inline constexpr Element kElements[] = {Element::U8, Element::U16, Element::F32};
inline constexpr Lum32f kInfinity = std::numeric_limits<Lum32f>::infinity();
inline constexpr Lum32f kNan = std::numeric_limits<Lum32f>::quiet_NaN();

// All elements are exact as Lum32f, so that pixels of any type travel as such.

inline Lum32f loadElement(const void* from, Element element)
{
    if (element == Element::U8) {
        return static_cast<Lum32f>(*static_cast<const Lum8u*>(from));
    }
    if (element == Element::U16) {
        Lum16u value;
        std::memcpy(&value, from, sizeof value);
        return static_cast<Lum32f>(value);
    }
    Lum32f value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

inline void storeElement(void* to, Element element, Lum32f value)
{
    if (element == Element::U8) {
        *static_cast<Lum8u*>(to) = static_cast<Lum8u>(value);
    } else if (element == Element::U16) {
        const Lum16u narrow = static_cast<Lum16u>(value);
        std::memcpy(to, &narrow, sizeof narrow);
    } else {
        std::memcpy(to, &value, sizeof value);
    }
}

/// The largest integer of the type; a large number of 32f.
inline Lum32f largestOf(Element element)
{
    return element == Element::U8 ? 255.0f : element == Element::U16 ? 65535.0f : 3e38f;
}

/// What the pixels of an image are.
enum class Content
{
    Ordinary,
    Extreme,         ///< the ends of the range among them
    NonFinite,       ///< in 32f infinities and not-a-numbers among them; else as Extreme
    SpoiledOutside,  ///< ordinary under the mask; outside in 32f infinite or not-a-number, else the largest number
    WholeNumbers,    ///< in 32f too: every sum is exact in any order
    FewValues,       ///< mostly equal: ties; in 32f zeros of both signs, infinities and not-a-numbers among them
    NearlyConstant,  ///< so close to each other that the one-pass variance cancels
    Zero
};

inline Lum32f draw(Random& random, Element element, Content content, bool chosen)
{
    const bool isFloat = element == Element::F32;
    const auto among = [&](Values values) {
        return element == Element::U8    ? static_cast<Lum32f>(random.value<Lum8u>(values))
               : element == Element::U16 ? static_cast<Lum32f>(random.value<Lum16u>(values))
                                         : random.value<Lum32f>(values);
    };
    switch (content) {
        case Content::Ordinary:
            return among(Values::Ordinary);
        case Content::Extreme:
            return among(Values::Extreme);
        case Content::NonFinite:
            return among(Values::NonFinite);
        case Content::SpoiledOutside: {
            const Lum32f outside[] = {kInfinity, -kInfinity, kNan};
            return chosen ? among(Values::Ordinary) : isFloat ? outside[random.between(0, 2)] : largestOf(element);
        }
        case Content::WholeNumbers:
            return isFloat ? static_cast<Lum32f>(random.between(-1000, 1000)) : among(Values::Ordinary);
        case Content::FewValues: {
            const Lum32f floats[] = {0.0f, -0.0f, 1.0f, -1.0f, kInfinity, -kInfinity, kNan, 0.0f};
            const auto i = random.between(0, 7);
            return isFloat ? floats[i] : i < 5 ? 7.0f : i == 5 ? 0.0f : largestOf(element);
        }
        case Content::NearlyConstant:
            return isFloat ? 1e6f + random.unit<Lum32f>() * 8 : static_cast<Lum32f>(200 + random.between(0, 1));
        case Content::Zero:
            break;
    }
    return isFloat && random.oneIn(2) ? -0.0f : 0.0f;
}

/// Two sources and a mask.
class Scene
{
  public:
    Scene(const Geometry& geometry, Element element, int channels)
        : element_(element),
          channels_(channels),
          source1_(inBytes(layoutOf(geometry, element, 0, channels), element)),
          source2_(inBytes(layoutOf(geometry, element, 1, channels), element)),
          mask_(geometry.layout<Lum8u>(2))
    {
    }
    Scene(int width, int height, Element element, int channels)
        : Scene(Geometry{.width = width, .height = height}, element, channels)
    {
    }

    int width() const
    {
        return mask_.width();
    }
    int height() const
    {
        return mask_.height();
    }
    Image<Lum8u>& mask()
    {
        return mask_;
    }

    /// Fills the mask and then all channels of the sources, those that are not of interest with other values.
    void fill(Random& random, Content content1, Content content2, int percentZero)
    {
        fillMask(mask_, random, percentZero);
        fillSource(source1_, random, content1);
        fillSource(source2_, random, content2);
    }
    void fillFirst(Lum32f value)
    {
        fillAll(source1_, value);
    }
    void fillSecond(Lum32f value)
    {
        fillAll(source2_, value);
    }
    void fillMaskWith(Lum8u value)
    {
        mask_.forEach(Area::Roi, [value](Lum8u& byte, int, int, int) { byte = value; });
    }
    void setFirst(int x, int y, Lum32f value, int channel = 0)
    {
        storeElement(elementAt(source1_, x, y, channel), element_, value);
    }
    void setSecond(int x, int y, Lum32f value, int channel = 0)
    {
        storeElement(elementAt(source2_, x, y, channel), element_, value);
    }
    void setMask(int x, int y, Lum8u value)
    {
        mask_.at(x, y) = value;
    }

    Operands operands(Lum32s coi = 1) const
    {
        Operands o;
        o.pSrc1 = source1_.pixels();
        o.src1Step = source1_.step();
        o.pSrc2 = source2_.pixels();
        o.src2Step = source2_.step();
        o.pMask = mask_.pixels();
        o.maskStep = mask_.step();
        o.roiSize = {mask_.width(), mask_.height()};
        o.coi = coi;
        return o;
    }

    /// What the references need of it.
    Sample sample(Lum32s coi = 1) const
    {
        Sample result{element_, width(), height(), {}, {}, {}};
        for (int y = 0; y < height(); ++y) {
            const Lum8u* const maskRow = mask_.row(y);
            result.mask.insert(result.mask.end(), maskRow, maskRow + width());
            for (int x = 0; x < width(); ++x) {
                result.first.push_back(loadElement(elementAt(source1_, x, y, coi - 1), element_));
                result.second.push_back(loadElement(elementAt(source2_, x, y, coi - 1), element_));
            }
        }
        return result;
    }

    /// All bytes from the first pixel of each image to its last.
    std::vector<unsigned char> allBytes() const
    {
        std::vector<unsigned char> result;
        for (const Image<Lum8u>* image : {&source1_, &source2_, &mask_}) {
            result.insert(result.end(), image->bytes(), image->bytes() + image->byteCount());
        }
        return result;
    }

  private:
    static Layout layoutOf(const Geometry& geometry, Element element, int operand, int channels)
    {
        return element == Element::U8    ? geometry.layout<Lum8u>(operand, channels)
               : element == Element::U16 ? geometry.layout<Lum16u>(operand, channels)
                                         : geometry.layout<Lum32f>(operand, channels);
    }
    // The images are made of bytes, whatever the element type is.
    static Layout inBytes(Layout layout, Element element)
    {
        layout.channels *= bytesOf(element);
        layout.offset *= bytesOf(element);
        return layout;
    }
    void* elementAt(Image<Lum8u>& image, int x, int y, int channel) const
    {
        return &image.at(x, y, channel * bytesOf(element_));
    }
    const void* elementAt(const Image<Lum8u>& image, int x, int y, int channel) const
    {
        return &image.at(x, y, channel * bytesOf(element_));
    }
    void fillAll(Image<Lum8u>& image, Lum32f value)
    {
        for (int y = 0; y < height(); ++y) {
            for (int i = 0; i < width() * channels_; ++i) {
                storeElement(image.row(y) + i * bytesOf(element_), element_, value);
            }
        }
    }
    void fillSource(Image<Lum8u>& image, Random& random, Content content)
    {
        for (int y = 0; y < height(); ++y) {
            for (int i = 0; i < width() * channels_; ++i) {
                storeElement(image.row(y) + i * bytesOf(element_), element_,
                             draw(random, element_, content, mask_.at(i / channels_, y) != 0));
            }
        }
    }

    Element element_;
    int channels_;
    Image<Lum8u> source1_;
    Image<Lum8u> source2_;
    Image<Lum8u> mask_;
};

/// Calls the function with all results wanted. What it does not write stays as a new Outcome is.
inline Outcome outcomeOf(const Export& e, Operands operands)
{
    Outcome result;
    operands.pValue = &result.value;
    operands.pStdDev = &result.stdDev;
    operands.pMinVal = &result.minVal;
    operands.pMaxVal = &result.maxVal;
    operands.pMinIndex = &result.minIndex;
    operands.pMaxIndex = &result.maxIndex;
    result.status = e.call(operands);
    return result;
}

inline std::string pointText(LumiPoint point)
{
    return "(" + std::to_string(point.x) + ", " + std::to_string(point.y) + ")";
}

/// Compares bit for bit; not-a-numbers are one value, except in norms, where their bits are fixed as well.
inline testing::AssertionResult sameOutcome(const Export& e, const Outcome& expected, const Outcome& actual)
{
    std::ostringstream text;
    const auto compare = [&text](const char* what, auto wanted, auto got) {
        if (!sameElement(wanted, got)) {
            text << " " << what << ": got " << elementText(got) << ", expected " << elementText(wanted) << ";";
        }
    };
    const auto comparePoints = [&text](const char* what, LumiPoint wanted, LumiPoint got) {
        if (wanted.x != got.x || wanted.y != got.y) {
            text << " " << what << ": got " << pointText(got) << ", expected " << pointText(wanted) << ";";
        }
    };
    compare("status", expected.status, actual.status);
    compare("value", expected.value, actual.value);
    compare("deviation", expected.stdDev, actual.stdDev);
    compare("minimum", expected.minVal, actual.minVal);
    compare("maximum", expected.maxVal, actual.maxVal);
    comparePoints("place of the minimum", expected.minIndex, actual.minIndex);
    comparePoints("place of the maximum", expected.maxIndex, actual.maxIndex);
    if (e.isNorm() && bitsOf(expected.value) != bitsOf(actual.value)) {
        text << " bits of the norm: got " << std::hex << bitsOf(actual.value) << ", expected " << bitsOf(expected.value)
             << ";";
    }
    if (text.str().empty()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << e.name << ":" << text.str();
}

/// Calls the function and compares with what the reference makes of the same images.
inline testing::AssertionResult agrees(const Export& e, const Scene& scene, const Sample& sample, Lum32s coi = 1)
{
    const auto same = sameOutcome(e, expectedOf(e, sample), outcomeOf(e, scene.operands(coi)));
    return same ? same
                : testing::AssertionFailure()
                      << same.message() << " channel " << coi << ", " << scene.width() << " x " << scene.height();
}
inline testing::AssertionResult agrees(const Export& e, const Scene& scene, Lum32s coi = 1)
{
    return agrees(e, scene, scene.sample(coi), coi);
}

inline const Export& exportNamed(std::string_view name)
{
    for (const Export& e : allExports()) {
        if (e.name == name) {
            return e;
        }
    }
    std::fprintf(stderr, "there is no function of this name\n");
    std::abort();
}

}  // namespace lumcv::test::stats
