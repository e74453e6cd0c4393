// Reconstruction: sweeps over the rows, down and up in turn, until one of them changes nothing.
//
// A row takes the values of the row before it, block by block, and spreads them along itself in both directions. Along
// a row each pixel is a function of the value c that comes in, min(max(c, f), g), and such functions combine into one
// of their kind; so a group of lanes is spread in a logarithmic number of steps instead of one lane after the other.
//
// After the first sweep every row is at rest in itself. From then on only what differs from the row before is spread,
// and only as far as it gets. A byte for each row says which of eight sections of its columns have to be looked at.
#include <cstring>
#include <limits>

#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "lumcv/morph.h"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

/// The marker grows below the mask. Between equal values, and beside a not-a-number, the second operand stays.
struct Dilation
{
    template <class T>
    static constexpr T weakest = std::numeric_limits<T>::has_infinity ? -std::numeric_limits<T>::infinity() : T{};
    template <class T>
    static constexpr T strongest = std::numeric_limits<T>::has_infinity ? std::numeric_limits<T>::infinity()
                                                                        : std::numeric_limits<T>::max();

    template <class V>
    [[gnu::always_inline]] static V stronger(V a, V b)
    {
        return simd::max(a, b);
    }
    template <class V>
    [[gnu::always_inline]] static V limited(V mask, V v)
    {
        return simd::min(mask, v);
    }
    template <class V>
    [[gnu::always_inline]] static bool anyStronger(V a, V b)
    {
        return simd::anyLess(b, a);
    }
};

/// The marker shrinks above the mask: the same with the order of values reversed.
struct Erosion
{
    template <class T>
    static constexpr T weakest = Dilation::strongest<T>;
    template <class T>
    static constexpr T strongest = Dilation::weakest<T>;

    template <class V>
    [[gnu::always_inline]] static V stronger(V a, V b)
    {
        return simd::min(a, b);
    }
    template <class V>
    [[gnu::always_inline]] static V limited(V mask, V v)
    {
        return simd::max(mask, v);
    }
    template <class V>
    [[gnu::always_inline]] static bool anyStronger(V a, V b)
    {
        return simd::anyLess(a, b);
    }
};

enum class Direction
{
    right,
    left
};

/// The value that `c` makes of a pixel with marker f and mask g.
template <class Order, class V>
[[gnu::always_inline]] inline V reached(V c, V f, V g)
{
    return Order::limited(g, Order::stronger(c, f));
}

/// Combines each lane's function c -> reached(c, low, high) with those of the lanes before it in its group.
template <class Order, Direction direction, int d, class T, int N>
[[gnu::always_inline]] inline void combineLanes(simd::Vec<T, N>& low, simd::Vec<T, N>& high)
{
    if constexpr (d < simd::groupLanes<T>) {
        const auto moved = [](simd::Vec<T, N> v, T fill) {
            const auto fills = simd::broadcast<N>(fill);
            if constexpr (direction == Direction::right)
                return simd::movedUp<d>(v, fills);
            else
                return simd::movedDown<d>(v, fills);
        };
        const auto lowBefore = moved(low, Order::template weakest<T>);
        const auto highBefore = moved(high, Order::template strongest<T>);
        const auto combinedLow = reached<Order>(lowBefore, low, high);
        high = reached<Order>(highBefore, low, high);
        low = combinedLow;
        combineLanes<Order, direction, 2 * d>(low, high);
    }
}

/// What a block works on at a time: the same number of bytes at every level, so that all levels agree on what happens
/// to a not-a-number.
template <class T>
constexpr int blockLanes = 64 / static_cast<int>(sizeof(T));

/// One value in all lanes of a group.
template <class T>
using Carry = simd::Vec<T, simd::groupLanes<T>>;

