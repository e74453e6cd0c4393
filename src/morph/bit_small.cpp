// Dilation and erosion of 1-bit images under a 3x3 square or cross, and their copy, in strips of bytes that go down the
// image: each source row is read once, and what its neighbours above and below see of it stays in registers for them.
#include "morph/bit_small.hpp"

#include <optional>

#include "morph/bit_window.hpp"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

/// Bytes of a strip, except at the ends of rows: what is kept of four rows fits in the registers.
constexpr int stripLanes = simd::registerLanes<Lum8u> < 32 ? 32 : 64;

/// They stay in the first-level cache from strip to strip.
constexpr int64_t bandRows = 32;

/// Bytes of a destination that stay in the second-level cache, with a source.
constexpr int64_t nearBytes = 524288;

enum class SmallElement
{
    pixel,
    cross,
    square
};

struct Rows
{
    int64_t begin, end;
};

/// What replicate puts beside the image lies under the element anyway; so every border is a constant, or in memory.
template <BitOperation operation, SmallElement element>
class SmallPass
{
  public:
    SmallPass(BitPlane<const Lum8u> src, BitPlane<Lum8u> dst, LumiSizeL size, BitBorder border)
        : src_(src.bytes),
          dst_(dst.bytes),
          height_(size.height),
          span_{dst.offset, dst.offset + size.width},
          offset_(src.offset - dst.offset),
          sides_(element == SmallElement::pixel ? Border(lumBorderReplicate) : border.sides),
          border_((border.isConstant ? border.value : !decisive(operation)) ? 0xFF : 0),
          isFar_(size.height * dst.bytes.step > nearBytes),
          windows_(offset_ - 1, 3)
    {
    }

    /// A strip at the end of a row has `endLanes` bytes; the row has more.
    template <int endLanes>
    void run() const
    {
        const int64_t lastStrip = span_.bytes() - endLanes;
        const End<endLanes> first(*this, 0), last(*this, lastStrip);
        for (int64_t y = 0; y < height_; y += bandRows) {
            const Rows rows{y, y + bandRows < height_ ? y + bandRows : height_};
            endStrip(first, rows);
            int64_t k = endLanes;
            for (; k + stripLanes <= lastStrip; k += stripLanes)
                strip<stripLanes>(k, rows);
            for (; k < lastStrip; k += endLanes)
                strip<endLanes>(k, rows);
            endStrip(last, rows);
        }
    }

  private:
    /// What the element sees of a row, in its own row and in the others.
    template <int lanes>
    struct Seen
    {
        simd::Vec<Lum8u, lanes> own, others;
    };

    /// The bytes at an end of the rows, some of which hold other bits as well.
    template <int lanes>
    struct End
    {
        using V = simd::Vec<Lum8u, lanes>;

        int64_t k;
        bool isOutside;            ///< the outermost byte in which windows lie must not be read
        V lowerKnown, upperKnown;  ///< the bits there that are pixels
        V inside;                  ///< the bits that are written

        End(const SmallPass& pass, int64_t from) : k(from)
        {
            const Border& sides = pass.sides_;
            const BitSpan& span = pass.span_;
            const BitSpan pixels{span.begin + pass.offset_ - sides.left, span.end + pass.offset_ + sides.right};
            const int64_t lower = k + pass.windows_.lower, upper = k + pass.windows_.upper;
            isOutside = k == 0 ? lower < pixels.begin >> 3 : upper + lanes > pixels.bytes();
            lowerKnown = pixels.masks<lanes>(lower);
            upperKnown = pixels.masks<lanes>(upper);
            inside = span.masks<lanes>(k);
        }
    };

    /// A row of bytes that is whole at an end is a strip there as well where the border lies in memory.
    template <int lanes>
    void endStrip(const End<lanes>& end, Rows rows) const
    {
        const bool isFirst = end.k == 0;
        if (offset_ != 0 || (isFirst ? span_.begin : span_.end) % 8 != 0)
            isFirst ? partialStrip<lanes, true>(end, rows) : partialStrip<lanes, false>(end, rows);
        else if (isFirst ? sides_.left : sides_.right)
            levelStrip<lanes, Beside::pixels>(end.k, rows);
        else if (isFirst)
            levelStrip<lanes, Beside::borderBefore>(end.k, rows);
        else
            levelStrip<lanes, Beside::borderBehind>(end.k, rows);
    }

    template <int lanes>
    void strip(int64_t k, Rows rows) const
    {
        if (offset_ == 0)
            levelStrip<lanes, Beside::pixels>(k, rows);
        else
            movedStrip<lanes>(k, rows);
    }

