// Blocks for the Gaussian filter's tests: of exactly the queried size, at any address, checked for what is written
// beside them; and records laid in such blocks.
#pragma once

#include <initializer_list>
#include <ostream>

#include "filter/gaussian_reference.hpp"
#include "support/compare.hpp"
#include "support/guarded_block.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::gaussian {

/// A block that may hold a record.
class PlacedBlock : public test::PlacedBlock
{
  public:
    using test::PlacedBlock::PlacedBlock;

    LumFilterGaussianSpec* spec() const
    {
        return reinterpret_cast<LumFilterGaussianSpec*>(data());
    }
};

/// What a record is laid for.
struct Parameters
{
    int width = 1;
    int height = 1;
    Lum32s kernelSize = 3;
    Lum32f sigma = 1.0f;
    LumiBorderType border = lumBorderReplicate;
    LumDataType dataType = lumType8u;
    Lum32s channels = 1;
};

/// Which Init and which sizes: those of the ordinary entries or those of the 64-bit ones.
enum class Entry
{
    Ordinary,
    Large
};

inline std::size_t recordBytes(Entry entry, const Parameters& p)
{
    return static_cast<std::size_t>(entry == Entry::Ordinary ? bothSpecSizes(p.kernelSize, p.dataType)
                                                             : specSize(p.kernelSize));
}

inline std::size_t scratchBytes(Entry entry, const Parameters& p)
{
    return static_cast<std::size_t>(entry == Entry::Ordinary
                                        ? bufferSize(p.width, p.height, p.kernelSize, p.dataType, p.channels)
                                        : ringSize(p.width, p.kernelSize, p.channels));
}

/// Lays a record into a block of the exact size, with an Init buffer of the exact size.
inline LumStatus layRecord(Entry entry, const Parameters& p, const PlacedBlock& block)
{
    if (entry == Entry::Ordinary) {
        const PlacedBlock buffer(scratchBytes(entry, p));
        const LumStatus status = lumiFilterGaussianInit({p.width, p.height}, p.kernelSize, p.sigma, p.border,
                                                        p.dataType, p.channels, block.spec(), buffer.data());
        EXPECT_TRUE(buffer.intact());
        return status;
    }
    const PlacedBlock buffer(kInitBufferSize);
    const LumStatus status = lumiFilterGaussianInit_L({p.width, p.height}, p.kernelSize, p.sigma, p.border, p.dataType,
                                                      p.channels, block.spec(), buffer.data());
    EXPECT_TRUE(buffer.intact());
    return status;
}

inline PlacedBlock makeRecord(Entry entry, const Parameters& p, Guard guard = Guard::After, std::size_t distance = 0)
{
    PlacedBlock block(recordBytes(entry, p), guard, distance);
    EXPECT_EQ(layRecord(entry, p, block), lumOk);
    EXPECT_TRUE(block.intact());
    return block;
}

/// The pixels around the ROI that a border promises: half a kernel on each side that lies in memory.
inline Margins promisedMargins(LumiBorderType border, Lum32s kernelSize)
{
    const int h = kernelSize / 2;
    const auto side = [&](LumiBorderType flag) { return (border & flag) != 0 ? h : 0; };
    return {side(lumBorderInMemTop), side(lumBorderInMemBottom), side(lumBorderInMemLeft), side(lumBorderInMemRight)};
}

inline bool allInMemory(LumiBorderType border)
{
    return (border & lumBorderInMem) == lumBorderInMem;
}

inline bool isFilterMode(LumiBorderType border)
{
    const int mode = border & 15;
    return mode == lumBorderReplicate || mode == lumBorderMirror || mode == lumBorderConstant;
}

/// The ways to call the filter.
enum class Apply
{
    Ordinary,
    Large,
    BorderFromRecord
};

constexpr Apply kAllWays[] = {Apply::Ordinary, Apply::Large, Apply::BorderFromRecord};

inline Entry entryOf(Apply way)
{
    return way == Apply::Large ? Entry::Large : Entry::Ordinary;
}

/// One call with everything around it.
struct Setting
{
    int width = 1;
    int height = 1;
    Lum32s kernelSize = 3;
    Lum32f sigma = 1.0f;
    LumiBorderType border = lumBorderReplicate;
    Values values = Values::Extreme;
    int seed = 0;  ///< of the pixels
    Guard guard = Guard::After;
    std::size_t distance = 0;  ///< of record and scratch from the unreadable page
    int offset = 0;            ///< of the images from the page's edge, in elements
    int gap = 0;               ///< between rows, in elements

