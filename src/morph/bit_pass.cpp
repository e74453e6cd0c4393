// Dilation and erosion of 1-bit images, in vectors of bits.
//
// Source rows are brought into lines of scratch byte by byte, as they lie in memory, and the bits of their borders are
// written beside them. The element is taken as runs. What a run sees of a line is combined for all bits of a vector at
// once, by shifts that also bring it to the destination's bit offset, and written in strips of bytes that go down the
// image, one for each group of runs that are treated alike. Of a rectangle the rows are combined as the lines are laid,
// so that one run remains. A 3x3 square or cross of a
// longer row needs no lines.
#include "morph/bit_pass.hpp"

#include <algorithm>
#include <cstring>

#include "morph/bit_small.hpp"
#include "morph/bit_window.hpp"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

/// Bytes that are read into a line at a time.
constexpr int readLanes = 2 * simd::registerLanes<Lum8u>;

/// Bytes of a strip of the result.
constexpr int stripLanes = readLanes < 64 ? 64 : readLanes;

/// Lines are laid and seen in batches of so many at least: what has just been stored is better not loaded again at
/// once.
constexpr int64_t batchRows = 16;

bool bitAt(const Lum8u* line, int64_t bit)
{
    return line[bit >> 3] >> (bit & 7) & 1;
}

void mergeByte(Lum8u* byte, Lum8u value, Lum8u mask)
{
    *byte = static_cast<Lum8u>((*byte & ~mask) | (value & mask));
}

/// Bits that are filled in each line.
class Filled
{
  public:
    explicit Filled(BitSpan span)
        : firstByte_(span.begin >> 3),
          lastByte_((span.end - 1) >> 3),
          first_(span.mask(firstByte_)),
          last_(span.mask(lastByte_))
    {
    }

    void fill(Lum8u* line, bool value) const
    {
        const auto bits = static_cast<Lum8u>(value ? 0xFF : 0);
        mergeByte(line + firstByte_, bits, first_);
        if (lastByte_ > firstByte_ + 1)
            std::memset(line + firstByte_ + 1, bits, static_cast<size_t>(lastByte_ - firstByte_ - 1));
        mergeByte(line + lastByte_, bits, last_);
    }

  private:
    int64_t firstByte_, lastByte_;
    Lum8u first_, last_;  ///< of these bytes
};

/// Writes bytes [k, k + lanes) of some rows: seen(y, k, lanes) are those of row y, and written(there, seen) is what
/// becomes of what is there. Of a partial strip the bits beside the span stay, in its first and its last byte.
template <int lanes, bool isPartial, class Seen, class Written>
[[gnu::flatten, gnu::noinline]] void writeStrip(Plane<Lum8u> dst, int64_t rows, int64_t k, BitSpan span,
                                                const Seen& given, Written written)
{
    const Seen seen = given;  // a store to the image cannot change a copy
    [[maybe_unused]] simd::Vec<Lum8u, lanes> inside;
    if constexpr (isPartial)
        inside = span.masks<lanes>(k);
    Lum8u* to = dst.pixels + k;
    for (int64_t y = 0; y < rows; ++y) {
        const auto there = simd::load<lanes>(to);
        auto result = written(there, seen(y, k, simd::Lanes<lanes>{}));
        if constexpr (isPartial)
            result = (result & inside) | (there & ~inside);
        simd::store(to, result);
        to = rowAt(to, dst.step, 1);
    }
}

