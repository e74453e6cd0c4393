// Draws the gallery's own scene and its film. Arithmetic is kept to integers and plain products, so that every machine
// draws the same pixels.
#include "scene.hpp"

#include <algorithm>
#include <cstdint>

#include "shapes.hpp"

namespace gallery {
namespace {

// Lines of invented letters: each is two to four strokes between the points of a small grid.
void drawWriting(Picture& picture, int left, int top, int columns, int lines, const Colour& colour, Random& random)
{
    for (int line = 0; line < lines; ++line) {
        int wordLength = 2 + random.below(6);
        for (int column = 0; column < columns; ++column) {
            if (wordLength-- == 0) {
                wordLength = 2 + random.below(7);
                continue;
            }
            const float x = static_cast<float>(left + column * 11);
            const float y = static_cast<float>(top + line * 23);
            int from = random.below(9);
            for (int stroke = 2 + random.below(3); stroke > 0; --stroke) {
                const int to = (from + 1 + random.below(8)) % 9;
                drawStroke(picture, x + static_cast<float>(from % 3) * 3.5f, y + static_cast<float>(from / 3) * 6.5f,
                           x + static_cast<float>(to % 3) * 3.5f, y + static_cast<float>(to / 3) * 6.5f, 1.7f, colour);
                from = to;
            }
        }
    }
}

// Rings that grow finer outwards. A triangle wave of the squared radius stands in for the cosine.
void drawZonePlate(Picture& picture, int left, int top, int side)
{
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int dx = 2 * x - side;
            const int dy = 2 * y - side;
            const int phase = (dx * dx + dy * dy) * 14 / side % 510;
            const int level = phase < 255 ? phase : 510 - phase;
            blend(picture, left + x, top + y, {level, level, level}, 1.0f);
        }
    }
}

// A coin with a raised rim and some marks on it.
void drawCoin(Picture& picture, float x, float y, float radius, const Colour& metal, Random& random)
{
    const auto shade = [&](int more) { return Colour{metal[0] + more, metal[1] + more, metal[2] + more}; };
    drawRing(picture, x, y, 0.0f, radius, metal);
    drawRing(picture, x, y, radius * 0.84f, radius, shade(22));
    for (int mark = 0; mark < 5; ++mark) {
        const float x0 = x + radius * static_cast<float>(random.below(100) - 50) * 0.01f;
        const float y0 = y + radius * static_cast<float>(random.below(100) - 50) * 0.01f;
        const float x1 = x + radius * static_cast<float>(random.below(100) - 50) * 0.01f;
        const float y1 = y + radius * static_cast<float>(random.below(100) - 50) * 0.01f;
        drawStroke(picture, x0, y0, x1, y1, radius * 0.2f, shade(mark % 2 == 0 ? -48 : 24));
    }
}

// A dark tray with coins of several sizes.
void drawTray(Picture& picture, int left, int top, Random& random)
{
    drawRectangle(picture, left, top, 300, 140, {58, 44, 40});
    drawRectangle(picture, left + 6, top + 6, 288, 128, {40, 34, 38});
    constexpr Colour metals[] = {{214, 186, 108}, {190, 194, 200}, {196, 130, 92}};
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < 5; ++column) {
            const float x = static_cast<float>(left + 38 + column * 56 + random.below(5) - 2);
            const float y = static_cast<float>(top + 38 + row * 64 + random.below(5) - 2);
            const float radius = static_cast<float>(15 + random.below(8));
            drawCoin(picture, x, y, radius, metals[random.below(3)], random);
        }
    }
}

void addNoise(Picture& picture, int left, int top, int width, int height, int strength, Random& random)
{
    for (int y = std::max(top, 0); y < std::min(top + height, picture.height()); ++y) {
        for (int x = std::max(left, 0); x < std::min(left + width, picture.width()); ++x) {
            for (int c = 0; c < picture.channels(); ++c) {
                // the sum of two even numbers falls more often near the middle, as noise does
                const int noise = random.below(strength + 1) + random.below(strength + 1) - strength;
                picture.at(x, y, c) = static_cast<Lum8u>(std::clamp(picture.at(x, y, c) + noise, 0, 255));
            }
        }
    }
}

}  // namespace

