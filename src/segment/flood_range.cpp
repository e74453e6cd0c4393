// Flood fill with a range around the value of the seed.
#include "lumcv/segment.h"
#include "segment/flood_call.hpp"
#include "segment/flood_painted.hpp"
#include "segment/flood_tests.hpp"

namespace lumcv::flood {
namespace {

/// A stack that begins anew when it is full, and thereby ends a fill that finds what it has painted again and again.
class WrappingStack
{
  public:
    WrappingStack(LumiSize size, Lum8u* buffer)
        : entries_(buffer), room_(pixels(size) / 4), left_(1048576 + 64 * pixels(size))
    {
    }

    /// Where there is no room there are less than four pixels, and no more than two spans at once, which have room.
    void push(const Span& s)
    {
        entries_.set(count_++, {static_cast<Lum32s>(s.y), static_cast<Lum32s>(s.left), static_cast<Lum32s>(s.right),
                                static_cast<Lum32s>(s.parentLeft), static_cast<Lum32s>(s.parentRight), s.direction});
        if (count_ == room_)
            count_ = 0;
    }

    bool pop(Span& span)
    {
        if (count_ == 0 || --left_ == 0)
            return false;
        const Entry entry = entries_.get(--count_);
        span = {entry.y, entry.left, entry.right, entry.parentLeft, entry.parentRight, entry.direction};
        return true;
    }

  private:
    struct Entry
    {
        Lum32s y, left, right, parentLeft, parentRight, direction;
    };

    static int64_t pixels(LumiSize size)
    {
        return int64_t{size.width} * size.height;
    }

    Entries<Entry> entries_;
    int64_t room_, left_;
    int64_t count_ = 0;
};

template <Neighbours neighbours, int channels, class T>
[[gnu::flatten, gnu::noinline]] Region fillRange(const Call<T>& call, const Within<T, channels>& test)
{
    PaintedRows<T, channels, Within<T, channels>> rows(call.image, call.roiSize.width, test, call.newValue);
    WrappingStack stack(call.roiSize, call.buffer);
    Region region;
    const auto [left, right] = rows.takeSeed(call.seed.y, call.seed.x);
    if (call.roiSize.height == 1)
        region = {0, left, right, 0, 0};
    else
        explore<neighbours>(firstSpan(call.seed.y, left, right, call.roiSize), call.roiSize, rows, stack, region);
    region.area = rows.area();
    return region;
}

template <Neighbours neighbours, int channels, class T>
LumStatus fill(const Call<T>& call, const T* minDelta, const T* maxDelta)
{
    const auto checks = floodChecks<channels>(call, minDelta, maxDelta);
    if (checks.failed())
        return checks.status();
    const auto value = pixelAt<channels>(call.image, call.seed);
    const Within<T, channels> test(value.of, minDelta, maxDelta);
    return report<channels>(fillRange<neighbours>(call, test), call.newValue, call.region);
}

}  // namespace
}  // namespace lumcv::flood

using namespace lumcv;
using flood::Call;
using flood::Neighbours;

LumStatus lumiFloodFill_Range4Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          Lum8u newVal, Lum8u minDelta, Lum8u maxDelta, LumiConnectedComp* pRegion,
                                          Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Range4Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                           Lum16u newVal, Lum16u minDelta, Lum16u maxDelta, LumiConnectedComp* pRegion,
                                           Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Range4Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                           Lum32f newVal, Lum32f minDelta, Lum32f maxDelta, LumiConnectedComp* pRegion,
                                           Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Range4Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          const Lum8u* pNewVal, const Lum8u* pMinDelta, const Lum8u* pMaxDelta,
                                          LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Range4Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                           const Lum16u* pNewVal, const Lum16u* pMinDelta, const Lum16u* pMaxDelta,
                                           LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Range4Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                           const Lum32f* pNewVal, const Lum32f* pMinDelta, const Lum32f* pMaxDelta,
                                           LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Range8Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          Lum8u newVal, Lum8u minDelta, Lum8u maxDelta, LumiConnectedComp* pRegion,
                                          Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Range8Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                           Lum16u newVal, Lum16u minDelta, Lum16u maxDelta, LumiConnectedComp* pRegion,
                                           Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Range8Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                           Lum32f newVal, Lum32f minDelta, Lum32f maxDelta, LumiConnectedComp* pRegion,
                                           Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer}, &minDelta, &maxDelta);
}

LumStatus lumiFloodFill_Range8Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                          const Lum8u* pNewVal, const Lum8u* pMinDelta, const Lum8u* pMaxDelta,
                                          LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Range8Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                           const Lum16u* pNewVal, const Lum16u* pMinDelta, const Lum16u* pMaxDelta,
                                           LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}

LumStatus lumiFloodFill_Range8Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                           const Lum32f* pNewVal, const Lum32f* pMinDelta, const Lum32f* pMaxDelta,
                                           LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer}, pMinDelta, pMaxDelta);
}