/// The same with whole rows that are shorter than the shortest vector.
template <class Seen, class Written>
[[gnu::flatten, gnu::noinline]] void writeShortRows(Plane<Lum8u> dst, int64_t rows, BitSpan span, const Seen& seen,
                                                    Written written)
{
    Lum8u mask[simd::restLanes] = {};
    for (int64_t k = 0; k < span.bytes(); ++k)
        mask[k] = span.mask(k);
    for (int64_t y = 0; y < rows; ++y) {
        Lum8u* const row = dst.row(y);
        Lum8u there[simd::restLanes], result[simd::restLanes];
        simd::eachPiece<simd::restLanes>(0, span.bytes(), [&](int64_t k, auto lanes) {
            simd::storePiece<lanes>(there + k, simd::loadPiece<lanes>(row + k));
        });
        simd::store(result, seen(y, 0, simd::Lanes<simd::restLanes>{}));
        simd::eachPiece<simd::restLanes>(0, span.bytes(), [&](int64_t k, auto lanes) {
            const auto before = simd::loadPiece<lanes>(there + k), inside = simd::loadPiece<lanes>(mask + k);
            const auto after = written(before, simd::loadPiece<lanes>(result + k));
            simd::storePiece<lanes>(row + k, (after & inside) | (before & ~inside));
        });
    }
}

/// The same with whole rows.
template <class Seen, class Written>
void writeRows(Plane<Lum8u> dst, int64_t rows, BitSpan span, const Seen& seen, Written written)
{
    if (span.bytes() < simd::restLanes)
        return writeShortRows(dst, rows, span, seen, written);
    simd::eachAtLeastOnce<stripLanes>(0, span.bytes(), [&](int64_t k, auto lanes) {
        if constexpr (lanes >= simd::restLanes) {
            if (span.mask(k) == 0xFF && span.mask(k + lanes - 1) == 0xFF)
                writeStrip<lanes, false>(dst, rows, k, span, seen, written);
            else
                writeStrip<lanes, true>(dst, rows, k, span, seen, written);
        }
    });
}

/// Set positions of an element, side by side in a row.
struct Run
{
    int64_t row, first;
    int length;
};

/// Goes through the runs of an element, row by row. A long run comes in pieces that overlap, a whole number of bytes
/// from each other.
class Runs
{
  public:
    Runs(const Lum8u* set, int64_t width, int64_t height) : set_(set), width_(width), height_(height)
    {
        findSet();
    }

    bool isAtEnd() const
    {
        return row_ == height_;
    }

    Run next()
    {
        Run run{row_, first_, 0};
        const Lum8u* const set = set_ + row_ * width_;
        while (run.length <= longestWindow && first_ + run.length < width_ && set[first_ + run.length] != 0)
            ++run.length;
        if (run.length > longestWindow) {
            run.length = longestWindow;
            first_ += longestWindow / 8 * 8;
        } else
            first_ += run.length;
        findSet();
        return run;
    }

  private:
    void findSet()
    {
        for (; row_ < height_; ++row_, first_ = 0)
            for (; first_ < width_; ++first_)
                if (set_[row_ * width_ + first_] != 0)
                    return;
    }

    const Lum8u* set_;
    int64_t width_, height_;
    int64_t row_ = 0, first_ = 0;
};

/// Runs that are treated alike: of equal lengths, and shifted equally far. They are combined before that.
struct RunGroup
{
    BitWindows windows;  ///< of the first run, counted from the line of the element's first row
    int length;
    const int64_t* others;  ///< how many bytes further the windows of the other runs lie
    const int64_t* othersEnd;

    /// What an element of these runs sees for the bits of N bytes.
    template <BitOperation operation, int N>
    [[gnu::always_inline]] simd::Vec<Lum8u, N> under(const Lum8u* line) const
    {
        const Lum8u* const lower = line + windows.lower;
        const Lum8u* const upper = line + windows.upper;
        auto low = simd::reinterpreted<uint64_t>(simd::load<N>(lower));
        auto high = simd::reinterpreted<uint64_t>(simd::load<N>(upper));
        for (const int64_t* other = others; other != othersEnd; ++other) {
            low = combined<operation>(low, simd::reinterpreted<uint64_t>(simd::load<N>(lower + *other)));
            high = combined<operation>(high, simd::reinterpreted<uint64_t>(simd::load<N>(upper + *other)));
        }
        return simd::reinterpreted<Lum8u>(seenThrough<operation>(windows, length, low, high));
    }
};