    template <class Format>
    Parameters parameters() const
    {
        Parameters p;
        p.width = width;
        p.height = height;
        p.kernelSize = kernelSize;
        p.sigma = sigma;
        p.border = border;
        p.dataType = Format::dataType;
        p.channels = Format::channels;
        return p;
    }
    template <class Format>
    Layout layout(Margins margins = {}) const
    {
        Layout layout;
        layout.width = width;
        layout.height = height;
        layout.channels = Format::channels;
        layout.gap = gap * static_cast<int>(sizeof(typename Format::Element));
        layout.guard = guard;
        layout.margins = margins;
        layout.offset = offset;
        return layout;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Setting& s)
{
    return stream << s.width << " x " << s.height << ", kernel " << s.kernelSize << ", sigma " << s.sigma << ", border "
                  << s.border << ", values " << static_cast<int>(s.values) << ", seed " << s.seed << ", page "
                  << (s.guard == Guard::After ? "after" : "before") << ", distance " << s.distance << ", offset "
                  << s.offset << ", gap " << s.gap;
}

/// Calls the filter in one of its ways; the border argument is not used where the record decides.
template <class Format>
LumStatus callFilter(Apply way, const typename Format::Element* pSrc, Lum64s srcStep, typename Format::Element* pDst,
                     Lum64s dstStep, LumiSizeL roiSize, LumiBorderType border,
                     const typename Format::Element* pBorderValue, const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    if (way == Apply::Large) {
        return Format::applyL(pSrc, srcStep, pDst, dstStep, roiSize, border, pBorderValue, pSpec, pBuffer);
    }
    const auto srcStep32 = static_cast<Lum32s>(srcStep);
    const auto dstStep32 = static_cast<Lum32s>(dstStep);
    const LumiSize size = {static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)};
    if (way == Apply::BorderFromRecord) {
        return Format::callBorder(pSrc, srcStep32, pDst, dstStep32, size, pBorderValue, pSpec, pBuffer);
    }
    return Format::apply(pSrc, srcStep32, pDst, dstStep32, size, border, pBorderValue, pSpec, pBuffer);
}

/// What the filter makes of a source that offers at(x, y, channel).
template <class Format, class Source>
Image<typename Format::Element> reference(const Setting& setting, const Source& source,
                                          const typename Format::Element* borderValue)
{
    using T = typename Format::Element;
    const PlacedBlock record = makeRecord(Entry::Large, setting.template parameters<Format>());
    const std::vector<T> result =
        filter(foldedTaps(record.data()), setting.width, setting.height, Format::channels, setting.border, borderValue,
               [&](int x, int y, int c) { return source.at(x, y, c); });
    Image<T> expected(setting.template layout<Format>());
    auto next = result.begin();
    expected.forEach(Area::Roi, [&](T& element, int, int, int) { element = *next++; });
    return expected;
}

/// Border values that end at an unreadable page.
template <class Format>
class BorderValue
{
  public:
    using T = typename Format::Element;

    BorderValue(int seed, Values values) : block_(Format::channels * sizeof(T), Guard::After)
    {
        Random random(static_cast<std::uint64_t>(seed) + 1000);
        for (int c = 0; c < Format::channels; ++c) {
            const T value = random.value<T>(values);
            std::memcpy(block_.data() + static_cast<std::size_t>(c) * sizeof(T), &value, sizeof(T));
        }
    }
    const T* values() const
    {
        return block_.as<T>();
    }
    /// What a call gets: nothing unless its border needs it.
    const T* forBorder(LumiBorderType border) const
    {
        const bool needed = !allInMemory(border) && (border & 15) == lumBorderConstant;
        return needed ? values() : nullptr;
    }

  private:
    GuardedBlock block_;
};

/// Filters a random image in the given ways, each with blocks of its own, and compares the results with the reference.
template <class Format>
void expectFiltered(const Setting& setting, std::initializer_list<Apply> ways)
{
    using T = typename Format::Element;
    SCOPED_TRACE(setting);
    const Margins margins = promisedMargins(setting.border, setting.kernelSize);
    Image<T> source(setting.template layout<Format>(margins));
    Random random(static_cast<std::uint64_t>(setting.seed));
    fill(source, random, setting.values, Area::WithMargins);
    const BorderValue<Format> borderValue(setting.seed, setting.values);
    const Image<T> expected = reference<Format>(setting, source, borderValue.values());

    for (const Apply way : ways) {
        SCOPED_TRACE(way == Apply::Ordinary ? "ordinary" : way == Apply::Large ? "large" : "border from the record");
        Parameters p = setting.template parameters<Format>();
        if (way != Apply::BorderFromRecord) {
            // what the record was laid with is not asked
            p.border = setting.border == lumBorderMirror ? lumBorderReplicate : lumBorderMirror;
        }
        const PlacedBlock record = makeRecord(entryOf(way), p, setting.guard, setting.distance);
        record.makeReadOnly();
        const PlacedBlock scratch(scratchBytes(entryOf(way), p), setting.guard, setting.distance);
        Image<T> destination(setting.template layout<Format>());
        const LumStatus status =
            callFilter<Format>(way, source.pixels(), source.step(), destination.pixels(), destination.step(),
                               {setting.width, setting.height}, setting.border, borderValue.forBorder(setting.border),
                               record.spec(), scratch.data());
        EXPECT_EQ(status, lumOk);
        EXPECT_TRUE(sameImage(expected, destination));
        EXPECT_TRUE(destination.gapsIntact());
        EXPECT_TRUE(scratch.intact());
    }
}

}  // namespace lumcv::test::gaussian
