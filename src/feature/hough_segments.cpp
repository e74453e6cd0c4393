// Hough line segments: points vote in random order, and a line with enough votes is followed in the image at once, so
// that its other points need not vote.
#include <cmath>

#include "feature/hough_plane.hpp"
#include "feature/sine.hpp"
#include "frame/checks.hpp"

namespace lumcv::hough {
namespace {

/// The record, at any address. Behind it: the cosine and the sine of each angle, in cells.
struct [[gnu::packed]] Record
{
    LumiPointPolar delta;
    Lum32s hint;

    Lum8u* normals()
    {
        return reinterpret_cast<Lum8u*>(this + 1);
    }

    const Lum32f* normals() const
    {
        return reinterpret_cast<const Lum32f*>(reinterpret_cast<const Lum8u*>(this + 1));
    }
};
static_assert(sizeof(Record) == 12);

constexpr Lum32s greatestLength = 65536;

/// A place in the list of points.
struct [[gnu::packed]] ListedPoint
{
    Lum16u x, y;
};

/// A counter of votes, at any address.
template <class Count>
struct [[gnu::packed]] Counter
{
    Count votes;
};

/// The image as bits: those points that no line has consumed.
class BitImage
{
  public:
    BitImage(Lum8u* bytes, LumiSize size) : bytes_(bytes), rowBytes_((size.width >> 3) + 1), size_(size)
    {
        __builtin_memset(bytes, 0, static_cast<size_t>(byteCount(size)));
    }

    static int64_t byteCount(LumiSize size)
    {
        return int64_t{(size.width >> 3) + 1} * size.height;
    }

    /// Sets the bits of eachGroup().
    void set(int64_t x, int64_t y, uint64_t bits)
    {
        for (Lum8u* p = &byteOf(x, y); bits; bits >>= 8)
            *p++ |= static_cast<Lum8u>(bits << (x & 7));
    }

    void clear(int64_t x, int64_t y)
    {
        byteOf(x, y) &= static_cast<Lum8u>(~(1 << (x & 7)));
    }

    bool isSet(int64_t x, int64_t y) const
    {
        return byteOf(x, y) >> (x & 7) & 1;
    }

    bool contains(int64_t x, int64_t y) const
    {
        return static_cast<uint64_t>(x) < static_cast<uint64_t>(size_.width) &&
               static_cast<uint64_t>(y) < static_cast<uint64_t>(size_.height);
    }

  private:
    Lum8u& byteOf(int64_t x, int64_t y) const
    {
        return bytes_[y * rowBytes_ + (x >> 3)];
    }

    Lum8u* bytes_;
    int64_t rowBytes_;
    LumiSize size_;
};

/// Takes points out of a list, in an order that looks random and is the same in each call.
class Lottery
{
  public:
    /// Of a number of points that is not zero.
    Lottery(ListedPoint* points, Lum32u count) : points_(points), remaining_(count)
    {
        draw();
    }

    bool isEmpty() const
    {
        return remaining_ == 0;
    }

    LumiPoint take()
    {
        const LumiPoint taken{next_.x, next_.y};
        points_[drawn_] = points_[--remaining_];
        if (remaining_ > 0)
            draw();
        return taken;
    }

  private:
    /// Reads the next point while there is something else to do, for a place that is drawn is seldom in a cache.
    void draw()
    {
        state_ = (state_ & 0xffffffff) * 0xF83F630A + (state_ >> 32);
        drawn_ = static_cast<Lum32u>(state_) % remaining_;
        next_ = points_[drawn_];
    }

    ListedPoint* points_;
    Lum32u remaining_;
    Lum32u drawn_;
    ListedPoint next_;
    uint64_t state_ = ~uint64_t{0};
};

/// What the export hands on.
struct Call
{
    lumcv::Plane<const Lum8u> src;
    LumiSize roiSize;
    Lum32s threshold, lineLength, lineGap;
    Lum32s* lines;
    Lum32s room;
    Lum32s* count;
    Lum8u* buffer;
    const Record* record;
};

/// The pieces of the scratch.
struct Scratch
{
    Lum8u* counters;
    Lum8u* bits;
    ListedPoint* points;

    Scratch(const Call& call, const Plane& plane)
        : counters(call.buffer),
          bits(counters + counterCount(plane) * static_cast<int64_t>(sizeof(Lum32s))),
          points(reinterpret_cast<ListedPoint*>(bits + BitImage::byteCount(call.roiSize)))
    {
    }

