// Gallery: a lens and what undoes it, copies between pixels, the pixels of a line, and the gradient of a colour
// picture.
#include <algorithm>
#include <cmath>

#include "section.hpp"
#include "shapes.hpp"

namespace gallery {
namespace {

struct Lens
{
    Lum32f focalLength, cx, cy, k1, k2, p1, p2;
};

Lens lensFor(LumiSize size)
{
    const auto width = static_cast<Lum32f>(size.width), height = static_cast<Lum32f>(size.height);
    return {0.65f * std::max(width, height), 0.5f * width, 0.5f * height, -0.3f, 0.06f, 0.006f, -0.009f};
}

// Where the lens shows the point (x, y).
void seen(const Lens& lens, float& x, float& y)
{
    const float u = x - lens.cx, v = y - lens.cy, a = u / lens.focalLength, b = v / lens.focalLength;
    const float r2 = a * a + b * b;
    const float g = (lens.k1 + lens.k2 * r2) * r2 + 2 * lens.p1 * b + 2 * lens.p2 * a;
    x += u * g + lens.p2 * lens.focalLength * r2;
    y += v * g + lens.p1 * lens.focalLength * r2;
}

// A pixel of the picture, or black beyond its edges.
float levelAt(const Picture& picture, float x, float y, int channel)
{
    const float left = std::floor(x), top = std::floor(y);
    if (!(left >= 0 && top >= 0 && left < static_cast<float>(picture.width() - 1) &&
          top < static_cast<float>(picture.height() - 1))) {
        return 0;
    }
    const int column = static_cast<int>(left), row = static_cast<int>(top);
    const auto pixel = [&](int dx, int dy) { return static_cast<float>(picture.at(column + dx, row + dy, channel)); };
    const float upper = pixel(0, 0) + (x - left) * (pixel(1, 0) - pixel(0, 0));
    const float lower = pixel(0, 1) + (x - left) * (pixel(1, 1) - pixel(0, 1));
    return upper + (y - top) * (lower - upper);
}

// The picture behind a grid, as the lens sees both.
Picture throughLens(const Picture& colour, const Lens& lens)
{
    constexpr int apart = 40;
    constexpr Colour gridColour = {255, 240, 90};
    Picture straight = colour;
    for (int x = apart / 2; x < straight.width(); x += apart) {
        drawRectangle(straight, x - 1, 0, 2, straight.height(), gridColour);
    }
    for (int y = apart / 2; y < straight.height(); y += apart) {
        drawRectangle(straight, 0, y - 1, straight.width(), 2, gridColour);
    }
    Picture result(colour.width(), colour.height(), 3);
    for (int row = 0; row < result.height(); ++row) {
        for (int column = 0; column < result.width(); ++column) {
            const auto targetX = static_cast<float>(column), targetY = static_cast<float>(row);
            float x = targetX, y = targetY;
            for (int i = 0; i < 30; ++i) {
                float seenX = x, seenY = y;
                seen(lens, seenX, seenY);
                x += targetX - seenX;
                y += targetY - seenY;
            }
            for (int c = 0; c < 3; ++c) {
                result.at(column, row, c) = toByte(levelAt(straight, x, y, c));
            }
        }
    }
    return result;
}

Picture distorted(const Source& source, Shot&)
{
    return throughLens(source.colour, lensFor(source.colour.size()));
}

Picture correctedDirectly(const Source& source, Shot& shot)
{
    const Lens lens = lensFor(source.colour.size());
    const Picture before = throughLens(source.colour, lens);
    Picture result(before.width(), before.height(), 3);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiUndistortGetSize(before.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.time(GALLERY_CALL(lumiUndistortRadial_8u_C3R(before.pixels(), before.step(), result.pixels(), result.step(),
                                                      before.size(), lens.focalLength, lens.focalLength, lens.cx,
                                                      lens.cy, lens.k1, lens.k2, buffer.data())));
    return result;
}

Picture correctedByMap(const Source& source, Shot& shot)
{
    const Lens lens = lensFor(source.colour.size());
    const Picture before = throughLens(source.colour, lens);
    Image<Lum32f> columns(before.width(), before.height(), 1), rows(before.width(), before.height(), 1);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiUndistortGetSize(before.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.time(GALLERY_CALL(lumiCreateMapCameraUndistort_32f_C1R(
        columns.pixels(), columns.step(), rows.pixels(), rows.step(), before.size(), lens.focalLength, lens.focalLength,
        lens.cx, lens.cy, lens.k1, lens.k2, lens.p1, lens.p2, buffer.data())));
    Picture result(before.width(), before.height(), 3);
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            for (int c = 0; c < 3; ++c) {
                result.at(x, y, c) = toByte(levelAt(before, columns.at(x, y), rows.at(x, y), c));
            }
        }
    }
    return result;
}

void enlarge(const Picture& small, int zoom, Picture& picture)
{
    for (int y = 0; y < small.height() * zoom; ++y) {
        for (int x = 0; x < small.width() * zoom; ++x) {
            picture.at(x, y) = small.at(x / zoom, y / zoom);
        }
    }
}

Picture subpixelShifts(const Source& source, Shot& shot)
{
    constexpr int side = 40, gap = 8, zoom = 8;
    const Picture& gray = source.gray;
    const Lum8u* const begin = &gray.at(gray.width() * 9 / 16 - side / 2, gray.height() * 9 / 16 - side / 2);
    Picture result(2 * side * zoom + gap, side * zoom, 1, 255);
    Picture shifted(side, side, 1);
    for (int j = 0; j < zoom; ++j) {
        for (int i = 0; i < zoom; ++i) {
            const Lum32f dx = static_cast<Lum32f>(i) / zoom, dy = static_cast<Lum32f>(j) / zoom;
            shot.timeOnce(GALLERY_CALL(
                lumiCopySubpix_8u_C1R(begin, gray.step(), shifted.pixels(), shifted.step(), shifted.size(), dx, dy)));
            if (i == 0 && j == 0) {
                enlarge(shifted, zoom, result);
            }
            for (int y = 0; y < side; ++y) {
                for (int x = 0; x < side; ++x) {
                    result.at(side * zoom + gap + x * zoom + i, y * zoom + j) = shifted.at(x, y);
                }
            }
        }
    }
    return result;
}

Picture subpixelAround(const Source& source, Shot& shot)
{
    constexpr LumiSize size = {161, 107};
    constexpr LumiPoint32f point = {50.4f, 25.7f};
    constexpr int zoom = 4;
    Picture patch(size.width, size.height, 1);
    LumiPoint first{}, last{};
    shot.time(GALLERY_CALL(lumiCopySubpixIntersect_8u_C1R(source.gray.pixels(), source.gray.step(), source.gray.size(),
                                                          patch.pixels(), patch.step(), size, point, &first, &last)));
    Picture gray(size.width * zoom, size.height * zoom, 1);
    enlarge(patch, zoom, gray);
    Picture result(gray.width(), gray.height(), 3);
    for (int y = 0; y < gray.height(); ++y) {
        for (int x = 0; x < gray.width(); ++x) {
            const int column = x / zoom, row = y / zoom;
            const bool isGenuine = column >= first.x && row >= first.y && column <= last.x && row <= last.y;
            for (int c = 0; c < 3; ++c) {
                const int level = gray.at(x, y);
                result.at(x, y, c) = static_cast<Lum8u>(isGenuine ? level : c == 0 ? level / 2 + 100 : level / 2);
            }
        }
    }
    return result;
}

Picture profile(const Source& source, Shot& shot)
{
    constexpr int graphHeight = 138;
    constexpr Colour inks[] = {{255, 80, 70}, {80, 220, 90}, {90, 140, 255}};
    const Picture& colour = source.colour;
    const LumiPoint from = {colour.width() / 12, colour.height() / 10};
    const LumiPoint to = {colour.width() - 1 - colour.width() / 12, colour.height() - 1 - colour.height() / 5};
    const int count = std::max(to.x - from.x, to.y - from.y) + 1;
    Picture samples(count, 1, 3);
    shot.time(
        GALLERY_CALL(lumiSampleLine_8u_C3R(colour.pixels(), colour.step(), colour.size(), samples.pixels(), from, to)));
    Picture result(colour.width(), colour.height() + graphHeight, 3, 20);
    std::copy(colour.elements().begin(), colour.elements().end(), result.elements().begin());
    drawStroke(result, static_cast<float>(from.x), static_cast<float>(from.y), static_cast<float>(to.x),
               static_cast<float>(to.y), 1.5f, {255, 255, 255});
    const auto place = [&](int i) { return static_cast<float>(i * (colour.width() - 1)) / static_cast<float>(count); };
    const auto height = [&](int i, int c) {
        return static_cast<float>(result.height() - 5) - 0.5f * static_cast<float>(samples.at(i, 0, c));
    };
    for (int c = 0; c < 3; ++c) {
        for (int i = 0; i + 1 < count; ++i) {
            drawStroke(result, place(i), height(i, c), place(i + 1), height(i + 1, c), 1.2f, inks[c]);
        }
    }
    return result;
}

// The gradient of each channel for itself: the largest difference among 3 x 3 pixels.
Picture channelGradients(const Picture& colour, Shot& shot)
{
    const Block mask(9, 1);
    Lum32s specSize = 0, bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiMorphAdvGetSize_8u_C3R(colour.size(), {3, 3}, &specSize, &bufferSize)));
    Block specBlock(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
    auto* const spec = reinterpret_cast<LumiMorphCompoundSpec*>(specBlock.data());
    shot.prepare(GALLERY_CALL(lumiMorphAdvInit_8u_C3R(colour.size(), mask.data(), {3, 3}, spec, buffer.data())));
    Picture gradients(colour.width(), colour.height(), 3);
    shot.prepare(GALLERY_CALL(lumiMorphGradientBorder_8u_C3R(colour.pixels(), colour.step(), gradients.pixels(),
                                                             gradients.step(), colour.size(), lumBorderReplicate,
                                                             nullptr, spec, buffer.data())));
    return gradients;
}

Exhibit grayGradientBy(const char* file, const char* title, const char* note, LumiDistanceNorm norm)
{
    return {file, title, note, [norm](const Source& source, Shot& shot) {
                const Picture gradients = channelGradients(source.colour, shot);
                Picture result(gradients.width(), gradients.height(), 1);
                shot.time(GALLERY_CALL(lumiGradientColorToGray_8u_C3C1R(
                    gradients.pixels(), gradients.step(), result.pixels(), result.step(), result.size(), norm)));
                return result;
            }};
}

const Section section{
    76,
    "Geometry and colour gradients",
    "What a lens bends is straightened; pictures are sampled between their pixels and along a line; and the gradients "
    "of three channels become one.",
    {{"lens-distorted", "Seen through a lens",
      "The picture behind a grid. The lens bends it, and stands a little askew.", distorted},
     {"lens-corrected", "Corrected directly",
      "By the radial coefficients alone: straight but for what comes of standing askew.", correctedDirectly},
     {"lens-corrected-by-map", "Corrected by maps",
      "Two maps tell where each pixel comes from, with the tangential coefficients too. They are made once for a "
      "camera.",
      correctedByMap},
     {"subpixel-shift", "Shifts by eighths of a pixel",
      "Forty by forty pixels, on the left as they are. On the right each has become the sixty-four pixels of as many "
      "copies, shifted by eighths.",
      subpixelShifts},
     {"subpixel-around", "Around a point near the corner",
      "A rectangle cut out between the pixels. What lies beyond the picture repeats its edge, and is tinted here by "
      "the range that the call reports.",
      subpixelAround},
     {"line-profile", "Profile of a line", "The pixels under the white line, channel by channel.", profile},
     grayGradientBy("gray-gradient", "Gray gradient, L2",
                    "The root of the mean square of three gradients: edges between colours of the same brightness are "
                    "there as well.",
                    lumGradNormL2),
     grayGradientBy("gray-gradient-inf", "Gray gradient, Inf", "The largest of the three gradients.", lumGradNormInf)},
};

}  // namespace
}  // namespace gallery