    enum class Beside
    {
        pixels,
        borderBefore,
        borderBehind
    };

    /// Between equal bit offsets.
    template <int lanes, Beside beside>
    [[gnu::flatten, gnu::noinline]] void levelStrip(int64_t k, Rows rows) const
    {
        const Lum8u border = border_;
        goDown<lanes>(
            k, rows,
            [=](const Lum8u* from) {
                const auto pixels = simd::load<lanes>(from);
                simd::Vec<Lum8u, lanes> lower, upper;
                if constexpr (beside == Beside::borderBefore)
                    lower = simd::loadBehind<lanes>(from - 1, border);
                else
                    lower = simd::load<lanes>(from - 1);
                if constexpr (beside == Beside::borderBehind)
                    upper = simd::loadAhead<lanes>(from + 1, border);
                else
                    upper = simd::load<lanes>(from + 1);
                const auto sides =
                    combined<operation>(simd::betweenBytes(lower, pixels, 7), simd::betweenBytes(pixels, upper, 1));
                return seen(combined<operation>(sides, pixels), pixels);
            },
            [](Lum8u* to, auto result) { simd::store(to, result); });
    }

    template <int lanes>
    [[gnu::flatten, gnu::noinline]] void movedStrip(int64_t k, Rows rows) const
    {
        const BitWindows windows = windows_;
        goDown<lanes>(
            k, rows,
            [=](const Lum8u* from) {
                return seenThrough(windows, simd::load<lanes>(from + windows.lower),
                                   simd::load<lanes>(from + windows.upper));
            },
            [](Lum8u* to, auto result) { simd::store(to, result); });
    }

    template <int lanes, bool isFirst>
    [[gnu::flatten, gnu::noinline]] void partialStrip(const End<lanes>& end, Rows rows) const
    {
        const BitWindows windows = windows_;
        const Lum8u border = border_;
        const auto lowerKnown = end.lowerKnown, upperKnown = end.upperKnown, inside = end.inside;
        const auto lowerBeside = simd::broadcast<lanes>(border) & ~lowerKnown;
        const auto upperBeside = simd::broadcast<lanes>(border) & ~upperKnown;
        const bool isOutside = end.isOutside;
        goDown<lanes>(
            end.k, rows,
            [=](const Lum8u* from) {
                const Lum8u* const lowerFrom = from + windows.lower;
                const Lum8u* const upperFrom = from + windows.upper;
                const auto lower =
                    isFirst && isOutside ? simd::loadBehind<lanes>(lowerFrom, border) : simd::load<lanes>(lowerFrom);
                const auto upper =
                    !isFirst && isOutside ? simd::loadAhead<lanes>(upperFrom, border) : simd::load<lanes>(upperFrom);
                return seenThrough(windows, (lower & lowerKnown) | lowerBeside, (upper & upperKnown) | upperBeside);
            },
            [=](Lum8u* to, auto result) { simd::store(to, (result & inside) | (simd::load<lanes>(to) & ~inside)); });
    }

    template <int lanes>
    [[gnu::always_inline]] static Seen<lanes> seen(simd::Vec<Lum8u, lanes> threes, simd::Vec<Lum8u, lanes> pixels)
    {
        return {element == SmallElement::pixel ? pixels : threes, element == SmallElement::square ? threes : pixels};
    }

    /// The same from the lanes in which windows of three pixels lie.
    template <int lanes>
    [[gnu::always_inline]] static Seen<lanes> seenThrough(const BitWindows& windows, simd::Vec<Lum8u, lanes> lower,
                                                          simd::Vec<Lum8u, lanes> upper)
    {
        const auto low = simd::reinterpreted<uint64_t>(lower), high = simd::reinterpreted<uint64_t>(upper);
        return seen(simd::reinterpreted<Lum8u>(lumcv::seenThrough<operation>(windows, 3, low, high)),
                    simd::reinterpreted<Lum8u>(simd::joined(low, windows.down + 1, high, windows.up + 1)));
    }

