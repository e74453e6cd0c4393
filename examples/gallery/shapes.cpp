// Shapes. Arithmetic is kept to integers, plain products and roots, so that every machine draws the same pixels.
#include "shapes.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace gallery {

void blend(Picture& picture, int x, int y, const Colour& colour, float cover)
{
    if (x < 0 || y < 0 || x >= picture.width() || y >= picture.height() || cover <= 0.0f) {
        return;
    }
    cover = std::min(cover, 1.0f);
    for (int c = 0; c < picture.channels(); ++c) {
        const float old = picture.at(x, y, c);
        picture.at(x, y, c) = toByte(old + (static_cast<float>(colour[static_cast<std::size_t>(c)]) - old) * cover);
    }
}

void drawRectangle(Picture& picture, int left, int top, int width, int height, const Colour& colour)
{
    for (int y = top; y < top + height; ++y) {
        for (int x = left; x < left + width; ++x) {
            blend(picture, x, y, colour, 1.0f);
        }
    }
}

void drawRing(Picture& picture, float centreX, float centreY, float inner, float outer, const Colour& colour)
{
    const int reach = static_cast<int>(outer) + 2;
    for (int y = static_cast<int>(centreY) - reach; y <= static_cast<int>(centreY) + reach; ++y) {
        for (int x = static_cast<int>(centreX) - reach; x <= static_cast<int>(centreX) + reach; ++x) {
            const float dx = static_cast<float>(x) - centreX;
            const float dy = static_cast<float>(y) - centreY;
            const float radius = std::sqrt(dx * dx + dy * dy);
            const float inside = inner > 0.0f ? std::clamp(radius - inner + 0.5f, 0.0f, 1.0f) : 1.0f;
            blend(picture, x, y, colour, std::clamp(outer - radius + 0.5f, 0.0f, 1.0f) * inside);
        }
    }
}

void drawStroke(Picture& picture, float x0, float y0, float x1, float y1, float thickness, const Colour& colour)
{
    const float half = thickness * 0.5f;
    const float alongX = x1 - x0;
    const float alongY = y1 - y0;
    const float square = std::max(alongX * alongX + alongY * alongY, 1e-6f);
    for (int y = static_cast<int>(std::min(y0, y1) - half) - 1; y <= static_cast<int>(std::max(y0, y1) + half) + 1;
         ++y) {
        for (int x = static_cast<int>(std::min(x0, x1) - half) - 1; x <= static_cast<int>(std::max(x0, x1) + half) + 1;
             ++x) {
            const float dx = static_cast<float>(x) - x0;
            const float dy = static_cast<float>(y) - y0;
            const float t = std::clamp((dx * alongX + dy * alongY) / square, 0.0f, 1.0f);
            const float fromX = dx - t * alongX;
            const float fromY = dy - t * alongY;
            blend(picture, x, y, colour, half + 0.5f - std::sqrt(fromX * fromX + fromY * fromY));
        }
    }
}

void drawLine(Picture& picture, float cosine, float sine, float distance, float thickness, const Colour& colour)
{
    if (std::abs(sine) >= std::abs(cosine)) {
        const auto right = static_cast<float>(picture.width() - 1);
        drawStroke(picture, 0.0f, distance / sine, right, (distance - right * cosine) / sine, thickness, colour);
    } else {
        const auto bottom = static_cast<float>(picture.height() - 1);
        drawStroke(picture, distance / cosine, 0.0f, (distance - bottom * sine) / cosine, bottom, thickness, colour);
    }
}

void drawTriangle(Picture& picture, int left, int right, int bottom, int height, const Colour& colour)
{
    const float middle = static_cast<float>(left + right) * 0.5f;
    for (int y = bottom - height; y < bottom; ++y) {
        const float half = static_cast<float>(right - left) * 0.5f * static_cast<float>(y - bottom + height) /
                           static_cast<float>(height);
        for (int x = left; x <= right; ++x) {
            blend(picture, x, y, colour, half - std::abs(static_cast<float>(x) - middle) + 0.5f);
        }
    }
}

}  // namespace gallery
