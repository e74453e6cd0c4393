// Hysteresis on two maps of bits, of weak and of strong pixels: a weak pixel beside a strong one becomes strong.
//
// Strength spreads along whole rows of bits at once: downwards, each row as soon as it is there, and then upwards. What
// turns down again on its way up is left to a search from pixel to pixel.
#pragma once

#include "frame/image.hpp"
#include "simd/simd.hpp"

namespace lumcv::canny {

/// Rows from this width on are worked on in words of 64 bits, narrower ones in bytes.
inline constexpr int64_t leastWideRow = 16;

/// All bits of `open` that a run of them connects with one of `seeds`, which lie in it.
template <class Word>
[[gnu::always_inline]] inline Word filledRuns(Word seeds, Word open)
{
    Word up = seeds, down = seeds, openUp = open, openDown = open;
    for (unsigned step = 1; step < 8 * sizeof(Word); step *= 2) {
        up = static_cast<Word>(up | (openUp & (up << step)));
        down = static_cast<Word>(down | (openDown & (down >> step)));
        openUp = static_cast<Word>(openUp & (openUp << step));
        openDown = static_cast<Word>(openDown & (openDown >> step));
    }
    return static_cast<Word>(up | down);
}

/// Index counts all pixels of the image. Above, below and between the rows of the maps stand bits that are always zero.
template <class Word, class Index>
class EdgeBits
{
  public:
    /// Bytes of both maps; at most (width + 2) * (height + 2), for rows in bytes or of leastWideRow at least.
    static int64_t bytes(LumiSizeL size)
    {
        return 2 * rowBytes(size) * (size.height + 2);
    }

    /// The stack has room for each pixel, which is put there once at most.
    EdgeBits(LumiSizeL size, Lum8u* maps, Index* stack)
        : size_(size),
          rowWords_(rowBytes(size) / wordBytes),
          strong_(reinterpret_cast<Word*>(maps)),
          weak_(reinterpret_cast<Word*>(maps + bytes(size) / 2)),
          stack_(stack),
          top_(stack)
    {
        __builtin_memset(maps, 0, static_cast<size_t>(bytes(size)));
    }

    // Pixel x of a row is bit x % 8 of byte x / 8.

    Lum8u* strongRow(int64_t y) const
    {
        return reinterpret_cast<Lum8u*>(words(strong_, y));
    }

    Lum8u* weakRow(int64_t y) const
    {
        return reinterpret_cast<Lum8u*>(words(weak_, y));
    }

    /// For a row that has just been filled in: the rows above it have been swept.
    void sweepDown(int64_t y)
    {
        sweep(y, y - 1);
    }

    /// For each row, once all have been swept down.
    void sweepUp()
    {
        for (int64_t y = size_.height - 1; y >= 0; --y)
            if (sweep(y, y + 1))
                findBelow(y);
        while (top_ != stack_) {
            const Index i = *--top_;
            searchAround(static_cast<int64_t>(i) / size_.width, static_cast<int64_t>(i) % size_.width);
        }
    }

    /// Writes the edges.
    [[gnu::flatten]] void write(Plane<Lum8u> dst) const
    {
        for (int64_t y = 0; y < size_.height; ++y) {
            const Lum8u* const bits = strongRow(y);
            Lum8u* const to = dst.row(y);
            simd::eachOnce<simd::registerLanes<Lum8u>>(0, size_.width, [=](int64_t x, auto lanes) {
                if constexpr (lanes == 1)
                    to[x] = static_cast<Lum8u>(-(bits[x >> 3] >> (x & 7) & 1));
                else
                    simd::store(to + x, simd::spreadBits<lanes>(bits + x / 8));
            });
        }
    }

  private:
    static constexpr int64_t wordBytes = sizeof(Word);
    static constexpr int64_t wordBits = 8 * wordBytes;

    /// There is a zero bit behind the last pixel at least.
    static int64_t rowBytes(LumiSizeL size)
    {
        return (size.width / wordBits + 1) * wordBytes;
    }

    Word* words(Word* map, int64_t y) const
    {
        return map + (y + 1) * rowWords_;
    }

    /// The bits before and behind those of a word are those of its neighbours in the row.
    [[gnu::always_inline]] static Word widened(Word before, Word word, Word behind)
    {
        return static_cast<Word>(word | word << 1 | word >> 1 | before >> (wordBits - 1) | behind << (wordBits - 1));
    }

    /// Makes the weak pixels of row y strong that a run of weak ones connects with a strong pixel of the row or of the
    /// one beside it. Returns whether there were any.
    bool sweep(int64_t y, int64_t beside)
    {
        Word* const weak = words(weak_, y);
        Word* const strong = words(strong_, y);
        const Word* const other = words(strong_, beside);
        bool isChanged = false;
        for (int64_t i = 0; i < rowWords_; ++i) {
            if (!weak[i])
                continue;
            // words come from left to right, so that strength goes on into the next one by itself
            const auto around = [=, this](int64_t j) {
                return j < 0 || j >= rowWords_ ? Word{0} : static_cast<Word>(strong[j] | other[j]);
            };
            const Word seeds = widened(around(i - 1), around(i), around(i + 1)) & weak[i];
            if (!seeds)
                continue;
            isChanged = true;
            const Word filled = filledRuns(seeds, weak[i]);
            strong[i] |= filled;
            weak[i] ^= filled;
            // and from the first bit of a word it is carried back into those before
            for (int64_t j = i - 1; j >= 0 && (strong[j + 1] & 1) && weak[j] >> (wordBits - 1); --j) {
                const Word back = filledRuns(static_cast<Word>(Word{1} << (wordBits - 1)), weak[j]);
                strong[j] |= back;
                weak[j] ^= back;
            }
        }
        return isChanged;
    }

    /// Makes the weak pixels of the row below y strong that have a strong neighbour in it, and puts them on the stack.
    void findBelow(int64_t y)
    {
        const Word* const strong = words(strong_, y);
        const Word* const below = words(weak_, y + 1);
        for (int64_t i = 0; i < rowWords_; ++i) {
            if (!below[i])
                continue;
            const auto at = [=, this](int64_t j) { return j < 0 || j >= rowWords_ ? Word{0} : strong[j]; };
            for (uint64_t found = widened(at(i - 1), strong[i], at(i + 1)) & below[i]; found; found &= found - 1)
                promote(y + 1, i * wordBits + __builtin_ctzll(found));
        }
    }

    void searchAround(int64_t y, int64_t x)
    {
        for (int64_t v = y - 1; v <= y + 1; ++v) {
            // the bits of x - 1, x, x + 1; what precedes and follows a row is zero where it is not masked
            const int64_t first = x - 1;
            Lum16u bits;
            __builtin_memcpy(&bits, weakRow(v) + (first >> 3), sizeof bits);
            for (int found = bits >> (first & 7) & 7; found; found &= found - 1)
                promote(v, first + __builtin_ctz(static_cast<unsigned>(found)));
        }
    }

    void promote(int64_t y, int64_t x)
    {
        const auto bit = static_cast<Lum8u>(1 << (x & 7));
        weakRow(y)[x >> 3] ^= bit;
        strongRow(y)[x >> 3] |= bit;
        *top_++ = static_cast<Index>(y * size_.width + x);
    }

    LumiSizeL size_;
    int64_t rowWords_;
    Word* strong_;
    Word* weak_;
    Index* stack_;
    Index* top_;
};

}  // namespace lumcv::canny
