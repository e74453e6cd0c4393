// Gallery: the levels of a pyramid, down and up again, and the optical flow between two frames.
#include <algorithm>
#include <cmath>

#include "section.hpp"
#include "shapes.hpp"

namespace gallery {
namespace {

constexpr Lum32f rate = 2.0f;
constexpr Lum16s kernel[5] = {1, 4, 6, 4, 1};
constexpr int smallerLevels = 3;

// The record that makes smaller levels, in a block of its own.
class Down
{
  public:
    Down(LumiSize size, Shot& shot)
    {
        Lum32s stateSize = 0, bufferSize = 1;
        shot.prepare(GALLERY_CALL(lumiPyramidLayerDownGetSize_8u_C1R(size, rate, 5, &stateSize, &bufferSize)));
        block_.resize(static_cast<std::size_t>(stateSize));
        Block buffer(static_cast<std::size_t>(bufferSize));
        shot.prepare(GALLERY_CALL(
            lumiPyramidLayerDownInit_8u_C1R(&record, size, rate, kernel, 5, 2, block_.data(), buffer.data())));
    }

    LumiPyramidLayerDownRecord* record = nullptr;

  private:
    Block block_;
};

// `run` is Shot::time where the level is what is shown, and Shot::prepare where it is only needed.
Picture smallerLevel(const Picture& image, Down& down, Shot& shot, decltype(&Shot::time) run)
{
    LumiSize half{};
    shot.prepare(GALLERY_CALL(lumiGetPyramidDownROI(image.size(), &half, rate)));
    Picture level(half.width, half.height, 1);
    (shot.*run)(GALLERY_CALL(lumiPyramidLayerDown_8u_C1R(image.pixels(), image.step(), image.size(), level.pixels(),
                                                         level.step(), level.size(), down.record)));
    return level;
}

// All of them, the largest first.
std::vector<Picture> levelsOf(const Picture& gray, Shot& shot, decltype(&Shot::time) run)
{
    Down down(gray.size(), shot);
    std::vector<Picture> levels{gray};
    for (int l = 0; l < smallerLevels; ++l) {
        levels.push_back(smallerLevel(levels.back(), down, shot, l == 0 ? run : &Shot::prepare));
    }
    return levels;
}

void paste(Picture& picture, const Picture& part, int left, int top)
{
    for (int y = 0; y < part.height(); ++y) {
        for (int x = 0; x < part.width(); ++x) {
            picture.at(left + x, top + y) = part.at(x, y);
        }
    }
}

Picture levelsDown(const Source& source, Shot& shot)
{
    const std::vector<Picture> levels = levelsOf(source.gray, shot, &Shot::time);
    int width = 0;
    for (std::size_t l = 1; l < levels.size(); ++l) {
        width += levels[l].width();
    }
    Picture result(width, levels[1].height(), 1, 255);
    int left = 0;
    for (std::size_t l = 1; l < levels.size(); ++l) {
        paste(result, levels[l], left, levels[1].height() - levels[l].height());
        left += levels[l].width();
    }
    return result;
}

Picture levelsUp(const Source& source, Shot& shot)
{
    const std::vector<Picture> levels = levelsOf(source.gray, shot, &Shot::prepare);
    Picture image = levels.back();
    Lum32s stateSize = 0;
    const LumiSize size = levels[1].size();  // the largest that is blown up
    shot.prepare(GALLERY_CALL(lumiPyramidLayerUpGetSize_8u_C1R(size, rate, 5, &stateSize)));
    Block block(static_cast<std::size_t>(stateSize));
    LumiPyramidLayerUpRecord* up = nullptr;
    shot.prepare(GALLERY_CALL(lumiPyramidLayerUpInit_8u_C1R(&up, size, rate, kernel, 5, 2, block.data())));
    for (std::size_t l = levels.size() - 1; l > 0; --l) {
        Picture larger(levels[l - 1].width(), levels[l - 1].height(), 1);
        const auto run = l == 1 ? &Shot::time : &Shot::prepare;
        (shot.*run)(GALLERY_CALL(lumiPyramidLayerUp_8u_C1R(image.pixels(), image.step(), image.size(), larger.pixels(),
                                                           larger.step(), larger.size(), up)));
        image = larger;
    }
    return image;
}

// The camera comes closer and turns a little.
Picture nextFrame(const Picture& gray)
{
    constexpr float zoom = 1.04f, angle = 0.05f;
    const float middleX = static_cast<float>(gray.width() - 1) / 2, middleY = static_cast<float>(gray.height() - 1) / 2;
    const float cosine = std::cos(angle) / zoom, sine = std::sin(angle) / zoom;
    const auto pixel = [&](int x, int y) {
        return static_cast<float>(gray.at(std::clamp(x, 0, gray.width() - 1), std::clamp(y, 0, gray.height() - 1)));
    };
    Picture frame(gray.width(), gray.height(), 1);
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            const float dx = static_cast<float>(x) - middleX, dy = static_cast<float>(y) - middleY;
            const float u = middleX + cosine * dx + sine * dy, v = middleY - sine * dx + cosine * dy;
            const float left = std::floor(u), top = std::floor(v);
            const int column = static_cast<int>(left), row = static_cast<int>(top);
            const float upper = pixel(column, row) + (u - left) * (pixel(column + 1, row) - pixel(column, row));
            const float lower =
                pixel(column, row + 1) + (u - left) * (pixel(column + 1, row + 1) - pixel(column, row + 1));
            frame.at(x, y) = toByte(upper + (v - top) * (lower - upper));
        }
    }
    return frame;
}

