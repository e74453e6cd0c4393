// Dilation and erosion of 1-bit images, in vectors of bits.
//
// A source row is brought into a line of scratch byte by byte as it lies in memory, and the bits of its border are
// written beside it. What the element sees of the row is then the line, moved by some bits; the last move brings the
// result to the destination's bit offset. Of a rectangle the rows are combined first and the columns once for all rows.
// A 3x3 square between equal bit offsets needs no line.
#include "morph/bit_pass.hpp"

#include <cstring>

#include "morph/morph_sizes.hpp"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

/// Bytes that a line is worked on in at a time, beyond the end of what counts as well.
constexpr int lineLanes = simd::registerLanes<Lum8u>;

/// Bytes of a row of an image at a time.
constexpr int rowLanes = 64;

template <BitOperation operation, class V>
[[gnu::always_inline]] inline V combined(V a, V b)
{
    if constexpr (operation == BitOperation::dilation)
        return a | b;
    else
        return a & b;
}

/// The bit that decides a pixel whatever the others are.
constexpr bool decisive(BitOperation operation)
{
    return operation == BitOperation::dilation;
}

bool bitAt(const Lum8u* line, int64_t bit)
{
    return line[bit >> 3] >> (bit & 7) & 1;
}

/// The bits of a byte in [begin, end), of which some lie in it.
Lum8u maskOf(int64_t byte, int64_t begin, int64_t end)
{
    const int64_t first = begin > 8 * byte ? begin - 8 * byte : 0;
    const int64_t last = end < 8 * byte + 8 ? end - 8 * byte : 8;
    return static_cast<Lum8u>((0xFF << first) & (0xFF >> (8 - last)));
}

void mergeByte(Lum8u* byte, Lum8u value, Lum8u mask)
{
    *byte = static_cast<Lum8u>((*byte & ~mask) | (value & mask));
}

void setBits(Lum8u* line, int64_t begin, int64_t end, bool value)
{
    if (begin >= end)
        return;
    const auto bits = static_cast<Lum8u>(value ? 0xFF : 0);
    const int64_t firstByte = begin >> 3, lastByte = (end - 1) >> 3;
    mergeByte(line + firstByte, bits, maskOf(firstByte, begin, end));
    if (firstByte == lastByte)
        return;
    std::memset(line + firstByte + 1, bits, static_cast<size_t>(lastByte - firstByte - 1));
    mergeByte(line + lastByte, bits, maskOf(lastByte, begin, end));
}

/// The same, quickly where few bits are concerned: single bytes are loaded at once from a vector that has just been
/// stored.
[[gnu::always_inline]] inline void setFew(Lum8u* line, int64_t begin, int64_t end, bool value)
{
    const int64_t firstByte = begin >> 3, lastByte = (end - 1) >> 3;
    if (begin >= end || lastByte - firstByte > 1) {
        setBits(line, begin, end, value);
        return;
    }
    const auto bits = static_cast<Lum8u>(value ? 0xFF : 0);
    mergeByte(line + firstByte, bits, maskOf(firstByte, begin, end));
    if (lastByte > firstByte)
        mergeByte(line + lastByte, bits, maskOf(lastByte, begin, end));
}

/// Writes bits [begin, begin + count) of a row, begin being 0 to 7: bytes(k, lanes) are its bytes from k on. The other
/// bits of the bytes at the ends stay.
template <class Bytes>
[[gnu::always_inline]] inline void writeRow(Lum8u* row, int64_t begin, int64_t count, Bytes bytes)
{
    const int64_t end = begin + count;
    const int64_t last = (end - 1) >> 3;
    const auto merge = [=](int64_t k) { mergeByte(row + k, bytes(k, simd::Lanes<1>{}).raw, maskOf(k, begin, end)); };
    if (begin > 0 || end < 8)
        merge(0);
    if (last > 0 && end % 8 != 0)
        merge(last);
    simd::eachAtLeastOnce<rowLanes>(begin > 0, end >> 3,
                                    [=](int64_t k, auto lanes) { simd::store(row + k, bytes(k, lanes)); });
}

/// The same of bits that stand in a line from some bit on.
[[gnu::flatten]] void writeLine(Lum8u* row, int64_t begin, int64_t count, const Lum8u* line, int64_t lineBit)
{
    const int64_t origin = lineBit - begin;
    const Lum8u* const bytes = line + (origin >> 3);
    const int shift = static_cast<int>(origin & 7);
    if (shift == 0)
        writeRow(row, begin, count, [=](int64_t k, auto lanes) { return simd::load<lanes>(bytes + k); });
    else
        writeRow(row, begin, count, [=](int64_t k, auto lanes) { return simd::loadBits<lanes>(bytes + k, shift); });
}

