// Gallery: accumulation and difference.
#include <algorithm>
#include <cmath>

#include "scene.hpp"
#include "section.hpp"

namespace gallery {
namespace {

constexpr int frameCount = 32;

Picture shiftedCopy(const Picture& picture, int right, int down)
{
    Picture shifted(picture.width(), picture.height(), picture.channels());
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            for (int c = 0; c < picture.channels(); ++c) {
                shifted.at(x, y, c) = picture.at(std::max(x - right, 0), std::max(y - down, 0), c);
            }
        }
    }
    return shifted;
}

Picture differenceGray(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    const Picture moved = shiftedCopy(gray, 4, 3);
    Picture result(gray.width(), gray.height(), 1);
    shot.time(GALLERY_CALL(lumiAbsDiff_8u_C1R(gray.pixels(), gray.step(), moved.pixels(), moved.step(), result.pixels(),
                                              result.step(), result.size())));
    return result;
}

Picture differenceColour(const Source& source, Shot& shot)
{
    const Picture& colour = source.colour;
    const Picture moved = shiftedCopy(colour, 4, 3);
    Picture result(colour.width(), colour.height(), 3);
    shot.time(GALLERY_CALL(lumiAbsDiff_8u_C3R(colour.pixels(), colour.step(), moved.pixels(), moved.step(),
                                              result.pixels(), result.step(), result.size())));
    return result;
}

Picture differenceFromConstant(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Picture result(gray.width(), gray.height(), 1);
    shot.time(GALLERY_CALL(
        lumiAbsDiffC_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(), result.size(), 128)));
    return result;
}

Picture oneFrame(const Source& source, Shot&)
{
    return filmFrame(source.gray, frameCount - 1, frameCount);
}

Picture runningAverage(const Source& source, Shot& shot)
{
    Image<Lum32f> average =
        mapped<Lum32f>(filmFrame(source.gray, 0, frameCount), [](Lum8u v) { return Lum32f{static_cast<float>(v)}; });
    for (int i = 1; i < frameCount; ++i) {
        const Picture frame = filmFrame(source.gray, i, frameCount);
        shot.timeOnce(GALLERY_CALL(lumiAddWeighted_8u32f_C1IR(frame.pixels(), frame.step(), average.pixels(),
                                                              average.step(), average.size(), 0.1f)));
    }
    return mapped<Lum8u>(average, toByte);
}

Picture maskedAverage(const Source& source, Shot& shot)
{
    Picture background = filmFrame(source.gray, 0, frameCount);
    Image<Lum32f> average = mapped<Lum32f>(background, [](Lum8u v) { return Lum32f{static_cast<float>(v)}; });
    Picture still(background.width(), background.height(), 1);
    for (int i = 1; i < frameCount; ++i) {
        const Picture frame = filmFrame(source.gray, i, frameCount);
        shot.prepare(GALLERY_CALL(lumiAbsDiff_8u_C1R(frame.pixels(), frame.step(), background.pixels(),
                                                     background.step(), still.pixels(), still.step(), still.size())));
        still = mapped<Lum8u>(still, [](Lum8u difference) { return difference < 60 ? Lum8u{255} : Lum8u{0}; });
        shot.timeOnce(
            GALLERY_CALL(lumiAddWeighted_8u32f_C1IMR(frame.pixels(), frame.step(), still.pixels(), still.step(),
                                                     average.pixels(), average.step(), average.size(), 0.1f)));
        background = mapped<Lum8u>(average, toByte);
    }
    return background;
}

Picture deviation(const Source& source, Shot& shot)
{
    Image<Lum32f> sum(source.gray.width(), source.gray.height(), 1);
    Image<Lum32f> squares = sum;
    for (int i = 0; i < frameCount; ++i) {
        const Picture frame = filmFrame(source.gray, i, frameCount);
        shot.prepare(
            GALLERY_CALL(lumiAdd_8u32f_C1IR(frame.pixels(), frame.step(), sum.pixels(), sum.step(), sum.size())));
        shot.timeOnce(GALLERY_CALL(
            lumiAddSquare_8u32f_C1IR(frame.pixels(), frame.step(), squares.pixels(), squares.step(), squares.size())));
    }
    Picture result(sum.width(), sum.height(), 1);
    for (std::size_t i = 0; i < result.elements().size(); ++i) {
        const float mean = sum.elements()[i] / frameCount;
        const float variance = squares.elements()[i] / frameCount - mean * mean;
        result.elements()[i] = toByte(3.0f * std::sqrt(std::max(variance, 0.0f)));
    }
    return result;
}

const Section section{
    10,
    "Accumulation and difference",
    "Differences of two pictures, and 32-bit float accumulators that a film of noisy frames is added to.",
    {{"difference-gray", "Absolute difference, gray", "The picture and a copy moved by 4 pixels right and 3 down.",
      differenceGray},
     {"difference-rgb", "Absolute difference, RGB", "The same for three channels.", differenceColour},
     {"difference-constant", "Absolute difference from a constant", "How far each pixel is from 128.",
      differenceFromConstant},
     {"film-frame", "A frame of the film", "The last of 32 frames: a ball rolls in from the left, through noise.",
      oneFrame},
     {"running-average", "Running average of the film",
      "Each frame enters with a weight of a tenth: the noise is gone, the ball leaves a trail.", runningAverage},
     {"masked-average", "Running average with a mask",
      "Pixels that differ much from the average stay out of it, so the ball never enters.", maskedAverage},
     {"deviation", "Standard deviation over the film",
      "From a sum and a sum of squares, three times enlarged: bright is where something moved.", deviation}},
};

}  // namespace
}  // namespace gallery
