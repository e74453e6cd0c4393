#include "count_objects.hpp"

#include <algorithm>

#include "shapes.hpp"
#include "smooth.hpp"

namespace count {
namespace {

using gallery::Colour;
using lumcv::call;

// Colours that differ from those of the labels before: each hue is the last one turned by the golden ratio.
Colour colourOf(Lum32s label)
{
    const int hue = static_cast<int>(static_cast<Lum32u>(label) * 949u % 1536u);
    const int rising = hue % 256, falling = 255 - rising;
    const Colour hues[] = {{255, rising, 0},  {falling, 255, 0}, {0, 255, rising},
                           {0, falling, 255}, {rising, 0, 255},  {255, 0, falling}};
    return hues[hue / 256];
}

void drawBox(Picture& picture, const LumiRect& box, const Colour& colour)
{
    gallery::drawRectangle(picture, box.x, box.y, box.width, 1, colour);
    gallery::drawRectangle(picture, box.x, box.y + box.height - 1, box.width, 1, colour);
    gallery::drawRectangle(picture, box.x, box.y, 1, box.height, colour);
    gallery::drawRectangle(picture, box.x + box.width - 1, box.y, 1, box.height, colour);
}

}  // namespace

Picture smoothed(const Picture& gray, int taps)
{
    return taps == 1 ? gray : gallery::smoothed(gray, taps, 0.15f * static_cast<Lum32f>(taps) + 0.35f);
}

Picture objectMask(const Picture& smooth, const Options& options)
{
    Picture mask = gallery::mapped<Lum8u>(smooth, [&](Lum8u level) {
        const bool isBright = level > options.threshold;
        return isBright != options.dark ? Lum8u{255} : Lum8u{0};
    });
    // equal pixels make the regions: what is not an object is already of the value that speckles get
    lumcv::Block scratch;
    call<lumiMarkSpecklesGetBufferSize>(mask.size(), lumType8u, 1, scratch).throwIfError();
    call<lumiMarkSpeckles_8u_C1IR>(mask.view(), mask.size(), 0, options.leastArea - 1, 0, lumNormInf, scratch)
        .throwIfError();
    return mask;
}

Count measured(const Picture& mask, bool diagonal)
{
    constexpr Lum32s largestLabel = 0x7FFFFFFE;
    Count count = {Image<Lum32s>(mask.width(), mask.height(), 1), {}};
    Lum32s number = 0;
    lumcv::Block scratch;
    call<lumiLabelMarkersGetBufferSize_8u32s_C1R>(mask.size(), scratch).throwIfError();
    call<lumiLabelMarkers_8u32s_C1R>(mask.view(), count.labels.view(), mask.size(), 1, largestLabel,
                                     diagonal ? lumDistanceNormInf : lumDistanceNormL1, &number, scratch)
        .throwIfError();

    for (Lum32s label = 1; label <= number; ++label) {
        count.objects.push_back({label, 0, {}});
    }
    // rows come from above, so a box begins with the row of its first pixel and ends with that of its last
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            const Lum32s label = count.labels.at(x, y);
            if (label == 0) {
                continue;
            }
            Object& object = count.objects[static_cast<std::size_t>(label - 1)];
            LumiRect& box = object.box;
            if (object.area++ == 0) {
                box = {x, y, 1, 1};
            }
            const int right = std::max(box.x + box.width, x + 1);
            box.x = std::min(box.x, x);
            box.width = right - box.x;
            box.height = y + 1 - box.y;
        }
    }
    return count;
}

Picture coloured(const Picture& gray, const Count& count)
{
    Picture result(gray.width(), gray.height(), 3);
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const int level = gray.at(x, y);
            const Lum32s label = count.labels.at(x, y);
            const Colour colour = label == 0 ? Colour{0, 0, 0} : colourOf(label);
            for (int c = 0; c < 3; ++c) {
                const int part = colour[static_cast<std::size_t>(c)];
                result.at(x, y, c) = static_cast<Lum8u>(label == 0 ? level / 2 : (2 * level + 3 * part) / 5);
            }
        }
    }
    for (const Object& object : count.objects) {
        drawBox(result, object.box, {255, 255, 255});
    }
    return result;
}

std::string table(const Count& count)
{
    std::string text = "label,area,x,y,width,height\n";
    for (const Object& object : count.objects) {
        const LumiRect& box = object.box;
        for (const int value : {object.label, object.area, box.x, box.y, box.width}) {
            text += std::to_string(value) + ",";
        }
        text += std::to_string(box.height) + "\n";
    }
    return text;
}

}  // namespace count