/// Writes each bit of a line combined with the one before and the one behind it; the line has the bit offset of the
/// row.
template <BitOperation operation>
[[gnu::flatten]] void writeTriples(Lum8u* row, int64_t begin, int64_t count, const Lum8u* line)
{
    writeRow(row, begin, count, [=](int64_t k, auto lanes) {
        const auto sides =
            combined<operation>(simd::loadBits<lanes>(line + k - 1, 7), simd::loadBits<lanes>(line + k, 1));
        return combined<operation>(sides, simd::load<lanes>(line + k));
    });
}

/// Combines each bit of a line of n bytes with the bits that lie `moves` behind it, all less than 8.
template <BitOperation operation, int... moves>
[[gnu::flatten, gnu::noinline]] void combineNear(Lum8u* line, int64_t n)
{
    for (int64_t k = 0; k < n; k += lineLanes) {
        auto result = simd::load<lineLanes>(line + k);
        ((result = combined<operation>(result, simd::loadBits<lineLanes>(line + k, moves))), ...);
        simd::store(line + k, result);
    }
}

template <BitOperation operation>
[[gnu::flatten, gnu::noinline]] void combineFar(Lum8u* line, int64_t n, int64_t move)
{
    const Lum8u* const far = line + (move >> 3);
    const int shift = static_cast<int>(move & 7);
    for (int64_t k = 0; k < n; k += lineLanes)
        simd::store(line + k,
                    combined<operation>(simd::load<lineLanes>(line + k), simd::loadBits<lineLanes>(far + k, shift)));
}

