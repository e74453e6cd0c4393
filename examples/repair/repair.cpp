#include "repair.hpp"

#include <algorithm>

#include "scene.hpp"
#include "shapes.hpp"

namespace repair {

using lumcv::call;

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
    lumcv::Block scratch;
    call<lumiFastMarchingGetBufferSize_8u32f_C1R>(mask.size(), scratch).throwIfError();
    constexpr Lum32f noBand = 0.0f;
    call<lumiFastMarching_8u32f_C1R>(mask.view(), result.view(), mask.size(), noBand, scratch).throwIfError();
    return result;
}

Repairer::Repairer(const Picture& mask, const Image<Lum32f>& depths, float radius, LumiInpaintMethod method,
                   int channels)
    : channels_(channels)
{
    call<lumiInpaintGetSize>(mask.view(), mask.size(), radius, method, channels, state_, scratch_).throwIfError();
    const LumiSize size = mask.size();
    (channels == 1
         ? call<lumiInpaintInit_8u_C1R>(state_, depths.view(), mask.view(), size, radius, method, state_, scratch_)
         : call<lumiInpaintInit_8u_C3R>(state_, depths.view(), mask.view(), size, radius, method, state_, scratch_))
        .throwIfError();
}

Picture Repairer::repaired(const Picture& picture)
{
    Picture result(picture.width(), picture.height(), channels_);
    const LumiSize size = picture.size();
    (channels_ == 1 ? call<lumiInpaint_8u_C1R>(picture.view(), result.view(), size, state_, scratch_)
                    : call<lumiInpaint_8u_C3R>(picture.view<3>(), result.view<3>(), size, state_, scratch_))
        .throwIfError();
    return result;
}

Picture difference(const Picture& a, const Picture& b)
{
    Picture result(a.width(), a.height(), a.channels());
    // channels are taken one by one, so a row of pixels is a row of that many times as many elements
    const LumiSize elements = {a.width() * a.channels(), a.height()};
    call<lumiAbsDiff_8u_C1R>(a.pixels(), a.step(), b.pixels(), b.step(), result.pixels(), result.step(), elements)
        .throwIfError();
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
