// Gallery: Laplacian, lowpass and Sobel cross. What has a sign is shown around middle gray.
#include <string>

#include "section.hpp"

namespace gallery {
namespace {

// Scratch of exactly the queried size.
using Query = LumStatus (*)(LumiSize, LumiMaskSize, Lum32s*);

Block scratch(Shot& shot, const char* text, Query query, LumiSize roiSize, LumiMaskSize mask)
{
    Lum32s bytes = 0;
    shot.prepare(text, [&] { return query(roiSize, mask, &bytes); });
    return Block(static_cast<std::size_t>(bytes));
}

std::string masked(const char* name, LumiMaskSize mask)
{
    return std::string(name) + (mask == lumMask3x3 ? " 3 x 3" : " 5 x 5");
}

std::string fileName(const char* name, LumiMaskSize mask)
{
    return std::string(name) + (mask == lumMask3x3 ? "-3" : "-5");
}

std::string shownAs(int valuesPerGray)
{
    return " Middle gray is 0, and a gray level stands for " + std::to_string(valuesPerGray) + " units.";
}

Exhibit laplacian(LumiMaskSize mask, int valuesPerGray)
{
    return {fileName("laplacian", mask), masked("Laplacian", mask),
            "Where the picture bends: lines and corners, whichever way they run." + shownAs(valuesPerGray),
            [=](const Source& source, Shot& shot) {
                const Picture& gray = source.gray;
                Image<Lum16s> bend(gray.width(), gray.height(), 1);
                Block buffer = scratch(shot, "lumiFilterLaplacianGetBufferSize_8u16s_C1R(roiSize, mask, &bufferSize)",
                                       lumiFilterLaplacianGetBufferSize_8u16s_C1R, gray.size(), mask);
                shot.time(GALLERY_CALL(lumiFilterLaplacianBorder_8u16s_C1R(gray.pixels(), gray.step(), bend.pixels(),
                                                                           bend.step(), bend.size(), mask,
                                                                           lumBorderMirror, 0, buffer.data())));
                return aroundGray(bend, valuesPerGray);
            }};
}

Exhibit sobelCross(LumiMaskSize mask, int valuesPerGray)
{
    return {
        fileName("sobel-cross", mask), masked("Sobel cross", mask),
        "The mixed second derivative: corners and diagonals, but no level or upright edges." + shownAs(valuesPerGray),
        [=](const Source& source, Shot& shot) {
            const Picture& gray = source.gray;
            Image<Lum16s> cross(gray.width(), gray.height(), 1);
            Block buffer = scratch(shot, "lumiFilterSobelCrossGetBufferSize_8u16s_C1R(roiSize, mask, &bufferSize)",
                                   lumiFilterSobelCrossGetBufferSize_8u16s_C1R, gray.size(), mask);
            shot.time(GALLERY_CALL(lumiFilterSobelCrossBorder_8u16s_C1R(gray.pixels(), gray.step(), cross.pixels(),
                                                                        cross.step(), cross.size(), mask,
                                                                        lumBorderMirror, 0, buffer.data())));
            return aroundGray(cross, valuesPerGray);
        }};
}

Exhibit lowpass(LumiMaskSize mask)
{
    return {fileName("lowpass", mask), masked("Lowpass", mask), "Each pixel becomes the mean of its mask.",
            [=](const Source& source, Shot& shot) {
                const Picture& gray = source.gray;
                Picture result(gray.width(), gray.height(), 1);
                Block buffer = scratch(shot, "lumiFilterLowpassGetBufferSize_8u_C1R(roiSize, mask, &bufferSize)",
                                       lumiFilterLowpassGetBufferSize_8u_C1R, gray.size(), mask);
                shot.time(GALLERY_CALL(lumiFilterLowpassBorder_8u_C1R(gray.pixels(), gray.step(), result.pixels(),
                                                                      result.step(), result.size(), mask,
                                                                      lumBorderReplicate, 0, buffer.data())));
                return result;
            }};
}

const Section section{
    40,
    "Laplacian, lowpass and Sobel cross",
    "Fixed masks of 3 x 3 and 5 x 5 pixels, on bytes in exact integer arithmetic.",
    {laplacian(lumMask3x3, 4), laplacian(lumMask5x5, 16), sobelCross(lumMask3x3, 1), sobelCross(lumMask5x5, 8),
     lowpass(lumMask3x3), lowpass(lumMask5x5)},
};

}  // namespace
}  // namespace gallery