Picture drawScene()
{
    Random random(7);
    Picture picture(960, 640, 3);

    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int height = y * 256 / picture.height();
            const int across = x * 64 / picture.width();
            const Colour sky{70 + height * 5 / 8 + across, 120 + height * 3 / 8 + across / 2, 190 - height / 8};
            blend(picture, x, y, sky, 1.0f);
        }
    }

    drawRing(picture, 800.0f, 120.0f, 0.0f, 62.0f, {255, 214, 90});
    drawRing(picture, 800.0f, 120.0f, 78.0f, 84.0f, {255, 232, 160});
    drawTriangle(picture, -40, 380, 470, 230, {74, 92, 122});
    drawTriangle(picture, 210, 640, 470, 300, {58, 74, 104});
    drawTriangle(picture, 520, 1000, 470, 190, {86, 104, 130});
    drawRectangle(picture, 0, 470, 960, 170, {104, 128, 84});

    // a house, a tower, a fence: straight edges of every contrast
    drawRectangle(picture, 96, 380, 190, 140, {196, 92, 74});
    drawTriangle(picture, 80, 302, 382, 90, {122, 52, 46});
    drawRectangle(picture, 124, 416, 48, 44, {250, 240, 190});
    drawRectangle(picture, 208, 430, 46, 90, {84, 54, 40});
    drawRectangle(picture, 330, 270, 64, 250, {214, 208, 196});
    for (int row = 0; row < 8; ++row) {
        for (int column = 0; column < 4; ++column) {
            const bool dark = (row + column) % 2 == 0;
            drawRectangle(picture, 330 + column * 16, 270 + row * 16, 16, 16,
                          dark ? Colour{40, 44, 56} : Colour{230, 226, 214});
        }
    }
    for (int post = 0; post < 24; ++post) {
        const float x = 8.0f + static_cast<float>(post) * 22.0f;
        drawStroke(picture, x, 548.0f, x + 5.0f, 624.0f, 2.0f + static_cast<float>(post % 5), {238, 234, 224});
    }

    // a sheet of writing and a test pattern
    drawRectangle(picture, 470, 330, 236, 270, {120, 110, 96});
    drawRectangle(picture, 462, 322, 236, 270, {246, 243, 232});
    drawWriting(picture, 478, 338, 19, 10, {34, 32, 44}, random);
    drawRectangle(picture, 726, 376, 212, 212, {30, 30, 30});
    drawZonePlate(picture, 732, 382, 200);

    drawTray(picture, 392, 22, random);

    // a strip of pure colours, then noise: a little everywhere, much in one corner
    for (int patch = 0; patch < 8; ++patch) {
        const Colour colour{patch & 1 ? 235 : 20, patch & 2 ? 235 : 20, patch & 4 ? 235 : 20};
        drawRectangle(picture, 30 + patch * 40, 30, 40, 40, colour);
    }
    addNoise(picture, 0, 0, 960, 640, 5, random);
    addNoise(picture, 30, 90, 200, 110, 90, random);
    return picture;
}

Picture tiledUpTo(const Picture& picture, int least)
{
    const int width = std::max(picture.width(), least);
    const int height = std::max(picture.height(), least);
    Picture tiled(width, height, picture.channels());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < picture.channels(); ++c) {
                tiled.at(x, y, c) = picture.at(x % picture.width(), y % picture.height(), c);
            }
        }
    }
    return tiled;
}

Picture grayOf(const Picture& colour)
{
    Picture gray(colour.width(), colour.height(), 1);
    for (int y = 0; y < colour.height(); ++y) {
        for (int x = 0; x < colour.width(); ++x) {
            // the weights of red, green and blue in brightness, in 256ths
            const int sum = 77 * colour.at(x, y, 0) + 150 * colour.at(x, y, 1) + 29 * colour.at(x, y, 2);
            gray.at(x, y) = static_cast<Lum8u>((sum + 128) / 256);
        }
    }
    return gray;
}

Picture filmFrame(const Picture& gray, int index, int frameCount)
{
    Picture frame = gray;
    const float radius = static_cast<float>(std::min(gray.width(), gray.height())) * 0.11f;
    const float way = static_cast<float>(index) / static_cast<float>(std::max(frameCount - 1, 1));
    // it comes in from outside, so that the first frame shows the place without it, and does not leave again
    const float x = static_cast<float>(gray.width()) * (0.95f * way - 0.2f);
    const float y = static_cast<float>(gray.height()) * 0.45f;
    drawRing(frame, x, y, 0.0f, radius, {245, 245, 245});
    drawRing(frame, x, y, radius * 0.55f, radius * 0.75f, {30, 30, 30});

    Random random(static_cast<std::uint32_t>(index) + 100u);
    addNoise(frame, 0, 0, frame.width(), frame.height(), 40, random);
    return frame;
}

}  // namespace gallery
