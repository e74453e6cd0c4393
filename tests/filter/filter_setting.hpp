// One call of a filter with everything around it: what is filtered, and where its operands stand.
#pragma once

#include <ostream>

#include "filter/extended_image.hpp"
#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test {

struct FilterSetting
{
    LumiSize size = {1, 1};
    int channels = 1;
    LumiBorderType border = lumBorderReplicate;
    Values values = Values::Extreme;
    int seed = 0;  // of the pixels
    Guard guard = Guard::After;
    std::size_t distance = 0;  // of record and scratch from the unreadable page
    int offset = 0;            // of the images from the page's edge, in elements
    int gap = 0;               // between rows, in elements

    template <class T>
    Layout layout(Margins margins = {}) const
    {
        Layout layout;
        layout.width = size.width;
        layout.height = size.height;
        layout.channels = channels;
        layout.gap = gap * static_cast<int>(sizeof(T));
        layout.guard = guard;
        layout.margins = margins;
        layout.offset = offset;
        return layout;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const FilterSetting& s)
{
    return stream << s.size.width << " x " << s.size.height << " of " << s.channels << " channels, border " << s.border
                  << ", values " << static_cast<int>(s.values) << ", seed " << s.seed << ", page "
                  << (s.guard == Guard::After ? "after" : "before") << ", distance " << s.distance << ", offset "
                  << s.offset << ", gap " << s.gap;
}

// Every mode, with no, one, two, three and four sides in memory.
constexpr LumiBorderType kBorders[] = {
    lumBorderReplicate,
    lumBorderMirror,
    lumBorderConstant,
    lumBorderInMem,
    lumBorderConstant | lumBorderInMemLeft,
    lumBorderMirror | lumBorderInMemRight | lumBorderInMemTop,
    lumBorderReplicate | lumBorderInMemLeft | lumBorderInMemRight | lumBorderInMemBottom,
};

// A border by turns, and operands at places drawn at random.
inline FilterSetting placed(LumiSize size, int seed)
{
    Random random(static_cast<std::uint64_t>(seed) + 77);
    FilterSetting setting;
    setting.size = size;
    setting.border = kBorders[seed % 7];
    setting.seed = seed;
    setting.guard = random.oneIn(2) ? Guard::After : Guard::Before;
    setting.distance = random.oneIn(2) ? 0 : static_cast<std::size_t>(random.between(0, 63));
    setting.offset = random.oneIn(2) ? 0 : static_cast<int>(random.between(0, 63));
    setting.gap = random.oneIn(2) ? 0 : static_cast<int>(random.between(0, 40));
    return setting;
}

}  // namespace lumcv::test