    /// Goes down some rows from byte k of them on: look(from) is what is seen of a source row, write(to, result)
    /// stores.
    template <int lanes, class Look, class Write>
    [[gnu::always_inline]] void goDown(int64_t k, Rows rows, Look look, Write write) const
    {
        const auto border = simd::broadcast<lanes>(border_);
        const Seen<lanes> outside{border, border};
        const int64_t srcStep = src_.step, dstStep = dst_.step;
        const Lum8u* from = src_.row(rows.begin) + k;
        Lum8u* to = dst_.row(rows.begin) + k;
        const int64_t lastRead = rows.end < height_ || sides_.bottom ? rows.end : height_ - 1;
        const int64_t ahead = rows.end + bandRows <= height_ ? bandRows : 0;
        const bool isFar = isFar_;
        int64_t y = rows.begin;
        auto above = y > 0 || sides_.top ? look(rowAt(from, srcStep, -1)) : outside, here = look(from);
        for (; y + 2 <= lastRead; y += 2) {
            for (int i = 0; i < 2; ++i) {
                simd::prefetch<lanes>(rowAt(from, srcStep, ahead + i));
                if (isFar)
                    simd::prefetch<lanes>(static_cast<const Lum8u*>(rowAt(to, dstStep, ahead + i)));
            }
            const auto next = look(rowAt(from, srcStep, 1));
            from = rowAt(from, srcStep, 2);
            const auto afterNext = look(from);
            if constexpr (element == SmallElement::square) {  // two rows share what lies under both
                const auto shared = combined<operation>(here.own, next.own);
                write(to, combined<operation>(above.own, shared));
                write(rowAt(to, dstStep, 1), combined<operation>(shared, afterNext.own));
            } else {
                write(to, underElement(above, here, next));
                write(rowAt(to, dstStep, 1), underElement(here, next, afterNext));
            }
            to = rowAt(to, dstStep, 2);
            above = next;
            here = afterNext;
        }
        for (; y < rows.end; ++y) {
            from = rowAt(from, srcStep, 1);
            const auto below = y < lastRead ? look(from) : outside;
            write(to, underElement(above, here, below));
            to = rowAt(to, dstStep, 1);
            above = here;
            here = below;
        }
    }

    template <int lanes>
    [[gnu::always_inline]] static auto underElement(const Seen<lanes>& above, const Seen<lanes>& here,
                                                    const Seen<lanes>& below)
    {
        if constexpr (element == SmallElement::pixel)
            return here.own;
        else
            return combined<operation>(combined<operation>(above.others, here.own), below.others);
    }

    Plane<const Lum8u> src_;
    Plane<Lum8u> dst_;
    int64_t height_;
    BitSpan span_;    ///< of a destination row
    int64_t offset_;  ///< a pixel's bit in the source row less its bit in the destination's
    Border sides_;
    Lum8u border_;  ///< eight pixels of it
    bool isFar_;    ///< the destination is not in a near cache: it is asked for ahead
    BitWindows windows_;
};

template <BitOperation operation, SmallElement element>
void work(BitPlane<const Lum8u> src, BitPlane<Lum8u> dst, LumiSizeL size, BitBorder border)
{
    const SmallPass<operation, element> pass(src, dst, size, border);
    constexpr int wideEnd = simd::registerLanes<Lum8u>;
    if constexpr (wideEnd > simd::restLanes)
        if (dst.offset + size.width > 8 * wideEnd) {
            pass.template run<wideEnd>();
            return;
        }
    pass.template run<simd::restLanes>();
}

template <BitOperation operation>
void work(SmallElement element, BitPlane<const Lum8u> src, BitPlane<Lum8u> dst, LumiSizeL size, BitBorder border)
{
    switch (element) {
        case SmallElement::pixel:
            return work<operation, SmallElement::pixel>(src, dst, size, border);
        case SmallElement::cross:
            return work<operation, SmallElement::cross>(src, dst, size, border);
        case SmallElement::square:
            return work<operation, SmallElement::square>(src, dst, size, border);
    }
}

/// Which of them an element is that has a position set.
std::optional<SmallElement> smallElement(const LumiMorphBitRecord& element)
{
    const Lum8u* const set = element.pSetMask;
    if (element.maskWidth == 1 && element.maskHeight == 1)
        return SmallElement::pixel;
    if (element.maskWidth != 3 || element.maskHeight != 3)
        return {};
    for (const int i : {1, 3, 4, 5, 7})
        if (set[i] == 0)
            return {};
    const int corners = (set[0] != 0) + (set[2] != 0) + (set[6] != 0) + (set[8] != 0);
    if (corners == 4)
        return SmallElement::square;
    return corners == 0 ? std::optional(SmallElement::cross) : std::nullopt;
}

}  // namespace

bool smallBitPass(BitOperation operation, const LumiMorphBitRecord& element, BitPlane<const Lum8u> src,
                  BitPlane<Lum8u> dst, LumiSizeL size, BitBorder border)
{
    const auto small = smallElement(element);
    if (!small || dst.offset + size.width <= 8 * simd::restLanes)
        return false;
    if (operation == BitOperation::dilation)
        work<BitOperation::dilation>(*small, src, dst, size, border);
    else
        work<BitOperation::erosion>(*small, src, dst, size, border);
    return true;
}

}  // namespace lumcv
