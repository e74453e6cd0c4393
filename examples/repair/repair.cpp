#include "repair.hpp"

#include <algorithm>

#include "scene.hpp"
#include "shapes.hpp"

namespace repair {

using gallery::check;

Picture drawScratches(LumiSize size, std::uint32_t seed)
{
    constexpr int strokes = 12;
    constexpr int blots = 3;
    const gallery::Colour white = {255, 255, 255};
    gallery::Random random(seed);
    Picture drawn(size.width, size.height, 1);
    const auto placeX = [&] { return static_cast<float>(random.below(size.width)); };
    const auto placeY = [&] { return static_cast<float>(random.below(size.height)); };
    for (int i = 0; i < strokes; ++i) {
        const float x0 = placeX(), y0 = placeY(), x1 = placeX(), y1 = placeY();
        gallery::drawStroke(drawn, x0, y0, x1, y1, 2.0f, white);
    }
    for (int i = 0; i < blots; ++i) {
        const float x = placeX(), y = placeY();
        gallery::drawRing(drawn, x, y, 0.0f, 4.0f + static_cast<float>(i), white);
    }
    return gallery::mapped<Lum8u>(drawn, [](Lum8u level) { return level != 0 ? Lum8u{255} : Lum8u{0}; });
}

Picture painted(const Picture& picture, const Picture& mask, Lum8u level)
{
    Picture result = picture;
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            for (int c = 0; c < result.channels() && mask.at(x, y) != 0; ++c) {
                result.at(x, y, c) = level;
            }
        }
    }
    return result;
}

Image<Lum32f> depths(const Picture& mask)
{
    Image<Lum32f> result(mask.width(), mask.height(), 1);
    Lum32s bufferSize = 0;
    check(lumiFastMarchingGetBufferSize_8u32f_C1R(mask.size(), &bufferSize), "lumiFastMarchingGetBufferSize_8u32f_C1R");
    std::vector<Lum8u> buffer(static_cast<std::size_t>(bufferSize));
    constexpr Lum32f noBand = 0.0f;
    check(lumiFastMarching_8u32f_C1R(mask.pixels(), mask.step(), result.pixels(), result.step(), mask.size(), noBand,
                                     buffer.data()),
          "lumiFastMarching_8u32f_C1R");
    return result;
}

Repairer::Repairer(const Picture& mask, const Image<Lum32f>& depths, float radius, LumiInpaintMethod method,
                   int channels)
    : channels_(channels)
{
    Lum32s specSize = 0;
    Lum32s bufferSize = 0;
    check(lumiInpaintGetSize(mask.pixels(), mask.step(), mask.size(), radius, method, channels, &specSize, &bufferSize),
          "lumiInpaintGetSize");
    spec_.resize(static_cast<std::size_t>(specSize));
    buffer_.resize(static_cast<std::size_t>(bufferSize));
    const auto init = channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
    check(init(&state_, depths.pixels(), depths.step(), mask.pixels(), mask.step(), mask.size(), radius, method,
               spec_.data(), buffer_.data()),
          channels == 1 ? "lumiInpaintInit_8u_C1R" : "lumiInpaintInit_8u_C3R");
}

LumStatus Repairer::run(const Picture& source, Picture& destination)
{
    const auto inpaint = channels_ == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
    return inpaint(source.pixels(), source.step(), destination.pixels(), destination.step(), source.size(), state_,
                   buffer_.data());
}

Picture Repairer::repaired(const Picture& picture)
{
    Picture result(picture.width(), picture.height(), channels_);
    check(run(picture, result), channels_ == 1 ? "lumiInpaint_8u_C1R" : "lumiInpaint_8u_C3R");
    return result;
}

Picture difference(const Picture& a, const Picture& b)
{
    Picture result(a.width(), a.height(), a.channels());
    // channels are taken one by one, so a row of pixels is a row of that many times as many elements
    const LumiSize elements = {a.width() * a.channels(), a.height()};
    check(lumiAbsDiff_8u_C1R(a.pixels(), a.step(), b.pixels(), b.step(), result.pixels(), result.step(), elements),
          "lumiAbsDiff_8u_C1R");
    return result;
}

double meanWhereMasked(const Picture& picture, const Picture& mask)
{
    double sum = 0.0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            for (int c = 0; c < picture.channels() && mask.at(x, y) != 0; ++c) {
                sum += picture.at(x, y, c);
            }
        }
    }
    const int count = countMasked(mask);
    return count == 0 ? 0.0 : sum / count / picture.channels();
}

int countMasked(const Picture& mask)
{
    const auto& levels = mask.elements();
    return static_cast<int>(levels.size()) - static_cast<int>(std::count(levels.begin(), levels.end(), Lum8u{0}));
}

}  // namespace repair
