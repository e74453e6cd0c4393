#include "busy_scene.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "scene.hpp"

namespace watch {
namespace {

using gallery::Picture;

struct Ball
{
    float x, y, radius;
    std::array<int, 3> colour;
};

std::array<Ball, 2> ballsOf(LumiSize size, int index)
{
    const auto width = static_cast<float>(size.width), height = static_cast<float>(size.height);
    const float radius = 0.1f * std::min(width, height);
    const auto time = static_cast<float>(index - BusyScene::still);
    // the way of a ball leads through the picture and as far beyond as it and its shadow are wide
    const float way = width + 8.0f * radius;
    const auto along = [&](float speed, float start) { return std::fmod(speed * width * time + start * way, way); };
    if (index < BusyScene::still) {
        return {Ball{-1e6f, 0, radius, {}}, Ball{-1e6f, 0, radius, {}}};
    }
    const float bounce = std::abs(std::sin(0.25f * time));
    return {Ball{along(0.02f, 0.05f) - 4.0f * radius, 0.7f * height - 0.2f * height * bounce, radius, {235, 60, 50}},
            Ball{width + 4.0f * radius - along(0.013f, 0.0f), 0.35f * height, 0.8f * radius, {60, 90, 235}}};
}

}  // namespace

Shown BusyScene::shown(int index, int x, int y) const
{
    const auto column = static_cast<float>(x), row = static_cast<float>(y);
    Shown result = Shown::Background;
    for (const Ball& ball : ballsOf(size(), index)) {
        if (std::hypot(column - ball.x, row - ball.y) <= ball.radius) {
            return Shown::Ball;
        }
        const float across = (column - ball.x - 1.3f * ball.radius) / 1.3f, down = (row - ball.y - ball.radius) / 0.5f;
        if (std::hypot(across, down) <= ball.radius) {
            result = Shown::Shadow;
        }
    }
    return result;
}

Picture BusyScene::frame(int index) const
{
    constexpr int noise = 9;
    constexpr float shade = 0.65f;
    gallery::Random random(static_cast<std::uint32_t>(index) + 1u);
    const auto balls = ballsOf(size(), index);
    Picture frame = backdrop_;
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            // leaves: in the upper left quarter pixels take turns between two colours, each in its own time
            const bool hasLeaves = x < frame.width() / 2 && y < frame.height() / 2;
            const int phase = (x / 3 * 7 + y / 3 * 13) % 17;
            const int lift = hasLeaves && (index * (1 + phase % 3) + phase) % 5 < 2 ? 45 : 0;
            const Shown what = shown(index, x, y);
            const Ball& ball =
                std::hypot(static_cast<float>(x) - balls[0].x, static_cast<float>(y) - balls[0].y) <= balls[0].radius
                    ? balls[0]
                    : balls[1];
            for (int c = 0; c < 3; ++c) {
                const int plain = std::min(40 + backdrop_.at(x, y, c) * 3 / 4, 245) - lift;
                const int level = what == Shown::Ball     ? ball.colour[static_cast<std::size_t>(c)]
                                  : what == Shown::Shadow ? static_cast<int>(shade * static_cast<float>(plain))
                                                          : plain;
                frame.at(x, y, c) = static_cast<Lum8u>(std::clamp(level + random.below(noise) - noise / 2, 0, 255));
            }
        }
    }
    return frame;
}

Picture middleOf(const Picture& picture, int mostWidth, int mostHeight)
{
    const int width = std::min(picture.width(), mostWidth), height = std::min(picture.height(), mostHeight);
    const int left = (picture.width() - width) / 2, top = (picture.height() - height) / 2;
    Picture middle(width, height, 3);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < 3; ++c) {
                middle.at(x, y, c) = picture.at(left + x, top + y, c);
            }
        }
    }
    return middle;
}

}  // namespace watch