/// Makes each bit of a line the combination of `length` bits from it on.
template <BitOperation operation>
void growRuns(Lum8u* line, int64_t n, int64_t length)
{
    if (length == 3) {
        combineNear<operation, 1, 2>(line, n);
        return;
    }
    if (length == 5) {
        combineNear<operation, 1, 2, 3, 4>(line, n);
        return;
    }
    for (int64_t grown = 1; grown < length;) {
        const int64_t move = 2 * grown <= length ? grown : length - grown;
        if (move == 1)
            combineNear<operation, 1>(line, n);
        else
            combineFar<operation>(line, n, move);
        grown += move;
    }
}

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
          line_(scratch),
          result_(scratch + lineBytes_ + (element.maskWidth >> 3) + lineLanes + 2)
    {
    }

    void copy(BitPlane<Lum8u> dst)
    {
        for (int64_t y = 0; y < size_.height; ++y) {
            readRows(src_.bytes.row(y), 1);
            writeLine(dst.bytes.row(y), dst.offset, size_.width, line_, origin_);
        }
    }

    /// Rows go through in batches: what has just been stored in a line is better not loaded again at once.
    void rectangle(BitPlane<Lum8u> dst)
    {
        constexpr int64_t longestBatch = 16;
        const int64_t lineStep = result_ - line_;
        const int64_t fitting =
            static_cast<int64_t>(bitScratchBytes(size_, {element_.maskWidth, element_.maskHeight}) / lineStep);
        const int64_t batch = fitting < longestBatch ? fitting : longestBatch;
        Lum8u* const lines = line_;
        const bool isNarrow = element_.maskWidth == 3 && dst.offset == src_.offset;
        for (int64_t begin = 0; begin < size_.height; begin += batch) {
            const int64_t end = begin + batch < size_.height ? begin + batch : size_.height;
            bool isDecided[longestBatch];
            for (int64_t y = begin; y < end; ++y) {
                line_ = lines + (y - begin) * lineStep;
                isDecided[y - begin] = !readRowsUnder(y);
                if (!isDecided[y - begin] && !isNarrow)
                    growRuns<operation>(line_, lineBytes_, element_.maskWidth);
            }
            for (int64_t y = begin; y < end; ++y) {
                line_ = lines + (y - begin) * lineStep;
                Lum8u* const row = dst.bytes.row(y);
                if (isDecided[y - begin])
                    setBits(row, dst.offset, dst.offset + size_.width, border_.value);
                else if (isNarrow)
                    writeTriples<operation>(row, dst.offset, size_.width, line_ + padding_);
                else
                    writeLine(row, dst.offset, size_.width, line_, origin_ - left_);
            }
        }
        line_ = lines;
    }

    void anyShape(BitPlane<Lum8u> dst)
    {
        const int64_t bytes = (dst.offset + size_.width + 7) >> 3;
        const Lum8u neutral = operation == BitOperation::dilation ? 0 : 0xFF;
        for (int64_t y = 0; y < size_.height; ++y) {
            std::memset(result_, neutral, static_cast<size_t>(bytes));
            for (int64_t j = 0; j < element_.maskHeight; ++j)
                meetRow(element_.pSetMask + j * element_.maskWidth, y + j - element_.anchorY, dst.offset, bytes);
            writeLine(dst.bytes.row(y), dst.offset, size_.width, result_, dst.offset);
        }
    }

  private:
    /// Combines the rows under the element, with their borders, into the line; false if a border row decides all
    /// pixels.
    bool readRowsUnder(int64_t y)
    {
        int64_t first = y - element_.anchorY, last = y + element_.bottomRadius;
        const bool above = first < 0 && !border_.sides.top, below = last >= size_.height && !border_.sides.bottom;
        if ((above || below) && border_.isConstant && border_.value == decisive(operation))
            return false;
        first = above ? 0 : first;
        last = below ? size_.height - 1 : last;
        readRows(src_.bytes.row(first), last - first + 1);
        extend();
        return true;
    }

    /// Combines rows, as they lie in memory, into the line.
    [[gnu::flatten]] void readRows(const Lum8u* row, int64_t count)
    {
        Lum8u* const to = line_ + padding_;
        const int64_t step = src_.bytes.step;
        const Lum8u* const second = row + step;
        const Lum8u* const third = second + step;
        const auto each = [=, this](auto bytes) {
            simd::eachAtLeastOnce<rowLanes>(firstByte_, lastByte_ + 1,
                                            [=](int64_t k, auto lanes) { simd::store(to + k, bytes(k, lanes)); });
        };
        const auto two = [=](int64_t k, auto lanes) {
            return combined<operation>(simd::load<lanes>(row + k), simd::load<lanes>(second + k));
        };
        const auto three = [=](int64_t k, auto lanes) {
            return combined<operation>(two(k, lanes), simd::load<lanes>(third + k));
        };
        if (count == 1)
            each([=](int64_t k, auto lanes) { return simd::load<lanes>(row + k); });
        else if (count == 2)
            each(two);
        else
            each([=](int64_t k, auto lanes) {
                auto result = three(k, lanes);
                for (int64_t i = 3; i < count; ++i)
                    result = combined<operation>(result, simd::load<lanes>(row + i * step + k));
                return result;
            });
    }

    /// Writes the bits of the border beside the pixels in the line.
    void extend()
    {
        const int64_t end = origin_ + size_.width;
        if (!border_.sides.left)
            setFew(line_, origin_ - left_, origin_, border_.isConstant ? border_.value : bitAt(line_, origin_));
        if (!border_.sides.right)
            setFew(line_, end, end + right_, border_.isConstant ? border_.value : bitAt(line_, end - 1));
    }

    /// Combines the result with what one row of the element sees.
    void meetRow(const Lum8u* set, int64_t y, int64_t dstOffset, int64_t bytes)
    {
        int64_t first = 0, last = element_.maskWidth - 1;
        while (first <= last && set[first] == 0)
            ++first;
        if (first > last)
            return;
        while (set[last] == 0)
            --last;
        const bool isOutside = (y < 0 && !border_.sides.top) || (y >= size_.height && !border_.sides.bottom);
        if (isOutside && border_.isConstant) {
            if (border_.value == decisive(operation))
                std::memset(result_, border_.value ? 0xFF : 0, static_cast<size_t>(bytes));
            return;
        }
        readRows(src_.bytes.row(!isOutside ? y : y < 0 ? 0 : size_.height - 1), 1);
        extend();
        int64_t count = 0;
        for (int64_t i = first; i <= last; ++i)
            count += set[i] != 0;
        const int64_t origin = origin_ - left_ - dstOffset;
        if (count == last - first + 1) {
            growRuns<operation>(line_, lineBytes_, count);
            meet(origin + first, bytes);
        } else
            for (int64_t i = first; i <= last; ++i)
                if (set[i])
                    meet(origin + i, bytes);
    }

    /// Combines the result with the line from some bit on.
    [[gnu::flatten, gnu::noinline]] void meet(int64_t bit, int64_t bytes)
    {
        const Lum8u* const from = line_ + (bit >> 3);
        const int shift = static_cast<int>(bit & 7);
        for (int64_t k = 0; k < bytes; k += lineLanes)
            simd::store(result_ + k, combined<operation>(simd::load<lineLanes>(result_ + k),
                                                         simd::loadBits<lineLanes>(from + k, shift)));
    }

    const LumiMorphBitRecord& element_;
    BitPlane<const Lum8u> src_;
    LumiSizeL size_;
    BitBorder border_;
    int64_t left_, right_;          ///< the element's reach
    int64_t firstByte_, lastByte_;  ///< of a source row, with what lies in memory beside it
    int64_t padding_;               ///< the source row's first byte in the line
    int64_t origin_;                ///< its first pixel's bit in the line
    int64_t lineBytes_;
    Lum8u* line_;
    Lum8u* result_;
};

