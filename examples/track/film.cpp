#include "film.hpp"

#include <cmath>

#include "scene.hpp"
#include "shapes.hpp"

namespace track {

using gallery::Picture;

MovingScene::MovingScene(int frames) : frames_(frames), scene_(gallery::drawScene()) {}

Picture MovingScene::frame(int index) const
{
    constexpr int width = 400, height = 300;
    const double time = index;
    // within the scene for as long as it is wide, and then back again
    const double widest = scene_.width() - width - 2, way = std::fmod(230.0 + 5.3 * time, 2.0 * widest);
    const double left = way < widest ? way : 2.0 * widest - way;
    const double top = 190.0 + 60.0 * std::sin(0.15 * time);
    Picture frame(width, height, 3);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = x + left, v = y + top;
            const int column = static_cast<int>(u), row = static_cast<int>(v);
            const double right = u - column, below = v - row;
            for (int c = 0; c < 3; ++c) {
                const double upper = scene_.at(column, row, c) * (1 - right) + scene_.at(column + 1, row, c) * right;
                const double lower =
                    scene_.at(column, row + 1, c) * (1 - right) + scene_.at(column + 1, row + 1, c) * right;
                frame.at(x, y, c) = static_cast<Lum8u>(upper * (1 - below) + lower * below + 0.5);
            }
        }
    }
    const auto ballX = static_cast<float>(std::fmod(360.0 - 14.0 * time + 10000.0 * 480.0, 480.0) - 40.0);
    const auto ballY = static_cast<float>(150.0 + 50.0 * std::sin(0.3 * time));
    gallery::drawRing(frame, ballX, ballY, 0.0f, 32.0f, {235, 235, 240});
    gallery::drawRing(frame, ballX, ballY, 14.0f, 20.0f, {40, 60, 150});
    return frame;
}

}  // namespace track
