// Fast marching: sweeps over the rows, to and fro, until nothing changes. After the first ones only pixels are visited
// of which a neighbour has changed.
#include "distance/transform_checks.hpp"
#include "frame/block.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/rounding.hpp"
#include "lumcv/distance.h"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

constexpr Lum32f unreached = 999999.0f;
constexpr Lum32f frontValue = -1e-10f;  ///< an outside pixel next to the region

/// Who must visit a pixel; bits of its pending byte.
enum Pending : Lum8u
{
    downRightward = 1,
    downLeftward = 2,
    upRightward = 4,
    upLeftward = 8
};

Lum32f root(Lum32f v)
{
    return __builtin_sqrtf(v);
}

/// The time at which a front that has reached two neighbours reaches the pixel.
Lum32f inner(Lum32f a, Lum32f b)
{
    const Lum32f t = a - b;
    if (__builtin_fabsf(t) >= 1)
        return (a < b ? a : b) + 1;
    return ((a + b) + root(2 - t * t)) * 0.5f;
}

Lum32f outer(Lum32f a, Lum32f b)
{
    if (a == 0 || b == 0)
        return (a < b ? a : b) - 1;
    const Lum32f t = a - b;
    if (__builtin_fabsf(t) >= 1)
        return (a > b ? a : b) - 1;
    return ((a + b) - root(2 - t * t)) * 0.5f;
}

enum class Outcome
{
    nothing,
    value,
    front
};

struct Update
{
    Outcome outcome;
    Lum32f value;
};

/// What a pixel's neighbours make of it. `b` may be missing.
template <bool hasBand>
struct Rule
{
    Lum32f limit;

    static Lum32f insideOnly(Lum32f v)
    {
        return !hasBand || v > 0 ? v : 0;
    }

    static Lum32f inside(Lum32f a)
    {
        return insideOnly(a) + 1;
    }

    static Lum32f inside(Lum32f a, Lum32f b)
    {
        return inner(insideOnly(a), insideOnly(b));
    }

    template <class... B>
    Update outside(Lum32f a, B... b) const
    {
        if (!hasBand)
            return {Outcome::nothing, 0};
        if (a > 0 || ((b > 0) || ...))
            return {Outcome::front, frontValue};
        if (!(a < 0 || ((b < 0) || ...)))
            return {Outcome::nothing, 0};
        Lum32f value;
        if constexpr (sizeof...(b) == 0)
            value = a - 1;
        else
            value = outer(a, b...);
        return value >= limit ? Update{Outcome::value, value} : Update{Outcome::nothing, 0};
    }

    /// The value of a pixel that has none yet.
    template <class... B>
    Lum32f first(bool isInside, Lum32f a, B... b) const
    {
        return isInside ? inside(a, b...) : outside(a, b...).value;
    }

    /// What a visit does to a pixel of value c.
    template <class... B>
    Outcome visit(bool isInside, Lum32f& c, Lum32f a, B... b) const
    {
        if (isInside) {
            const Lum32f value = inside(a, b...);
            if (!(c > value))
                return Outcome::nothing;
            c = value;
            return Outcome::value;
        }
        const Update update = outside(a, b...);
        if (update.outcome == Outcome::nothing || (update.outcome == Outcome::value && !(c == 0 || c < update.value)))
            return Outcome::nothing;
        c = update.value;
        return update.outcome;
    }
};

template <bool hasBand>
class March
{
  public:
    March(Plane<const Lum8u> src, Plane<Lum32f> dst, LumiSize size, Lum32f radius, Lum8u* pBuffer)
        : src_(src),
          dst_(dst),
          width_(size.width),
          height_(size.height),
          rule_{-(radius + 1e-5f)},
          pendingStride_(roundedUp(width_, 32)),
          pending_(alignedUp(pBuffer, 32) + pendingStride_),
          dirty_(pending_ - pendingStride_ + pendingStride_ * (height_ + 34) + 4 * height_ + 1)
    {
        for (int64_t y = -1; y <= height_; ++y)
            lumBlockZero_8u(pending(y), static_cast<Lum32s>(pendingStride_));
    }

    void run()
    {
        firstRow();
        for (int64_t y = 1; y < height_; ++y)
            firstVisitDown(y);
        for (int64_t y = -1; y <= height_; ++y)
            dirty_[y] = 1;
        dirty_[height_ - 1] = 0;
        if (!sweepUp([this](int64_t y) { return visitAllUp(y); }))
            return;
        for (;;) {
            dirty_[0] = 0;
            if (!sweepDown())
                return;
            dirty_[height_ - 1] = 0;
            if (!sweepUp([this](int64_t y) { return visitPending<false>(y); }))
                return;
        }
    }

  private:
    void firstRow()
    {
        const Lum8u* const src = src_.row(0);
        Lum32f* const d = dst_.row(0);
        d[0] = src[0] ? unreached : 0;
        for (int64_t x = 1; x < width_; ++x)
            d[x] = rule_.first(src[x], d[x - 1]);
        for (int64_t x = width_ - 2; x >= 0; --x)
            rule_.visit(src[x], d[x], d[x + 1]);
    }