/// As many of an element's runs as are worked on at a time, in groups.
class Pattern
{
  public:
    /// Takes runs. Lines lie `step` bytes apart; a run from the element's first column on has its first window at bit
    /// `origin`.
    Pattern(Runs& runs, int64_t step, int64_t origin)
    {
        Run rest[mostRuns];
        int count = 0;
        while (count < mostRuns && !runs.isAtEnd())
            rest[count++] = runs.next();
        for (int sorted = 0; sorted < count; ++groupCount_) {
            RunGroup& group = groups_[groupCount_];
            const Run first = rest[sorted++];
            group.length = first.length;
            group.windows = windowsOf(first, step, origin);
            group.others = others_ + sorted;
            for (int i = sorted; i < count; ++i) {
                const BitWindows windows = windowsOf(rest[i], step, origin);
                if (rest[i].length == first.length && windows.down == group.windows.down) {
                    others_[sorted] = windows.lower - group.windows.lower;
                    rest[i] = rest[sorted++];
                }
            }
            group.othersEnd = others_ + sorted;
        }
    }

    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    const RunGroup* begin() const
    {
        return groups_;
    }

    const RunGroup* end() const
    {
        return groups_ + groupCount_;
    }

  private:
    static constexpr int mostRuns = 64;

    static BitWindows windowsOf(const Run& run, int64_t step, int64_t origin)
    {
        return {8 * run.row * step + origin + run.first, run.length};
    }

    RunGroup groups_[mostRuns];
    int groupCount_ = 0;
    int64_t others_[mostRuns];
};

template <BitOperation operation>
class Pass
{
  public:
    Pass(const LumiMorphBitRecord& element, BitPlane<const Lum8u> src, LumiSizeL size, BitBorder border, Lum8u* scratch)
        : element_(element),
          src_(src),
          size_(size),
          border_(border),
          left_(element.anchorX),
          right_(element.rightRadius),
          firstByte_((src.offset - (border.sides.left ? left_ : 0)) >> 3),
          lastByte_((src.offset + size.width - 1 + (border.sides.right ? right_ : 0)) >> 3),
          padding_((left_ + 14) >> 3),
          origin_(8 * padding_ + src.offset),
          lineBytes_(((origin_ + size.width + right_) >> 3) + 1),
          leftBorder_({origin_ - left_, origin_}),
          rightBorder_({origin_ + size.width, origin_ + size.width + right_}),
          lines_(scratch)
    {
    }

    /// Combines `shared` rows in each line, as many as the element has, or one; `set` is what remains of it to be seen.
    void run(BitPlane<Lum8u> dst, const Lum8u* set, int64_t shared)
    {
        const int64_t rows = element_.maskHeight - shared + 1;
        Runs runs(set, element_.maskWidth, rows);
        for (bool isFirst = true; !runs.isAtEnd(); isFirst = false) {
            const Pattern pattern(runs, lineBytes_, origin_ - left_ - dst.offset);
            runPart(dst, pattern, shared, rows, isFirst);
        }
    }

  private:
    void runPart(BitPlane<Lum8u> dst, const Pattern& pattern, int64_t shared, int64_t rows, bool isFirst)
    {
        // whatever the sizes, the scratch has room for more than the lines of a batch, and what is read behind the last
        const int64_t batch = rows - 1 + batchRows;
        const BitSpan span{dst.offset, dst.offset + size_.width};
        int64_t laid = 0;
        for (int64_t begin = 0; begin < size_.height; begin += batch) {
            const int64_t end = std::min(begin + batch, size_.height);
            if (begin > 0)  // the rows that go on being seen
                std::memmove(lines_, lines_ + batch * lineBytes_, static_cast<size_t>((rows - 1) * lineBytes_));
            layLines(laid - begin, end + rows - 1 - begin, begin - element_.anchorY, shared);
            laid = end + rows - 1;
            const Plane<Lum8u> to{dst.bytes.row(begin), dst.bytes.step};
            for (const RunGroup& group : pattern) {
                const auto seen = [group, lines = lines_, step = lineBytes_](int64_t y, int64_t k, auto lanes) {
                    return group.under<operation, lanes>(lines + y * step + k);
                };
                if (isFirst && &group == pattern.begin())
                    writeRows(to, end - begin, span, seen, [](auto, auto now) { return now; });
                else
                    writeRows(to, end - begin, span, seen,
                              [](auto there, auto now) { return combined<operation>(there, now); });
            }
        }
    }