/// Spreads the values of a block along it, together with the one that is carried in, and stores them.
template <class Order, Direction direction, class T>
[[gnu::always_inline]] inline void spreadBlock(simd::Vec<T, blockLanes<T>> low, simd::Vec<T, blockLanes<T>> high,
                                               T* marker, Carry<T>& carry)
{
    constexpr int lanes = simd::groupLanes<T>;
    combineLanes<Order, direction, 1>(low, high);
    T lows[blockLanes<T>], highs[blockLanes<T>];
    simd::store(lows, low);
    simd::store(highs, high);
    for (int i = 0; i < blockLanes<T>; i += lanes) {
        const int x = direction == Direction::right ? i : blockLanes<T> - lanes - i;
        const auto group = reached<Order>(carry, simd::load<lanes>(lows + x), simd::load<lanes>(highs + x));
        simd::store(marker + x, group);
        carry = direction == Direction::right ? simd::lastEverywhere(group) : simd::firstEverywhere(group);
    }
}

/// A block of the row before: at each place the strongest of the one or three neighbours, of which none is outside the
/// row.
template <class Order, bool eight, class T>
[[gnu::always_inline]] inline auto strongestNeighbour(const T* row, int64_t x, int64_t width)
{
    constexpr int n = blockLanes<T>;
    const auto middle = simd::load<n>(row + x);
    if constexpr (!eight)
        return middle;
    else {
        T line[n];
        const T* left = row + x - 1;
        if (x == 0) {
            line[0] = row[0];
            std::memcpy(line + 1, row, (n - 1) * sizeof(T));
            left = line;
        }
        const auto withLeft = Order::stronger(simd::load<n>(left), middle);
        const T* right = row + x + 1;
        if (x + n == width) {
            std::memcpy(line, row + x + 1, (n - 1) * sizeof(T));
            line[n - 1] = row[width - 1];
            right = line;
        }
        return Order::stronger(simd::load<n>(right), withLeft);
    }
}

/// The columns of a row in blocks, and these in at most eight sections. The last block may overlap the one before it.
template <class T>
struct Blocks
{
    int64_t width;
    int64_t count = (width + blockLanes<T> - 1) / blockLanes<T>;
    int64_t inSection = (count + 7) / 8;

    int64_t begin(int64_t k) const
    {
        return k == count - 1 ? width - blockLanes<T> : k * blockLanes<T>;
    }
    bool overlaps(int64_t k) const
    {
        return k == count - 1 && width % blockLanes<T> != 0;
    }
    int64_t firstOf(int section) const
    {
        const int64_t first = section * inSection;
        return first < count ? first : count;
    }
};

/// Sections of a row, a bit for each.
using Sections = Lum8u;
constexpr Sections allSections = 0xFF;

/// Processes rows of at least a block.
template <class Order, bool eight, class T>
class RowSpreader
{
  public:
    RowSpreader(int64_t width, Lum8u* changedBlocks) : blocks_{width}, changed_(changedBlocks) {}

    /// Brings a row to rest in itself and with the row before it, if there is one. The marker may be anything.
    [[gnu::flatten, gnu::noinline]] void spreadAll(T* marker, const T* mask, const T* before) const
    {
        constexpr int n = blockLanes<T>;
        auto carry = none();
        for (int64_t k = 0; k < blocks_.count; ++k) {
            const int64_t x = blocks_.begin(k);
            const auto high = simd::load<n>(mask + x);
            auto low = simd::load<n>(marker + x);
            if (before)
                low = Order::stronger(strongestNeighbour<Order, eight>(before, x, blocks_.width), low);
            if (blocks_.overlaps(k))
                carry = none();  // the overlapped pixels hold it
            spreadBlock<Order, Direction::right>(Order::limited(high, low), high, marker + x, carry);
        }
        carry = none();
        for (int64_t k = blocks_.count - 1; k >= 0; --k) {
            const int64_t x = blocks_.begin(k);
            spreadBlock<Order, Direction::left>(simd::load<n>(marker + x), simd::load<n>(mask + x), marker + x, carry);
            if (blocks_.overlaps(k))
                carry = none();
        }
    }