    static int64_t counterCount(const Plane& plane)
    {
        return int64_t{plane.cells} * (int64_t{plane.lastAngle} + 1);
    }
};

/// The angle with the most votes; none as long as it is negative.
struct Best
{
    Lum32s votes;
    Lum32s angle = -1;
};

/// The counters of all cells. `Count` holds the votes of all points of a cell; if `isChecked`, votes may fall outside.
template <class Count, bool isChecked>
class Votes
{
  public:
    Votes(const Call& call, const Plane& plane, Lum8u* counters)
        : counters_(reinterpret_cast<Counter<Count>*>(counters)), normals_(call.record->normals()), plane_(plane)
    {
        __builtin_memset(counters, 0, static_cast<size_t>(Scratch::counterCount(plane)) * sizeof(Count));
        for (int i = 0; i < simd::restLanes; ++i)
            centres_[i] = static_cast<Lum32s>(int64_t{plane.cells} * i + plane.centre);
    }

    /// Adds those of a point and tells the angle that has the most now, the first one of equal ones, or a negative
    /// number if all have less than `threshold`: points that reach it are rare, and other maxima are not worth a
    /// branch.
    [[gnu::flatten]] Lum32s add(Lum32s x, Lum32s y, Lum32s threshold)
    {
        Best best{threshold - 1};
        eachCell(x, y, [&best](Counter<Count>& counter, Lum32s angle) {
            const Lum32s votes = ++counter.votes;
            if (votes > best.votes)
                best = {votes, angle};
        });
        return best.angle;
    }

    [[gnu::flatten]] void remove(Lum32s x, Lum32s y)
    {
        eachCell(x, y, [](Counter<Count>& counter, Lum32s) { --counter.votes; });
    }

  private:
    /// Calls use(counter, angle) for the cell of each angle.
    template <class Use>
    [[gnu::always_inline]] void eachCell(Lum32s x, Lum32s y, Use use)
    {
        simd::eachOnce<simd::restLanes>(0, int64_t{plane_.lastAngle} + 1, [&, x, y](int64_t angle, auto lanes) {
            const auto normals = simd::loadCouples<lanes>(normals_ + 2 * angle);
            const auto all = [lanes](Lum32s n) { return simd::broadcast<lanes>(static_cast<Lum32f>(n)); };
            const auto cells = simd::truncated(all(x) * normals.a + all(y) * normals.b);
            Lum32s cell[lanes];
            simd::store(cell, cells + simd::load<lanes>(centres_));
            Counter<Count>* const first = counters_ + angle * plane_.cells;
            const auto rowLength = static_cast<Lum32u>(plane_.cells);
            for (Lum32u i = 0; i < lanes; ++i) {
                const auto at = static_cast<Lum32u>(cell[i]);
                if (!isChecked || at - i * rowLength < rowLength)
                    use(first[at], static_cast<Lum32s>(angle) + static_cast<Lum32s>(i));
            }
        });
    }

    Counter<Count>* counters_;
    const Lum32f* normals_;
    Plane plane_;
    /// Where the cells through the first pixel are, of the angles of a vector. They fit: so do the counters of as many.
    Lum32s centres_[simd::restLanes];
};

/// Steps along a line, in 16.16 fixed point.
struct Direction
{
    int64_t dx, dy;

    /// That of the line with this normal.
    Direction(Lum32f cosine, Lum32f sine)
    {
        constexpr int64_t one = 65536;
        const Lum32f ax = std::fabs(cosine), ay = std::fabs(sine);
        if (ay > ax) {
            dx = sine < 0 ? one : -one;
            dy = truncated(cosine * 65536 / ay);
        } else {
            dx = truncated(sine * -65536 / ax);
            dy = cosine > 0 ? one : -one;
        }
    }