    void firstVisitDown(int64_t y)
    {
        const Lum8u* const src = src_.row(y);
        const Lum32f* const above = dst_.row(y - 1);
        Lum32f* const d = dst_.row(y);
        d[0] = rule_.first(src[0], above[0]);
        for (int64_t x = 1; x < width_; ++x)
            d[x] = rule_.first(src[x], above[x], d[x - 1]);
        for (int64_t x = width_ - 2; x >= 0; --x)
            rule_.visit(src[x], d[x], above[x], d[x + 1]);
    }

    /// Whether anything has changed; here the front counts.
    bool visitAllUp(int64_t y)
    {
        const Lum8u* const src = src_.row(y);
        const Lum32f* const below = dst_.row(y + 1);
        Lum32f* const d = dst_.row(y);
        bool isChanged = false;
        const auto note = [&](int64_t x, Outcome outcome) {
            if (outcome == Outcome::nothing)
                return;
            isChanged = true;
            mark(x, y, downLeftward, downRightward);
            pending(y + 1)[x] |= downRightward | downLeftward;
        };
        note(0, rule_.visit(src[0], d[0], below[0]));
        for (int64_t x = 1; x < width_; ++x)
            note(x, rule_.visit(src[x], d[x], below[x], d[x - 1]));
        for (int64_t x = width_ - 2; x >= 0; --x)
            note(x, rule_.visit(src[x], d[x], below[x], d[x + 1]));
        return isChanged;
    }

    /// Whether anything has changed; the front, which is written again at each visit, does not count.
    template <bool isDown>
    bool visitPending(int64_t y)
    {
        const Lum8u* const src = src_.row(y);
        const Lum32f* const before = dst_.row(isDown ? y - 1 : y + 1);
        Lum32f* const d = dst_.row(y);
        Lum8u* const bits = pending(y);
        bool isChanged = false, follows = false;
        const auto visit = [&](int64_t x, Pending bit, auto... b) {
            if (!follows && !(bits[x] & bit))
                return;
            bits[x] &= static_cast<Lum8u>(~bit);
            follows = rule_.visit(src[x], d[x], before[x], b...) == Outcome::value;
            if (!follows)
                return;
            isChanged = true;
            if (isDown)
                mark(x, y, upLeftward, upRightward);
            else
                mark(x, y, downLeftward, downRightward);
            pending(y - 1)[x] |= upRightward | upLeftward;
            pending(y + 1)[x] |= downRightward | downLeftward;
        };
        constexpr Pending rightward = isDown ? downRightward : upRightward;
        constexpr Pending leftward = isDown ? downLeftward : upLeftward;
        visit(0, rightward);
        for (int64_t x = 1; x < width_; ++x)
            visit(x, rightward, d[x - 1]);
        follows = false;
        for (int64_t x = width_ - 2; x >= 0; --x)
            visit(x, leftward, d[x + 1]);
        return isChanged;
    }

    /// Marks the neighbours in the row.
    void mark(int64_t x, int64_t y, Pending left, Pending right)
    {
        if (x > 0)
            pending(y)[x - 1] |= left;
        if (x + 1 < width_)
            pending(y)[x + 1] |= right;
    }

    template <class Visit>
    bool visitIfDirty(int64_t y, Visit visit)
    {
        if (!dirty_[y])
            return false;
        const bool isChanged = visit(y);
        dirty_[y] = isChanged;
        if (isChanged)
            dirty_[y - 1] = dirty_[y + 1] = 1;
        return isChanged;
    }

    template <class Visit>
    bool sweepUp(Visit visit)
    {
        bool isChanged = false;
        for (int64_t y = height_ - 2; y >= 0; --y)
            isChanged |= visitIfDirty(y, visit);
        return isChanged;
    }

    bool sweepDown()
    {
        bool isChanged = false;
        for (int64_t y = 1; y < height_; ++y)
            isChanged |= visitIfDirty(y, [this](int64_t row) { return visitPending<true>(row); });
        return isChanged;
    }

    Lum8u* pending(int64_t y) const
    {
        return pending_ + y * pendingStride_;
    }

    Plane<const Lum8u> src_;
    Plane<Lum32f> dst_;
    int64_t width_, height_;
    Rule<hasBand> rule_;
    int64_t pendingStride_;
    Lum8u* pending_;  ///< of pixel (0, 0); a row before and one behind the image take marks that nobody reads
    Lum8u* dirty_;    ///< of row 0; one byte for each row, one more before and behind
};

LumStatus march(Plane<const Lum8u> src, Plane<Lum32f> dst, LumiSize size, Lum32f radius, Lum8u* pBuffer)
{
    const LumStatus status = transformChecks(src, dst, size, pBuffer).require(!(radius < 0), lumErrArgument).status();
    if (status != lumOk)
        return status;
    if (radius == 0)
        March<false>(src, dst, size, radius, pBuffer).run();
    else
        March<true>(src, dst, size, radius, pBuffer).run();
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFastMarchingGetBufferSize_8u32f_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(roiSize);
    if (checks.failed())
        return checks.status();
    return storeSize((roundedUp(Bytes{roiSize.width}, 32) + 5) * (Bytes{roiSize.height} + 34) + 40, pBufferSize);
}

LumStatus lumiFastMarching_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                     Lum32f radius, Lum8u* pBuffer)
{
    return march(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, radius, pBuffer);
}
