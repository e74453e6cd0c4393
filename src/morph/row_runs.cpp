// Dilation and erosion by elements that are no rectangle.
//
// Where each row of the element is a run, every image row is reduced once for each length that occurs, the longer
// windows from the shorter ones, into a ring of rows; an output row then takes one window from each row under the
// element. Two neighbouring output rows join first what both of them take.
#include "morph/area.hpp"

namespace lumcv {
namespace {

constexpr int mostLengths = 16;
constexpr int mostRows = 256;

/// The different lengths of an element's runs, in ascending order.
struct RunLengths
{
    int64_t length[mostLengths];
    int count = 0;
    bool areTooMany = false;

    explicit RunLengths(const Element& element)
    {
        for (int64_t y = 0; y < element.height; ++y)
            if (const int64_t run = element.run(y).length)
                insert(run);
    }

    int indexOf(int64_t run) const
    {
        int i = 0;
        while (length[i] != run)
            ++i;
        return i;
    }

  private:
    void insert(int64_t run)
    {
        int i = count;
        while (i > 0 && length[i - 1] > run)
            --i;
        if (i > 0 && length[i - 1] == run)
            return;
        if (count == mostLengths) {
            areTooMany = true;
            return;
        }
        for (int k = count; k > i; --k)
            length[k] = length[k - 1];
        length[i] = run;
        ++count;
    }
};

/// A row of the element: which line of an image row it takes, and from where on.
struct Run
{
    int64_t row, first;
    int64_t line;  ///< negative: the image row itself
};

int64_t listRuns(const Element& element, const RunLengths& lengths, int64_t channels, Run* runs)
{
    const int64_t firstLine = lengths.length[0] == 1;
    int64_t count = 0;
    for (int64_t y = 0; y < element.height; ++y)
        if (const auto run = element.run(y); run.length > 0)
            runs[count++] = {y, run.first * channels, lengths.indexOf(run.length) - firstLine};
    return count;
}

/// What the lists of two neighbouring output rows have in common: a row of windows that both take at the same place.
struct Sharing
{
    bool isShared[mostRows];  ///< of the upper row's run with the run above it of the lower row
    int64_t shared = 0;

