// Flood fill with a range around the value of a neighbour.
#include "frame/block.hpp"
#include "lumcv/segment.h"
#include "segment/flood_call.hpp"
#include "segment/flood_rows.hpp"
#include "segment/flood_tests.hpp"

namespace lumcv::flood {
namespace {

// The scratch has (width + 2) * (height + 2) + 16 * width * height + 64 bytes: a map of the pixels that have been
// taken, and then the stack. A span has a pixel at least and no pixel is taken twice, so there are never more than
// width * height spans, for which entries of 16 bytes have room.

struct Entry
{
    Lum32s y, left, right, direction;

    Entry() = default;

    explicit Entry(const Span& s)
        : y(static_cast<Lum32s>(s.y)),
          left(static_cast<Lum32s>(s.left)),
          right(static_cast<Lum32s>(s.right)),
          direction(s.direction)
    {
    }

    Span span() const
    {
        return {y, left, right, 0, 0, direction};
    }
};
static_assert(sizeof(Entry) == 16);

/// Rows of the fill that marks a span in a map when it is found, and paints it when all around it has been looked at:
/// until then it is what its neighbours are compared with.
template <class T, int channels>
class MarkedRows
{
  public:
    MarkedRows(const Call<T>& call, const Near<T, channels>& near, Lum8u* map)
        : image_(call.image),
          map_{map, call.roiSize.width},
          width_(call.roiSize.width),
          near_(near),
          newValue_(call.newValue)
    {
    }

    Ends find(const Span& span, int64_t y, int64_t x, int64_t end, bool)
    {
        x = next(span, y, x, end);
        return x < end ? take(span, y, x) : Ends::none();
    }

    /// The first span: compares along the row alone.
    Ends takeSeed(int64_t y, int64_t x)
    {
        const Row row = rowAt(y);
        return marked(row, leftEnd(row, x), rightEnd(row, x));
    }

    void finish(const Span& span)
    {
        const int64_t n = span.right - span.left + 1;
        paint(image_.row(span.y) + span.left * channels, n, newValue_);
        area_ += n;
    }

    int64_t area() const
    {
        return area_;
    }

  private:
    static constexpr int block = blockPixels<T, channels>;

    struct Row
    {
        const T* pixels;
        Lum8u* marks;
    };

    Row rowAt(int64_t y) const
    {
        return {image_.row(y), map_.row(y)};
    }

    /// The bits of the pixels that have not been taken.
    template <int N>
    [[gnu::always_inline]] uint64_t free(Row row, int64_t x) const
    {
        return spaced<channels>(
            simd::laneBits(simd::equal(simd::load<N>(row.marks + x), simd::broadcast<N>(Lum8u{0}))));
    }

    /// The bits of the pixels that are near those of a row from another column on.
    template <int N>
    [[gnu::always_inline]] uint64_t near(Row row, int64_t x, Row other, int64_t otherX) const
    {
        const T* const c = row.pixels + x * channels;
        const T* const a = other.pixels + otherX * channels;
        return pixelBits<channels, N>(
            [&](int j) { return near_(simd::load<N>(c + N * j), simd::load<N>(a + N * j), j); });
    }

    int64_t next(const Span& span, int64_t y, int64_t x, int64_t end) const
    {
        const Columns all{0, width_};
        const Row row = rowAt(y), beside = rowAt(span.y);
        if (x < span.left) {
            if (isFree(row, x) && isNear(row, x, beside, span.left))
                return x;
            ++x;
        }
        const int64_t inside = std::min(end, span.right + 1);
        x = firstOf<block, channels, true>(x, inside, all, [&](int64_t at, auto lanes) {
            return free<lanes>(row, at) & near<lanes>(row, at, beside, at);
        });
        if (x >= inside && x < end && !(isFree(row, x) && isNear(row, x, beside, span.right)))
            ++x;
        return x;
    }

    Ends take(const Span& span, int64_t y, int64_t x)
    {
        const Row row = rowAt(y), beside = rowAt(span.y);
        const int64_t inside = std::min(span.right + 1, width_);
        const int64_t end = firstOf<block, channels, false>(x + 1, inside, {1, width_}, [&](int64_t at, auto lanes) {
            return free<lanes>(row, at) & (near<lanes>(row, at, row, at - 1) | near<lanes>(row, at, beside, at));
        });
        return marked(row, leftEnd(row, x), end < inside ? end - 1 : rightEnd(row, std::max(end - 1, x)));
    }

    bool isFree(Row row, int64_t x) const
    {
        return row.marks[x] == 0;
    }