/// A 3x3 rectangle over images of equal bit offsets, in strips of bytes that go down the image. What replicate puts
/// beside the image lies under the element anyway; so every border is a constant, or in memory.
template <BitOperation operation>
class Square
{
  public:
    static bool fits(const LumiMorphBitRecord& element, int64_t srcOffset, int64_t dstOffset, LumiSizeL size)
    {
        return element.maskWidth == 3 && element.maskHeight == 3 && srcOffset == dstOffset &&
               dstOffset + size.width > 8 * endLanes;
    }

    Square(BitPlane<const Lum8u> src, BitPlane<Lum8u> dst, LumiSizeL size, BitBorder border)
        : src_(src.bytes),
          dst_(dst.bytes),
          height_(size.height),
          begin_(dst.offset),
          end_(dst.offset + size.width),
          sides_(border.sides),
          border_((border.isConstant ? border.value : !decisive(operation)) ? 0xFF : 0)
    {
    }

    void run() const
    {
        const int64_t lastStrip = ((end_ - 1) >> 3) + 1 - endLanes;
        for (int64_t y = 0; y < height_; y += bandRows) {
            const Rows rows{y, y + bandRows < height_ ? y + bandRows : height_};
            if (begin_ > 0)
                strip<Part::partialFirst, endLanes>(0, rows);
            else if (sides_.left)
                strip<Part::middle, endLanes>(0, rows);
            else
                strip<Part::first, endLanes>(0, rows);
            int64_t k = endLanes;
            for (; k + rowLanes <= lastStrip; k += rowLanes)
                strip<Part::middle, rowLanes>(k, rows);
            for (; k < lastStrip; k += endLanes)
                strip<Part::middle, endLanes>(k, rows);
            if (end_ % 8 != 0)
                strip<Part::partialLast, endLanes>(lastStrip, rows);
            else if (sides_.right)
                strip<Part::middle, endLanes>(lastStrip, rows);
            else
                strip<Part::last, endLanes>(lastStrip, rows);
        }
    }

  private:
    static constexpr int endLanes = 16;
    static constexpr int64_t bandRows = 32;  ///< they stay in the first-level cache from strip to strip

    /// Where in a row a strip lies: at an end no byte beyond it is read. A partial byte there holds other bits as well.
    enum class Part
    {
        partialFirst,
        first,
        middle,
        last,
        partialLast
    };

    struct Rows
    {
        int64_t begin, end;
    };