    /// Lays lines [begin, end); `first` is the row from which on line 0 combines some.
    void layLines(int64_t begin, int64_t end, int64_t first, int64_t rows) const
    {
        for (int64_t i = begin; i < end;) {
            const int64_t y = first + i;
            Lum8u* const line = lines_ + i * lineBytes_;
            const bool areInside =
                (y >= 0 || border_.sides.top) && (y + rows + 3 <= size_.height || border_.sides.bottom);
            if (i + 4 <= end && areInside) {
                readFourTimes(line + padding_, src_.bytes.row(y), rows);
                for (int k = 0; k < 4; ++k, ++i)
                    extend(line + k * lineBytes_);
            } else {
                layLine(line, y, rows);
                ++i;
            }
        }
    }

    /// Combines rows from y on, with their borders, in a line.
    void layLine(Lum8u* line, int64_t y, int64_t rows) const
    {
        const int64_t end = y + rows, height = size_.height;
        const bool above = y < 0 && !border_.sides.top, below = end > height && !border_.sides.bottom;
        if ((above || below) && border_.isConstant && (rows == 1 || border_.value == decisive(operation))) {
            std::memset(line, border_.value ? 0xFF : 0, static_cast<size_t>(lineBytes_));
            return;
        }
        const int64_t first = above ? 0 : below && y >= height ? height - 1 : y;
        const int64_t last = below ? height - 1 : above && end <= 0 ? 0 : end - 1;
        readRows(line + padding_, src_.bytes.row(first), last - first + 1);
        extend(line);
    }

    /// Combines rows as they lie in memory.
    [[gnu::flatten]] void readRows(Lum8u* to, const Lum8u* row, int64_t count) const
    {
        const int64_t step = src_.bytes.step;
        simd::eachPiece<readLanes>(firstByte_, lastByte_ + 1, [=](int64_t k, auto lanes) {
            auto result = simd::loadPiece<lanes>(row + k);
            for (int64_t i = 1; i < count; ++i)
                result = combined<operation>(result, simd::loadPiece<lanes>(row + i * step + k));
            simd::storePiece<lanes>(to + k, result);
        });
    }

    /// The same for four lines, each a row further down: they share most of many rows.
    [[gnu::flatten]] void readFourTimes(Lum8u* to, const Lum8u* row, int64_t count) const
    {
        const int64_t step = src_.bytes.step, lineBytes = lineBytes_;
        if (count < 4) {
            for (int64_t i = 0; i < 4; ++i)
                readRows(to + i * lineBytes, row + i * step, count);
            return;
        }
        simd::eachPiece<readLanes>(firstByte_, lastByte_ + 1, [=](int64_t k, auto lanes) {
            const auto rowOf = [=](int64_t i) { return simd::loadPiece<lanes>(row + i * step + k); };
            auto all = rowOf(3);
            for (int64_t i = 4; i < count; ++i)
                all = combined<operation>(all, rowOf(i));
            const auto third = combined<operation>(all, rowOf(2));
            const auto second = combined<operation>(third, rowOf(1));
            Lum8u* const line = to + k;
            simd::storePiece<lanes>(line, combined<operation>(second, rowOf(0)));
            auto below = rowOf(count);
            simd::storePiece<lanes>(line + lineBytes, combined<operation>(second, below));
            below = combined<operation>(below, rowOf(count + 1));
            simd::storePiece<lanes>(line + 2 * lineBytes, combined<operation>(third, below));
            below = combined<operation>(below, rowOf(count + 2));
            simd::storePiece<lanes>(line + 3 * lineBytes, combined<operation>(all, below));
        });
    }

