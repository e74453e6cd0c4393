// Connected regions as a forest over the runs of rows: two runs are in the same tree if they have been found to touch.
//
// A row is given as words of 64 bits, pixel x as bit x % 64 of word x / 64. A run is known by its number in raster
// order; the run of a pixel is found by counting the starts up to it, so that nothing is stored for a pixel.
#pragma once

#include "simd/simd.hpp"

namespace lumcv {

inline constexpr int wordBits = 64;

/// The words of a row of so many pixels.
constexpr int64_t wordsOf(int64_t width)
{
    return (width + wordBits - 1) / wordBits;
}

class RunForest
{
  public:
    /// Entries that are written beyond those of the runs.
    static constexpr int slack = 3;

    /// Room for an entry of each run. The root of a tree is its own parent and the first of its runs; all parents come
    /// before their children.
    explicit RunForest(Lum32u* parents) : parents_(parents) {}

    void beginRow()
    {
        above_ = row_;
        row_ = next_;
    }

    /// Goes on to the next word of the row, in which runs start where `starts` has bits. At each bit of `touching` the
    /// run that has started last in this row meets the one that has started last in the row above; then
    /// merge(first, second) is called with the roots of both, of which `first` stays one. They may be the same.
    template <class Merge>
    [[gnu::always_inline]] void addWord(uint64_t starts, uint64_t startsAbove, uint64_t touching, Merge merge)
    {
        const auto count = static_cast<Lum32u>(__builtin_popcountll(starts));
        for (Lum32u i = 0; i < count; i += 4) {
            const Lum32u run = next_ + i;
            const Lum32u runs[4] = {run, run + 1, run + 2, run + 3};
            __builtin_memcpy(parents_ + run, runs, sizeof runs);
        }
        for (; touching != 0; touching &= touching - 1) {
            const uint64_t upTo = touching ^ (touching - 1);
            join(above_ + static_cast<Lum32u>(__builtin_popcountll(startsAbove & upTo)) - 1,
                 next_ + static_cast<Lum32u>(__builtin_popcountll(starts & upTo)) - 1, merge);
        }
        next_ += count;
        above_ += static_cast<Lum32u>(__builtin_popcountll(startsAbove));
    }

    Lum32u runs() const
    {
        return next_;
    }

    /// The root of the run that has started last.
    Lum32u lastRoot()
    {
        return rootOf(next_ - 1);
    }

  private:
    /// Paths are halved on the way. Most are of one step or none, which look alike here.
    [[gnu::always_inline]] Lum32u rootOf(Lum32u run)
    {
        for (;;) {
            const Lum32u parent = parents_[run];
            const Lum32u grandparent = parents_[parent];
            if (grandparent == parent)
                return parent;
            parents_[run] = grandparent;
            run = grandparent;
        }
    }

    /// What touches a run comes one behind the other, so that its root is known but for the first time, when it is
    /// itself.
    template <class Merge>
    [[gnu::always_inline]] void join(Lum32u above, Lum32u run, Merge merge)
    {
        const Lum32u root = run == run_ ? root_ : run;
        const Lum32u other = rootOf(above);
        const Lum32u first = root < other ? root : other;
        const Lum32u second = root < other ? other : root;
        merge(first, second);
        parents_[second] = first;
        parents_[run] = first;
        run_ = run;
        root_ = first;
    }

    Lum32u* parents_;
    Lum32u next_ = 0;          ///< the first run that starts in the word to come
    Lum32u row_ = 0;           ///< the first run of this row
    Lum32u above_ = 0;         ///< the first run that starts in the word to come of the row above
    Lum32u run_ = ~Lum32u{0};  ///< the run that has been joined last
    Lum32u root_ = 0;          ///< its root
};

}  // namespace lumcv