    Sharing(const Run* runs, int64_t count)
    {
        for (int64_t i = 0; i < count; ++i) {
            isShared[i] = i > 0 && runs[i].row == runs[i - 1].row + 1 && runs[i].first == runs[i - 1].first &&
                          runs[i].line == runs[i - 1].line;
            shared += isShared[i];
        }
    }
};

/// Where the windows of a ring lie: for each image row one line for each length above 1.
struct RingLayout
{
    int64_t lines;  ///< in a slot
    int64_t band;   ///< output elements; none if the scratch has no room for as many as are worthwhile
    int64_t pitch;  ///< elements from line to line
    int64_t slots;
};

constexpr int64_t cacheBytes = 32 * 1024;

/// For output rows that are computed so many at a time, in bands of `worthwhile` elements at least.
template <class T>
RingLayout ringLayout(const Area<T>& area, const Element& element, const RunLengths& lengths, int64_t rows,
                      int64_t worthwhile, Scratch scratch)
{
    constexpr int64_t elementBytes = sizeof(T), aligned = 32 / elementBytes;
    const int64_t lines = lengths.count - (lengths.length[0] == 1);
    const int64_t slots = element.height - 1 + rows;
    const int64_t excess = (element.width - 1) * area.channels;
    const auto pitchIn = [&](int64_t bytes) { return lines == 0 ? bytes : bytes / elementBytes / (lines * slots); };
    constexpr int64_t least = 256;
    const int64_t cached = pitchIn(cacheBytes) - excess, possible = pitchIn(scratch.bytes) - excess;
    const int64_t wanted = cached < least ? least : cached;
    const int64_t widest = wanted < possible ? wanted : possible;
    if (widest < (area.elements < worthwhile ? area.elements : worthwhile))
        return {};
    const int64_t band = bandElements(area.elements, widest);
    const int64_t pitch = roundedUp(band + excess, aligned);
    return {lines, band, pitch - excess <= possible ? pitch : band + excess, slots};
}

/// Fills a line for each length above 1 with all its windows in so many elements, each line from the one before it.
template <class Operation, class T>
void fillLines(const T* from, const RunLengths& lengths, T* to, int64_t pitch, int64_t channels, int64_t elements,
               int64_t ahead)
{
    int64_t length = 1;
    for (int i = lengths.length[0] == 1; i < lengths.count; ++i, to += pitch) {
        const int64_t longer = lengths.length[i], windows = elements - (longer - 1) * channels;
        growWindows<Operation>(from, length, to, to, longer, channels, windows, length == 1 ? ahead : 0);
        from = to;
        length = longer;
    }
}

/// The extreme of one line from each row.
template <class Operation, class T>
[[gnu::flatten, gnu::noinline]] void joinLines(const T* const* lines, int64_t count, T* dst, int64_t n,
                                               int64_t dstAhead)
{
    simd::eachAtLeastOnce<lanesIn<T, 8>>(0, n, [=](int64_t x, auto lanes) {
        if constexpr (lanes > 1)
            simd::prefetch<lanes>(static_cast<const T*>(rowAt(dst + x, dstAhead, 1)));
        auto extreme = simd::load<lanes>(lines[0] + x);
        for (int64_t i = 1; i < count; ++i)
            extreme = Operation{}(extreme, simd::load<lanes>(lines[i] + x));
        simd::store(dst + x, extreme);
    });
}

/// The extremes of two neighbouring rows. First come the lines that both of them take, then those of the upper one
/// alone, then those of the lower one.
template <class Operation, class T>
[[gnu::flatten, gnu::noinline]] void joinLinesOfTwo(const T* const* lines, int64_t shared, int64_t upper, int64_t lower,
                                                    Plane<T> dst, int64_t n, int64_t dstAhead)
{
    const int64_t dstStep = dst.step;
    T* const d = dst.pixels;
    simd::eachAtLeastOnce<lanesIn<T, 4>>(0, n, [=](int64_t x, auto lanes) {
        T* const to = d + x;
        if constexpr (lanes > 1) {
            simd::prefetch<lanes>(static_cast<const T*>(rowAt(to, dstAhead, 1)));
            simd::prefetch<lanes>(static_cast<const T*>(rowAt(to, dstAhead + dstStep, 1)));
        }
        auto common = simd::load<lanes>(lines[0] + x);
        int64_t i = 1;
        for (; i < shared; ++i)
            common = Operation{}(common, simd::load<lanes>(lines[i] + x));
        auto extreme = common;
        for (; i < shared + upper; ++i)
            extreme = Operation{}(extreme, simd::load<lanes>(lines[i] + x));
        simd::store(to, extreme);
        for (; i < shared + upper + lower; ++i)
            common = Operation{}(common, simd::load<lanes>(lines[i] + x));
        simd::store(rowAt(to, dstStep, 1), common);
    });
}

/// The extreme of the listed pixels; src is the pixel under the element's first position.
template <class Operation, class T>
[[gnu::flatten, gnu::noinline]] void joinListed(const Area<T>& area, const Element& element, const T* src, T* dst,
                                                int64_t n)
{
    const int64_t listed = element.width + 1;
    const int64_t step = area.src.step, channels = area.channels;
    const int64_t height = element.height;
    const Lum16u* const lists = element.rowLists;
    simd::eachAtLeastOnce<lanesIn<T, 8>>(0, n, [=](int64_t x, auto lanes) {
        simd::Vec<T, lanes> extreme{};
        bool isFirst = true;
        const T* row = src + x;
        const Lum16u* list = lists;
        for (int64_t j = 0; j < height; ++j, row = rowAt(row, step, 1), list += listed)
            for (int64_t i = 1; i <= list[0]; ++i) {
                const auto pixels = simd::load<lanes>(row + list[i] * channels);
                extreme = isFirst ? pixels : Operation{}(extreme, pixels);
                isFirst = false;
            }
        simd::store(dst + x, extreme);
    });
}

/// The same for elements that are too wide for lists.
template <class Operation, class T>
void joinSet(const Area<T>& area, const Element& element, const T* src, T* dst, int64_t n)
{
    bool isFirst = true;
    for (int64_t j = 0; j < element.height; ++j)
        for (int64_t i = 0; i < element.width; ++i) {
            if (!element.mask[j * element.width + i])
                continue;
            const T* const pixels = rowAt(src, area.src.step, j) + i * area.channels;
            simd::eachAtLeastOnce<lanesIn<T, 1>>(0, n, [=](int64_t x, auto lanes) {
                const auto loaded = simd::load<lanes>(pixels + x);
                simd::store(dst + x, isFirst ? loaded : Operation{}(simd::load<lanes>(dst + x), loaded));
            });
            isFirst = false;
        }
}

}  // namespace

template <class Operation, class T>
bool rowRuns(Area<T> area, const Element& element, Scratch scratch)
{
    if (element.height > mostRows)
        return false;
    const RunLengths lengths(element);
    if (lengths.areTooMany)
        return false;
    Run runs[mostRows];
    const int64_t channels = area.channels;
    const int64_t count = listRuns(element, lengths, channels, runs);
    // of floats a not-a-number comes out by the order of the rows
    const Sharing sharing(runs, std::is_integral_v<T> ? count : 0);
    constexpr int64_t worthJoining = 3, worthwhileOfTwo = 256, worthwhile = 64;
    int64_t most = sharing.shared >= worthJoining ? 2 : 1;
    RingLayout layout{};
    if (most == 2)
        layout = ringLayout(area, element, lengths, most, worthwhileOfTwo, scratch);
    if (layout.band == 0) {
        most = 1;
        layout = ringLayout(area, element, lengths, most, worthwhile, scratch);
    }
    if (layout.band == 0)
        return false;
    const int64_t pitch = layout.pitch;
    T* const ring = reinterpret_cast<T*>(scratch.begin);
    const auto srcRow = [&](int64_t y, int64_t begin) {
        return area.src.row(y - element.anchorY) + begin - element.anchorX * channels;
    };

    for (int64_t begin = 0; begin < area.elements; begin += layout.band) {
        const int64_t n = begin + layout.band < area.elements ? layout.band : area.elements - begin;
        const int64_t seen = n + (element.width - 1) * channels;
        const int64_t slotElements = layout.lines * pitch;
        int64_t filled = 0, slot = 0, firstSlot = 0;
        for (int64_t y = 0; y < area.height;) {
            const int64_t rows = y + most <= area.height ? most : 1;
            for (; filled < y + rows - 1 + element.height; ++filled) {
                const bool isLast = filled + 1 == area.height + element.height - 1;
                fillLines<Operation>(srcRow(filled, begin), lengths, ring + slot * slotElements, pitch, channels, seen,
                                     isLast ? 0 : area.src.step);
                slot = slot + 1 == layout.slots ? 0 : slot + 1;
            }
            const T* lines[2 * mostRows];
            const auto lineOf = [&](const Run& run, int64_t below) {
                int64_t at = firstSlot + run.row + below;
                at = at < layout.slots ? at : at - layout.slots;
                const T* const windows =
                    run.line < 0 ? srcRow(y + run.row + below, begin) : ring + at * slotElements + run.line * pitch;
                return windows + run.first;
            };
            const Plane<T> dst{area.dst.row(y) + begin, area.dst.step};
            const int64_t ahead = y + 2 * rows <= area.height ? rows * area.dst.step : 0;
            if (rows == 1) {
                for (int64_t i = 0; i < count; ++i)
                    lines[i] = lineOf(runs[i], 0);
                joinLines<Operation>(lines, count, dst.pixels, n, ahead);
            } else {
                const int64_t alone = count - sharing.shared;
                int64_t inBoth = 0, above = sharing.shared, below = count;
                for (int64_t i = 0; i < count; ++i) {
                    lines[sharing.isShared[i] ? inBoth++ : above++] = lineOf(runs[i], 0);
                    if (i + 1 == count || !sharing.isShared[i + 1])
                        lines[below++] = lineOf(runs[i], 1);
                }
                joinLinesOfTwo<Operation>(lines, sharing.shared, alone, alone, dst, n, ahead);
            }
            firstSlot += rows;
            firstSlot -= firstSlot < layout.slots ? 0 : layout.slots;
            y += rows;
        }
    }
    return true;
}

template <class Operation, class T>
bool rowRunsAlong(Area<T> area, int64_t pitch, const Element& element, Scratch scratch)
{
    if (element.height > mostRows)
        return false;
    const RunLengths lengths(element);
    const int64_t channels = area.channels;
    const int64_t seen = area.elements + (element.height - 1) * pitch + (element.width - 1) * channels;
    const int64_t lineBytes = seen * static_cast<int64_t>(sizeof(T));
    if (lengths.areTooMany || lineBytes * lengths.count > scratch.bytes)
        return false;
    Run runs[mostRows];
    const int64_t count = listRuns(element, lengths, channels, runs);
    const T* const src = area.src.pixels - element.anchorY * pitch - element.anchorX * channels;
    T* const windows = reinterpret_cast<T*>(scratch.begin);
    fillLines<Operation>(src, lengths, windows, seen, channels, seen, 0);
    const T* lines[mostRows];
    for (int64_t i = 0; i < count; ++i)
        lines[i] = (runs[i].line < 0 ? src : windows + runs[i].line * seen) + runs[i].row * pitch + runs[i].first;
    joinLines<Operation>(lines, count, area.dst.pixels, area.elements, 0);
    return true;
}

template <class Operation, class T>
void anyShape(Area<T> area, const Element& element)
{
    for (int64_t y = 0; y < area.height; ++y) {
        const T* const src = area.src.row(y - element.anchorY) - element.anchorX * area.channels;
        if (element.hasRowLists())
            joinListed<Operation>(area, element, src, area.dst.row(y), area.elements);
        else
            joinSet<Operation>(area, element, src, area.dst.row(y), area.elements);
    }
}

template bool rowRuns<Maximum>(Area<Lum8u>, const Element&, Scratch);
template bool rowRunsAlong<Maximum>(Area<Lum8u>, int64_t, const Element&, Scratch);
template bool rowRuns<Maximum>(Area<Lum16u>, const Element&, Scratch);
template bool rowRunsAlong<Maximum>(Area<Lum16u>, int64_t, const Element&, Scratch);
template bool rowRuns<Maximum>(Area<Lum16s>, const Element&, Scratch);
template bool rowRunsAlong<Maximum>(Area<Lum16s>, int64_t, const Element&, Scratch);
template bool rowRuns<Maximum>(Area<Lum32f>, const Element&, Scratch);
template bool rowRunsAlong<Maximum>(Area<Lum32f>, int64_t, const Element&, Scratch);
template bool rowRuns<Minimum>(Area<Lum8u>, const Element&, Scratch);
template bool rowRunsAlong<Minimum>(Area<Lum8u>, int64_t, const Element&, Scratch);
template bool rowRuns<Minimum>(Area<Lum16u>, const Element&, Scratch);
template bool rowRunsAlong<Minimum>(Area<Lum16u>, int64_t, const Element&, Scratch);
template bool rowRuns<Minimum>(Area<Lum16s>, const Element&, Scratch);
template bool rowRunsAlong<Minimum>(Area<Lum16s>, int64_t, const Element&, Scratch);
template bool rowRuns<Minimum>(Area<Lum32f>, const Element&, Scratch);
template bool rowRunsAlong<Minimum>(Area<Lum32f>, int64_t, const Element&, Scratch);
template void anyShape<Maximum>(Area<Lum8u>, const Element&);
template void anyShape<Maximum>(Area<Lum16u>, const Element&);
template void anyShape<Maximum>(Area<Lum16s>, const Element&);
template void anyShape<Maximum>(Area<Lum32f>, const Element&);
template void anyShape<Minimum>(Area<Lum8u>, const Element&);
template void anyShape<Minimum>(Area<Lum16u>, const Element&);
template void anyShape<Minimum>(Area<Lum16s>, const Element&);
template void anyShape<Minimum>(Area<Lum32f>, const Element&);

}  // namespace lumcv