    /// Writes the bits of the border beside the pixels of a line.
    void extend(Lum8u* line) const
    {
        if (!border_.sides.left)
            leftBorder_.fill(line, border_.isConstant ? border_.value : bitAt(line, origin_));
        if (!border_.sides.right)
            rightBorder_.fill(line, border_.isConstant ? border_.value : bitAt(line, origin_ + size_.width - 1));
    }

    const LumiMorphBitRecord& element_;
    BitPlane<const Lum8u> src_;
    LumiSizeL size_;
    BitBorder border_;
    int64_t left_, right_;          ///< the element's reach
    int64_t firstByte_, lastByte_;  ///< of a source row, with what lies in memory beside it
    int64_t padding_;               ///< the source row's first byte in a line
    int64_t origin_;                ///< its first pixel's bit in a line
    int64_t lineBytes_;
    Filled leftBorder_, rightBorder_;
    Lum8u* lines_;
};

bool isRectangle(const LumiMorphBitRecord& element)
{
    const int64_t positions = int64_t{element.maskWidth} * element.maskHeight;
    for (int64_t i = 0; i < positions; ++i)
        if (element.pSetMask[i] == 0)
            return false;
    return true;
}

template <BitOperation operation>
void work(const LumiMorphBitRecord& element, BitPlane<const Lum8u> src, BitPlane<Lum8u> dst, LumiSizeL size,
          BitBorder border, Lum8u* scratch)
{
    if (!smallBitPass(operation, element, src, dst, size, border))
        Pass<operation>(element, src, size, border, scratch)
            .run(dst, element.pSetMask, isRectangle(element) ? element.maskHeight : 1);
}

}  // namespace

void bitPass(BitOperation operation, const LumiMorphBitRecord& element, BitPlane<const Lum8u> src, BitPlane<Lum8u> dst,
             LumiSizeL size, BitBorder border, Lum8u* scratch)
{
    if (element.mode == bitModeEmpty) {  // a copy
        const Lum8u set = 0xFF;
        LumiMorphBitRecord pixel{};
        pixel.pSetMask = &set;
        pixel.maskWidth = pixel.maskHeight = 1;
        bitPass(operation, pixel, src, dst, size, border, scratch);
    } else if (operation == BitOperation::dilation)
        work<BitOperation::dilation>(element, src, dst, size, border, scratch);
    else
        work<BitOperation::erosion>(element, src, dst, size, border, scratch);
}

void subtractBits(BitPlane<const Lum8u> minuend, BitPlane<const Lum8u> subtrahend, BitPlane<Lum8u> dst, LumiSizeL size,
                  Lum8u* scratch)
{
    const int64_t lineBytes = (size.width + 14) / 8 + 1;
    const BitPlane<const Lum8u> operands[2] = {minuend, subtrahend};
    Lum8u* lines[2];
    const Lum8u* bits[2];
    int shifts[2];
    for (int i = 0; i < 2; ++i) {
        // a byte ahead of each row, since the destination's offset may be the greater one
        const int64_t origin = 8 + operands[i].offset - dst.offset;
        lines[i] = scratch + i * batchRows * lineBytes;
        bits[i] = lines[i] + (origin >> 3);
        shifts[i] = static_cast<int>(origin & 7);
    }
    const auto difference = [=](int64_t y, int64_t k, auto lanes) {
        return simd::loadBits<lanes>(bits[0] + y * lineBytes + k, shifts[0]) &
               ~simd::loadBits<lanes>(bits[1] + y * lineBytes + k, shifts[1]);
    };
    for (int64_t begin = 0; begin < size.height; begin += batchRows) {
        const int64_t rows = std::min(batchRows, size.height - begin);
        for (int i = 0; i < 2; ++i)
            for (int64_t y = 0; y < rows; ++y)
                std::memcpy(lines[i] + y * lineBytes + 1, operands[i].bytes.row(begin + y),
                            static_cast<size_t>((operands[i].offset + size.width + 7) >> 3));
        writeRows({dst.bytes.row(begin), dst.bytes.step}, rows, BitSpan{dst.offset, dst.offset + size.width},
                  difference, [](auto, auto now) { return now; });
    }
}

}  // namespace lumcv