    template <Part part, int lanes>
    [[gnu::flatten, gnu::noinline]] void strip(int64_t k, Rows rows) const
    {
        constexpr bool isFirst = part == Part::first || part == Part::partialFirst;
        constexpr bool isLast = part == Part::last || part == Part::partialLast;
        constexpr bool isPartial = part == Part::partialFirst || part == Part::partialLast;
        const auto border = simd::broadcast<lanes>(border_);
        auto inside = border, known = border, beside = border;  // of a partial byte's row: masks, and border bits
        if constexpr (isPartial) {
            Lum8u mask[lanes];
            std::memset(mask, 0xFF, lanes);
            const int at = isFirst ? 0 : lanes - 1;
            mask[at] = maskOf(k + at, begin_, end_);
            inside = simd::load<lanes>(mask);
            known = (isFirst ? sides_.left : sides_.right) ? simd::broadcast<lanes>(Lum8u{0xFF}) : inside;
            beside = border & ~known;
        }
        const auto triples = [=](const Lum8u* from) {
            auto pixels = simd::load<lanes>(from);
            if constexpr (isPartial)
                pixels = (pixels & known) | beside;
            simd::Vec<Lum8u, lanes> lower, upper;
            if constexpr (isFirst)
                lower = simd::movedUp<1>(pixels, border);
            else
                lower = simd::load<lanes>(from - 1);
            if constexpr (isLast)
                upper = simd::movedDown<1>(pixels, border);
            else
                upper = simd::load<lanes>(from + 1);
            return combined<operation>(combined<operation>(simd::betweenBytes(lower, pixels, 7), pixels),
                                       simd::betweenBytes(pixels, upper, 1));
        };
        const auto write = [=](Lum8u* to, simd::Vec<Lum8u, lanes> result) {
            if constexpr (isPartial)
                result = (result & inside) | (simd::load<lanes>(to) & ~inside);
            simd::store(to, result);
        };
        const int64_t srcStep = src_.step, dstStep = dst_.step;
        const Lum8u* from = src_.row(rows.begin) + k;
        Lum8u* to = dst_.row(rows.begin) + k;
        const int64_t lastRead = rows.end < height_ || sides_.bottom ? rows.end : height_ - 1;
        const int64_t ahead = rows.end + bandRows <= height_ ? bandRows : 0;
        int64_t y = rows.begin;
        auto above = y > 0 || sides_.top ? triples(rowAt(from, srcStep, -1)) : border, here = triples(from);
        for (; y + 2 <= lastRead; y += 2) {  // two rows share what lies under both
            for (int i = 0; i < 2; ++i) {
                simd::prefetch<lanes>(rowAt(from, srcStep, ahead + i));
                simd::prefetch<lanes>(static_cast<const Lum8u*>(rowAt(to, dstStep, ahead + i)));
            }
            const auto next = triples(rowAt(from, srcStep, 1));
            from = rowAt(from, srcStep, 2);
            const auto afterNext = triples(from);
            const auto shared = combined<operation>(here, next);
            write(to, combined<operation>(above, shared));
            write(rowAt(to, dstStep, 1), combined<operation>(shared, afterNext));
            to = rowAt(to, dstStep, 2);
            above = next;
            here = afterNext;
        }
        for (; y < rows.end; ++y) {
            from = rowAt(from, srcStep, 1);
            const auto below = y < lastRead ? triples(from) : border;
            write(to, combined<operation>(combined<operation>(above, here), below));
            to = rowAt(to, dstStep, 1);
            above = here;
            here = below;
        }
    }

    Plane<const Lum8u> src_;
    Plane<Lum8u> dst_;
    int64_t height_;
    int64_t begin_, end_;  ///< bits of a row
    Border sides_;
    Lum8u border_;  ///< eight pixels of it
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
    if (element.mode == bitModeEmpty || (element.maskWidth == 1 && element.maskHeight == 1)) {
        border.sides = Border(lumBorderReplicate);  // nothing beside the ROI is looked at
        Pass<operation>(element, src, size, border, scratch).copy(dst);
        return;
    }
    const bool isRectangular = isRectangle(element);
    if (isRectangular && Square<operation>::fits(element, src.offset, dst.offset, size)) {
        Square<operation>(src, dst, size, border).run();
        return;
    }
    Pass<operation> pass(element, src, size, border, scratch);
    if (isRectangular)
        pass.rectangle(dst);
    else
        pass.anyShape(dst);
}

}  // namespace

void bitPass(BitOperation operation, const LumiMorphBitRecord& element, BitPlane<const Lum8u> src, BitPlane<Lum8u> dst,
             LumiSizeL size, BitBorder border, Lum8u* scratch)
{
    if (operation == BitOperation::dilation)
        work<BitOperation::dilation>(element, src, dst, size, border, scratch);
    else
        work<BitOperation::erosion>(element, src, dst, size, border, scratch);
}

[[gnu::flatten]] void subtractBits(BitPlane<const Lum8u> minuend, BitPlane<const Lum8u> subtrahend, BitPlane<Lum8u> dst,
                                   LumiSizeL size, Lum8u* scratch)
{
    // a byte ahead of each row, since the destination's offset may be the greater one
    const int64_t lineBytes = (size.width + 14) / 8 + 1 + lineLanes;
    const BitPlane<const Lum8u> operands[2] = {minuend, subtrahend};
    const Lum8u* lines[2];
    int shifts[2];
    for (int i = 0; i < 2; ++i) {
        const int64_t origin = 8 + operands[i].offset - dst.offset;
        lines[i] = scratch + i * lineBytes + (origin >> 3);
        shifts[i] = static_cast<int>(origin & 7);
    }
    for (int64_t y = 0; y < size.height; ++y) {
        for (int i = 0; i < 2; ++i)
            std::memcpy(scratch + i * lineBytes + 1, operands[i].bytes.row(y),
                        static_cast<size_t>((operands[i].offset + size.width + 7) >> 3));
        writeRow(dst.bytes.row(y), dst.offset, size.width, [=](int64_t k, auto lanes) {
            return simd::loadBits<lanes>(lines[0] + k, shifts[0]) & ~simd::loadBits<lanes>(lines[1] + k, shifts[1]);
        });
    }
}

}  // namespace lumcv