    Direction opposite() const
    {
        Direction direction = *this;
        direction.dx = -dx;
        direction.dy = -dy;
        return direction;
    }
};

/// Calls visit(x, y) for pixels from a point on, until it returns false or the image ends.
template <class Visit>
[[gnu::always_inline]] inline void walk(const BitImage& image, LumiPoint from, Direction direction, Visit visit)
{
    int64_t x = int64_t{from.x} * 65536 + 32768;
    int64_t y = int64_t{from.y} * 65536 + 32768;
    while (image.contains(x >> 16, y >> 16) && visit(x >> 16, y >> 16)) {
        x += direction.dx;
        y += direction.dy;
    }
}

/// The last point that is reached from a point without crossing more than `gap` clear pixels at a time.
LumiPoint endOf(const BitImage& image, LumiPoint from, Direction direction, Lum32s gap)
{
    LumiPoint end = from;
    Lum32s crossed = 0;
    walk(image, from, direction, [&](int64_t x, int64_t y) {
        if (!image.isSet(x, y))
            return ++crossed <= gap;
        end = {static_cast<Lum32s>(x), static_cast<Lum32s>(y)};
        crossed = 0;
        return true;
    });
    return end;
}

/// Clears the way from one point to the other; calls use(x, y) for each that is set.
template <class Use>
void consume(BitImage& image, LumiPoint from, Direction direction, LumiPoint to, Use use)
{
    walk(image, from, direction, [&](int64_t x, int64_t y) {
        if (image.isSet(x, y)) {
            use(static_cast<Lum32s>(x), static_cast<Lum32s>(y));
            image.clear(x, y);
        }
        return x != to.x || y != to.y;
    });
}

template <class Count, bool isChecked>
LumStatus findSegments(const Call& call, const Plane& plane, const Scratch& scratch, BitImage image, Lum32u count)
{
    Votes<Count, isChecked> votes(call, plane, scratch.counters);
    const Lum32f* const normals = call.record->normals();
    Lottery lottery(scratch.points, count);
    while (!lottery.isEmpty()) {
        const LumiPoint point = lottery.take();
        if (!image.isSet(point.x, point.y))
            continue;
        const Lum32s angle = votes.add(point.x, point.y, call.threshold);
        if (angle < 0)
            continue;
        const auto normal = simd::loadCouples<1>(normals + 2 * int64_t{angle});
        const Direction direction(normal.a.raw, normal.b.raw);
        const LumiPoint start = endOf(image, point, direction, call.lineGap);
        const LumiPoint end = endOf(image, point, direction.opposite(), call.lineGap);
        const bool isLong =
            std::abs(end.x - start.x) >= call.lineLength || std::abs(end.y - start.y) >= call.lineLength;
        const auto use = [&](Lum32s x, Lum32s y) {
            if (isLong)
                votes.remove(x, y);
        };
        consume(image, point, direction, start, use);
        consume(image, point, direction.opposite(), end, use);
        if (!isLong)
            continue;
        if (*call.count >= call.room)
            return lumWrnLineListFull;
        const Lum32s line[4] = {start.x, start.y, end.x, end.y};
        __builtin_memcpy(call.lines + 4 * int64_t{*call.count}, line, sizeof line);
        ++*call.count;
    }
    return lumOk;
}

/// Whether all votes of all points fall into the cells. The farthest votes are those of the corners, since products and
/// sums that are rounded all the same way keep the order.
bool areAllInside(const Call& call, const Plane& plane)
{
    const Lum32f* const normals = call.record->normals();
    const auto right = static_cast<Lum32f>(call.roiSize.width - 1),
               bottom = static_cast<Lum32f>(call.roiSize.height - 1);
    for (int64_t angle = 0; angle <= plane.lastAngle; ++angle) {
        const auto normal = simd::loadCouples<1>(normals + 2 * angle);
        for (const Lum32f x : {0.0f, right})
            for (const Lum32f y : {0.0f, bottom}) {
                const int64_t cell = int64_t{truncated(x * normal.a.raw + y * normal.b.raw)} + plane.centre;
                if (cell < 0 || cell >= plane.cells)
                    return false;
            }
    }
    return true;
}

/// Whether fewer points than 16 bits count lie in a cell. They are all in a strip of two cells, which is where
/// truncation widens it; no row, or no column, has more than 2 * sqrt(2) * rho + 2 pixels of that.
bool areFewInCell(const Call& call, Lum32u count)
{
    constexpr Lum32u limit = 32767;
    const Lum64f inRow = 4 * static_cast<Lum64f>(call.record->delta.rho) + 2;
    const Lum64f rows = call.roiSize.width > call.roiSize.height ? call.roiSize.width : call.roiSize.height;
    return count < limit || inRow * rows < limit;
}

/// What is done while the rounding is changed.
[[gnu::noinline]] LumStatus findSegments(const Call& call, const Plane& plane)
{
    const Scratch scratch(call, plane);
    BitImage image(scratch.bits, call.roiSize);
    Lum32u count = 0;
    for (int64_t y = 0; y < call.roiSize.height; ++y)
        eachGroup(call.src.row(y), call.roiSize.width, [&, y](int64_t x, uint64_t bits) {
            image.set(x, y, bits);
            for (; bits; bits &= bits - 1)
                scratch.points[count++] = {static_cast<Lum16u>(x + __builtin_ctzll(bits)), static_cast<Lum16u>(y)};
        });
    if (count == 0)
        return lumOk;
    const bool isChecked = !areAllInside(call, plane);
    if (areFewInCell(call, count))
        return isChecked ? findSegments<Lum16s, true>(call, plane, scratch, image, count)
                         : findSegments<Lum16s, false>(call, plane, scratch, image, count);
    return isChecked ? findSegments<Lum32s, true>(call, plane, scratch, image, count)
                     : findSegments<Lum32s, false>(call, plane, scratch, image, count);
}

/// The plane is the one of the query, which knows nothing of the rounding here.
[[gnu::noinline]] LumStatus findSegmentsTruncating(const Call& call, const Plane& plane)
{
    const simd::RoundedTowardsZero rounding;
    return findSegments(call, plane);
}

LumStatus checkedSegments(const Call& call)
{
    const LumStatus status = Checks{}
                                 .notNull(call.src.pixels, call.lines, call.count, call.buffer, call.record)
                                 .size(call.roiSize)
                                 .require(call.roiSize.width <= greatestLength, lumErrSize)
                                 .require(call.roiSize.height <= greatestLength, lumErrSize)
                                 .require(call.threshold >= 1, lumErrArgument)
                                 .require(call.lineLength >= 0 && call.lineGap >= 0, lumErrArgument)
                                 .status();
    if (status != lumOk)
        return status;
    *call.count = 0;
    return findSegmentsTruncating(call, Plane(call.roiSize, call.record->delta));
}

LumStatus querySizes(LumiSize roiSize, LumiPointPolar delta, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    auto checks = Checks{}.notNull(pSpecSize, pBufferSize).size(roiSize).require(isPositive(delta), lumErrArgument);
    if (checks.failed())
        return checks.status();
    const Plane plane(roiSize, delta);
    const auto pixels = static_cast<uint64_t>(roiSize.width) * static_cast<uint64_t>(roiSize.height);
    const auto counters = static_cast<uint64_t>(Scratch::counterCount(plane));
    const auto bits = static_cast<uint64_t>(BitImage::byteCount(roiSize));
    *pSpecSize = static_cast<Lum32s>(8 * static_cast<Lum32u>(plane.lastAngle) + 20);
    *pBufferSize = static_cast<Lum32s>(static_cast<Lum32u>(bits + 4 * (pixels + counters)));
    return lumOk;
}

LumStatus init(LumiSize roiSize, LumiPointPolar delta, Lum32s hint, LumHoughProbSpec* block)
{
    auto checks = Checks{}.notNull(block).size(roiSize).require(isPositive(delta), lumErrArgument);
    if (checks.failed())
        return checks.status();
    auto* const record = reinterpret_cast<Record*>(block);
    *record = {delta, hint};
    const auto scale = static_cast<Lum64f>(1.0f / delta.rho);
    const Lum32s lastAngle = Plane(roiSize, delta).lastAngle;
    Lum32f angle = 0;
    for (int64_t i = 0; i <= lastAngle; ++i, angle += delta.theta) {
        const SineCosine of = sineCosine(static_cast<Lum64f>(angle));
        const Lum32f normal[2] = {static_cast<Lum32f>(scale * of.cosine), static_cast<Lum32f>(scale * of.sine)};
        __builtin_memcpy(record->normals() + i * static_cast<int64_t>(sizeof normal), normal, sizeof normal);
    }
    return lumOk;
}

}  // namespace
}  // namespace lumcv::hough

using namespace lumcv;

LumStatus lumiHoughProbLineGetSize_8u_C1R(LumiSize roiSize, LumiPointPolar delta, Lum32s* pSpecSize,
                                          Lum32s* pBufferSize)
{
    return hough::querySizes(roiSize, delta, pSpecSize, pBufferSize);
}

LumStatus lumiHoughProbLineInit_8u32f_C1R(LumiSize roiSize, LumiPointPolar delta, Lum32s hint, LumHoughProbSpec* pSpec)
{
    return hough::init(roiSize, delta, hint, pSpec);
}

LumStatus lumiHoughProbLine_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s threshold,
                                      Lum32s lineLength, Lum32s lineGap, Lum32s* pLine, Lum32s maxLineCount,
                                      Lum32s* pLineCount, Lum8u* pBuffer, const LumHoughProbSpec* pSpec)
{
    return hough::checkedSegments({source(pSrc, srcStep), roiSize, threshold, lineLength, lineGap, pLine, maxLineCount,
                                   pLineCount, pBuffer, reinterpret_cast<const hough::Record*>(pSpec)});
}
