// Destinations written past the caches: the same pixels at every alignment and width as through them, and nothing
// beside the rows, be their number even or odd.
#include <gtest/gtest.h>

#include "filter/mask_bands.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

struct Centre3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(1);
    }
};

using Copy = MaskProduct<Centre3, Centre3>;
using Cross3 = MaskProduct<Difference3, Difference3>;
using Cross5 = MaskProduct<Difference5, Difference5>;

template <class Mask, class S, class D>
void filterThere(const Image<S>& from, Image<D>& to, bool isLarge)
{
    LineSpace<Lum8u> space(nullptr, 0);
    const MaskImages<S, D> images{source(from.pixels(), from.step()),
                                  destination(to.pixels(), to.step()),
                                  {to.width(), to.height()},
                                  Border(lumBorderReplicate),
                                  S{},
                                  isLarge};
    filterByMask<Mask>(images, space);
}

template <class Mask, class S, class D>
void expectSamePastTheCaches()
{
    Random random(7);
    for (int offset = 0; offset < 64; ++offset) {
        for (const int width : {1 + offset, 15, 16, 17, 64, 67, 128, 130 + offset % 7, 300 + offset}) {
            SCOPED_TRACE(testing::Message() << "width " << width << ", offset " << offset);
            Layout layout;
            layout.width = width;
            layout.height = 1 + offset % 5;
            layout.offset = offset;
            layout.gap = offset % 3 * static_cast<int>(sizeof(D));
            layout.guard = offset % 2 == 0 ? Guard::After : Guard::Before;
            Layout sourceLayout = layout;
            sourceLayout.gap = 0;
            Image<S> from(sourceLayout);
            fill(from, random, Values::Ordinary, Area::Roi);
            Image<D> cached(layout);
            Image<D> streamed(layout);
            filterThere<Mask>(from, cached, false);
            filterThere<Mask>(from, streamed, true);
            ASSERT_TRUE(sameImage(cached, streamed));
            ASSERT_TRUE(streamed.gapsIntact());
        }
    }
}

TEST(MaskBandsQuick, BytesGoPastTheCaches)
{
    expectSamePastTheCaches<Copy, Lum8u, Lum8u>();
}

TEST(MaskBandsQuick, WordsGoPastTheCaches)
{
    expectSamePastTheCaches<Cross3, Lum8u, Lum16s>();
    expectSamePastTheCaches<Cross5, Lum8u, Lum16s>();
}

TEST(MaskBandsQuick, FloatsGoPastTheCaches)
{
    expectSamePastTheCaches<Cross3, Lum32f, Lum32f>();
    expectSamePastTheCaches<Cross5, Lum32f, Lum32f>();
}

}  // namespace
}  // namespace lumcv::test