    bool isNear(Row row, int64_t x, Row other, int64_t otherX) const
    {
        return near<1>(row, x, other, otherX);
    }

    int64_t leftEnd(Row row, int64_t x) const
    {
        return 1 + lastFailing<block, channels>(0, x, {0, width_ - 1}, [&](int64_t at, auto lanes) {
                   return free<lanes>(row, at) & near<lanes>(row, at, row, at + 1);
               });
    }

    int64_t rightEnd(Row row, int64_t x) const
    {
        return -1 + firstOf<block, channels, false>(x + 1, width_, {1, width_}, [&](int64_t at, auto lanes) {
            return free<lanes>(row, at) & near<lanes>(row, at, row, at - 1);
        });
    }

    Ends marked(Row row, int64_t left, int64_t right) const
    {
        __builtin_memset(row.marks + left, 1, static_cast<size_t>(right - left + 1));
        return {left, right};
    }

    Plane<T> image_;
    Plane<Lum8u> map_;
    int64_t width_;
    Near<T, channels> near_;
    Pattern<T, channels> newValue_;
    int64_t area_ = 0;
};

template <Neighbours neighbours, int channels, class T>
[[gnu::flatten, gnu::noinline]] Region fillNear(const Call<T>& call, const Near<T, channels>& near)
{
    const int64_t pixels = int64_t{call.roiSize.width} * call.roiSize.height;
    __builtin_memset(call.buffer, 0, static_cast<size_t>(pixels));
    MarkedRows<T, channels> rows(call, near, call.buffer);
    OrphanStack<neighbours, Entry> stack(call.buffer + pixels);
    Region region;
    const auto [left, right] = rows.takeSeed(call.seed.y, call.seed.x);
    const Span first = firstSpan(call.seed.y, left, right, call.roiSize);
    if (call.roiSize.height == 1) {
        rows.finish(first);
        region = {0, left, right, 0, 0};
    } else
        explore<neighbours>(first, call.roiSize, rows, stack, region);
    region.area = rows.area();
    return region;
}

template <Neighbours neighbours, int channels, class T>
LumStatus fill(const Call<T>& call, const T* minDelta, const T* maxDelta)
{
    auto checks = floodChecks<channels>(call, minDelta, maxDelta);
    if constexpr (std::is_floating_point_v<T>)
        for (int c = 0; c < channels && !checks.failed(); ++c)
            checks.require(!(minDelta[c] < 0) && !(maxDelta[c] < 0), lumErrOutOfRange);
    if (checks.failed())
        return checks.status();
    return report<channels>(fillNear<neighbours>(call, Near<T, channels>(minDelta, maxDelta)), call.newValue,
                            call.region);
}

}  // namespace
}  // namespace lumcv::flood

using namespace lumcv;
using flood::Call;
using flood::Neighbours;

LumStatus lumiFloodFill_Grad4Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                         Lum8u newVal, Lum8u minDelta, Lum8u maxDelta, LumiConnectedComp* pRegion,
                                         Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Grad4Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          Lum16u newVal, Lum16u minDelta, Lum16u maxDelta, LumiConnectedComp* pRegion,
                                          Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Grad4Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          Lum32f newVal, Lum32f minDelta, Lum32f maxDelta, LumiConnectedComp* pRegion,
                                          Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Grad4Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                         const Lum8u* pNewVal, const Lum8u* pMinDelta, const Lum8u* pMaxDelta,
                                         LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Grad4Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          const Lum16u* pNewVal, const Lum16u* pMinDelta, const Lum16u* pMaxDelta,
                                          LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Grad4Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          const Lum32f* pNewVal, const Lum32f* pMinDelta, const Lum32f* pMaxDelta,
                                          LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Grad8Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                         Lum8u newVal, Lum8u minDelta, Lum8u maxDelta, LumiConnectedComp* pRegion,
                                         Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Grad8Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          Lum16u newVal, Lum16u minDelta, Lum16u maxDelta, LumiConnectedComp* pRegion,
                                          Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Grad8Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          Lum32f newVal, Lum32f minDelta, Lum32f maxDelta, LumiConnectedComp* pRegion,
                                          Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Grad8Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                         const Lum8u* pNewVal, const Lum8u* pMinDelta, const Lum8u* pMaxDelta,
                                         LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Grad8Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          const Lum16u* pNewVal, const Lum16u* pMinDelta, const Lum16u* pMaxDelta,
                                          LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Grad8Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          const Lum32f* pNewVal, const Lum32f* pMinDelta, const Lum32f* pMaxDelta,
                                          LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}
