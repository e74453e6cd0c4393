// Gallery: dilation with a disc, and the compound operations with a square.
#include <string>

#include "section.hpp"

namespace gallery {
namespace {

struct Element
{
    LumiSize size;
    Block mask;
};

Element disc(int diameter)
{
    Element element{{diameter, diameter}, {}};
    const int centre = diameter / 2;
    for (int y = -centre; y <= centre; ++y) {
        for (int x = -centre; x <= centre; ++x) {
            element.mask.push_back(4 * (x * x + y * y) <= diameter * diameter ? 1 : 0);
        }
    }
    return element;
}

Element square(int side)
{
    return {{side, side}, Block(static_cast<std::size_t>(side * side), 1)};
}

Picture dilatedByDisc(const Source& source, Shot& shot)
{
    const Picture& colour = source.colour;
    Picture result(colour.width(), colour.height(), 3);
    const Element element = disc(9);
    Lum32s specSize = 0;
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiMorphologyBorderGetSize_8u_C3R(colour.size(), element.size, &specSize, &bufferSize)));
    Block specBlock(static_cast<std::size_t>(specSize));
    Block buffer(static_cast<std::size_t>(bufferSize));
    auto* const spec = reinterpret_cast<LumiMorphMaskRecord*>(specBlock.data());
    shot.prepare(GALLERY_CALL(
        lumiMorphologyBorderInit_8u_C3R(colour.size(), element.mask.data(), element.size, spec, buffer.data())));
    shot.time(GALLERY_CALL(lumiDilateBorder_8u_C3R(colour.pixels(), colour.step(), result.pixels(), result.step(),
                                                   result.size(), lumBorderReplicate, nullptr, spec, buffer.data())));
    return result;
}

// Both elements of a compound operation, made ready in the caller's memory.
class Compound
{
  public:
    Compound(Shot& shot, LumiSize roiSize, const Element& element)
    {
        Lum32s specSize = 0;
        Lum32s bufferSize = 0;
        shot.prepare(GALLERY_CALL(lumiMorphAdvGetSize_8u_C1R(roiSize, element.size, &specSize, &bufferSize)));
        spec_.resize(static_cast<std::size_t>(specSize));
        buffer_.resize(static_cast<std::size_t>(bufferSize));
        shot.prepare(
            GALLERY_CALL(lumiMorphAdvInit_8u_C1R(roiSize, element.mask.data(), element.size, spec(), buffer())));
    }

    LumiMorphCompoundSpec* spec()
    {
        return reinterpret_cast<LumiMorphCompoundSpec*>(spec_.data());
    }
    Lum8u* buffer()
    {
        return buffer_.data();
    }

  private:
    Block spec_;
    Block buffer_;
};

Picture opened(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Picture result(gray.width(), gray.height(), 1);
    Compound compound(shot, gray.size(), square(9));
    shot.time(GALLERY_CALL(lumiMorphOpenBorder_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(),
                                                      result.size(), lumBorderReplicate, 0, compound.spec(),
                                                      compound.buffer())));
    return result;
}

Picture closed(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Picture result(gray.width(), gray.height(), 1);
    Compound compound(shot, gray.size(), square(9));
    shot.time(GALLERY_CALL(lumiMorphCloseBorder_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(),
                                                       result.size(), lumBorderReplicate, 0, compound.spec(),
                                                       compound.buffer())));
    return result;
}

Picture gradient(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Picture result(gray.width(), gray.height(), 1);
    Compound compound(shot, gray.size(), square(3));
    shot.time(GALLERY_CALL(lumiMorphGradientBorder_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(),
                                                          result.size(), lumBorderReplicate, 0, compound.spec(),
                                                          compound.buffer())));
    return result;
}

Picture tophat(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Picture result(gray.width(), gray.height(), 1);
    Compound compound(shot, gray.size(), square(15));
    shot.time(GALLERY_CALL(lumiMorphTophatBorder_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(),
                                                        result.size(), lumBorderReplicate, 0, compound.spec(),
                                                        compound.buffer())));
    return result;
}

Picture blackhat(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Picture result(gray.width(), gray.height(), 1);
    Compound compound(shot, gray.size(), square(15));
    shot.time(GALLERY_CALL(lumiMorphBlackhatBorder_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(),
                                                          result.size(), lumBorderReplicate, 0, compound.spec(),
                                                          compound.buffer())));
    return result;
}

const Section section{
    44,
    "Morphology",
    "The largest or the smallest pixel under a structuring element, and what is composed of the two.",
    {{"morph-dilate-disc-9", "Dilation by a disc of 9 pixels", "Bright parts grow, channel by channel.", dilatedByDisc},
     {"morph-open-9", "Opening by a square of 9", "Bright details that the square does not fit into are gone.", opened},
     {"morph-close-9", "Closing by a square of 9", "The same for dark details.", closed},
     {"morph-gradient-3", "Gradient by a square of 3", "Dilation minus erosion: the edges.", gradient},
     {"morph-tophat-15", "Top-hat by a square of 15", "The picture minus its opening: the bright details.", tophat},
     {"morph-blackhat-15", "Black-hat by a square of 15", "The closing minus the picture: the dark details.",
      blackhat}},
};

}  // namespace
}  // namespace gallery