// A pyramid record over images that stand elsewhere.
class Pyramid
{
  public:
    Pyramid(std::vector<Picture>& levels, Shot& shot)
    {
        const LumiSize size = levels.front().size();
        Lum32s pyramidSize = 0, bufferSize = 0;
        shot.prepare(GALLERY_CALL(lumiPyramidGetSize(&pyramidSize, &bufferSize, smallerLevels, size, rate)));
        block_.resize(static_cast<std::size_t>(pyramidSize));
        Block buffer(static_cast<std::size_t>(bufferSize));
        shot.prepare(GALLERY_CALL(lumiPyramidInit(&record, smallerLevels, size, rate, block_.data(), buffer.data())));
        for (int l = 0; l <= record->level; ++l) {
            record->ppLayers[l] = levels[static_cast<std::size_t>(l)].pixels();
            record->pLayerSteps[l] = levels[static_cast<std::size_t>(l)].step();
        }
    }

    LumiPyramidRecord* record = nullptr;

  private:
    Block block_;
};

Picture flowVectors(const Source& source, Shot& shot)
{
    constexpr int apart = 16, window = 21;
    constexpr Lum32f worstError = 12.0f;
    constexpr Colour still = {70, 160, 255}, moving = {255, 210, 60}, lost = {255, 40, 30};
    std::vector<Picture> firstLevels = levelsOf(source.gray, shot, &Shot::prepare);
    std::vector<Picture> secondLevels = levelsOf(nextFrame(source.gray), shot, &Shot::prepare);
    Pyramid first(firstLevels, shot), second(secondLevels, shot);

    std::vector<Lum32f> prev;
    for (int y = apart / 2; y < source.gray.height(); y += apart) {
        for (int x = apart / 2; x < source.gray.width(); x += apart) {
            prev.insert(prev.end(), {static_cast<Lum32f>(x), static_cast<Lum32f>(y)});
        }
    }
    const auto count = static_cast<Lum32s>(prev.size() / 2);
    std::vector<Lum32f> next(prev.size()), error(prev.size() / 2);
    std::vector<Lum8s> status(prev.size() / 2);
    Lum32s stateSize = 0;
    shot.prepare(GALLERY_CALL(lumiOpticalFlowPyrLKGetSize(window, source.gray.size(), lumType8u, 0, &stateSize)));
    Block block(static_cast<std::size_t>(stateSize));
    LumOptFlowPyrLKState* state = nullptr;
    shot.prepare(GALLERY_CALL(lumiOpticalFlowPyrLKInit_8u_C1R(&state, source.gray.size(), window, 0, block.data())));
    shot.time(
        GALLERY_CALL(lumiOpticalFlowPyrLK_8u_C1R(first.record, second.record, prev.data(), next.data(), status.data(),
                                                 error.data(), count, window, first.record->level, 20, 0.01f, state)));

    Picture result = mapped<Lum8u>(source.colour, [](Lum8u value) { return static_cast<Lum8u>(value / 2); });
    for (std::size_t i = 0; i < status.size(); ++i) {
        const Lum32f x = prev[2 * i], y = prev[2 * i + 1];
        const bool isFollowed = status[i] == 0 && error[i] <= worstError;
        drawRing(result, x, y, 0.0f, 1.5f, isFollowed ? still : lost);
        if (isFollowed) {
            drawStroke(result, x, y, next[2 * i], next[2 * i + 1], 1.2f, moving);
        }
    }
    return result;
}

const Section section{
    60,
    "Pyramids and optical flow",
    "An image in levels, each half as wide and high as the one before; and where points of one frame went in the next.",
    {{"pyramid-down", "Three levels down", "Smoothed by 1, 4, 6, 4, 1 before every second pixel is kept.", levelsDown},
     {"pyramid-up", "Three levels up again", "What the smallest of these levels still knows of the picture.", levelsUp},
     {"flow-vectors", "Flow between two frames",
      "The camera comes closer and turns a little. A stroke leads from where a point of the first frame was to where "
      "it "
      "is in the second; red points were lost, or look different there.",
      flowVectors}},
};

}  // namespace
}  // namespace gallery