    /// Brings a row that is at rest in itself to rest with the row before it, of which the given sections have changed.
    /// Returns the sections in which a neighbouring row has to be looked at for that.
    [[gnu::flatten, gnu::noinline]] Sections spreadChanges(T* marker, const T* mask, const T* before,
                                                           Sections look) const
    {
        constexpr int n = blockLanes<T>;
        std::memset(changed_, 0, static_cast<size_t>(blocks_.count));
        int changedSections = 0;
        auto carry = none();
        bool carries = false;
        for (int section = 0; section < 8; ++section) {
            if (!(look >> section & 1)) {
                carries = false;
                continue;
            }
            const int64_t end = blocks_.firstOf(section + 1);
            for (int64_t k = blocks_.firstOf(section); k < end; ++k) {
                const int64_t x = blocks_.begin(k);
                const auto old = simd::load<n>(marker + x);
                const auto high = simd::load<n>(mask + x);
                const auto low = reached<Order>(strongestNeighbour<Order, eight>(before, x, blocks_.width), old, high);
                const int64_t border = k * n;
                const bool enters = carries && passes(marker[border - 1], marker[border], mask[border]);
                carries = Order::anyStronger(low, old) || enters;
                if (!carries)
                    continue;
                if (!enters || blocks_.overlaps(k))
                    carry = none();  // the row was at rest, or the overlapped pixels hold it
                spreadBlock<Order, Direction::right>(low, high, marker + x, carry);
                changed_[k] = 1;
                changedSections |= 1 << section;
                if (k + 1 == end)
                    look = static_cast<Sections>(look | 2 << section);
            }
        }
        if (changedSections == 0)
            return 0;
        return spreadBack(marker, mask, changedSections);
    }

  private:
    static Carry<T> none()
    {
        return simd::broadcast<simd::groupLanes<T>>(Order::template weakest<T>);
    }

    /// Whether a value changes its neighbour.
    static bool passes(T from, T marker, T mask)
    {
        using V = simd::Vec<T, 1>;
        return Order::anyStronger(reached<Order>(V{from}, V{marker}, V{mask}), V{marker});
    }

    Sections spreadBack(T* marker, const T* mask, int changedSections) const
    {
        constexpr int n = blockLanes<T>;
        int neighbours = 0;
        auto carry = none();
        bool carries = false;
        for (int section = 7; section >= 0; --section) {
            if (!(changedSections >> section & 1)) {
                carries = false;
                continue;
            }
            const int64_t begin = blocks_.firstOf(section);
            const int64_t end = blocks_.firstOf(section + 1);
            for (int64_t k = end - 1; k >= begin; --k) {
                const int64_t border = (k + 1) * n;
                const bool enters = carries && passes(marker[border], marker[border - 1], mask[border - 1]);
                carries = changed_[k] || enters;
                if (!carries)
                    continue;
                if (!enters)
                    carry = none();
                const int64_t x = blocks_.begin(k);
                spreadBlock<Order, Direction::left>(simd::load<n>(marker + x), simd::load<n>(mask + x), marker + x,
                                                    carry);
                if (blocks_.overlaps(k)) {
                    carry = none();
                    if (k > 0)
                        changed_[k - 1] = 1;  // of which this block has changed a part
                }
                changedSections |= 1 << section;
                if (k == begin)
                    changedSections |= 1 << section >> 1;
                if (eight && k + 1 == end)
                    neighbours |= 2 << section;
                if (eight && k == begin)
                    neighbours |= 1 << section >> 1;
            }
        }
        return static_cast<Sections>(changedSections | neighbours);
    }

    Blocks<T> blocks_;
    Lum8u* changed_;  ///< a byte for each block: whether it has changed on the way to the right
};

/// Rows of less than a block are worked on in copies that are filled up with pixels that change nothing.
template <class Order, bool eight, class T>
class NarrowRowSpreader
{
  public:
    NarrowRowSpreader(int64_t width, Lum8u* changedBlocks) : width_(width), spreader_(n, changedBlocks) {}

