// Gallery: dilation and erosion by a gray element, and reconstruction from a marker.
#include <algorithm>

#include "section.hpp"

namespace gallery {
namespace {

// A dome of heights, highest in its middle and 0 at its rim.
constexpr int domeRadius = 7;
constexpr LumiSize domeSize = {2 * domeRadius + 1, 2 * domeRadius + 1};
constexpr LumiPoint domeCentre = {domeRadius, domeRadius};

std::vector<Lum32s> dome()
{
    std::vector<Lum32s> heights;
    for (int y = -domeRadius; y <= domeRadius; ++y)
        for (int x = -domeRadius; x <= domeRadius; ++x)
            heights.push_back(std::max(0, domeRadius * domeRadius - x * x - y * y));
    return heights;
}

// The record of a gray element, in a block of exactly the queried size.
class GrayElement
{
  public:
    GrayElement(Shot& shot, LumiSize roiSize, const std::vector<Lum32s>& mask, LumiSize maskSize, LumiPoint anchor)
    {
        Lum32s size = 0;
        shot.prepare(GALLERY_CALL(lumiMorphGrayGetSize_8u_C1R(roiSize, mask.data(), maskSize, &size)));
        block_.resize(static_cast<std::size_t>(size));
        shot.prepare(GALLERY_CALL(lumiMorphGrayInit_8u_C1R(state(), roiSize, mask.data(), maskSize, anchor)));
    }

    LumiMorphGrayRecord* state()
    {
        return reinterpret_cast<LumiMorphGrayRecord*>(block_.data());
    }

  private:
    Block block_;
};

Picture grayErosion(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Picture result(gray.width(), gray.height(), 1);
    GrayElement element(shot, gray.size(), dome(), domeSize, domeCentre);
    shot.time(GALLERY_CALL(lumiGrayErodeBorder_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(),
                                                      result.size(), lumBorderReplicate, element.state())));
    return result;
}

Picture grayDilation(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Picture result(gray.width(), gray.height(), 1);
    GrayElement element(shot, gray.size(), dome(), domeSize, domeCentre);
    shot.time(GALLERY_CALL(lumiGrayDilateBorder_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(),
                                                       result.size(), lumBorderReplicate, element.state())));
    return result;
}

Block reconstructionBuffer(Shot& shot, LumiSize roiSize)
{
    Lum32s size = 0;
    shot.prepare(GALLERY_CALL(lumiMorphReconstructGetBufferSize(roiSize, lumType8u, 1, &size)));
    return Block(static_cast<std::size_t>(size));
}

constexpr int runs = 5;

Picture levelledPeaks(const Source& source, Shot& shot)
{
    const Picture& mask = source.gray;
    const Picture lowered = mapped<Lum8u>(mask, [](Lum8u v) { return static_cast<Lum8u>(v > 50 ? v - 50 : 0); });
    Block buffer = reconstructionBuffer(shot, mask.size());
    Picture marker = lowered;
    for (int i = 0; i < runs; ++i) {
        marker = lowered;
        shot.timeOnce(
            GALLERY_CALL(lumiMorphReconstructDilate_8u_C1IR(mask.pixels(), mask.step(), marker.pixels(), marker.step(),
                                                            marker.size(), buffer.data(), lumDistanceNormInf)));
    }
    return marker;
}

Picture fromSeeds(const Source& source, Shot& shot)
{
    const Picture& mask = source.gray;
    const int brightest = *std::max_element(mask.elements().begin(), mask.elements().end());
    const Picture seeds = mapped<Lum8u>(mask, [=](Lum8u v) { return static_cast<Lum8u>(v >= brightest - 5 ? v : 0); });
    Block buffer = reconstructionBuffer(shot, mask.size());
    Picture marker = seeds;
    for (int i = 0; i < runs; ++i) {
        marker = seeds;
        shot.timeOnce(
            GALLERY_CALL(lumiMorphReconstructDilate_8u_C1IR(mask.pixels(), mask.step(), marker.pixels(), marker.step(),
                                                            marker.size(), buffer.data(), lumDistanceNormL1)));
    }
    return marker;
}

Picture filledHoles(const Source& source, Shot& shot)
{
    const Picture& mask = source.gray;
    Picture frame(mask.width(), mask.height(), 1, 255);
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            if (x == 0 || y == 0 || x == mask.width() - 1 || y == mask.height() - 1)
                frame.at(x, y) = mask.at(x, y);
    Block buffer = reconstructionBuffer(shot, mask.size());
    Picture marker = frame;
    for (int i = 0; i < runs; ++i) {
        marker = frame;
        shot.timeOnce(
            GALLERY_CALL(lumiMorphReconstructErode_8u_C1IR(mask.pixels(), mask.step(), marker.pixels(), marker.step(),
                                                           marker.size(), buffer.data(), lumDistanceNormInf)));
    }
    return marker;
}

const Section grayElements{
    45,
    "Gray-element morphology",
    "The structuring element is a dome of 15 x 15 heights instead of a flat mask.",
    {{"gray-erode-8u-c1", "Erosion by a dome", "What a dome pushed up from below can fill.", grayErosion},
     {"gray-dilate-8u-c1", "Dilation by a dome", "Each pixel has become a dome; the highest one shows.", grayDilation}},
};

const Section reconstructions{
    46,
    "Reconstruction",
    "A marker grows below the picture, or shrinks above it, until nothing changes.",
    {{"reconstruct-dilate-levelled", "From the picture lowered by 50",
      "Peaks that rise less than 50 above their surroundings are levelled, everything else is rebuilt exactly.",
      levelledPeaks},
     {"reconstruct-dilate-seeds", "From the brightest pixels",
      "Only what is connected to one of the brightest pixels comes back in full.", fromSeeds},
     {"reconstruct-erode-holes", "By erosion from the frame",
      "The marker is white but for the picture's rim: dark holes that do not reach the rim are filled.", filledHoles}},
};

}  // namespace
}  // namespace gallery