    void spreadAll(T* marker, const T* mask, const T* before) const
    {
        Rows rows(*this, marker, mask, before);
        spreader_.spreadAll(rows.marker, rows.mask, before ? rows.before : nullptr);
        std::memcpy(marker, rows.marker, static_cast<size_t>(width_) * sizeof(T));
    }

    Sections spreadChanges(T* marker, const T* mask, const T* before, Sections look) const
    {
        Rows rows(*this, marker, mask, before);
        const Sections changed = spreader_.spreadChanges(rows.marker, rows.mask, rows.before, look);
        std::memcpy(marker, rows.marker, static_cast<size_t>(width_) * sizeof(T));
        return changed;
    }

  private:
    static constexpr int n = blockLanes<T>;

    struct Rows
    {
        T marker[n], mask[n], before[n];

        Rows(const NarrowRowSpreader& spreader, const T* markerRow, const T* maskRow, const T* beforeRow)
        {
            const auto fill = [&](T* line, const T* row) {
                simd::store(line, simd::broadcast<n>(Order::template weakest<T>));
                if (row)
                    std::memcpy(line, row, static_cast<size_t>(spreader.width_) * sizeof(T));
            };
            fill(marker, markerRow);
            fill(mask, maskRow);
            fill(before, beforeRow);
        }
    };

    int64_t width_;
    RowSpreader<Order, eight, T> spreader_;
};

template <class Spreader, class T>
void sweepUntilAtRest(const Spreader& spreader, Plane<const T> mask, Plane<T> marker, int64_t height, Sections* table)
{
    spreader.spreadAll(marker.row(0), mask.row(0), nullptr);
    for (int64_t y = 1; y < height; ++y)
        spreader.spreadAll(marker.row(y), mask.row(y), marker.row(y - 1));

    // the table says what has to be looked at in view of the row that comes before in the next sweep
    std::memset(table, allSections, static_cast<size_t>(height));
    const auto sweep = [&](int64_t first, int64_t step) {
        bool anyChanged = false;
        Sections changed = 0;
        int64_t y = first;
        for (int64_t i = 1; i < height; ++i) {
            y += step;
            const auto look = static_cast<Sections>(table[y] | changed);
            table[y] = changed = 0;
            if (look != 0)
                changed = spreader.spreadChanges(marker.row(y), mask.row(y), marker.row(y - step), look);
            if (changed != 0) {
                table[y - step] |= changed;
                anyChanged = true;
            }
        }
        return anyChanged;
    };
    while (sweep(height - 1, -1) && sweep(0, 1)) {
    }
}

template <class Order, bool eight, class T>
void reconstructNeighbours(Plane<const T> mask, Plane<T> marker, LumiSize roiSize, Lum8u* buffer)
{
    Sections* const table = buffer;
    Lum8u* const changedBlocks = buffer + roiSize.height;
    if (roiSize.width < blockLanes<T>)
        sweepUntilAtRest(NarrowRowSpreader<Order, eight, T>(roiSize.width, changedBlocks), mask, marker, roiSize.height,
                         table);
    else
        sweepUntilAtRest(RowSpreader<Order, eight, T>(roiSize.width, changedBlocks), mask, marker, roiSize.height,
                         table);
}

template <class Order, class T>
LumStatus reconstruct(Plane<const T> mask, Plane<T> marker, LumiSize roiSize, Lum8u* buffer, LumiDistanceNorm norm)
{
    const auto status = Checks{}
                            .notNull(mask.pixels, marker.pixels, buffer)
                            .size(roiSize)
                            .step(mask, roiSize.width)
                            .step(marker, roiSize.width)
                            .alignment(mask)
                            .alignment(marker)
                            .require(norm == lumDistanceNormInf || norm == lumDistanceNormL1, lumErrArgument)
                            .status();
    if (status != lumOk)
        return status;
    if (norm == lumDistanceNormInf)
        reconstructNeighbours<Order, true>(mask, marker, roiSize, buffer);
    else
        reconstructNeighbours<Order, false>(mask, marker, roiSize, buffer);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMorphReconstructGetBufferSize(LumiSize roiSize, LumDataType dataType, Lum32s numChannels,
                                            Lum32s* pBufferSize)
{
    const auto checks = Checks{}
                            .notNull(pBufferSize)
                            .size(roiSize)
                            .require(dataType == lumType8u || dataType == lumType16u || dataType == lumType32f ||
                                         dataType == lumType64f,
                                     lumErrDataType)
                            .require(numChannels == 1, lumErrChannels);
    if (checks.failed())
        return checks.status();
    const int64_t width = roiSize.width;
    const int64_t height = roiSize.height;
    int64_t bytes = 0;
    switch (dataType) {
        case lumType8u:
            bytes = 4 * width + height + 161;
            break;
        case lumType16u:
            bytes = 8 * width + 2 * height + 322;
            break;
        case lumType32f:
            bytes = 16 * width + height + 164;
            break;
        default:
            bytes = 32 * width + height + 168;
    }
    return storeSize(bytes, pBufferSize);
}

LumStatus lumiMorphReconstructDilate_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize, Lum8u* pBuffer, LumiDistanceNorm norm)
{
    return reconstruct<Dilation>(source(pSrc, srcStep), destination(pSrcDst, srcDstStep), roiSize, pBuffer, norm);
}

LumStatus lumiMorphReconstructDilate_16u_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pSrcDst, Lum32s srcDstStep,
                                              LumiSize roiSize, Lum8u* pBuffer, LumiDistanceNorm norm)
{
    return reconstruct<Dilation>(source(pSrc, srcStep), destination(pSrcDst, srcDstStep), roiSize, pBuffer, norm);
}

LumStatus lumiMorphReconstructDilate_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                              LumiSize roiSize, Lum8u* pBuffer, LumiDistanceNorm norm)
{
    return reconstruct<Dilation>(source(pSrc, srcStep), destination(pSrcDst, srcDstStep), roiSize, pBuffer, norm);
}

LumStatus lumiMorphReconstructDilate_64f_C1IR(const Lum64f* pSrc, Lum32s srcStep, Lum64f* pSrcDst, Lum32s srcDstStep,
                                              LumiSize roiSize, Lum8u* pBuffer, LumiDistanceNorm norm)
{
    return reconstruct<Dilation>(source(pSrc, srcStep), destination(pSrcDst, srcDstStep), roiSize, pBuffer, norm);
}

LumStatus lumiMorphReconstructErode_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pSrcDst, Lum32s srcDstStep,
                                            LumiSize roiSize, Lum8u* pBuffer, LumiDistanceNorm norm)
{
    return reconstruct<Erosion>(source(pSrc, srcStep), destination(pSrcDst, srcDstStep), roiSize, pBuffer, norm);
}

LumStatus lumiMorphReconstructErode_16u_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize, Lum8u* pBuffer, LumiDistanceNorm norm)
{
    return reconstruct<Erosion>(source(pSrc, srcStep), destination(pSrcDst, srcDstStep), roiSize, pBuffer, norm);
}

LumStatus lumiMorphReconstructErode_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize, Lum8u* pBuffer, LumiDistanceNorm norm)
{
    return reconstruct<Erosion>(source(pSrc, srcStep), destination(pSrcDst, srcDstStep), roiSize, pBuffer, norm);
}

LumStatus lumiMorphReconstructErode_64f_C1IR(const Lum64f* pSrc, Lum32s srcStep, Lum64f* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize, Lum8u* pBuffer, LumiDistanceNorm norm)
{
    return reconstruct<Erosion>(source(pSrc, srcStep), destination(pSrcDst, srcDstStep), roiSize, pBuffer, norm);
}
